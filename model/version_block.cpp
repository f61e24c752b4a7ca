#include "model/version_block.h"

#include <optional>

#include "model/read_failure.h"

namespace tervane {

namespace {

bool HasVarFileInfoKey(const std::u16string& key) {
    return key.find(u"VarFileInfo") != std::u16string::npos;
}

// Reads the nodes one behind the other and counts every word it consumes
// off the root's remaining length.
class VersionReader {
public:
    VersionReader(Bytes data, CVersionBlock& block) : in_(data), block_(block) {}

    void Root() {
        node_ = "VS_VERSIONINFO";
        block_.root.length = Word();
        block_.remaining = static_cast<std::uint16_t>(block_.root.length - 2);
        block_.root.valueLength = Word();
        block_.root.type = Word();
        block_.root.key = Text(VersionBlockHeader::kKeyLimit);
        Padding(block_.root.padding);
        // Read whatever wValueLength says: a block without it is still laid out so.
        for (std::uint32_t& value : block_.fixedInfo)
            value = DoubleWord();
        Padding(block_.rootPadding);
    }

    // A block may end behind any node. The fixed sequence would read on past
    // it; here an exhausted root ends the reading, with what was read so far.
    bool Ended() const { return block_.remaining == 0; }

    void Header(VersionBlockHeader& header) {
        node_ = "block header";
        header.length = Word();
        header.valueLength = Word();
        header.type = Word();
        header.key = Text(VersionBlockHeader::kKeyLimit);
        Padding(header.padding);
    }

    void Strings() {
        while (!Ended()) {
            node_ = "String";
            VersionStringEntry entry;
            entry.length = Word();
            entry.valueLength = Word();
            entry.type = Word();
            entry.key = Text(VersionStringEntry::kKeyLimit);
            Padding(entry.padding);
            std::u16string normalised = NormaliseVersionKey(entry.key);
            // A valueLength of 1 is the terminator alone, which the padding took.
            if (entry.valueLength > 1) {
                entry.value = Text(VersionStringEntry::kValueLimit);
                if (!Ended() && Peek() == 0)
                    Word();
            }
            if (HasVarFileInfoKey(entry.key)) {
                // The variable block behind the strings; no string itself.
                MoveToVarFileInfo(std::move(entry));
                Padding(block_.varFileInfo.padding);
                Vars();
                return;
            }
            if (block_.strings.size() == CVersionBlock::kStringLimit)
                Corrupted();
            block_.values[normalised] = entry.value;
            block_.strings.push_back(std::move(entry));
        }
    }

    // The words left of the first entry's length decide where the vars end;
    // they are not computed anew for the later entries.
    void Vars() {
        node_ = "Var";
        VersionVarEntry entry;
        entry.length = Word();
        auto words = static_cast<std::uint16_t>(entry.length / 2 - 3);
        entry.valueLength = Word();
        entry.type = Word();
        while (true) {
            entry.key = Text(VersionVarEntry::kKeyLimit);
            words = static_cast<std::uint16_t>(words - (entry.key.size() + 1));
            for (std::size_t i = 0;
                 i < VersionPadding::kWords && Peek() == 0 && words * 2 != entry.valueLength; ++i) {
                Word();
                entry.padding.words[i] = 0;
                --words;
            }
            if (entry.valueLength != 0) {
                const std::size_t count = entry.valueLength / 2;
                words = static_cast<std::uint16_t>(words - count);
                if (entry.valueLength > 1) {
                    if (count > VersionVarEntry::kValueLimit)
                        Corrupted();
                    for (std::size_t i = 0; i < count; ++i)
                        entry.value.push_back(Word());
                }
            }
            if (block_.vars.size() == CVersionBlock::kVarLimit)
                Corrupted();
            const bool last = words == 0 || words > entry.valueLength;
            block_.vars.push_back(std::move(entry));
            if (last)
                return;
            entry = VersionVarEntry{};
            entry.length = Word();
            entry.valueLength = Word();
            entry.type = Word();
        }
    }

private:
    // The node being read is the field that a failure names.
    [[noreturn]] void Corrupted() const { ThrowCorrupted(in_.Offset(), node_); }

