#pragma once
// The escaped input form of a label, which the grammars read and the tokens
// keep: backslashes doubled, control characters as two-character escapes.
#include <string>
#include <string_view>

#include "label/grammars/label_token.h"

namespace tervane {

// CR, LF, backspace and form feed become \r \n \b \f; a tab becomes \t only
// for menus, where it leads the shortcut.
std::u16string EscapeLabel(std::u16string_view text, LabelKind kind);

} // namespace tervane
