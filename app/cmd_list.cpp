// tervane list [--json] FILE: every resource of a PE file in the order the
// resource enumeration reports it (types, then names, then languages).
#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "app/commands.h"
#include "app/input_file.h"
#include "app/json_lines.h"
#include "app/output_file.h"
#include "platform/pe/resource_name_text.h"

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

std::string Table(const std::vector<Row>& rows) {
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
    std::string out;
    for (const auto& line : cells) {
        for (std::size_t i = 0; i < 4; ++i) {
            std::string pad(static_cast<std::size_t>(widths[i] - width(line[i])), ' ');
            out += i == 3 ? pad + line[i] : line[i] + pad + "  ";
        }
        out += '\n';
    }
    return out + std::to_string(rows.size()) + (rows.size() == 1 ? " resource\n" : " resources\n");
}

int RunList(const ListOptions& options) {
    // A file without resources lists nothing; that is no failure.
    PeFile file(options.file);
    // What the list shows must be loadable.
    file.CheckEveryResourceLoads(options.file);
    std::vector<Row> rows;
    if (const pe::ResourceTree* tree = file.Resources())
        for (const auto& type : tree->types)
            for (const auto& name : type.names)
                for (const auto& language : name.languages)
                    rows.push_back({&type.id, &name.id, language.language, language.data.size});

    OutputFile out("-", {});
    if (!options.json) {
        out.Write(Table(rows));
    } else {
        JsonLine line;
        for (const Row& row : rows) {
            AddId(line, "type", *row.type);
            AddId(line, "name", *row.name);
            out.Write(line.Number("lang", row.language).Number("size", row.size).Finish());
        }
    }
    out.Commit();
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
