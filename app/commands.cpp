#include "app/commands.h"

#include <map>

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

void AddCommands(CLI::App& app) {
    AddListCommand(app);
    AddResCommand(app);
    AddTokensCommand(app);
    AddTablesCommand(app);
    AddExtractCommand(app);
    AddPseudoCommand(app);
    AddStatsCommand(app);
    AddMergeCommand(app);
    AddScanCommand(app);
    AddPreviewCommand(app);
    AddVerifyCommand(app);
    AddRegisterCommands(app);
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
