// Sending tags and texts through items made by class: what reaches the item
// and the sink, in which order, and what a failure leaves behind.
#include "stream/event_items.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/items.h"
#include "platform/com/class_objects.h"
#include "platform/com/com_ptr.h"
#include "platform/com/component.h"
#include "platform/com/error_info.h"
#include "platform/pe/resource_name_text.h"

namespace tervane {
namespace {

// Every call an item received, as "name=value", and whether items are alive.
std::vector<std::string> g_calls;
int g_alive = 0;

std::string Narrow(BSTR text) {
    return pe::Utf16ToUtf8(std::u16string_view(text, SysStringLen(text)));
}

class LoggedTag : public ComObjectRoot, public DispatchWithoutTypeInfo<ITag> {
public:
    static InterfaceMap<LoggedTag> Interfaces() {
        static const InterfaceEntry<LoggedTag> map[] = {Entry<LoggedTag, ITag>(),
                                                        Entry<LoggedTag, IDispatch, ITag>()};
        return map;
    }
    LoggedTag() { ++g_alive; }
    ~LoggedTag() { --g_alive; }
    HRESULT get_TagText(BSTR*) override { return E_NOTIMPL; }
    HRESULT put_TagText(BSTR text) override { return Log("TagText", Narrow(text)); }
    HRESULT get_TagName(BSTR*) override { return E_NOTIMPL; }
    HRESULT put_TagName(BSTR name) override { return Log("TagName", Narrow(name)); }
    HRESULT get_EndTag(LONG*) override { return E_NOTIMPL; }
    HRESULT put_EndTag(LONG value) override { return Log("EndTag", std::to_string(value)); }
    HRESULT get_StartTag(LONG*) override { return E_NOTIMPL; }
    HRESULT put_StartTag(LONG value) override { return Log("StartTag", std::to_string(value)); }
    HRESULT get_Inline(LONG*) override { return E_NOTIMPL; }
    HRESULT put_Inline(LONG value) override { return Log("Inline", std::to_string(value)); }

private:
    static HRESULT Log(const char* name, const std::string& value) {
        g_calls.push_back(std::string(name) + "=" + value);
        return S_OK;
    }
};

// Keeps the whole text of each item it is sent, embedded zeros included.
class TextKeeper : public ComObjectRoot, public DispatchWithoutTypeInfo<IText> {
public:
    static InterfaceMap<TextKeeper> Interfaces() {
        static const InterfaceEntry<TextKeeper> map[] = {Entry<TextKeeper, IText>(),
                                                         Entry<TextKeeper, IDispatch, IText>()};
        return map;
    }
    TextKeeper() { ++g_alive; }
    ~TextKeeper() { --g_alive; }
    HRESULT get_Text(BSTR*) override { return E_NOTIMPL; }
    HRESULT put_Text(BSTR text) override {
        // The setter's string must be a whole automation string: its length
        // prefix and its terminator.
        kept.emplace_back(text ? text : u"", SysStringLen(text));
        terminated.push_back(text != nullptr && text[SysStringLen(text)] == u'\0');
        return S_OK;
    }
    static inline std::vector<std::u16string> kept;
    static inline std::vector<bool> terminated;
};

class Sink : public ComObjectRoot, public DispatchWithoutTypeInfo<IEvents> {
public:
    static InterfaceMap<Sink> Interfaces() {
        static const InterfaceEntry<Sink> map[] = {Entry<Sink, IEvents>(),
                                                   Entry<Sink, IDispatch, IEvents>()};
        return map;
    }
    HRESULT raw_Property(IProperty*) override { return S_OK; }
    HRESULT raw_StartOfInput(IDocumentInfo*) override { return S_OK; }
    HRESULT raw_EndOfInput() override { return S_OK; }
    HRESULT raw_StartOfSegment(IUnknown*) override { return S_OK; }
    HRESULT raw_EndOfSegment() override { return S_OK; }
    HRESULT raw_Text(IText*) override {
        g_calls.push_back("raw_Text");
        return answer;
    }
    HRESULT raw_Tag(ITag*) override {
        g_calls.push_back("raw_Tag");
        return answer;
    }
    HRESULT answer = S_OK;
};

// Registers a class for the life of one test.
class Registered {
public:
    Registered(const CLSID& clsid, IClassFactory* factory) {
        EXPECT_EQ(CoRegisterClassObject(clsid, factory, CLSCTX_ALL, 0, &cookie_), S_OK);
    }
    ~Registered() { CoRevokeClassObject(cookie_); }

private:
    DWORD cookie_ = 0;
};

std::u16string LastErrorText() {
    ComPtr<IErrorInfo> info;
    BSTR description = nullptr;
    if (GetErrorInfo(0, info.Receive()) != S_OK || info->GetDescription(&description) != S_OK)
        return u"(none)";
    return Bstr::Attach(description).str();
}

class EventItems : public testing::Test {
protected:
    void SetUp() override {
        g_calls.clear();
        TextKeeper::kept.clear();
        TextKeeper::terminated.clear();
        ComObject<Sink>::Create(sink_.Receive());
    }
    ComPtr<ComObject<Sink>> sink_;
};

TEST_F(EventItems, TagPropertiesAreSetInOrderBeforeTheSinkSeesTheItem) {
    Registered tag(CLSID_Tag, CachedClassFactory<LoggedTag>());
    const TagDescriptor opening{u"string", u"<string id=\"7\">", 1, 0, 0, 1, 0};
    ASSERT_EQ(SendTagEvent(sink_.get(), opening), S_OK);
    const std::vector<std::string> expected = {"EndTag=0",   "TagText=<string id=\"7\">",
                                               "StartTag=1", "TagName=string",
                                               "Inline=0",   "raw_Tag"};
    EXPECT_EQ(g_calls, expected);
    EXPECT_EQ(g_alive, 0) << "every item is released";
}

TEST_F(EventItems, TextsArriveWholeWhateverCameBefore) {
    Registered text(CLSID_Text, CachedClassFactory<TextKeeper>());
    // Longer and shorter texts in turn, so that a string refilled in place
    // must not keep a length or a unit of the one before.
    const std::u16string texts[] = {std::u16string(200, u'x'), u"ab", std::u16string(u"nul\0in", 6),
                                    u"", u"z"};
    for (const std::u16string& value : texts)
        EXPECT_EQ(SendTextEvent(sink_.get(), value), S_OK);
    ASSERT_EQ(TextKeeper::kept.size(), std::size(texts));
    for (std::size_t i = 0; i < std::size(texts); ++i) {
        EXPECT_EQ(TextKeeper::kept[i], texts[i]) << i;
        EXPECT_TRUE(TextKeeper::terminated[i]) << i;
    }
    EXPECT_EQ(g_alive, 0);
}

TEST_F(EventItems, FailuresLoseOneEventAndAreReported) {
    Registered text(CLSID_Text, CachedClassFactory<TextKeeper>());
    SetErrorInfo(0, nullptr);
    sink_->answer = E_OUTOFMEMORY;
    EXPECT_EQ(SendTextEvent(sink_.get(), u"lost"), E_FAIL);
    EXPECT_EQ(g_calls, std::vector<std::string>{"raw_Text"});
    EXPECT_EQ(LastErrorText(),
              u"Not enough memory resources are available to complete this operation.");
    EXPECT_EQ(g_alive, 0);
    // The next event goes through as if nothing had happened.
    sink_->answer = S_OK;
    EXPECT_EQ(SendTextEvent(sink_.get(), u"next"), S_OK);
}

} // namespace
} // namespace tervane
