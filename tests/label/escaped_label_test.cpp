// The escaped input form: runs of plain characters around the escapes.
#include <gtest/gtest.h>

#include <string>

#include "label/grammars/escaped_label.h"

namespace tervane::test {
namespace {

TEST(EscapedLabel, ControlsAndBackslashesAtEveryPlace) {
    struct Case {
        LabelKind kind;
        std::u16string text;
        std::u16string expected;
    };
    const Case cases[] = {
        {LabelKind::String, u"plain ]^_ \u00e9\u4e2d", u"plain ]^_ \u00e9\u4e2d"},
        {LabelKind::String, u"\\", u"\\\\"},
        {LabelKind::Dialog, u"a\r\nb", u"a\\r\\nb"},
        {LabelKind::String, u"\\\\\n\n", u"\\\\\\\\\\n\\n"},
        // A tab leads a menu's shortcut; elsewhere it is a plain character.
        {LabelKind::Menu, u"Open\tCtrl+O", u"Open\\tCtrl+O"},
        {LabelKind::Dialog, u"Open\tCtrl+O", u"Open\tCtrl+O"},
        // Other controls, and the characters next to the escaped ones.
        {LabelKind::Menu, std::u16string(u"\x01\x07\x0b\x0e[]", 6),
         std::u16string(u"\x01\x07\x0b\x0e[]", 6)},
        {LabelKind::Menu, std::u16string(1, u'\0') + u"\n", std::u16string(1, u'\0') + u"\\n"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(EscapeLabel(c.text, c.kind), c.expected)
            << std::string(c.text.begin(), c.text.end());
}

} // namespace
} // namespace tervane::test
