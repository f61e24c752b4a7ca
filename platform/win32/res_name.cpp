#include "platform/win32/res_name.h"

#include <charconv>

ResName ResName::FromText(std::string_view text) {
    if (text.size() > 1 && text[0] == '#') {
        unsigned value = 0;
        auto digits = text.substr(1);
        auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        // Win32 takes the digits up to the first non-digit and truncates to 16 bits.
        if (ec == std::errc() || end != digits.data())
            return ResName(static_cast<WORD>(value));
    }
    return ResName(std::string(text));
}

const std::string& ResName::Name() const {
    static const std::string empty;
    return IsOrdinal() ? empty : std::get<std::string>(value_);
}

std::string ResName::ToString() const {
    return IsOrdinal() ? std::to_string(Ordinal()) : std::get<std::string>(value_);
}
