#pragma once
// What the merge of a translated menu does to each item's new pieces before
// they replace the old ones: surplus hotkey marks out (in a final conversion),
// the label's '&' and escapes back to the resource's form, and the hotkeys and
// shortcuts noted for the clash reports.
#include <string>

#include "label/pieces/label_piece.h"
#include "model/text_checks.h"

namespace tervane {

// One label keeps its first hotkey mark.
void RemoveSurplusHotkeys(CLabelPieceList& pieces);
// '&' of the text doubled; the escapes of the inline tags as control characters.
void NormaliseMenuPieces(CLabelPieceList& pieces);
// Notes the item's hotkey in the level's table; menuId takes the id of the
// menu's root tag. Alerts a '&' with no character behind it.
void CheckMenuHotkey(const CLabelPieceList& pieces, HotkeyTable& level, std::string& menuId);
// Notes the item's shortcuts in the menu's table.
void CheckMenuShortcut(const CLabelPieceList& pieces, ShortcutTable& shortcuts);

} // namespace tervane
