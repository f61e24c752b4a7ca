#pragma once
// A resource whose bytes can't be read. The exception keeps its fixed text; the
// offset within the resource and the field that failed go beside it, into the
// thread's failure place, for the host to show.
#include <cstddef>
#include <string_view>

namespace tervane {

[[noreturn]] void ThrowCorrupted(std::size_t offset, std::string_view field);

} // namespace tervane
