#include "app/commands.h"

#include <map>
#include <string_view>

namespace tervane::app {

namespace {

std::map<const CLI::App*, std::function<int()>>& Runs() {
    static std::map<const CLI::App*, std::function<int()>> runs;
    return runs;
}

} // namespace

CLI::App* AddCommand(CLI::App& parent, const std::string& name, const std::string& summary,
                     std::function<int()> run) {
    CLI::App* command = parent.add_subcommand(name, summary);
    command->group("Commands");
    if (run)
        Runs()[command] = std::move(run);
    else
        command->require_subcommand(1);
    return command;
}

namespace {

struct CommandEntry {
    std::string_view name;
    void (*add)(CLI::App&);
};

constexpr CommandEntry kCommands[] = {
    {"list", AddListCommand},
    {"res", AddResCommand},
    {"tokens", AddTokensCommand},
    {"tables", AddTablesCommand},
    {"extract", AddExtractCommand},
    {"pseudo", AddPseudoCommand},
    {"stats", AddStatsCommand},
    {"merge", AddMergeCommand},
    {"scan", AddScanCommand},
    {"preview", AddPreviewCommand},
    {"verify", AddVerifyCommand},
    {"register", AddRegisterCommand},
    {"unregister", AddUnregisterCommand},
};

const CommandEntry* Named(std::string_view word) {
    for (const CommandEntry& entry : kCommands)
        if (entry.name == word)
            return &entry;
    return nullptr;
}

} // namespace

void AddCommands(CLI::App& app) {
    for (const CommandEntry& entry : kCommands)
        entry.add(app);
}

void AddCommandsFor(CLI::App& app, int argc, const char* const* argv) {
    const CommandEntry* chosen = argc > 1 ? Named(argv[1]) : nullptr;
    // Another command's name further on is an error whose message the other
    // commands' presence shapes: then all are there, as always.
    for (int i = 2; chosen && i < argc; ++i)
        if (Named(argv[i]))
            chosen = nullptr;
    if (chosen)
        chosen->add(app);
    else
        AddCommands(app);
}

const std::function<int()>* ChosenRun(const CLI::App& app) {
    for (const CLI::App* at = &app;;) {
        auto chosen = at->get_subcommands();
        if (chosen.empty()) {
            auto run = Runs().find(at);
            return run == Runs().end() ? nullptr : &run->second;
        }
        at = chosen.front();
    }
}

} // namespace tervane::app
