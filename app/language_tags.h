#pragma once
// A language as a user names it on the command line: a decimal or 0x-hex
// language identifier, or a language tag such as de-DE.
#include <optional>
#include <string_view>

#include "platform/win32/types.h"

namespace tervane::app {

std::optional<LANGID> ParseLanguage(std::string_view text);

} // namespace tervane::app
