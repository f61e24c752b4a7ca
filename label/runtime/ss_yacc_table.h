#pragma once
// The loaded parser table: productions, one row of actions and gotos per
// state, and the lookahead automata. Preparing it checks every offset, count
// and target state, so that the parse never leaves the table.
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "label/runtime/ss_exception.h"
#include "label/runtime/ss_lex_table.h"
#include "platform/win32/resources.h"

namespace tervane {

struct SSYaccProduction {
    std::uint32_t size = 0;
    std::uint32_t lhs = 0;
};

// An action, goto or error entry as stored.
struct SSYaccEntry {
    std::uint32_t value = 0;
    std::uint32_t symbol = 0;
};

// A state's row, read from the table's copy of the image.
struct SSYaccRow {
    enum Flag : std::uint32_t {
        syncMarked = 0x1, // entries with bit 31 set synchronise
        hasError = 0x2,
        syncAll = 0x4,
        headOnly = 0x8, // older layout: the row is its 12-byte head
    };
    std::uint32_t flags = 0;
    std::uint32_t actionCount = 0;
    std::uint32_t gotoCount = 0;
    const std::uint8_t* entries = nullptr; // actions, then gotos
    std::uint32_t errorState = 0;          // with hasError

    SSYaccEntry action(std::uint32_t i) const { return entry(i); }
    SSYaccEntry gotoEntry(std::uint32_t i) const { return entry(actionCount + i); }

private:
    SSYaccEntry entry(std::uint32_t i) const {
        const std::uint8_t* p = entries + std::size_t{i} * 8;
        auto word = [](const std::uint8_t* q) {
            return static_cast<std::uint32_t>(q[0]) | (static_cast<std::uint32_t>(q[1]) << 8) |
                   (static_cast<std::uint32_t>(q[2]) << 16) |
                   (static_cast<std::uint32_t>(q[3]) << 24);
        };
        return {word(p), word(p + 4)};
    }
};

// The kind of an action word, from its high bits.
enum class SSYaccAction : std::uint32_t {
    shift = 0,
    error = 1,
    reduce = 2,
    accept = 3,
    lookahead = 4,
};

inline SSYaccAction ActionKind(std::uint32_t value) {
    if (value & 0x40000000)
        return SSYaccAction::shift;
    if (value & 0x20000000)
        return SSYaccAction::reduce;
    if (value & 0x10000000)
        return SSYaccAction::accept;
    if (value & 0x08000000)
        return SSYaccAction::lookahead;
    return SSYaccAction::error;
}
inline constexpr std::uint32_t kActionArgumentMask = 0x07FFFFFF;
inline constexpr std::uint32_t kSyncEntryBit = 0x80000000;

// An action word decoded once: its kind in the bits from kStepKindShift, its
// argument below them.
inline constexpr std::uint32_t kStepKindShift = 27;
inline std::uint32_t ActionStep(std::uint32_t value) {
    return static_cast<std::uint32_t>(ActionKind(value)) << kStepKindShift |
           (value & kActionArgumentMask);
}
inline SSYaccAction StepKind(std::uint32_t step) {
    return static_cast<SSYaccAction>(step >> kStepKindShift);
}

struct SSYaccTableHeader {
    static constexpr std::uint32_t kMagic = 0x53535943; // "CYSS"
    std::uint32_t magic = 0;
    std::uint16_t productionCount = 0;
    std::uint16_t lookaheadTableCount = 0;
    std::uint32_t stateCount = 0;
    std::uint32_t firstRowOffset = 0;
    std::uint32_t productionsOffset = 0;
};

class SSYaccTable : public SSExceptionPresent {
public:
    static constexpr std::uint32_t kEofToken = 0xFFFFFFFF;
    static constexpr std::uint32_t kErrorToken = 0xFFFFFFFE;

    // Finds, locks, copies, prepares and frees the resource; raises code 37
    // when it can't be found, loaded or locked. Tables of this module's own
    // resources are prepared once and shared.
    SSYaccTable(HMODULE module, const ResName& name, const ResName& type);
    // The same preparation over bytes; name is for messages.
    SSYaccTable(std::span<const std::uint8_t> image, const std::string& name);

    const SSYaccTableHeader& header() const { return data_->header; }
    std::uint32_t stateCount() const { return data_->header.stateCount; }
    std::uint32_t productionCount() const { return data_->header.productionCount; }
    const SSYaccRow& row(std::uint32_t state) const { return data_->rows[state]; }
    const SSYaccProduction& production(std::uint32_t index) const {
        return data_->productions[index];
    }
    std::uint32_t lookaheadCount() const {
        return static_cast<std::uint32_t>(data_->lookaheads.size());
    }
    const SSLexExpressionList& lookaheadList(std::uint32_t index) const {
        return data_->lookaheads[index];
    }

    // The value of state's first action entry for token, 0 (an error) when
    // there is none.
    std::uint32_t actionValue(std::uint32_t state, std::uint32_t token) const {
        return data_->actionValue(state, token);
    }
    // The target of state's first goto entry for symbol, or kNoGoto.
    static constexpr std::uint32_t kNoGoto = 0xFFFFFFFF;
    std::uint32_t gotoTarget(std::uint32_t state, std::uint32_t symbol) const {
        return data_->gotoTarget(state, symbol);
    }

    struct Data {
        SSYaccTableHeader header;
        std::vector<std::uint8_t> image; // rows point into it
        std::vector<SSYaccProduction> productions;
        std::vector<SSYaccRow> rows;
        std::vector<SSLexExpressionList> lookaheads;
        // The answers of the row searches for the tokens and non-terminals
        // that real tables use, made when the table is prepared: a slot
        // each, kActionSlots or kGotoSlots a state; empty when the table is
        // too big for them, and then every lookup searches its row.
        static constexpr std::uint32_t kActionSlots = 64; // tokens 0-61, error, eof
        static constexpr std::uint32_t kGotoSlots = 32;   // symbols from 0x4000
        static constexpr std::uint32_t kFirstNonTerminal = 0x4000;
        std::vector<std::uint32_t> actionSlots; // the entry's value
        std::vector<std::uint32_t> actionSteps; // the same as ActionStep gives it
        std::vector<std::uint32_t> gotoSlots;   // the target plus 1, 0 for none

        static std::uint32_t ActionSlot(std::uint32_t token) {
            if (token < kActionSlots - 2)
                return token;
            if (token >= kErrorToken)
                return token - kErrorToken + kActionSlots - 2;
            return kActionSlots;
        }
        std::uint32_t actionValue(std::uint32_t state, std::uint32_t token) const {
            const std::uint32_t slot = ActionSlot(token);
            if (slot < kActionSlots && !actionSlots.empty())
                return actionSlots[std::size_t{state} * kActionSlots + slot];
            return searchAction(state, token);
        }
        std::uint32_t gotoTarget(std::uint32_t state, std::uint32_t symbol) const {
            const std::uint32_t slot = symbol - kFirstNonTerminal;
            if (slot < kGotoSlots && !gotoSlots.empty())
                return gotoSlots[std::size_t{state} * kGotoSlots + slot] - 1;
            return searchGoto(state, symbol);
        }
        std::uint32_t searchAction(std::uint32_t state, std::uint32_t token) const;
        std::uint32_t searchGoto(std::uint32_t state, std::uint32_t symbol) const;
        // Fills the slots from the searches.
        void buildSlots();
    };

    const Data& data() const { return *data_; }

private:
    std::shared_ptr<const Data> data_;
};

} // namespace tervane
