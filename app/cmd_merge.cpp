// tervane merge DOC.xlf --dry-run [-o OUT] [--source FILE]: checks a bilingual
// document against its source file and writes the events a merge replays.
// The source's extraction is the skeleton: its events outside the units stay
// as they are, and each unit's content comes from the document.
#include <cstdio>
#include <memory>
#include <string>

#include "app/bilingual_file.h"
#include "app/commands.h"
#include "app/event_recorder.h"
#include "app/failure.h"
#include "app/forward_run.h"
#include "app/xliff/bilingual.h"
#include "platform/files/file_replace.h"

namespace tervane::app {

namespace {

struct MergeOptions {
    std::string file, out, source;
    bool dryRun = false;
};

// So many warnings are shown one by one; the rest are counted.
constexpr std::size_t kWarningsShown = 10;

void ReportWarnings(const std::string& document, const std::vector<xliff::Notice>& warnings) {
    for (std::size_t i = 0; i < warnings.size() && i < kWarningsShown; ++i) {
        const xliff::Notice& notice = warnings[i];
        std::string where = document;
        if (notice.line > 0)
            where += ":" + std::to_string(notice.line);
        std::fprintf(stderr, "tervane merge: warning: %s: unit %s: %s\n", where.c_str(),
                     notice.unitId.c_str(), notice.text.c_str());
    }
    if (warnings.size() > kWarningsShown)
        std::fprintf(stderr, "tervane merge: warning: %zu more units as above\n",
                     warnings.size() - kWarningsShown);
}

// A document made from another file (or another version of it) cannot fit.
void CheckSource(const xliff::Document& document, const std::string& file,
                 const std::string& source, const SourceFacts& facts) {
    std::string where = file + (document.line ? ":" + std::to_string(document.line) : "");
    if (document.sha256.empty())
        throw CommandFailure(where, "the document does not record its source file's SHA-256");
    if (document.sha256 != facts.sha256 || (document.size && document.size != facts.size))
        throw CommandFailure(where, "the document was made from another file than " + source +
                                        " (SHA-256 " + document.sha256 + ", the file's is " +
                                        facts.sha256 + ")");
}

void WriteEvents(const xliff::EventList& events, const std::string& out) {
    EventOutput log(true);
    log.StartOfInput(true);
    for (const xliff::Event& event : events) {
        if (event.IsTag())
            log.Tag(event.text, event.name, event.start, event.end, event.inlineMark);
        else
            log.Text(event.text);
    }
    log.EndOfInput();
    std::string_view rendered = log.Rendered();
    if (out.empty()) {
        std::fwrite(rendered.data(), 1, rendered.size(), stdout);
        if (std::fflush(stdout) != 0)
            throw CommandFailure("standard output", "cannot write");
    } else if (files::ReplaceFileContent(
                   out,
                   Bytes(reinterpret_cast<const std::uint8_t*>(rendered.data()), rendered.size()),
                   0644)) {
        throw CommandFailure(out, "cannot write");
    }
}

int RunMerge(const MergeOptions& options) {
    if (!options.dryRun)
        throw CommandFailure(options.file,
                             "this build has no backward conversion yet: use --dry-run to check "
                             "the document and write the events a merge replays");
    xliff::Document document = LoadDocument(options.file);
    std::string source = !options.source.empty()
                             ? options.source
                             : SourceFromOriginal(document.original, options.file);
    CheckSource(document, options.file, source, ReadSourceFacts(source));
    xliff::EventList events = ExtractEvents(source);
    xliff::Merged merged;
    try {
        merged = xliff::ApplyDocument(events, document);
    } catch (const xliff::DocumentError& error) {
        throw DocumentFailure(options.file, error);
    }
    ReportWarnings(options.file, merged.warnings);
    WriteEvents(merged.events, options.out);
    return 0;
}

} // namespace

void AddMergeCommand(CLI::App& app) {
    auto options = std::make_shared<MergeOptions>();
    CLI::App* command = AddCommand(app, "merge",
                                   "Turn a translated bilingual document back into the events of "
                                   "its source file",
                                   [options] { return RunMerge(*options); });
    command->footer(
        "Reads the source file again (the document's original, from the document's folder,\n"
        "or --source), checks its SHA-256 against the document's header, and matches each\n"
        "unit by id with the source's segment: a unit the source lacks, a source text that\n"
        "is no longer the file's, or a target whose <ph> differ from the source's is an\n"
        "error with the unit's id and line, exit status 1 and no output. A unit without a\n"
        "target keeps its source, with a warning.");
    command->add_flag("--dry-run", options->dryRun,
                      "write the events a merge replays, one JSON object a line, as extract "
                      "--events does");
    command->add_option("--source", options->source, "the source file, if not the original")
        ->type_name("FILE");
    command
        ->add_option("-o", options->out, "write to OUT, replaced whole, instead of standard output")
        ->type_name("OUT");
    command->add_option("FILE", options->file, "the bilingual document (XLIFF 1.2)")
        ->required()
        ->type_name("");
}

} // namespace tervane::app
