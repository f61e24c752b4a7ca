#include "label/runtime/ss_pool.h"

#include <new>

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

namespace {

constexpr std::size_t kSizes[] = {64, 128, 256};
constexpr std::size_t kClasses = sizeof kSizes / sizeof kSizes[0];
// Enough for the deepest label; anything beyond goes back to the heap.
constexpr std::size_t kMaxKept = 256;

int ClassOf(std::size_t size) {
    for (std::size_t c = 0; c < kClasses; ++c)
        if (size <= kSizes[c])
            return static_cast<int>(c);
    return -1;
}

struct FreeList {
    void* head = nullptr;
    std::size_t count = 0;
    ~FreeList() {
        while (head) {
            void* next = *static_cast<void**>(head);
            ::operator delete(head);
            head = next;
        }
    }
};

thread_local FreeList lists[kClasses];

} // namespace

void* Allocate(std::size_t size) noexcept {
    int c = TERVANE_SS_POOL ? ClassOf(size) : -1;
    if (c < 0)
        return ::operator new(size, std::nothrow);
    FreeList& list = lists[c];
    if (void* block = list.head) {
        list.head = *static_cast<void**>(block);
        --list.count;
        return block;
    }
    return ::operator new(kSizes[c], std::nothrow);
}

void Free(void* block, std::size_t size) noexcept {
    if (!block)
        return;
    int c = TERVANE_SS_POOL ? ClassOf(size) : -1;
    if (c < 0 || lists[c].count >= kMaxKept) {
        ::operator delete(block);
        return;
    }
    FreeList& list = lists[c];
    *static_cast<void**>(block) = list.head;
    list.head = block;
    ++list.count;
}

} // namespace tervane::ss_pool
