#include "app/preview_host.h"

#include <cstdio>

#include "app/components.h"
#include "app/failure.h"
#include "app/items.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_ptr.h"
#include "platform/com/error_info.h"
#include "platform/locale/code_pages.h"
#include "platform/process/processes.h"
#include "platform/registry/registry.h"
#include "preview/tervane_preview_writer.h"

namespace tervane::app {

namespace {

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

std::filesystem::path ThisProgram() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

} // namespace

void RunPreviewWriter(PreviewRequest request) {
    RegisterItemClasses();
    ComPtr<ComObject<ReplayHost>> host;
    ComObject<ReplayHost>::Create(host.Receive());
    ComPtr<ComObject<CursorProperty>> property;
    ComObject<CursorProperty>::Create(property.Receive());
    ComPtr<IPreviewFileWriter> writer = std::move(request.writer);
    HRESULT hr = writer ? S_OK
                        : CreateComponent(CLSID_TervanePreviewWriter, IPreviewFileWriter::iid,
                                          writer.ReceiveVoid());
    if (SUCCEEDED(hr)) {
        Bstr path(Widen(request.target, CP_UTF8));
        ComPtr<IEvents> sink;
        hr = writer->Initialize(path.get(), nullptr, request.language, 0, 0, host.get(),
                                request.dual ? VARIANT_TRUE : VARIANT_FALSE, sink.Receive());
        if (SUCCEEDED(hr)) {
            host->Attach(std::move(request.events), Widen(request.source, CP_UTF8), sink.get(),
                         kEventsPerPump, false);
            host->SetCursor(request.cursor, property.get());
            host->SetDocumentNumber(request.sourceSide ? request.language : 0);
        }
    }
    // Every pump delivers a part; the call after the end of the input runs
    // the preview.
    while (SUCCEEDED(hr) && !host->AllDelivered())
        hr = writer->raw_Write(0);
    if (SUCCEEDED(hr))
        hr = writer->raw_Write(0);
    host->Detach();
    if (FAILED(hr))
        throw CommandFailure(request.source, ComponentErrorText(hr, "preview"));
}

std::size_t ResourceCursor(const std::vector<ReplayEvent>& events, const std::string& resource,
                           const std::string& subject) {
    const std::size_t colon = resource.find(':');
    if (colon == std::string::npos)
        throw CommandFailure(resource, "give the resource as dialog:ID or menu:ID");
    const std::string kind = resource.substr(0, colon);
    if (kind != "dialog" && kind != "menu")
        throw CommandFailure(resource, "only a dialog or a menu can be previewed");
    const std::u16string start =
        Widen("<" + kind + " id=\"" + resource.substr(colon + 1) + "\"", CP_UTF8);
    for (std::size_t i = 0; i < events.size(); ++i)
        if (events[i].kind == ReplayEvent::kTag && events[i].text.rfind(start, 0) == 0)
            return i + 1;
    throw CommandFailure(subject, "no " + resource + " in the document");
}

std::string DrawResource(const std::string& file, const std::string& kind, const std::string& id,
                         const char* side, const std::string& picture, PictureFormat format) {
    const std::string previewer = (ThisProgram().parent_path() / kPreviewerProgram).string();
    const std::optional<ProgramRun> run = RunToEnd(
        previewer,
        {previewer, "?fp", file, "?rd", kind, "?rid", id, std::string("?") + side, "?notdual",
         format == PictureFormat::Svg ? "--svg" : "--png", picture, "--fit-json"});
    if (!run)
        throw CommandFailure(previewer, "the previewer could not be started");
    if (run->status != 0) {
        std::string words = run->err;
        while (!words.empty() && words.back() == '\n')
            words.pop_back();
        throw CommandFailure(kind + ":" + id,
                             words.empty() ? "the previewer could not draw it" : words);
    }
    return run->out;
}

} // namespace tervane::app
