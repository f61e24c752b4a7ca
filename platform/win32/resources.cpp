#include "platform/win32/resources.h"

#include <algorithm>
#include <unordered_map>

#include "frame/module_resources/module_resources.h"
#include "platform/diag/failure_place.h"
#include "platform/files/file_content.h"
#include "platform/pe/resource_name_text.h"
#include "platform/win32/builtin_tree.h"
#include "platform/win32/last_error.h"
#include "platform/win32/module_image.h"

using tervane::Error;
using tervane::Result;
namespace pe = tervane::pe;

namespace {

// Every live handle is registered, so that a stale or made-up handle fails
// with ERROR_INVALID_HANDLE instead of being followed.
struct Registry {
    std::mutex mutex;
    std::unordered_map<const ModuleImage*, std::unique_ptr<ModuleImage>> modules;
};

Registry& Modules() {
    static Registry registry;
    return registry;
}

ModuleImage& BuiltinModule() {
    static ModuleImage* module = [] {
        auto image = std::make_unique<ModuleImage>();
        image->path = "TervaneFilter.dll";
        image->tree =
            tervane::BuildBuiltinTree(tervane::module_resources::All(), image->builtinData);
        ModuleImage* raw = image.get();
        Registry& registry = Modules();
        std::lock_guard lock(registry.mutex);
        registry.modules.emplace(raw, std::move(image));
        return raw;
    }();
    return *module;
}

// Null stands for the process's own image, as on Windows; here that is this module.
ModuleImage* Resolve(HMODULE module) {
    if (!module)
        return &BuiltinModule();
    Registry& registry = Modules();
    std::lock_guard lock(registry.mutex);
    return registry.modules.contains(module) ? module : nullptr;
}

// The code for the caller; what the reader knew for the failure place.
void Fail(const Error& error) {
    SetLastError(error.code);
    tervane::SetFailurePlace(error.context);
}

// Damage that cut a directory short answers for what could not be found there.
void FailNotFound(const std::optional<Error>& damage, DWORD notFound) {
    if (damage)
        Fail(*damage);
    else
        SetLastError(notFound);
}

pe::ResourceId AskedId(const ResName& asked) {
    // A text "#123" asks for the number 123, wherever it came from.
    ResName id = asked.IsOrdinal() ? asked : ResName::FromText(asked.Name());
    if (id.IsOrdinal())
        return pe::ResourceId(id.Ordinal());
    return pe::ResourceId(pe::UpcaseName(pe::Utf8ToUtf16(id.Name())));
}

ResName NarrowId(const pe::ResourceId& id) {
    if (!id.IsName())
        return ResName(id.Ordinal());
    return ResName(pe::Utf16ToUtf8(id.Name()));
}

// The loader's binary search: names among the first NumberOfNamedEntries
// entries, ordinals among the rest. On a directory that is not sorted it
// misses what Windows misses. Damage that cut the directory short answers
// for what could not be searched.
template <typename Entry, typename Key>
std::optional<std::size_t> Search(const std::vector<Entry>& entries,
                                  const pe::ResourceDirectoryHeader& header, const Key& key,
                                  auto keyOf) {
    std::size_t named = std::min<std::size_t>(header.numberOfNamedEntries, entries.size());
    std::size_t low = key.IsName() ? 0 : named;
    std::size_t high = key.IsName() ? named : entries.size();
    while (low < high) {
        std::size_t mid = low + (high - low) / 2;
        auto order = key <=> keyOf(entries[mid]);
        if (order == 0)
            return mid;
        if (order < 0)
            high = mid;
        else
            low = mid + 1;
    }
    return std::nullopt;
}

template <typename Entry>
std::optional<std::size_t> FindId(const std::vector<Entry>& entries,
                                  const pe::ResourceDirectoryHeader& header,
                                  const pe::ResourceId& key) {
    return Search(entries, header, key,
                  [](const Entry& e) -> const pe::ResourceId& { return e.id; });
}

std::optional<std::size_t> FindLanguage(const pe::ResourceName& name, WORD language) {
    return Search(name.languages, name.header, pe::ResourceId(language),
                  [](const pe::ResourceLanguage& l) { return pe::ResourceId(l.language); });
}

const pe::ResourceTree* TreeOrFail(ModuleImage* module) {
    if (!module) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    if (!module->tree) {
        Fail(module->tree.error());
        return nullptr;
    }
    return &*module->tree;
}

const pe::ResourceType* FindTypeOrFail(const pe::ResourceTree& tree, const ResName& asked) {
    if (auto index = FindId(tree.types, tree.header, AskedId(asked)))
        return &tree.types[*index];
    FailNotFound(tree.damage, ERROR_RESOURCE_TYPE_NOT_FOUND);
    return nullptr;
}

const pe::ResourceName* FindNameOrFail(const pe::ResourceType& type, const ResName& asked) {
    if (auto index = FindId(type.names, type.header, AskedId(asked)))
        return &type.names[*index];
    FailNotFound(type.damage, ERROR_RESOURCE_NAME_NOT_FOUND);
    return nullptr;
}

HRSRC Handle(ModuleImage& module, std::size_t type, std::size_t name, std::size_t language) {
    const pe::ResourceTree& tree = *module.tree;
    std::lock_guard lock(module.mutex);
    auto& slot = module.infos[{type, name, language}];
    if (!slot) {
        slot = std::make_unique<ResourceInfo>(ResourceInfo{
            type, name, language, tree.types[type].names[name].languages[language].data});
        module.validInfos.insert(slot.get());
    }
    return slot.get();
}

bool ValidInfo(ModuleImage& module, HRSRC resource) {
    std::lock_guard lock(module.mutex);
    return resource && module.validInfos.contains(resource);
}

Result<std::vector<std::uint8_t>> DataOf(const ModuleImage& module,
                                         const pe::ResourceDataEntry& data) {
    if (module.pe)
        return pe::ReadResourceData(*module.pe, data);
    if (data.rva >= module.builtinData.size())
        return Error{ERROR_RESOURCE_DATA_NOT_FOUND, "no such compiled-in resource"};
    auto bytes = module.builtinData[data.rva];
    return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
}

// The bytes as LoadResource keeps them: in place in the file or the
// compiled-in data, which outlive the handle, unless the file lacks some.
Result<LoadedResource> LoadedData(const ModuleImage& module, const pe::ResourceDataEntry& data) {
    if (module.pe) {
        auto read = pe::ViewResourceData(*module.pe, data);
        if (!read)
            return read.error();
        return LoadedResource{std::move(read->owned), read->bytes};
    }
    if (data.rva >= module.builtinData.size())
        return Error{ERROR_RESOURCE_DATA_NOT_FOUND, "no such compiled-in resource"};
    return LoadedResource{{}, module.builtinData[data.rva]};
}

// The loader gives no access to data that the file does not hold: a section
// whose raw data runs past the end means a truncated file.
std::optional<Error> CheckRawData(const pe::PeImage& image) {
    for (const pe::SectionHeader& section : image.Sections()) {
        if (section.sizeOfRawData &&
            !tervane::InBounds(section.pointerToRawData, section.sizeOfRawData,
                               image.FileBytes().size()))
            return Error{ERROR_BAD_EXE_FORMAT,
                         "section " + section.Name() + " runs past the end of the file"};
    }
    return std::nullopt;
}

constexpr WORD kDefaultLanguage = MAKELANGID(0x09, SUBLANG_DEFAULT); // English (United States)

constexpr DWORD kDataFileFlags =
    LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_DATAFILE_EXCLUSIVE | LOAD_LIBRARY_AS_IMAGE_RESOURCE;

} // namespace

