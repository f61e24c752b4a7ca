#include "label/runtime/ss_pool.h"

#include <new>

namespace tervane::ss_pool {

constinit thread_local FreeList lists[kClasses] = {};

namespace {

// Frees the kept blocks when the thread ends; later frees go to the heap.
struct Keeper {
    bool installed = false;
    ~Keeper() {
        for (FreeList& list : lists) {
            while (list.head) {
                void* next = *static_cast<void**>(list.head);
                ::operator delete(list.head);
                list.head = next;
            }
            // Nothing more is kept once the thread's end has begun.
            list.count = kMaxKept;
        }
    }
};
thread_local Keeper keeper;

} // namespace

void InstallKeeper() noexcept {
    keeper.installed = true;
}

void* AllocateFromHeap(std::size_t size, int sizeClass) noexcept {
    if (sizeClass < 0)
        return ::operator new(size, std::nothrow);
    return ::operator new(kSizes[sizeClass], std::nothrow);
}

void FreeToHeap(void* block) noexcept {
    ::operator delete(block);
}

} // namespace tervane::ss_pool
