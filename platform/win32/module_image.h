#pragma once
// What an HMODULE, HRSRC and HGLOBAL of the resource calls stand for, and the
// platform's own entries beside the Win32 calls.
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/pe/pe_image.h"
#include "platform/pe/resource_directory.h"
#include "platform/result.h"
#include "platform/win32/resources.h"

struct ResourceInfo {
    std::size_t type = 0; // indices into the module's tree
    std::size_t name = 0;
    std::size_t language = 0;
    tervane::pe::ResourceDataEntry data;
};

// The bytes in place in the module's file, or in owned.
struct LoadedResource {
    std::vector<std::uint8_t> owned;
    tervane::Bytes bytes;
};

// A PE file loaded as data, or this module with its compiled-in resources
// (then `pe` is empty and a data entry's rva is the index of its bytes).
struct ModuleImage {
    std::string path;
    std::optional<tervane::pe::PeImage> pe;
    tervane::Result<tervane::pe::ResourceTree> tree{tervane::pe::ResourceTree{}};
    std::vector<std::span<const std::uint8_t>> builtinData;

    // Handles given out stay valid until FreeLibrary; a lookup repeated
    // gives the same handle, so repeated calls don't grow the module.
    std::mutex mutex;
    std::map<std::tuple<std::size_t, std::size_t, std::size_t>, std::unique_ptr<ResourceInfo>>
        infos;
    std::unordered_set<const ResourceInfo*> validInfos;
    std::unordered_map<const ResourceInfo*, std::unique_ptr<LoadedResource>> loaded;
    std::unordered_set<const LoadedResource*> validLoaded;
};

namespace tervane {

// LoadLibraryExA's work on bytes already in memory (for fuzzing and for
// files the caller has read): the same checks and last errors.
HMODULE LoadModuleFromBytes(files::FileContent bytes, const std::string& path);

// The module's resource tree exactly as stored, or why there is none; null
// for an invalid handle.
const Result<pe::ResourceTree>* ModuleResourceTree(HMODULE module);

// The bytes of a resource of the module's tree, as LoadResource would give them.
Result<std::vector<std::uint8_t>> ModuleResourceData(HMODULE module,
                                                     const pe::ResourceDataEntry& data);

} // namespace tervane
