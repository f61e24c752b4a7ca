#include "backward/update_visitor.h"

#include <cstdlib>

#include "backward/resource_transaction.h"
#include "frame/conversion_state.h"
#include "frame/diagnostics/exceptions.h"
#include "frame/diagnostics/trace.h"
#include "label/pieces/tag_predicates.h"
#include "model/string_block.h"
#include "model/text_checks.h"
#include "model/text_util.h"
#include "platform/locale/code_pages.h"

namespace tervane {

namespace {

constexpr long kStringsPerBlock = 16;

bool Contains(std::u16string_view text, std::u16string_view word) {
    return text.find(word) != std::u16string_view::npos;
}

} // namespace

void CUpdateVisitor::ClearContext() {
    resourceKind.clear();
    resourceId.clear();
    controlName.clear();
    controlId.clear();
    isSeparator = 0;
}

long CUpdateVisitor::GetUnitNumber(const CLabelPieceList& pieces) {
    for (const auto& piece : pieces) {
        const TagDescriptor* tag = TagOf(*piece);
        if (tag == nullptr || tag->inlineTag)
            continue;
        resourceKind = Narrow(GetTagWord(*tag));
        resourceId = GetIdAttribute(*tag);
        // The same reading as a string's number: between the first two quotes.
        return GetStringNumber(pieces);
    }
    return 0;
}

std::u16string CUpdateVisitor::GetTranslatedText(const CLabelPieceList& pieces, bool escape) {
    std::u16string result;
    bool first = true;
    bool inShortcut = false;
    for (const auto& piece : pieces) {
        if (const CTextLabelPiece* text = TextOf(*piece)) {
            std::u16string t = text->text.str();
            if (escape)
                ReplaceAll(t, u"%", u"%%");
            result += t;
            continue;
        }
        const TagDescriptor* tag = TagOf(*piece);
        if (tag == nullptr)
            continue;
        // A separator that closes its pop-up is followed by </menu>, which
        // leaves it a separator.
        if (tag->tagText != u"</menu>")
            isSeparator = Contains(tag->tagText, u"separator") ? 1 : 0;
        if (tag->startTag && !tag->endTag) {
            if (first) {
                controlName = Narrow(GetTagWord(*tag));
                controlId = GetIdAttribute(*tag);
                first = false;
            }
            if (Contains(tag->tagText, u"shortcut"))
                inShortcut = true;
        }
        if (tag->inlineTag != 1) {
            // The tab between a menu label's text and its shortcut.
            if (tag->tagText == u"<shortcut>" && tag->endTag == 0)
                result += u'\t';
            continue;
        }
        std::u16string t = tag->tagText.empty() ? tag->name.str() : tag->tagText.str();
        if (inShortcut) {
            EscapeControls(t);
            ReplaceAll(t, u"&", u"&&");
        }
        if (escape)
            UnescapeControls(t);
        result += t;
    }
    return result;
}

int CUpdateVisitor::VerifyTranslatedTextLen(std::u16string& text, std::size_t maximum,
                                            bool allowEmpty, bool isPopup) {
    const TextContext context{resourceKind, resourceId, controlName, controlId};
    const bool empty = text.empty() || text == u"\t";
    if (empty && isSeparator == 0) {
        const std::string idText =
            resourceKind.find("menu") != std::string::npos ? " id = " + resourceId : std::string();
        if (!allowEmpty)
            RaiseEmptyText(context, idText);
        if (g_writerMode == 0 && isPopup)
            text += u"Click here to view pop-up Menu";
        AddConversionMessage(EmptyTextMessage("Alert", context, idText));
    }
    LimitTextLength(text, maximum, context, "CUpdateVisitor", "VerifyTranslatedTextLen");
    return 0;
}

int CUpdateVisitor::UpdateResourceData(WORD type, const std::string& identifier, const void* data,
                                       DWORD size, WORD language) {
    return UpdateOneResource(workPath, type, identifier, data, size, language,
                             TransactionKind::Update);
}

int CUpdateVisitor::VisitStringBlock(CStringBlockResource* resource) {
    ClearContext();
    Trace("\nReady to construct string buffer............\n");
    const long block = std::atol(resource->identifierText.c_str());
    const std::string number = std::to_string(block);
    Trace("Constructing string buffer id = " + number + "............\n");

    CResourceBuffer buffer;
    buffer.SetContext("string block id = " + resource->identifierText);
    const long firstNumber = block * kStringsPerBlock - kStringsPerBlock;
    const long last = block * kStringsPerBlock - 1;
    long next = firstNumber;
    long written = 0;
    for (const PieceEntry& entry : resource->entries) {
        const long at = GetUnitNumber(entry);
        if (at < firstNumber || at > last)
            continue;
        std::u16string text = GetTranslatedText(entry, true);
        VerifyTranslatedTextLen(text, kStringTextLimit, false, false);
        if (at < next)
            // Two entries of one number would shift every string behind them.
            throw TervaneFilterException(
                KeepText(("The strings of string block id = " + resource->identifierText +
                          " are out of order at string " + std::to_string(at) + ".")
                             .c_str()),
                "CUpdateVisitor", "VisitStringBlock");
        for (; next < at; ++next, ++written)
            buffer.WriteEmptyCountedText();
        buffer.WriteCountedText(text);
        ++next;
        ++written;
    }
    Trace("String buffer has been constructed.\n");
    for (; written < kStringsPerBlock; ++written)
        buffer.WriteEmptyCountedText();

    Trace("Deleting source string block id = " + number + "..........\n");
    Trace("Updating translated string block id = " + number + "............\n");
    UpdateResourceData(kStringType, resource->identifierText, buffer.data(), buffer.used(),
                       resource->targetLanguage);
    return 0;
}

} // namespace tervane
