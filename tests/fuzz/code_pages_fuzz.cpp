// Bytes of a label in any code page, and the same bytes as UTF-16, through
// both conversions: sizes must agree between measuring and converting, and
// nothing may be read or written out of bounds.
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "platform/locale/code_pages.h"

namespace {

constexpr UINT kCodePages[] = {CP_ACP, CP_UTF8, 874,  932,  936,  949,  950, 1250, 1251, 1252,
                               1253,   1254,    1255, 1256, 1257, 1258, 437, 850,  866,  42};

void Check(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2 || size > 4096)
        return 0;
    const UINT codePage = kCodePages[data[0] % std::size(kCodePages)];
    const DWORD mbFlags = (data[0] & 0x80) ? MB_ERR_INVALID_CHARS : 0;
    const char* bytes = reinterpret_cast<const char*>(data + 1);
    const int length = static_cast<int>(size - 1);

    const int needed = MultiByteToWideChar(codePage, mbFlags, bytes, length, nullptr, 0);
    Check(needed <= length);
    if (needed > 0) {
        std::vector<char16_t> wide(static_cast<std::size_t>(needed));
        Check(MultiByteToWideChar(codePage, mbFlags, bytes, length, wide.data(), needed) == needed);
        if (needed > 1)
            Check(MultiByteToWideChar(codePage, mbFlags, bytes, length, wide.data(), needed - 1) ==
                  0);
        BOOL used = FALSE;
        BOOL* usedPointer = codePage == CP_UTF8 || codePage == CP_ACP ? nullptr : &used;
        const int back =
            WideCharToMultiByte(codePage, 0, wide.data(), needed, nullptr, 0, nullptr, usedPointer);
        Check(back > 0);
        std::vector<char> narrow(static_cast<std::size_t>(back));
        Check(WideCharToMultiByte(codePage, 0, wide.data(), needed, narrow.data(), back, nullptr,
                                  usedPointer) == back);
    }

    std::vector<char16_t> units((size - 1) / 2);
    for (std::size_t i = 0; i < units.size(); ++i)
        units[i] = static_cast<char16_t>(data[1 + 2 * i] | (data[2 + 2 * i] << 8));
    if (!units.empty()) {
        const int count = static_cast<int>(units.size());
        const int narrowNeeded =
            WideCharToMultiByte(codePage, 0, units.data(), count, nullptr, 0, nullptr, nullptr);
        Check(narrowNeeded <= count * 3);
        if (narrowNeeded > 0) {
            std::vector<char> narrow(static_cast<std::size_t>(narrowNeeded));
            Check(WideCharToMultiByte(codePage, 0, units.data(), count, narrow.data(), narrowNeeded,
                                      nullptr, nullptr) == narrowNeeded);
        }
    }
    return 0;
}
