// tervane pseudo DOC.xlf [-o OUT] [--expand PERCENT]: a pseudo-localised
// target in every unit of a bilingual document.
#include <memory>
#include <string>

#include "app/bilingual_file.h"
#include "app/commands.h"
#include "app/input_file.h"
#include "app/xliff/pseudo.h"

namespace tervane::app {

namespace {

struct PseudoOptions {
    std::string file, out;
    int expand = 40;
};

int RunPseudo(const PseudoOptions& options) {
    CheckInputFile(options.file, kMaxDataFileBytes);
    OutputFile output(options.out, {options.file});
    xliff::Document document = LoadDocument(options.file);
    xliff::PseudoLocalise(document, options.expand);
    SaveDocument(document, output);
    return 0;
}

} // namespace

void AddPseudoCommand(CLI::App& app) {
    auto options = std::make_shared<PseudoOptions>();
    CLI::App* command =
        AddCommand(app, "pseudo", "Pseudo-localise every target of a bilingual document",
                   [options] { return RunPseudo(*options); });
    command->footer(
        "Each target becomes its source with accented look-alikes of the letters, grown by\n"
        "PERCENT of its length and set in brackets, so that a cut text shows. Placeholders,\n"
        "hotkey marks and the letters they mark stay. The same document always gives the\n"
        "same result. Units marked translate=\"no\" keep their target.");
    command->add_option("--expand", options->expand, "growth in percent (40)")
        ->type_name("PERCENT")
        ->check(CLI::Range(0, 1000));
    command
        ->add_option("-o", options->out,
                     "write to OUT, replaced only by a whole result; - is standard output")
        ->type_name("OUT");
    command->add_option("FILE", options->file, "the bilingual document (XLIFF 1.2)")
        ->required()
        ->type_name("");
}

} // namespace tervane::app
