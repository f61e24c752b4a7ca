// The libraries that only the bilingual document needs are opened on first
// use; what can't be opened or found is named in the error.
#include "app/xliff/shared_library.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace tervane::xliff {
namespace {

TEST(SharedLibrary, OpensOnUseAndNamesWhatIsMissing) {
    struct Case {
        const char* soname;
        const char* symbol;
        std::string error; // the message's start, or empty for success
    };
    const Case cases[] = {
        {"libxml2.so.2", "xmlReadMemory", ""},
        {"libxml2.so.2", "xmlFree", ""}, // a variable
        {"libnettle.so.8", "nettle_sha256_digest", ""},
        {"libxml2.so.2", "xmlNoSuchCall", "cannot find xmlNoSuchCall in libxml2.so.2: "},
        {"libtervane-none.so.1", "x", "cannot load libtervane-none.so.1: "},
    };
    for (const Case& c : cases) {
        try {
            SharedLibrary library(c.soname);
            EXPECT_NE(library.Symbol<void*>(c.symbol), nullptr) << c.symbol;
            EXPECT_EQ(c.error, "") << c.soname << " " << c.symbol;
        } catch (const std::runtime_error& error) {
            EXPECT_NE(c.error, "") << error.what();
            EXPECT_EQ(std::string(error.what()).substr(0, c.error.size()), c.error);
        }
    }
}

} // namespace
} // namespace tervane::xliff
