#include "platform/locale/code_page_table.h"

#include <iconv.h>

#include <array>
#include <cerrno>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace tervane::locale {
namespace {

struct Supported {
    UINT codePage;
    const char* iconvName;
};

// glibc's CP932, CP936, CP949 and CP950 are Windows' tables (GBK, UHC and BIG5
// differ in places: 0x80 is the euro sign only in CP936).
constexpr Supported kSupported[] = {
    {437, "CP437"},        {737, "CP737"},        {775, "CP775"},        {850, "CP850"},
    {852, "CP852"},        {855, "CP855"},        {857, "CP857"},        {860, "CP860"},
    {861, "CP861"},        {862, "CP862"},        {863, "CP863"},        {865, "CP865"},
    {866, "CP866"},        {869, "CP869"},        {874, "CP874"},        {932, "CP932"},
    {936, "CP936"},        {949, "CP949"},        {950, "CP950"},        {1250, "CP1250"},
    {1251, "CP1251"},      {1252, "CP1252"},      {1253, "CP1253"},      {1254, "CP1254"},
    {1255, "CP1255"},      {1256, "CP1256"},      {1257, "CP1257"},      {1258, "CP1258"},
    {20127, "ASCII"},      {20866, "KOI8-R"},     {21866, "KOI8-U"},     {28591, "ISO-8859-1"},
    {28592, "ISO-8859-2"}, {28595, "ISO-8859-5"}, {28597, "ISO-8859-7"}, {28599, "ISO-8859-9"},
};

struct LeadRange {
    UINT codePage;
    BYTE first;
    BYTE last;
};
constexpr LeadRange kLeadRanges[] = {
    {932, 0x81, 0x9F}, {932, 0xE0, 0xFC}, {936, 0x81, 0xFE}, {949, 0x81, 0xFE}, {950, 0x81, 0xFE},
};

// Bytes that Windows decodes and iconv does not: mostly private-use characters
// in the gaps of a few tables (the gaps in 0x80..0x9F decode to U+0080..U+009F).
struct PrivateRun {
    UINT codePage;
    BYTE first;
    BYTE count;
    char16_t unicode;
};
constexpr PrivateRun kPrivateRuns[] = {
    {857, 0xD5, 1, 0xF8BB},  {857, 0xE7, 1, 0xF8BC},  {857, 0xF2, 1, 0xF8BD},
    {874, 0xDB, 4, 0xF8C1},  {874, 0xFC, 4, 0xF8C5},  {932, 0xA0, 1, 0xF8F0},
    {932, 0xFD, 3, 0xF8F1},  {936, 0xFF, 1, 0xF8F5},  {949, 0xFF, 1, 0xF8F7},
    {950, 0xFF, 1, 0xF8F8},  {1253, 0xAA, 1, 0xF8F9}, {1253, 0xD2, 1, 0xF8FA},
    {1253, 0xFF, 1, 0xF8FB}, {1255, 0xD9, 7, 0xF88D}, {1255, 0xFB, 2, 0xF894},
    {1255, 0xFF, 1, 0xF896}, {1255, 0xCA, 1, 0x05BA}, {1257, 0xA1, 1, 0xF8FC},
    {1257, 0xA5, 1, 0xF8FD},
};

// The user-defined areas of the DBCS pages: Windows gives them private-use
// characters row by row, iconv leaves them out.
struct TrailRange {
    BYTE first;
    BYTE last;
};
struct UserDefinedBlock {
    UINT codePage;
    BYTE firstLead;
    BYTE lastLead;
    TrailRange trails[2];
    char16_t unicode;
};
constexpr UserDefinedBlock kUserDefinedBlocks[] = {
    {936, 0xAA, 0xAF, {{0xA1, 0xFE}, {1, 0}}, 0xE000},
    {936, 0xF8, 0xFE, {{0xA1, 0xFE}, {1, 0}}, 0xE234},
    {936, 0xA1, 0xA7, {{0x40, 0x7E}, {0x80, 0xA0}}, 0xE4C6},
    {949, 0xC9, 0xC9, {{0xA1, 0xFE}, {1, 0}}, 0xE000},
    {949, 0xFE, 0xFE, {{0xA1, 0xFE}, {1, 0}}, 0xE05E},
    {950, 0xFA, 0xFE, {{0x40, 0x7E}, {0xA1, 0xFE}}, 0xE000},
    {950, 0x8E, 0xA0, {{0x40, 0x7E}, {0xA1, 0xFE}}, 0xE311},
    {950, 0x81, 0x8D, {{0x40, 0x7E}, {0xA1, 0xFE}}, 0xEEB8},
};

// And the pairs of 936 that Windows gives private-use characters one by one.
struct PairRun {
    UINT codePage;
    BYTE lead;
    BYTE trail;
    BYTE count;
    char16_t unicode;
};
constexpr PairRun kPairRuns[] = {
    {936, 0xA2, 0xAB, 6, 0xE766},  {936, 0xA2, 0xE3, 2, 0xE76C},  {936, 0xA2, 0xEF, 2, 0xE76E},
    {936, 0xA2, 0xFD, 2, 0xE770},  {936, 0xA4, 0xF4, 11, 0xE772}, {936, 0xA5, 0xF7, 8, 0xE77D},
    {936, 0xA6, 0xB9, 8, 0xE785},  {936, 0xA6, 0xD9, 7, 0xE78D},  {936, 0xA6, 0xEC, 2, 0xE794},
    {936, 0xA6, 0xF3, 1, 0xE796},  {936, 0xA6, 0xF6, 9, 0xE797},  {936, 0xA7, 0xC2, 15, 0xE7A0},
    {936, 0xA7, 0xF2, 13, 0xE7AF}, {936, 0xA8, 0x96, 11, 0xE7BC}, {936, 0xA8, 0xBC, 1, 0xE7C7},
    {936, 0xA8, 0xBF, 1, 0xE7C8},  {936, 0xA8, 0xC1, 4, 0xE7C9},  {936, 0xA8, 0xEA, 21, 0xE7CD},
    {936, 0xA9, 0x58, 1, 0xE7E2},  {936, 0xA9, 0x5B, 1, 0xE7E3},  {936, 0xA9, 0x5D, 3, 0xE7E4},
    {936, 0xA9, 0x89, 13, 0xE7E7}, {936, 0xA9, 0x97, 13, 0xE7F4}, {936, 0xA9, 0xF0, 15, 0xE801},
    {936, 0xD7, 0xFA, 5, 0xE810},  {936, 0xFE, 0x50, 47, 0xE815}, {936, 0xFE, 0x80, 33, 0xE844},
};

// Where Windows encodes a character that two byte pairs decode to with the
// other pair than iconv does.
struct PreferredForm {
    UINT codePage;
    char16_t unicode;
    std::uint16_t bytes;
};
constexpr PreferredForm kPreferredForms[] = {
    {950, 0x2550, 0xF9F9},
    {950, 0x255E, 0xF9E9},
    {950, 0x2561, 0xF9EB},
    {950, 0x256A, 0xF9EA},
};

class Iconv {
public:
    Iconv(const char* to, const char* from) : cd_(iconv_open(to, from)) {}
    ~Iconv() {
        if (ok())
            iconv_close(cd_);
    }
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;
    bool ok() const { return cd_ != reinterpret_cast<iconv_t>(-1); }

