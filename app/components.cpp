#include "app/components.h"

#include <dlfcn.h>
#include <filesystem>
#include <optional>

#include "frame/component_ids.h"
#include "platform/com/class_objects.h"
#include "platform/win32/last_error.h"

namespace tervane::app {

namespace {

namespace fs = std::filesystem;

// Whether every class names the module at own.
bool RegisteredAt(const fs::path& own) {
    for (const ComponentClass& c : ComponentClasses()) {
        const std::optional<std::string> path = InprocServerPath(c.clsid);
        std::error_code error;
        if (!path || !fs::equivalent(*path, own, error))
            return false;
    }
    return true;
}

HRESULT RegisterOwnModule() {
    const fs::path own = ModuleBesideProgram();
    std::error_code error;
    if (!fs::exists(own, error) || RegisteredAt(own))
        return S_OK;
    return RunModuleRegistration(true);
}

} // namespace

std::string ModuleBesideProgram() {
    std::error_code error;
    const fs::path self = fs::read_symlink("/proc/self/exe", error);
    return (self.parent_path() / TERVANE_MODULE_FILE).string();
}

HRESULT RunModuleRegistration(bool registering) {
    // Kept loaded: the process may create its components from it next.
    void* module = ::dlopen(ModuleBesideProgram().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr)
        return HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND);
    using Entry = HRESULT (*)();
    auto entry = reinterpret_cast<Entry>(
        ::dlsym(module, registering ? "DllRegisterServer" : "DllUnregisterServer"));
    return entry ? entry() : HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND);
}

HRESULT CreateComponent(REFCLSID clsid, REFIID riid, void** object) {
    // Once a process; scans create from several threads.
    static const HRESULT registration = RegisterOwnModule();
    if (FAILED(registration))
        return registration;
    return CoCreateInstance(clsid, nullptr, CLSCTX_ALL, riid, object);
}

} // namespace tervane::app
