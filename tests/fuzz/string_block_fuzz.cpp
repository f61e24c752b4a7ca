// Random string table blocks through the reader and the String grammar: a
// block ends in its entries or in the corrupted-document exception, never
// in a read outside its bytes.
#include <cstddef>
#include <cstdint>

#include "frame/diagnostics/exceptions.h"
#include "model/string_block.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tervane::CStringBlockResource block;
    block.identifierText = size ? std::to_string(data[0]) : "1";
    block.size = static_cast<DWORD>(size);
    try {
        tervane::CStringBlockCommand().Execute(tervane::Bytes(data, size), &block);
        for (const auto& entry : block.entries)
            if (entry.size() < 2)
                __builtin_trap();
    } catch (const tervane::CParserException&) {
    }
    return 0;
}
