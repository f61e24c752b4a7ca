// The scanner on real images: its verdict, the refusal's text, its traces,
// and what it leaves in the source's folder (the source untouched, no copy).
#include "scanner/tervane_scanner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <sys/stat.h>

#include "platform/byte_reader.h"
#include "platform/com/com_ptr.h"
#include "platform/com/error_info.h"
#include "platform/diag/trace_sink.h"
#include "platform/locale/code_pages.h"
#include "platform/pe/pe_image.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

namespace fs = std::filesystem;
using Image = std::vector<unsigned char>;

struct Verdict {
    HRESULT hr = S_OK;
    VARIANT_BOOL result = 0;
    std::uint32_t status = 0;
    LONG firstLanguage = 0;
    std::string error; // the error information's text, "(none)" without it
};

Verdict Scan(const std::string& path) {
    ComPtr<ComObject<TervaneScanner>> scanner;
    EXPECT_EQ(ComObject<TervaneScanner>::Create(scanner.Receive()), S_OK);
    ComPtr<IFileScanner> host;
    EXPECT_EQ(scanner.As(host), S_OK);
    SetErrorInfo(0, nullptr);
    Bstr widePath(Widen(path));
    Verdict v;
    EXPECT_EQ(host->Initialize(widePath.get(), 0, 1033, 0), S_OK);
    v.hr = host->raw_Scan(&v.result);
    v.status = scanner->Status();
    v.firstLanguage = scanner->FirstLanguage();
    ComPtr<IErrorInfo> info;
    BSTR description = nullptr;
    v.error = GetErrorInfo(0, info.Receive()) == S_OK && info->GetDescription(&description) == S_OK
                  ? Narrow(Bstr::Attach(description).view())
                  : "(none)";
    return v;
}

std::vector<std::string> Entries(const std::string& dir) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

Image Fixture(const std::string& name, const std::string& arch) {
    return test::ReadFile(test::FixturePath(name, arch));
}

// A certificate table appended, as signing tools do: a rewrite drops it.
Image Signed(Image bytes) {
    auto image = pe::PeImage::Parse(bytes);
    bytes.resize((bytes.size() + 7) / 8 * 8 + 264, 0xCE);
    const std::size_t entry = image->Offsets().dataDirectories + 4 * 8;
    StoreU32LE(&bytes[entry], static_cast<std::uint32_t>(bytes.size() - 264));
    StoreU32LE(&bytes[entry + 4], 264);
    return bytes;
}

// The first raw data's bytes moved past the end of the image: found, not loaded.
Image DataOutside(Image bytes) {
    auto image = pe::PeImage::Parse(bytes);
    const auto rsrc = image->Directory(pe::kResourceDirectory);
    const auto& section = image->Sections()[*image->SectionIndexForRva(rsrc.rva)];
    const std::size_t root = section.pointerToRawData + (rsrc.rva - section.virtualAddress);
    std::size_t at = root;
    for (int level = 0; level < 3; ++level) // the first entry of type, name, language
        at = root + (LoadU32LE(&bytes[at + 16 + 4]) & 0x7FFFFFFF);
    StoreU32LE(&bytes[at], 0x7FFFFFF0);
    return bytes;
}

const std::string kFormat = "The selected file appears to be of an invalid or unsupported format\n";
const std::string kLoad = kFormat + "(Failed to load one or more resource(s)).";
const std::string kTruncation =
    kFormat + "(Attempt to update resources in target file results in truncation).";

