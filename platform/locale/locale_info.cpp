#include "platform/locale/locale_info.h"

#include <charconv>
#include <cstring>

#include "platform/locale/language_code_pages.h"
#include "platform/win32/last_error.h"

namespace {

constexpr LANGID kEnglishUs = 0x0409;

// The LANG_NEUTRAL aliases that Windows accepts (neutral, user, system and the
// three custom defaults) all stand for this process's locale, which is en-US;
// 0x007F is the invariant locale (1252/437); any other neutral one is unknown.
std::optional<tervane::locale::LanguageCodePages> Resolve(LCID locale) {
    // Only the default sort is known: the system passes bare language identifiers.
    if (locale > 0xFFFF)
        return std::nullopt;
    const LANGID language = LANGIDFROMLCID(locale);
    if (PRIMARYLANGID(language) == LANG_NEUTRAL) {
        switch (language) {
        case 0x0000:
        case LOCALE_USER_DEFAULT:
        case LOCALE_SYSTEM_DEFAULT:
        case 0x0C00:
        case 0x1000:
        case 0x1400:
            return tervane::locale::FindLanguageCodePages(kEnglishUs);
        default:
            return std::nullopt;
        }
    }
    if (language == LOCALE_INVARIANT)
        return tervane::locale::LanguageCodePages{language, 1252, 437, ""};
    return tervane::locale::FindLanguageCodePages(language);
}

} // namespace

LCID GetUserDefaultLCID() {
    return kEnglishUs;
}
LCID GetSystemDefaultLCID() {
    return kEnglishUs;
}
LCID GetThreadLocale() {
    return kEnglishUs;
}

int GetLocaleInfoA(LCID locale, LCTYPE type, char* buffer, int size) {
    if (size < 0 || (size > 0 && buffer == nullptr)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const auto pages = Resolve(locale);
    if (!pages) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    UINT value = 0;
    switch (type & ~LOCALE_NOUSEROVERRIDE) {
    case LOCALE_IDEFAULTANSICODEPAGE:
        value = pages->ansi;
        break;
    case LOCALE_IDEFAULTCODEPAGE:
        value = pages->oem;
        break;
    default:
        SetLastError(ERROR_INVALID_FLAGS);
        return 0;
    }
    char text[16];
    const auto [end, ec] = std::to_chars(text, text + sizeof text, value);
    const int needed = static_cast<int>(end - text) + 1;
    if (size == 0)
        return needed;
    if (size < needed) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::memcpy(buffer, text, static_cast<std::size_t>(needed - 1));
    buffer[needed - 1] = '\0';
    return needed;
}
