// tervane res get|put|delete FILE --type T --name N --lang L: one resource of a
// PE file by hand, through the same Win32 calls that the conversions use.
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "app/commands.h"
#include "platform/files/file_bytes.h"
#include "platform/files/file_replace.h"
#include "platform/update/pending_files.h"
#include "platform/update/resource_update.h"
#include "platform/win32/last_error.h"
#include "platform/win32/module_image.h"
#include "platform/win32/resources.h"
#include "platform/win32/system_messages.h"

namespace tervane::app {

namespace {

struct Request {
    std::string action;
    std::string file;
    std::optional<ResName> type;
    std::optional<ResName> name;
    std::optional<WORD> language;
    std::string output;
    std::string data;
};

void ReportFailure(const std::string& path, DWORD code) {
    std::string text = SystemMessageText(code).value_or("Error " + std::to_string(code) + ".");
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    if (auto at = text.find("%1"); at != std::string::npos)
        text.replace(at, 2, path);
    std::fprintf(stderr, "tervane res: %s: %s\n", path.c_str(), text.c_str());
}

int Usage(const std::string& why) {
    std::fprintf(stderr,
                 "tervane res: %s\nUsage: tervane res get|put|delete FILE --type T --name N "
                 "--lang L [-o OUT] [--data DATAFILE]\n",
                 why.c_str());
    return 2;
}

std::optional<unsigned long> Number(const std::string& text, int base) {
    if (text.empty())
        return std::nullopt;
    std::size_t used = 0;
    try {
        unsigned long value = std::stoul(text, &used, base);
        if (used != text.size() || value > 0xFFFF)
            return std::nullopt;
        return value;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

// A type or name: decimal digits are a number, anything else a name.
std::optional<ResName> Identifier(const std::string& text) {
    if (text.empty())
        return std::nullopt;
    if (text.find_first_not_of("0123456789") != std::string::npos)
        return ResName(text);
    auto number = Number(text, 10);
    if (!number)
        return std::nullopt;
    return ResName(static_cast<WORD>(*number));
}

std::optional<WORD> Language(const std::string& text) {
    bool hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    auto number = hex ? Number(text.substr(2), 16) : Number(text, 10);
    if (!number ||
        (hex && text.substr(2).find_first_not_of("0123456789abcdefABCDEF") != std::string::npos))
        return std::nullopt;
    return static_cast<WORD>(*number);
}

std::optional<std::string> Parse(const Args& args, Request& r) {
    std::vector<std::string> positional;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        bool option =
            arg == "--type" || arg == "--name" || arg == "--lang" || arg == "-o" || arg == "--data";
        if (!option) {
            positional.push_back(arg);
            continue;
        }
        if (i + 1 >= args.size())
            return arg + " needs a value";
        const std::string& value = args[++i];
        if (arg == "--type" && !(r.type = Identifier(value)))
            return "bad type '" + value + "'";
        if (arg == "--name" && !(r.name = Identifier(value)))
            return "bad name '" + value + "'";
        if (arg == "--lang" && !(r.language = Language(value)))
            return "bad language '" + value + "'";
        if (arg == "-o")
            r.output = value;
        if (arg == "--data")
            r.data = value;
    }
    if (positional.size() != 2)
        return "expected an action and one FILE";
    r.action = positional[0];
    r.file = positional[1];
    if (r.action != "get" && r.action != "put" && r.action != "delete")
        return "unknown action '" + r.action + "'";
    if (!r.type || !r.name || !r.language)
        return "--type, --name and --lang are required";
    if (r.action == "put" && r.data.empty())
        return "put needs --data DATAFILE";
    return std::nullopt;
}

// The resource in exactly this language: FindResourceExA falls back to
// neutral languages, which a user asking for one language must not get.
Result<std::vector<std::uint8_t>> Find(const Request& r) {
    HMODULE module = LoadLibraryExA(r.file.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    if (!module)
        return Error{GetLastError(), r.file};
    SetLastError(0);
    HRSRC found = FindResourceExA(module, *r.type, *r.name, *r.language);
    if (found) {
        const auto* tree = ModuleResourceTree(module);
        const pe::ResourceTree& t = **tree;
        if (t.types[found->type].names[found->name].languages[found->language].language !=
            *r.language)
            found = nullptr;
    }
    if (!found) {
        DWORD code = GetLastError() ? GetLastError() : ERROR_RESOURCE_LANG_NOT_FOUND;
        FreeLibrary(module);
        return Error{code, r.file};
    }
    HGLOBAL loaded = LoadResource(module, found);
    const void* data = loaded ? LockResource(loaded) : nullptr;
    if (!data) {
        DWORD code = GetLastError();
        FreeLibrary(module);
        return Error{code, r.file};
    }
    auto bytes = static_cast<const std::uint8_t*>(data);
    std::vector<std::uint8_t> out(bytes, bytes + SizeofResource(module, found));
    FreeLibrary(module);
    return out;
}

int Get(const Request& r) {
    auto bytes = Find(r);
    if (!bytes) {
        ReportFailure(r.file, bytes.error().code);
        return 1;
    }
    if (r.output.empty()) {
        if (std::fwrite(bytes->data(), 1, bytes->size(), stdout) != bytes->size() ||
            std::fflush(stdout) != 0) {
            ReportFailure("standard output", ERROR_WRITE_FAULT);
            return 1;
        }
        return 0;
    }
    if (auto error = files::ReplaceFileContent(r.output, *bytes, files::PermissionsFor(r.output))) {
        ReportFailure(r.output, error->code);
        return 1;
    }
    return 0;
}

int Change(const Request& r) {
    std::vector<std::uint8_t> data;
    if (r.action == "put") {
        auto bytes = files::ReadFileBytes(r.data);
        if (!bytes) {
            ReportFailure(r.data, bytes.error().code);
            return 1;
        }
        data = std::move(*bytes);
    } else if (auto existing = Find(r); !existing) {
        // Win32 deletes a missing resource without a word; a user is told.
        ReportFailure(r.file, existing.error().code);
        return 1;
    }
    SetLastError(0);
    HANDLE update = BeginUpdateResourceA(r.file.c_str(), FALSE);
    if (!update) {
        ReportFailure(r.file, GetLastError());
        return 1;
    }
    // Win32 treats a null pointer with size 0 as a deletion: an empty
    // resource is put with a non-null pointer.
    static const std::uint8_t empty = 0;
    const void* bytes = r.action == "delete" ? nullptr : data.empty() ? &empty : data.data();
    if (!UpdateResourceA(update, *r.type, *r.name, *r.language, bytes,
                         static_cast<DWORD>(data.size()))) {
        DWORD code = GetLastError();
        EndUpdateResourceA(update, TRUE);
        ReportFailure(r.file, code);
        return 1;
    }
    if (!EndUpdateResourceA(update, FALSE)) {
        ReportFailure(r.file, GetLastError());
        return 1;
    }
    // Written now, so that a failure is reported while the exit status can
    // still say so; on failure the file is as it was.
    if (auto error = update::FlushPendingFile(r.file)) {
        update::DiscardPendingFile(r.file);
        ReportFailure(r.file, error->code);
        return 1;
    }
    return 0;
}

} // namespace

int RunRes(const Args& args) {
    Request r;
    if (auto problem = Parse(args, r))
        return Usage(*problem);
    return r.action == "get" ? Get(r) : Change(r);
}

} // namespace tervane::app
