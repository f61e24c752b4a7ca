#include "app/scan_host.h"

#include <filesystem>
#include <system_error>

#include "app/components.h"
#include "app/failure.h"
#include "app/input_file.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_ptr.h"
#include "platform/com/error_info.h"
#include "platform/locale/code_pages.h"
#include "scanner/tervane_scanner.h"

namespace tervane::app {

namespace {

namespace fs = std::filesystem;

std::string ErrorText() {
    ComPtr<IErrorInfo> info;
    BSTR description = nullptr;
    if (GetErrorInfo(0, info.Receive()) != S_OK || !info ||
        info->GetDescription(&description) != S_OK)
        return std::string();
    return Narrow(Bstr::Attach(description).view(), CP_UTF8);
}

} // namespace

ScanVerdict ScanFile(const std::string& file) {
    // The scanner overwrites and then deletes its copy: a file of that name
    // that is already there is the user's, not ours to remove.
    const std::string copy =
        Narrow(TervaneScanner::TemporaryPathFor(Widen(file, CP_UTF8)), CP_UTF8);
    std::error_code error;
    if (fs::exists(fs::symlink_status(copy, error)))
        return {"skipped", 0, "not scanned: " + copy + " is in the way of the scanner's copy", -1};

    // A FIFO or a device would block the scanner's reads or never end them.
    try {
        CheckInputFile(file, kMaxPeFileBytes);
    } catch (const CommandFailure& failure) {
        return {"skipped", 0, "not scanned: " + file + " " + failure.what(), -1};
    }
    ComPtr<IFileScanner> scanner;
    HRESULT hr = CreateComponent(CLSID_TervaneScanner, IFileScanner::iid, scanner.ReceiveVoid());
    if (FAILED(hr))
        return {"refused", 0, "the scanner could not be created", -1};
    Bstr path(Widen(file, CP_UTF8));
    VARIANT_BOOL result = VARIANT_FALSE;
    SetErrorInfo(0, nullptr);
    scanner->Initialize(path.get(), 0, 0, 0);
    try {
        hr = scanner->raw_Scan(&result);
    } catch (const std::exception& failure) {
        return {"refused", 0, std::string("unexpected failure: ") + failure.what(), -1};
    }
    // This host is the module's own: it may read what the verdict rests on.
    const auto* own = dynamic_cast<const TervaneScanner*>(scanner.get());
    ScanVerdict verdict{"ok", own ? own->Status() : 0, std::string(),
                        own ? own->FirstLanguage() : -1};
    if (hr == E_ACCESSDENIED) {
        verdict.verdict = "missing";
        verdict.text = "File not found";
    } else if (FAILED(hr)) {
        verdict.verdict = "refused";
        verdict.text = ErrorText();
    } else if (result == VARIANT_FALSE) {
        verdict.verdict = "empty";
    }
    return verdict;
}

void RequireScannerAccepts(const std::string& file) {
    const ScanVerdict verdict = ScanFile(file);
    const std::string_view v = verdict.verdict;
    if (v != "ok" && v != "empty")
        throw CommandFailure(file, verdict.text);
}

} // namespace tervane::app
