#pragma once
// The commands of the tervane program, declared once on CLI11: the options,
// `--help` at every level, `--` and the errors of a wrong command line all come
// from the declarations.
//
// To add a command NAME: write app/cmd_NAME.cpp with
//     void AddNameCommand(CLI::App& app) {
//         auto options = std::make_shared<NameOptions>();
//         CLI::App* command = AddCommand(app, "name", "One line for the overview",
//                                        [options] { return RunName(*options); });
//         command->add_option("FILE", options->file, "...")->required();
//     }
// declare it below and call it from AddCommands in commands.cpp. A run gives
// the exit status; a failure is thrown as a CommandFailure (app/failure.h),
// which main reports once. Inputs are judged by app/input_file.h (PeFile,
// CheckInputFile) and everything written goes through app/output_file.h:
//     OutputFile out(options.out, {options.file}); // "-" is standard output
//     out.Write(bytes);                            // checked
//     out.Commit();                                // only on success
// JSON Lines are built by app/json_lines.h.
#include <functional>
#include <string>

#include <CLI/CLI.hpp>

namespace tervane::app {

// A subcommand of parent whose run is called, after a successful parse, with
// its options bound. A command with actions (res get|put|delete) adds them as
// commands of its own and has no run itself.
CLI::App* AddCommand(CLI::App& parent, const std::string& name, const std::string& summary,
                     std::function<int()> run = {});

// Every command of the program, on the main CLI::App.
void AddCommands(CLI::App& app);

// Only the command that the command line's first word names, when it names
// one, else every command: declaring all the others' options would cost a
// small file's run about a fifth of its time.
void AddCommandsFor(CLI::App& app, int argc, const char* const* argv);

// The run of the deepest command the parse chose, or none.
const std::function<int()>* ChosenRun(const CLI::App& app);

void AddListCommand(CLI::App& app);
void AddResCommand(CLI::App& app);
void AddTokensCommand(CLI::App& app);
void AddTablesCommand(CLI::App& app);
void AddExtractCommand(CLI::App& app);
void AddPseudoCommand(CLI::App& app);
void AddStatsCommand(CLI::App& app);
void AddMergeCommand(CLI::App& app);
void AddScanCommand(CLI::App& app);
void AddPreviewCommand(CLI::App& app);
void AddVerifyCommand(CLI::App& app);
void AddRegisterCommand(CLI::App& app);
void AddUnregisterCommand(CLI::App& app);

} // namespace tervane::app
