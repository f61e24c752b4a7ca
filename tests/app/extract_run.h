#pragma once
// Runs `tervane extract --no-scan` on a file as a user would, and keeps what it
// wrote. Without the scan: the files are fixtures in the build tree and Wine's
// own, where a scan would write its copy, and tests run side by side on them.
#include <sstream>

#include "tests/support/fixtures.h"

namespace tervane::test {

struct ExtractRun {
    std::string out, err, trace; // standard output and error, the trace file with withTrace
    int status = -1;
};

inline ExtractRun Extract(const std::string& options, const std::string& path,
                          bool withTrace = false) {
    const std::string dir = TempDir();
    ExtractRun run;
    std::string command = std::string(TERVANE_BINARY_DIR) + "/tervane extract --no-scan " + options;
    if (withTrace)
        command += " --trace " + dir + "/trace";
    run.out = RunCommand(command + " '" + path + "' 2>" + dir + "/err", &run.status);
    auto err = ReadFile(dir + "/err");
    run.err.assign(err.begin(), err.end());
    if (withTrace) {
        auto trace = ReadFile(dir + "/trace");
        run.trace.assign(trace.begin(), trace.end());
    }
    return run;
}

inline std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

} // namespace tervane::test