    // The whole of in converted from the initial state, flushed; empty on any error.
    std::string Convert(const char* in, std::size_t length) {
        iconv(cd_, nullptr, nullptr, nullptr, nullptr);
        char out[16];
        char* inPtr = const_cast<char*>(in);
        std::size_t inLeft = length;
        char* outPtr = out;
        std::size_t outLeft = sizeof out;
        if (iconv(cd_, &inPtr, &inLeft, &outPtr, &outLeft) == static_cast<std::size_t>(-1) ||
            inLeft != 0) {
            return {};
        }
        // Stateful tables (1255, 1258) hold a base letter back until they know what follows.
        if (iconv(cd_, nullptr, nullptr, &outPtr, &outLeft) == static_cast<std::size_t>(-1)) {
            return {};
        }
        return std::string(out, static_cast<std::size_t>(outPtr - out));
    }

private:
    iconv_t cd_;
};

// One UTF-16 unit from iconv's little-endian output, or kUnmapped.
char16_t OneUnit(const std::string& utf16) {
    if (utf16.size() != 2)
        return CodePageTable::kUnmapped;
    const auto lo = static_cast<unsigned char>(utf16[0]);
    const auto hi = static_cast<unsigned char>(utf16[1]);
    return static_cast<char16_t>(lo | (hi << 8));
}

} // namespace

