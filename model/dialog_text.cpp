// The text of a dialog title or a control as pieces: text as the translator
// sees it (single '&', backslash and '%'), inline tags for what must stay.
#include "frame/diagnostics/exceptions.h"
#include "frame/resource.h"
#include "label/grammars/label_parser.h"
#include "model/dialog_controls.h"
#include "model/dialog_item.h"
#include "model/text_run.h"
#include "model/text_util.h"

namespace tervane {

namespace {

constexpr WideText kBlank = WideText::Constant(u" ");
constexpr WideText kAmpersand = WideText::Constant(u"&");

} // namespace

void CDialogItem::AnalyseDialogText(std::u16string_view text, std::string_view marks,
                                    bool isCaption) {
    // Kept from text to text, as the tokens and the run below are.
    thread_local UnitBuffer escapedUnits;
    // "&&" stays for the lexer, which keeps it as text. The blank keeps a
    // conversion at the very end from reaching the end of input.
    const std::u16string_view escaped =
        EscapeLabelInto(escapedUnits, text, LabelKind::Dialog, true);
    CLabelParser& labels = parser ? *parser : SharedLabelParser();
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
    thread_local TextRun run;
    run.clear();
    auto flush = [&] {
        if (!run.empty())
            pieces.push_back(MakeText(run.view()));
        run.clear();
    };
    for (const LabelToken& token : tokens) {
        if (token.type == label_token::kText) {
            run.AppendUnescaped(token.text, unescaping);
            continue;
        }
        flush();
        std::u16string_view t = token.text;
        const bool hasAmpersand = t.find(u'&') != std::u16string_view::npos;
        // Such a label shows '&' as it is, and has no hotkey.
        if (noPrefix && hasAmpersand) {
            pieces.push_back(MakeSharedText(kAmpersand));
            continue;
        }
        if (!t.empty() && t.front() == u' ') {
            t = TrimLeftView(t);
            pieces.push_back(MakeSharedText(kBlank));
        }
        if (!t.empty() && t.back() == u' ') {
            pieces.push_back(MakeInlineTag(TrimRightView(t)));
            pieces.push_back(MakeSharedText(kBlank));
        } else if (isCaption && hasAmpersand) {
            // A dialog's title has no hotkey.
            pieces.push_back(MakeSharedText(kAmpersand));
        } else {
            pieces.push_back(MakeInlineTag(t));
        }
    }
    flush();
}

} // namespace tervane
