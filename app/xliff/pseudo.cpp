#include "app/xliff/pseudo.h"

#include <iterator>

namespace tervane::xliff {

namespace {

// Each in code page 1252 and ISO 8859-1 (Š, Ž and their small letters in
// 1252 only), so that a list's entries survive the ANSI conversion.
char16_t LookAlike(char16_t c) {
    static constexpr char16_t kSmall[] = u"\u00e1b\u00e7\u00f0\u00e9fgh\u00edjkl"
                                         u"m\u00f1\u00f6pqr\u0161t\u00fcvwx\u00fd\u017e";
    static constexpr char16_t kCapital[] = u"\u00c5B\u00c7\u00d0\u00c9FGH\u00ceJKL"
                                           u"M\u00d1\u00d8PQR\u0160T\u00dbVWX\u00dd\u017d";
    static_assert(std::size(kSmall) == 27 && std::size(kCapital) == 27);
    if (c >= u'a' && c <= u'z')
        return kSmall[c - u'a'];
    if (c >= u'A' && c <= u'Z')
        return kCapital[c - u'A'];
    return c;
}

} // namespace

Content Pseudo(const Content& source, int expandPercent) {
    Content target;
    std::size_t letters = 0;
    bool any = false;
    for (const Piece& piece : source) {
        if (piece.placeholder) {
            target.push_back(piece);
            any = true;
            continue;
        }
        std::u16string text;
        const std::u16string& run = piece.text;
        for (std::size_t i = 0; i < run.size(); ++i) {
            char16_t c = run[i];
            text += LookAlike(c);
            any = true;
            ++letters;
            // A hotkey (or a doubled &) keeps the character behind the mark.
            if (c == u'&' && i + 1 < run.size()) {
                text += run[++i];
                ++letters;
            }
        }
        target.push_back({false, std::move(text)});
    }
    if (!any)
        return target;
    std::size_t grow = (letters * static_cast<std::size_t>(expandPercent) + 99) / 100;
    std::u16string tail = u" ";
    for (std::size_t i = 1; i < grow; ++i)
        tail += u'~';
    if (grow == 0)
        tail.clear();
    tail += u']';
    if (target.front().placeholder)
        target.insert(target.begin(), {false, u"["});
    else
        target.front().text.insert(0, u"[");
    if (target.back().placeholder)
        target.push_back({false, tail});
    else
        target.back().text += tail;
    return target;
}

void PseudoLocalise(Document& document, int expandPercent) {
    for (Group& group : document.groups) {
        for (Unit& unit : group.units) {
            if (!unit.translate)
                continue;
            unit.target = Pseudo(unit.source, expandPercent);
            unit.state = "needs-review-translation";
        }
    }
}

void CopySourceToTarget(Document& document) {
    for (Group& group : document.groups) {
        for (Unit& unit : group.units) {
            if (!unit.translate)
                continue;
            unit.target = unit.source;
            unit.state = "needs-translation";
        }
    }
}

} // namespace tervane::xliff
