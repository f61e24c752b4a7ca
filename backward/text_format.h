#pragma once
// printf into a string, for the fixed message texts of the backward conversion.
#include <string>

namespace tervane {

std::string FormatText(const char* format, ...) __attribute__((format(printf, 1, 2)));

} // namespace tervane
