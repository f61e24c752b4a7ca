// tervane tables: the module's built-in label tables as the resource calls
// find them, one JSON object a line.
#include <cstdio>
#include <string>
#include <vector>

#include "app/commands.h"
#include "app/failure.h"
#include "app/json_lines.h"
#include "app/output_file.h"
#include "platform/win32/resources.h"

namespace tervane::app {

namespace {

int RunTables() {
    HMODULE module = TervaneModuleHandle();
    int status = 0;
    OutputFile out("-", {});
    JsonLine line;
    for (const char* type : {"SSLEXTABLE", "SSYACCTABLE"}) {
        std::vector<ResName> names;
        EnumResourceNamesA(
            module, type,
            [](HMODULE, const ResName&, const ResName& name, LONG_PTR param) -> BOOL {
                reinterpret_cast<std::vector<ResName>*>(param)->push_back(name);
                return TRUE;
            },
            reinterpret_cast<LONG_PTR>(&names));
        for (const ResName& name : names) {
            HRSRC found = FindResourceA(module, name, type);
            if (!found) {
                // The others are still worth listing.
                ReportFailure("tables",
                              {std::string(type) + " " + name.ToString(), "cannot be found"});
                status = 1;
                continue;
            }
            std::string_view text = line.Text("type", std::string_view(type))
                                        .Text("name", std::string_view(name.ToString()))
                                        .Number("size", SizeofResource(module, found))
                                        .Finish();
            out.Write(text);
        }
    }
    out.Commit();
    return status;
}

} // namespace

void AddTablesCommand(CLI::App& app) {
    AddCommand(app, "tables", "List the built-in label tables", RunTables);
}

} // namespace tervane::app
