// tervane verify DOC.xlf [--source FILE] [--json]: the checks of the editor's
// verification plug-in on a bilingual document, as a translator reads them.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "app/commands.h"
#include "app/document_verification.h"
#include "app/input_file.h"
#include "app/json_lines.h"
#include "app/output_file.h"
#include "platform/locale/utf8.h"

namespace tervane::app {

namespace {

struct VerifyOptions {
    std::string document;
    std::string source;
    bool json = false;
};

// One line a finding: the control characters of a message are escaped.
std::string OneLineText(std::u16string_view text) {
    std::string out;
    for (char16_t c : text) {
        if (c == u'\n')
            out += "\\n";
        else if (c == u'\t')
            out += "\\t";
        else if (c == u'\r')
            out += "\\r";
        else
            locale::AppendUtf8(out, std::u16string_view(&c, 1));
    }
    return out;
}

int RunVerify(const VerifyOptions& options) {
    CheckInputFile(options.document, kMaxDataFileBytes);
    // A source named on the command line must be there; the document's own may be gone.
    if (!options.source.empty())
        CheckInputFile(options.source, kMaxPeFileBytes);
    OutputFile out("-", {});
    Verification verification = VerifyDocument(options.document, options.source);
    if (verification.source.empty())
        std::fprintf(stderr,
                     "tervane verify: %s: the source file is gone: verified on the document "
                     "alone\n",
                     options.document.c_str());
    std::size_t counts[4] = {};
    JsonLine json;
    for (const Finding& finding : verification.findings) {
        ++counts[std::clamp<LONG>(finding.severity, 1, 3)];
        const LONG line = finding.range.start.first;
        const LONG column = std::max<LONG>(finding.range.start.second, 1);
        if (options.json) {
            out.Write(json.Text("file", std::string_view(options.document))
                          .Number("line", line)
                          .Number("column", column)
                          .Text("severity", std::string_view(SeverityWord(finding.severity)))
                          .Number("code", finding.code)
                          .Text("message", std::u16string_view(finding.message))
                          .Finish());
        } else {
            out.Write(options.document + ":" + std::to_string(line) + ":" + std::to_string(column) +
                      ": " + SeverityWord(finding.severity) + " [" + std::to_string(finding.code) +
                      "] " + OneLineText(finding.message) + "\n");
        }
    }
    if (!options.json)
        out.Write(std::to_string(counts[3]) + " errors, " + std::to_string(counts[2]) +
                  " warnings, " + std::to_string(counts[1]) + " notes\n");
    out.Commit();
    return verification.HasErrors() ? 1 : 0;
}

} // namespace

void AddVerifyCommand(CLI::App& app) {
    auto options = std::make_shared<VerifyOptions>();
    CLI::App* command =
        AddCommand(app, "verify", "Check a bilingual document's tags and texts before a merge",
                   [options] { return RunVerify(*options); });
    command->footer(
        "Runs the editor's verification plug-in on the document: the order and nesting of\n"
        "the tags against the source file, the placeholders of each unit, empty and too\n"
        "long texts, hotkeys and shortcuts used twice. One line a finding,\n"
        "FILE:LINE:COL: error|warning|note [CODE] message, sorted by place, then a summary.\n"
        "The document is not changed. Exit status 0 without errors, 1 with errors, 2 for a\n"
        "wrong command line.");
    command->add_option("FILE", options->document, "the bilingual document (XLIFF 1.2)")
        ->required()
        ->type_name("");
    command->add_option("--source", options->source,
                        "the source file, if not the one the document names");
    command->add_flag("--json", options->json,
                      "one JSON object a line: file, line, column, severity, code, message");
}

} // namespace tervane::app
