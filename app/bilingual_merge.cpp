#include "app/bilingual_merge.h"

#include <algorithm>
#include <cstdio>
#include <regex>

#include "app/bilingual_file.h"
#include "app/document_verification.h"
#include "app/event_recorder.h"
#include "app/failure.h"
#include "app/forward_run.h"
#include "platform/locale/utf8.h"

namespace tervane::app {

namespace {

// So many warnings are shown one by one; the rest are counted.
constexpr std::size_t kWarningsShown = 10;

void ReportWarnings(const char* command, const std::string& document,
                    const std::vector<xliff::Notice>& warnings) {
    for (std::size_t i = 0; i < warnings.size() && i < kWarningsShown; ++i) {
        const xliff::Notice& notice = warnings[i];
        std::string where = document;
        if (notice.line > 0)
            where += ":" + std::to_string(notice.line);
        std::fprintf(stderr, "tervane %s: warning: %s: unit %s: %s\n", command, where.c_str(),
                     notice.unitId.c_str(), notice.text.c_str());
    }
    if (warnings.size() > kWarningsShown)
        std::fprintf(stderr, "tervane %s: warning: %zu more units as above\n", command,
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

// A document that verification finds broken is not merged: the same
// findings as `tervane verify`, the first of them named.
void RefuseVerificationErrors(const std::string& documentPath, const std::string& source) {
    const std::vector<Finding> errors = TranslatorErrors(VerifyDocument(documentPath, source));
    if (errors.empty())
        return;
    const Finding& first = errors.front();
    std::string message;
    locale::AppendUtf8(message, first.message);
    throw CommandFailure(documentPath + ":" + std::to_string(first.range.start.first) + ":" +
                             std::to_string(std::max<LONG>(first.range.start.second, 1)),
                         "verification error [" + std::to_string(first.code) + "] " + message,
                         std::to_string(errors.size()) +
                             " verification errors: tervane verify shows them all");
}

} // namespace

void WriteEventLines(const xliff::EventList& events, OutputFile& output) {
    EventOutput log(true);
    log.StartOfInput(true);
    for (const xliff::Event& event : events) {
        if (event.IsTag())
            log.Tag(event.text, event.name, event.start, event.end, event.inlineMark);
        else
            log.Text(event.text);
    }
    log.EndOfInput();
    output.Write(log.Rendered());
    output.Commit();
}

std::string LocateMessage(const xliff::Document& document, const std::string& documentPath,
                          const std::string& message) {
    // "(dialog resource  id = 102\ncontrol 'edit' id = '60')", "(dialog id = 100,control
    // name = 'button' & id = 50)", "(menu resource id = 1\n..."
    static const std::regex kResource(R"((dialog|menu)(?: resource)?\s+id = ([^\n),]*))");
    static const std::regex kPart(R"(id = '([^']*)')");
    std::smatch resource;
    if (!std::regex_search(message, resource, kResource))
        return {};
    std::string group = (resource[1] == "dialog" ? "dlg." : "mnu.") + resource[2].str();
    std::string unit;
    std::smatch part;
    std::string rest = resource.suffix();
    if (std::regex_search(rest, part, kPart))
        unit = group + (resource[1] == "dialog" ? ".c" : ".i") + part[1].str();
    std::string where;
    for (const xliff::Group& candidate : document.groups) {
        for (const xliff::Unit& each : candidate.units) {
            if (!unit.empty() && each.id == unit)
                return documentPath + ":" + std::to_string(each.line) + ": unit " + unit;
        }
        if (candidate.id == group && where.empty())
            where = documentPath + ":" + std::to_string(candidate.line) + ": group " + group;
    }
    return where;
}

DocumentMerge PrepareDocumentMerge(const std::string& documentPath,
                                   const std::string& sourceOverride, bool verify,
                                   const char* command) {
    DocumentMerge merge;
    merge.document = LoadDocument(documentPath);
    merge.source = !sourceOverride.empty()
                       ? sourceOverride
                       : SourceFromOriginal(merge.document.original, documentPath);
    CheckSource(merge.document, documentPath, merge.source, ReadSourceFacts(merge.source));
    xliff::EventList events = ExtractEvents(merge.source);
    xliff::Merged merged;
    try {
        merged = xliff::ApplyDocument(events, merge.document);
    } catch (const xliff::DocumentError& error) {
        throw DocumentFailure(documentPath, error);
    }
    if (command != nullptr)
        ReportWarnings(command, documentPath, merged.warnings);
    if (verify)
        RefuseVerificationErrors(documentPath, merge.source);
    merge.events = std::move(merged.events);
    return merge;
}

std::vector<ReplayEvent> ReplayEventsOf(const xliff::EventList& events) {
    std::vector<ReplayEvent> replay;
    replay.reserve(events.size() + 2);
    replay.push_back({ReplayEvent::kStartOfInput, {}, {}, 0, 0, 0});
    for (const xliff::Event& event : events)
        replay.push_back({event.IsTag() ? ReplayEvent::kTag : ReplayEvent::kText, event.text,
                          event.name, event.start, event.end, event.inlineMark});
    replay.push_back({ReplayEvent::kEndOfInput, {}, {}, 0, 0, 0});
    return replay;
}

} // namespace tervane::app
