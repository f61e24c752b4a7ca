#pragma once
// Small blocks for lexemes and stack elements, recycled per thread: a label
// makes a dozen of them and frees them all a microsecond later. Under the
// sanitizers every block comes from the heap, so that misuse stays visible.
#include <cstddef>

namespace tervane::ss_pool {

// Null when the heap fails.
void* Allocate(std::size_t size) noexcept;
void Free(void* block, std::size_t size) noexcept;

} // namespace tervane::ss_pool
