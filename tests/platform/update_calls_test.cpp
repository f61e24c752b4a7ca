// The update calls' Win32 errors, the pending-file registry as the file calls
// see it, and signed images with appended data.
#include <csignal>
#include <cstdlib>
#include <dirent.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "platform/byte_reader.h"
#include "platform/files/file_bytes.h"
#include "platform/files/file_calls.h"
#include "platform/pe/pe_image.h"
#include "platform/update/pending_files.h"
#include "platform/update/resource_reader.h"
#include "platform/update/resource_update.h"
#include "platform/win32/last_error.h"
#include "tests/platform/update_test_support.h"
#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

bool Put(const std::string& path, const ResName& type, const ResName& name, WORD language,
         const std::string& data) {
    HANDLE h = BeginUpdateResourceA(path.c_str(), FALSE);
    if (!h)
        return false;
    if (!UpdateResourceA(h, type, name, language, data.empty() ? nullptr : data.data(),
                         static_cast<DWORD>(data.size())))
        return false;
    return EndUpdateResourceA(h, FALSE) != FALSE;
}

std::string Copy(const std::string& fixture, const std::string& arch, const std::string& dir) {
    std::string path = dir + "/" + fixture + "." + arch + ".dll";
    WriteFile(path, ReadFile(FixturePath(fixture, arch)));
    return path;
}

// The data of RT_RCDATA resource name, language as the file stores it.
std::optional<std::string> Stored(const std::string& path, update::ResKey name, WORD language) {
    auto image = pe::PeImage::Parse(ReadFile(path));
    if (!image)
        return std::nullopt;
    auto tree = update::ReadResourceTree(*image);
    const update::ResourceLeaf* leaf =
        tree ? tree->Find(update::ResKey::Id(10), name, language) : nullptr;
    if (!leaf)
        return std::nullopt;
    return std::string(leaf->data->begin(), leaf->data->end());
}

TEST(UpdateCalls, FailuresSetTheLastErrorThatWin32Sets) {
    const std::string dir = TempDir();
    const std::string good = Copy("sample", "x64", dir);
    const std::string readOnly = Copy("sample", "x86", dir);
    ::chmod(readOnly.c_str(), 0444);

    struct BeginCase {
        std::string path;
        DWORD error;
    } begins[] = {
        {dir + "/nofolder/x.dll", ERROR_PATH_NOT_FOUND},
        {dir, ERROR_ACCESS_DENIED},
        {readOnly, ERROR_ACCESS_DENIED},
        {"", ERROR_INVALID_PARAMETER},
    };
    for (const BeginCase& c : begins) {
        SetLastError(0);
        EXPECT_EQ(BeginUpdateResourceA(c.path.c_str(), FALSE), nullptr) << c.path;
        EXPECT_EQ(GetLastError(), c.error) << c.path;
    }

    HANDLE h = BeginUpdateResourceA(good.c_str(), FALSE);
    ASSERT_NE(h, nullptr);
    SetLastError(0);
    EXPECT_FALSE(UpdateResourceA(h, RT_RCDATA, ResName(1), 0, nullptr, 5));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    EXPECT_TRUE(EndUpdateResourceA(h, TRUE));
    SetLastError(0);
    EXPECT_FALSE(EndUpdateResourceA(h, FALSE)) << "a handle is closed by its first End";
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(update::HasPendingUpdates(good)) << "a discarded transaction left changes";
}

TEST(UpdateCalls, TransactionsStayInTheProcessUntilACallLooksAtTheFile) {
    const std::string dir = TempDir();
    const std::string path = Copy("sample", "x64", dir);
    const std::vector<unsigned char> before = ReadFile(path);
    const std::string big(20000, 'q');

    // Each file call must see the updated content, or drop it with the file.
    for (const std::string call : {"read", "move", "delete"}) {
        SCOPED_TRACE(call);
        WriteFile(path, before);
        ASSERT_TRUE(Put(path, RT_RCDATA, ResName(9), 0x409, big));
        EXPECT_EQ(ReadFile(path), before) << "written before a call looked at it";
        EXPECT_TRUE(update::HasPendingUpdates(path));
        std::string seen;
        if (call == "read") {
            seen = path;
            auto bytes = files::ReadFileBytes(path);
            ASSERT_TRUE(bytes);
            EXPECT_EQ(*bytes, ReadFile(path));
        } else if (call == "move") {
            seen = dir + "/moved.dll";
            ASSERT_TRUE(MoveFileExA(path.c_str(), seen.c_str(),
                                    MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED));
        } else {
            ASSERT_TRUE(DeleteFileA(path.c_str()));
            EXPECT_FALSE(update::HasPendingUpdates(path));
            EXPECT_EQ(GetFileAttributesA(path.c_str()), INVALID_FILE_ATTRIBUTES);
            continue;
        }
        EXPECT_FALSE(update::HasPendingUpdates(path));
        EXPECT_EQ(Stored(seen, update::ResKey::Id(9), 0x409), big);
    }
}

