// Random dialog templates through the reader, the ordering of the controls
// and the Dialog grammar: a template ends in its pieces, balanced, or in the
// corrupted-document exception, never in a read outside its bytes.
#include <cstddef>
#include <cstdint>

#include "frame/diagnostics/exceptions.h"
#include "model/dialog_resource.h"
#include "model/dlginit_table.h"

namespace {

// Init data for a few control ids, so that list controls find items.
void StoreInitData() {
    static bool stored = false;
    if (stored)
        return;
    stored = true;
    const std::uint8_t records[] = {1, 0, 3, 4, 3, 0, 0, 0, 'a', 'b', 0, 2,
                                    0, 3, 4, 2, 0, 0, 0, 0, 'x', 0,   0};
    auto data = std::make_unique<tervane::CDlgInitData>();
    data->Parse(records, sizeof records);
    tervane::CDlgInitTable::GetInstance().Store("1", std::move(data));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    StoreInitData();
    tervane::CDialogResource dialog;
    dialog.identifierText = "1";
    dialog.size = static_cast<DWORD>(size);
    try {
        tervane::CDialogCommand().Execute(tervane::Bytes(data, size), &dialog);
        long depth = 0;
        for (const auto& piece : dialog.dialogs.at(0)->pieces) {
            const tervane::TagDescriptor* tag = tervane::TagOf(*piece);
            if (tag != nullptr && tag->startTag)
                ++depth;
            if (tag != nullptr && tag->endTag && --depth < 0)
                __builtin_trap();
        }
        if (depth != 0)
            __builtin_trap();
    } catch (const tervane::CParserException&) {
    }
    return 0;
}
