#include <cstring>

#include "platform/byte_reader.h"
#include "platform/pe/resource_name_text.h"
#include "platform/win32/last_error.h"
#include "platform/win32/resources.h"

int LoadStringA(HINSTANCE instance, UINT id, char* buffer, int size) {
    if (!buffer || size <= 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    buffer[0] = '\0';
    HRSRC found = FindResourceA(instance, ResName(static_cast<WORD>((id >> 4) + 1)), RT_STRING);
    if (!found)
        return 0;
    HGLOBAL loaded = LoadResource(instance, found);
    if (!loaded)
        return 0;
    auto* data = static_cast<const std::uint8_t*>(LockResource(loaded));
    tervane::ByteReader block(tervane::Bytes(data, SizeofResource(instance, found)));
    std::u16string text;
    for (UINT index = 0; index <= (id & 15); ++index) {
        auto length = block.ReadU16LE();
        if (!length)
            return 0; // a block cut short holds no further strings
        auto units = block.ReadBytes(std::size_t{*length} * 2);
        if (!units)
            return 0;
        if (index == (id & 15)) {
            tervane::ByteReader r(*units);
            for (std::uint16_t i = 0; i < *length; ++i)
                text += static_cast<char16_t>(*r.ReadU16LE());
        }
    }
    std::string narrow = tervane::pe::Utf16ToUtf8(text);
    std::size_t fit = std::min<std::size_t>(narrow.size(), static_cast<std::size_t>(size) - 1);
    // Never cut a UTF-8 sequence in two.
    while (fit < narrow.size() && fit > 0 &&
           (static_cast<unsigned char>(narrow[fit]) & 0xC0) == 0x80)
        --fit;
    std::memcpy(buffer, narrow.data(), fit);
    buffer[fit] = '\0';
    return static_cast<int>(fit);
}
