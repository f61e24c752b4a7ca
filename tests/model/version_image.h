#pragma once
// VS_VERSIONINFO images built in code the way a resource compiler lays them
// out: each node's key and value start on a 4-byte boundary, and its length
// runs to the end of its last child, without the padding behind it.
#include "tests/model/test_images.h"

namespace tervane::test {

struct VersionNode {
    std::u16string key;
    std::uint16_t type = 1;
    std::uint16_t valueLength = 0;
    Bytes value;
    std::vector<VersionNode> children;
};

inline void Write(const VersionNode& node, Bytes& out) {
    out.Align();
    const std::size_t start = out.bytes.size();
    out.U16(0).U16(node.valueLength).U16(node.type).Text(node.key);
    if (!node.value.bytes.empty())
        out.Align();
    out.bytes.insert(out.bytes.end(), node.value.bytes.begin(), node.value.bytes.end());
    for (const VersionNode& child : node.children)
        Write(child, out);
    const std::size_t length = out.bytes.size() - start;
    out.bytes[start] = static_cast<std::uint8_t>(length);
    out.bytes[start + 1] = static_cast<std::uint8_t>(length >> 8);
}

// A String node as a compiler writes it: the value with its terminator.
inline VersionNode Str(std::u16string key, std::u16string value) {
    VersionNode node{std::move(key), 1, static_cast<std::uint16_t>(value.size() + 1), {}, {}};
    node.value.Text(value);
    return node;
}

inline VersionNode Block(std::u16string key, std::vector<VersionNode> children) {
    return VersionNode{std::move(key), 1, 0, {}, std::move(children)};
}

inline VersionNode Var(std::u16string key, const std::vector<std::uint16_t>& words) {
    VersionNode node{std::move(key), 0, static_cast<std::uint16_t>(words.size() * 2), {}, {}};
    for (std::uint16_t word : words)
        node.value.U16(word);
    return node;
}

inline VersionNode Translation() {
    return Block(u"VarFileInfo", {Var(u"Translation", {0x409, 1200})});
}

// The root with its fixed information and the given children.
inline std::vector<std::uint8_t> VersionImage(std::vector<VersionNode> children) {
    VersionNode root{u"VS_VERSION_INFO", 0, 52, {}, std::move(children)};
    for (std::uint32_t value : {0xFEEF04BDu, 0x10000u, 0x10002u, 0x30004u})
        root.value.U32(value);
    root.value.bytes.resize(52);
    Bytes out;
    Write(root, out);
    return out.bytes;
}

} // namespace tervane::test