namespace tervane {

HMODULE LoadModuleFromBytes(files::FileContent bytes, const std::string& path) {
    auto image = pe::PeImage::Parse(std::move(bytes));
    if (!image) {
        Fail(image.error());
        return nullptr;
    }
    if (auto error = CheckRawData(*image)) {
        Fail(*error);
        return nullptr;
    }
    auto module = std::make_unique<ModuleImage>();
    module->path = path;
    // The directory is read whole now; damage in it stays where it was met
    // and fails only the calls that reach it, as Windows fails only those.
    module->tree = pe::ReadResourceTree(*image);
    module->pe = std::move(*image);
    ModuleImage* raw = module.get();
    Registry& registry = Modules();
    std::lock_guard lock(registry.mutex);
    registry.modules.emplace(raw, std::move(module));
    return raw;
}

const Result<pe::ResourceTree>* ModuleResourceTree(HMODULE module) {
    ModuleImage* image = Resolve(module);
    return image ? &image->tree : nullptr;
}

Result<std::vector<std::uint8_t>> ModuleResourceData(HMODULE module,
                                                     const pe::ResourceDataEntry& data) {
    ModuleImage* image = Resolve(module);
    if (!image)
        return Error{ERROR_INVALID_HANDLE, "not a loaded module"};
    return DataOf(*image, data);
}

} // namespace tervane

