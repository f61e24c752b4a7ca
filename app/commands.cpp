#include "app/commands.h"

namespace tervane::app {

const std::vector<Command>& Commands() {
    static const std::vector<Command> commands = {
    };
    return commands;
}

} // namespace tervane::app
