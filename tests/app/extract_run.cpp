#include "tests/app/extract_run.h"

#include <sstream>

#include "tests/support/fixtures.h"

namespace tervane::test {

ExtractRun Extract(const std::string& options, const std::string& path, bool withTrace) {
    const std::string dir = TempDir();
    ExtractRun run;
    std::string command = std::string(TERVANE_BINARY_DIR) + "/tervane extract " + options;
    if (withTrace)
        command += " --trace " + dir + "/trace";
    run.out = RunCommand(command + " '" + path + "' 2>" + dir + "/err", &run.status);
    auto err = ReadFile(dir + "/err");
    run.err.assign(err.begin(), err.end());
    if (withTrace) {
        auto trace = ReadFile(dir + "/trace");
        run.trace.assign(trace.begin(), trace.end());
    }
    RunCommand("rm -rf '" + dir + "'");
    return run;
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

} // namespace tervane::test
