#include "frame/module_resources/module_resources.h"

#include <string_view>

namespace tervane::module_resources {

namespace {

// One node of VS_VERSIONINFO: wLength, wValueLength, wType, a key, its value
// and its children, each part starting on a 4-byte boundary. Lengths are
// back-patched once the node is complete.
class VersionWriter {
public:
    std::size_t Open(std::u16string_view key, std::uint16_t type) {
        Align();
        std::size_t start = bytes_.size();
        Put16(0);
        Put16(0);
        Put16(type);
        for (char16_t unit : key)
            Put16(unit);
        Put16(0);
        Align();
        return start;
    }
    void ValueLength(std::size_t node, std::uint16_t length) { Patch(node + 2, length); }
    void Text(std::u16string_view text, std::size_t node) {
        // A text value's length counts UTF-16 units with the terminator.
        Patch(node + 2, static_cast<std::uint16_t>(text.size() + 1));
        for (char16_t unit : text)
            Put16(unit);
        Put16(0);
    }
    void Close(std::size_t node) { Patch(node, static_cast<std::uint16_t>(bytes_.size() - node)); }
    void Put32(std::uint32_t v) {
        Put16(static_cast<std::uint16_t>(v));
        Put16(static_cast<std::uint16_t>(v >> 16));
    }
    void Put16(std::uint16_t v) {
        bytes_.push_back(static_cast<std::uint8_t>(v));
        bytes_.push_back(static_cast<std::uint8_t>(v >> 8));
    }
    std::size_t Size() const { return bytes_.size(); }
    std::vector<std::uint8_t> Take() && { return std::move(bytes_); }

private:
    void Align() {
        while (bytes_.size() % 4)
            bytes_.push_back(0);
    }
    void Patch(std::size_t at, std::uint16_t v) {
        bytes_[at] = static_cast<std::uint8_t>(v);
        bytes_[at + 1] = static_cast<std::uint8_t>(v >> 8);
    }
    std::vector<std::uint8_t> bytes_;
};

constexpr std::uint32_t kVersionMs = 0x00010000; // 1.0
constexpr std::uint32_t kVersionLs = 0x00000001; // .0.1

std::vector<std::uint8_t> BuildVersionInfo() {
    VersionWriter w;
    std::size_t root = w.Open(u"VS_VERSION_INFO", 0);
    std::size_t fixedStart = w.Size();
    for (std::uint32_t field :
         {0xFEEF04BDu, 0x00010000u, kVersionMs, kVersionLs, kVersionMs, kVersionLs, 0x3Fu, 0u,
          0x00040004u /* VOS_NT_WINDOWS32 */, 2u /* VFT_DLL */, 0u, 0u, 0u})
        w.Put32(field);
    // The fixed part is binary: its length counts bytes.
    w.ValueLength(root, static_cast<std::uint16_t>(w.Size() - fixedStart));

    std::size_t stringInfo = w.Open(u"StringFileInfo", 1);
    std::size_t table = w.Open(u"040904B0", 1);
    const std::pair<std::u16string_view, std::u16string_view> strings[] = {
        {u"FileVersion", u"1.0.0.1"},
        {u"InternalName", u"TervaneFilter.dll"},
        {u"OriginalFilename", u"TervaneFilter.dll"},
        {u"ProductName", u"Tervane Filter"},
        {u"ProductVersion", u"1.0.0.1"},
    };
    for (const auto& [key, value] : strings) {
        std::size_t entry = w.Open(key, 1);
        w.Text(value, entry);
        w.Close(entry);
    }
    w.Close(table);
    w.Close(stringInfo);

    std::size_t varInfo = w.Open(u"VarFileInfo", 1);
    std::size_t translation = w.Open(u"Translation", 0);
    w.Put16(0x0409);
    w.Put16(0x04B0);
    w.ValueLength(translation, 4);
    w.Close(translation);
    w.Close(varInfo);
    w.Close(root);
    return std::move(w).Take();
}

} // namespace

std::vector<Resource> VersionInfo() {
    static const std::vector<std::uint8_t> bytes = BuildVersionInfo();
    return {{Id{{}, 16}, Id{{}, 1}, kEnglishUs, bytes}};
}

} // namespace tervane::module_resources
