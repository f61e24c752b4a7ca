#include "label/runtime/rcparsedbcsinfo.h"

#include "platform/locale/code_pages.h"
#include "platform/win32/os_version.h"

namespace tervane {

bool rcparsedbcsinfo::isLeadByte(std::uint8_t byte) const {
    switch (mode_) {
    case 0:
        return IsDBCSLeadByte(byte) != FALSE;
    case 1:
        return false;
    case 2:
        return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
    case 3:
        return byte >= 0xA1 && byte <= 0xFE;
    case 4:
    case 5:
        return byte >= 0x81 && byte <= 0xFE;
    default:
        return false;
    }
}

std::uint32_t rcparsedbcsinfo::startupMode() {
    OSVERSIONINFOA info{};
    info.dwOSVersionInfoSize = sizeof info;
    return GetVersionExA(&info) && info.dwPlatformId != VER_PLATFORM_WIN32s ? 0 : 1;
}

const rcparsedbcsinfo& rcparsedbcsinfo::instance() {
    static const rcparsedbcsinfo info(startupMode());
    return info;
}

} // namespace tervane
