#include "platform/com/bstr.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

using Prefix = std::uint32_t;

// The prefix sits just before the text; the text is followed by two zero
// bytes, plus one more unit when an odd byte length leaves half of one.
BSTR AllocateBytes(const void* source, UINT bytes) {
    if (bytes > std::numeric_limits<Prefix>::max() - sizeof(Prefix) - 2 * sizeof(OLECHAR))
        return nullptr;
    std::size_t total = sizeof(Prefix) + std::size_t{bytes} + 2 * sizeof(OLECHAR);
    auto* block = static_cast<unsigned char*>(std::calloc(1, total));
    if (block == nullptr)
        return nullptr;
    Prefix length = bytes;
    std::memcpy(block, &length, sizeof length);
    if (source != nullptr && bytes != 0)
        std::memcpy(block + sizeof(Prefix), source, bytes);
    return reinterpret_cast<BSTR>(block + sizeof(Prefix));
}

unsigned char* BlockOf(BSTR text) {
    return reinterpret_cast<unsigned char*>(text) - sizeof(Prefix);
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
    if (target == nullptr)
        return FALSE;
    // The source may be the old text itself: copy before freeing.
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
    if (text != nullptr)
        std::free(BlockOf(text));
}

UINT SysStringByteLen(BSTR text) {
    if (text == nullptr)
        return 0;
    Prefix length;
    std::memcpy(&length, BlockOf(text), sizeof length);
    return length;
}

UINT SysStringLen(BSTR text) {
    return SysStringByteLen(text) / sizeof(OLECHAR);
}

namespace tervane {

Bstr::Bstr(std::u16string_view text)
    : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}

Bstr::Bstr(const Bstr& other)
    : text_(other.text_ ? SysAllocStringByteLen(reinterpret_cast<const char*>(other.text_),
                                                SysStringByteLen(other.text_))
                        : nullptr) {}

} // namespace tervane
