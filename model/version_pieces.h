#pragma once
// The pieces of a version value. Values are not label-analysed: '%', '&'
// and backslashes are plain text, and only the two line characters are tags.
#include <string>
#include <string_view>

#include "label/pieces/label_piece.h"

namespace tervane {

// The entry of one value: <key>, its texts and line marks, </key>.
CLabelPieceList ParseValue(std::string_view key, std::u16string_view value);

} // namespace tervane
