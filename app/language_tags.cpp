#include "app/language_tags.h"

#include <charconv>

#include "platform/locale/language_code_pages.h"

namespace tervane::app {

std::optional<LANGID> ParseLanguage(std::string_view text) {
    if (text.empty())
        return std::nullopt;
    unsigned long value = 0;
    const char* first = text.data();
    const char* last = text.data() + text.size();
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        first += 2;
        base = 16;
    }
    if (first != last && (base == 16 || (*first >= '0' && *first <= '9'))) {
        auto [end, error] = std::from_chars(first, last, value, base);
        if (error != std::errc() || end != last || value > 0xFFFF)
            return std::nullopt;
        return static_cast<LANGID>(value);
    }
    // The platform's locale names are the tags; where two identifiers share
    // one, the lower answers.
    auto found = locale::FindLanguageByName(text);
    if (!found)
        return std::nullopt;
    return found->language;
}

} // namespace tervane::app
