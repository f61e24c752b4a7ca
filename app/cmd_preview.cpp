// tervane preview: the host side of a preview. From a bilingual document
// (DOC --unit ID or --resource KIND:ID) or from events (--events), the
// document is replayed into the preview writer with the cursor at that place,
// as an editor does; the writer writes the translated copy and starts the
// previewer on it, and -o draws the same resource into a picture too.
// --all draws every dialog and menu of a document, source and translation,
// into a folder with an index page.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <unistd.h>

#include "app/bilingual_file.h"
#include "app/bilingual_merge.h"
#include "app/commands.h"
#include "app/components.h"
#include "app/failure.h"
#include "app/fit_report.h"
#include "app/input_file.h"
#include "app/language_tags.h"
#include "app/output_file.h"
#include "app/output_folder.h"
#include "app/preview_host.h"
#include "app/preview_index.h"
#include "app/xliff/units.h"
#include "frame/component_ids.h"
#include "platform/files/file_bytes.h"

namespace tervane::app {

namespace {

namespace fs = std::filesystem;

struct PreviewOptions {
    std::string document, unit;
    bool all = false;
    std::string events, source, language, resource, out, keep;
    std::string side = "d";
    bool dual = false;
    long cursor = -1;
};

// What -o asks for: a picture whose kind its name tells.
PictureFormat FormatOf(const std::string& out) {
    const std::string extension = fs::path(out).extension().string();
    if (extension == ".png")
        return PictureFormat::Png;
    if (extension == ".svg")
        return PictureFormat::Svg;
    throw CommandFailure(out, "name a .png or an .svg file for the picture");
}

// The writer's target: a file of this preview's own, with the source's
// extension, that stays for the previewer to show.
std::string PreviewTarget(const PreviewOptions& options, const std::string& source) {
    if (!options.keep.empty())
        return options.keep;
    char folder[] = "/tmp/tervane-preview-XXXXXX";
    if (::mkdtemp(folder) == nullptr)
        throw CommandFailure("/tmp", "cannot make a folder for the preview");
    return std::string(folder) + "/" + fs::path(source).filename().string();
}

// Runs the writer as a host does, then draws kind:id of what it wrote into
// -o, the fit report on standard output.
int Preview(const PreviewOptions& options, std::vector<ReplayEvent> events,
            const std::string& source, LANGID language, std::size_t cursor, const std::string& kind,
            const std::string& id, const std::vector<std::string>& inputs) {
    std::optional<OutputFile> out;
    if (!options.out.empty()) {
        FormatOf(options.out);
        out.emplace(options.out, inputs);
    }
    const std::string target = PreviewTarget(options, source);
    try {
        RunPreviewWriter({std::move(events), source, language, cursor, target, options.side == "s",
                          options.dual, nullptr});
    } catch (const CommandFailure&) {
        // The folder made for a refused preview stays empty: it goes.
        if (options.keep.empty())
            fs::remove_all(fs::path(target).parent_path());
        throw;
    }
    if (!out)
        return 0;
    // The writer refuses a cursor outside a dialog or a menu; past it, only
    // a cursor given by number leaves the resource unnamed.
    if (kind.empty())
        throw CommandFailure(options.out, "-o needs the resource: --resource KIND:ID");
    const std::string report = DrawResource(target, kind, id, options.side == "s" ? "s" : "d",
                                            out->WorkPath(), FormatOf(options.out));
    std::fwrite(report.data(), 1, report.size(), stdout);
    std::fflush(stdout);
    out->Commit();
    return 0;
}

int PreviewEvents(const PreviewOptions& options) {
    for (auto [value, name] :
         {std::pair{&options.source, "--source"}, std::pair{&options.language, "--lang"}})
        if (value->empty())
            throw CommandFailure({}, std::string("preview --events needs ") + name);
    if (!options.unit.empty() || options.all)
        throw CommandFailure({}, "--unit and --all go with a bilingual document");
    if (options.resource.empty() && options.cursor < 0)
        throw CommandFailure({}, "give --resource KIND:ID or --cursor N");
    CheckInputFile(options.events, kMaxDataFileBytes);
    CheckInputFile(options.source, kMaxPeFileBytes);
    auto content = files::ReadFileBytes(options.events);
    if (!content)
        throw CommandFailure(options.events, SystemText(content.error().code, options.events));
    std::string readError;
    std::vector<ReplayEvent> events = ReadReplayEvents(
        std::string_view(reinterpret_cast<const char*>(content->data()), content->size()),
        readError);
    if (!readError.empty())
        throw CommandFailure(options.events, readError);
    const std::size_t cursor = options.cursor >= 0
                                   ? static_cast<std::size_t>(options.cursor)
                                   : ResourceCursor(events, options.resource, options.events);
    const std::size_t colon = options.resource.find(':');
    const std::string kind = colon == std::string::npos ? "" : options.resource.substr(0, colon);
    const std::string id = colon == std::string::npos ? "" : options.resource.substr(colon + 1);
    return Preview(options, std::move(events), options.source, *ParseLanguage(options.language),
                   cursor, kind, id, {options.events, options.source});
}

LANGID TargetLanguage(const PreviewOptions& options, const xliff::Document& document) {
    const std::string language =
        !options.language.empty() ? options.language : document.targetLanguage;
    if (language.empty())
        throw CommandFailure(options.document,
                             "the document names no target language: give one with --lang");
    const std::optional<LANGID> target = ParseLanguage(language);
    if (!target)
        throw CommandFailure(options.document, "'" + language + "' is no language");
    return *target;
}

// The unit's place in the merged events, and the dialog or menu it belongs to.
struct UnitCursor {
    std::size_t cursor = 0;
    std::string kind, id;
};

UnitCursor FindUnit(const DocumentMerge& merge, const std::string& document,
                    const std::string& unitId) {
    bool listed = false;
    for (const xliff::Group& group : merge.document.groups)
        for (const xliff::Unit& unit : group.units)
            listed = listed || unit.id == unitId;
    if (!listed)
        throw CommandFailure(document, "no unit " + unitId + " in the document");
    const xliff::Units units = xliff::FindUnits(merge.events);
    for (const xliff::UnitPlace& place : units.places) {
        if (place.id != unitId)
            continue;
        const xliff::ResourceGroup& group = units.groups[place.group];
        UnitCursor found;
        // Inside the unit's segment; the replay starts with the start of the input.
        found.cursor = place.begin + 1;
        if (group.restype == "dialog" || group.restype == "menu") {
            found.kind = group.restype;
            found.id = group.resname;
        }
        return found;
    }
    throw CommandFailure(document, "unit " + unitId + " is not in the source file");
}

int PreviewUnit(const PreviewOptions& options) {
    if (!options.unit.empty() == !options.resource.empty())
        throw CommandFailure(options.document, "give either --unit ID or --resource KIND:ID");
    if (options.cursor >= 0)
        throw CommandFailure({}, "--cursor goes with --events");
    if (!options.out.empty())
        FormatOf(options.out);
    CheckInputFile(options.document, kMaxDataFileBytes);
    if (!options.source.empty())
        CheckInputFile(options.source, kMaxPeFileBytes);
    DocumentMerge merge = PrepareDocumentMerge(options.document, options.source, false, nullptr);
    const LANGID language = TargetLanguage(options, merge.document);
    UnitCursor place;
    std::vector<ReplayEvent> events = ReplayEventsOf(merge.events);
    if (!options.unit.empty()) {
        place = FindUnit(merge, options.document, options.unit);
    } else {
        place.cursor = ResourceCursor(events, options.resource, options.document);
        const std::size_t colon = options.resource.find(':');
        place.kind = options.resource.substr(0, colon);
        place.id = options.resource.substr(colon + 1);
    }
    return Preview(options, std::move(events), merge.source, language, place.cursor, place.kind,
                   place.id, {options.document, merge.source});
}

// The writer of a batch starts no previewer and closes none: while it runs,
// the registry is one of the work folder's, where no previewer is registered.
class PrivateRegistry {
public:
    explicit PrivateRegistry(const fs::path& folder) {
        if (const char* before = std::getenv(kVariable))
            before_ = before;
        fs::create_directories(folder);
        ::setenv(kVariable, folder.c_str(), 1);
    }
    ~PrivateRegistry() {
        if (before_)
            ::setenv(kVariable, before_->c_str(), 1);
        else
            ::unsetenv(kVariable);
    }
    PrivateRegistry(const PrivateRegistry&) = delete;
    PrivateRegistry& operator=(const PrivateRegistry&) = delete;

private:
    static constexpr const char* kVariable = "TERVANE_REGISTRY_DIR";
    std::optional<std::string> before_;
};

// One side drawn into the folder; a resource the previewer can't draw is
// noted on the page, and the others are drawn all the same.
PreviewSide DrawSide(const fs::path& folder, const PreviewEntry& entry, const std::string& file,
                     const char* side, const std::string& picture) {
    PreviewSide drawn;
    try {
        const std::string report = DrawResource(file, entry.kind, entry.id, side,
                                                (folder / picture).string(), PictureFormat::Png);
        std::string error;
        std::optional<std::vector<Misfit>> misfits = ReadFitReport(report, error);
        if (!misfits)
            throw CommandFailure(entry.kind + ":" + entry.id, "the previewer's report: " + error);
        drawn.picture = picture;
        drawn.misfits = std::move(*misfits);
    } catch (const CommandFailure& failure) {
        drawn.failure = failure.what();
        std::fprintf(stderr, "tervane preview: warning: %s %s: %s\n", entry.kind.c_str(),
                     entry.id.c_str(), failure.what());
    }
    return drawn;
}

int PreviewAll(const PreviewOptions& options) {
    if (!options.unit.empty() || !options.resource.empty() || options.cursor >= 0 ||
        !options.keep.empty())
        throw CommandFailure({}, "--all draws every resource: no --unit, --resource, --cursor "
                                 "or --keep");
    if (options.out.empty())
        throw CommandFailure({}, "--all needs -o DIR, the folder to write");
    CheckInputFile(options.document, kMaxDataFileBytes);
    if (!options.source.empty())
        CheckInputFile(options.source, kMaxPeFileBytes);
    OutputFolder folder(options.out, IsPreviewFolder);
    DocumentMerge merge = PrepareDocumentMerge(options.document, options.source, false, nullptr);
    const LANGID language = TargetLanguage(options, merge.document);

    PreviewPage page;
    page.document = fs::path(options.document).filename().string();
    page.sourceFile = merge.source;
    page.sourceLanguage = merge.document.sourceLanguage;
    page.targetLanguage =
        !options.language.empty() ? options.language : merge.document.targetLanguage;
    std::set<std::string> names;
    for (const xliff::ResourceGroup& group : xliff::FindUnits(merge.events).groups) {
        if (group.restype != "dialog" && group.restype != "menu")
            continue;
        PreviewEntry entry{
            group.restype, group.resname, SafeName(group.restype, group.resname), {}, {}};
        for (int n = 2; !names.insert(entry.name).second; ++n)
            entry.name = SafeName(group.restype, group.resname) + "-" + std::to_string(n);
        page.entries.push_back(std::move(entry));
    }

    if (!page.entries.empty()) {
        const fs::path work = folder.WorkPath() / ".work";
        const std::string target = (work / fs::path(merge.source).filename()).string();
        std::vector<ReplayEvent> events = ReplayEventsOf(merge.events);
        const PreviewEntry& first = page.entries.front();
        const std::size_t cursor =
            ResourceCursor(events, first.kind + ":" + first.id, options.document);
        // Made while the user's store names the module: the private one
        // names no class, so that the writer finds no previewer to start.
        ComPtr<IPreviewFileWriter> writer;
        const HRESULT made = CreateComponent(CLSID_TervanePreviewWriter, IPreviewFileWriter::iid,
                                             writer.ReceiveVoid());
        if (FAILED(made))
            throw CommandFailure(merge.source, "the preview writer could not be made");
        {
            PrivateRegistry registry(work / "registry");
            RunPreviewWriter({std::move(events), merge.source, language, cursor, target, false,
                              false, std::move(writer)});
        }
        for (PreviewEntry& entry : page.entries) {
            entry.source =
                DrawSide(folder.WorkPath(), entry, merge.source, "s", entry.name + ".source.png");
            entry.translation =
                DrawSide(folder.WorkPath(), entry, target, "d", entry.name + ".translation.png");
        }
        fs::remove_all(work);
    }

    const fs::path index = folder.WorkPath() / "index.html";
    {
        std::ofstream html(index, std::ios::binary);
        html << IndexHtml(page);
        html.close();
        if (!html)
            throw CommandFailure(options.out, "cannot write " + index.string());
    }
    folder.Commit();
    std::size_t drawn = 0, misfits = 0;
    for (const PreviewEntry& entry : page.entries) {
        drawn += !entry.translation.picture.empty();
        misfits += entry.translation.misfits.size();
    }
    std::printf("%s: %zu of %zu dialogs and menus drawn; texts that do not fit in translation: "
                "%zu\n",
                (fs::path(options.out) / "index.html").c_str(), drawn, page.entries.size(),
                misfits);
    return 0;
}

int RunPreview(const PreviewOptions& options) {
    if (options.document.empty() == options.events.empty())
        throw CommandFailure({}, "give either a bilingual document or --events, not both");
    if (!options.events.empty())
        return PreviewEvents(options);
    return options.all ? PreviewAll(options) : PreviewUnit(options);
}

} // namespace

void AddPreviewCommand(CLI::App& app) {
    auto options = std::make_shared<PreviewOptions>();
    CLI::App* command =
        AddCommand(app, "preview", "Show a translated dialog or menu as the previewer draws it",
                   [options] { return RunPreview(*options); });
    command->footer(
        "tervane preview DOC --unit ID [-o PIC]   (or --resource dialog:ID | menu:ID)\n"
        "Reads the bilingual document as 'tervane merge DOC' does (the source file found\n"
        "and checked the same way; units without a target keep their source) and replays\n"
        "it into the preview writer with the cursor at the unit, as an editor does: the\n"
        "whole document is written into a copy of the source (--keep names it) and the\n"
        "previewer is started on the dialog or menu that holds the unit, closing the last\n"
        "one (--dual: only the one of the same side). A unit of a string table or of the\n"
        "version values is refused with the writer's words, and nothing is started. With\n"
        "-o the resource is drawn into PIC too (.png or .svg), and the previewer's fit\n"
        "report (every text that does not fit its control) is printed as JSON; PIC is\n"
        "written whole or not at all. A unit the document lacks is an error naming it.\n"
        "Unlike merge, a preview does not stop at what 'tervane verify' finds: the\n"
        "writer converts what it can, as it does for an editor.\n\n"
        "tervane preview --all DOC -o DIR\n"
        "Draws every dialog and menu that has units in the document twice, from the\n"
        "source file and from the translated copy, and writes DIR/index.html that shows\n"
        "them side by side with the texts that do not fit listed in red (they are\n"
        "outlined in red in the pictures too). No previewer is started or closed. DIR is\n"
        "filled as a temporary folder beside it and takes its place at the end, so a\n"
        "failure leaves DIR as it was. DIR must be absent, an empty folder, or an earlier\n"
        "result of --all (an index.html of ours and pictures only), which is replaced\n"
        "whole; anything else is refused. A resource the previewer can't draw is noted\n"
        "on the page.\n\n"
        "tervane preview --events EVENTS --source SRC --lang L --resource KIND:ID | --cursor N\n"
        "The same from events as 'extract --events' writes them; --cursor puts the cursor\n"
        "before the event at N.");
    command->add_option("FILE", options->document, "the bilingual document (XLIFF 1.2)")
        ->type_name("");
    command->add_option("--unit", options->unit, "the unit of the document the cursor is in")
        ->type_name("ID");
    command->add_flag("--all", options->all,
                      "draw every dialog and menu, source and translation, into -o DIR");
    command->add_option("--events", options->events, "the events, one JSON object a line")
        ->type_name("EVENTS");
    command
        ->add_option("--source", options->source,
                     "the executable the events or the document came from")
        ->type_name("SRC");
    command
        ->add_option("--lang", options->language,
                     "the target language: 1031, 0x407 or de-DE (a document's own by default)")
        ->type_name("L")
        ->check(CLI::Validator(
            [](const std::string& value) {
                return ParseLanguage(value) ? std::string() : "'" + value + "' is no language";
            },
            "L"));
    command->add_option("--resource", options->resource, "dialog:ID or menu:ID")
        ->type_name("KIND:ID");
    command->add_option("--cursor", options->cursor, "the cursor before the event at N instead")
        ->type_name("N");
    command->add_option("--side", options->side, "s for the source side, d for the translation")
        ->check(CLI::IsMember({"s", "d"}));
    command->add_flag("--dual", options->dual, "leave the other side's previewer open");
    command->add_option("--keep", options->keep, "the translated copy to write and show")
        ->type_name("FILE");
    command
        ->add_option("-o", options->out,
                     "draw the resource into this .png or .svg; with --all, the folder")
        ->type_name("OUT");
}

} // namespace tervane::app
