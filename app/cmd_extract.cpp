// tervane extract [--events | --document] [-o OUT] [--trace FILE] FILE: drives
// the forward converter as a host framework does (Initialize, then raw_Parse)
// and writes what the host received.
#include <cstdio>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "app/commands.h"
#include "app/event_recorder.h"
#include "app/failure.h"
#include "app/items.h"
#include "frame/tervane_parser.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_ptr.h"
#include "platform/com/error_info.h"
#include "platform/diag/event_log.h"
#include "platform/diag/trace_sink.h"
#include "platform/files/file_replace.h"
#include "platform/locale/code_pages.h"

namespace tervane::app {

namespace {

struct ExtractOptions {
    bool events = false;
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

int RunExtract(const ExtractOptions& options) {
    const std::string& file = options.file;
    const std::string& out = options.out;
    if (!options.trace.empty() && !AttachTraceFile(options.trace))
        throw CommandFailure(options.trace, "cannot write the trace file");

    RegisterItemClasses();
    RegisterTervaneParserClass();
    auto log = std::make_shared<EventOutput>(options.events);
    ComPtr<ComObject<RecordingSink>> sink;
    ComPtr<ComObject<ProgressHost>> host;
    ComObject<RecordingSink>::Create(sink.Receive());
    ComObject<ProgressHost>::Create(host.Receive());
    sink->Attach(log);
    host->Attach(log, ::isatty(STDERR_FILENO) != 0);

    ComPtr<IFileParser> parser;
    HRESULT hr = CoCreateInstance(CLSID_TervaneParser, nullptr, CLSCTX_ALL, IFileParser::iid,
                                  parser.ReceiveVoid());
    if (SUCCEEDED(hr)) {
        Bstr path(Widen(file, CP_UTF8));
        hr = parser->Initialize(path.get(), nullptr, 0, 0, 0, host.get(), sink.get());
        if (SUCCEEDED(hr))
            hr = parser->raw_Parse(0);
    }
    host->FinishBar();
    std::string failure = FAILED(hr) ? ErrorText(hr) : std::string();

    // What was received is written even when the conversion failed.
    std::string_view rendered = log->Rendered();
    if (out.empty()) {
        std::fwrite(rendered.data(), 1, rendered.size(), stdout);
        std::fflush(stdout);
    } else if (auto error = files::ReplaceFileContent(
                   out,
                   Bytes(reinterpret_cast<const std::uint8_t*>(rendered.data()), rendered.size()),
                   0644)) {
        throw CommandFailure(out, "cannot write");
    }
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
        "still written, and the exit status is 1; a wrong command line gives 2.");
    command->add_flag("--events", options->events,
                      "write every event the host receives, one JSON object a line");
    command->add_flag_callback(
        "--document", [options] { options->events = false; },
        "write the tagged document, UTF-8 (the default)");
    command
        ->add_option("-o", options->out, "write to OUT, replaced whole, instead of standard output")
        ->type_name("OUT");
    command->add_option("--trace", options->trace, "append the conversion's progress texts to FILE")
        ->type_name("FILE");
    command->add_option("FILE", options->file, "the PE file")->required()->type_name("");
}

} // namespace tervane::app
