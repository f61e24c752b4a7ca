#pragma once
// VS_VERSIONINFO images built in code the way a resource compiler lays them
// out: each node's key and value start on a 4-byte boundary, and its length
// runs to the end of its last child, without the padding behind it.
#include <cstdint>
#include <string>
#include <vector>

namespace tervane::test {

struct VersionNode {
    std::u16string key;
    std::uint16_t type = 1;
    std::uint16_t valueLength = 0;
    std::vector<std::uint8_t> value;
    std::vector<VersionNode> children;
};

inline void PutWord(std::vector<std::uint8_t>& out, std::uint16_t word) {
    out.push_back(static_cast<std::uint8_t>(word));
    out.push_back(static_cast<std::uint8_t>(word >> 8));
}

inline void Align4(std::vector<std::uint8_t>& out) {
    while (out.size() % 4)
        out.push_back(0);
}

inline void Write(const VersionNode& node, std::vector<std::uint8_t>& out) {
    Align4(out);
    const std::size_t start = out.size();
    PutWord(out, 0);
    PutWord(out, node.valueLength);
    PutWord(out, node.type);
    for (char16_t unit : node.key)
        PutWord(out, unit);
    PutWord(out, 0);
    if (!node.value.empty())
        Align4(out);
    out.insert(out.end(), node.value.begin(), node.value.end());
    for (const VersionNode& child : node.children)
        Write(child, out);
    const std::size_t length = out.size() - start;
    out[start] = static_cast<std::uint8_t>(length);
    out[start + 1] = static_cast<std::uint8_t>(length >> 8);
}

// A String node as a compiler writes it: the value with its terminator.
inline VersionNode Str(std::u16string key, std::u16string value) {
    VersionNode node{std::move(key), 1, static_cast<std::uint16_t>(value.size() + 1), {}, {}};
    for (char16_t unit : value)
        PutWord(node.value, unit);
    PutWord(node.value, 0);
    return node;
}

inline VersionNode Block(std::u16string key, std::vector<VersionNode> children) {
    return VersionNode{std::move(key), 1, 0, {}, std::move(children)};
}

inline VersionNode Var(std::u16string key, const std::vector<std::uint16_t>& words) {
    VersionNode node{std::move(key), 0, static_cast<std::uint16_t>(words.size() * 2), {}, {}};
    for (std::uint16_t word : words)
        PutWord(node.value, word);
    return node;
}

inline VersionNode Translation() {
    return Block(u"VarFileInfo", {Var(u"Translation", {0x409, 1200})});
}

// The root with its fixed information and the given children.
inline std::vector<std::uint8_t> VersionImage(std::vector<VersionNode> children) {
    VersionNode root{u"VS_VERSION_INFO", 0, 52, {}, std::move(children)};
    const std::uint32_t fixed[13] = {0xFEEF04BD, 0x10000, 0x10002, 0x30004};
    for (std::uint32_t value : fixed) {
        PutWord(root.value, static_cast<std::uint16_t>(value));
        PutWord(root.value, static_cast<std::uint16_t>(value >> 16));
    }
    std::vector<std::uint8_t> out;
    Write(root, out);
    return out;
}

} // namespace tervane::test
