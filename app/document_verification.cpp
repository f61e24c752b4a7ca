#include "app/document_verification.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/bilingual_file.h"
#include "app/failure.h"
#include "frame/component_ids.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_error.h"
#include "platform/com/com_ptr.h"
#include "platform/locale/utf8.h"
#include "verify/tervane_verifier.h"

namespace tervane::app {

namespace fs = std::filesystem;

namespace {

std::u16string Wide(const std::string& text) {
    return std::u16string(text.begin(), text.end());
}

std::string Utf8(std::u16string_view text) {
    std::string out;
    locale::AppendUtf8(out, text);
    return out;
}

} // namespace

bool Verification::HasErrors() const {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.severity >= 3; });
}

const char* SeverityWord(LONG severity) {
    return severity >= 3 ? "error" : severity == 2 ? "warning" : "note";
}

Verification VerifyDocument(const std::string& documentPath, const std::string& sourceOverride) {
    const xliff::Document document = LoadDocument(documentPath);
    std::ifstream in(documentPath, std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();

    Verification result;
    const std::string named = !sourceOverride.empty()
                                  ? sourceOverride
                                  : SourceFromOriginal(document.original, documentPath);
    std::error_code error;
    if (fs::is_regular_file(named, error))
        result.source = fs::absolute(named, error).string();
    SetEditorSource(result.source);
    RegisterHostDocumentClass();
    RegisterTervaneVerifierClass();

    ComPtr<IVerificationPlugIn> plugIn;
    HRESULT hr = CoCreateInstance(CLSID_TervaneVerifier, nullptr, CLSCTX_ALL,
                                  IVerificationPlugIn::iid, plugIn.ReceiveVoid());
    if (FAILED(hr))
        throw CommandFailure(documentPath, ComErrorMessage(hr));
    // The view names the document by its source file, as the editor does.
    ComObject<EditorView>* view = nullptr;
    ComObject<VerificationReport>* report = nullptr;
    ComObject<EditorView>::Create(&view, bytes.str(),
                                  Wide(!result.source.empty() ? result.source : named));
    ComObject<VerificationReport>::Create(&report);
    ComPtr<EditorView> viewHolder = ComPtr<EditorView>::Attach(view);
    ComPtr<VerificationReport> reportHolder = ComPtr<VerificationReport>::Attach(report);

    hr = plugIn->Verify(static_cast<IEditorView*>(view), static_cast<IVerificationReport*>(report));
    for (const std::string& copy : view->Saved())
        fs::remove(copy, error);
    if (FAILED(hr)) {
        _com_error failure(hr);
        ComPtr<IErrorInfo> info;
        if (SUCCEEDED(GetErrorInfo(0, info.Receive())) && info) {
            BSTR text = nullptr;
            info->GetDescription(&text);
            std::u16string description = text ? std::u16string(text, SysStringLen(text)) : u"";
            SysFreeString(text);
            throw CommandFailure(documentPath, Utf8(description));
        }
        throw CommandFailure(documentPath, ComErrorMessage(hr));
    }
    result.findings = report->Findings();
    std::stable_sort(result.findings.begin(), result.findings.end(),
                     [](const Finding& a, const Finding& b) {
                         return std::pair(a.range.start.first, a.range.start.second) <
                                std::pair(b.range.start.first, b.range.start.second);
                     });
    return result;
}

} // namespace tervane::app
