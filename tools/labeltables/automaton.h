#pragma once
// Declarative descriptions of the label tables: automata and parser states as
// data, with the state numbers that the grammars' documentation gives.
#include <cstdint>
#include <string>
#include <vector>

namespace tervane::labeltables {

inline constexpr std::uint32_t kStartOfInput = 0xFFFFFFFF;
inline constexpr std::uint32_t kLastCode = 0xFFFF;
inline constexpr std::uint32_t kNoState = 0xFFFFFFFF;

inline constexpr std::uint32_t kFlagPop = 0x008;
inline constexpr std::uint32_t kFlagFinal = 0x010;
inline constexpr std::uint32_t kFlagPush = 0x020;
inline constexpr std::uint32_t kFlagIgnore = 0x040;

// One move of a state. Codes named here are taken before any "other" move of
// the same state, so a move to kNoState keeps codes out of "other".
struct Move {
    std::u16string codes;
    std::uint32_t next = kNoState;
    bool other = false;        // every code 0..0xFFFF that no other move names
    bool startOfInput = false; // the pseudo-character before the first one
};

inline Move On(std::u16string codes, std::uint32_t next) {
    return {std::move(codes), next};
}
inline Move Except(std::u16string codes) {
    return {std::move(codes), kNoState};
}
inline Move Other(std::uint32_t next) {
    return {{}, next, true, false};
}
inline Move StartOfInput(std::uint32_t next) {
    return {{}, next, false, true};
}

struct Accept {
    std::uint32_t token = 0;
    std::uint32_t flags = 0;
    std::uint32_t pushIndex = 0;
};

inline Accept Token(std::uint32_t token) {
    return {token, kFlagFinal, 0};
}
inline Accept IgnoredStart() {
    return {kStartOfInput, kFlagFinal | kFlagIgnore, 0};
}
inline Accept TokenSwitching(std::uint32_t token, std::uint32_t list) {
    return {token, kFlagFinal | kFlagPop | kFlagPush, list};
}

struct LexState {
    std::uint32_t number = 0;
    Accept accept;
    std::vector<Move> moves;
};

// States may be listed in any order; their numbers must be 0..n-1.
struct ExpressionList {
    std::vector<LexState> states;
};

struct LexerGrammar {
    std::vector<ExpressionList> lists;
};

inline constexpr std::uint32_t kEof = 0xFFFFFFFF;

enum class ActionKind { Shift, Reduce, Accept };

struct Action {
    std::vector<std::uint32_t> symbols;
    ActionKind kind = ActionKind::Shift;
    std::uint32_t argument = 0;
};

struct Goto {
    std::uint32_t nonTerminal = 0;
    std::uint32_t state = 0;
};

struct ParserState {
    std::uint32_t number = 0;
    std::vector<Action> actions;
    std::vector<Goto> gotos;
};

struct Production {
    std::uint32_t size = 0;
    std::uint32_t lhs = 0;
};

struct ParserGrammar {
    std::vector<Production> productions;
    std::vector<ParserState> states;
};

struct Grammar {
    const char* name; // resource name, upper case
    LexerGrammar lexer;
    ParserGrammar parser;
};

// The three grammars, in the order String, Menu, Dialog.
std::vector<Grammar> LabelGrammars();

} // namespace tervane::labeltables
