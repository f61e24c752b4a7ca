#include "model/menu_text.h"

#include <utility>

#include "label/grammars/escaped_label.h"
#include "label/grammars/label_parser.h"
#include "label/grammars/token_pieces.h"

namespace tervane {

namespace {

constexpr WideText kShortcutName = WideText::Constant(u"shortcut");
constexpr ConstantTagText kShortcutOpen = ConstantTag(u"<shortcut>");
constexpr ConstantTagText kShortcutClose = ConstantTag(u"</shortcut>");

} // namespace

void AnalyseMenuText(MenuItemRecord& record, std::u16string_view text) {
    CLabelParser* parser = record.parser ? record.parser : &SharedLabelParser();

    // The parser reads a null-terminated text.
    std::u16string escaped = EscapeLabel(text.substr(0, text.find(u'\0')), LabelKind::Menu);
    // Reused, so that its records and their texts are not reallocated for every item.
    thread_local LabelTokens tokens;
    tokens.clear();
    parser->Initialise(LabelKind::Menu);
    parser->Parse(escaped, tokens);

    // Unlike strings and dialogs, "%%" stays: a menu has no printf placeholder.
    std::u16string run;
    auto flush = [&] {
        if (!run.empty())
            record.pieces.push_back(MakeText(std::exchange(run, {})));
    };
    bool shortcut = false;
    for (const LabelToken& token : tokens) {
        if (token.type == label_token::kText) {
            AppendUnescapedLabelText(run, token.text, LabelKind::Menu);
            continue;
        }
        flush();
        if (token.text == u"\\t") {
            // The tab vanishes from the document; the tag stands in its place.
            record.pieces.push_back(MakeStructuralTag(kShortcutName, kShortcutOpen, 0, 1));
            shortcut = true;
        } else {
            record.pieces.push_back(MakeInlineTag(token.text));
        }
    }
    flush();
    if (shortcut)
        record.pieces.push_back(MakeStructuralTag(kShortcutName, kShortcutClose, 1, 0));
}

} // namespace tervane
