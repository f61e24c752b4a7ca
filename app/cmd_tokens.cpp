// tervane tokens --kind string|menu|dialog TEXT: the label tokens of TEXT,
// which is given in the escaped input form, one JSON object a line.
#include <cstdio>
#include <string>

#include "app/commands.h"
#include "app/json_text.h"
#include "label/grammars/label_parser.h"
#include "platform/pe/resource_name_text.h"

namespace tervane::app {

namespace {

bool KindOf(const std::string& name, LabelKind* kind) {
    if (name == "string")
        *kind = LabelKind::String;
    else if (name == "menu")
        *kind = LabelKind::Menu;
    else if (name == "dialog")
        *kind = LabelKind::Dialog;
    else
        return false;
    return true;
}

int Usage() {
    std::fprintf(stderr, "usage: tervane tokens --kind string|menu|dialog TEXT\n");
    return 2;
}

} // namespace

int RunTokens(const Args& args) {
    std::string kindName;
    const std::string* text = nullptr;
    for (std::size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--kind" && i + 1 < args.size())
            kindName = args[++i];
        else if (!text)
            text = &args[i];
        else
            return Usage();
    }
    if (kindName.empty() || !text)
        return Usage();
    LabelKind kind;
    if (!KindOf(kindName, &kind)) {
        std::fprintf(stderr, "tervane tokens: unknown kind '%s' (string, menu or dialog)\n",
                     kindName.c_str());
        return 2;
    }
    for (const LabelToken& token : ParseLabel(kind, pe::Utf8ToUtf16(*text)))
        std::printf("{\"type\": %u, \"text\": %s}\n", token.type, JsonString(token.text).c_str());
    return 0;
}

} // namespace tervane::app
