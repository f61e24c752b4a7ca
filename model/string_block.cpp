#include "model/string_block.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "frame/diagnostics/exceptions.h"
#include "label/grammars/label_parser.h"
#include "label/grammars/token_pieces.h"
#include "label/pieces/tag_predicates.h"
#include "model/read_failure.h"
#include "model/text_run.h"
#include "model/text_util.h"
#include "model/unit_runs.h"

namespace tervane {

namespace {

constexpr long kStringsPerBlock = 16;

// The block number is the identifier read as a decimal number; a named block is 0.
long BlockNumber(const CResource& resource) {
    return std::atol(resource.identifierText.c_str());
}

bool BelongsToBlock(long number, long block) {
    return number >= block * kStringsPerBlock - kStringsPerBlock &&
           number <= block * kStringsPerBlock - 1;
}

// The UTF-16 units of the counted string at offset, which moves behind it.
Bytes ReadCountedUnits(Bytes data, std::size_t& offset) {
    ByteReader reader(data);
    if (!reader.Seek(offset))
        ThrowCorrupted(offset, "length");
    auto length = reader.ReadU16LE();
    if (!length)
        ThrowCorrupted(offset, "length");
    auto units = reader.ReadBytes(std::size_t{*length} * 2);
    if (!units)
        ThrowCorrupted(offset + 2, "string");
    offset = reader.Offset();
    return *units;
}

// Units stored little-endian, copied as units.
char16_t* CopyUnits(char16_t* to, const std::uint8_t* from, std::size_t count) {
    if constexpr (std::endian::native == std::endian::little) {
        std::memcpy(to, from, count * 2);
        return to + count;
    }
    for (std::size_t i = 0; i < count; ++i)
        *to++ = static_cast<char16_t>(LoadU16LE(from + 2 * i));
    return to;
}

// The string at offset, moved behind it, with the control characters as the
// two-character escapes the lexer reads; '&' is plain text in a string
// table, so a doubled one is a single one. Escaping makes no '&', so the
// pairs are those of the string itself. The parser reads a null-terminated
// text, so the escaping stops at a zero unit; a text without one gets a
// blank at its end, which keeps a conversion at the very end from reaching
// the end of input. False for a string without units, which has no entry;
// one that starts with a zero unit has one, made from an empty text.
bool ReadEscapedString(Bytes data, std::size_t& offset, UnitBuffer& buffer,
                       std::u16string_view& text) {
    const Bytes units = ReadCountedUnits(data, offset);
    const std::size_t count = units.size() / 2;
    if (count == 0)
        return false;
    // Room for the longest result: every unit escaped, and the blank.
    char16_t* const start = buffer.Reserve(2 * count + 1);
    char16_t* to = start;
    const std::uint8_t* from = units.data();
    std::size_t i = 0;
    for (;;) {
        const std::size_t plain = PlainEscapeRun(from + 2 * i, count - i);
        to = CopyUnits(to, from + 2 * i, plain);
        i += plain;
        if (i == count)
            break;
        const auto c = static_cast<char16_t>(LoadU16LE(from + 2 * i));
        char16_t escape;
        switch (c) {
        case 0:
            text = {start, static_cast<std::size_t>(to - start)};
            return true;
        case 13:
            escape = u'r';
            break;
        case 10:
            escape = u'n';
            break;
        case 8:
            escape = u'b';
            break;
        case 12:
            escape = u'f';
            break;
        case u'&':
            if (i + 1 < count && LoadU16LE(from + 2 * (i + 1)) == u'&')
                ++i;
            *to++ = c;
            ++i;
            continue;
        default: // the backslash
            escape = u'\\';
            break;
        }
        *to++ = u'\\';
        *to++ = escape;
        ++i;
    }
    *to++ = u' ';
    text = {start, static_cast<std::size_t>(to - start)};
    return true;
}

constexpr WideText kBlank = WideText::Constant(u" ");

// An inline tag, with a blank at its end moved behind it.
void AppendInlineTag(std::u16string_view t, PieceEntry& entry) {
    if (!t.empty() && t.back() == u' ') {
        entry.push_back(MakeInlineTag(TrimRightView(t)));
        entry.push_back(MakeSharedText(kBlank));
    } else {
        entry.push_back(MakeInlineTag(t));
    }
}

// Text tokens are joined with their escapes undone; every other token is an
// inline tag in its escaped form, with a blank at either edge moved out of it
// into a text piece of its own.
void AppendStringPieces(std::span<const LabelToken> tokens, PieceEntry& entry) {
    thread_local TextRun text;
    text.clear();
    auto flush = [&] {
        if (!text.empty()) {
            entry.push_back(MakeSharedText(WideText(text.view())));
            text.clear();
        }
    };
    for (const LabelToken& token : tokens) {
        if (token.type == 1) {
            text.AppendUnescaped(token.text, LabelKind::String);
            continue;
        }
        flush();
        std::u16string_view t = token.text;
        if (!t.empty() && t.front() == u' ') {
            entry.push_back(MakeSharedText(kBlank));
            AppendInlineTag(TrimLeftView(t), entry);
        } else {
            AppendInlineTag(t, entry);
        }
    }
    flush();
}

constexpr WideText kStringName = WideText::Constant(u"string");

// <string id="number">, built on the stack without a round through narrow text.
WideText StringIdTag(long number) {
    constexpr std::u16string_view kStart = u"<string id=\"";
    char digits[24];
    char* end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    char16_t tag[kStart.size() + sizeof digits + 2];
    char16_t* to = std::copy(kStart.begin(), kStart.end(), tag);
    to = std::copy(digits, end, to);
    *to++ = u'"';
    *to++ = u'>';
    return WideText(std::u16string_view(tag, static_cast<std::size_t>(to - tag)));
}

} // namespace

std::u16string ReadCountedString(Bytes data, std::size_t& offset) {
    const Bytes units = ReadCountedUnits(data, offset);
    std::u16string text(units.size() / 2, u'\0');
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char16_t>(LoadU16LE(units.data() + 2 * i));
    return text;
}

PieceEntry ParseString(Bytes data, std::size_t& offset, CLabelParser& parser, long number) {
    PieceEntry entry;
    // Reused from string to string: its storage outlives the call.
    thread_local UnitBuffer buffer;
    std::u16string_view text;
    if (!ReadEscapedString(data, offset, buffer, text))
        return entry;
    WideText openTag = StringIdTag(number);

    // Reused too, so that its records and their texts are not reallocated for every string.
    thread_local LabelTokens tokens;
    tokens.clear();
    parser.Initialise(LabelKind::String);
    parser.Parse(text, tokens);
    if (tokens.empty())
        throw CParserException(kCorruptedDocumentMessage);
    // Room for the most pieces the tokens can give: a run of text one, any
    // other token three; and the string's tags two.
    std::size_t most = 2;
    bool inText = false;
    for (const LabelToken& token : tokens.view()) {
        most += token.type == 1 ? !inText : 3;
        inText = token.type == 1;
    }
    entry.reserve(most);
    entry.push_back(MakeStructuralTag(kStringName, std::move(openTag), 0, 1));
    std::u16string& last = tokens.back().text;
    if (!last.empty())
        last.pop_back();

    AppendStringPieces(tokens.view(), entry);
    entry.push_back(MakeStructuralTag(kStringName, WideText::Constant(u"</string>"), 1, 0));
    return entry;
}

long GetStringNumber(const PieceEntry& entry) {
    for (const auto& piece : entry) {
        const auto* tag = dynamic_cast<const CTagLabelPiece*>(piece.get());
        if (tag == nullptr || tag->tag.inlineTag)
            continue;
        const std::u16string_view text = tag->tag.tagText;
        std::size_t first = text.find(u'"');
        std::size_t second = first == std::u16string::npos ? first : text.find(u'"', first + 1);
        if (second == std::u16string::npos)
            return 0;
        std::string digits;
        for (std::size_t i = first + 1; i < second; ++i)
            digits += static_cast<char>(text[i] & 0xFF);
        return std::atol(digits.c_str());
    }
    return 0;
}

int CStringBlockResource::Accept(CResourceVisitor& visitor) {
    visitor.VisitStringBlock(this);
    return 0;
}

std::unique_ptr<CTagLabelPiece> CStringBlockResource::GetOpenTag() const {
    return GroupTag("stringtable", true);
}

std::unique_ptr<CTagLabelPiece> CStringBlockResource::GetCloseTag() const {
    return GroupTag("stringtable", false);
}

void CStringBlockResource::ExtractPieces(CPieceStream& stream) {
    const long block = BlockNumber(*this);
    const std::optional<std::size_t> after = AfterGroupOpen(stream, u"stringtable");
    if (!after)
        return;
    const std::size_t start = *after;

    std::size_t accepted = start;  // behind the last entry taken
    std::vector<std::size_t> work; // positions of the pieces of the entry being read
    for (std::size_t at = start; at < stream.size(); ++at) {
        CLabelPiece& piece = *stream[at];
        auto* tag = dynamic_cast<CTagLabelPiece*>(&piece);
        if (tag == nullptr && dynamic_cast<CTextLabelPiece*>(&piece) == nullptr)
            continue;
        if (tag && IsClose(tag->tag, u"stringtable")) {
            accepted = at;
            break;
        }
        work.push_back(at);
        if (!tag || !tag->tag.endTag)
            continue;
        PieceEntry entry;
        for (std::size_t i : work)
            entry.push_back(std::move(stream[i]));
        if (!BelongsToBlock(GetStringNumber(entry), block)) {
            // The entry that does not fit stays for the next block.
            for (std::size_t i = 0; i < work.size(); ++i)
                stream[work[i]] = std::move(entry[i]);
            break;
        }
        entries.push_back(std::move(entry));
        work.clear();
        accepted = at + 1;
    }
    stream.erase(stream.begin() + static_cast<std::ptrdiff_t>(start),
                 stream.begin() + static_cast<std::ptrdiff_t>(accepted));
}

void CStringBlockResource::MergePieces(CResource& other) {
    auto& source = static_cast<CStringBlockResource&>(other);
    for (std::size_t i = 0; i < source.entries.size() && i < entries.size(); ++i)
        entries[i] = std::move(source.entries[i]);
}

CResource* CStringBlockCommand::Execute(Bytes data, CResource* resource) {
    auto* block = static_cast<CStringBlockResource*>(resource);
    try {
        Bytes bytes = data.first(std::min<std::size_t>(data.size(), block->size));
        CLabelParser parser;
        long number = BlockNumber(*block) * kStringsPerBlock - kStringsPerBlock;
        std::size_t offset = 0;
        while (offset < bytes.size()) {
            PieceEntry entry = ParseString(bytes, offset, parser, number);
            if (!entry.empty())
                block->entries.push_back(std::move(entry));
            ++number;
        }
    } catch (...) {
        throw CParserException(kCorruptedDocumentMessage);
    }
    return block;
}

} // namespace tervane
