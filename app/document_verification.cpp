#include "app/document_verification.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "app/bilingual_file.h"
#include "app/components.h"
#include "app/failure.h"
#include "app/forward_run.h"
#include "app/xliff/bilingual.h"
#include "app/xliff/xliff_io.h"
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
    return VerifyReadDocument(LoadReadDocument(documentPath), documentPath, sourceOverride);
}

Verification VerifyReadDocument(const ReadDocument& read, const std::string& documentPath,
                                const std::string& sourceOverride) {
    const std::string named = !sourceOverride.empty()
                                  ? sourceOverride
                                  : SourceFromOriginal(read.document.original, documentPath);
    std::error_code error;
    std::string source;
    if (fs::is_regular_file(named, error))
        source = fs::absolute(named, error).string();
    SharedReadDocument shared(read);
    return VerifyBytes(read.xml, documentPath, source, named);
}

Verification VerifyBytes(const std::string& bytes, const std::string& documentPath,
                         const std::string& source, const std::string& named) {
    Verification result;
    result.source = source;
    SetEditorSource(result.source);
    RegisterHostDocumentClass();

    ComPtr<IVerificationPlugIn> plugIn;
    HRESULT hr =
        CreateComponent(CLSID_TervaneVerifier, IVerificationPlugIn::iid, plugIn.ReceiveVoid());
    if (FAILED(hr))
        throw CommandFailure(documentPath, ComErrorMessage(hr));
    // The view names the document by its source file, as the editor does.
    ComObject<EditorView>* view = nullptr;
    ComObject<VerificationReport>* report = nullptr;
    ComObject<EditorView>::Create(&view, bytes, Wide(named.empty() ? source : named));
    ComObject<VerificationReport>::Create(&report);
    ComPtr<EditorView> viewHolder = ComPtr<EditorView>::Attach(view);
    ComPtr<VerificationReport> reportHolder = ComPtr<VerificationReport>::Attach(report);

    hr = plugIn->Verify(static_cast<IEditorView*>(view), static_cast<IVerificationReport*>(report));
    std::error_code removeError;
    for (const std::string& copy : view->Saved())
        fs::remove(copy, removeError);
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

std::vector<Finding> TranslatorErrors(const Verification& verification) {
    std::vector<Finding> errors;
    for (const Finding& finding : verification.findings)
        if (finding.severity >= 3)
            errors.push_back(finding);
    if (errors.empty() || verification.source.empty())
        return errors;
    xliff::Document untouched = xliff::MakeDocument(ExtractEvents(verification.source));
    const Verification baseline = VerifyBytes(xliff::WriteXliff(untouched, TERVANE_VERSION),
                                              "untouched", verification.source);
    std::vector<std::pair<LONG, std::u16string>> inherent;
    for (const Finding& finding : baseline.findings)
        if (finding.severity >= 3)
            inherent.emplace_back(finding.code, finding.message);
    std::vector<Finding> made;
    for (const Finding& finding : errors) {
        auto same =
            std::find(inherent.begin(), inherent.end(), std::pair(finding.code, finding.message));
        if (same != inherent.end())
            inherent.erase(same);
        else
            made.push_back(finding);
    }
    return made;
}

} // namespace tervane::app
