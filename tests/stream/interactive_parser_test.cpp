// The filter stage between a producer and a next stage: what the next stage
// receives for each event, and what the stage answers.
#include "stream/interactive_parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/com/error_info.h"
#include "platform/pe/resource_name_text.h"

namespace tervane {
namespace {

std::string Utf8(std::u16string_view text) {
    return pe::Utf16ToUtf8(text);
}

class FakeTag : public ComObjectRoot, public DispatchWithoutTypeInfo<ITag> {
public:
    static InterfaceMap<FakeTag> Interfaces() {
        static const InterfaceEntry<FakeTag> map[] = {Entry<FakeTag, ITag>(),
                                                      Entry<FakeTag, IDispatch, ITag>()};
        return map;
    }
    HRESULT get_TagText(BSTR* out) override { return Copy(text, out); }
    HRESULT put_TagText(BSTR in) override { return Keep(text, in); }
    HRESULT get_TagName(BSTR* out) override { return Copy(name, out); }
    HRESULT put_TagName(BSTR in) override { return Keep(name, in); }
    HRESULT get_EndTag(LONG* v) override { return (*v = end, S_OK); }
    HRESULT put_EndTag(LONG v) override { return (end = v, S_OK); }
    HRESULT get_StartTag(LONG* v) override { return (*v = start, S_OK); }
    HRESULT put_StartTag(LONG v) override { return (start = v, S_OK); }
    HRESULT get_Inline(LONG* v) override { return (*v = inlineMark, S_OK); }
    HRESULT put_Inline(LONG v) override { return (inlineMark = v, S_OK); }

