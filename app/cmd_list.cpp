// tervane list [--json] FILE: every resource of a PE file in the order the
// resource enumeration reports it (types, then names, then languages).
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "app/commands.h"
#include "app/failure.h"
#include "app/json_lines.h"
#include "platform/pe/resource_name_text.h"
#include "platform/win32/last_error.h"
#include "platform/win32/module_image.h"
#include "platform/win32/system_messages.h"

namespace tervane::app {

namespace {

struct Row {
    const pe::ResourceId* type;
    const pe::ResourceId* name;
    std::uint16_t language;
    std::uint32_t size;
};

struct ListOptions {
    bool json = false;
    std::string file;
};

[[noreturn]] void Fail(const std::string& path, DWORD code) {
    throw CommandFailure(path, SystemText(code, path));
}

void AddId(JsonLine& line, std::string_view key, const pe::ResourceId& id) {
    if (id.IsName())
        line.Text(key, std::u16string_view(id.Name()));
    else
        line.Number(key, id.Ordinal());
}

const char* KnownType(std::uint16_t type) {
    switch (type) {
    case 1:
        return "CURSOR";
    case 2:
        return "BITMAP";
    case 3:
        return "ICON";
    case 4:
        return "MENU";
    case 5:
        return "DIALOG";
    case 6:
        return "STRING";
    case 7:
        return "FONTDIR";
    case 8:
        return "FONT";
    case 9:
        return "ACCELERATOR";
    case 10:
        return "RCDATA";
    case 11:
        return "MESSAGETABLE";
    case 12:
        return "GROUP_CURSOR";
    case 14:
        return "GROUP_ICON";
    case 16:
        return "VERSION";
    case 23:
        return "HTML";
    case 24:
        return "MANIFEST";
    case 240:
        return "DLGINIT";
    default:
        return nullptr;
    }
}

std::string TableId(const pe::ResourceId& id, bool isType) {
    std::string text;
    if (id.IsName()) {
        // GCC 12 warns wrongly on "\"" + std::string&& at -O3, hence appends.
        text += '"';
        text += pe::Utf16ToUtf8(id.Name());
        text += '"';
        return text;
    }
    text = std::to_string(id.Ordinal());
    if (const char* known = isType ? KnownType(id.Ordinal()) : nullptr) {
        text += " (";
        text += known;
        text += ')';
    }
    return text;
}

void PrintTable(const std::vector<Row>& rows) {
    std::vector<std::vector<std::string>> cells = {{"TYPE", "NAME", "LANG", "SIZE"}};
    for (const Row& row : rows) {
        char lang[16];
        std::snprintf(lang, sizeof lang, "0x%04X", row.language);
        cells.push_back(
            {TableId(*row.type, true), TableId(*row.name, false), lang, std::to_string(row.size)});
    }
    // Widths in characters, not bytes, so that names in any script align.
    auto width = [](const std::string& s) {
        return std::count_if(s.begin(), s.end(),
                             [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; });
    };
    std::vector<std::ptrdiff_t> widths(4, 0);
    for (const auto& line : cells)
        for (std::size_t i = 0; i < 4; ++i)
            widths[i] = std::max(widths[i], width(line[i]));
    for (const auto& line : cells) {
        std::string out;
        for (std::size_t i = 0; i < 4; ++i) {
            std::string pad(static_cast<std::size_t>(widths[i] - width(line[i])), ' ');
            out += i == 3 ? pad + line[i] : line[i] + pad + "  ";
        }
        std::printf("%s\n", out.c_str());
    }
    std::printf("%zu resource%s\n", rows.size(), rows.size() == 1 ? "" : "s");
}

int RunList(const ListOptions& options) {
    const std::string& path = options.file;
    SetLastError(0);
    HMODULE module = LoadLibraryExA(path.c_str(), nullptr,
                                    DONT_RESOLVE_DLL_REFERENCES | LOAD_LIBRARY_AS_DATAFILE);
    if (!module) {
        Fail(path, GetLastError());
    }
    struct Release {
        HMODULE module;
        ~Release() { FreeLibrary(module); }
    } release{module};

    const Result<pe::ResourceTree>& tree = *ModuleResourceTree(module);
    std::vector<Row> rows;
    // A file without resources lists nothing; that is no failure.
    if (!tree && tree.error().code != ERROR_RESOURCE_DATA_NOT_FOUND) {
        Fail(path, tree.error().code);
    }
    if (tree) {
        if (const Error* damage = tree->FirstDamage()) {
            Fail(path, damage->code);
        }
        for (const auto& type : tree->types)
            for (const auto& name : type.names)
                for (const auto& language : name.languages) {
                    // What the list shows must be loadable, as LoadResource loads it.
                    auto data = ModuleResourceData(module, language.data);
                    if (!data) {
                        Fail(path, data.error().code);
                    }
                    rows.push_back({&type.id, &name.id, language.language, language.data.size});
                }
    }

    if (!options.json) {
        PrintTable(rows);
        return 0;
    }
    JsonLine line;
    for (const Row& row : rows) {
        AddId(line, "type", *row.type);
        AddId(line, "name", *row.name);
        std::string_view text = line.Number("lang", row.language).Number("size", row.size).Finish();
        std::fwrite(text.data(), 1, text.size(), stdout);
    }
    return 0;
}

} // namespace

void AddListCommand(CLI::App& app) {
    auto options = std::make_shared<ListOptions>();
    CLI::App* command = AddCommand(app, "list", "List the resources of a PE file",
                                   [options] { return RunList(*options); });
    command->add_flag("--json", options->json,
                      "one JSON object a resource: type, name, lang, size");
    command->add_option("FILE", options->file, "the PE file (.exe, .dll, .ocx, .lng)")
        ->required()
        ->type_name("");
}

} // namespace tervane::app