bool CodePageTable::Load(const char* iconvName) {
    Iconv toWide("UTF-16LE", iconvName);
    Iconv toNarrow(iconvName, "UTF-16LE");
    if (!toWide.ok() || !toNarrow.ok())
        return false;

    for (const auto& range : kLeadRanges) {
        if (range.codePage != codePage_)
            continue;
        dbcs_ = true;
        for (unsigned b = range.first; b <= range.last; ++b)
            lead_[b] = true;
    }
    if (codePage_ == 932)
        defaultWide_ = 0x30FB;
    decode_.assign(dbcs_ ? 256 + 65536 : 256, kUnmapped);

    for (unsigned b = 0; b < 256; ++b) {
        if (lead_[b])
            continue;
        const char byte = static_cast<char>(b);
        decode_[b] = OneUnit(toWide.Convert(&byte, 1));
        if (decode_[b] == kUnmapped && b >= 0x80 && b <= 0x9F)
            decode_[b] = static_cast<char16_t>(b);
    }
    for (const auto& run : kPrivateRuns) {
        if (run.codePage != codePage_)
            continue;
        for (unsigned k = 0; k < run.count; ++k) {
            decode_[run.first + k] = static_cast<char16_t>(run.unicode + k);
        }
    }
    if (dbcs_) {
        for (unsigned lead = 0; lead < 256; ++lead) {
            if (!lead_[lead])
                continue;
            for (unsigned trail = 0x40; trail < 0xFF; ++trail) {
                const char pair[2] = {static_cast<char>(lead), static_cast<char>(trail)};
                decode_[256 + (lead << 8) + trail] = OneUnit(toWide.Convert(pair, 2));
            }
        }
    }

    for (const auto& block : kUserDefinedBlocks) {
        if (block.codePage != codePage_)
            continue;
        char16_t next = block.unicode;
        for (unsigned lead = block.firstLead; lead <= block.lastLead; ++lead) {
            for (const TrailRange& range : block.trails) {
                for (unsigned trail = range.first; trail <= range.last; ++trail) {
                    char16_t& slot = decode_[256 + (lead << 8) + trail];
                    if (slot == kUnmapped)
                        slot = next;
                    ++next;
                }
            }
        }
    }

    for (const auto& run : kPairRuns) {
        if (run.codePage != codePage_)
            continue;
        for (unsigned k = 0; k < run.count; ++k)
            decode_[256 + (run.lead << 8) + run.trail + k] = static_cast<char16_t>(run.unicode + k);
    }

    // The encoder is the decoder inverted; where several forms decode to one
    // character, iconv's own choice wins (Windows' best form, e.g. 0x80 for the
    // euro in 936).
    encode_.assign(65536, kNoBytes);
    std::vector<bool> ambiguous(65536, false);
    const auto note = [&](char16_t c, std::uint16_t bytes) {
        if (c == kUnmapped)
            return;
        if (encode_[c] == kNoBytes) {
            encode_[c] = bytes;
        } else {
            ambiguous[c] = true;
        }
    };
    for (unsigned b = 0; b < 256; ++b) {
        if (!lead_[b])
            note(decode_[b], static_cast<std::uint16_t>(b));
    }
    for (std::size_t i = 256; i < decode_.size(); ++i) {
        note(decode_[i], static_cast<std::uint16_t>(i - 256));
    }
    for (unsigned c = 0; c < 65536; ++c) {
        if (!ambiguous[c])
            continue;
        const char unit[2] = {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
        const std::string bytes = toNarrow.Convert(unit, 2);
        if (bytes.size() == 1) {
            encode_[c] = static_cast<unsigned char>(bytes[0]);
        } else if (bytes.size() == 2) {
            encode_[c] = static_cast<std::uint16_t>((static_cast<unsigned char>(bytes[0]) << 8) |
                                                    static_cast<unsigned char>(bytes[1]));
        }
    }
    for (const auto& form : kPreferredForms) {
        if (form.codePage == codePage_)
            encode_[form.unicode] = form.bytes;
    }
    return true;
}

const CodePageTable* CodePageTable::Find(UINT codePage) {
    // Tables are immutable once built: each thread keeps its own index to them,
    // so a lookup takes the lock only the first time a thread asks.
    thread_local std::map<UINT, const CodePageTable*> seen;
    if (const auto it = seen.find(codePage); it != seen.end())
        return it->second;

    static std::mutex mutex;
    static std::map<UINT, std::unique_ptr<CodePageTable>> built;
    const CodePageTable* result = nullptr;
    {
        std::lock_guard lock(mutex);
        auto it = built.find(codePage);
        if (it == built.end()) {
            std::unique_ptr<CodePageTable> table;
            for (const auto& s : kSupported) {
                if (s.codePage != codePage)
                    continue;
                table.reset(new CodePageTable(codePage));
                if (!table->Load(s.iconvName))
                    table.reset();
            }
            it = built.emplace(codePage, std::move(table)).first;
        }
        result = it->second.get();
    }
    seen.emplace(codePage, result);
    return result;
}

} // namespace tervane::locale