TEST(Scanner, VerdictsTextsAndNothingLeftBehind) {
    struct Case {
        const char* what;
        std::function<Image(const std::string& arch)> source; // null: no file
        HRESULT hr;
        std::uint32_t status;
        LONG firstLanguage;
        std::string error;
        mode_t mode = 0644;
        bool copyInTheWay = false; // a folder where the copy should go
    };
    auto fixture = [](const char* name) {
        return [name](const std::string& arch) { return Fixture(name, arch); };
    };
    const Case cases[] = {
        {"one code page, a named first resource", fixture("scan_names"), S_OK, 0, 1033, "(none)"},
        {"English and German, raw data", fixture("scan_clean"), S_OK, 0, 1033, "(none)"},
        {"a read-only source", fixture("scan_clean"), S_OK, 0, 1033, "(none)", 0444},
        {"nothing localisable", fixture("fwd_none"), S_OK, 0, -1, "(none)"},
        {"a Japanese string table after them", fixture("scan_code_pages"), E_FAIL, 7, 1033,
         kFormat + "(The file contains resources with more than one language)."},
        {"one string block in two languages", fixture("scan_duplicates"), E_FAIL, 8, 1031,
         kFormat + "(The file contains resources with duplicate resource id)."},
        {"a layout the rewrite packs tighter", fixture("scan_truncation"), E_FAIL, 10, -1,
         kTruncation},
        {"a first name of digits and a hyphen", fixture("scan_number_name"), E_FAIL, 10, -1,
         kTruncation},
        {"a signed file", [](const std::string& a) { return Signed(Fixture("scan_clean", a)); },
         E_FAIL, 10, -1, kTruncation},
        {"a copy that can't be made", fixture("scan_clean"), E_FAIL, 10, -1, kTruncation, 0644,
         true},
        {"raw data outside the file",
         [](const std::string& a) { return DataOutside(Fixture("fwd_none", a)); }, E_FAIL, 5, -1,
         kLoad},
        {"the object the resource compiler wrote",
         [](const std::string& a) {
             return test::ReadFile(std::string(TERVANE_FIXTURE_DIR) + "/scan_clean." + a + ".o");
         },
         E_FAIL, 0, -1, kLoad},
        {"an empty file", [](const std::string&) { return Image(); }, E_FAIL, 0, -1, kLoad},
        {"no file", nullptr, E_ACCESSDENIED, 0, -1, "(none)"},
    };
    for (const Case& c : cases) {
        for (const std::string arch : {"x64", "x86"}) {
            SCOPED_TRACE(std::string(c.what) + ", " + arch);
            const std::string dir = test::TempDir(), path = dir + "/source.dll";
            std::vector<std::string> left;
            Image bytes;
            if (c.source) {
                test::WriteFile(path, bytes = c.source(arch));
                ::chmod(path.c_str(), c.mode);
                left.push_back("source.dll");
            }
            if (c.copyInTheWay) {
                fs::create_directory(dir + "/source_Sniffer.exe");
                left.push_back("source_Sniffer.exe");
            }
            const Verdict v = Scan(path);
            EXPECT_EQ(v.hr, c.hr);
            EXPECT_EQ(v.result, c.hr == S_OK && c.firstLanguage != -1 ? VARIANT_TRUE : 0);
            EXPECT_EQ(v.status, c.status);
            EXPECT_EQ(v.firstLanguage, c.firstLanguage);
            EXPECT_EQ(v.error, c.error);
            EXPECT_EQ(Entries(dir), left);
            EXPECT_TRUE(!c.source || test::ReadFile(path) == bytes) << "the source was changed";
        }
    }
}

TEST(Scanner, TracesTheStepsUnderItsName) {
    const std::string dir = test::TempDir();
    test::WriteFile(dir + "/source.dll", Fixture("scan_clean", "x64"));
    ASSERT_TRUE(AttachTraceFile(dir + "/trace"));
    Scan(dir + "/source.dll");
    DetachTrace();
    const Image bytes = test::ReadFile(dir + "/trace");
    const std::string trace(bytes.begin(), bytes.end());
    std::size_t at = 0;
    for (const std::string& step : std::vector<std::string>{
             "\n\n\n********** Sniffer Started***************\n\n",
             "CodePage of source language is -> 1033 \n", "Enumerating the resources........\n\n",
             "Exe having translatable items\n",
             "Temproary exe " + dir + "/source_Sniffer.exe created.\n",
             "First resource language is 1033\n", "\nEnumeration had done.\n\n",
             "\n\n*********Sniffer has been finished************\n\n"}) {
        at = trace.find(step, at);
        ASSERT_NE(at, std::string::npos) << "missing or out of order: " << step;
    }
}

TEST(Scanner, TheCopyLiesBesideTheSource) {
    const std::pair<std::u16string, std::u16string> rows[] = {
        {u"/d/app.exe", u"/d/app_Sniffer.exe"},
        {u"/d/lib.dll.lng", u"/d/lib.dll_Sniffer.exe"},
        {u"/d/abc", u"/d/_Sniffer.exe"},
        {u"x.ocx", u"x_Sniffer.exe"},
    };
    for (const auto& [source, copy] : rows)
        EXPECT_EQ(TervaneScanner::TemporaryPathFor(source), copy);
}

} // namespace
} // namespace tervane
