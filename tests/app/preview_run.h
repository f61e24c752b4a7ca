#pragma once
// tervane preview as a user runs it, with a HOME, a cache and a registry store
// of the run's own, and what the registry then says of the started previewer.
#include <csignal>
#include <fstream>
#include <regex>
#include <string>

#include "tests/support/fixtures.h"

namespace tervane::test {

struct PreviewRun {
    int status = -1;
    std::string out, err;
};

// The environment of a run whose home is home.
inline std::string HomeEnvironment(const std::string& home) {
    return "HOME='" + home + "' XDG_CONFIG_HOME='" + home + "/config' XDG_CACHE_HOME='" + home +
           "/cache' ";
}

inline PreviewRun RunPreview(const std::string& home, const std::string& arguments) {
    PreviewRun run;
    run.out = RunCommand(HomeEnvironment(home) + TERVANE_BINARY_DIR + "/tervane preview " +
                             arguments + " 2>'" + home + "/err'",
                         &run.status);
    const auto err = ReadFile(home + "/err");
    run.err.assign(err.begin(), err.end());
    return run;
}

// The destination side's process number in the store, 0 if none is recorded.
inline unsigned RecordedPreviewer(const std::string& home) {
    std::ifstream store(home + "/config/tervane/current_user.reg");
    // The value name "DestProcessId", hex-coded, and its four bytes.
    static const std::regex kValue("6465737470726f636573736964\t4\t([0-9a-f]{8})");
    for (std::string line; std::getline(store, line);) {
        std::smatch m;
        if (std::regex_search(line, m, kValue)) {
            const std::string hex = m[1].str();
            unsigned value = 0;
            for (int i = 3; i >= 0; --i)
                value = value << 8 |
                        static_cast<unsigned>(std::stoul(hex.substr(2 * i, 2), nullptr, 16));
            return value == 0xFFFFFFFF ? 0 : value;
        }
    }
    return 0;
}

// Ends the previewer a run started, which is ours; gives whether there was one.
inline bool EndRecordedPreviewer(const std::string& home) {
    const unsigned previewer = RecordedPreviewer(home);
    if (previewer != 0)
        ::kill(static_cast<pid_t>(previewer), SIGKILL);
    return previewer != 0;
}

} // namespace tervane::test
