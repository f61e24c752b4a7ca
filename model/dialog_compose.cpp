// The translated texts of a dialog, composed in one walk over its merged pieces.
#include <cstdlib>

#include "frame/conversion_state.h"
#include "label/pieces/tag_predicates.h"
#include "model/dialog_item.h"
#include "model/dlginit_table.h"
#include "model/text_util.h"
#include "platform/locale/code_pages.h"
#include "platform/locale/locale_info.h"

namespace tervane {

namespace {

bool Contains(std::u16string_view text, std::u16string_view word) {
    return text.find(word) != std::u16string_view::npos;
}

// The number behind id=" in a tag, 0 without one.
long ListControlId(std::u16string_view tagText) {
    const std::size_t at = tagText.find(u"id=\"");
    if (at == std::u16string_view::npos)
        return 0;
    long value = 0;
    for (std::size_t i = at + 4; i < tagText.size() && tagText[i] >= u'0' && tagText[i] <= u'9';
         ++i)
        value = value * 10 + (tagText[i] - u'0');
    return value;
}

UINT TargetCodePage() {
    char buffer[8] = {};
    if (GetLocaleInfoA(g_targetLanguage, LOCALE_IDEFAULTANSICODEPAGE, buffer, sizeof buffer) == 0)
        return CP_ACP;
    return static_cast<UINT>(std::atoi(buffer));
}

} // namespace

void CDialogItem::VerifyTextLength(std::u16string& text, std::size_t maximum,
                                   const std::string& kind, const std::string& resourceId,
                                   const std::string& controlName, const std::string& controlId) {
    const TextContext context{kind, resourceId, controlName, controlId};
    if (text.empty())
        RaiseEmptyText(context, resourceId.empty() ? std::string() : " id = " + resourceId);
    LimitTextLength(text, maximum, context, "CDialogItem", "VerifyTextLength");
}

void CDialogItem::ComposeTexts() {
    newTexts.clear();
    hotkeys.clear();
    std::u16string text;
    bool stale = true;
    bool open = false;
    // The element's text was offered for translation; an edit's or a list's
    // title stands outside a segment and never comes back from the host.
    bool offered = false;
    bool afterDialog = false;
    bool isCaption = false;
    bool isList = false;
    bool noPrefix = false;
    bool hotkey = false;
    bool first = true;
    std::string kind, resourceId, controlName, controlId;
    NarrowTextList listItems;
    long listControl = -1;
    const UINT codePage = TargetCodePage();

    for (const auto& piece : pieces) {
        if (const CTextLabelPiece* part = TextOf(*piece)) {
            std::u16string t = part->text.str();
            ReplaceAll(t, u"%", u"%%");
            if (hotkey && !isList && !isCaption && !t.empty())
                AddHotkey(hotkeys, t[0] == u' ' ? u'&' : t[0],
                          ControlDescription(controlName, controlId));
            if (isList)
                EscapeControls(t);
            else if (!noPrefix && !isCaption) {
                ReplaceAll(t, u"&", u"&&");
            }
            text += t;
            stale = false;
            hotkey = false;
            continue;
        }
        const TagDescriptor* tag = TagOf(*piece);
        if (tag == nullptr)
            continue;
        const std::u16string_view tagText = tag->tagText;
        if (tag->inlineTag) {
            std::u16string t = tag->tagText.str();
            if (!isList)
                UnescapeControls(t);
            text += t;
            if (Contains(t, u"&"))
                hotkey = true;
        } else if (tag->startTag && !tag->endTag) {
            if (Contains(tagText, u"dialog")) {
                afterDialog = true;
            } else {
                isCaption = afterDialog && Contains(tagText, u"caption");
                afterDialog = false;
            }
            if (first) {
                kind = Narrow(GetTagWord(*tag));
                resourceId = GetIdAttribute(*tag);
                first = false;
            } else {
                controlName = Narrow(GetTagWord(*tag));
                controlId = GetIdAttribute(*tag);
            }
            open = true;
            offered = IsSegmentOpen(*tag);
            if (Contains(tagText, u"combobox") || Contains(tagText, u"listbox")) {
                listControl = ListControlId(tagText);
                isList = true;
            }
            if (Contains(tagText, u"\"SS_NOPREFIX"))
                noPrefix = true;
        } else if (tag->endTag && !tag->startTag) {
            if (Contains(tagText, u"caption"))
                isCaption = false;
            if (open) {
                const std::size_t limit = isList ? kListItemTextLimit : kDialogTextLimit;
                if ((text.empty() && offered) || text.size() > limit)
                    VerifyTextLength(text, limit, kind, resourceId, controlName, controlId);
                // A text of inline tags alone is no translation.
                if (stale)
                    text.clear();
                if (!text.empty() && hotkey) {
                    const std::string description = ControlDescription(controlName, controlId);
                    AlertHotkeyAtEnd("dialog", resourceId, description);
                    if (!isList && !isCaption)
                        AddHotkey(hotkeys, u'&', description);
                }
                if (isList)
                    listItems.push_back(Narrow(text, codePage));
                else
                    newTexts.push_back(text);
                text.clear();
                stale = true;
                hotkey = false;
            }
            if (Contains(tagText, u"combobox") || Contains(tagText, u"listbox")) {
                CDlgInitTable::GetInstance().SetItems(resourceId, static_cast<WORD>(listControl),
                                                      std::move(listItems));
                listItems.clear();
                isList = false;
            }
            open = false;
            noPrefix = false;
        }
    }
    ReportDuplicateHotkeys(hotkeys, "dialog", resourceId);
}

} // namespace tervane
