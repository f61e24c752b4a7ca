// The scanner on real images: its verdict, the refusal's text, and what it
// leaves in the source's folder (the source untouched, no copy).
#include "scanner/tervane_scanner.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

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

struct Verdict {
    HRESULT hr = S_OK;
    VARIANT_BOOL result = 0;
    std::uint32_t status = 0;
    LONG firstLanguage = 0;
    std::string error; // the error information's text, "(none)" without it
};

std::string ErrorText() {
    ComPtr<IErrorInfo> info;
    BSTR description = nullptr;
    if (GetErrorInfo(0, info.Receive()) != S_OK || info->GetDescription(&description) != S_OK)
        return "(none)";
    return Narrow(Bstr::Attach(description).view());
}

Verdict Scan(const std::string& path) {
    ComPtr<ComObject<TervaneScanner>> scanner;
    EXPECT_EQ(ComObject<TervaneScanner>::Create(scanner.Receive()), S_OK);
    ComPtr<IFileScanner> host;
    EXPECT_EQ(scanner.As(host), S_OK);
    SetErrorInfo(0, nullptr);
    Bstr widePath(Widen(path));
    Verdict verdict;
    EXPECT_EQ(host->Initialize(widePath.get(), 0, 1033, 0), S_OK);
    verdict.hr = host->raw_Scan(&verdict.result);
    verdict.status = scanner->Status();
    verdict.firstLanguage = scanner->FirstLanguage();
    verdict.error = ErrorText();
    return verdict;
}

std::vector<std::string> Entries(const std::string& dir) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

// A certificate table appended, as signing tools do: any rewrite drops it,
// so the file shrinks.
std::vector<unsigned char> Signed(std::vector<unsigned char> bytes) {
    auto image = pe::PeImage::Parse(bytes);
    while (bytes.size() % 8)
        bytes.push_back(0);
    const std::size_t at = bytes.size(), size = 264;
    bytes.resize(at + size, 0xCE);
    StoreU32LE(&bytes[at], static_cast<std::uint32_t>(size));
    const std::size_t entry = image->Offsets().dataDirectories + 4 * 8;
    StoreU32LE(&bytes[entry], static_cast<std::uint32_t>(at));
    StoreU32LE(&bytes[entry + 4], static_cast<std::uint32_t>(size));
    return bytes;
}

// The first raw data's bytes moved past the end of the image: found, not loaded.
std::vector<unsigned char> DataOutside(std::vector<unsigned char> bytes) {
    auto image = pe::PeImage::Parse(bytes);
    const auto rsrc = image->Directory(pe::kResourceDirectory);
    const auto& section = image->Sections()[*image->SectionIndexForRva(rsrc.rva)];
    const std::size_t root = section.pointerToRawData + (rsrc.rva - section.virtualAddress);
    std::size_t at = root;
    for (int level = 0; level < 3; ++level) // type, name, language: their first entries
        at = root + (LoadU32LE(&bytes[at + 16 + 4]) & 0x7FFFFFFF);
    StoreU32LE(&bytes[at], 0x7FFFFFF0);
    return bytes;
}

const std::string kFormat = "The selected file appears to be of an invalid or unsupported format\n";
const std::string kLoad = kFormat + "(Failed to load one or more resource(s)).";
const std::string kLanguages =
    kFormat + "(The file contains resources with more than one language).";
const std::string kDuplicate =
    kFormat + "(The file contains resources with duplicate resource id).";
const std::string kTruncation =
    kFormat + "(Attempt to update resources in target file results in truncation).";

struct Case {
    const char* what;
    std::function<std::vector<unsigned char>(const std::string& arch)> source;
    HRESULT hr;
    VARIANT_BOOL result;
    std::uint32_t status;
    LONG firstLanguage;
    std::string error;
};

std::function<std::vector<unsigned char>(const std::string&)> Fixture(const std::string& name) {
    return
        [name](const std::string& arch) { return test::ReadFile(test::FixturePath(name, arch)); };
}

TEST(Scanner, VerdictsTextsAndNothingLeftBehind) {
    const Case cases[] = {
        {"one code page, a named first resource", Fixture("scan_names"), S_OK, VARIANT_TRUE, 0,
         1033, "(none)"},
        {"English and German, raw data beside", Fixture("scan_clean"), S_OK, VARIANT_TRUE, 0, 1033,
         "(none)"},
        {"nothing localisable", Fixture("fwd_none"), S_OK, VARIANT_FALSE, 0, -1, "(none)"},
        {"a Japanese string table after them", Fixture("scan_code_pages"), E_FAIL, VARIANT_FALSE, 7,
         1033, kLanguages},
        {"one string block in two languages", Fixture("scan_duplicates"), E_FAIL, VARIANT_FALSE, 8,
         1031, kDuplicate},
        {"a first name of digits and a hyphen", Fixture("scan_number_name"), E_FAIL, VARIANT_FALSE,
         10, -1, kTruncation},
        {"a signed file",
         [](const std::string& arch) {
             return Signed(test::ReadFile(test::FixturePath("scan_clean", arch)));
         },
         E_FAIL, VARIANT_FALSE, 10, -1, kTruncation},
        {"the object the resource compiler wrote",
         [](const std::string& arch) {
             return test::ReadFile(std::string(TERVANE_FIXTURE_DIR) + "/scan_clean." + arch + ".o");
         },
         E_FAIL, VARIANT_FALSE, 0, -1, kLoad},
        {"raw data outside the file",
         [](const std::string& arch) {
             return DataOutside(test::ReadFile(test::FixturePath("fwd_none", arch)));
         },
         E_FAIL, VARIANT_FALSE, 5, -1, kLoad},
        {"an empty file", [](const std::string&) { return std::vector<unsigned char>(); }, E_FAIL,
         VARIANT_FALSE, 0, -1, kLoad},
    };
    for (const Case& c : cases) {
        for (const std::string arch : {"x64", "x86"}) {
            SCOPED_TRACE(std::string(c.what) + ", " + arch);
            const std::string dir = test::TempDir();
            const std::string path = dir + "/source.dll";
            const std::vector<unsigned char> bytes = c.source(arch);
            test::WriteFile(path, bytes);
            const Verdict v = Scan(path);
            EXPECT_EQ(v.hr, c.hr);
            EXPECT_EQ(v.result, c.result);
            EXPECT_EQ(v.status, c.status);
            EXPECT_EQ(v.firstLanguage, c.firstLanguage);
            EXPECT_EQ(v.error, c.error);
            EXPECT_EQ(Entries(dir), std::vector<std::string>{"source.dll"});
            EXPECT_EQ(test::ReadFile(path), bytes) << "the source was changed";
        }
    }
}

