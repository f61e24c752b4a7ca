// tervane list [--json] FILE: every resource of a PE file in the order the
// resource enumeration reports it (types, then names, then languages).
#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "app/commands.h"
#include "app/json_text.h"
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

// The system's text for the code, with the file in place of %1.
void ReportFailure(const std::string& path, DWORD code) {
    char buffer[512];
    DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                  nullptr, code, 0, buffer, sizeof buffer, nullptr);
    std::string text = length ? std::string(buffer, length) : "Error " + std::to_string(code) + ".";
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    if (auto at = text.find("%1"); at != std::string::npos)
        text.replace(at, 2, path);
    std::fprintf(stderr, "tervane list: %s: %s\n", path.c_str(), text.c_str());
}

std::string JsonId(const pe::ResourceId& id) {
    return id.IsName() ? JsonString(std::u16string_view(id.Name())) : std::to_string(id.Ordinal());
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

} // namespace

int RunList(const Args& args) {
    bool json = false;
    std::vector<std::string> files;
    for (const auto& arg : args) {
        if (arg == "--json")
            json = true;
        else
            files.push_back(arg);
    }
    if (files.size() != 1) {
        std::fprintf(stderr, "Usage: tervane list [--json] FILE\n");
        return 2;
    }
    const std::string& path = files[0];

    SetLastError(0);
    HMODULE module = LoadLibraryExA(path.c_str(), nullptr,
                                    DONT_RESOLVE_DLL_REFERENCES | LOAD_LIBRARY_AS_DATAFILE);
    if (!module) {
        ReportFailure(path, GetLastError());
        return 1;
    }
    struct Release {
        HMODULE module;
        ~Release() { FreeLibrary(module); }
    } release{module};

    const Result<pe::ResourceTree>& tree = *ModuleResourceTree(module);
    std::vector<Row> rows;
    // A file without resources lists nothing; that is no failure.
    if (!tree && tree.error().code != ERROR_RESOURCE_DATA_NOT_FOUND) {
        ReportFailure(path, tree.error().code);
        return 1;
    }
    if (tree) {
        if (const Error* damage = tree->FirstDamage()) {
            ReportFailure(path, damage->code);
            return 1;
        }
        for (const auto& type : tree->types)
            for (const auto& name : type.names)
                for (const auto& language : name.languages) {
                    // What the list shows must be loadable, as LoadResource loads it.
                    auto data = ModuleResourceData(module, language.data);
                    if (!data) {
                        ReportFailure(path, data.error().code);
                        return 1;
                    }
                    rows.push_back({&type.id, &name.id, language.language, language.data.size});
                }
    }

    if (!json) {
        PrintTable(rows);
        return 0;
    }
    for (const Row& row : rows)
        std::printf("{\"type\": %s, \"name\": %s, \"lang\": %u, \"size\": %u}\n",
                    JsonId(*row.type).c_str(), JsonId(*row.name).c_str(), row.language, row.size);
    return 0;
}

} // namespace tervane::app
