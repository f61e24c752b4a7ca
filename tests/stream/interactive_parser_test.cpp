// The filter stage between a producer and a recording next stage: what the
// next stage receives for each event, and what the stage answers.
#include "stream/interactive_parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/pe/resource_name_text.h"

namespace tervane {
namespace {

std::string Utf8(std::u16string_view text) {
    return pe::Utf16ToUtf8(text);
}
HRESULT Get(const std::u16string& from, BSTR* out) {
    *out = SysAllocStringLen(from.data(), static_cast<UINT>(from.size()));
    return S_OK;
}
HRESULT Set(std::u16string& to, BSTR in) {
    to.assign(in ? in : u"", SysStringLen(in));
    return S_OK;
}

struct FakeTag : ComObjectRoot, DispatchWithoutTypeInfo<ITag> {
    static InterfaceMap<FakeTag> Interfaces() {
        static const InterfaceEntry<FakeTag> map[] = {Entry<FakeTag, ITag>()};
        return map;
    }
    HRESULT get_TagText(BSTR* out) override { return Get(text, out); }
    HRESULT put_TagText(BSTR in) override { return Set(text, in); }
    HRESULT get_TagName(BSTR* out) override { return Get(name, out); }
    HRESULT put_TagName(BSTR in) override { return Set(name, in); }
    HRESULT get_EndTag(LONG* v) override { return *v = end, S_OK; }
    HRESULT put_EndTag(LONG v) override { return end = v, S_OK; }
    HRESULT get_StartTag(LONG* v) override { return *v = start, S_OK; }
    HRESULT put_StartTag(LONG v) override { return start = v, S_OK; }
    HRESULT get_Inline(LONG* v) override { return *v = inlineMark, S_OK; }
    HRESULT put_Inline(LONG v) override { return inlineMark = v, S_OK; }
    std::u16string text, name = u"given";
    LONG start = 0, end = 0, inlineMark = 0;
};

struct FakeProperty : ComObjectRoot, DispatchWithoutTypeInfo<IProperty> {
    static InterfaceMap<FakeProperty> Interfaces() {
        static const InterfaceEntry<FakeProperty> map[] = {Entry<FakeProperty, IProperty>()};
        return map;
    }
    HRESULT get_Name(BSTR* out) override { return nameFails ? E_FAIL : Get(name, out); }
    HRESULT put_Name(BSTR in) override { return Set(name, in); }
    HRESULT get_Value(BSTR* out) override { return Get(value, out); }
    HRESULT put_Value(BSTR in) override { return Set(value, in); }
    std::u16string name, value = u"Yes";
    bool nameFails = false;
};

// Records each event as a line and answers every call with answer.
struct Next : ComObjectRoot, DispatchWithoutTypeInfo<IEvents> {
    static InterfaceMap<Next> Interfaces() {
        static const InterfaceEntry<Next> map[] = {Entry<Next, IEvents>()};
        return map;
    }
    HRESULT raw_Property(IProperty* p) override {
        auto* property = static_cast<FakeProperty*>(p);
        return Log(Utf8(property->name) + "=" + Utf8(property->value));
    }
    HRESULT raw_StartOfInput(IDocumentInfo*) override { return Log("StartOfInput"); }
    HRESULT raw_EndOfInput() override { return Log("EndOfInput"); }
    HRESULT raw_StartOfSegment(IUnknown*) override { return Log("StartOfSegment"); }
    HRESULT raw_EndOfSegment() override { return Log("EndOfSegment"); }
    HRESULT raw_Text(IText*) override { return Log("Text"); }
    HRESULT raw_Tag(ITag* t) override {
        auto* tag = static_cast<FakeTag*>(t);
        return Log(Utf8(tag->text) + "|" + Utf8(tag->name) + "|" + std::to_string(tag->start) +
                   std::to_string(tag->end) + std::to_string(tag->inlineMark));
    }
    HRESULT Log(std::string line) {
        lines.push_back(std::move(line));
        return answer;
    }
    std::vector<std::string> lines;
    HRESULT answer = S_OK;
};

template <typename T> ComPtr<ComObject<T>> Make() {
    ComPtr<ComObject<T>> object;
    EXPECT_EQ(ComObject<T>::Create(object.Receive()), S_OK);
    return object;
}

// The stage wired in front of a recording next stage, as a host wires a chain.
struct Chain {
    Chain() {
        ComPtr<IFilterComponent> component;
        EXPECT_EQ(stage.As(component), S_OK);
        EXPECT_EQ(component->Initialize(nullptr, nullptr, 0, nullptr, next.get(), events.Receive()),
                  S_OK);
    }
    ComPtr<ComObject<Next>> next = Make<Next>();
    ComPtr<ComObject<TervaneInteractiveParser>> stage = Make<TervaneInteractiveParser>();
    ComPtr<IEvents> events;
};

TEST(InteractiveParser, TagsReachTheNextStageRenamedOrCut) {
    struct Case {
        std::u16string text;
        LONG start, end, inlineMark;
        std::vector<std::string> out; // text|name|start end inline
    };
    const Case cases[] = {
        {u"<menu id=\"7\">", 1, 0, 0, {"<menu id=\"7\">|menu|100"}},
        {u"<menus>", 1, 0, 0, {"<menus>|menus|100"}},
        {u"</dialogs>", 0, 1, 0, {"</dialogs>|dialogs|010"}},
        {u"<radiobutton id=\"3\">", 1, 0, 0, {"<radiobutton id=\"3\">|radiobutton|100"}},
        {u"<items>", 1, 0, 0, {"<items>|items|100"}},
        {u"<string id=\"5\">", 1, 0, 0, {"<string id=\"5\">|string|100"}},
        {u"</legaltrademarks>", 0, 1, 0, {"</legaltrademarks>|legaltrademarks|010"}},
        {u"<separator>", 1, 0, 0, {"<separator>|separator|000"}},
        {u"<unknown>", 1, 0, 0, {"<unknown>|<unknown>|100"}},
        {u"%s%d", 0, 0, 1, {"%s|%s|001", "%d|%d|001"}},
        {u"\\n+", 0, 0, 1, {"\\n|\\n|001", "+|+|001"}},
        {u"&&", 0, 0, 1, {"&|&|001", "&|&|001"}},
        {u"x%s\\t", 0, 0, 1, {"x|x|001", "%s|%s|001", "\\t|\\t|001"}},
        {u"%-5.2f", 0, 0, 1, {"%-5.2f|%-5.2f|001"}},
        {u"", 0, 0, 1, {"||001"}},
        {u"%s%d", 1, 0, 1, {"%s%d|%s%d|101"}}, // an opening tag is not cut
        // The separator's start mark goes first, so an inline one is then cut.
        {u"a&separator", 1, 0, 1, {"a|a|001", "&separator|&separator|001"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(Utf8(c.text));
        Chain chain;
        auto tag = Make<FakeTag>();
        tag->text = c.text;
        tag->start = c.start;
        tag->end = c.end;
        tag->inlineMark = c.inlineMark;
        EXPECT_EQ(chain.events->raw_Tag(tag.get()), S_OK);
        EXPECT_EQ(chain.next->lines, c.out);
    }
}

// Every event in its order, S_OK whatever the next stage answers; a property
// changes only when it is the colour change; a failing getter stops it.
TEST(InteractiveParser, OtherEventsAndAnswers) {
    for (HRESULT answer : {S_OK, E_FAIL}) {
        Chain chain;
        chain.next->answer = answer;
        auto tag = Make<FakeTag>();
        tag->text = u"<caption>";
        std::vector<ComPtr<ComObject<FakeProperty>>> properties;
        for (const char16_t* name : {u"SrcColorChangeEnabled", u"SrcColorChangeEnabledX",
                                     u"SrcColorChange", u"Cursor Position"}) {
            properties.push_back(Make<FakeProperty>());
            properties.back()->name = name;
        }
        IEvents* e = chain.events.get();
        EXPECT_EQ(e->raw_StartOfInput(nullptr), S_OK);
        EXPECT_EQ(e->raw_StartOfSegment(nullptr), S_OK);
        EXPECT_EQ(e->raw_Text(nullptr), S_OK);
        EXPECT_EQ(e->raw_Tag(tag.get()), S_OK);
        EXPECT_EQ(e->raw_EndOfSegment(), S_OK);
        for (const auto& property : properties)
            EXPECT_EQ(e->raw_Property(property.get()), S_OK);
        properties.front()->nameFails = true;
        EXPECT_EQ(e->raw_Property(properties.front().get()), E_FAIL);
        EXPECT_EQ(e->raw_Property(nullptr), E_POINTER);
        EXPECT_EQ(e->raw_Tag(nullptr), E_POINTER);
        EXPECT_EQ(e->raw_EndOfInput(), S_OK);
        EXPECT_EQ(chain.next->lines,
                  (std::vector<std::string>{
                      "StartOfInput", "StartOfSegment", "Text", "<caption>|caption|000",
                      "EndOfSegment", "SrcColorChangeEnabled=No", "SrcColorChangeEnabledX=No",
                      "SrcColorChange=Yes", "Cursor Position=Yes", "EndOfInput"}));
    }
}

} // namespace
} // namespace tervane
