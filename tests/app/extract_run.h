#pragma once
// Runs `tervane extract` on a file as a user would, and keeps what it wrote.
#include <string>
#include <vector>

namespace tervane::test {

struct ExtractRun {
    std::string out;   // standard output
    std::string err;   // standard error
    std::string trace; // the trace file, with withTrace
    int status = -1;
};

ExtractRun Extract(const std::string& options, const std::string& path, bool withTrace = false);

std::vector<std::string> Lines(const std::string& text);

} // namespace tervane::test
