#pragma once
// The pieces that carry a label's text and tags between the resources and the
// host: a tag or a run of text, told apart by their dynamic type.
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/tag_descriptor.h"
#include "label/pieces/tag_words.h"
#include "platform/memory/block_pool.h"
#include "platform/win32/types.h"

namespace tervane {

// A place in the host's document; opaque here, only compared and handed back.
struct PiecePosition {
    LONG first = 0;
    LONG second = 0;
    bool operator==(const PiecePosition&) const = default;
};

struct PieceRange {
    PiecePosition start;
    PiecePosition end;
    bool operator==(const PieceRange&) const = default;
};

class CTagLabelPiece;
class CTextLabelPiece;

class CLabelPiece {
public:
    CLabelPiece() = default;
    explicit CLabelPiece(const PieceRange& r) : range(r) {}
    CLabelPiece(const CLabelPiece&) = default;
    CLabelPiece& operator=(const CLabelPiece&) = default;
    virtual ~CLabelPiece() = default;

    // Pieces come from this thread's pool; the size is that of the piece's
    // own type.
    static void* operator new(std::size_t size) { return block_pool::Allocate(size); }
    static void operator delete(void* block, std::size_t size) noexcept {
        block_pool::Free(block, size);
    }

    // The piece as a tag or a text piece, or null: what a dynamic_cast would
    // give, for the price of one call.
    virtual const CTagLabelPiece* AsTag() const { return nullptr; }
    virtual const CTextLabelPiece* AsText() const { return nullptr; }

    PieceRange range;
};

class CTagLabelPiece : public CLabelPiece {
public:
    CTagLabelPiece() = default;
    explicit CTagLabelPiece(TagDescriptor descriptor) : tag(std::move(descriptor)) {}
    // Filled in place: a descriptor built aside would be moved twice. words
    // are those of tagText, packed, when the caller knows them.
    CTagLabelPiece(WideText name, WideText tagText, LONG structural, LONG inlineClass, LONG endTag,
                   LONG startTag, LONG inlineTag, std::uint32_t words = kWordsUnknown)
        : tag{std::move(name), std::move(tagText), structural, inlineClass,
              endTag,          startTag,           inlineTag},
          words_(words) {}

    const CTagLabelPiece* AsTag() const override { return this; }

    // The words of the tag text: those it was built with, or searched now.
    TagWords Words() const { return UnpackTagWords(words_, tag.tagText); }

    // The words fill the descriptor's tail padding: the piece stays in its size class.
    [[no_unique_address]] TagDescriptor tag;

private:
    std::uint32_t words_ = kWordsUnknown;
};

// A tag text known when the program is built, with its words.
struct ConstantTagText {
    WideText text;
    std::uint32_t words;
};
template <std::size_t N> consteval ConstantTagText ConstantTag(const char16_t (&literal)[N]) {
    return {WideText::Constant(literal),
            PackTagWords(FindTagWordsPlain(std::u16string_view(literal, N - 1)))};
}

class CTextLabelPiece : public CLabelPiece {
public:
    CTextLabelPiece() = default;
    explicit CTextLabelPiece(WideText t) : text(std::move(t)) {}

    const CTextLabelPiece* AsText() const override { return this; }

    // Shared by counting, as tag texts are: copies of a piece share it.
    WideText text;
    LONG inSegment = 0; // 1 if the text came between the host's segment marks
};

// A list owns its pieces, in document order.
using CLabelPieceList =
    std::vector<std::unique_ptr<CLabelPiece>, block_pool::Allocator<std::unique_ptr<CLabelPiece>>>;

// The translated stream of a backward conversion. Each resource takes its
// pieces from just behind the few that stay at the head, so removing them
// must not shift the rest of the stream.
using CPieceStream = std::deque<std::unique_ptr<CLabelPiece>>;

// A narrow name or tag text widened with the process's code page.
WideText WidenTagText(std::string_view text);

// Name and tag text are narrow here and widened with the process's code page.
std::unique_ptr<CTagLabelPiece> MakeOpenTag(std::string_view name, std::string_view tagText);
std::unique_ptr<CTagLabelPiece> MakeCloseTag(std::string_view name, std::string_view tagText);
std::unique_ptr<CTagLabelPiece> MakeEmptyTag(std::string_view name, std::string_view tagText);
// A structural tag (opening, closing or empty by its marks) that shares its
// name and tag text.
std::unique_ptr<CTagLabelPiece> MakeStructuralTag(WideText name, WideText tagText, LONG endTag,
                                                  LONG startTag);
// The same with the tag text's words, packed, as the caller knows them.
std::unique_ptr<CTagLabelPiece> MakeStructuralTag(WideText name, WideText tagText, LONG endTag,
                                                  LONG startTag, std::uint32_t words);
std::unique_ptr<CTagLabelPiece> MakeStructuralTag(WideText name, const ConstantTagText& tagText,
                                                  LONG endTag, LONG startTag);
// The same with wide name and tag text, taken as they are.
std::unique_ptr<CTagLabelPiece> MakeOpenTag(std::u16string_view name, std::u16string_view tagText);
std::unique_ptr<CTagLabelPiece> MakeCloseTag(std::u16string_view name, std::u16string_view tagText);
std::unique_ptr<CTagLabelPiece> MakeEmptyTag(std::u16string_view name, std::u16string_view tagText);
std::unique_ptr<CTagLabelPiece> MakeInlineTag(std::u16string_view text);
std::unique_ptr<CTextLabelPiece> MakeText(std::u16string_view text);
// A text piece that shares text.
std::unique_ptr<CTextLabelPiece> MakeSharedText(WideText text);

// The tag of a piece, or null for text and plain pieces.
inline const TagDescriptor* TagOf(const CLabelPiece& piece) {
    const CTagLabelPiece* tag = piece.AsTag();
    return tag != nullptr ? &tag->tag : nullptr;
}
inline const CTextLabelPiece* TextOf(const CLabelPiece& piece) {
    return piece.AsText();
}

// A copy of the piece with its dynamic type and every field.
std::unique_ptr<CLabelPiece> ClonePiece(const CLabelPiece& piece);
CLabelPieceList CloneList(const CLabelPieceList& pieces);

// The label as the pieces spell it: text pieces give their text, inline tags
// their tag text; other tags give nothing.
std::u16string JoinLabel(const CLabelPieceList& pieces);

} // namespace tervane
