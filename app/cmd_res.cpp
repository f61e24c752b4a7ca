// tervane res get|put|delete FILE --type T --name N --lang L: one resource of a
// PE file by hand, through the same Win32 calls that the conversions use.
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/commands.h"
#include "app/failure.h"
#include "app/input_file.h"
#include "app/output_file.h"
#include "platform/files/file_bytes.h"
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
    CheckInputFile(r.file, kMaxPeFileBytes);
    OutputFile output(r.output, {r.file});
    auto bytes = Find(r);
    if (!bytes)
        Fail(r.file, bytes.error().code);
    output.Write(*bytes);
    output.Commit();
    return 0;
}

// The change is made in a copy of FILE beside the target, which replaces the
// target (OUT, or FILE itself without -o) only once it is complete.
int Change(const Request& r) {
    if (r.output == "-")
        throw CommandFailure("-", "a changed PE file is not written to standard output");
    CheckInputFile(r.file, kMaxPeFileBytes);
    if (r.action == "put")
        CheckInputFile(r.data, kMaxDataFileBytes);
    const std::string& target = r.output.empty() ? r.file : r.output;
    std::vector<std::string> inputs = {r.data};
    if (!r.output.empty())
        inputs.push_back(r.file);
    OutputFile output(target, inputs);

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
    auto source = files::ReadFileBytes(r.file);
    if (!source)
        Fail(r.file, source.error().code);
    output.Write(*source);
    const std::string& work = output.WorkPath();
    // Whatever happens, the work file's updates are not written at exit.
    struct Forget {
        const std::string& path;
        ~Forget() { update::DiscardPendingFile(path); }
    } forget{work};

    SetLastError(0);
    HANDLE update = BeginUpdateResourceA(work.c_str(), FALSE);
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
    // still say so.
    if (auto error = update::FlushPendingFile(work))
        Fail(target, error->code);
    output.Commit();
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
    get->add_option("-o", r->output, "write to OUT instead of standard output (-)")
        ->type_name("OUT");
    CLI::App* put =
        AddCommand(*res, "put", "Add or replace one resource with the bytes of DATAFILE", [r] {
            r->action = "put";
            return Change(*r);
        });
    AddKey(*put, *r);
    put->add_option("--data", r->data, "the resource's new bytes")
        ->required()
        ->type_name("DATAFILE");
    put->add_option(
           "-o", r->output,
           "write the changed file to OUT, FILE staying as it is; without -o, FILE is changed")
        ->type_name("OUT");
    CLI::App* remove = AddCommand(*res, "delete", "Delete one resource", [r] {
        r->action = "delete";
        return Change(*r);
    });
    AddKey(*remove, *r);
    remove
        ->add_option(
            "-o", r->output,
            "write the changed file to OUT, FILE staying as it is; without -o, FILE is changed")
        ->type_name("OUT");
}

} // namespace tervane::app
