#pragma once
// What the checks share: the lists they walk, the one road by which a finding
// reaches the host's report, and the composing of its message.
#include <string>
#include <string_view>
#include <vector>

#include "host/editor.h"
#include "label/pieces/label_piece.h"
#include "label/pieces/tag_predicates.h"

namespace tervane::verify {

// Views into the run's lists, which own the pieces. A check may change a
// piece's tag text, and the change stays for the checks behind it.
using Pieces = std::vector<CLabelPiece*>;
using Tags = std::vector<CTagLabelPiece*>;

inline constexpr LONG kNote = 1;
inline constexpr LONG kWarning = 2;
inline constexpr LONG kError = 3;

// Calls the report's operation 4; a failed call throws _com_error.
void Report(IVerificationReport* report, LONG severity, LONG code, const std::u16string& message,
            const PieceRange& range);

// format with each %s, in turn, replaced by the next of args.
std::u16string Compose(std::string_view format, std::initializer_list<std::u16string_view> args);

// The piece's own answer, not a dynamic_cast: the stages ask it of every piece.
inline CTagLabelPiece* AsTag(CLabelPiece* piece) {
    return piece != nullptr ? const_cast<CTagLabelPiece*>(piece->AsTag()) : nullptr;
}
inline bool IsStartTag(const CTagLabelPiece& tag) {
    return tag.tag.startTag != 0 && tag.tag.endTag == 0;
}
inline bool IsEndTag(const CTagLabelPiece& tag) {
    return tag.tag.endTag != 0 && tag.tag.startTag == 0;
}
inline bool HasNoMark(const CTagLabelPiece& tag) {
    return tag.tag.startTag == 0 && tag.tag.endTag == 0;
}
inline bool IsShortcutTag(const CTagLabelPiece& tag) {
    return tag.tag.name.view() == u"shortcut";
}

// The tags with a start or an end mark, in order: no text, no inline tag, no
// <separator/>.
Tags StructuralTags(const Pieces& pieces);

Pieces View(const CLabelPieceList& list);

} // namespace tervane::verify