TEST(Scanner, AMissingFileIsAccessDeniedWithoutErrorInformation) {
    const Verdict v = Scan(test::TempDir() + "/missing.dll");
    EXPECT_EQ(v.hr, E_ACCESSDENIED);
    EXPECT_EQ(v.result, VARIANT_FALSE);
    EXPECT_EQ(v.error, "(none)");
}

// The copy can't be made: the refusal of the update test, and nothing of the
// scanner's stays behind.
TEST(Scanner, ACopyThatCannotBeMadeIsARefusal) {
    const std::string dir = test::TempDir();
    test::WriteFile(dir + "/source.dll", test::ReadFile(test::FixturePath("scan_clean", "x64")));
    fs::create_directory(dir + "/source_Sniffer.exe");
    const Verdict v = Scan(dir + "/source.dll");
    EXPECT_EQ(v.status, 10u);
    EXPECT_EQ(v.error, kTruncation);
    EXPECT_EQ(Entries(dir), (std::vector<std::string>{"source.dll", "source_Sniffer.exe"}));
}

TEST(Scanner, ASourceInAReadOnlyFolderIsARefusal) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "root writes into a read-only folder";
    const std::string dir = test::TempDir();
    test::WriteFile(dir + "/source.dll", test::ReadFile(test::FixturePath("scan_clean", "x64")));
    ::chmod(dir.c_str(), 0555);
    const Verdict v = Scan(dir + "/source.dll");
    ::chmod(dir.c_str(), 0755);
    EXPECT_EQ(v.error, kTruncation);
    EXPECT_EQ(Entries(dir), std::vector<std::string>{"source.dll"});
}

// The copy carries the source's read-only attribute; the update and the
// removal get past it.
TEST(Scanner, AReadOnlySourcePasses) {
    const std::string dir = test::TempDir();
    const std::string path = dir + "/source.dll";
    test::WriteFile(path, test::ReadFile(test::FixturePath("scan_clean", "x86")));
    ::chmod(path.c_str(), 0444);
    const Verdict v = Scan(path);
    EXPECT_EQ(v.hr, S_OK);
    EXPECT_EQ(v.result, VARIANT_TRUE);
    EXPECT_EQ(Entries(dir), std::vector<std::string>{"source.dll"});
    struct stat info {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0444u);
}

TEST(Scanner, TracesTheStepsUnderItsName) {
    const std::string dir = test::TempDir();
    const std::string path = dir + "/source.dll";
    test::WriteFile(path, test::ReadFile(test::FixturePath("scan_clean", "x64")));
    ASSERT_TRUE(AttachTraceFile(dir + "/trace"));
    Scan(path);
    DetachTrace();
    std::ifstream in(dir + "/trace");
    std::stringstream text;
    text << in.rdbuf();
    const std::string trace = text.str();
    std::size_t at = 0;
    for (const std::string& step : std::vector<std::string>{
             "\n\n\n********** Sniffer Started***************\n\n",
             "CodePage of source language is -> 1033 \n", "Enumerating the resources........\n\n",
             "Exe having translatable items\n",
             "Temproary exe " + dir + "/source_Sniffer.exe created.\n",
             "First resource language is 1033\n", "\nEnumeration had done.\n\n",
             "\n\n*********Sniffer has been finished************\n\n"}) {
        std::size_t found = trace.find(step, at);
        EXPECT_NE(found, std::string::npos) << "missing or out of order: " << step;
        if (found != std::string::npos)
            at = found + step.size();
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

TEST(Scanner, AnswersForItsInterfacesOnly) {
    ComPtr<ComObject<TervaneScanner>> scanner;
    ASSERT_EQ(ComObject<TervaneScanner>::Create(scanner.Receive()), S_OK);
    ComPtr<IUnknown> unknown;
    EXPECT_EQ(scanner->QueryInterface(IFileScanner::iid, unknown.ReceiveVoid()), S_OK);
    EXPECT_EQ(scanner->QueryInterface(IID_IDispatch, unknown.ReceiveVoid()), S_OK);
    EXPECT_EQ(scanner->QueryInterface(ISupportErrorInfo::iid, unknown.ReceiveVoid()),
              E_NOINTERFACE);
    ComPtr<IFileScanner> host;
    ASSERT_EQ(scanner.As(host), S_OK);
    VARIANT_BOOL available = 0;
    EXPECT_EQ(host->get_Available(&available), S_OK);
    EXPECT_EQ(available, VARIANT_TRUE);
    Bstr message(u"x");
    EXPECT_EQ(host->get_Message(message.Receive()), S_OK);
    EXPECT_NE(message.get(), nullptr);
    EXPECT_EQ(message.length(), 0u);
}

} // namespace
} // namespace tervane
