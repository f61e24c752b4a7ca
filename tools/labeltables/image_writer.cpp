#include "tools/labeltables/image_writer.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace tervane::labeltables {

namespace {

constexpr std::uint32_t kLexMagic = 0x53534C58;  // "XLSS"
constexpr std::uint32_t kYaccMagic = 0x53535943; // "CYSS"
constexpr std::size_t kFileHeaderSize = 36;
constexpr std::size_t kListHeaderSize = 88;
constexpr std::size_t kFinalStateSize = 28;
constexpr std::size_t kTransitionSize = 12;
constexpr std::size_t kYaccHeaderSize = 20;

constexpr std::uint32_t kShiftBit = 0x40000000;
constexpr std::uint32_t kReduceBit = 0x20000000;
constexpr std::uint32_t kAcceptBit = 0x10000000;

class Writer {
public:
    void U32(std::uint32_t value) {
        for (int i = 0; i < 4; ++i)
            bytes_.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
    void U16(std::uint16_t value) {
        bytes_.push_back(static_cast<std::uint8_t>(value));
        bytes_.push_back(static_cast<std::uint8_t>(value >> 8));
    }
    void Zeros(std::size_t count) { bytes_.insert(bytes_.end(), count, 0); }
    void Patch32(std::size_t at, std::uint32_t value) {
        for (int i = 0; i < 4; ++i)
            bytes_.at(at + i) = static_cast<std::uint8_t>(value >> (8 * i));
    }
    std::size_t Size() const { return bytes_.size(); }
    std::vector<std::uint8_t> Take() { return std::move(bytes_); }

private:
    std::vector<std::uint8_t> bytes_;
};

std::uint32_t Narrow(std::size_t value, const char* what) {
    if (value > 0xFFFFFFFFu)
        throw std::runtime_error(std::string(what) + " does not fit 32 bits");
    return static_cast<std::uint32_t>(value);
}

struct Transition {
    std::uint32_t low;
    std::uint32_t high;
    std::uint32_t next;
};

[[noreturn]] void Fail(std::uint32_t state, const std::string& why) {
    throw std::runtime_error("state " + std::to_string(state) + ": " + why);
}

// The moves of a state as sorted, non-overlapping ranges; neighbouring codes
// with the same target share one range, as the stored tables have them.
std::vector<Transition> Row(const LexState& state, std::size_t stateCount) {
    std::vector<Transition> single;
    const Move* other = nullptr;
    for (const Move& move : state.moves) {
        if (move.other) {
            if (other)
                Fail(state.number, "two moves on every other code");
            other = &move;
            continue;
        }
        if (move.startOfInput)
            single.push_back({kStartOfInput, kStartOfInput, move.next});
        for (char16_t code : move.codes)
            single.push_back({code, code, move.next});
    }
    std::sort(single.begin(), single.end(),
              [](const Transition& a, const Transition& b) { return a.low < b.low; });
    for (std::size_t i = 1; i < single.size(); ++i)
        if (single[i].low == single[i - 1].low)
            Fail(state.number, "code " + std::to_string(single[i].low) + " moves twice");

    std::vector<Transition> all;
    std::uint32_t nextFree = 0;
    for (const Transition& t : single) {
        if (other && t.low <= kLastCode && t.low > nextFree)
            all.push_back({nextFree, t.low - 1, other->next});
        all.push_back(t);
        if (t.low <= kLastCode)
            nextFree = t.low + 1;
    }
    if (other && nextFree <= kLastCode)
        all.push_back({nextFree, kLastCode, other->next});
    std::sort(all.begin(), all.end(),
              [](const Transition& a, const Transition& b) { return a.low < b.low; });

    std::vector<Transition> row;
    for (const Transition& t : all) {
        if (t.next == kNoState)
            continue;
        if (t.next >= stateCount)
            Fail(state.number, "move to unknown state " + std::to_string(t.next));
        if (!row.empty() && row.back().next == t.next && row.back().high + 1 == t.low)
            row.back().high = t.high;
        else
            row.push_back(t);
    }
    return row;
}

template <typename State> std::vector<const State*> ByNumber(const std::vector<State>& states) {
    std::vector<const State*> byNumber(states.size(), nullptr);
    for (const State& state : states) {
        if (state.number >= states.size())
            Fail(state.number, "number out of range");
        if (byNumber[state.number])
            Fail(state.number, "listed twice");
        byNumber[state.number] = &state;
    }
    return byNumber;
}

void WriteList(Writer& out, const ExpressionList& list) {
    const auto states = ByNumber(list.states);
    const std::size_t count = states.size();
    std::vector<std::vector<Transition>> rows;
    std::size_t rowBytes = 0;
    for (const LexState* state : states) {
        rows.push_back(Row(*state, count));
        rowBytes += 4 + kTransitionSize * rows.back().size();
    }
    const std::size_t finalStates = kListHeaderSize;
    const std::size_t rowIndex = finalStates + kFinalStateSize * count;
    const std::size_t firstRow = rowIndex + 4 * count;
    const std::uint32_t size = Narrow(firstRow + rowBytes, "expression list");

    const std::size_t start = out.Size();
    out.U32(kLexMagic);
    out.U32(size);
    out.Zeros(32);
    out.U32(Narrow(count, "state count"));
    out.U32(size);
    out.U32(Narrow(rowIndex, "row index"));
    out.U32(Narrow(finalStates, "final states"));
    out.Zeros(32);
    for (const LexState* state : states) {
        out.U32(state->accept.token);
        out.U32(state->accept.pushIndex);
        out.U32(state->accept.flags);
        out.Zeros(16); // keyword index, user value, two reserved words
    }
    std::size_t rowOffset = firstRow;
    for (const auto& row : rows) {
        out.U32(Narrow(rowOffset, "row offset"));
        rowOffset += 4 + kTransitionSize * row.size();
    }
    for (const auto& row : rows) {
        out.U32(Narrow(row.size(), "row length"));
        for (const Transition& t : row) {
            out.U32(t.low);
            out.U32(t.high);
            out.U32(t.next);
        }
    }
    if (out.Size() - start != size)
        throw std::logic_error("expression list size mismatch");
}

std::uint32_t ActionWord(const Action& action, const ParserGrammar& grammar, std::uint32_t state) {
    switch (action.kind) {
    case ActionKind::Shift:
        if (action.argument >= grammar.states.size())
            Fail(state, "shift to unknown state");
        return kShiftBit | action.argument;
    case ActionKind::Reduce:
        if (action.argument >= grammar.productions.size())
            Fail(state, "reduce by unknown production");
        return kReduceBit | action.argument;
    case ActionKind::Accept:
        return kAcceptBit;
    }
    Fail(state, "unknown action kind");
}

} // namespace

std::vector<std::uint8_t> WriteLexerImage(const LexerGrammar& grammar) {
    Writer out;
    out.U32(Narrow(grammar.lists.size(), "list count"));
    out.U32(kLexMagic);
    out.U32(0); // no keyword tables
    out.Zeros(kFileHeaderSize - 12);
    for (const ExpressionList& list : grammar.lists)
        WriteList(out, list);
    return out.Take();
}

std::vector<std::uint8_t> WriteParserImage(const ParserGrammar& grammar) {
    const auto states = ByNumber(grammar.states);
    if (grammar.productions.size() > 0xFFFF)
        throw std::runtime_error("too many productions");
    const std::size_t productions = kYaccHeaderSize + 4 * states.size();
    const std::size_t firstRow = productions + 8 * grammar.productions.size();

    Writer out;
    out.U32(kYaccMagic);
    out.U16(static_cast<std::uint16_t>(grammar.productions.size()));
    out.U16(0); // no lookahead automata
    out.U32(Narrow(states.size(), "state count"));
    out.U32(Narrow(firstRow, "first row"));
    out.U32(Narrow(productions, "productions"));
    const std::size_t rowOffsets = out.Size();
    out.Zeros(4 * states.size());
    for (const Production& production : grammar.productions) {
        out.U32(production.size);
        out.U32(production.lhs);
    }
    for (std::size_t i = 0; i < states.size(); ++i) {
        const ParserState& state = *states[i];
        out.Patch32(rowOffsets + 4 * i, Narrow(out.Size(), "row offset"));
        std::size_t actionCount = 0;
        for (const Action& action : state.actions)
            actionCount += action.symbols.size();
        out.U32(0); // no recovery flags
        out.U32(Narrow(state.gotos.size(), "goto count"));
        out.U32(Narrow(actionCount, "action count"));
        for (const Action& action : state.actions) {
            const std::uint32_t word = ActionWord(action, grammar, state.number);
            for (std::uint32_t symbol : action.symbols) {
                out.U32(word);
                out.U32(symbol);
            }
        }
        for (const Goto& go : state.gotos) {
            if (go.state >= states.size())
                Fail(state.number, "goto to unknown state");
            out.U32(go.state);
            out.U32(go.nonTerminal);
        }
    }
    return out.Take();
}

} // namespace tervane::labeltables
