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
        {"extract", "extract [--events | --document] [--filter] [-o OUT] [--trace FILE] FILE",
         "Convert the resources of a PE file into the tagged document (the default) or, with "
         "--events, into the events a host receives, one JSON object a line",
         RunExtract,
         "Reads the string tables, menus, dialogs (with the entries of their combo and list\n"
         "boxes) and version values of FILE (.exe, .dll, .ocx, .lng), as data.\n\n"
         "Options:\n"
         "  --document    write the tagged document, UTF-8 (the default)\n"
         "  --events      write every event the host receives, one JSON object a line\n"
         "  --filter      pass the events through the filter stage, which reduces each\n"
         "                tag's name to its keyword and cuts inline tags into single\n"
         "                placeholders\n"
         "  -o OUT        write to OUT, replaced whole, instead of standard output\n"
         "  --trace FILE  append the conversion's progress texts to FILE\n\n"
         "On a failure the error goes to standard error, what was received until then is\n"
         "still written, and the exit status is 1; a wrong command line gives 2."},
        {"scan", "scan [--json] [--trace FILE] FILE|DIR...",
         "Tell for each PE file whether it can be converted, as a host asks before a conversion",
         RunScan,
         "For each FILE, and each PE file below each DIR, prints \"ok\" or the reason why\n"
         "the file is refused: resources in more than one code page, a resource\n"
         "identifier twice, resources that can't be read, or a file whose size changes\n"
         "when one of its resources is rewritten (tried on a copy beside it, named\n"
         "NAME_Sniffer.exe, which is removed again; a file of that name already there\n"
         "is left alone and the source is not scanned).\n\n"
         "Options:\n"
         "  --json        one JSON object a line: file, verdict (ok, empty, refused,\n"
         "                missing, skipped), status, text, first_language\n"
         "  --trace FILE  append the scanner's progress texts to FILE\n\n"
         "The exit status is 0 when every file can be handled, 1 when any is refused,\n"
         "missing or skipped, 2 for a wrong command line."},
    };
    return commands;
}

} // namespace tervane::app
