// tervane extract [--events | --document | --xliff] [--filter] [--no-scan] [-o OUT]
// [--trace FILE] FILE: drives the forward converter as a host framework does (the
// scanner first, then Initialize and raw_Parse) and writes what the host received,
// or the bilingual document. With --filter the converter feeds the filter stage,
// wired and run as a framework runs a chain.
#include <cstdio>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "app/bilingual_file.h"
#include "app/commands.h"
#include "app/components.h"
#include "app/event_recorder.h"
#include "app/failure.h"
#include "app/forward_run.h"
#include "app/input_file.h"
#include "app/output_file.h"
#include "app/scan_host.h"
#include "app/xliff/bilingual.h"
#include "app/xliff/pseudo.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_ptr.h"
#include "platform/diag/event_log.h"
#include "platform/diag/trace_sink.h"
#include "stream/interactive_parser.h"

namespace tervane::app {

namespace {

struct ExtractOptions {
    bool events = false, filter = false, noScan = false, xliff = false, pseudo = false,
         copySource = false;
    int expand = 40;
    std::string out, trace, file, sourceLanguage, targetLanguage;
};

bool WantsXliff(const ExtractOptions& options) {
    auto endsWith = [&](std::string_view tail) {
        return options.out.size() >= tail.size() &&
               options.out.compare(options.out.size() - tail.size(), tail.size(), tail) == 0;
    };
    return options.xliff || options.pseudo || options.copySource || endsWith(".xlf") ||
           endsWith(".xliff");
}

// The bilingual document: the units of the forward conversion's events, the
// source file's facts in the header, and with --pseudo a pseudo target each.
int RunExtractXliff(const ExtractOptions& options, OutputFile& output) {
    SourceFacts facts = ReadSourceFacts(options.file);
    xliff::EventList events = ExtractEvents(options.file);
    xliff::Document document;
    try {
        document = xliff::MakeDocument(events);
    } catch (const xliff::DocumentError& error) {
        throw DocumentFailure(options.file, error);
    }
    document.original = OriginalFor(options.file, options.out);
    document.sha256 = facts.sha256;
    document.size = facts.size;
    document.sourceLanguage = !options.sourceLanguage.empty()
                                  ? LanguageTagOption(options.sourceLanguage, "--source-lang")
                                  : (facts.language.empty() ? "en-US" : facts.language);
    if (!options.targetLanguage.empty())
        document.targetLanguage = LanguageTagOption(options.targetLanguage, "--target-lang");
    if (options.copySource)
        xliff::CopySourceToTarget(document);
    if (options.pseudo)
        xliff::PseudoLocalise(document, options.expand);
    SaveDocument(document, output);
    return 0;
}

// The chain parser -> filter stage -> sink, wired from its end: the filter
// returns its IEvents, which becomes the parser's sink. The host runs the
// filter, whose pump makes the host run the parser.
HRESULT RunChain(const std::string& file, ComObject<ProgressHost>* host, IEvents* sink,
                 std::string* failure) {
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
            parsed = RunForwardConversion(file, filterEvents.get(), host, failure);
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
    if (!options.noScan)
        RequireScannerAccepts(file);
    if (WantsXliff(options))
        return RunExtractXliff(options, output);

    auto log = std::make_shared<EventOutput>(options.events);
    ComPtr<ComObject<RecordingSink>> sink;
    ComPtr<ComObject<ProgressHost>> host;
    ComObject<RecordingSink>::Create(sink.Receive());
    ComObject<ProgressHost>::Create(host.Receive());
    sink->Attach(log);
    host->Attach(log, ::isatty(STDERR_FILENO) != 0);

    std::string failure;
    HRESULT hr = options.filter ? RunChain(file, host.get(), sink.get(), &failure)
                                : RunForwardConversion(file, sink.get(), host.get(), &failure);
    host->FinishBar();

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
        "An OUT ending in .xlf or .xliff, --xliff or --pseudo write the bilingual document:\n"
        "XLIFF 1.2, one unit per translatable text in a group per resource, what must not\n"
        "change in <ph>. Its source language is that of the resources (en-US for a neutral\n"
        "one) unless --source-lang says otherwise.\n\n"
        "First the scanner is asked, as a host asks it, whether FILE can be handled: it\n"
        "refuses resources in more than one code page, a resource identifier twice,\n"
        "resources that can't be read, and a file whose size changes when one of its\n"
        "resources is rewritten, tried on a copy beside FILE (NAME_Sniffer.exe, removed\n"
        "again; FILE's folder must be writable). A refused file is not converted: the\n"
        "scanner's reason goes to standard error and the exit status is 1.\n\n"
        "On a failure the error goes to standard error, what was received until then is\n"
        "still written to standard output (but no bilingual document), a file named by -o\n"
        "is left as it was, and the exit status is 1; a wrong command line gives 2.");
    command->add_flag("--events", options->events,
                      "write every event the host receives, one JSON object a line");
    command->add_flag("--filter", options->filter,
                      "pass the events through the filter stage, which reduces each tag's name "
                      "to its keyword and cuts inline tags into single placeholders");
    command->add_flag("--no-scan", options->noScan,
                      "convert FILE without asking the scanner first, whatever it would say");
    command->add_flag_callback(
        "--document", [options] { options->events = false; },
        "write the tagged document, UTF-8 (the default)");
    command->add_flag("--xliff", options->xliff,
                      "write the bilingual document, XLIFF 1.2 (also chosen by OUT's extension)");
    command->add_flag("--copy-source", options->copySource,
                      "each target a copy of its source (state needs-translation), for tools that "
                      "translate the target in place, as OmegaT does");
    command->add_flag("--pseudo", options->pseudo,
                      "the bilingual document with a pseudo-localised target in every unit");
    command->add_option("--expand", options->expand, "with --pseudo: growth in percent (40)")
        ->type_name("PERCENT")
        ->check(CLI::Range(0, 1000));
    command
        ->add_option("--target-lang", options->targetLanguage,
                     "the bilingual document's target language: de-DE, 0x407 or 1031")
        ->type_name("LANG");
    command
        ->add_option("--source-lang", options->sourceLanguage,
                     "the bilingual document's source language, if not the resources'")
        ->type_name("LANG");
    command
        ->add_option("-o", options->out,
                     "write to OUT, replaced only by a whole result; - is standard output")
        ->type_name("OUT");
    command->add_option("--trace", options->trace, "append the conversion's progress texts to FILE")
        ->type_name("FILE");
    command->add_option("FILE", options->file, "the PE file")->required()->type_name("");
}

} // namespace tervane::app
