#pragma once
// The component server: the module object with its object table, and the
// four exports that a host finds by name.
#include <span>
#include <string>

#include "platform/com/unknown.h"

namespace tervane {

class CTervaneFilterModule {
public:
    struct ObjectEntry {
        const CLSID* clsid;
        // The class's cached class factory; no new reference.
        IClassFactory* (*classObject)();
    };

    static std::span<const ObjectEntry> Objects();

    HRESULT GetClassObject(REFCLSID clsid, REFIID riid, void** object) const;
    HRESULT CanUnloadNow() const;
    HRESULT RegisterServer() const;
    HRESULT UnregisterServer() const;

    // The path of the loaded module, %MODULE% of the scripts.
    static std::string ModulePath();
};

} // namespace tervane

extern "C" {
HRESULT DllGetClassObject(REFCLSID clsid, REFIID riid, void** object);
HRESULT DllCanUnloadNow();
HRESULT DllRegisterServer();
HRESULT DllUnregisterServer();
}
