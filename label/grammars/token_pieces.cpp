#include "label/grammars/token_pieces.h"

#include <utility>

namespace tervane {

// The three replacements one after the other touch only runs of their own
// character, and a run never merges with another: each run of an escaped
// character shrinks to half its length, rounded up, in a single pass.
void AppendUnescapedLabelText(std::u16string& out, std::u16string_view text, LabelKind kind) {
    const bool percent = kind != LabelKind::Menu;
    const bool ampersand = kind != LabelKind::String;
    const std::size_t at = out.size();
    out.resize(at + text.size());
    char16_t* to = out.data() + at;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        *to++ = c;
        if (i + 1 < text.size() && text[i + 1] == c &&
            (c == u'\\' || (percent && c == u'%') || (ampersand && c == u'&')))
            ++i;
    }
    out.resize(static_cast<std::size_t>(to - out.data()));
}

std::u16string UnescapeLabelText(std::u16string_view text, LabelKind kind) {
    std::u16string out;
    AppendUnescapedLabelText(out, text, kind);
    return out;
}

void AppendTokenPieces(const LabelTokenList& tokens, LabelKind kind, CLabelPieceList& pieces) {
    std::u16string run;
    auto flush = [&] {
        if (!run.empty())
            pieces.push_back(MakeText(std::exchange(run, {})));
    };
    for (const LabelToken& token : tokens) {
        if (token.type == label_token::kText) {
            AppendUnescapedLabelText(run, token.text, kind);
            continue;
        }
        flush();
        pieces.push_back(MakeInlineTag(token.text));
    }
    flush();
}

} // namespace tervane
