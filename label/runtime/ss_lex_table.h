#pragma once
// The loaded lexer table: one or more expression lists (deterministic
// automata over character codes) and the keyword tables. Loading checks every
// offset and size, so that a damaged image raises the table error and the
// scan never leaves the image. A loaded table is read-only; copies share it.
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "label/runtime/ss_exception.h"
#include "platform/win32/resources.h"

namespace tervane {

class SSLexLexeme;

// One state's accepting record, as stored (words 5 and 6 are not read).
struct SSLexFinalState {
    enum Flag : std::uint32_t {
        contextStart = 0x001,
        startOfLine = 0x002,
        pop = 0x008,
        final = 0x010,
        push = 0x020,
        ignore = 0x040,
        endOfLine = 0x080,
        keyword = 0x200,
        setUserValue = 0x400,
    };
    std::uint32_t token = 0;
    std::uint32_t pushIndex = 0;
    std::uint32_t flags = 0;
    std::uint32_t keywordIndex = 0;
    std::uint32_t userValue = 0;
};

struct SSLexTransition {
    std::uint32_t low = 0;
    std::uint32_t high = 0;
    std::uint32_t next = 0;
};

// One automaton. It keeps a private copy of its image; rows are read from
// the copy, so rows that share bytes cost nothing extra.
class SSLexExpressionList {
public:
    static constexpr std::uint32_t kNoState = 0xFFFFFFFF;

    std::uint32_t stateCount() const { return static_cast<std::uint32_t>(finals_.size()); }
    const SSLexFinalState& finalState(std::uint32_t state) const { return finals_[state]; }
    // The state that c leads to from state, or kNoState. Rows are searched
    // linearly and the search gives up at the first range above c; the
    // answers for the first characters are looked up in a table made from
    // that search when the list was loaded.
    std::uint32_t transition(std::uint32_t state, std::uint32_t c) const {
        if (c < kDirect && !direct_.empty())
            return direct_[std::size_t{state} * kDirect + c];
        return searchRow(state, c);
    }
    std::uint32_t searchRow(std::uint32_t state, std::uint32_t c) const {
        const Row& row = rows_[state];
        const std::uint8_t* t = image_.data() + row.first;
        for (std::uint32_t i = 0; i < row.count; ++i, t += 12) {
            if (c < Load(t))
                return kNoState;
            if (c <= Load(t + 4))
                return Load(t + 8);
        }
        return kNoState;
    }
    // For scan loops: the records of all states, and the looked-up moves
    // (kDirect a state) or null when every move is searched.
    const SSLexFinalState* finalStates() const { return finals_.data(); }
    const std::uint32_t* directMoves() const { return direct_.empty() ? nullptr : direct_.data(); }
    std::uint32_t rowLength(std::uint32_t state) const { return rows_[state].count; }
    // A state that every character but a few keeps in itself, as the letters
    // of a text do: those few (the line feed among them, so that lines are
    // counted one by one), kLoopStops of them with repeats, each repeated
    // kStopWidth times, for the scan to compare eight characters at a time.
    // Null for any other state.
    const std::uint16_t* loopStops(std::uint32_t state) const {
        const std::uint32_t slot = loops_.empty() ? 0 : loops_[state];
        return slot ? stops_.data() + std::size_t{slot - 1} * kLoopStops * kStopWidth : nullptr;
    }
    static constexpr std::uint32_t kLoopStops = 8;
    static constexpr std::uint32_t kStopWidth = 8;
    SSLexTransition rowEntry(std::uint32_t state, std::uint32_t i) const {
        const std::uint8_t* t = image_.data() + rows_[state].first + std::size_t{i} * 12;
        return {Load(t), Load(t + 4), Load(t + 8)};
    }

    static constexpr std::uint32_t kDirect = 128;

private:
    friend class SSLexTableLoader;
    // Fills direct_ unless the list is too big for it (damaged or unusual
    // tables only), in which case every move is searched.
    void buildDirect();
    // Fills loops_ and stops_ from the rows.
    void buildLoops();
    // The wide characters that take state out of itself, and the line feed;
    // false when they don't fit in kLoopStops units.
    bool findStops(std::uint32_t state, std::vector<std::uint16_t>& stops) const;

    static std::uint32_t Load(const std::uint8_t* p) {
        return static_cast<std::uint32_t>(p[0]) | (static_cast<std::uint32_t>(p[1]) << 8) |
               (static_cast<std::uint32_t>(p[2]) << 16) | (static_cast<std::uint32_t>(p[3]) << 24);
    }
    struct Row {
        std::uint32_t first = 0; // byte offset of the first transition
        std::uint32_t count = 0;
    };
    std::vector<std::uint8_t> image_;
    std::vector<SSLexFinalState> finals_;
    std::vector<Row> rows_;
    std::vector<std::uint32_t> direct_; // kDirect moves a state, or empty
    std::vector<std::uint32_t> loops_;  // a state's place in stops_ plus 1, or 0
    std::vector<std::uint16_t> stops_;  // kLoopStops * kStopWidth units a looping state
};

struct SSLexKeyword {
    std::uint32_t token = 0;
    bool ignoreCase = false;
    std::string narrowText;
    std::u16string wideText;
    std::uint32_t userValue = 0;
};

struct SSLexKeywordTable {
    std::vector<SSLexKeyword> entries;
};

// The 36-byte file header.
struct SSLexTableHeader {
    static constexpr std::uint32_t kMagic = 0x53534C58; // "XLSS"
    std::uint32_t listCount = 0;
    std::uint32_t magic = 0;
    std::uint32_t keywordTableCount = 0;
};

class SSLexTable : public SSExceptionPresent {
public:
    // Finds, locks, loads and frees the resource; raises code 36 when it
    // can't be found, loaded or locked. Tables of this module's own resources
    // are prepared once and shared.
    SSLexTable(HMODULE module, const ResName& name, const ResName& type);
    // The same loading over bytes; name is for messages.
    SSLexTable(std::span<const std::uint8_t> image, const std::string& name);

    const SSLexTableHeader& header() const { return data_->header; }
    std::uint32_t listCount() const { return static_cast<std::uint32_t>(data_->lists.size()); }
    const SSLexExpressionList* expressionList(std::uint32_t index) const;
    std::uint32_t keywordTableCount() const {
        return static_cast<std::uint32_t>(data_->keywords.size());
    }
    void keywordLookup(std::uint32_t index, SSLexLexeme& lexeme, std::uint32_t consumerType) const;

    struct Data {
        SSLexTableHeader header;
        std::vector<SSLexExpressionList> lists;
        std::vector<SSLexKeywordTable> keywords;
    };

private:
    std::shared_ptr<const Data> data_;
};

// Loads an image that SSLexTable and SSYaccTable both read; raises code 4
// with name on any damage.
class SSLexTableLoader {
public:
    // One expression list image at the start of bytes; its size in *size.
    static SSLexExpressionList loadList(std::span<const std::uint8_t> bytes,
                                        const std::string& name, std::uint32_t* size);
    static std::shared_ptr<const SSLexTable::Data> load(std::span<const std::uint8_t> image,
                                                        const std::string& name);
};

} // namespace tervane
