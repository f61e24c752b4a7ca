#pragma once
// The ANSI and OEM code pages of every language identifier Windows defines.
#include <optional>
#include <string_view>

#include "platform/win32/types.h"

namespace tervane::locale {

struct LanguageCodePages {
    LANGID language;
    UINT ansi; // 0 for a Unicode-only language
    UINT oem;  // 1 for a Unicode-only language
    // The locale's name as Windows reports it (LOCALE_SNAME): "de-DE".
    const char* name = "";
};

// Only concrete languages: the LANG_NEUTRAL aliases of the defaults are
// resolved by the caller.
std::optional<LanguageCodePages> FindLanguageCodePages(LANGID language);

// The concrete language of a locale name, compared without regard to case;
// a name with a sort order ("es-ES_tradnl") also answers to its bare part
// when no locale has that name exactly.
std::optional<LanguageCodePages> FindLanguageByName(std::string_view name);

} // namespace tervane::locale
