#pragma once
// Small blocks for label pieces and their texts, carved from larger chunks and
// recycled per thread: a module makes hundreds of thousands of pieces, keeps
// them all to the end and frees them together. A freed block waits on its thread's list of its
// size; when the thread ends, its waiting and uncarved blocks are handed back
// to their chunks, and a chunk goes back to the heap once every block of it is
// back, whichever thread freed it. Under the sanitizers every block comes from
// the heap, so that misuse stays visible. The common paths are inline.
#include <cstddef>
#include <cstdint>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define TERVANE_BLOCK_POOL 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TERVANE_BLOCK_POOL 0
#endif
#endif
#ifndef TERVANE_BLOCK_POOL
#define TERVANE_BLOCK_POOL 1
#endif

namespace tervane::block_pool {

inline constexpr std::size_t kGrain = 16;
inline constexpr std::size_t kClasses = 8; // blocks of up to 128 bytes
// Chunks are aligned to their size. Small ones came from the heap with up to
// their size again cut off in front, which other allocations rarely filled;
// a large one is mapped, and what its alignment skips is never touched.
inline constexpr std::size_t kChunkSize = 1024 * 1024;

constexpr int ClassOf(std::size_t size) {
    return size != 0 && size <= kGrain * kClasses ? static_cast<int>((size - 1) / kGrain) : -1;
}

// Plain data, so that reaching it costs no call.
struct FreeList {
    void* head;  // freed blocks
    char* carve; // the next block never handed out of the current chunk
    char* carveEnd;
};
struct ThreadLists {
    FreeList lists[kClasses];
    bool closed; // the thread is ending: blocks go straight back to their chunks
};
extern constinit thread_local ThreadLists threadLists;

// The slow sides: a new chunk, and a block given back after the thread's end.
void* AllocateSlow(int sizeClass);
void ReturnToChunk(void* block) noexcept;
// Chunks that some block still holds, in every thread.
std::size_t ChunksInUse() noexcept;
// Makes sure that the blocks this thread keeps are handed back when it ends.
void InstallKeeper() noexcept;

inline void* Allocate(std::size_t size) {
    const int c = TERVANE_BLOCK_POOL ? ClassOf(size) : -1;
    if (c < 0)
        return ::operator new(size);
    FreeList& list = threadLists.lists[c];
    if (void* block = list.head) {
        list.head = *static_cast<void**>(block);
        return block;
    }
    const std::size_t blockSize = (static_cast<std::size_t>(c) + 1) * kGrain;
    if (list.carve != list.carveEnd) {
        void* block = list.carve;
        list.carve += blockSize;
        return block;
    }
    return AllocateSlow(c);
}

inline void Free(void* block, std::size_t size) noexcept {
    if (!block)
        return;
    const int c = TERVANE_BLOCK_POOL ? ClassOf(size) : -1;
    if (c < 0) {
        ::operator delete(block);
        return;
    }
    if (threadLists.closed) [[unlikely]] {
        ReturnToChunk(block);
        return;
    }
    FreeList& list = threadLists.lists[c];
    if (list.head == nullptr)
        InstallKeeper();
    *static_cast<void**>(block) = list.head;
    list.head = block;
}

// For the containers of pieces: their small arrays come from the pool too.
template <typename T> struct Allocator {
    using value_type = T;
    Allocator() noexcept = default;
    template <typename U> Allocator(const Allocator<U>&) noexcept {}
    T* allocate(std::size_t n) {
        if (n > SIZE_MAX / sizeof(T))
            throw std::bad_array_new_length();
        return static_cast<T*>(Allocate(n * sizeof(T)));
    }
    void deallocate(T* block, std::size_t n) noexcept { Free(block, n * sizeof(T)); }
    template <typename U> bool operator==(const Allocator<U>&) const noexcept { return true; }
};

} // namespace tervane::block_pool
