// The PE resource reader on arbitrary bytes: load, walk every type, name and
// language, find, load and lock each resource and touch all its bytes.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/win32/module_image.h"
#include "platform/win32/resources.h"

namespace {

struct Walk {
    unsigned sum = 0;
};

BOOL OnLanguage(HMODULE module, const ResName& type, const ResName& name, WORD language,
                LONG_PTR param) {
    auto& walk = *reinterpret_cast<Walk*>(param);
    HRSRC found = FindResourceExA(module, type, name, language);
    if (!found)
        return TRUE;
    DWORD size = SizeofResource(module, found);
    HGLOBAL loaded = LoadResource(module, found);
    auto* bytes = static_cast<const std::uint8_t*>(LockResource(loaded));
    if (bytes)
        for (DWORD i = 0; i < size; ++i)
            walk.sum += bytes[i];
    FreeResource(loaded);
    return TRUE;
}

BOOL OnName(HMODULE module, const ResName& type, const ResName& name, LONG_PTR param) {
    EnumResourceLanguagesA(module, type, name, OnLanguage, param);
    return TRUE;
}

BOOL OnType(HMODULE module, const ResName& type, LONG_PTR param) {
    EnumResourceNamesA(module, type, OnName, param);
    return TRUE;
}

} // namespace

unsigned g_checksum = 0;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    HMODULE module =
        tervane::LoadModuleFromBytes(std::vector<std::uint8_t>(data, data + size), "fuzz.dll");
    if (!module)
        return 0;
    Walk walk;
    EnumResourceTypesA(module, OnType, reinterpret_cast<LONG_PTR>(&walk));
    // The exact view, as `tervane list` reads it.
    if (const auto* tree = tervane::ModuleResourceTree(module); tree && *tree) {
        (void)(*tree)->FirstDamage();
        for (const auto& type : (*tree)->types)
            for (const auto& name : type.names)
                for (const auto& language : name.languages)
                    (void)tervane::ModuleResourceData(module, language.data);
    }
    char text[16];
    for (UINT id : {0u, 1u, 17u, 100u})
        LoadStringA(module, id, text, sizeof text);
    FreeLibrary(module);
    g_checksum += walk.sum; // keeps the reads of the data
    return 0;
}
