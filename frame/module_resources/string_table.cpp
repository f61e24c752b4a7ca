#include "frame/module_resources/module_resources.h"

#include <array>
#include <string_view>

namespace tervane::module_resources {

namespace {

constexpr std::uint16_t kEventSourceString = 100;

// A string block holds strings 16(n-1) to 16(n-1)+15 of block n as 16 counted
// UTF-16 strings, empty ones as a bare zero count.
std::vector<std::uint8_t>
BuildBlock(std::uint16_t first,
           std::span<const std::pair<std::uint16_t, std::u16string_view>> strings) {
    std::vector<std::uint8_t> block;
    auto put = [&](std::uint16_t unit) {
        block.push_back(static_cast<std::uint8_t>(unit));
        block.push_back(static_cast<std::uint8_t>(unit >> 8));
    };
    for (std::uint16_t id = first; id < first + 16; ++id) {
        std::u16string_view text;
        for (const auto& [number, value] : strings)
            if (number == id)
                text = value;
        put(static_cast<std::uint16_t>(text.size()));
        for (char16_t unit : text)
            put(unit);
    }
    return block;
}

} // namespace

std::vector<Resource> StringTable() {
    static const std::array<std::pair<std::uint16_t, std::u16string_view>, 1> strings = {
        {{kEventSourceString, u"TervaneFilter"}}};
    constexpr std::uint16_t blockNumber = kEventSourceString / 16 + 1;
    static const std::vector<std::uint8_t> block = BuildBlock((blockNumber - 1) * 16, strings);
    return {{Id{{}, 6}, Id{{}, blockNumber}, kEnglishUs, block}};
}

} // namespace tervane::module_resources
