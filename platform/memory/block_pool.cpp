#include "platform/memory/block_pool.h"

#include <atomic>
#include <cstdint>
#include <new>

namespace tervane::block_pool {

constinit thread_local ThreadLists threadLists = {};

namespace {

// A chunk starts with the count of its blocks not yet back; the blocks follow.
struct ChunkHeader {
    std::atomic<std::uint32_t> out;
};
static_assert(sizeof(ChunkHeader) <= kGrain);

constexpr std::align_val_t kChunkAlign{kChunkSize};

std::atomic<std::size_t> chunksInUse{0};

ChunkHeader* ChunkOf(void* block) noexcept {
    return reinterpret_cast<ChunkHeader*>(reinterpret_cast<std::uintptr_t>(block) &
                                          ~static_cast<std::uintptr_t>(kChunkSize - 1));
}

void GiveBack(ChunkHeader* chunk, std::uint32_t blocks) noexcept {
    if (blocks == 0)
        return;
    if (chunk->out.fetch_sub(blocks, std::memory_order_acq_rel) == blocks) {
        chunk->~ChunkHeader();
        ::operator delete(static_cast<void*>(chunk), kChunkAlign);
        chunksInUse.fetch_sub(1, std::memory_order_relaxed);
    }
}

// Hands this thread's waiting and uncarved blocks back when the thread ends.
struct Keeper {
    bool installed = false;
    ~Keeper() {
        threadLists.closed = true;
        for (std::size_t c = 0; c < kClasses; ++c) {
            FreeList& list = threadLists.lists[c];
            while (void* block = list.head) {
                list.head = *static_cast<void**>(block);
                ReturnToChunk(block);
            }
            if (list.carve != list.carveEnd) {
                const std::size_t blockSize = (c + 1) * kGrain;
                GiveBack(ChunkOf(list.carve),
                         static_cast<std::uint32_t>((list.carveEnd - list.carve) / blockSize));
            }
            list.carve = list.carveEnd = nullptr;
        }
    }
};
thread_local Keeper keeper;

} // namespace

std::size_t ChunksInUse() noexcept {
    return chunksInUse.load(std::memory_order_relaxed);
}

void InstallKeeper() noexcept {
    keeper.installed = true;
}

void ReturnToChunk(void* block) noexcept {
    GiveBack(ChunkOf(block), 1);
}

void* AllocateSlow(int sizeClass) {
    const std::size_t blockSize = (static_cast<std::size_t>(sizeClass) + 1) * kGrain;
    const std::size_t blocks = (kChunkSize - kGrain) / blockSize;
    char* chunk = static_cast<char*>(::operator new(kChunkSize, kChunkAlign));
    chunksInUse.fetch_add(1, std::memory_order_relaxed);
    char* first = chunk + kGrain;
    ThreadLists& lists = threadLists;
    // Once the thread is ending nothing is kept: the chunk serves one block.
    if (lists.closed) {
        new (chunk) ChunkHeader{1};
        return first;
    }
    new (chunk) ChunkHeader{static_cast<std::uint32_t>(blocks)};
    keeper.installed = true;
    FreeList& list = lists.lists[sizeClass];
    list.carve = first + blockSize;
    list.carveEnd = first + blocks * blockSize;
    return first;
}

} // namespace tervane::block_pool
