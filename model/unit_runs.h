#pragma once
// Runs of UTF-16 units that a pass over a text copies as they are, found
// eight units at a time where the processor allows: texts are mostly such
// units, and the few that matter are handled one by one.
#include <cstddef>
#include <cstdint>

namespace tervane {

// How many units at the start of a text stored little-endian, count units
// long, escaping leaves alone: up to the first zero, \b, \n, \f, \r, '&' or
// backslash.
std::size_t PlainEscapeRun(const std::uint8_t* units, std::size_t count);
// How many units at the start of text unescaping leaves alone: up to the
// first backslash or '%'.
std::size_t PlainUnescapeRun(const char16_t* text, std::size_t count);
// How many units at the start of text are none of a, b and c, which may repeat.
std::size_t RunWithout(const char16_t* text, std::size_t count, char16_t a, char16_t b, char16_t c);

} // namespace tervane
