// tervane tables as a user runs it.
#include <gtest/gtest.h>

#include "tests/support/fixtures.h"

namespace {

TEST(TablesCommand, ListsTheSixBuiltInTables) {
    int status = -1;
    EXPECT_EQ(tervane::test::RunCommand(std::string(TERVANE_BINARY_DIR) + "/tervane tables 2>&1",
                                        &status),
              "{\"type\": \"SSLEXTABLE\", \"name\": \"DIALOGRESPARSE\", \"size\": 2884}\n"
              "{\"type\": \"SSLEXTABLE\", \"name\": \"MENURESPARSE\", \"size\": 3320}\n"
              "{\"type\": \"SSLEXTABLE\", \"name\": \"STRINGRESPARSE\", \"size\": 2872}\n"
              "{\"type\": \"SSYACCTABLE\", \"name\": \"DIALOGRESPARSE\", \"size\": 516}\n"
              "{\"type\": \"SSYACCTABLE\", \"name\": \"MENURESPARSE\", \"size\": 628}\n"
              "{\"type\": \"SSYACCTABLE\", \"name\": \"STRINGRESPARSE\", \"size\": 468}\n");
    EXPECT_EQ(status, 0);
}

} // namespace
