#include "label/grammars/token_pieces.h"

#include <utility>

namespace tervane {

namespace {

void ReplaceAll(std::u16string& text, std::u16string_view from, std::u16string_view to) {
    std::u16string out;
    out.reserve(text.size());
    std::size_t at = 0;
    for (std::size_t found; (found = text.find(from, at)) != std::u16string::npos;
         at = found + from.size()) {
        out.append(text, at, found - at);
        out.append(to);
    }
    out.append(text, at);
    text = std::move(out);
}

} // namespace

std::u16string UnescapeLabelText(std::u16string_view text, LabelKind kind) {
    std::u16string out(text);
    ReplaceAll(out, u"\\\\", u"\\");
    if (kind != LabelKind::Menu)
        ReplaceAll(out, u"%%", u"%");
    if (kind != LabelKind::String)
        ReplaceAll(out, u"&&", u"&");
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
            run += UnescapeLabelText(token.text, kind);
            continue;
        }
        flush();
        pieces.push_back(MakeInlineTag(token.text));
    }
    flush();
}

} // namespace tervane
