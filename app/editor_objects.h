#pragma once
// The editor's objects that a verification plug-in is handed or creates: the
// view of one bilingual document, the report it fills, and the host's
// document class over the saved copy, with its elements.
#include <memory>
#include <string>
#include <vector>

#include "app/editor_elements.h"
#include "host/editor.h"
#include "platform/com/component.h"

namespace tervane::app {

// The source file that documents opened in this session stand for; empty
// when it is gone. The host's document class reads its structure from it.
void SetEditorSource(const std::string& path);
// Makes HostDocument known to CoCreateInstance in this process.
void RegisterHostDocumentClass();

class EditorView : public ComObjectRoot, public DispatchWithoutTypeInfo<IEditorView> {
public:
    static InterfaceMap<EditorView> Interfaces();
    // bytes: the document as the editor holds it; source: its source file.
    EditorView(std::string bytes, std::u16string source)
        : bytes_(std::move(bytes)), source_(std::move(source)) {}

    HRESULT get_SourcePath(BSTR* path) override;
    HRESULT get_FileName(BSTR* name) override;
    HRESULT SaveAs(BSTR name) override;

    // The copies saved, for the session to remove what a run left behind.
    const std::vector<std::string>& Saved() const { return saved_; }

private:
    std::string bytes_;
    std::u16string source_;
    std::vector<std::string> saved_;
};

struct Finding {
    std::u16string message;
    LONG severity = 0, code = 0;
    PieceRange range;
};

class VerificationReport : public ComObjectRoot,
                           public DispatchWithoutTypeInfo<IVerificationReport> {
public:
    static InterfaceMap<VerificationReport> Interfaces();

    HRESULT get_Item(VARIANT index, IDispatch** entry) override;
    HRESULT get_Count(LONG* count) override;
    HRESULT Add(BSTR message, LONG, LONG severity, LONG code, LONG, LONG startFirst,
                LONG startSecond, LONG endFirst, LONG endSecond, LONG, LONG,
                LONG* scratch) override;
    HRESULT Remove(LONG index) override;

    const std::vector<Finding>& Findings() const { return findings_; }

private:
    std::vector<Finding> findings_;
};

} // namespace tervane::app
