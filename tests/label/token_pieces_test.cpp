#include <gtest/gtest.h>

#include "label/grammars/token_pieces.h"
#include "platform/pe/resource_name_text.h"

namespace tervane {
namespace {

// Every text of up to six units over the escaped characters and a letter
// gives what the replacements give one after the other.
TEST(TokenPieces, OnePassUnescapingMatchesTheReplacementsInTurn) {
    auto replaceAll = [](std::u16string text, std::u16string_view from, std::u16string_view to) {
        std::u16string out;
        std::size_t at = 0;
        for (std::size_t found; (found = text.find(from, at)) != std::u16string::npos;
             at = found + from.size())
            out.append(text, at, found - at).append(to);
        return out.append(text, at);
    };
    const std::u16string alphabet = u"\\%&a";
    for (LabelKind kind : {LabelKind::String, LabelKind::Menu, LabelKind::Dialog}) {
        std::vector<std::u16string> texts = {u""};
        for (std::size_t first = 0; first < texts.size(); ++first) {
            if (texts[first].size() == 6)
                continue;
            for (char16_t c : alphabet)
                texts.push_back(texts[first] + c);
        }
        for (const std::u16string& text : texts) {
            std::u16string expected = replaceAll(text, u"\\\\", u"\\");
            if (kind != LabelKind::Menu)
                expected = replaceAll(expected, u"%%", u"%");
            if (kind != LabelKind::String)
                expected = replaceAll(expected, u"&&", u"&");
            std::u16string appended = u"x";
            AppendUnescapedLabelText(appended, text, kind);
            ASSERT_EQ(appended, u"x" + expected) << pe::Utf16ToUtf8(text);
        }
    }
}

} // namespace
} // namespace tervane
