// tervane tokens --kind string|menu|dialog TEXT: the label tokens of TEXT,
// which is given in the escaped input form, one JSON object a line.
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "app/commands.h"
#include "app/json_lines.h"
#include "app/output_file.h"
#include "label/grammars/label_parser.h"
#include "platform/pe/resource_name_text.h"

namespace tervane::app {

namespace {

struct TokensOptions {
    LabelKind kind = LabelKind::String;
    std::string text;
};

std::optional<LabelKind> KindOf(const std::string& name) {
    if (name == "string")
        return LabelKind::String;
    if (name == "menu")
        return LabelKind::Menu;
    if (name == "dialog")
        return LabelKind::Dialog;
    return std::nullopt;
}

int RunTokens(const TokensOptions& options) {
    OutputFile out("-", {});
    JsonLine line;
    for (const LabelToken& token : ParseLabel(options.kind, pe::Utf8ToUtf16(options.text))) {
        std::string_view text = line.Number("type", token.type).Text("text", token.text).Finish();
        out.Write(text);
    }
    out.Commit();
    return 0;
}

} // namespace

void AddTokensCommand(CLI::App& app) {
    auto options = std::make_shared<TokensOptions>();
    CLI::App* command = AddCommand(app, "tokens", "Show the label tokens of an escaped label text",
                                   [options] { return RunTokens(*options); });
    command
        ->add_option_function<std::string>(
            "--kind", [options](const std::string& name) { options->kind = *KindOf(name); },
            "the grammar of the label")
        ->required()
        ->check([](const std::string& name) {
            return KindOf(name) ? std::string()
                                : "unknown kind '" + name + "' (string, menu or dialog)";
        })
        ->type_name("string|menu|dialog");
    command->add_option("TEXT", options->text, "the label, escaped; after -- if it starts with -")
        ->required()
        ->type_name("");
}

} // namespace tervane::app
