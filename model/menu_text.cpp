#include "model/menu_text.h"

#include "label/grammars/label_parser.h"
#include "model/text_run.h"

namespace tervane {

namespace {

constexpr WideText kShortcutName = WideText::Constant(u"shortcut");
constexpr ConstantTagText kShortcutOpen = ConstantTag(u"<shortcut>");
constexpr ConstantTagText kShortcutClose = ConstantTag(u"</shortcut>");

} // namespace

void AnalyseMenuText(MenuItemRecord& record, std::u16string_view text) {
    CLabelParser* parser = record.parser ? record.parser : &SharedLabelParser();

    // Kept from item to item, as the tokens and the run below are.
    thread_local UnitBuffer escapedUnits;
    const std::u16string_view escaped =
        EscapeLabelInto(escapedUnits, text.substr(0, text.find(u'\0')), LabelKind::Menu, false);
    thread_local LabelTokens tokens;
    tokens.clear();
    parser->Initialise(LabelKind::Menu);
    parser->Parse(escaped, tokens);

    // Unlike strings and dialogs, "%%" stays: a menu has no printf placeholder.
    thread_local TextRun run;
    run.clear();
    auto flush = [&] {
        if (!run.empty())
            record.pieces.push_back(MakeText(run.view()));
        run.clear();
    };
    bool shortcut = false;
    for (const LabelToken& token : tokens) {
        if (token.type == label_token::kText) {
            run.AppendUnescaped(token.text, LabelKind::Menu);
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
