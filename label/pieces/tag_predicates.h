#pragma once
// How every part of the system recognises a tag. IsOpen and IsClose decide by
// substring in the tag text, so IsOpen(u"item") holds for <items> too: each
// predicate below is written, and ordered, with that in mind.
#include <optional>
#include <string>
#include <string_view>

#include "host/tag_descriptor.h"
#include "label/pieces/label_piece.h"

namespace tervane {

bool IsOpen(const TagDescriptor& tag, std::u16string_view word);
bool IsClose(const TagDescriptor& tag, std::u16string_view word);

// 1 menu, 2 dialog, 3 string table, 4 version info, 0 none.
int ResourceKindOfOpen(const TagDescriptor& tag);
int ResourceKindOfClose(const TagDescriptor& tag);

bool IsResourceOpen(const TagDescriptor& tag);
bool IsResourceClose(const TagDescriptor& tag);
bool IsDialogsOpen(const TagDescriptor& tag);
bool IsDialogsClose(const TagDescriptor& tag);
bool IsDialogOpen(const TagDescriptor& tag);
bool IsDialogClose(const TagDescriptor& tag);
bool IsMenuOpen(const TagDescriptor& tag);
bool IsMenuClose(const TagDescriptor& tag);
bool IsMenusOpen(const TagDescriptor& tag);
bool IsMenusClose(const TagDescriptor& tag);
bool IsStringOpen(const TagDescriptor& tag);
bool IsVersionInfoOpen(const TagDescriptor& tag);
bool IsVersionInfoEntryOpen(const TagDescriptor& tag);
bool IsResourcesOpen(const TagDescriptor& tag);
bool IsResourcesClose(const TagDescriptor& tag);
bool IsNamedResourceOpen(const TagDescriptor& tag);
bool IsShortcutOpen(const TagDescriptor& tag);
bool IsShortcutClose(const TagDescriptor& tag);
bool IsSegmentOpen(const TagDescriptor& tag);
bool IsSegmentClose(const TagDescriptor& tag);
bool IsControlTextOpen(const TagDescriptor& tag);
bool IsControlTextClose(const TagDescriptor& tag);
bool IsItemOpen(const TagDescriptor& tag);
bool IsItemClose(const TagDescriptor& tag);
bool HasIdAttribute(const TagDescriptor& tag);
bool IsSeparatorMark(const TagDescriptor& tag);

// Inline tag classes: numbered placeholders (%1, %12) and the fixed marks may
// change their order within a segment; every other tag may not.
bool IsNumberedPlaceholder(const TagDescriptor& tag);
bool IsFixedInlineTag(const TagDescriptor& tag);
bool IsOrderedTag(const TagDescriptor& tag);

// The value between the two double quotes behind "id", narrowed; empty if none.
std::string GetIdAttribute(const TagDescriptor& tag);
// From behind the first '<' to the first blank, or else to the first '>'.
std::u16string GetTagWord(const TagDescriptor& tag);

// The same on a piece: a text or plain piece is no tag, so every test is false.
bool IsOpen(const CLabelPiece& piece, std::u16string_view word);
bool IsClose(const CLabelPiece& piece, std::u16string_view word);
// Behind the first opening tag of group in stream, if there is one: a
// resource's entries start there, and the group's tag stays for the next
// resource of its kind.
std::optional<std::size_t> AfterGroupOpen(const CPieceStream& stream, std::u16string_view group);
int ResourceKindOfOpen(const CLabelPiece& piece);
int ResourceKindOfClose(const CLabelPiece& piece);
bool IsResourceOpen(const CLabelPiece& piece);
bool IsResourceClose(const CLabelPiece& piece);
bool IsDialogsOpen(const CLabelPiece& piece);
bool IsDialogsClose(const CLabelPiece& piece);
bool IsDialogOpen(const CLabelPiece& piece);
bool IsDialogClose(const CLabelPiece& piece);
bool IsMenuOpen(const CLabelPiece& piece);
bool IsMenuClose(const CLabelPiece& piece);
bool IsMenusOpen(const CLabelPiece& piece);
bool IsMenusClose(const CLabelPiece& piece);
bool IsStringOpen(const CLabelPiece& piece);
bool IsVersionInfoOpen(const CLabelPiece& piece);
bool IsVersionInfoEntryOpen(const CLabelPiece& piece);
bool IsResourcesOpen(const CLabelPiece& piece);
bool IsResourcesClose(const CLabelPiece& piece);
bool IsNamedResourceOpen(const CLabelPiece& piece);
bool IsShortcutOpen(const CLabelPiece& piece);
bool IsShortcutClose(const CLabelPiece& piece);
bool IsSegmentOpen(const CLabelPiece& piece);
bool IsSegmentClose(const CLabelPiece& piece);
bool IsControlTextOpen(const CLabelPiece& piece);
bool IsControlTextClose(const CLabelPiece& piece);
bool IsItemOpen(const CLabelPiece& piece);
bool IsItemClose(const CLabelPiece& piece);
bool HasIdAttribute(const CLabelPiece& piece);
bool IsSeparatorMark(const CLabelPiece& piece);
bool IsNumberedPlaceholder(const CLabelPiece& piece);
bool IsFixedInlineTag(const CLabelPiece& piece);
bool IsOrderedTag(const CLabelPiece& piece);
std::string GetIdAttribute(const CLabelPiece& piece);
std::u16string GetTagWord(const CLabelPiece& piece);

} // namespace tervane
