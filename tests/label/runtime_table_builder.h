#pragma once
// Writes lexer and parser table images byte by byte in the runtime's binary
// format, for toy languages made up by the tests.
#include <cstdint>
#include <string>
#include <vector>

namespace tervane::test {

using Image = std::vector<std::uint8_t>;

inline void PutWord(Image& out, std::uint32_t value, int bytes = 4) {
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}
inline void PatchWord(Image& out, std::size_t at, std::uint32_t value) {
    for (int i = 0; i < 4; ++i)
        out[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
}
inline std::uint32_t WordAt(const Image& image, std::size_t at) {
    return image[at] | (image[at + 1] << 8) | (image[at + 2] << 16) |
           (static_cast<std::uint32_t>(image[at + 3]) << 24);
}

inline constexpr std::uint32_t kXlss = 0x53534C58;
inline constexpr std::uint32_t kCyss = 0x53535943;
inline constexpr std::uint32_t kStart = 0xFFFFFFFF; // start-of-input, and eof
inline constexpr std::uint32_t kFinal = 0x10;
inline constexpr std::uint32_t kIgnore = 0x40;

struct LexState {
    std::uint32_t token = 0;
    std::uint32_t flags = 0;
    std::uint32_t pushIndex = 0;
    std::uint32_t keywordIndex = 0;
    std::uint32_t userValue = 0;
    struct Move {
        std::uint32_t low, high, next;
    };
    std::vector<Move> moves;
};

// One expression list image: head, final-state records, row index, rows.
inline Image BuildList(const std::vector<LexState>& states, std::uint32_t magic = kXlss) {
    const std::uint32_t n = static_cast<std::uint32_t>(states.size());
    Image out;
    PutWord(out, magic);
    PutWord(out, 0); // size, patched below
    out.resize(40, 0);
    PutWord(out, n);
    PutWord(out, 0); // end offset, patched
    PutWord(out, 88 + 28 * n);
    PutWord(out, 88);
    out.resize(88, 0);
    for (const LexState& s : states) {
        PutWord(out, s.token);
        PutWord(out, s.pushIndex);
        PutWord(out, s.flags);
        PutWord(out, s.keywordIndex);
        PutWord(out, s.userValue);
        PutWord(out, 0);
        PutWord(out, 0);
    }
    std::size_t index = out.size();
    out.resize(out.size() + 4 * n, 0);
    for (std::uint32_t i = 0; i < n; ++i) {
        PatchWord(out, index + 4 * i, static_cast<std::uint32_t>(out.size()));
        PutWord(out, static_cast<std::uint32_t>(states[i].moves.size()));
        for (const auto& m : states[i].moves) {
            PutWord(out, m.low);
            PutWord(out, m.high);
            PutWord(out, m.next);
        }
    }
    PatchWord(out, 4, static_cast<std::uint32_t>(out.size()));
    PatchWord(out, 44, static_cast<std::uint32_t>(out.size()));
    return out;
}

struct Keyword {
    std::uint32_t token;
    bool ignoreCase;
    std::string text; // ASCII: stored both narrow and wide
    std::uint32_t userValue;
};

inline Image BuildKeywordTable(const std::vector<Keyword>& entries) {
    Image out;
    PutWord(out, 0);
    PutWord(out, static_cast<std::uint32_t>(entries.size()));
    out.resize(40, 0);
    std::size_t texts = 40 + 41 * entries.size();
    Image strings;
    for (const Keyword& k : entries) {
        std::uint32_t narrow = static_cast<std::uint32_t>(texts + strings.size());
        for (char c : k.text)
            strings.push_back(static_cast<std::uint8_t>(c));
        strings.push_back(0);
        std::uint32_t wide = static_cast<std::uint32_t>(texts + strings.size());
        for (char c : k.text) {
            strings.push_back(static_cast<std::uint8_t>(c));
            strings.push_back(0);
        }
        strings.push_back(0);
        strings.push_back(0);
        PutWord(out, k.token);
        out.push_back(k.ignoreCase ? 1 : 0);
        PutWord(out, narrow);
        PutWord(out, 0);
        PutWord(out, k.userValue);
        PutWord(out, wide);
        PutWord(out, 0);
        out.resize(out.size() + 16, 0);
    }
    out.insert(out.end(), strings.begin(), strings.end());
    PatchWord(out, 0, static_cast<std::uint32_t>(out.size()));
    return out;
}

inline Image BuildLexTable(const std::vector<Image>& lists, const std::vector<Image>& keywords = {},
                           std::uint32_t magic = kXlss) {
    Image out;
    PutWord(out, static_cast<std::uint32_t>(lists.size()));
    PutWord(out, magic);
    PutWord(out, static_cast<std::uint32_t>(keywords.size()));
    out.resize(36, 0);
    for (const Image& list : lists)
        out.insert(out.end(), list.begin(), list.end());
    for (const Image& table : keywords)
        out.insert(out.end(), table.begin(), table.end());
    return out;
}

// Action words.
constexpr std::uint32_t Shift(std::uint32_t state) {
    return 0x40000000 | state;
}
constexpr std::uint32_t Reduce(std::uint32_t production) {
    return 0x20000000 | production;
}
constexpr std::uint32_t Accept() {
    return 0x10000000;
}
constexpr std::uint32_t Lookahead(std::uint32_t automaton) {
    return 0x08000000 | automaton;
}

struct YaccRow {
    std::uint32_t flags = 0;
    struct Entry {
        std::uint32_t value, symbol;
    };
    std::vector<Entry> actions;
    std::vector<Entry> gotos;
    std::uint32_t errorState = 0; // written when flags has bit 1
};

struct YaccGrammar {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> productions; // size, lhs
    std::vector<YaccRow> rows;
    std::vector<Image> lookaheads;
};

// magic 0 writes the older layout: rows back to back, no row offsets.
inline Image BuildYaccTable(const YaccGrammar& g, std::uint32_t magic = kCyss) {
    const std::uint32_t n = static_cast<std::uint32_t>(g.rows.size());
    Image out;
    PutWord(out, magic);
    PutWord(out, static_cast<std::uint32_t>(g.productions.size()), 2);
    PutWord(out, static_cast<std::uint32_t>(g.lookaheads.size()), 2);
    PutWord(out, n);
    PutWord(out, 0); // first row, patched
    PutWord(out, 0); // productions, patched
    std::size_t offsets = out.size();
    out.resize(out.size() + 4 * n, 0);
    PatchWord(out, 16, static_cast<std::uint32_t>(out.size()));
    for (auto [size, lhs] : g.productions) {
        PutWord(out, size);
        PutWord(out, lhs);
    }
    PatchWord(out, 12, static_cast<std::uint32_t>(out.size()));
    for (std::uint32_t i = 0; i < n; ++i) {
        const YaccRow& row = g.rows[i];
        PatchWord(out, offsets + 4 * i, static_cast<std::uint32_t>(out.size()));
        PutWord(out, row.flags);
        PutWord(out, static_cast<std::uint32_t>(row.gotos.size()));
        PutWord(out, static_cast<std::uint32_t>(row.actions.size()));
        for (const auto& e : row.actions) {
            PutWord(out, e.value);
            PutWord(out, e.symbol);
        }
        for (const auto& e : row.gotos) {
            PutWord(out, e.value);
            PutWord(out, e.symbol);
        }
        if (row.flags & 2) {
            PutWord(out, row.errorState);
            PutWord(out, 0xFFFFFFFE);
        }
    }
    for (const Image& list : g.lookaheads)
        out.insert(out.end(), list.begin(), list.end());
    return out;
}

} // namespace tervane::test
