// tervane extract [--events | --document] [--filter] [-o OUT] [--trace FILE]
// FILE: drives the forward converter as a host framework does (Initialize,
// then raw_Parse) and writes what the host received. With --filter the
// converter feeds the filter stage, wired and run as a framework runs a chain.
#include <cstdio>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "app/commands.h"
#include "app/components.h"
#include "app/event_recorder.h"
#include "app/failure.h"
#include "app/input_file.h"
#include "app/items.h"
#include "app/output_file.h"
#include "frame/tervane_parser.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_ptr.h"
#include "platform/com/error_info.h"
#include "platform/diag/event_log.h"
#include "platform/diag/trace_sink.h"
#include "platform/locale/code_pages.h"
#include "stream/interactive_parser.h"

namespace tervane::app {

namespace {

struct ExtractOptions {
    bool events = false, filter = false;
    std::string out, trace, file;
};

// The error information the component left on this thread.
std::string ErrorText(HRESULT hr) {
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Receive()) == S_OK && info) {
        BSTR description = nullptr;
        info->GetDescription(&description);
        Bstr owned = Bstr::Attach(description);
        if (owned.length())
            return Narrow(owned.view(), CP_UTF8);
    }
    char text[64];
    std::snprintf(text, sizeof text, "the conversion failed (0x%08X)", static_cast<unsigned>(hr));
    return text;
}

// Initialize, then raw_Parse: the parser pushes the whole document into sink.
HRESULT Parse(const std::string& file, IFilterHost* host, IEvents* sink) {
    ComPtr<IFileParser> parser;
    HRESULT hr = CreateComponent(CLSID_TervaneParser, IFileParser::iid, parser.ReceiveVoid());
    if (SUCCEEDED(hr)) {
        Bstr path(Widen(file, CP_UTF8));
        hr = parser->Initialize(path.get(), nullptr, 0, 0, 0, host, sink);
        if (SUCCEEDED(hr))
            hr = parser->raw_Parse(0);
    }
    return hr;
}

// The chain parser -> filter stage -> sink, wired from its end: the filter
// returns its IEvents, which becomes the parser's sink. The host runs the
// filter, whose pump makes the host run the parser.
HRESULT RunChain(const std::string& file, ComObject<ProgressHost>* host, IEvents* sink) {
    ComPtr<IFilterComponent> filter;
    HRESULT hr = CreateComponent(CLSID_TervaneInteractiveParser, IFilterComponent::iid,
                                 filter.ReceiveVoid());
    if (FAILED(hr))
        return hr;
    ComPtr<IEvents> filterEvents;
    hr = filter->Initialize(nullptr, nullptr, 0, host, sink, filterEvents.Receive());
    if (FAILED(hr))
        return hr;
    HRESULT parsed = S_OK;
    bool delivered = false;
    host->OnPump([&](LONG_PTR) {
        // One document: the first pump delivers it whole, later ones nothing.
        if (!delivered) {
            delivered = true;
            parsed = Parse(file, host, filterEvents.get());
        }
        return FAILED(parsed) ? E_FAIL : S_OK;
    });
    hr = filter->raw_Run(0);
    host->OnPump(nullptr);
    filter->raw_Close();
    return FAILED(hr) ? hr : parsed;
}

int RunExtract(const ExtractOptions& options) {
    const std::string& file = options.file;
    // Both outputs are refused before any work when they would overwrite
    // the input or each other.
    OutputFile output(options.out, {file, options.trace});
    CheckOutputPath(options.trace, {file});
    // The same verdict on the file as list gives, before the component sees it.
    { PeFile judged(file); }
    if (!options.trace.empty() && !AttachTraceFile(options.trace))
        throw CommandFailure(options.trace, "cannot write the trace file");

    RegisterItemClasses();
    auto log = std::make_shared<EventOutput>(options.events);
    ComPtr<ComObject<RecordingSink>> sink;
    ComPtr<ComObject<ProgressHost>> host;
    ComObject<RecordingSink>::Create(sink.Receive());
    ComObject<ProgressHost>::Create(host.Receive());
    sink->Attach(log);
    host->Attach(log, ::isatty(STDERR_FILENO) != 0);

    HRESULT hr = options.filter ? RunChain(file, host.get(), sink.get())
                                : Parse(file, host.get(), sink.get());
    host->FinishBar();
    std::string failure = FAILED(hr) ? ErrorText(hr) : std::string();

    // What was received still reaches standard output when the conversion
    // failed; a file is only replaced by a whole result.
    if (SUCCEEDED(hr) || output.IsStandardOutput()) {
        output.Write(log->Rendered());
        output.Commit();
    }
    if (SUCCEEDED(hr) && !log->ReceivedAny())
        ReportFailure("extract", {file, "nothing to convert: no string table, menu, dialog or "
                                        "version value holds a text"});
    if (FAILED(hr)) {
        std::string logPath = EventLogPath();
        throw CommandFailure(file, failure,
                             logPath.empty() ? "" : "The system's messages are in " + logPath);
    }
    return 0;
}

} // namespace

void AddExtractCommand(CLI::App& app) {
    auto options = std::make_shared<ExtractOptions>();
    CLI::App* command = AddCommand(
        app, "extract",
        "Convert the resources of a PE file into the tagged document, or into the events a host "
        "receives",
        [options] { return RunExtract(*options); });
    command->footer(
        "Reads the string tables, menus, dialogs (with the entries of their combo and list\n"
        "boxes) and version values of FILE (.exe, .dll, .ocx, .lng), as data.\n\n"
        "On a failure the error goes to standard error, what was received until then is\n"
        "still written to standard output, a file named by -o is left as it was, and the\n"
        "exit status is 1; a wrong command line gives 2.");
    command->add_flag("--events", options->events,
                      "write every event the host receives, one JSON object a line");
    command->add_flag("--filter", options->filter,
                      "pass the events through the filter stage, which reduces each tag's name "
                      "to its keyword and cuts inline tags into single placeholders");
    command->add_flag_callback(
        "--document", [options] { options->events = false; },
        "write the tagged document, UTF-8 (the default)");
    command
        ->add_option("-o", options->out,
                     "write to OUT, replaced only by a whole result; - is standard output")
        ->type_name("OUT");
    command->add_option("--trace", options->trace, "append the conversion's progress texts to FILE")
        ->type_name("FILE");
    command->add_option("FILE", options->file, "the PE file")->required()->type_name("");
}

} // namespace tervane::app
