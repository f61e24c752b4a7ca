// tervane stats DOC.xlf [--json]: units, words and characters of a bilingual
// document, translated and not, by kind of resource.
#include <cstdio>
#include <memory>
#include <string>

#include "app/bilingual_file.h"
#include "app/commands.h"
#include "app/input_file.h"
#include "app/json_lines.h"
#include "app/output_file.h"
#include "app/xliff/stats.h"

namespace tervane::app {

namespace {

struct StatsOptions {
    std::string file;
    bool json = false;
};

int RunStats(const StatsOptions& options) {
    CheckInputFile(options.file, kMaxDataFileBytes);
    OutputFile out("-", {});
    xliff::Document document = LoadDocument(options.file);
    std::vector<xliff::KindStats> kinds = xliff::CountDocument(document);
    if (options.json) {
        JsonLine line;
        for (const xliff::KindStats& kind : kinds) {
            for (auto [state, tally] : {std::pair{"translated", &kind.translated},
                                        std::pair{"untranslated", &kind.untranslated},
                                        std::pair{"locked", &kind.locked}}) {
                std::string_view text =
                    line.Text("kind", std::string_view(kind.kind))
                        .Text("state", std::string_view(state))
                        .Number("units", static_cast<std::int64_t>(tally->units))
                        .Number("words", static_cast<std::int64_t>(tally->words))
                        .Number("characters", static_cast<std::int64_t>(tally->characters))
                        .Finish();
                out.Write(text);
            }
        }
    } else {
        auto row = [&](const char* format, auto... values) {
            char line[256];
            std::snprintf(line, sizeof line, format, values...);
            out.Write(std::string_view(line));
        };
        row("%-10s %27s %27s %19s\n", "", "translated", "untranslated", "locked");
        row("%-10s %7s %9s %9s %7s %9s %9s %7s %11s\n", "kind", "units", "words", "chars", "units",
            "words", "chars", "units", "words");
        for (const xliff::KindStats& kind : kinds) {
            auto u = [](std::uint64_t n) { return static_cast<unsigned long long>(n); };
            row("%-10s %7llu %9llu %9llu %7llu %9llu %9llu %7llu %11llu\n", kind.kind.c_str(),
                u(kind.translated.units), u(kind.translated.words), u(kind.translated.characters),
                u(kind.untranslated.units), u(kind.untranslated.words),
                u(kind.untranslated.characters), u(kind.locked.units), u(kind.locked.words));
        }
    }
    out.Commit();
    return 0;
}

} // namespace

void AddStatsCommand(CLI::App& app) {
    auto options = std::make_shared<StatsOptions>();
    CLI::App* command =
        AddCommand(app, "stats", "Count the units, words and characters of a bilingual document",
                   [options] { return RunStats(*options); });
    command->footer(
        "By kind of resource (strings, dialogs, menus, versions) and in total: the units\n"
        "whose target has text (translated), the others (untranslated), and those the\n"
        "translator may not change (locked, such as menu shortcuts). Words and characters\n"
        "are the source's, placeholders left out; a word is a run of letters and digits.");
    command->add_flag("--json", options->json,
                      "one JSON object a line: kind, state, units, words, characters");
    command->add_option("FILE", options->file, "the bilingual document (XLIFF 1.2)")
        ->required()
        ->type_name("");
}

} // namespace tervane::app
