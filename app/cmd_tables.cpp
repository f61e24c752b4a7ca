// tervane tables: the module's built-in label tables as the resource calls
// find them, one JSON object a line.
#include <cstdio>
#include <string>
#include <vector>

#include "app/commands.h"
#include "app/json_text.h"
#include "platform/win32/resources.h"

namespace tervane::app {

int RunTables(const Args& args) {
    if (!args.empty()) {
        std::fprintf(stderr, "usage: tervane tables\n");
        return 2;
    }
    HMODULE module = TervaneModuleHandle();
    int status = 0;
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
                std::fprintf(stderr, "tervane tables: %s %s cannot be found\n", type,
                             name.ToString().c_str());
                status = 1;
                continue;
            }
            std::printf("{\"type\": %s, \"name\": %s, \"size\": %u}\n",
                        JsonString(std::string_view(type)).c_str(),
                        JsonString(std::string_view(name.ToString())).c_str(),
                        static_cast<unsigned>(SizeofResource(module, found)));
        }
    }
    return status;
}

} // namespace tervane::app
