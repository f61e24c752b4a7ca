#include <gtest/gtest.h>

#include "app/xliff/content.h"

namespace tervane::xliff {
namespace {

Event T(std::u16string text) {
    return Event::Text(std::move(text));
}
Event I(std::u16string text) {
    return Event::Inline(std::move(text));
}
Piece Text(std::u16string text) {
    return {false, std::move(text)};
}
Piece Ph(std::u16string code) {
    return {true, std::move(code)};
}

// Events of one segment, the unit's content, and the events that content
// gives back (adjacent texts joined).
struct ContentRow {
    const char* what;
    bool hotkeys;
    EventList events;
    Content content;
    EventList back;
};

class ContentRoads : public testing::TestWithParam<ContentRow> {};

TEST_P(ContentRoads, BothWays) {
    const ContentRow& row = GetParam();
    EXPECT_EQ(ToContent(row.events, row.hotkeys), row.content);
    EXPECT_EQ(ToEvents(row.content, row.hotkeys), row.back);
}

INSTANTIATE_TEST_SUITE_P(Rows, ContentRoads,
                         testing::Values(ContentRow{"menu hotkey",
                                                    true,
                                                    {I(u"&"), T(u"Open...")},
                                                    {Text(u"&Open...")},
                                                    {I(u"&"), T(u"Open...")}},
                                         ContentRow{"menu ampersand is doubled",
                                                    true,
                                                    {T(u"A&B 100%")},
                                                    {Text(u"A&&B 100%")},
                                                    {T(u"A&B 100%")}},
                                         ContentRow{"hotkey as the last piece",
                                                    true,
                                                    {T(u"abc"), I(u"&")},
                                                    {Text(u"abc&")},
                                                    {T(u"abc"), I(u"&")}},
                                         ContentRow{"string placeholders",
                                                    false,
                                                    {T(u"Save "), I(u"%s"), T(u"?")},
                                                    {Text(u"Save "), Ph(u"%s"), Text(u"?")},
                                                    {T(u"Save "), I(u"%s"), T(u"?")}},
                                         ContentRow{"placeholders in a row and at the edges",
                                                    false,
                                                    {I(u"%1"), I(u"\\n"), T(u"x"), I(u"%d")},
                                                    {Ph(u"%1"), Ph(u"\\n"), Text(u"x"), Ph(u"%d")},
                                                    {I(u"%1"), I(u"\\n"), T(u"x"), I(u"%d")}},
                                         ContentRow{"SS_NOPREFIX label: texts join, & stays single",
                                                    false,
                                                    {T(u"A"), T(u"&"), T(u"B")},
                                                    {Text(u"A&B")},
                                                    {T(u"A&B")}},
                                         ContentRow{"hotkey and placeholder",
                                                    true,
                                                    {T(u"Line "), I(u"\\n"), I(u"&"), T(u"Next")},
                                                    {Text(u"Line "), Ph(u"\\n"), Text(u"&Next")},
                                                    {T(u"Line "), I(u"\\n"), I(u"&"), T(u"Next")}},
                                         ContentRow{"nothing", true, {}, {}, {}}),
                         [](const testing::TestParamInfo<ContentRow>& info) {
                             return std::to_string(info.index);
                         });

// A translator's hotkey notation read back: && is one ampersand, a lone & the
// hotkey; without hotkeys every & is text.
TEST(ContentRoads, TranslatorsAmpersands) {
    const std::vector<std::tuple<std::u16string, bool, EventList>> rows = {
        {u"&&&x", true, {T(u"&"), I(u"&"), T(u"x")}},
        {u"R&&D &Go", true, {T(u"R&D "), I(u"&"), T(u"Go")}},
        {u"R&&D &Go", false, {T(u"R&&D &Go")}},
        {u"&", true, {I(u"&")}},
    };
    for (const auto& [text, hotkeys, events] : rows)
        EXPECT_EQ(ToEvents({Text(text)}, hotkeys), events) << std::string(text.begin(), text.end());
}

} // namespace
} // namespace tervane::xliff