    static HRESULT Copy(const std::u16string& from, BSTR* out) {
        *out = SysAllocStringLen(from.data(), static_cast<UINT>(from.size()));
        return S_OK;
    }
    static HRESULT Keep(std::u16string& to, BSTR in) {
        to.assign(in ? in : u"", SysStringLen(in));
        return S_OK;
    }
    std::u16string text, name;
    LONG start = 0, end = 0, inlineMark = 0;
};

class FakeProperty : public ComObjectRoot, public DispatchWithoutTypeInfo<IProperty> {
public:
    static InterfaceMap<FakeProperty> Interfaces() {
        static const InterfaceEntry<FakeProperty> map[] = {
            Entry<FakeProperty, IProperty>(), Entry<FakeProperty, IDispatch, IProperty>()};
        return map;
    }
    HRESULT get_Name(BSTR* out) override { return nameFails ? E_FAIL : FakeTag::Copy(name, out); }
    HRESULT put_Name(BSTR in) override { return FakeTag::Keep(name, in); }
    HRESULT get_Value(BSTR* out) override { return FakeTag::Copy(value, out); }
    HRESULT put_Value(BSTR in) override { return FakeTag::Keep(value, in); }
    std::u16string name, value;
    bool nameFails = false;
};

// Records each event as a line; answers every call with answer.
class Next : public ComObjectRoot, public DispatchWithoutTypeInfo<IEvents> {
public:
    static InterfaceMap<Next> Interfaces() {
        static const InterfaceEntry<Next> map[] = {Entry<Next, IEvents>(),
                                                   Entry<Next, IDispatch, IEvents>()};
        return map;
    }
    HRESULT raw_Property(IProperty* p) override {
        auto* property = static_cast<FakeProperty*>(p);
        return Log("Property " + Utf8(property->name) + "=" + Utf8(property->value));
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

class Host : public ComObjectRoot, public DispatchWithoutTypeInfo<IFilterHost> {
public:
    static InterfaceMap<Host> Interfaces() {
        static const InterfaceEntry<Host> map[] = {Entry<Host, IFilterHost>(),
                                                   Entry<Host, IDispatch, IFilterHost>()};
        return map;
    }
    HRESULT raw_Progress(LONG) override { return S_OK; }
    HRESULT raw_Pump(LONG_PTR cookie) override {
        pumped.push_back(cookie);
        return E_FAIL;
    }
    std::vector<LONG_PTR> pumped;
};

template <typename T> ComPtr<ComObject<T>> Make() {
    ComPtr<ComObject<T>> object;
    EXPECT_EQ(ComObject<T>::Create(object.Receive()), S_OK);
    return object;
}

// A stage wired in front of a recording next stage, as a host wires a chain.
struct Chain {
    Chain() {
        ComPtr<IFilterComponent> component;
        EXPECT_EQ(stage.As(component), S_OK);
        EXPECT_EQ(
            component->Initialize(nullptr, nullptr, 0, host.get(), next.get(), events.Receive()),
            S_OK);
    }
    ComPtr<ComObject<Host>> host = Make<Host>();
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
        {u"<separator/>", 0, 0, 0, {"<separator/>|separator|000"}},
        {u"<separator>", 1, 0, 0, {"<separator>|separator|000"}},
        {u"<unknown>", 1, 0, 0, {"<unknown>|<unknown>|100"}},
        {u"%s%d", 0, 0, 1, {"%s|%s|001", "%d|%d|001"}},
        {u"\\n+", 0, 0, 1, {"\\n|\\n|001", "+|+|001"}},
        {u"&&", 0, 0, 1, {"&|&|001", "&|&|001"}},
        {u"&", 0, 0, 1, {"&|&|001"}},
        {u"x%s\\t", 0, 0, 1, {"x|x|001", "%s|%s|001", "\\t|\\t|001"}},
        {u"%-5.2f", 0, 0, 1, {"%-5.2f|%-5.2f|001"}},
        {u"", 0, 0, 1, {"||001"}},
        // An inline mark on an opening tag: not cut.
        {u"%s%d", 1, 0, 1, {"%s%d|%s%d|101"}},
        // The separator's start mark goes first, so an inline one is then cut.
        {u"a&separator", 1, 0, 1, {"a|a|001", "&separator|&separator|001"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(Utf8(c.text));
        Chain chain;
        auto tag = Make<FakeTag>();
        tag->text = c.text;
        tag->name = u"given";
        tag->start = c.start;
        tag->end = c.end;
        tag->inlineMark = c.inlineMark;
        EXPECT_EQ(chain.events->raw_Tag(tag.get()), S_OK);
        EXPECT_EQ(chain.next->lines, c.out);
    }
}

TEST(InteractiveParser, EveryEventGoesOnInOrderWhateverTheNextStageAnswers) {
    for (HRESULT answer : {S_OK, E_FAIL}) {
        Chain chain;
        chain.next->answer = answer;
        auto tag = Make<FakeTag>();
        tag->text = u"<caption>";
        tag->start = 1;
        auto property = Make<FakeProperty>();
        property->name = u"Cursor Position";
        property->value = u"12";
        IEvents* e = chain.events.get();
        EXPECT_EQ(e->raw_StartOfInput(nullptr), S_OK);
        EXPECT_EQ(e->raw_StartOfSegment(nullptr), S_OK);
        EXPECT_EQ(e->raw_Text(nullptr), S_OK);
        EXPECT_EQ(e->raw_Tag(tag.get()), S_OK);
        EXPECT_EQ(e->raw_EndOfSegment(), S_OK);
        EXPECT_EQ(e->raw_Property(property.get()), S_OK);
        EXPECT_EQ(e->raw_EndOfInput(), S_OK);
        EXPECT_EQ(chain.next->lines,
                  (std::vector<std::string>{"StartOfInput", "StartOfSegment", "Text",
                                            "<caption>|caption|100", "EndOfSegment",
                                            "Property Cursor Position=12", "EndOfInput"}));
    }
}

TEST(InteractiveParser, PropertiesAndNullItems) {
    struct Case {
        std::u16string name;
        bool nameFails;
        HRESULT result;
        std::vector<std::string> out;
    };
    const Case cases[] = {
        {u"SrcColorChangeEnabled", false, S_OK, {"Property SrcColorChangeEnabled=No"}},
        {u"SrcColorChangeEnabledForTargets",
         false,
         S_OK,
         {"Property SrcColorChangeEnabledForTargets=No"}},
        {u"SrcColorChange", false, S_OK, {"Property SrcColorChange=Yes"}},
        {u"Cursor Position", false, S_OK, {"Property Cursor Position=Yes"}},
        {u"SrcColorChangeEnabled", true, E_FAIL, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(Utf8(c.name));
        Chain chain;
        auto property = Make<FakeProperty>();
        property->name = c.name;
        property->value = u"Yes";
        property->nameFails = c.nameFails;
        EXPECT_EQ(chain.events->raw_Property(property.get()), c.result);
        EXPECT_EQ(chain.next->lines, c.out);
    }
    Chain chain;
    EXPECT_EQ(chain.events->raw_Property(nullptr), E_POINTER);
    EXPECT_EQ(chain.events->raw_Tag(nullptr), E_POINTER);
    EXPECT_TRUE(chain.next->lines.empty());
}

TEST(InteractiveParser, RunPumpsTheHostAndTheStageIsItsOwnEvents) {
    Chain chain;
    ComPtr<IFilterComponent> component;
    ASSERT_EQ(chain.stage.As(component), S_OK);
    EXPECT_EQ(component->raw_Run(42), S_OK);
    EXPECT_EQ(chain.host->pumped, std::vector<LONG_PTR>{42});

    ComPtr<IEvents> events;
    ComPtr<IDispatch> dispatch;
    ComPtr<ISupportErrorInfo> errors;
    EXPECT_EQ(chain.stage.As(events), S_OK);
    EXPECT_EQ(events, chain.events);
    EXPECT_EQ(chain.stage.As(dispatch), S_OK);
    EXPECT_EQ(static_cast<IUnknown*>(dispatch.get()), static_cast<IUnknown*>(events.get()));
    EXPECT_EQ(chain.stage.As(errors), E_NOINTERFACE);
}

} // namespace
} // namespace tervane
