#pragma once
// From label tokens to label pieces: text runs become one text piece as the
// translator sees it, every other token an inline tag in the escaped form.
#include <string>
#include <string_view>

#include "label/grammars/label_token.h"
#include "label/pieces/label_piece.h"

namespace tervane {

// The escapes of a text token undone, one replacement over the whole text
// after the other: two backslashes to one, then "%%" to "%" (String and
// Dialog), then "&&" to "&" (Dialog and Menu).
std::u16string UnescapeLabelText(std::u16string_view text, LabelKind kind);
// The same, appended to out.
void AppendUnescapedLabelText(std::u16string& out, std::u16string_view text, LabelKind kind);

// Appends the pieces of tokens to pieces. Blanks at a tag's edges and the
// tab and shortcut of menus are left to the resource that owns the label.
void AppendTokenPieces(const LabelTokenList& tokens, LabelKind kind, CLabelPieceList& pieces);

} // namespace tervane
