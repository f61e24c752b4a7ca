#pragma once
// Readable label tokens in test failures: type and UTF-8 text.
#include <ostream>

#include "label/grammars/label_token.h"
#include "platform/pe/resource_name_text.h"

namespace tervane {

inline void PrintTo(const LabelToken& token, std::ostream* out) {
    *out << token.type << " [" << pe::Utf16ToUtf8(token.text) << "]";
}

} // namespace tervane
