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
        {Kind::Open,
         "<versioninfo>",
         {"VersionInfoEntryOpen", "NamedResourceOpen", "ResourceOpen", "Ordered"},
         4},
        {Kind::Empty, "<separator/>", {"Ordered"}},
        {Kind::Inline, "%10", {"Numbered"}},
        {Kind::Inline, "%1d", {"Ordered"}}, // read from the end, the number starts with d
        {Kind::Inline, "\\n", {"Fixed"}},
        {Kind::Inline, ",", {"Fixed", "Separator"}},
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

} // namespace
} // namespace tervane
