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
         RunExtract,
         "Reads the string tables, menus, dialogs (with the entries of their combo and list\n"
         "boxes) and version values of FILE (.exe, .dll, .ocx, .lng), as data.\n\n"
         "Options:\n"
         "  --document    write the tagged document, UTF-8 (the default)\n"
         "  --events      write every event the host receives, one JSON object a line\n"
         "  -o OUT        write to OUT, replaced whole, instead of standard output\n"
         "  --trace FILE  append the conversion's progress texts to FILE\n\n"
         "On a failure the error goes to standard error, what was received until then is\n"
         "still written, and the exit status is 1; a wrong command line gives 2."},
    };
    return commands;
}

} // namespace tervane::app
