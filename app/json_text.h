#pragma once
// JSON string literals for the JSON Lines outputs of the commands: UTF-8,
// with the escapes JSON requires and any unpaired UTF-16 surrogate written as
// a \uXXXX escape, so that a name no UTF-8 can hold still comes through.
#include <string>
#include <string_view>

namespace tervane::app {

std::string JsonString(std::u16string_view text);
// Text already in UTF-8.
std::string JsonString(std::string_view text);

} // namespace tervane::app
