// Messages of _com_error.
#include <gtest/gtest.h>

#include "platform/com/com_error.h"

namespace tervane {
namespace {

TEST(ComError, MessageRule) {
    struct Case {
        HRESULT hr;
        const char* message;
    };
    const Case cases[] = {
        {E_FAIL, "Unspecified error"},
        {E_ACCESSDENIED, "Access is denied."},
        {HRESULT_FROM_WIN32(2), "The system cannot find the file specified."},
        {MakeHresult(0x80040201), "IDispatch error #1"},
        {MakeHresult(0x8004FFFF), "IDispatch error #65023"},
        {MakeHresult(0x80040200), "Unknown error 0x80040200"},
        {MakeHresult(0xDEADBEEF), "Unknown error 0xDEADBEEF"},
    };
    for (const Case& c : cases)
        EXPECT_STREQ(_com_error(c.hr).ErrorMessage(), c.message) << std::hex << c.hr;
    EXPECT_EQ(_com_error(MakeHresult(0x80040205)).WCode(), 5);
}

} // namespace
} // namespace tervane
