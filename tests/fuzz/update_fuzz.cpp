// Random transactions over arbitrary images: the updater must never crash,
// and whenever it writes a sane image, reading that image back must give
// exactly the tree it was asked to write.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/pe/pe_image.h"
#include "platform/update/image_layout.h"
#include "platform/update/resource_reader.h"

namespace {

using namespace tervane;

constexpr std::size_t kScript = 16; // leading bytes: the transactions

update::ResKey Key(std::uint8_t selector) {
    static const char16_t* names[] = {u"A", u"AA", u"AB", u"A_B", u"A-B", u"\u00D6"};
    if (selector & 0x80)
        return update::ResKey::Name(names[selector % 6]);
    static const std::uint16_t ids[] = {1, 2, 6, 10, 123, 0x7FFF, 0xFFFF, 0};
    return update::ResKey::Id(ids[selector % 8]);
}

// The layout checks that make a read-back meaningful: sections in address
// order without overlap, raw data inside the file.
bool Sane(const pe::PeImage& image) {
    std::uint64_t end = 0;
    for (const pe::SectionHeader& s : image.Sections()) {
        if (s.virtualAddress < end ||
            std::uint64_t{s.pointerToRawData} + s.sizeOfRawData > image.FileBytes().size())
            return false;
        end = std::uint64_t{s.virtualAddress} + s.MappedSize();
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < kScript)
        return 0;
    auto image = pe::PeImage::Parse(std::vector<std::uint8_t>(data + kScript, data + size));
    if (!image)
        return 0;
    auto tree = update::ReadResourceTree(*image);
    if (!tree)
        return 0;
    for (std::size_t i = 0; i + 4 <= kScript; i += 4) {
        const std::uint8_t* op = data + i;
        static const WORD languages[] = {0, 0x409, 0x407, 0xFFFF};
        WORD language = languages[op[3] & 3];
        if ((op[3] & 0x0C) == 0) {
            tree->Remove(Key(op[0]), Key(op[1]), language);
        } else {
            std::vector<std::uint8_t> bytes(op[2] % 61, op[2]);
            tree->Set(Key(op[0]), Key(op[1]), language, update::MakeBlob(std::move(bytes)));
        }
    }
    auto written = update::RewriteImage(*image, *tree);
    if (!written)
        return 0;
    auto reread = pe::PeImage::Parse(std::move(*written));
    if (!reread)
        __builtin_trap();
    if (!Sane(*image) || !Sane(*reread))
        return 0;
    auto back = update::ReadResourceTree(*reread);
    if (!back || !(*back == *tree))
        __builtin_trap();
    return 0;
}
