#pragma once
// The commands of the tervane program. Each takes the arguments after its own
// name and returns the exit status.
#include <string>
#include <vector>

namespace tervane::app {

using Args = std::vector<std::string>;

struct Command {
    const char* name;
    const char* usage;   // after "tervane "
    const char* summary; // one line for the overview
    int (*run)(const Args& args);
    const char* details = nullptr; // options and behaviour, for COMMAND --help
};

// Defined in commands.cpp: the table that main dispatches on.
const std::vector<Command>& Commands();

int RunList(const Args& args);
int RunRes(const Args& args);
int RunTokens(const Args& args);
int RunTables(const Args& args);
int RunExtract(const Args& args);
int RunScan(const Args& args);

} // namespace tervane::app
