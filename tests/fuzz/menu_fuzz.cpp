// Random menu templates through the plain and extended readers and the Menu
// grammar: a template ends in its item tree or in the corrupted-document
// exception, never in a read outside its bytes or a runaway recursion.
#include <cstddef>
#include <cstdint>

#include "frame/diagnostics/exceptions.h"
#include "model/menu_resource.h"

namespace {

// Every record of the tree lies within the reader's depth limit.
int Depth(const tervane::MenuItemRecord& record) {
    int deepest = 0;
    for (const auto& child : record.children) {
        int depth = Depth(child) + 1;
        deepest = depth > deepest ? depth : deepest;
    }
    return deepest;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tervane::CMenuResource menu;
    menu.identifierText = "1";
    menu.size = static_cast<DWORD>(size);
    // The header's first word tells the form, as the enumeration reads it.
    const unsigned version = size >= 2 ? data[0] | (data[1] << 8) : 0;
    if (version == 1)
        menu.extendedVersion = 1;
    else
        menu.plainVersion = static_cast<WORD>(version);
    try {
        tervane::CMenuCommand().Execute(tervane::Bytes(data, size), &menu);
        if (menu.items.empty() || menu.items.front().pieces.size() != 1)
            __builtin_trap();
        for (const auto& record : menu.items)
            if (Depth(record) > tervane::kMaxMenuDepth)
                __builtin_trap();
    } catch (const tervane::CParserException&) {
    }
    return 0;
}
