#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <CLI/CLI.hpp>

#include "app/commands.h"
#include "app/failure.h"
#include "app/output_file.h"
#include "platform/diag/failure_place.h"

namespace {

// The deepest command chosen, whose help a --help at its level asks for.
const CLI::App* Chosen(const CLI::App& app) {
    const CLI::App* at = &app;
    while (!at->get_subcommands().empty())
        at = at->get_subcommands().front();
    return at;
}

// The words of the command line that name commands, for messages and help.
std::string CommandPath(const CLI::App& app) {
    std::string path = app.get_name();
    for (const CLI::App* at = &app; !at->get_subcommands().empty();) {
        at = at->get_subcommands().front();
        path += " " + at->get_name();
    }
    return path;
}

// A wrong command line: what is wrong, then where to look; exit status 2.
// A word left over names the mistake better than a missing FILE does.
int CommandLineError(const CLI::App& app, const CLI::ParseError& error) {
    std::string path = CommandPath(app);
    std::string what = error.what();
    const CLI::App* chosen = Chosen(app);
    std::vector<std::string> left = chosen->remaining();
    if (!left.empty() && !left.front().empty() && left.front()[0] == '-')
        what = "unknown option '" + left.front() + "'";
    else if (!left.empty() && !chosen->get_subcommands({}).empty())
        what = "unknown command '" + left.front() + "'";
    std::fprintf(stderr, "%s: %s\nRun '%s --help' for more information.\n", path.c_str(),
                 what.c_str(), path.c_str());
    return 2;
}

// The command as failures name it: "res", not "res put".
std::string TopCommand(const CLI::App& app) {
    auto chosen = app.get_subcommands();
    return chosen.empty() ? std::string() : chosen.front()->get_name();
}

// Exit status 0 once all that was written to standard output arrived.
int Finish(std::string_view command) {
    try {
        tervane::app::CloseStandardOutput();
        return 0;
    } catch (const tervane::app::CommandFailure& failure) {
        tervane::app::ReportFailure(command, failure);
        return 1;
    }
}

// The help of one command, under its whole name.
std::string Help(const CLI::App& app) {
    const CLI::App* chosen = Chosen(app);
    if (chosen == &app)
        return app.help();
    std::string path = CommandPath(app);
    return chosen->help(path.substr(0, path.rfind(' ')));
}

} // namespace

int main(int argc, char** argv) {
#if defined(__GLIBC__)
    // No fast bins: a freed block joins its free neighbours at once. A large
    // file's pieces, all freed at the end, then need no sweep of the bins,
    // which cost more than the bins saved.
    mallopt(M_MXFAST, 0);
#endif
    // The writer names its work file beside the source with rand(): two runs
    // on one source at once must not draw the same name.
    std::srand(static_cast<unsigned>(getpid()) ^ static_cast<unsigned>(std::time(nullptr)));
    CLI::App app("Localisation filter for the resources of Win32 executables.", "tervane");
    app.set_version_flag("--version", "tervane " TERVANE_VERSION);
    app.require_subcommand(1);
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    tervane::app::AddCommandsFor(app, argc, argv);
    app.footer("Run 'tervane COMMAND --help' for the options of one command.");

    if (argc < 2) {
        std::fputs(app.help().c_str(), stderr);
        return 2;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        std::fputs(Help(app).c_str(), stdout);
        return Finish(TopCommand(app));
    } catch (const CLI::CallForVersion& version) {
        std::printf("%s\n", version.what());
        return Finish("");
    } catch (const CLI::ParseError& error) {
        return CommandLineError(app, error);
    }

    const auto* run = tervane::app::ChosenRun(app);
    const std::string command = TopCommand(app);
    tervane::ClearFailurePlace();
    try {
        int status = (*run)();
        tervane::app::CloseStandardOutput();
        return status;
    } catch (const tervane::app::CommandFailure& failure) {
        tervane::app::ReportFailure(command, failure);
    } catch (const std::bad_alloc&) {
        tervane::app::ReportFailure(command, {{}, "out of memory"});
    } catch (const std::exception& error) {
        tervane::app::ReportFailure(command, {{}, error.what()});
    }
    return 1;
}
