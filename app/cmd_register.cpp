// tervane register | unregister: the module's own registration of its
// classes, into the user's registry store.
#include <iostream>

#include "app/commands.h"
#include "app/components.h"
#include "app/failure.h"

namespace tervane::app {

namespace {

int RunRegistration(bool registering) {
    const HRESULT hr = RunModuleRegistration(registering);
    if (FAILED(hr)) {
        char code[16];
        std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(hr));
        throw CommandFailure(ModuleBesideProgram(),
                             std::string(registering ? "registration" : "removal") + " failed (" +
                                 code + ")");
    }
    return 0;
}

} // namespace

void AddRegisterCommand(CLI::App& app) {
    AddCommand(app, "register", "Register the filter's classes from the module beside tervane",
               [] { return RunRegistration(true); });
}

void AddUnregisterCommand(CLI::App& app) {
    AddCommand(app, "unregister", "Remove the filter's classes from the registry store",
               [] { return RunRegistration(false); });
}

} // namespace tervane::app
