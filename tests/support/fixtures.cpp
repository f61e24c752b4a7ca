#include "tests/support/fixtures.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace tervane::test {

std::string FixturePath(const std::string& name, const std::string& arch) {
    return std::string(TERVANE_FIXTURE_DIR) + "/" + name + "." + arch + ".dll";
}

std::vector<std::string> FixtureImages(const std::string& name) {
    return {FixturePath(name, "x64"), FixturePath(name, "x86")};
}

std::vector<unsigned char> ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(in), {}};
}

void WriteFile(const std::string& path, const std::vector<unsigned char>& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
    if (!out)
        throw std::runtime_error("cannot write " + path);
}

namespace {
// Folders made by TempDir, removed when the test program ends; a forked
// child that exits leaves them to its parent.
struct TempDirs {
    std::vector<std::string> paths;
    pid_t owner = ::getpid();
    ~TempDirs() {
        if (::getpid() != owner)
            return;
        std::error_code ignored;
        for (const auto& path : paths)
            std::filesystem::remove_all(path, ignored);
    }
};
TempDirs& Made() {
    static TempDirs dirs;
    return dirs;
}
} // namespace

std::string TempDir() {
    std::string pattern = std::filesystem::temp_directory_path().string() + "/tervane-test-XXXXXX";
    if (!::mkdtemp(pattern.data()))
        throw std::runtime_error("mkdtemp failed");
    Made().paths.push_back(pattern);
    return pattern;
}

std::string RunCommand(const std::string& command, int* status) {
    std::string output;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (!pipe)
        throw std::runtime_error("cannot run " + command);
    char buffer[4096];
    std::size_t got;
    while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
        output.append(buffer, got);
    int rc = ::pclose(pipe);
    if (status)
        *status = WIFEXITED(rc) ? WEXITSTATUS(rc) : -1;
    return output;
}

std::string WineDir(const std::string& arch) {
    const char* root = std::getenv("TERVANE_WINE_ROOT");
    return std::string(root && *root ? root : "/usr/lib/x86_64-linux-gnu/wine") + "/" + arch;
}

std::string DebianPython() {
    return "/usr/bin/python3";
}

} // namespace tervane::test
