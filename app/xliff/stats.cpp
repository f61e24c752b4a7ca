#include "app/xliff/stats.h"

#include <algorithm>
#include <cwctype>

namespace tervane::xliff {

namespace {

std::string KindOf(const std::string& id) {
    std::string prefix = id.substr(0, id.find('.'));
    if (prefix == "str")
        return "strings";
    if (prefix == "dlg")
        return "dialogs";
    if (prefix == "mnu")
        return "menus";
    if (prefix == "ver")
        return "versions";
    return prefix;
}

bool IsWordCharacter(char16_t c) {
    return std::iswalnum(static_cast<wint_t>(c)) != 0 ||
           (c >= 0xC0 && c != 0xD7 && c != 0xF7 && !(c >= 0x2000 && c <= 0x2BFF) &&
            !(c >= 0x3000 && c <= 0x303F));
}

void Add(Tally& tally, const Content& content) {
    ++tally.units;
    for (const Piece& piece : content) {
        if (piece.placeholder)
            continue;
        bool inWord = false;
        for (std::size_t i = 0; i < piece.text.size(); ++i) {
            char16_t c = piece.text[i];
            // A pair of surrogates is one character.
            if (!(c >= 0xDC00 && c <= 0xDFFF && i > 0 && piece.text[i - 1] >= 0xD800 &&
                  piece.text[i - 1] <= 0xDBFF))
                ++tally.characters;
            bool word = IsWordCharacter(c);
            if (word && !inWord)
                ++tally.words;
            inWord = word;
        }
    }
}

bool IsEmpty(const Content& content) {
    return std::all_of(content.begin(), content.end(),
                       [](const Piece& piece) { return piece.text.empty(); });
}

// A target with text that differs from its source, or one a translator has
// passed as it is (a state past translation).
bool IsTranslated(const Unit& unit) {
    if (!unit.target || IsEmpty(*unit.target))
        return false;
    if (*unit.target != unit.source)
        return true;
    return unit.state == "translated" || unit.state == "final" || unit.state == "signed-off" ||
           unit.state.rfind("needs-review", 0) == 0;
}

} // namespace

std::vector<KindStats> CountDocument(const Document& document) {
    std::vector<KindStats> kinds;
    KindStats total{"total", {}, {}, {}};
    for (const Group& group : document.groups) {
        for (const Unit& unit : group.units) {
            std::string kind = KindOf(unit.id);
            auto at = std::find_if(kinds.begin(), kinds.end(),
                                   [&](const KindStats& k) { return k.kind == kind; });
            if (at == kinds.end())
                at = kinds.insert(kinds.end(), KindStats{kind, {}, {}, {}});
            Tally KindStats::*column = !unit.translate      ? &KindStats::locked
                                       : IsTranslated(unit) ? &KindStats::translated
                                                            : &KindStats::untranslated;
            Add((*at).*column, unit.source);
            Add(total.*column, unit.source);
        }
    }
    kinds.push_back(total);
    return kinds;
}

} // namespace tervane::xliff
