#pragma once
// A VS_VERSIONINFO block held whole, as it stands in the file, so that a
// rewrite changes nothing but the translated values. It is read in one pass
// that follows the usual order of the nodes instead of walking their lengths.
#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "model/resource_buffer.h"
#include "platform/byte_reader.h"

namespace tervane {

// Up to eight zero words behind a key. A place holds 1 until a padding word
// is read into it, so the first 1 marks where the padding ends.
struct VersionPadding {
    static constexpr std::size_t kWords = 8;
    std::array<std::uint16_t, kWords> words{1, 1, 1, 1, 1, 1, 1, 1};

    std::size_t Count() const;
};

struct VersionBlockHeader {
    static constexpr std::size_t kKeyLimit = 50; // units, terminator included
    std::uint16_t length = 0;
    std::uint16_t valueLength = 0;
    std::uint16_t type = 0;
    std::u16string key; // without its terminator
    VersionPadding padding;
};

struct VersionStringEntry {
    static constexpr std::size_t kKeyLimit = 100;
    static constexpr std::size_t kValueLimit = 1000;
    std::uint16_t length = 0;
    std::uint16_t valueLength = 0;
    std::uint16_t type = 0;
    std::u16string key;
    VersionPadding padding;
    std::u16string value; // without its terminator; empty for a valueLength of 0 or 1
};

struct VersionVarEntry {
    static constexpr std::size_t kKeyLimit = 50;
    static constexpr std::size_t kValueLimit = 100; // words
    std::uint16_t length = 0;
    std::uint16_t valueLength = 0;
    std::uint16_t type = 0;
    std::u16string key;
    VersionPadding padding;
    std::vector<std::uint16_t> value;
};

// The values offered for translation, and their translations on the way back.
struct VersionTexts {
    std::u16string comments;
    std::u16string productName;
    std::u16string productVersion;
    std::u16string legalCopyright;
    std::u16string legalTrademarks;

    // The text of one of the five normalised keys; null for any other key.
    std::u16string* Find(std::u16string_view key);
};

class CVersionBlock {
public:
    static constexpr std::size_t kStringLimit = 50;
    static constexpr std::size_t kVarLimit = 50;
    static constexpr std::uint32_t wordSize = 2;
    static constexpr std::uint32_t doubleWordSize = 4;

    // Reads the whole block; any breach of its bounds or of the limits above
    // throws CParserException.
    void Parse(Bytes data);
    // The value of a normalised key, or the empty text.
    std::u16string GetValue(const std::u16string& key) const;
    // Puts each new value that is not empty in place of the first string
    // whose normalised key contains its name, corrects the lengths, and
    // writes the whole block into buffer, StringFileInfo first. A length that
    // outgrows its 16-bit field raises TervaneFilterException.
    void Rebuild();

    std::map<std::u16string, std::u16string> values; // by normalised key; the last one wins
    VersionBlockHeader root;
    std::array<std::uint32_t, 13> fixedInfo{}; // VS_FIXEDFILEINFO, signature first
    VersionPadding rootPadding;
    VersionBlockHeader stringFileInfo;
    VersionBlockHeader stringTable;
    std::vector<VersionStringEntry> strings; // file order; a further table's header too
    VersionBlockHeader varFileInfo;
    std::vector<VersionVarEntry> vars;
    VersionTexts newValues;
    bool varFirst = false;
    std::uint16_t remaining = 0; // bytes of the root's length not yet read
    CResourceBuffer buffer;

private:
    void ReplaceValue(std::u16string_view name, const std::u16string& text);
};

// The first of the ten known names that the lower-cased key contains, or the
// key as it stands.
std::u16string NormaliseVersionKey(const std::u16string& key);

} // namespace tervane
