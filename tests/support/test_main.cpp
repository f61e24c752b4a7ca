// Every test program runs with a home of its own, so that the event log, a
// trace and whatever the system keeps for the user land in a temporary folder
// removed at the end, never in the user's files; the programs that the tests
// start inherit it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "platform/diag/event_log.h"
#include "platform/diag/trace_sink.h"
#include "tests/support/fixtures.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    // Test programs that write beside one fixture at once draw different work file names.
    std::srand(static_cast<unsigned>(getpid()));
    const std::string home = tervane::test::TempDir();
    const struct {
        const char* variable;
        const char* below;
    } places[] = {
        {"HOME", ""},
        {"XDG_STATE_HOME", "/.local/state"},
        {"XDG_CONFIG_HOME", "/.config"},
        {"XDG_DATA_HOME", "/.local/share"},
        {"XDG_CACHE_HOME", "/.cache"},
    };
    for (const auto& place : places)
        ::setenv(place.variable, (home + place.below).c_str(), 1);
    ::setenv(tervane::kEventLogVariable, (home + "/events.log").c_str(), 1);
    // A trace only where a test attaches one.
    ::unsetenv(tervane::kTraceVariable);
    return RUN_ALL_TESTS();
}
