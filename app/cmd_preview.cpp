// tervane preview --events EVENTS --source SRC --lang L --resource dialog:ID -o OUT.png:
// the host side of a preview. Replays the document into the preview writer
// with the cursor inside the resource, as an editor does; the writer writes
// the translated copy and starts the previewer on it, and the command draws
// the same resource into OUT with the fit findings on standard output.
#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>

#include "app/commands.h"
#include "app/components.h"
#include "app/failure.h"
#include "app/items.h"
#include "app/language_tags.h"
#include "app/replay_host.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_ptr.h"
#include "platform/com/error_info.h"
#include "platform/files/file_bytes.h"
#include "platform/locale/code_pages.h"
#include "platform/registry/registry.h"
#include "platform/update/pending_files.h"
#include "preview/tervane_preview_writer.h"

namespace tervane::app {

namespace {

struct PreviewOptions {
    std::string events, source, language, resource, out, keep;
    std::string side = "d";
    bool dual = false;
    long cursor = -1;
};

constexpr std::size_t kEventsPerPump = 4096;

class CursorProperty : public ComObjectRoot, public DispatchWithoutTypeInfo<IProperty> {
public:
    static InterfaceMap<CursorProperty> Interfaces() {
        static const InterfaceEntry<CursorProperty> map[] = {
            Entry<CursorProperty, IProperty, DispatchWithoutTypeInfo<IProperty>>(),
            Entry<CursorProperty, IDispatch, DispatchWithoutTypeInfo<IProperty>>()};
        return map;
    }
    HRESULT get_Name(BSTR* name) override {
        *name = SysAllocString(u"Cursor Position");
        return S_OK;
    }
    HRESULT put_Name(BSTR) override { return S_OK; }
    HRESULT get_Value(BSTR* value) override {
        *value = SysAllocString(u"");
        return S_OK;
    }
    HRESULT put_Value(BSTR) override { return S_OK; }
};

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
    std::snprintf(text, sizeof text, "the preview failed (0x%08X)", static_cast<unsigned>(hr));
    return text;
}

// The place of the cursor: the event behind the resource's start tag.
std::size_t CursorPlace(const std::vector<ReplayEvent>& events, const PreviewOptions& options) {
    if (options.cursor >= 0)
        return static_cast<std::size_t>(options.cursor);
    const std::size_t colon = options.resource.find(':');
    if (colon == std::string::npos)
        throw CommandFailure(options.resource, "give the resource as dialog:ID or menu:ID");
    const std::string kind = options.resource.substr(0, colon);
    if (kind != "dialog" && kind != "menu")
        throw CommandFailure(options.resource, "only a dialog or a menu can be previewed");
    const std::u16string start =
        Widen("<" + kind + " id=\"" + options.resource.substr(colon + 1) + "\"", CP_UTF8);
    for (std::size_t i = 0; i < events.size(); ++i)
        if (events[i].kind == ReplayEvent::kTag && events[i].text.rfind(start, 0) == 0)
            return i + 1;
    throw CommandFailure(options.events, "no " + options.resource + " in the document");
}

int RunPreview(const PreviewOptions& options) {
    const std::optional<LANGID> language = ParseLanguage(options.language);
    auto content = files::ReadFileBytes(options.events);
    if (!content)
        throw CommandFailure(options.events, "cannot read the events");
    std::string readError;
    std::vector<ReplayEvent> events = ReadReplayEvents(
        std::string_view(reinterpret_cast<const char*>(content->data()), content->size()),
        readError);
    if (!readError.empty())
        throw CommandFailure(options.events, readError);
    const std::size_t cursor = CursorPlace(events, options);

    // The writer's target: a file of this preview's own, with the source's extension.
    std::string target = options.keep;
    if (target.empty()) {
        char folder[] = "/tmp/tervane-preview-XXXXXX";
        if (::mkdtemp(folder) == nullptr)
            throw CommandFailure("/tmp", "cannot make a folder for the preview");
        target =
            std::string(folder) + "/" + std::filesystem::path(options.source).filename().string();
    }
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe");

    RegisterItemClasses();
    ComPtr<ComObject<ReplayHost>> host;
    ComObject<ReplayHost>::Create(host.Receive());
    ComPtr<ComObject<CursorProperty>> property;
    ComObject<CursorProperty>::Create(property.Receive());
    ComPtr<IPreviewFileWriter> writer;
    HRESULT hr =
        CreateComponent(CLSID_TervanePreviewWriter, IPreviewFileWriter::iid, writer.ReceiveVoid());
    if (SUCCEEDED(hr)) {
        Bstr path(Widen(target, CP_UTF8));
        ComPtr<IEvents> sink;
        hr = writer->Initialize(path.get(), nullptr, *language, 0, 0, host.get(),
                                options.dual ? VARIANT_TRUE : VARIANT_FALSE, sink.Receive());
        if (SUCCEEDED(hr)) {
            host->Attach(std::move(events), Widen(options.source, CP_UTF8), sink.get(),
                         kEventsPerPump, false);
            host->SetCursor(cursor, property.get());
            host->SetDocumentNumber(options.side == "s" ? *language : 0);
        }
    }
    while (SUCCEEDED(hr) && !host->AllDelivered())
        hr = writer->raw_Write(0);
    if (SUCCEEDED(hr))
        hr = writer->raw_Write(0);
    host->Detach();
    if (FAILED(hr))
        throw CommandFailure(options.source, ErrorText(hr));
    if (options.out.empty())
        return 0;
    // The same resource drawn into OUT, its findings on standard output.
    const std::size_t colon = options.resource.find(':');
    if (colon == std::string::npos)
        throw CommandFailure(options.resource, "-o needs --resource KIND:ID");
    const std::string previewer = (self.parent_path() / kPreviewerProgram).string();
    const std::string command = "'" + previewer + "' '?fp' '" + target + "' '?rd' " +
                                options.resource.substr(0, colon) + " '?rid' '" +
                                options.resource.substr(colon + 1) + "' --png '" + options.out +
                                "' --fit-json";
    std::fflush(stdout);
    update::FlushAllPendingFiles();
    const int status = std::system(command.c_str());
    if (status != 0)
        throw CommandFailure(options.out, "the previewer could not draw the resource");
    return 0;
}

} // namespace

void AddPreviewCommand(CLI::App& app) {
    auto options = std::make_shared<PreviewOptions>();
    CLI::App* command =
        AddCommand(app, "preview", "Show a translated dialog or menu as the previewer draws it",
                   [options] { return RunPreview(*options); });
    command->footer(
        "Replays EVENTS into the preview writer with the cursor inside the resource, as an\n"
        "editor does: the whole document is written into a copy of SRC (--keep names it),\n"
        "and the previewer is started on it, closing the last one. With -o the resource is\n"
        "drawn into OUT too, and the texts that do not fit are printed as JSON.");
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
    command->add_option("-o", options->out, "draw the resource into this PNG")->type_name("OUT");
}

} // namespace tervane::app
