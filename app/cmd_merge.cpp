// tervane merge --events EVENTS.jsonl --source SRC --lang L -o OUT: the host
// side of the backward conversion. Replays the events into the writer over
// several raw_Write calls, as a framework drives it, and reports the run's
// messages.
#include <cerrno>
#include <cstdio>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "app/commands.h"
#include "app/components.h"
#include "app/failure.h"
#include "app/input_file.h"
#include "app/items.h"
#include "app/json_lines.h"
#include "app/language_tags.h"
#include "app/output_file.h"
#include "app/replay_host.h"
#include "backward/tervane_writer.h"
#include "frame/conversion_state.h"
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
    bool json = false;
    std::string events, source, language, out, trace;
};

// Events a pump delivers at most: a host hands its document over in parts.
constexpr std::size_t kEventsPerPump = 4096;

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

int RunMerge(const MergeOptions& options) {
    const std::string& source = options.source;
    const std::optional<LANGID> target = ParseLanguage(options.language);
    CheckInputFile(options.events, kMaxDataFileBytes);
    CheckInputFile(source, kMaxPeFileBytes);
    OutputFile out(options.out, {options.events, source});
    if (out.IsStandardOutput())
        throw CommandFailure(options.out, "a translated executable is no text: name a file");
    if (!options.trace.empty()) {
        CheckOutputPath(options.trace, {options.events, source, options.out});
        if (!AttachTraceFile(options.trace))
            throw CommandFailure(options.trace, "cannot write the trace file");
    }
    auto content = files::ReadFileBytes(options.events);
    if (!content)
        throw CommandFailure(options.events, SystemText(content.error().code, options.events));
    std::string readError;
    std::vector<ReplayEvent> events = ReadReplayEvents(
        std::string_view(reinterpret_cast<const char*>(content->data()), content->size()),
        readError);
    if (!readError.empty())
        throw CommandFailure(options.events, readError);

    RegisterItemClasses();
    ComPtr<ComObject<ReplayHost>> host;
    ComObject<ReplayHost>::Create(host.Receive());
    ComPtr<IFileWriter> writer;
    // In process: the messages are read from g_messages, which the loaded
    // module's writer would fill in its own copy.
    RegisterTervaneWriterClass();
    HRESULT hr = CreateComponent(CLSID_TervaneWriter, IFileWriter::iid, writer.ReceiveVoid());
    // The writer moves its work file onto the output's temporary file, which
    // takes the target's place only when everything went well.
    const std::string& work = out.WorkPath();
    const std::string written = FinalTarget(work, source);
    if (SUCCEEDED(hr)) {
        Bstr path(Widen(work, CP_UTF8));
        ComPtr<IEvents> sink;
        hr = writer->Initialize(path.get(), nullptr, *target, 0, 0, host.get(), sink.Receive());
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
    const std::string failure = FAILED(hr) ? ErrorText(hr) : std::string();

    for (const std::u16string& message : g_messages) {
        const std::string text = Narrow(message, CP_UTF8);
        if (Severity(text) != "Error")
            PrintMessage(options.json, source, text);
    }
    std::fflush(stdout);
    if (FAILED(hr)) {
        if (options.json)
            PrintMessage(true, source, failure);
        std::fflush(stdout);
        throw CommandFailure(source, failure, LogHint());
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
    CLI::App* command = AddCommand(
        app, "merge", "Write a translated copy of a PE file from the events of its document",
        [options] { return RunMerge(*options); });
    command->footer(
        "Replays EVENTS (as 'extract --events' writes them, texts edited or not) into the\n"
        "backward converter, which checks their tags against SRC, puts their texts into a\n"
        "copy of SRC with every localisable resource under the language L, and moves that\n"
        "copy onto OUT at the very end.\n\n"
        "Alerts and Warnings go to standard error, one a line, behind the file's name; the\n"
        "file is written all the same. An Error names the resource, leaves OUT as it was and\n"
        "gives the exit status 1; a wrong command line gives 2.");
    command->add_option("--events", options->events, "the events, one JSON object a line")
        ->required()
        ->type_name("EVENTS");
    command->add_option("--source", options->source, "the executable the events came from")
        ->required()
        ->type_name("SRC");
    command->add_option("--lang", options->language, "the target language: 1031, 0x407 or de-DE")
        ->required()
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
    command->add_option("-o", options->out, "the translated file")->required()->type_name("OUT");
    command->add_flag("--json", options->json,
                      "print the messages as JSON Lines on standard output");
    command->add_option("--trace", options->trace, "append the conversion's progress texts to FILE")
        ->type_name("FILE");
}

} // namespace tervane::app
