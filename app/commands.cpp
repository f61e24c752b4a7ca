#include "app/commands.h"

namespace tervane::app {

const std::vector<Command>& Commands() {
    static const std::vector<Command> commands = {
        {"list", "list [--json] FILE", "List the resources of a PE file", RunList},
        {"res",
         "res get|put|delete FILE --type T --name N --lang L [-o OUT] [--data DATAFILE]",
         "Read, add, replace or delete one resource of a PE file", RunRes},
    };
    return commands;
}

} // namespace tervane::app
