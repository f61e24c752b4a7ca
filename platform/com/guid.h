#pragma once
// GUIDs (interface and class identifiers) as values, with the registry form
// {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}. The parser is constexpr so that
// identifiers can be written in the form everybody reads.
#include <array>
#include <compare>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "platform/win32/types.h"

struct GUID {
    DWORD Data1 = 0;
    WORD Data2 = 0;
    WORD Data3 = 0;
    std::array<BYTE, 8> Data4{};

    // Two words at run time: identifiers are compared on every creation and
    // interface query.
    friend constexpr bool operator==(const GUID& a, const GUID& b) {
        if (std::is_constant_evaluated())
            return a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3 &&
                   a.Data4 == b.Data4;
        std::uint64_t wa[2], wb[2];
        std::memcpy(wa, &a, sizeof wa);
        std::memcpy(wb, &b, sizeof wb);
        return ((wa[0] ^ wb[0]) | (wa[1] ^ wb[1])) == 0;
    }
    friend constexpr auto operator<=>(const GUID&, const GUID&) = default;
};
static_assert(sizeof(GUID) == 16 && std::has_unique_object_representations_v<GUID>);

using IID = GUID;
using CLSID = GUID;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

inline constexpr GUID GUID_NULL{};
inline constexpr IID IID_NULL{};
inline constexpr CLSID CLSID_NULL{};

namespace tervane {

namespace guid_detail {
constexpr int HexValue(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}
} // namespace guid_detail

// Exactly 38 characters with braces; digits of either case. Anything else,
// including surrounding white space, is no GUID, as CLSIDFromString holds.
constexpr std::optional<GUID> ParseGuid(std::string_view text) {
    if (text.size() != 38 || text.front() != '{' || text.back() != '}')
        return std::nullopt;
    constexpr std::size_t kDashes[] = {9, 14, 19, 24};
    for (std::size_t dash : kDashes)
        if (text[dash] != '-')
            return std::nullopt;
    std::size_t pos = 1;
    auto next = [&](int digits, std::uint64_t& out) {
        out = 0;
        for (int i = 0; i < digits; ++i, ++pos) {
            if (text[pos] == '-')
                ++pos;
            int v = guid_detail::HexValue(text[pos]);
            if (v < 0)
                return false;
            out = out * 16 + static_cast<std::uint64_t>(v);
        }
        return true;
    };
    GUID g;
    std::uint64_t v = 0;
    if (!next(8, v))
        return std::nullopt;
    g.Data1 = static_cast<DWORD>(v);
    if (!next(4, v))
        return std::nullopt;
    g.Data2 = static_cast<WORD>(v);
    if (!next(4, v))
        return std::nullopt;
    g.Data3 = static_cast<WORD>(v);
    for (BYTE& b : g.Data4) {
        if (!next(2, v))
            return std::nullopt;
        b = static_cast<BYTE>(v);
    }
    return g;
}

// For identifiers written in the source: a malformed one fails to compile.
consteval GUID MakeGuid(std::string_view text) {
    auto g = ParseGuid(text);
    if (!g)
        throw "malformed GUID";
    return *g;
}

// Upper-case digits, braces, as StringFromGUID2 writes them.
std::string GuidToString(const GUID& guid);
std::u16string GuidToWideString(const GUID& guid);

} // namespace tervane
