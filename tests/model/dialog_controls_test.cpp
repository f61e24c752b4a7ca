#include "model/dialog_controls.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace tervane {
namespace {

TEST(DialogControls, KindsByBitsNotByButtonType) {
    // Button types 0 to 15, in order.
    const char* const buttons[16] = {"button",      "button",      "checkbox", "checkbox",
                                     "button",      "button",      "checkbox", "groupbox",
                                     "radiobutton", "radiobutton", "checkbox", "checkbox",
                                     "radiobutton", "radiobutton", "checkbox", "groupbox"};
    for (DWORD type = 0; type < 16; ++type) {
        EXPECT_STREQ(GetControlKind(0x80, type), buttons[type]) << type;
        // Only the low byte counts.
        EXPECT_STREQ(GetControlKind(0x80, 0x50010000 | type), buttons[type]) << type;
    }
}

// Every kind a control can have comes with its tag name and end tag.
TEST(DialogControls, KindTagsSpellTheKind) {
    for (WORD classOrdinal = 0x7F; classOrdinal <= 0x86; ++classOrdinal) {
        for (DWORD style = 0; style < 16; ++style) {
            const std::string kind = GetControlKind(classOrdinal, style);
            const ControlKindTags& tags = GetControlKindTags(kind);
            const std::u16string wide(kind.begin(), kind.end());
            EXPECT_EQ(tags.name.str(), wide);
            EXPECT_EQ(tags.closeTag.str(), u"</" + wide + u">");
        }
    }
    EXPECT_THROW(GetControlKindTags("static"), std::invalid_argument);
}

TEST(DialogControls, StyleMarks) {
    struct Case {
        WORD classOrdinal;
        DWORD style;
        const char* marks;
    };
    const Case cases[] = {
        {0x81, 0x2038, " style=\"ES_UPPERCASE ES_LOWERCASE ES_PASSWORD ES_NUMBER\""},
        {0x85, 0x6000, " style=\"CBS_UPPERCASE CBS_LOWERCASE\""},
        // The same bits on another class give nothing.
        {0x80, 0x2028, ""},
        {0x82, 0x2000, ""},
        {0x85, 0x0080, ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(GetStyleMarks(c.classOrdinal, c.style), c.marks) << c.classOrdinal << c.style;
}

} // namespace
} // namespace tervane