HMODULE TervaneModuleHandle() {
    return &BuiltinModule();
}

HMODULE LoadLibraryExA(const char* path, void* reserved, DWORD flags) {
    if (!path || reserved || !(flags & kDataFileFlags)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    auto bytes = tervane::files::ReadFileContent(path);
    if (!bytes) {
        // The reader knows the file's name only, which the caller has already.
        SetLastError(bytes.error().code);
        tervane::ClearFailurePlace();
        return nullptr;
    }
    return tervane::LoadModuleFromBytes(std::move(*bytes), path);
}

HMODULE LoadLibraryExW(const char16_t* path, void* reserved, DWORD flags) {
    if (!path) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    std::string narrow = pe::Utf16ToUtf8(path);
    return LoadLibraryExA(narrow.c_str(), reserved, flags);
}

BOOL FreeLibrary(HMODULE module) {
    if (module == &BuiltinModule())
        return TRUE; // never unloaded while the process runs
    Registry& registry = Modules();
    std::unique_ptr<ModuleImage> owned;
    {
        std::lock_guard lock(registry.mutex);
        auto it = module ? registry.modules.find(module) : registry.modules.end();
        if (it == registry.modules.end()) {
            SetLastError(ERROR_INVALID_HANDLE);
            return FALSE;
        }
        owned = std::move(it->second);
        registry.modules.erase(it);
    }
    return TRUE;
}

BOOL EnumResourceTypesA(HMODULE module, ENUMRESTYPEPROCA proc, LONG_PTR param) {
    ModuleImage* image = Resolve(module);
    const pe::ResourceTree* tree = TreeOrFail(image);
    if (!tree)
        return FALSE;
    if (!proc) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    for (const pe::ResourceType& type : tree->types)
        if (!proc(image, NarrowId(type.id), param))
            return FALSE;
    if (tree->damage) {
        Fail(*tree->damage);
        return FALSE;
    }
    return TRUE;
}

BOOL EnumResourceNamesA(HMODULE module, const ResName& type, ENUMRESNAMEPROCA proc,
                        LONG_PTR param) {
    ModuleImage* image = Resolve(module);
    const pe::ResourceTree* tree = TreeOrFail(image);
    if (!tree)
        return FALSE;
    const pe::ResourceType* found = FindTypeOrFail(*tree, type);
    if (!found)
        return FALSE;
    if (!proc) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    for (const pe::ResourceName& name : found->names)
        if (!proc(image, type, NarrowId(name.id), param))
            return FALSE;
    if (found->damage) {
        Fail(*found->damage);
        return FALSE;
    }
    return TRUE;
}

BOOL EnumResourceLanguagesA(HMODULE module, const ResName& type, const ResName& name,
                            ENUMRESLANGPROCA proc, LONG_PTR param) {
    ModuleImage* image = Resolve(module);
    const pe::ResourceTree* tree = TreeOrFail(image);
    if (!tree)
        return FALSE;
    const pe::ResourceType* foundType = FindTypeOrFail(*tree, type);
    if (!foundType)
        return FALSE;
    const pe::ResourceName* found = FindNameOrFail(*foundType, name);
    if (!found)
        return FALSE;
    if (!proc) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    for (const pe::ResourceLanguage& language : found->languages)
        if (!proc(image, type, name, language.language, param))
            return FALSE;
    if (found->damage) {
        Fail(*found->damage);
        return FALSE;
    }
    return TRUE;
}

HRSRC FindResourceExA(HMODULE module, const ResName& type, const ResName& name, WORD language) {
    ModuleImage* image = Resolve(module);
    const pe::ResourceTree* tree = TreeOrFail(image);
    if (!tree)
        return nullptr;
    const pe::ResourceType* foundType = FindTypeOrFail(*tree, type);
    if (!foundType)
        return nullptr;
    const pe::ResourceName* found = FindNameOrFail(*foundType, name);
    if (!found)
        return nullptr;
    // An exact language, then its primary language with a neutral
    // sublanguage, then neutral. A language with a neutral primary (what
    // FindResourceA asks for) goes on to the user's and the system's
    // language, which are English (United States) here, then to English, and
    // at last to the first language stored.
    std::vector<WORD> candidates = {language, MAKELANGID(PRIMARYLANGID(language), SUBLANG_NEUTRAL),
                                    MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL)};
    const bool neutral = PRIMARYLANGID(language) == LANG_NEUTRAL;
    if (neutral)
        candidates.insert(candidates.end(), {kDefaultLanguage, PRIMARYLANGID(kDefaultLanguage)});
    std::optional<std::size_t> match;
    for (WORD candidate : candidates)
        if ((match = FindLanguage(*found, candidate)))
            break;
    if (!match && neutral && !found->languages.empty())
        match = 0;
    if (!match) {
        FailNotFound(found->damage, ERROR_RESOURCE_LANG_NOT_FOUND);
        return nullptr;
    }
    auto typeIndex = static_cast<std::size_t>(foundType - tree->types.data());
    auto nameIndex = static_cast<std::size_t>(found - foundType->names.data());
    return Handle(*image, typeIndex, nameIndex, *match);
}

