// Random version blocks through the reader and the values' pieces: a block
// ends in its entries or in the corrupted-document exception, never in a
// read outside its bytes.
#include <cstddef>
#include <cstdint>

#include "frame/diagnostics/exceptions.h"
#include "model/version_info_resource.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tervane::CVersionInfoResource resource;
    resource.size = static_cast<DWORD>(size);
    try {
        tervane::CVersionInfoCommand().Execute(tervane::Bytes(data, size), &resource);
        if (resource.block.strings.size() > tervane::CVersionBlock::kStringLimit ||
            resource.block.vars.size() > tervane::CVersionBlock::kVarLimit)
            __builtin_trap();
        for (const auto& entry : resource.entries)
            if (entry.size() < 3)
                __builtin_trap();
        if (resource.hasValues != (resource.entries.empty() ? 0 : 1))
            __builtin_trap();
    } catch (const tervane::CParserException&) {
    }
    return 0;
}
