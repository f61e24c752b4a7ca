#pragma once
// The preview writer: the backward conversion of the whole document into the
// host's path, shown by the previewer on the menu or dialog that holds the
// translator's cursor. It refuses anything else before it writes a byte.
#include <string>

#include "backward/resource_updater.h"
#include "frame/component_ids.h"
#include "frame/resource_parser_impl.h"
#include "host/filter_components.h"
#include "platform/com/com_ptr.h"
#include "platform/com/component.h"
#include "platform/com/dispatch.h"
#include "platform/com/error_info.h"
#include "preview/previewer_processes.h"

namespace tervane {

struct ITervanePreviewWriter : IDispatch {
    static constexpr IID iid = IID_ITervanePreviewWriter;
};

inline constexpr const char* kCursorOutsideText =
    "Preview is only possible if the cursor is placed within a valid menu or dialog resource. "
    "\n\nPlease go back to Edit mode, place the cursor inside a valid menu or dialog resource "
    "(ensure that the enclosing boundary tags are valid)and try again.";
inline constexpr const char* kNotMenuOrDialogText =
    "Preview is only possible for menus, and dialogs, not for string, and version info "
    "resources.\n\nPlease go back to Edit mode, place the cursor inside a menu or dialog "
    "resource and try again.";

class TervanePreviewWriter : public ComObjectRoot,
                             public DispatchWithoutTypeInfo<ITervanePreviewWriter>,
                             public SupportErrorInfoFor<IID_ITervanePreviewWriter>,
                             public DispatchWithoutTypeInfo<IEvents>,
                             public IPreviewFileWriter {
public:
    static InterfaceMap<TervanePreviewWriter> Interfaces();

    // IPreviewFileWriter
    HRESULT Initialize(BSTR path, BSTR secondArg, LONG language, LONG fourthArg, LONG fifthArg,
                       IFilterHost* host, VARIANT_BOOL dual, IEvents** events) override;
    HRESULT raw_SetOption(BSTR, BSTR) override { return S_OK; }
    HRESULT raw_SetContext(IUnknown*) override { return S_OK; }
    HRESULT raw_Write(LONG_PTR cookie) override;
    HRESULT raw_Close() override { return S_OK; }
    HRESULT get_PreviewPath(BSTR* path) override;
    HRESULT get_PreviewReady(VARIANT_BOOL* ready) override;

    // IEvents
    HRESULT raw_Property(IProperty* item) override;
    HRESULT raw_StartOfInput(IDocumentInfo* info) override;
    HRESULT raw_EndOfInput() override {
        ended_ = 1;
        return S_OK;
    }
    HRESULT raw_StartOfSegment(IUnknown*) override {
        inSegment_ = 1;
        return S_OK;
    }
    HRESULT raw_EndOfSegment() override {
        inSegment_ = 0;
        return S_OK;
    }
    HRESULT raw_Text(IText* item) override;
    HRESULT raw_Tag(ITag* item) override;

    void ResetCursorResource();
    void SetCursorResource(std::u16string_view tagText);

    const std::string& ResourceId() const { return resourceId_; }
    DWORD ResourceKind() const { return resourceKind_; }
    CPreviewerProcesses& Processes() { return processes_; }

private:
    HRESULT Write(LONG_PTR cookie);
    HRESULT Pump(LONG_PTR cookie);
    void Refuse(const char* text);

    CResourceUpdater updater_;
    // Not counted: a count on the object's own interface would keep it alive for ever.
    IEvents* events_ = nullptr;
    CResourceParserImpl parser_;
    // path, previewFile, dual and the side live with the processes they name.
    CPreviewerProcesses processes_;
    std::string resourceId_;
    DWORD resourceKind_ = 0; // 0: outside any resource
    LONG started_ = 0;
    LONG ended_ = 0;
    LONG cursorSeen_ = 0;
    LONG keepText_ = 0;
    LONG inSegment_ = 0;
    ComPtr<IFilterHost> host_;
    LONG valid_ = 1;
    std::u16string errorText_;
    LONG cursorSettled_ = 0;
    const char* pendingError_ = nullptr;
};

void RegisterTervanePreviewWriterClass();

} // namespace tervane
