#include <cstdio>
#include <cstring>
#include <string>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "app/commands.h"

namespace {

void PrintUsage(FILE* out) {
    std::fprintf(out, "Usage: tervane COMMAND [OPTIONS] ...\n\n"
                      "Localisation filter for the resources of Win32 executables.\n\n"
                      "Commands:\n");
    for (const auto& command : tervane::app::Commands())
        std::fprintf(out, "  %-12s %s\n", command.name, command.summary);
    std::fprintf(out, "\nRun 'tervane COMMAND --help' for the options of one command.\n");
}

} // namespace

int main(int argc, char** argv) {
#if defined(__GLIBC__)
    // No fast bins: a freed block joins its free neighbours at once. A large
    // file's pieces, all freed at the end, then need no sweep of the bins,
    // which cost more than the bins saved.
    mallopt(M_MXFAST, 0);
#endif
    if (argc < 2) {
        PrintUsage(stderr);
        return 2;
    }
    std::string name = argv[1];
    if (name == "--help" || name == "-h" || name == "help") {
        PrintUsage(stdout);
        return 0;
    }
    for (const auto& command : tervane::app::Commands()) {
        if (name != command.name)
            continue;
        tervane::app::Args args(argv + 2, argv + argc);
        for (const auto& arg : args) {
            if (arg == "--help" || arg == "-h") {
                std::printf("Usage: tervane %s\n\n%s\n", command.usage, command.summary);
                if (command.details)
                    std::printf("\n%s\n", command.details);
                return 0;
            }
        }
        return command.run(args);
    }
    std::fprintf(stderr, "tervane: unknown command '%s'\n\n", name.c_str());
    PrintUsage(stderr);
    return 2;
}
