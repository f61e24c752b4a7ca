#include "platform/com/bstr.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

#if defined(__SANITIZE_ADDRESS__)
#define TERVANE_BSTR_CACHE 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TERVANE_BSTR_CACHE 0
#endif
#endif
#ifndef TERVANE_BSTR_CACHE
#define TERVANE_BSTR_CACHE 1
#endif

namespace {

using Prefix = std::uint32_t;

// A block is [capacity][length prefix][text][two zero bytes]: the text's
// room, unseen by callers, lets a reallocation that fits stay in place and
// lets a freed block serve a later string of its size class.
struct Header {
    Prefix capacity; // bytes of text the block can hold
    Prefix length;
};
static_assert(sizeof(Header) == 8, "the text stays aligned for char16_t");

constexpr std::size_t kTerminator = 2 * sizeof(OLECHAR);

// Freed blocks kept per thread, as the system's own string cache does: the
// host and the components make and free several small strings per event.
constexpr Prefix kClassBytes[] = {24, 56, 120, 248};
constexpr std::size_t kClasses = sizeof kClassBytes / sizeof kClassBytes[0];
constexpr std::size_t kKeptPerClass = 64;

struct Cache {
    void* blocks[kClasses][kKeptPerClass];
    std::size_t counts[kClasses] = {};
    bool closed = false; // strings freed at the thread's very end go to the heap
    ~Cache() {
        closed = true;
        for (std::size_t c = 0; c < kClasses; ++c)
            while (counts[c])
                std::free(blocks[c][--counts[c]]);
    }
};
thread_local Cache cache;

int ClassFor(std::size_t bytes) {
    for (std::size_t c = 0; c < kClasses; ++c)
        if (bytes <= kClassBytes[c])
            return static_cast<int>(c);
    return -1;
}

Header* HeaderOf(BSTR text) {
    return reinterpret_cast<Header*>(reinterpret_cast<unsigned char*>(text) - sizeof(Header));
}

BSTR TextAfter(Header* header) {
    return reinterpret_cast<BSTR>(reinterpret_cast<unsigned char*>(header) + sizeof(Header));
}

// Writes the length, the text (zeros without a source) and the terminator.
BSTR Fill(Header* header, const void* source, UINT bytes) {
    header->length = bytes;
    auto* text = reinterpret_cast<unsigned char*>(header) + sizeof(Header);
    if (bytes != 0) {
        if (source != nullptr)
            std::memmove(text, source, bytes);
        else
            std::memset(text, 0, bytes);
    }
    // An odd byte length leaves half a unit: the terminator covers it.
    std::memset(text + bytes, 0, kTerminator);
    return TextAfter(header);
}

BSTR AllocateBytes(const void* source, UINT bytes) {
    if (bytes > std::numeric_limits<Prefix>::max() - sizeof(Header) - kTerminator)
        return nullptr;
    int c = TERVANE_BSTR_CACHE ? ClassFor(bytes) : -1;
    Prefix capacity = c < 0 ? bytes : kClassBytes[c];
    Header* header = nullptr;
    if (c >= 0 && cache.counts[c] != 0)
        header = static_cast<Header*>(cache.blocks[c][--cache.counts[c]]);
    else
        header = static_cast<Header*>(std::malloc(sizeof(Header) + capacity + kTerminator));
    if (header == nullptr)
        return nullptr;
    header->capacity = capacity;
    return Fill(header, source, bytes);
}

} // namespace

BSTR SysAllocString(const OLECHAR* text) {
    if (text == nullptr)
        return nullptr;
    return SysAllocStringLen(text, static_cast<UINT>(std::char_traits<char16_t>::length(text)));
}

BSTR SysAllocStringLen(const OLECHAR* text, UINT length) {
    if (length > std::numeric_limits<UINT>::max() / sizeof(OLECHAR))
        return nullptr;
    return AllocateBytes(text, length * static_cast<UINT>(sizeof(OLECHAR)));
}

BSTR SysAllocStringByteLen(const char* bytes, UINT length) {
    return AllocateBytes(bytes, length);
}

BOOL SysReAllocStringLen(BSTR* target, const OLECHAR* text, UINT length) {
    if (target == nullptr || length > std::numeric_limits<UINT>::max() / sizeof(OLECHAR))
        return FALSE;
    const UINT bytes = length * static_cast<UINT>(sizeof(OLECHAR));
    // The source may be the old text itself: a block that fits is filled by
    // moving, any other is copied before the old one is freed.
    if (*target != nullptr && bytes <= HeaderOf(*target)->capacity) {
        Fill(HeaderOf(*target), text, bytes);
        return TRUE;
    }
    BSTR copy = SysAllocStringLen(text, length);
    if (copy == nullptr)
        return FALSE;
    SysFreeString(*target);
    *target = copy;
    return TRUE;
}

BOOL SysReAllocString(BSTR* target, const OLECHAR* text) {
    if (text == nullptr)
        return SysReAllocStringLen(target, nullptr, 0);
    return SysReAllocStringLen(target, text,
                               static_cast<UINT>(std::char_traits<char16_t>::length(text)));
}

void SysFreeString(BSTR text) {
    if (text == nullptr)
        return;
    Header* header = HeaderOf(text);
    int c = TERVANE_BSTR_CACHE ? ClassFor(header->capacity) : -1;
    if (c >= 0 && header->capacity == kClassBytes[c] && cache.counts[c] < kKeptPerClass &&
        !cache.closed) {
        cache.blocks[c][cache.counts[c]++] = header;
        return;
    }
    std::free(header);
}

UINT SysStringByteLen(BSTR text) {
    return text == nullptr ? 0 : HeaderOf(text)->length;
}

UINT SysStringLen(BSTR text) {
    return SysStringByteLen(text) / sizeof(OLECHAR);
}

namespace tervane {

Bstr::Bstr(std::u16string_view text)
    : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}

BSTR ReusedBstr::Regrow(std::u16string_view text) {
    constexpr std::size_t kLeast = 64;
    std::size_t room = room_ * 2 > kLeast ? room_ * 2 : kLeast;
    if (room < text.size())
        room = text.size();
    if (room > std::numeric_limits<UINT>::max() / sizeof(OLECHAR))
        return nullptr;
    BSTR grown = SysAllocStringLen(nullptr, static_cast<UINT>(room));
    if (grown == nullptr)
        return nullptr;
    SysFreeString(std::exchange(text_, grown));
    room_ = room;
    return Fill(text);
}

Bstr::Bstr(const Bstr& other)
    : text_(other.text_ ? SysAllocStringByteLen(reinterpret_cast<const char*>(other.text_),
                                                SysStringByteLen(other.text_))
                        : nullptr) {}

} // namespace tervane
