// The text of a dialog title or a control as pieces: text as the translator
// sees it (single '&', backslash and '%'), inline tags for what must stay.
#include "frame/diagnostics/exceptions.h"
#include "frame/resource.h"
#include "label/grammars/escaped_label.h"
#include "label/grammars/label_parser.h"
#include "label/grammars/token_pieces.h"
#include "model/dialog_controls.h"
#include "model/dialog_item.h"
#include "model/text_util.h"

namespace tervane {

void CDialogItem::AnalyseDialogText(std::u16string_view text, std::string_view marks,
                                    bool isCaption) {
    // "&&" stays for the lexer, which keeps it as text.
    std::u16string escaped = EscapeLabel(text, LabelKind::Dialog);
    // The blank keeps a conversion at the very end from reaching the end of input.
    escaped += u' ';
    CLabelParser& labels = parser ? *parser : SharedLabelParser();
    // Reused, so that its records and their texts are not reallocated for every text.
    thread_local LabelTokens tokens;
    tokens.clear();
    labels.Initialise(LabelKind::Dialog);
    labels.Parse(escaped, tokens);
    if (tokens.empty())
        throw CParserException(kCorruptedDocumentMessage);
    if (!tokens.back().text.empty())
        tokens.back().text.pop_back();

    const bool noPrefix = marks.find(kNoPrefixMark) != std::string_view::npos;
    // Such a label keeps "&&" as it is: the string table's unescaping, which
    // leaves '&' alone.
    const LabelKind unescaping = noPrefix ? LabelKind::String : LabelKind::Dialog;
    std::u16string run;
    auto flush = [&] {
        if (!run.empty())
            pieces.push_back(MakeText(run));
        run.clear();
    };
    for (const LabelToken& token : tokens) {
        if (token.type == label_token::kText) {
            AppendUnescapedLabelText(run, token.text, unescaping);
            continue;
        }
        flush();
        std::u16string_view t = token.text;
        const bool hasAmpersand = t.find(u'&') != std::u16string_view::npos;
        // Such a label shows '&' as it is, and has no hotkey.
        if (noPrefix && hasAmpersand) {
            pieces.push_back(MakeText(u"&"));
            continue;
        }
        std::u16string trimmed;
        if (!t.empty() && t.front() == u' ') {
            trimmed = TrimLeft(t);
            t = trimmed;
            pieces.push_back(MakeText(u" "));
        }
        if (!t.empty() && t.back() == u' ') {
            pieces.push_back(MakeInlineTag(TrimRight(t)));
            pieces.push_back(MakeText(u" "));
        } else if (isCaption && hasAmpersand) {
            // A dialog's title has no hotkey.
            pieces.push_back(MakeText(u"&"));
        } else {
            pieces.push_back(MakeInlineTag(t));
        }
    }
    flush();
}

} // namespace tervane
