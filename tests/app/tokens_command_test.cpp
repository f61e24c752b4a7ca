// tervane tokens and tervane tables as a user runs them.
#include <gtest/gtest.h>
#include <string>

#include "tests/support/fixtures.h"

namespace {

const std::string kTervane = std::string(TERVANE_BINARY_DIR) + "/tervane";

std::string Tervane(const std::string& arguments, int* status) {
    return tervane::test::RunCommand(kTervane + " " + arguments + " 2>&1", status);
}

TEST(TokensCommand, PrintsOneJsonObjectPerToken) {
    struct Case {
        const char* arguments;
        const char* output;
    };
    const Case cases[] = {
        {"tokens --kind string 'Save %s?'",
         "{\"type\": 1, \"text\": \"Save \"}\n{\"type\": 8, \"text\": \"%s\"}\n"
         "{\"type\": 1, \"text\": \"?\"}\n"},
        // Backslashes and quotes come out with JSON's escapes.
        {"tokens --kind string 'a\\n\"b\"'",
         "{\"type\": 1, \"text\": \"a\"}\n{\"type\": 2, \"text\": \"\\\\n\"}\n"
         "{\"type\": 1, \"text\": \"\\\"b\\\"\"}\n"},
    };
    for (const Case& c : cases) {
        int status = -1;
        EXPECT_EQ(Tervane(c.arguments, &status), c.output) << c.arguments;
        EXPECT_EQ(status, 0) << c.arguments;
    }
}

TEST(TablesCommand, ListsTheSixBuiltInTables) {
    int status = -1;
    EXPECT_EQ(Tervane("tables", &status),
              "{\"type\": \"SSLEXTABLE\", \"name\": \"DIALOGRESPARSE\", \"size\": 2884}\n"
              "{\"type\": \"SSLEXTABLE\", \"name\": \"MENURESPARSE\", \"size\": 3320}\n"
              "{\"type\": \"SSLEXTABLE\", \"name\": \"STRINGRESPARSE\", \"size\": 2872}\n"
              "{\"type\": \"SSYACCTABLE\", \"name\": \"DIALOGRESPARSE\", \"size\": 516}\n"
              "{\"type\": \"SSYACCTABLE\", \"name\": \"MENURESPARSE\", \"size\": 628}\n"
              "{\"type\": \"SSYACCTABLE\", \"name\": \"STRINGRESPARSE\", \"size\": 468}\n");
    EXPECT_EQ(status, 0);
}

} // namespace