TEST(UpdateCalls, AFileChangedBehindTheRegistryIsNeitherOverwrittenNorMixedIn) {
    const std::string dir = TempDir();
    const std::string path = Copy("sample", "x64", dir);
    ASSERT_TRUE(Put(path, RT_RCDATA, ResName(1), 0, "pending"));
    // Another program replaces the file (a different size, so the stamp differs).
    const std::vector<unsigned char> other = ReadFile(FixturePath("update_names", "x64"));
    WriteFile(path, other);
    auto error = update::FlushPendingFile(path);
    EXPECT_TRUE(error);
    EXPECT_EQ(ReadFile(path), other);
    // The next transaction starts from what the disk holds; the backward
    // conversion wraps it in permission changes, which must not write it.
    const std::u16string wide(path.begin(), path.end());
    ASSERT_TRUE(Put(path, RT_RCDATA, ResName(2), 0, "fresh"));
    ASSERT_EQ(_wchmod(wide.c_str(), _S_IREAD), 0);
    EXPECT_TRUE(update::HasPendingUpdates(path));
    ASSERT_FALSE(update::FlushPendingFile(path));
    struct stat info {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0444u) << "the rewrite lost the permission bits";
    EXPECT_EQ(Stored(path, update::ResKey::Id(1), 0), std::nullopt);
    EXPECT_EQ(Stored(path, update::ResKey::Id(2), 0), "fresh");
    EXPECT_NE(Stored(path, update::ResKey::Name(u"A_B"), 0x409), std::nullopt);
}

// Runs body in a child process, which ends through exit(); its status.
template <typename Body> int InChild(Body body) {
    pid_t pid = ::fork();
    if (pid == 0) {
        body();
        std::exit(0);
    }
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Temporary files of the updater start with a dot: they count too.
std::size_t EntriesIn(const std::string& dir) {
    std::size_t count = 0;
    DIR* d = ::opendir(dir.c_str());
    while (dirent* e = ::readdir(d))
        count += std::string(e->d_name) != "." && std::string(e->d_name) != "..";
    ::closedir(d);
    return count;
}

TEST(UpdateCalls, ANormalExitWritesPendingUpdatesAndAFailedWriteChangesNothing) {
    const std::string dir = TempDir();
    const std::string path = Copy("sample", "x64", dir);
    const std::vector<unsigned char> before = ReadFile(path);

    // The file grows past what the process may write: the flush fails.
    int failed = InChild([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit{before.size() + 100, before.size() + 100};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        if (!Put(path, RT_RCDATA, ResName(1), 0, std::string(8000, 'x')))
            std::exit(2);
        bool flushed = !update::FlushPendingFile(path);
        update::DiscardPendingFile(path); // or the exit would try again
        std::exit(flushed ? 0 : 1);
    });
    EXPECT_EQ(failed, 1);
    EXPECT_EQ(ReadFile(path), before);
    EXPECT_EQ(EntriesIn(dir), 1u) << "a temporary file was left behind";

    // Nothing is written until the process ends, then everything.
    ASSERT_EQ(InChild([&] {
                  if (!Put(path, RT_RCDATA, ResName(1), 0, "at exit") || ReadFile(path) != before)
                      std::exit(2);
              }),
              0);
    EXPECT_EQ(Stored(path, update::ResKey::Id(1), 0), "at exit");
    EXPECT_EQ(EntriesIn(dir), 1u);
}

// A certificate table at the end of the file, as signing tools append it.
std::vector<unsigned char> WithCertificate(std::vector<unsigned char> bytes, std::size_t size) {
    auto image = pe::PeImage::Parse(bytes);
    while (bytes.size() % 8)
        bytes.push_back(0);
    std::size_t at = bytes.size();
    std::vector<unsigned char> certificate(size, 0xCE);
    StoreU32LE(certificate.data(), static_cast<std::uint32_t>(size));
    bytes.insert(bytes.end(), certificate.begin(), certificate.end());
    std::size_t entry = image->Offsets().dataDirectories + 4 * 8;
    StoreU32LE(&bytes[entry], static_cast<std::uint32_t>(at));
    StoreU32LE(&bytes[entry + 4], static_cast<std::uint32_t>(size));
    return bytes;
}

TEST(UpdateCalls, AppendedDataStaysAtTheEndAndACertificateIsRemoved) {
    const std::string dir = TempDir();
    const std::string payload = "INSTALLER PAYLOAD";
    for (const std::string arch : {"x64", "x86"}) {
        SCOPED_TRACE(arch);
        const std::string path = Copy("sample", arch, dir);
        std::vector<unsigned char> bytes = ReadFile(path);
        bytes.insert(bytes.end(), payload.begin(), payload.end());
        const Dump plain = DumpResources(path);
        WriteFile(path, WithCertificate(bytes, 264));
        const Dump signedDump = DumpResources(path);
        EXPECT_NE(signedDump.security, "0\t0");

        ASSERT_TRUE(Put(path, RT_RCDATA, ResName(1), 0, std::string(5000, 'z')));
        ASSERT_FALSE(update::FlushPendingFile(path));
        Dump dump = DumpResources(path);
        EXPECT_EQ(dump.security, "0\t0");
        // The signing tool's padding to 8 bytes belongs to the appended data.
        std::size_t padding = (8 - bytes.size() % 8) % 8;
        EXPECT_EQ(dump.overlayHex, plain.overlayHex + Hex(payload) + std::string(2 * padding, '0'))
            << "appended data lost, moved apart or the certificate kept";
        EXPECT_TRUE(dump.checksumOk);
    }
}

} // namespace
} // namespace tervane::test
