#pragma once
// Creation of objects by class identifier. Classes are found among the class
// objects that the process has registered, then in the registry store: the
// shared object that HKCR\\CLSID\\{...}\\InprocServer32 names is loaded and
// asked through its DllGetClassObject.
#include <optional>
#include <string>

#include "platform/com/unknown.h"

// The process keeps a reference to the class object until it is revoked.
HRESULT CoRegisterClassObject(REFCLSID clsid, IUnknown* classObject, CLSCTX context, DWORD flags,
                              DWORD* cookie);
HRESULT CoRevokeClassObject(DWORD cookie);
HRESULT CoGetClassObject(REFCLSID clsid, CLSCTX context, void* serverInfo, REFIID riid,
                         void** object);
HRESULT CoCreateInstance(REFCLSID clsid, IUnknown* outer, CLSCTX context, REFIID riid,
                         void** object);
// The class identifier that HKCR\\<progId>\\CLSID names; CO_E_CLASSSTRING if none.
HRESULT CLSIDFromProgID(const char16_t* progId, CLSID* clsid);
// In-process objects are always running.
HRESULT OleRun(IUnknown* object);

namespace tervane {

// ProgIDs by class identifier, filled by the component classes, read when
// error information names its source.
void RegisterProgId(const CLSID& clsid, std::u16string progId);
std::optional<std::u16string> ProgIdOf(const CLSID& clsid);
// The module registered for a class, as the registry store holds it.
std::optional<std::string> InprocServerPath(const CLSID& clsid);

} // namespace tervane
