// A program run to its end: its status however it ended, and both of its
// outputs whole, however much it writes to either and in which order.
#include <gtest/gtest.h>

#include "platform/process/processes.h"

namespace tervane {
namespace {

TEST(RunToEnd, StatusAndBothOutputs) {
    struct Case {
        const char* what;
        const char* script;
        int status;
        std::string out, err;
    };
    const Case cases[] = {
        {"an exit status", "echo said; exit 3", 3, "said\n", ""},
        // More than a pipe holds on standard error before a byte on standard
        // output: read one after the other, the two would wait for each other.
        {"much on both, error first",
         "head -c 200000 /dev/zero | tr '\\0' e >&2; head -c 150000 /dev/zero | tr '\\0' o", 0,
         std::string(150000, 'o'), std::string(200000, 'e')},
        {"ended by a signal", "echo before >&2; kill -9 $$", 128 + 9, "", "before\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const std::optional<ProgramRun> run = RunToEnd("/bin/sh", {"sh", "-c", c.script});
        ASSERT_TRUE(run.has_value());
        EXPECT_EQ(run->status, c.status);
        EXPECT_EQ(run->out, c.out);
        EXPECT_EQ(run->err, c.err);
    }
}

TEST(RunToEnd, AProgramThatIsNotThereIsNotStarted) {
    EXPECT_FALSE(RunToEnd("/nonexistent/program", {"program"}).has_value());
}

} // namespace
} // namespace tervane
