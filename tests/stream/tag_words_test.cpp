#include "label/pieces/tag_words.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace tervane {
namespace {

struct Word {
    std::u16string_view text;
    std::uint32_t bit;
};

const Word kWords[] = {
    {u"dialog", kWordDialog},     {u"combobox", kWordCombobox},
    {u"listbox", kWordListbox},   {u"groupbox", kWordGroupbox},
    {u"items", kWordItems},       {u"button", kWordButton},
    {u"label", kWordLabel},       {u"radiobutton", kWordRadiobutton},
    {u"checkbox", kWordCheckbox}, {u"caption", kWordCaption},
    {u"item", kWordItem},         {u"edit", kWordEdit},
    {u"menu", kWordMenu},         {u"menu id", kWordMenuId},
    {u"item id", kWordItemId},    {u"separator", kWordSeparator},
};

// The plain searches the walks make, one word after the other.
TagWords Searched(std::u16string_view text) {
    TagWords words;
    for (const Word& word : kWords) {
        const std::size_t first = text.find(word.text);
        if (first == std::u16string_view::npos)
            continue;
        words.found |= word.bit;
        if (first == 0)
            words.atStart |= word.bit;
        if (text.find(u"/" + std::u16string(word.text)) != std::u16string_view::npos)
            words.afterSlash |= word.bit;
    }
    return words;
}

void ExpectSameAsSearches(std::u16string_view text) {
    const TagWords found = FindTagWords(text);
    const TagWords searched = Searched(text);
    const std::string shown(text.begin(), text.end());
    const TagWords plain = FindTagWordsPlain(text);
    EXPECT_EQ(plain.found, found.found) << shown;
    EXPECT_EQ(plain.afterSlash, found.afterSlash) << shown;
    EXPECT_EQ(plain.atStart, found.atStart) << shown;
    // What a piece keeps gives the same answers, or none at all.
    const std::uint32_t packed = PackTagWords(found);
    EXPECT_EQ(packed == kWordsUnknown, found.atStart != 0) << shown;
    EXPECT_EQ(UnpackTagWords(packed, text).found, found.found) << shown;
    EXPECT_EQ(UnpackTagWords(packed, text).afterSlash, found.afterSlash) << shown;
    EXPECT_EQ(found.found, searched.found) << shown;
    EXPECT_EQ(found.afterSlash, searched.afterSlash) << shown;
    // A word at the start and again later counts as at the start, as a
    // search that stops at the first match sees it.
    for (const Word& word : kWords)
        EXPECT_EQ(found.FirstAfterStart(word.bit), searched.FirstAfterStart(word.bit))
            << shown << " / " << std::string(word.text.begin(), word.text.end());
    const TagWords kept = UnpackTagWords(PackTagWords(found), text);
    for (const Word& word : kWords)
        EXPECT_EQ(kept.FirstAfterStart(word.bit), found.FirstAfterStart(word.bit)) << shown;
}

TEST(TagWords, AsPlainSearchesFindThem) {
    // Texts glued from pieces of the words, so that words overlap, break off
    // at the end and stand behind slashes in every way.
    ExpectSameAsSearches(u"");
    // The last three hold a letter's byte under a high one: not the letter.
    const std::u16string_view all = u"/|<|>| |id|item|s|menu|me|nu|box|combo|list|group|check|"
                                    u"radio|button|label|lab|dialog|dia|edit|ed|caption|cap|"
                                    u"separator|sep|\"|=|x|i|m|e|\u00e9|\u8062|\uff64|\u0169";
    std::vector<std::u16string_view> fragments;
    for (std::size_t at = 0, bar; at <= all.size(); at = bar + 1) {
        bar = std::min(all.find(u'|', at), all.size());
        fragments.push_back(all.substr(at, bar - at));
    }
    std::mt19937 random(20240607);
    std::uniform_int_distribution<std::size_t> pick(0, fragments.size() - 1);
    std::uniform_int_distribution<int> length(0, 8);
    for (int round = 0; round < 5000; ++round) {
        std::u16string text;
        for (int n = length(random); n > 0; --n)
            text += fragments[pick(random)];
        ExpectSameAsSearches(text);
    }
}

// Every word behind a slash fills all 32 bits: kept as unknown, searched again.
TEST(TagWords, AllWordsBehindSlashesAreSearchedAgain) {
    std::u16string text = u"<";
    for (const Word& word : kWords)
        text += u"/" + std::u16string(word.text);
    const TagWords found = FindTagWords(text);
    EXPECT_EQ(PackTagWords(found), kWordsUnknown);
    EXPECT_EQ(UnpackTagWords(kWordsUnknown, text).afterSlash, found.afterSlash);
}

} // namespace
} // namespace tervane
