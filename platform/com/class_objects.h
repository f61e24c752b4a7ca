#pragma once
// Creation of objects by class identifier. Classes are found among the class
// objects that the process has registered; classes served by a shared module
// through the registry store are not found yet (see FindClassObject).
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
// In-process objects are always running.
HRESULT OleRun(IUnknown* object);

namespace tervane {

// ProgIDs by class identifier, filled by the component classes, read when
// error information names its source.
void RegisterProgId(const CLSID& clsid, std::u16string progId);
std::optional<std::u16string> ProgIdOf(const CLSID& clsid);

} // namespace tervane
