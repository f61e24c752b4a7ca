#include "app/components.h"

#include <dlfcn.h>
#include <filesystem>
#include <mutex>

#include "platform/com/class_objects.h"
#include "platform/win32/last_error.h"

namespace tervane::app {

std::string ModuleBesideProgram() {
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
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
    HRESULT hr = CoCreateInstance(clsid, nullptr, CLSCTX_ALL, riid, object);
    if (hr != REGDB_E_CLASSNOTREG && hr != HRESULT_FROM_WIN32(ERROR_MOD_NOT_FOUND))
        return hr;
    static std::once_flag registered;
    static HRESULT registration = S_OK;
    std::call_once(registered, [] { registration = RunModuleRegistration(true); });
    if (FAILED(registration))
        return registration;
    return CoCreateInstance(clsid, nullptr, CLSCTX_ALL, riid, object);
}

} // namespace tervane::app
