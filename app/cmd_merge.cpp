// tervane merge --events EVENTS.jsonl --source SRC --lang L -o OUT, or
// tervane merge DOC.xlf -o OUT [--lang L] [--source SRC] [--dry-run]: the host
// side of the backward conversion. Asks the scanner about the source, replays the
// events (of the file, or of the source with the bilingual document's
// translations) into the writer over several raw_Write calls, as a framework
// drives it, and reports the run's messages. --no-scan skips the scanner.
#include <cerrno>
#include <cstdio>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "app/bilingual_file.h"
#include "app/bilingual_merge.h"
#include "app/commands.h"
#include "app/components.h"
#include "app/failure.h"
#include "app/input_file.h"
#include "app/items.h"
#include "app/json_lines.h"
#include "app/language_tags.h"
#include "app/output_file.h"
#include "app/replay_host.h"
#include "app/scan_host.h"
#include "frame/component_ids.h"
#include "frame/conversion_state.h"
#include "host/filter_components.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_ptr.h"
#include "platform/com/error_info.h"
#include "platform/diag/event_log.h"
#include "platform/diag/trace_sink.h"
#include "platform/files/file_bytes.h"
#include "platform/locale/code_pages.h"

namespace tervane::app {

namespace {

struct MergeOptions {
    bool json = false, dryRun = false, noScan = false;
    std::string document, events, source, language, out, trace;
};

// Events a pump delivers at most: a host hands its document over in parts.
constexpr std::size_t kEventsPerPump = 4096;

// The word a message begins with: Error, Alert or Warning.
std::string Severity(const std::string& message) {
    for (const char* word : {"Error", "Alert", "Warning"})
        if (message.rfind(word, 0) == 0)
            return word;
    return "Error";
}

// One line: the line ends inside a message become blanks.
std::string OneLine(std::string text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    for (char& c : text)
        if (c == '\n' || c == '\r')
            c = ' ';
    return text;
}

void PrintMessage(bool json, const std::string& file, const std::string& message) {
    if (json) {
        JsonLine line;
        line.Text("file", std::string_view(file));
        line.Text("severity", std::string_view(Severity(message)));
        line.Text("message", std::string_view(message));
        const std::string_view text = line.Finish();
        std::fwrite(text.data(), 1, text.size(), stdout);
    } else {
        std::fprintf(stderr, "%s: %s\n", file.c_str(), OneLine(message).c_str());
    }
}

std::string LogHint() {
    const std::string logPath = EventLogPath();
    return logPath.empty() ? "" : "The system's messages are in " + logPath;
}

// The name the writer gives its target: the source's extension is appended
// unless the target ends in it.
std::string FinalTarget(const std::string& target, const std::string& source) {
    const std::size_t slash = source.rfind('/');
    const std::size_t dot = source.rfind('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        return target;
    const std::string extension = source.substr(dot);
    if (target.size() >= 4 && target.find(extension) == target.size() - 4)
        return target;
    return target + extension;
}

// locate: where a message points in the bilingual document, if there is one.
using Locator = std::function<std::string(const std::string& message)>;

int Replay(std::vector<ReplayEvent> events, const MergeOptions& options, const std::string& source,
           LANGID target, OutputFile& out, const Locator& locate = {});

void AttachTrace(const MergeOptions& options, const std::vector<std::string>& inputs) {
    if (options.trace.empty())
        return;
    CheckOutputPath(options.trace, inputs);
    if (!AttachTraceFile(options.trace))
        throw CommandFailure(options.trace, "cannot write the trace file");
}

// The source's events with the document's translations, into the writer; the
// target language is the document's unless --lang names one.
int MergeDocument(const MergeOptions& options) {
    CheckInputFile(options.document, kMaxDataFileBytes);
    if (!options.source.empty())
        CheckInputFile(options.source, kMaxPeFileBytes);
    OutputFile out(options.out, {options.document, options.source});
    AttachTrace(options, {options.document, options.source, options.out});
    if (options.dryRun) {
        WriteEventLines(PrepareDocumentMerge(options.document, options.source, false).events, out);
        return 0;
    }
    if (out.IsStandardOutput())
        throw CommandFailure(options.out, "a translated executable is no text: name a file");
    DocumentMerge merge = PrepareDocumentMerge(options.document, options.source);
    if (!options.noScan)
        RequireScannerAccepts(merge.source);
    std::string language =
        !options.language.empty() ? options.language : merge.document.targetLanguage;
    if (language.empty())
        throw CommandFailure(options.document,
                             "the document names no target language: give one with --lang");
    std::optional<LANGID> target = ParseLanguage(language);
    if (!target)
        throw CommandFailure(options.document, "'" + language + "' is no language");
    const std::string& path = options.document;
    return Replay(
        ReplayEventsOf(merge.events), options, merge.source, *target, out,
        [&](const std::string& message) { return LocateMessage(merge.document, path, message); });
}

int RunMerge(const MergeOptions& options) {
    if (options.document.empty() == options.events.empty())
        throw CommandFailure({}, "give either a bilingual document or --events, not both");
    if (!options.document.empty())
        return MergeDocument(options);
    for (auto [value, name] :
         {std::pair{&options.source, "--source"}, std::pair{&options.language, "--lang"},
          std::pair{&options.out, "-o"}})
        if (value->empty())
            throw CommandFailure({}, std::string("merge --events needs ") + name);
    if (options.dryRun)
        throw CommandFailure({}, "--dry-run goes with a bilingual document");
    const std::string& source = options.source;
    const std::optional<LANGID> target = ParseLanguage(options.language);
    CheckInputFile(options.events, kMaxDataFileBytes);
    CheckInputFile(source, kMaxPeFileBytes);
    OutputFile out(options.out, {options.events, source});
    if (out.IsStandardOutput())
        throw CommandFailure(options.out, "a translated executable is no text: name a file");
    AttachTrace(options, {options.events, source, options.out});
    if (!options.noScan)
        RequireScannerAccepts(source);
    std::string readError;
    std::vector<ReplayEvent> events;
    {
        // The file's bytes go as soon as its events are read.
        auto content = files::ReadFileBytes(options.events);
        if (!content)
            throw CommandFailure(options.events, SystemText(content.error().code, options.events));
        events = ReadReplayEvents(
            std::string_view(reinterpret_cast<const char*>(content->data()), content->size()),
            readError);
    }
    if (!readError.empty())
        throw CommandFailure(options.events, readError);
    return Replay(std::move(events), options, source, *target, out);
}

int Replay(std::vector<ReplayEvent> events, const MergeOptions& options, const std::string& source,
           LANGID target, OutputFile& out, const Locator& locate) {
    auto located = [&](const std::string& message) {
        std::string where = locate ? locate(message) : std::string();
        return where.empty() ? message : OneLine(message) + " [" + where + "]";
    };
    RegisterItemClasses();
    ComPtr<ComObject<ReplayHost>> host;
    ComObject<ReplayHost>::Create(host.Receive());
    ComPtr<IFileWriter> writer;
    HRESULT hr = CreateComponent(CLSID_TervaneWriter, IFileWriter::iid, writer.ReceiveVoid());
    // The writer moves its work file onto the output's temporary file, which
    // takes the target's place only when everything went well.
    const std::string& work = out.WorkPath();
    const std::string written = FinalTarget(work, source);
    if (SUCCEEDED(hr)) {
        Bstr path(Widen(work, CP_UTF8));
        ComPtr<IEvents> sink;
        hr = writer->Initialize(path.get(), nullptr, target, 0, 0, host.get(), sink.Receive());
        if (SUCCEEDED(hr))
            host->Attach(std::move(events), Widen(source, CP_UTF8), sink.get(), kEventsPerPump,
                         ::isatty(STDERR_FILENO) != 0);
    }
    // Every pump delivers a part; the call after the one that delivered the
    // end of the input runs the conversion.
    while (SUCCEEDED(hr) && !host->AllDelivered())
        hr = writer->raw_Write(0);
    if (SUCCEEDED(hr))
        hr = writer->raw_Write(0);
    if (SUCCEEDED(hr) && host->SinkFailure() != S_OK)
        hr = host->SinkFailure();
    host->FinishBar();
    host->Detach();
    const std::string failure = FAILED(hr) ? ComponentErrorText(hr, "conversion") : std::string();

    // The writer hands Alerts and Warnings to no one; g_messages is
    // process-wide, one copy shared with the loaded module, and keeps them.
    for (const std::u16string& message : g_messages) {
        const std::string text = Narrow(message, CP_UTF8);
        if (Severity(text) != "Error")
            PrintMessage(options.json, source, located(text));
    }
    std::fflush(stdout);
    if (FAILED(hr)) {
        if (options.json)
            PrintMessage(true, source, located(failure));
        std::fflush(stdout);
        throw CommandFailure(source, located(failure), LogHint());
    }
    struct stat info {};
    if (::stat(written.c_str(), &info) != 0)
        throw CommandFailure(source,
                             "nothing was written: the source lists no resource, or a file call "
                             "failed",
                             LogHint());
    if (written != work && std::rename(written.c_str(), work.c_str()) != 0) {
        std::remove(written.c_str());
        throw CommandFailure(options.out, SystemText(files::Win32ErrorFromErrno(errno), work));
    }
    out.Commit();
    return 0;
}

} // namespace

void AddMergeCommand(CLI::App& app) {
    auto options = std::make_shared<MergeOptions>();
    CLI::App* command =
        AddCommand(app, "merge",
                   "Write a translated copy of a PE file from its bilingual document or its events",
                   [options] { return RunMerge(*options); });
    command->footer(
        "From a bilingual document (XLIFF 1.2, as extract writes it): reads the source\n"
        "file again (the document's original, from the document's folder, or SRC), checks\n"
        "its SHA-256 against the document's header and each unit's source against the\n"
        "file's, takes each non-empty target (a unit without one keeps its source, with a\n"
        "warning), turns <ph> back into their codes, and replays the result as below, in\n"
        "the document's target language unless --lang names one. A unit the file lacks, a\n"
        "stale source or a target whose <ph> differ from the source's is an error with the\n"
        "unit's id and line, exit status 1 and no output. --dry-run writes the events\n"
        "instead, as 'extract --events' does.\n\n"
        "Replays EVENTS (as 'extract --events' writes them, texts edited or not) into the\n"
        "backward converter, which checks their tags against SRC, puts their texts into a\n"
        "copy of SRC with every localisable resource under the language L, and moves that\n"
        "copy onto OUT at the very end.\n\n"
        "First the scanner is asked, as a host asks it, whether SRC can be handled (see\n"
        "'tervane scan --help'; it tries a copy beside SRC, so SRC's folder must be\n"
        "writable). A refused SRC is not converted: the scanner's reason goes to standard\n"
        "error, OUT is left as it was and the exit status is 1.\n\n"
        "Alerts and Warnings go to standard error, one a line, behind the file's name; the\n"
        "file is written all the same. An Error names the resource, leaves OUT as it was and\n"
        "gives the exit status 1; a wrong command line gives 2.");
    command->add_option("--events", options->events, "the events, one JSON object a line")
        ->type_name("EVENTS");
    command->add_option("--source", options->source, "the executable the events came from")
        ->type_name("SRC");
    command->add_option("--lang", options->language, "the target language: 1031, 0x407 or de-DE")
        ->type_name("L")
        ->check(CLI::Validator(
            [](const std::string& value) {
                return ParseLanguage(value) ? std::string()
                                            : "'" + value +
                                                  "' is no language: give a number "
                                                  "(1031, 0x407) or a language tag "
                                                  "(de-DE)";
            },
            "L"));
    command->add_option("-o", options->out, "the translated file (with --dry-run: the events)")
        ->type_name("OUT");
    command->add_flag("--dry-run", options->dryRun,
                      "check the document and write the events a merge replays, one JSON object "
                      "a line, instead of the translated file");
    command->add_flag("--json", options->json,
                      "print the messages as JSON Lines on standard output");
    command->add_flag("--no-scan", options->noScan,
                      "convert SRC without asking the scanner first, whatever it would say");
    command->add_option("--trace", options->trace, "append the conversion's progress texts to FILE")
        ->type_name("FILE");
    command->add_option("FILE", options->document, "the bilingual document (XLIFF 1.2)")
        ->type_name("");
}

} // namespace tervane::app
