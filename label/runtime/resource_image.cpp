#include "label/runtime/resource_image.h"

#include <cstring>

namespace tervane {

bool ReadResourceImage(HMODULE module, const ResName& name, const ResName& type,
                       std::vector<std::uint8_t>& bytes) {
    HRSRC resource = FindResourceA(module, name, type);
    if (!resource)
        return false;
    HGLOBAL loaded = LoadResource(module, resource);
    if (!loaded)
        return false;
    const void* locked = LockResource(loaded);
    if (!locked) {
        FreeResource(loaded);
        return false;
    }
    DWORD size = SizeofResource(module, resource);
    bytes.resize(size);
    if (size)
        std::memcpy(bytes.data(), locked, size);
    FreeResource(loaded);
    return true;
}

} // namespace tervane
