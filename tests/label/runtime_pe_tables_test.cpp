// Tables read from the resources of real PE32 and PE32+ files.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "label/runtime/ss_lex.h"
#include "label/runtime/ss_yacc.h"
#include "platform/win32/resources.h"
#include "tests/label/runtime_toy.h"
#include "tests/support/fixtures.h"

namespace tervane::test {
namespace {

std::int32_t CodeOf(const std::function<void()>& action, std::string* message) {
    try {
        action();
    } catch (const SSException& e) {
        *message = e.message();
        return e.code();
    }
    return 0;
}

TEST(PeTables, WordListParsesFromAFilesResources) {
    for (const std::string& path : FixtureImages("label_tables")) {
        HMODULE module = LoadLibraryExA(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
        ASSERT_NE(module, nullptr) << path;
        {
            SSLexTable lexTable(module, "words", "SSLexTable");
            SSYaccTable yaccTable(module, "WORDS", "SSYACCTABLE");
            SSLexStringConsumer consumer(u"ab  cd e");
            SSLex lex(&consumer, &lexTable);
            RecordingYacc yacc(&lex, &yaccTable);
            EXPECT_EQ(yacc.parse(), 0) << path;
            EXPECT_EQ(yacc.reductions, (std::vector<std::string>{"2:ab", "1:-,cd", "1:-,e"}))
                << path;
        }

        std::string message;
        EXPECT_EQ(CodeOf([&] { SSLexTable(module, "DAMAGED", "SSLEXTABLE"); }, &message), 4);
        EXPECT_EQ(message, "SSLex0104e: Invalid table, DAMAGED");
        EXPECT_EQ(CodeOf([&] { SSYaccTable(module, "DAMAGED", "SSYACCTABLE"); }, &message), 37);
        EXPECT_EQ(message, "SSYacc0115e: Resource not found, DAMAGED");
        EXPECT_EQ(CodeOf([&] { SSLexTable(module, 7, "SSLEXTABLE"); }, &message), 36);
        EXPECT_EQ(message, "SSLex0108e: Resource not found, 7");
        EXPECT_TRUE(FreeLibrary(module));
    }
}

} // namespace
} // namespace tervane::test
