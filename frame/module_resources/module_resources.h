#pragma once
// The module's own resources. On Linux the module has no resource section, so
// its resources are compiled in as a table, and the platform's resource calls
// serve TervaneModuleHandle() from it (platform/win32/resources.h). This
// library depends on nothing else of the system, so that tervane_platform can
// link it without a cycle.
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace tervane::module_resources {

// A type or name: a UTF-16 name in upper case as a resource compiler stores
// it, or (name empty) an ordinal.
struct Id {
    std::u16string_view name;
    std::uint16_t ordinal = 0;
};

struct Resource {
    Id type;
    Id name;
    std::uint16_t language = 0;
    std::span<const std::uint8_t> bytes; // static storage: lives as long as the process
};

inline constexpr std::uint16_t kEnglishUs = 0x0409;

// Every resource of the module, from the parts below.
std::vector<Resource> All();

// string_table.cpp: the string table (string 100, the event source's name).
std::vector<Resource> StringTable();
// version_info.cpp: the VS_VERSIONINFO resource, built in code.
std::vector<Resource> VersionInfo();
// label_tables.cpp: the six label tables, types SSLEXTABLE and SSYACCTABLE,
// names STRINGRESPARSE, MENURESPARSE and DIALOGRESPARSE.
std::vector<Resource> LabelTables();
// registry_scripts.cpp: the registration scripts 101 to 107, type REGISTRY.
std::vector<Resource> RegistryScripts();

} // namespace tervane::module_resources
