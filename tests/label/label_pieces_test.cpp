#include "label/pieces/tag_predicates.h"

#include "label/pieces/label_piece.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

namespace tervane {
namespace {

using Predicate = bool (*)(const TagDescriptor&);

// The predicates with word lists or rules; a one-word one is IsOpen or IsClose.
const std::map<std::string, Predicate>& Predicates() {
    static const std::map<std::string, Predicate> all = {
        {"ResourceOpen", IsResourceOpen},
        {"ResourceClose", IsResourceClose},
        {"DialogOpen", IsDialogOpen},
        {"VersionInfoEntryOpen", IsVersionInfoEntryOpen},
        {"NamedResourceOpen", IsNamedResourceOpen},
        {"SegmentOpen", IsSegmentOpen},
        {"SegmentClose", IsSegmentClose},
        {"ControlTextOpen", IsControlTextOpen},
        {"ControlTextClose", IsControlTextClose},
        {"ItemOpen", IsItemOpen},
        {"ItemClose", IsItemClose},
        {"HasId", HasIdAttribute},
        {"Separator", IsSeparatorMark},
        {"Numbered", IsNumberedPlaceholder},
        {"Fixed", IsFixedInlineTag},
        {"Ordered", IsOrderedTag},
    };
    return all;
}

enum class Kind { Open, Close, Empty, Inline };

std::unique_ptr<CTagLabelPiece> Make(Kind kind, const std::string& text) {
    switch (kind) {
    case Kind::Open:
        return MakeOpenTag("t", text);
    case Kind::Close:
        return MakeCloseTag("t", text);
    case Kind::Empty:
        return MakeEmptyTag("t", text);
    case Kind::Inline:
        break;
    }
    return MakeInlineTag(std::u16string(text.begin(), text.end()));
}

struct Row {
    Kind kind;
    std::string text;
    std::set<std::string> holds; // every other predicate must be false
    int kindOfOpen = 0;
    int kindOfClose = 0;
};

TEST(TagPredicates, EveryPredicateOnEveryKindOfTag) {
    const Row rows[] = {
        {Kind::Open, "<stringtable>", {"ResourceOpen", "Ordered"}, 3},
        // "string" is in </stringtable>: it ends a segment too.
        {Kind::Close, "</stringtable>", {"ResourceClose", "SegmentClose", "Ordered"}, 0, 3},
        {Kind::Open,
         "<string id=\"97\">",
         {"NamedResourceOpen", "SegmentOpen", "HasId", "Ordered"}},
        {Kind::Open, "<dialogs>", {"DialogOpen", "ResourceOpen", "Ordered"}, 2},
        {Kind::Close, "</dialogs>", {"ResourceClose", "Ordered"}, 0, 2},
        // "item" is in <items>, which is tested for "item" first: a menu's kind.
        {Kind::Open, "<items>", {"Ordered"}, 1},
        {Kind::Open,
         "<item id=\"5\">",
         {"ItemOpen", "SegmentOpen", "SegmentClose", "ControlTextOpen", "HasId", "Ordered"},
         1},
        {Kind::Close,
         "</item>",
         {"ItemClose", "SegmentClose", "ControlTextClose", "Ordered"},
         0,
         1},
        {Kind::Open, "<menus>", {"ResourceOpen", "Ordered"}, 1},
        {Kind::Open,
         "<versioninfo>",
         {"VersionInfoEntryOpen", "NamedResourceOpen", "ResourceOpen", "Ordered"},
         4},
        {Kind::Open, "<legalcopyright>", {"VersionInfoEntryOpen", "SegmentOpen", "Ordered"}},
        {Kind::Empty, "<separator/>", {"Ordered"}},
        {Kind::Inline, "%10", {"Numbered"}},
        {Kind::Inline, "%1d", {"Ordered"}}, // read from the end, the number starts with d
        {Kind::Inline, "\\n", {"Fixed"}},
        {Kind::Inline, ",", {"Fixed", "Separator"}},
        {Kind::Inline, "\\t", {"Ordered"}},
        {Kind::Inline, " id=\"1\"", {"Ordered"}}, // the blank must come behind the first character
        {Kind::Open, "x id=\"1\"", {"HasId", "Ordered"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.text);
        const auto piece = Make(row.kind, row.text);
        for (const auto& [name, predicate] : Predicates()) {
            EXPECT_EQ(predicate(piece->tag), row.holds.count(name) == 1) << name;
        }
        for (const auto& name : row.holds)
            EXPECT_EQ(Predicates().count(name), 1u) << name;
        EXPECT_EQ(ResourceKindOfOpen(piece->tag), row.kindOfOpen);
        EXPECT_EQ(ResourceKindOfClose(piece->tag), row.kindOfClose);
    }
}

TEST(TagPredicates, IdAttribute) {
    const std::pair<std::string, std::string> ids[] = {
        {"<dialog id=\"A\">", "A"},
        {"<menu id=\"\xC3\x84rger\">", "\xC3\x84rger"}, // back to narrow text as it came
        {"<item id=\"5>", ""},
    };
    for (const auto& [text, id] : ids) {
        EXPECT_EQ(GetIdAttribute(MakeOpenTag("t", text)->tag), id) << text;
    }
}

// Narrow names and tag texts are widened with the process's code page, UTF-8.
TEST(LabelPieces, NarrowNamesAndTagTextsAreWidened) {
    const auto open = MakeOpenTag("\xC3\xA9t\xC3\xA9", "<menu id=\"\xE2\x82\xAC\">");
    EXPECT_EQ(open->tag.name, u"\u00E9t\u00E9");
    EXPECT_EQ(open->tag.tagText, u"<menu id=\"\u20AC\">");
    // A byte that is no UTF-8 becomes the replacement character.
    EXPECT_EQ(MakeCloseTag("menu", "</m\xFFnu>")->tag.tagText, u"</m\uFFFDnu>");
}

// Texts of every length about the largest pooled block, made, shared, freed
// and made again in the freed blocks: no text reaches into another's block.
TEST(LabelPieces, TextsOfEveryLengthKeepTheirUnits) {
    const auto text = [](std::size_t length, char16_t seed) {
        std::u16string units(length, u'\0');
        for (std::size_t i = 0; i < length; ++i)
            units[i] = static_cast<char16_t>(seed + i % 7);
        return units;
    };
    CLabelPieceList pieces;
    for (char16_t round : {u'a', u'k'}) {
        for (std::size_t length = 0; length < 140; ++length) {
            pieces.push_back(MakeText(text(length, round)));
            pieces.push_back(MakeInlineTag(text(length, static_cast<char16_t>(round + 1))));
            pieces.push_back(ClonePiece(*pieces.back()));
        }
        if (round == u'a') // every other one freed, for the next round to reuse
            for (std::size_t at = 0; at < pieces.size(); at += 2)
                pieces[at].reset();
    }
    for (std::size_t at = 0; at < pieces.size(); ++at) {
        if (!pieces[at])
            continue;
        const std::size_t length = at / 3 % 140;
        const auto round = static_cast<char16_t>(at < 420 ? u'a' : u'k');
        if (const CTextLabelPiece* piece = TextOf(*pieces[at])) {
            EXPECT_EQ(piece->text.view(), text(length, round)) << at;
        } else {
            const TagDescriptor& tag = *TagOf(*pieces[at]);
            EXPECT_EQ(tag.tagText.view(), text(length, static_cast<char16_t>(round + 1))) << at;
            EXPECT_EQ(tag.name.view(), tag.tagText.view()) << at;
        }
    }
}

} // namespace
} // namespace tervane
