// Random lexer and parser table images and random text through the runtime.
// Input: a selector byte, a 16-bit length and the lexer image, a 16-bit
// length and the parser image, then the text as UTF-16 units. Selector bits
// 0 and 1 swap in the module's own lexer or parser table (bits 2-3 pick
// which), so that random text meets real tables and real text damaged ones.
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "label/runtime/ss_lex.h"
#include "label/runtime/ss_yacc.h"

namespace {

using tervane::SSException;

// Asks for every symbol of each production, as the grammars do.
class AnyYacc : public tervane::SSYacc {
public:
    using SSYacc::SSYacc;
    tervane::SSYaccStackElement* reduce(std::uint32_t, std::uint32_t size) override {
        for (std::uint32_t i = 0; i < size; ++i)
            if (tervane::SSYaccStackElement* element =
                    elementFromProduction(static_cast<std::int32_t>(i));
                element->lexeme)
                sink_ += element->lexeme->length();
        return stackElement();
    }

private:
    std::size_t sink_ = 0;
};

std::span<const std::uint8_t> TakeCounted(std::span<const std::uint8_t>& data) {
    if (data.size() < 2) {
        data = {};
        return {};
    }
    std::size_t length = data[0] | (data[1] << 8);
    data = data.subspan(2);
    length = std::min(length, data.size());
    auto out = data.first(length);
    data = data.subspan(length);
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    std::span<const std::uint8_t> data(bytes, size);
    if (data.empty())
        return 0;
    const std::uint8_t selector = data[0];
    data = data.subspan(1);
    auto lexImage = TakeCounted(data);
    auto yaccImage = TakeCounted(data);
    std::u16string text;
    for (std::size_t i = 0; i + 1 < data.size(); i += 2)
        text += static_cast<char16_t>(data[i] | (data[i + 1] << 8));
    static const char* const kNames[] = {"STRINGRESPARSE", "MENURESPARSE", "DIALOGRESPARSE",
                                         "STRINGRESPARSE"};
    const char* name = kNames[(selector >> 2) & 3];

    std::optional<tervane::SSLexTable> lexTable;
    std::optional<tervane::SSYaccTable> yaccTable;
    try {
        if (selector & 1)
            lexTable.emplace(TervaneModuleHandle(), name, "SSLEXTABLE");
        else
            lexTable.emplace(lexImage, "FUZZ");
    } catch (const SSException&) {
    }
    try {
        if (selector & 2)
            yaccTable.emplace(TervaneModuleHandle(), name, "SSYACCTABLE");
        else
            yaccTable.emplace(yaccImage, "FUZZ");
    } catch (const SSException&) {
    }
    if (!lexTable)
        return 0;

    // The lexer alone, to the end or its first error.
    try {
        tervane::SSLexStringConsumer consumer(text);
        tervane::SSLex lex(&consumer, &*lexTable);
        while (tervane::SSRef<tervane::SSLexLexeme> lexeme = lex.nextLexeme()) {
        }
    } catch (const SSException&) {
    }
    if (!yaccTable)
        return 0;
    try {
        tervane::SSLexStringConsumer consumer(text);
        tervane::SSLex lex(&consumer, &*lexTable);
        AnyYacc yacc(&lex, &*yaccTable);
        yacc.parse();
    } catch (const SSException&) {
    }
    return 0;
}
