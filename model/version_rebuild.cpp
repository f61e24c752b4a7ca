// A version block written out again with its translated values.
#include <string>

#include "model/version_block.h"

namespace tervane {

namespace {

// A length field moved by change, checked against its 16 bits.
void Move(std::uint16_t& field, long change, const CResourceBuffer& buffer, const char* what) {
    const long moved = static_cast<long>(field) + change;
    field = buffer.Narrowed(moved < 0 ? 0x10000 : static_cast<std::size_t>(moved), what);
}

void WriteHeader(CResourceBuffer& buffer, const VersionBlockHeader& header) {
    buffer.WriteWord(header.length);
    buffer.WriteWord(header.valueLength);
    buffer.WriteWord(header.type);
    buffer.WriteText(std::u16string_view(header.key));
    buffer.Align();
}

void WriteString(CResourceBuffer& buffer, const VersionStringEntry& entry) {
    buffer.WriteWord(entry.length);
    buffer.WriteWord(entry.valueLength);
    buffer.WriteWord(entry.type);
    buffer.WriteText(std::u16string_view(entry.key));
    buffer.Align();
    // The padding behind the key as it was read, beyond what the alignment gives.
    for (std::size_t i = 1; i < VersionPadding::kWords; ++i) {
        if (entry.padding.words[i] != 0) {
            buffer.Align();
            break;
        }
        buffer.WriteWord(0);
    }
    if (entry.valueLength > 1) {
        buffer.WriteText(std::u16string_view(entry.value));
        buffer.Align();
    }
}

void WriteVar(CResourceBuffer& buffer, const VersionVarEntry& entry) {
    buffer.WriteWord(entry.length);
    buffer.WriteWord(entry.valueLength);
    buffer.WriteWord(entry.type);
    buffer.WriteText(std::u16string_view(entry.key));
    buffer.Align();
    if (entry.valueLength > 1)
        for (std::size_t i = 0; i < entry.valueLength / 2u && i < entry.value.size(); ++i)
            buffer.WriteWord(entry.value[i]);
}

} // namespace

void CVersionBlock::ReplaceValue(std::u16string_view name, const std::u16string& text) {
    for (VersionStringEntry& entry : strings) {
        if (NormaliseVersionKey(entry.key).find(name) == std::u16string::npos)
            continue;
        const long oldChars = static_cast<long>(entry.value.size()) + 1;
        const long newChars = static_cast<long>(text.size()) + 1;
        long delta = newChars - oldChars;
        Move(entry.valueLength, delta, buffer, "a version value's length");
        // The change of the value's size once padded to an even number of units.
        if (delta % 2 != 0)
            delta += oldChars % 2 != 0 ? -1 : 1;
        const long bytes = delta * static_cast<long>(wordSize);
        Move(entry.length, bytes, buffer, "a version string's length");
        Move(stringTable.length, bytes, buffer, "the string table's length");
        Move(stringFileInfo.length, bytes, buffer, "the StringFileInfo length");
        Move(root.length, bytes, buffer, "the version block's length");
        entry.value = text;
        return;
    }
}

void CVersionBlock::Rebuild() {
    const std::pair<const char16_t*, const std::u16string*> changes[] = {
        {u"comments", &newValues.comments},
        {u"productname", &newValues.productName},
        {u"productversion", &newValues.productVersion},
        {u"legalcopyright", &newValues.legalCopyright},
        {u"legaltrademarks", &newValues.legalTrademarks},
    };
    for (const auto& [name, text] : changes)
        if (!text->empty())
            ReplaceValue(name, *text);

    buffer.clear();
    WriteHeader(buffer, root);
    for (std::uint32_t value : fixedInfo)
        buffer.WriteDword(value);
    // A block that ended before a node has none to write.
    if (!stringFileInfo.key.empty()) {
        WriteHeader(buffer, stringFileInfo);
        WriteHeader(buffer, stringTable);
        for (const VersionStringEntry& entry : strings)
            WriteString(buffer, entry);
    }
    if (!varFileInfo.key.empty()) {
        WriteHeader(buffer, varFileInfo);
        for (const VersionVarEntry& entry : vars)
            WriteVar(buffer, entry);
    }
    // The last string of a block gets its padding when VarFileInfo moves
    // behind it; the root then holds those bytes too.
    if (buffer.used() != root.length) {
        root.length = buffer.Narrowed(buffer.used(), "the version block's length");
        buffer.PatchWord(0, root.length);
    }
}

} // namespace tervane
