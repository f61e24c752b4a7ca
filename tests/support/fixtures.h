#pragma once
// Paths of the PE images that the build compiles from tests/fixtures/*.rc.
#include <string>
#include <vector>

namespace tervane::test {

// "<dir>/<name>.x64.dll" or "<dir>/<name>.x86.dll".
std::string FixturePath(const std::string& name, const std::string& arch);
// Both images of one fixture, PE32+ first.
std::vector<std::string> FixtureImages(const std::string& name);
std::vector<unsigned char> ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::vector<unsigned char>& bytes);
// A fresh folder under the temporary directory, removed when the test program ends.
std::string TempDir();
// Runs a shell command, returns its standard output; the exit status goes to *status.
std::string RunCommand(const std::string& command, int* status = nullptr);
// The folder of Wine's PE files of one architecture ("x86_64-windows"). The
// sanitizer run points TERVANE_WINE_ROOT at a sample of links to keep its time.
std::string WineDir(const std::string& arch = "x86_64-windows");
// The Debian python3 (where python3-pefile is), not whatever python3 is first on PATH.
std::string DebianPython();

} // namespace tervane::test
