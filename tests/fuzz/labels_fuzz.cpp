// Random labels of all three kinds (and of kinds that don't exist): the first
// byte picks the kind, the rest are UTF-16 units. Every token's text is a
// piece of the label, in order, so the tokens joined are a prefix of it.
#include <cstddef>
#include <cstdint>
#include <string>

#include "label/grammars/label_parser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::uint16_t kind = data[0] % 5;
    std::u16string text;
    for (std::size_t i = 1; i + 1 < size; i += 2)
        text += static_cast<char16_t>(data[i] | (data[i + 1] << 8));

    tervane::LabelTokenList tokens;
    tervane::CLabelParser parser;
    if (parser.Initialise(kind) != 0)
        return 0;
    parser.Parse(text, tokens);

    std::u16string_view label(text);
    label = label.substr(0, label.find(u'\0'));
    if (!label.empty() && (label[0] == 0xFEFF || label[0] == 0xFFFE))
        label.remove_prefix(1); // read as a byte-order mark
    std::u16string joined;
    for (const tervane::LabelToken& token : tokens) {
        if (token.text.empty())
            __builtin_trap();
        joined += token.text;
    }
    if (label.substr(0, joined.size()) != joined)
        __builtin_trap();
    // The String grammar takes any text whole.
    if (kind == 1 && joined.size() != label.size())
        __builtin_trap();
    return 0;
}
