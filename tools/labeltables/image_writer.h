#pragma once
// Binary images of the lexer and parser tables as the label runtime loads them.
#include <cstdint>
#include <vector>

#include "tools/labeltables/automaton.h"

namespace tervane::labeltables {

// Both throw std::runtime_error on a description that is not a valid table:
// missing or repeated state numbers, overlapping moves, unknown targets.
std::vector<std::uint8_t> WriteLexerImage(const LexerGrammar& grammar);
std::vector<std::uint8_t> WriteParserImage(const ParserGrammar& grammar);

} // namespace tervane::labeltables
