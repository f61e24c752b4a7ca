// tervane scan [--json] [--trace FILE] FILE|DIR...: asks the scanner, as a
// host does before a conversion, whether each file can be handled, and
// prints its verdict.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "app/commands.h"
#include "app/json_text.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_ptr.h"
#include "platform/com/error_info.h"
#include "platform/diag/trace_sink.h"
#include "platform/locale/code_pages.h"
#include "scanner/tervane_scanner.h"

namespace tervane::app {

namespace {

namespace fs = std::filesystem;

const char* const kUsage = "Usage: tervane scan [--json] [--trace FILE] FILE|DIR...\n";

// "MZ", and "PE\0\0" where the DOS header points.
bool IsPeFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    unsigned char dos[64] = {};
    if (!in.read(reinterpret_cast<char*>(dos), sizeof dos) || dos[0] != 'M' || dos[1] != 'Z')
        return false;
    const std::uint32_t at = dos[60] | dos[61] << 8 | dos[62] << 16 | std::uint32_t{dos[63]} << 24;
    char signature[4] = {};
    return in.seekg(at).read(signature, sizeof signature) &&
           std::string_view(signature, 4) == std::string_view("PE\0\0", 4);
}

// The files named, and the PE files below each folder named, in name order.
std::vector<std::string> FilesOf(const std::vector<std::string>& operands) {
    std::vector<std::string> files;
    for (const std::string& operand : operands) {
        std::error_code error;
        if (!fs::is_directory(operand, error)) {
            files.push_back(operand);
            continue;
        }
        std::vector<std::string> found;
        for (auto it = fs::recursive_directory_iterator(
                 operand, fs::directory_options::skip_permission_denied, error);
             !error && it != fs::recursive_directory_iterator(); it.increment(error))
            if (it->is_regular_file(error) && IsPeFile(it->path()))
                found.push_back(it->path().string());
        std::sort(found.begin(), found.end());
        files.insert(files.end(), found.begin(), found.end());
    }
    return files;
}

struct Verdict {
    const char* verdict; // ok, empty, refused, missing, skipped
    std::uint32_t status = 0;
    std::string text;
    LONG firstLanguage = -1;
};

std::string ErrorText() {
    ComPtr<IErrorInfo> info;
    BSTR description = nullptr;
    if (GetErrorInfo(0, info.Receive()) != S_OK || !info ||
        info->GetDescription(&description) != S_OK)
        return std::string();
    return Narrow(Bstr::Attach(description).view(), CP_UTF8);
}

Verdict ScanFile(const std::string& file) {
    // The scanner overwrites and then deletes its copy: a file of that name
    // that is already there is the user's, not ours to remove.
    const std::string copy =
        Narrow(TervaneScanner::TemporaryPathFor(Widen(file, CP_UTF8)), CP_UTF8);
    std::error_code error;
    if (fs::exists(fs::symlink_status(copy, error)))
        return {"skipped", 0, "not scanned: " + copy + " is in the way of the scanner's copy", -1};

    ComPtr<IFileScanner> scanner;
    HRESULT hr = CoCreateInstance(CLSID_TervaneScanner, nullptr, CLSCTX_ALL, IFileScanner::iid,
                                  scanner.ReceiveVoid());
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
    Verdict verdict{"ok", own ? own->Status() : 0, std::string(), own ? own->FirstLanguage() : -1};
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

void PrintLine(const std::string& file, const Verdict& v) {
    std::string text = v.text;
    std::replace(text.begin(), text.end(), '\n', ' ');
    if (std::string_view(v.verdict) == "ok")
        text = "ok";
    else if (std::string_view(v.verdict) == "empty")
        text = "ok, no localisable resources";
    std::printf("%s: %s\n", file.c_str(), text.c_str());
}

void PrintJson(const std::string& file, const Verdict& v) {
    std::printf("{\"file\": %s, \"verdict\": \"%s\", \"status\": %u, \"text\": %s, "
                "\"first_language\": %s}\n",
                JsonString(std::string_view(file)).c_str(), v.verdict, v.status,
                JsonString(std::string_view(v.text)).c_str(),
                v.firstLanguage < 0 ? "null" : std::to_string(v.firstLanguage).c_str());
}

void DrawBar(std::size_t done, std::size_t total) {
    constexpr std::size_t kWidth = 40;
    const std::size_t filled = total ? done * kWidth / total : kWidth;
    std::fprintf(stderr, "\r[%.*s%*s] %zu/%zu", static_cast<int>(filled),
                 "########################################", static_cast<int>(kWidth - filled), "",
                 done, total);
    std::fflush(stderr);
}

} // namespace

int RunScan(const Args& args) {
    bool json = false;
    std::string trace;
    std::vector<std::string> operands;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--json") {
            json = true;
        } else if (a == "--trace" && i + 1 < args.size()) {
            trace = args[++i];
        } else if (a == "--") {
            operands.insert(operands.end(), args.begin() + static_cast<long>(i) + 1, args.end());
            break;
        } else if (!a.empty() && a[0] == '-') {
            std::fprintf(stderr, "tervane scan: unknown option '%s'\n%s", a.c_str(), kUsage);
            return 2;
        } else {
            operands.push_back(a);
        }
    }
    if (operands.empty()) {
        std::fprintf(stderr, "%s", kUsage);
        return 2;
    }
    if (!trace.empty() && !AttachTraceFile(trace)) {
        std::fprintf(stderr, "tervane scan: cannot write the trace file %s\n", trace.c_str());
        return 1;
    }
    RegisterTervaneScannerClass();
    const std::vector<std::string> files = FilesOf(operands);
    const bool bar = ::isatty(STDERR_FILENO) != 0 && files.size() > 1;
    int status = 0;
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (bar)
            DrawBar(i, files.size());
        const Verdict verdict = ScanFile(files[i]);
        if (bar)
            std::fputs("\r\033[K", stderr);
        json ? PrintJson(files[i], verdict) : PrintLine(files[i], verdict);
        const std::string_view v = verdict.verdict;
        if (v != "ok" && v != "empty")
            status = 1;
    }
    if (bar) {
        DrawBar(files.size(), files.size());
        std::fputs("\n", stderr);
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
        std::fprintf(stderr, "tervane scan: cannot write the output\n");
        return 1;
    }
    return status;
}

} // namespace tervane::app