    std::uint16_t Word() {
        auto word = in_.ReadU16LE();
        if (!word)
            Corrupted();
        block_.remaining = static_cast<std::uint16_t>(block_.remaining - CVersionBlock::wordSize);
        return *word;
    }

    std::uint32_t DoubleWord() {
        auto value = in_.ReadU32LE();
        if (!value)
            Corrupted();
        block_.remaining =
            static_cast<std::uint16_t>(block_.remaining - CVersionBlock::doubleWordSize);
        return *value;
    }

    // The next word, not consumed; none at the end of the data.
    std::optional<std::uint16_t> Peek() const {
        ByteReader probe = in_;
        return probe.ReadU16LE();
    }

    // Up to and with the terminator, which counts against limit.
    std::u16string Text(std::size_t limit) {
        std::u16string text;
        while (true) {
            std::uint16_t unit = Word();
            if (unit == 0)
                return text;
            if (text.size() + 2 > limit)
                Corrupted();
            text += static_cast<char16_t>(unit);
        }
    }

    void Padding(VersionPadding& padding) {
        for (std::size_t i = 0; i < VersionPadding::kWords && Peek() == 0; ++i) {
            Word();
            padding.words[i] = 0;
        }
    }

    void MoveToVarFileInfo(VersionStringEntry entry) {
        if (entry.key.size() + 1 > VersionBlockHeader::kKeyLimit)
            Corrupted();
        VersionBlockHeader& header = block_.varFileInfo;
        header.length = entry.length;
        header.valueLength = entry.valueLength;
        header.type = entry.type;
        header.key = std::move(entry.key);
        header.padding = entry.padding;
    }

    ByteReader in_;
    const char* node_ = "VS_VERSIONINFO";
    CVersionBlock& block_;
};

} // namespace

std::size_t VersionPadding::Count() const {
    std::size_t count = 0;
    while (count < kWords && words[count] == 0)
        ++count;
    return count;
}

std::u16string* VersionTexts::Find(std::u16string_view key) {
    if (key == u"comments")
        return &comments;
    if (key == u"productname")
        return &productName;
    if (key == u"productversion")
        return &productVersion;
    if (key == u"legalcopyright")
        return &legalCopyright;
    if (key == u"legaltrademarks")
        return &legalTrademarks;
    return nullptr;
}

void CVersionBlock::Parse(Bytes data) {
    VersionReader in(data, *this);
    in.Root();
    if (in.Ended())
        return;
    VersionBlockHeader first;
    in.Header(first);
    if (HasVarFileInfoKey(first.key)) {
        varFileInfo = std::move(first);
        varFirst = true;
        in.Vars();
        if (in.Ended())
            return;
        in.Header(stringFileInfo);
    } else {
        stringFileInfo = std::move(first);
    }
    if (in.Ended())
        return;
    in.Header(stringTable);
    in.Strings();
}

std::u16string CVersionBlock::GetValue(const std::u16string& key) const {
    auto found = values.find(key);
    return found == values.end() ? std::u16string() : found->second;
}

std::u16string NormaliseVersionKey(const std::u16string& key) {
    static const char16_t* const kNames[] = {
        u"comments",     u"companyname",    u"filedescription", u"fileversion",
        u"internalname", u"legalcopyright", u"legaltrademarks", u"originalfilename",
        u"productname",  u"productversion",
    };
    // Only ASCII letters are folded: the names are ASCII, and a key that
    // matches none is kept as it stands.
    std::u16string lower = key;
    for (char16_t& c : lower)
        if (c >= u'A' && c <= u'Z')
            c = static_cast<char16_t>(c - u'A' + u'a');
    for (const char16_t* name : kNames)
        if (lower.find(name) != std::u16string::npos)
            return name;
    return key;
}

} // namespace tervane
