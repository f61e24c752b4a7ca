#pragma once
// One typed token of a label, with its text in the escaped input form.
#include <cstdint>
#include <string>
#include <vector>

namespace tervane {

struct LabelToken {
    std::uint32_t type = 0;
    std::u16string text;

    bool operator==(const LabelToken&) const = default;
};

// The list owns its records, so the caller has nothing to free.
using LabelTokenList = std::vector<LabelToken>;

namespace label_token {
inline constexpr std::uint32_t kText = 1;
inline constexpr std::uint32_t kSpecial = 2;    // an escape of the String and Dialog kinds
inline constexpr std::uint32_t kMark = 3;       // hotkey mark, menu escape, shortcut separator
inline constexpr std::uint32_t kTab = 5;        // the tab in front of a menu shortcut
inline constexpr std::uint32_t kConversion = 8; // printf-like conversion of a string
} // namespace label_token

// Grammar kinds as the resource model names them.
enum class LabelKind : std::uint16_t { String = 1, Menu = 2, Dialog = 3 };

} // namespace tervane
