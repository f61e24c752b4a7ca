#pragma once
// The ANSI and OEM code pages of every language identifier Windows defines.
#include <optional>

#include "platform/win32/types.h"

namespace tervane::locale {

struct LanguageCodePages {
    LANGID language;
    UINT ansi; // 0 for a Unicode-only language
    UINT oem;  // 1 for a Unicode-only language
};

// Only concrete languages: the LANG_NEUTRAL aliases of the defaults are
// resolved by the caller.
std::optional<LanguageCodePages> FindLanguageCodePages(LANGID language);

} // namespace tervane::locale
