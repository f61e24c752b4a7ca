#include "frame/module_resources/module_resources.h"

namespace tervane::module_resources {

std::vector<Resource> All() {
    std::vector<Resource> all;
    for (auto part : {StringTable, VersionInfo, LabelTables, RegistryScripts}) {
        auto resources = part();
        all.insert(all.end(), resources.begin(), resources.end());
    }
    return all;
}

} // namespace tervane::module_resources
