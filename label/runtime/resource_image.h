#pragma once
// Reading a table image from a module's resources. The tables of this
// module's own resources never change while the process runs, so each is
// prepared once and shared; tables of other modules are read anew each time.
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include "platform/win32/resources.h"

namespace tervane {

// The bytes of a resource through FindResourceA, LoadResource, LockResource,
// SizeofResource and FreeResource; false when any of them fails.
bool ReadResourceImage(HMODULE module, const ResName& name, const ResName& type,
                       std::vector<std::uint8_t>& bytes);

template <typename Data, typename Load>
std::shared_ptr<const Data> LoadTableResource(HMODULE module, const ResName& name,
                                              const ResName& type, Load load) {
    bool own = module == nullptr || module == TervaneModuleHandle();
    using Key = std::tuple<std::string, bool, std::string, bool>;
    Key key{name.ToString(), name.IsOrdinal(), type.ToString(), type.IsOrdinal()};
    static std::mutex mutex;
    static std::map<Key, std::shared_ptr<const Data>> cache;
    if (own) {
        std::lock_guard lock(mutex);
        if (auto it = cache.find(key); it != cache.end())
            return it->second;
    }
    std::vector<std::uint8_t> bytes;
    if (!ReadResourceImage(module, name, type, bytes))
        return nullptr;
    std::shared_ptr<const Data> data = load(std::span<const std::uint8_t>(bytes), name.ToString());
    if (own) {
        std::lock_guard lock(mutex);
        cache.emplace(key, data);
    }
    return data;
}

} // namespace tervane
