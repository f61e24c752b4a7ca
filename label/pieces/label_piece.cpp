#include "label/pieces/label_piece.h"

#include <algorithm>

#include "platform/locale/code_pages.h"

namespace tervane {

// Pieces are carved in steps of 16 bytes: the kept words cost no step.
static_assert(sizeof(void*) != 8 || sizeof(CTagLabelPiece) <= 80);

// The texts of structural tags are nearly always ASCII, which the process's
// code page (UTF-8) keeps unit for unit: no conversion needed.
WideText WidenTagText(std::string_view text) {
    for (const char c : text)
        if (static_cast<unsigned char>(c) >= 0x80)
            return WideText(Widen(text));
    // Widened on the stack when short, as tag texts are.
    char16_t units[64];
    if (text.size() > sizeof units / sizeof units[0])
        return WideText(std::u16string(text.begin(), text.end()));
    std::copy(text.begin(), text.end(), units);
    return WideText(std::u16string_view(units, text.size()));
}

std::unique_ptr<CTagLabelPiece> MakeStructuralTag(WideText name, WideText tagText, LONG endTag,
                                                  LONG startTag) {
    return std::make_unique<CTagLabelPiece>(std::move(name), std::move(tagText), 1, 0, endTag,
                                            startTag, 0);
}

std::unique_ptr<CTagLabelPiece> MakeStructuralTag(WideText name, WideText tagText, LONG endTag,
                                                  LONG startTag, std::uint32_t words) {
    return std::make_unique<CTagLabelPiece>(std::move(name), std::move(tagText), 1, 0, endTag,
                                            startTag, 0, words);
}

std::unique_ptr<CTagLabelPiece> MakeStructuralTag(WideText name, const ConstantTagText& tagText,
                                                  LONG endTag, LONG startTag) {
    return MakeStructuralTag(std::move(name), tagText.text, endTag, startTag, tagText.words);
}

std::unique_ptr<CTagLabelPiece> MakeOpenTag(std::string_view name, std::string_view tagText) {
    return MakeStructuralTag(WidenTagText(name), WidenTagText(tagText), 0, 1);
}

std::unique_ptr<CTagLabelPiece> MakeCloseTag(std::string_view name, std::string_view tagText) {
    return MakeStructuralTag(WidenTagText(name), WidenTagText(tagText), 1, 0);
}

std::unique_ptr<CTagLabelPiece> MakeEmptyTag(std::string_view name, std::string_view tagText) {
    return MakeStructuralTag(WidenTagText(name), WidenTagText(tagText), 0, 0);
}

std::unique_ptr<CTagLabelPiece> MakeOpenTag(std::u16string_view name, std::u16string_view tagText) {
    return MakeStructuralTag(WideText(name), WideText(tagText), 0, 1);
}

std::unique_ptr<CTagLabelPiece> MakeCloseTag(std::u16string_view name,
                                             std::u16string_view tagText) {
    return MakeStructuralTag(WideText(name), WideText(tagText), 1, 0);
}

std::unique_ptr<CTagLabelPiece> MakeEmptyTag(std::u16string_view name,
                                             std::u16string_view tagText) {
    return MakeStructuralTag(WideText(name), WideText(tagText), 0, 0);
}

std::unique_ptr<CTagLabelPiece> MakeInlineTag(std::u16string_view text) {
    // Name and tag text are one text: one block for both.
    WideText tagText(text);
    WideText name = tagText;
    return std::make_unique<CTagLabelPiece>(std::move(name), std::move(tagText), 0, 1, 0, 0, 1);
}

std::unique_ptr<CTextLabelPiece> MakeText(std::u16string_view text) {
    return std::make_unique<CTextLabelPiece>(WideText(text));
}

std::unique_ptr<CTextLabelPiece> MakeSharedText(WideText text) {
    return std::make_unique<CTextLabelPiece>(std::move(text));
}

std::unique_ptr<CLabelPiece> ClonePiece(const CLabelPiece& piece) {
    if (const CTagLabelPiece* tag = piece.AsTag())
        return std::make_unique<CTagLabelPiece>(*tag);
    if (const CTextLabelPiece* text = piece.AsText())
        return std::make_unique<CTextLabelPiece>(*text);
    return std::make_unique<CLabelPiece>(piece);
}

CLabelPieceList CloneList(const CLabelPieceList& pieces) {
    CLabelPieceList copy;
    copy.reserve(pieces.size());
    for (const auto& piece : pieces)
        copy.push_back(ClonePiece(*piece));
    return copy;
}

std::u16string JoinLabel(const CLabelPieceList& pieces) {
    std::u16string label;
    for (const auto& piece : pieces) {
        if (const CTextLabelPiece* text = TextOf(*piece)) {
            label += text->text.view();
        } else if (const TagDescriptor* tag = TagOf(*piece); tag != nullptr && tag->inlineTag) {
            label += tag->tagText.view();
        }
    }
    return label;
}

} // namespace tervane
