#pragma once
#include <cstdint>
#include <span>
#include <string>

namespace tervane::xliff {

// Lower-case hex, 64 digits.
std::string Sha256Hex(std::span<const std::uint8_t> bytes);

} // namespace tervane::xliff
