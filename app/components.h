#pragma once
// How the program makes the filter's components: by class identifier, from
// the module that the registry store names, as a host framework does.
#include <string>

#include "platform/com/unknown.h"

namespace tervane::app {

// CoCreateInstance of clsid for riid. The program and the module beside it are
// one build: before the first creation, a store that names no module or
// another one (an older build, another checkout) for any of the six classes
// gets the registration of the module beside this program, in the user's
// store. Without a module beside it, whatever the store names is used.
HRESULT CreateComponent(REFCLSID clsid, REFIID riid, void** object);

// The module's DllRegisterServer or DllUnregisterServer, run from the module
// beside this program.
HRESULT RunModuleRegistration(bool registering);

// The path of the module beside this program.
std::string ModuleBesideProgram();

} // namespace tervane::app
