#pragma once
// How the program makes the filter's components: by class identifier, from
// the module that the registry store names, as a host framework does.
#include <string>

#include "platform/com/unknown.h"

namespace tervane::app {

// CoCreateInstance of clsid for riid. A class that the store doesn't know, or
// whose module can't be loaded, is registered on first use from the module
// beside this program, into the user's store; a module registered elsewhere
// that loads is used, as with any framework.
HRESULT CreateComponent(REFCLSID clsid, REFIID riid, void** object);

// The module's DllRegisterServer or DllUnregisterServer, run from the module
// beside this program.
HRESULT RunModuleRegistration(bool registering);

// The path of the module beside this program.
std::string ModuleBesideProgram();

} // namespace tervane::app
