#pragma once
// Small blocks for lexemes and stack elements, recycled per thread: a label
// makes a dozen of them and frees them all a microsecond later. Under the
// sanitizers every block comes from the heap, so that misuse stays visible.
// Taking and giving back a kept block is inline; the heap is not.
#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define TERVANE_SS_POOL 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TERVANE_SS_POOL 0
#endif
#endif
#ifndef TERVANE_SS_POOL
#define TERVANE_SS_POOL 1
#endif

namespace tervane::ss_pool {

inline constexpr std::size_t kSizes[] = {64, 128, 256};
inline constexpr std::size_t kClasses = sizeof kSizes / sizeof kSizes[0];
// Enough for the deepest label; anything beyond goes back to the heap.
inline constexpr std::size_t kMaxKept = 256;

constexpr int ClassOf(std::size_t size) {
    for (std::size_t c = 0; c < kClasses; ++c)
        if (size <= kSizes[c])
            return static_cast<int>(c);
    return -1;
}

// Plain data, so that reaching it costs no call; the blocks it keeps are
// freed when the thread ends by a keeper that the first heap block installs.
struct FreeList {
    void* head;
    std::size_t count;
};
extern constinit thread_local FreeList lists[kClasses];

// The heap's side: null when the heap fails.
void* AllocateFromHeap(std::size_t size, int sizeClass) noexcept;
void FreeToHeap(void* block) noexcept;
// Makes sure that this thread's kept blocks are freed when it ends.
void InstallKeeper() noexcept;

inline void* Allocate(std::size_t size) noexcept {
    const int c = TERVANE_SS_POOL ? ClassOf(size) : -1;
    if (c >= 0) {
        FreeList& list = lists[c];
        if (void* block = list.head) {
            list.head = *static_cast<void**>(block);
            --list.count;
            return block;
        }
    }
    return AllocateFromHeap(size, c);
}

inline void Free(void* block, std::size_t size) noexcept {
    if (!block)
        return;
    const int c = TERVANE_SS_POOL ? ClassOf(size) : -1;
    if (c < 0 || lists[c].count >= kMaxKept) {
        FreeToHeap(block);
        return;
    }
    FreeList& list = lists[c];
    if (list.count == 0)
        InstallKeeper();
    *static_cast<void**>(block) = list.head;
    list.head = block;
    ++list.count;
}

} // namespace tervane::ss_pool
