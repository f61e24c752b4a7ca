// tervane res get|put|delete FILE --type T --name N --lang L: one resource of a
// PE file by hand, through the same Win32 calls that the conversions use.
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/commands.h"
#include "app/failure.h"
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

[[noreturn]] void Fail(const std::string& path, DWORD code) {
    throw CommandFailure(path, SystemText(code, path));
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
    if (!bytes)
        Fail(r.file, bytes.error().code);
    if (r.output.empty()) {
        if (std::fwrite(bytes->data(), 1, bytes->size(), stdout) != bytes->size() ||
            std::fflush(stdout) != 0)
            Fail("standard output", ERROR_WRITE_FAULT);
        return 0;
    }
    if (auto error = files::ReplaceFileContent(r.output, *bytes, files::PermissionsFor(r.output)))
        Fail(r.output, error->code);
    return 0;
}

int Change(const Request& r) {
    std::vector<std::uint8_t> data;
    if (r.action == "put") {
        auto bytes = files::ReadFileBytes(r.data);
        if (!bytes)
            Fail(r.data, bytes.error().code);
        data = std::move(*bytes);
    } else if (auto existing = Find(r); !existing) {
        // Win32 deletes a missing resource without a word; a user is told.
        Fail(r.file, existing.error().code);
    }
    SetLastError(0);
    HANDLE update = BeginUpdateResourceA(r.file.c_str(), FALSE);
    if (!update)
        Fail(r.file, GetLastError());
    // Win32 treats a null pointer with size 0 as a deletion: an empty
    // resource is put with a non-null pointer.
    static const std::uint8_t empty = 0;
    const void* bytes = r.action == "delete" ? nullptr : data.empty() ? &empty : data.data();
    if (!UpdateResourceA(update, *r.type, *r.name, *r.language, bytes,
                         static_cast<DWORD>(data.size()))) {
        DWORD code = GetLastError();
        EndUpdateResourceA(update, TRUE);
        Fail(r.file, code);
    }
    if (!EndUpdateResourceA(update, FALSE))
        Fail(r.file, GetLastError());
    // Written now, so that a failure is reported while the exit status can
    // still say so; on failure the file is as it was.
    if (auto error = update::FlushPendingFile(r.file)) {
        update::DiscardPendingFile(r.file);
        Fail(r.file, error->code);
    }
    return 0;
}

// The identifier options of every action, checked as they are read.
void AddKey(CLI::App& action, Request& r) {
    action.add_option("FILE", r.file, "the PE file")->required()->type_name("");
    action
        .add_option_function<std::string>(
            "--type", [&r](const std::string& text) { r.type = Identifier(text); },
            "the resource type: a number below 65536, or a name")
        ->required()
        ->type_name("T")
        ->check([](const std::string& text) {
            return Identifier(text) ? std::string() : "bad type '" + text + "'";
        });
    action
        .add_option_function<std::string>(
            "--name", [&r](const std::string& text) { r.name = Identifier(text); },
            "the resource name: a number below 65536, or a name")
        ->required()
        ->type_name("N")
        ->check([](const std::string& text) {
            return Identifier(text) ? std::string() : "bad name '" + text + "'";
        });
    action
        .add_option_function<std::string>(
            "--lang", [&r](const std::string& text) { r.language = Language(text); },
            "the language identifier, decimal or 0x hexadecimal")
        ->required()
        ->type_name("L")
        ->check([](const std::string& text) {
            return Language(text) ? std::string() : "bad language '" + text + "'";
        });
}

} // namespace

void AddResCommand(CLI::App& app) {
    auto r = std::make_shared<Request>();
    CLI::App* res =
        AddCommand(app, "res", "Read, add, replace or delete one resource of a PE file");
    CLI::App* get = AddCommand(*res, "get", "Write one resource's bytes to standard output or OUT",
                               [r] { return Get(*r); });
    AddKey(*get, *r);
    get->add_option("-o", r->output, "write to OUT instead of standard output")->type_name("OUT");
    CLI::App* put =
        AddCommand(*res, "put", "Add or replace one resource with the bytes of DATAFILE", [r] {
            r->action = "put";
            return Change(*r);
        });
    AddKey(*put, *r);
    put->add_option("--data", r->data, "the resource's new bytes")
        ->required()
        ->type_name("DATAFILE");
    put->add_option("-o", r->output, "write the changed file to OUT; FILE stays as it is")
        ->type_name("OUT");
    CLI::App* remove = AddCommand(*res, "delete", "Delete one resource", [r] {
        r->action = "delete";
        return Change(*r);
    });
    AddKey(*remove, *r);
    remove->add_option("-o", r->output, "write the changed file to OUT; FILE stays as it is")
        ->type_name("OUT");
}

} // namespace tervane::app
