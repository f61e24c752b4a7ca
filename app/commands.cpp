#include "app/commands.h"

namespace tervane::app {

const std::vector<Command>& Commands() {
    static const std::vector<Command> commands = {
        {"list", "list [--json] FILE", "List the resources of a PE file", RunList},
    };
    return commands;
}

} // namespace tervane::app