HRSRC FindResourceA(HMODULE module, const ResName& name, const ResName& type) {
    return FindResourceExA(module, type, name, MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL));
}

HGLOBAL LoadResource(HMODULE module, HRSRC resource) {
    ModuleImage* image = Resolve(module);
    if (!image || !ValidInfo(*image, resource)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    std::lock_guard lock(image->mutex);
    auto& slot = image->loaded[resource];
    if (!slot) {
        auto bytes = LoadedData(*image, resource->data);
        if (!bytes) {
            image->loaded.erase(resource);
            Fail(bytes.error());
            return nullptr;
        }
        slot = std::make_unique<LoadedResource>(std::move(*bytes));
        image->validLoaded.insert(slot.get());
    }
    return slot.get();
}

const void* LockResource(HGLOBAL loaded) {
    if (!loaded)
        return nullptr;
    // An empty resource still gives a valid pointer, as on Windows.
    static const std::uint8_t empty = 0;
    return loaded->bytes.empty() ? &empty : loaded->bytes.data();
}

DWORD SizeofResource(HMODULE module, HRSRC resource) {
    ModuleImage* image = Resolve(module);
    if (!image || !ValidInfo(*image, resource)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    return resource->data.size;
}

BOOL FreeResource(HGLOBAL) {
    // Obsolete on Win32: the data lives as long as its module.
    return FALSE;
}
