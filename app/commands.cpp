#include "app/commands.h"

namespace tervane::app {

const std::vector<Command>& Commands() {
    static const std::vector<Command> commands = {
        {"list", "list [--json] FILE", "List the resources of a PE file", RunList},
        {"res", "res get|put|delete FILE --type T --name N --lang L [-o OUT] [--data DATAFILE]",
         "Read, add, replace or delete one resource of a PE file", RunRes},
        {"tokens", "tokens --kind string|menu|dialog TEXT",
         "Show the label tokens of an escaped label text", RunTokens},
        {"tables", "tables", "List the built-in label tables", RunTables},
        {"extract", "extract [--events | --document] [-o OUT] [--trace FILE] FILE",
         "Convert the resources of a PE file into the tagged document (the default) or, with "
         "--events, into the events a host receives, one JSON object a line",
         RunExtract},
    };
    return commands;
}

} // namespace tervane::app
