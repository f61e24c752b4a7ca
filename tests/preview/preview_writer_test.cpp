// The preview writer's search for the resource at the cursor and its two
// refusals, fed with events as a host replays a document.
#include <gtest/gtest.h>

#include "platform/com/error_info.h"
#include "platform/locale/code_pages.h"
#include "platform/registry/registry.h"
#include "preview/tervane_preview_writer.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

HRESULT Get(const std::u16string& from, BSTR* to) {
    *to = SysAllocStringLen(from.data(), static_cast<UINT>(from.size()));
    return S_OK;
}

class FakeTag : public ComObjectRoot, public DispatchWithoutTypeInfo<ITag> {
public:
    static InterfaceMap<FakeTag> Interfaces() {
        static const InterfaceEntry<FakeTag> map[] = {Entry<FakeTag, ITag>()};
        return map;
    }
    HRESULT get_TagText(BSTR* v) override { return Get(text, v); }
    HRESULT put_TagText(BSTR) override { return S_OK; }
    HRESULT get_TagName(BSTR* v) override { return Get(text, v); }
    HRESULT put_TagName(BSTR) override { return S_OK; }
    HRESULT get_EndTag(LONG* v) override { return *v = end, S_OK; }
    HRESULT put_EndTag(LONG) override { return S_OK; }
    HRESULT get_StartTag(LONG* v) override { return *v = start, S_OK; }
    HRESULT put_StartTag(LONG) override { return S_OK; }
    HRESULT get_Inline(LONG* v) override { return *v = 0, S_OK; }
    HRESULT put_Inline(LONG) override { return S_OK; }
    std::u16string text;
    LONG start = 0, end = 0;
};

class FakeProperty : public ComObjectRoot, public DispatchWithoutTypeInfo<IProperty> {
public:
    static InterfaceMap<FakeProperty> Interfaces() {
        static const InterfaceEntry<FakeProperty> map[] = {Entry<FakeProperty, IProperty>()};
        return map;
    }
    HRESULT get_Name(BSTR* v) override { return Get(name, v); }
    HRESULT put_Name(BSTR) override { return S_OK; }
    HRESULT get_Value(BSTR* v) override { return Get({}, v); }
    HRESULT put_Value(BSTR) override { return S_OK; }
    std::u16string name;
};

class QuietHost : public ComObjectRoot, public DispatchWithoutTypeInfo<IFilterHost> {
public:
    static InterfaceMap<QuietHost> Interfaces() {
        static const InterfaceEntry<QuietHost> map[] = {Entry<QuietHost, IFilterHost>()};
        return map;
    }
    HRESULT raw_Progress(LONG) override { return S_OK; }
    HRESULT raw_Pump(LONG_PTR) override { return S_OK; }
};

std::string LastErrorText() {
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Receive()) != S_OK || !info)
        return {};
    BSTR description = nullptr;
    info->GetDescription(&description);
    return Narrow(Bstr::Attach(description).view(), CP_UTF8);
}

struct CursorRow {
    const char* what;
    // "<x>" opens, "</x>" closes, "|" is the cursor.
    std::vector<std::string> events;
    DWORD kind;
    std::string id;
    const char* refusal; // null: accepted
};

class Cursor : public ::testing::TestWithParam<CursorRow> {};

TEST_P(Cursor, FindsTheResourceOrRefuses) {
    ::setenv("TERVANE_REGISTRY_DIR", test::TempDir().c_str(), 1);
    ComPtr<ComObject<TervanePreviewWriter>> writer;
    ComObject<TervanePreviewWriter>::Create(writer.Receive());
    ComPtr<ComObject<QuietHost>> host;
    ComObject<QuietHost>::Create(host.Receive());
    ComPtr<IEvents> events;
    Bstr path(u"/tmp/preview.dll");
    ASSERT_EQ(writer->Initialize(path.get(), nullptr, 0x407, 0, 0, host.get(), VARIANT_TRUE,
                                 events.Receive()),
              S_OK);
    for (const std::string& event : GetParam().events) {
        if (event == "|") {
            ComPtr<ComObject<FakeProperty>> cursor;
            ComObject<FakeProperty>::Create(cursor.Receive());
            cursor->name = u"Cursor Position";
            events->raw_Property(cursor.get());
            continue;
        }
        ComPtr<ComObject<FakeTag>> tag;
        ComObject<FakeTag>::Create(tag.Receive());
        tag->text = Widen(event, CP_UTF8);
        const bool close = event[1] == '/';
        tag->start = close ? 0 : 1;
        tag->end = close ? 1 : 0;
        ASSERT_EQ(events->raw_Tag(tag.get()), S_OK);
    }
    EXPECT_EQ(writer->ResourceKind(), GetParam().kind);
    EXPECT_EQ(writer->ResourceId(), GetParam().id);
    // Before the start of input, a write pumps and reports the refusal.
    const HRESULT hr = writer->raw_Write(0);
    if (GetParam().refusal) {
        EXPECT_EQ(hr, E_FAIL);
        EXPECT_EQ(LastErrorText(), GetParam().refusal);
    } else {
        EXPECT_EQ(hr, S_OK);
    }
    // Nothing was started: no record was even read.
    HKEY key = nullptr;
    EXPECT_NE(RegOpenKeyExA(HKEY_CURRENT_USER, kPreviewRecordKey, 0, KEY_QUERY_VALUE, &key), 0);
    ::unsetenv("TERVANE_REGISTRY_DIR");
}

INSTANTIATE_TEST_SUITE_P(
    Documents, Cursor,
    ::testing::Values(
        CursorRow{"inside a dialog",
                  {"<resources>", "<dialogs>", "<dialog id=\"100\">", "<caption>", "|",
                   "</caption>", "</dialog>", "</dialogs>", "</resources>"},
                  5,
                  "100",
                  nullptr},
        CursorRow{"no cursor at all",
                  {"<resources>", "<dialogs>", "<dialog id=\"100\">", "</dialog>", "</dialogs>",
                   "</resources>"},
                  0,
                  "",
                  kCursorOutsideText},
        CursorRow{"between two dialogs",
                  {"<resources>", "<dialogs>", "<dialog id=\"1\">", "</dialog>", "|",
                   "<dialog id=\"2\">", "</dialog>", "</dialogs>", "</resources>"},
                  0,
                  "",
                  kCursorOutsideText},
        CursorRow{"in a string: the second text replaces the first",
                  {"<resources>", "<stringtable>", "<string id=\"12\">", "|", "</string>",
                   "</stringtable>", "</resources>"},
                  6,
                  "",
                  kNotMenuOrDialogText},
        CursorRow{"in version info",
                  {"<resources>", "<versioninfo>", "<value name=\"x\">", "|", "</value>",
                   "</versioninfo>", "</resources>"},
                  16,
                  "1",
                  kNotMenuOrDialogText},
        CursorRow{"an item behind a pop-up is still in the menu",
                  {"<resources>", "<menus>", "<menu id=\"7\">", "<item>", "</item>", "<menu>",
                   "<item id=\"1\">", "</item>", "</menu>", "<item id=\"2\">", "|", "</item>",
                   "</menu>", "</menus>", "</resources>"},
                  4,
                  "7",
                  nullptr},
        CursorRow{"the next menu resets the last",
                  {"<resources>", "<menus>", "<menu id=\"7\">", "<item id=\"2\">", "</item>",
                   "</menu>", "|", "<menu id=\"8\">", "</menu>", "</menus>", "</resources>"},
                  0,
                  "",
                  kCursorOutsideText},
        CursorRow{"a dialog named, not numbered",
                  {"<resources>", "<dialogs>", "<dialog id=\"ABOUTBOX\">", "|", "</dialog>",
                   "</dialogs>", "</resources>"},
                  5,
                  "ABOUTBOX",
                  nullptr}),
    [](const auto& info) {
        std::string name;
        for (const char c : std::string(info.param.what))
            name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
        return name;
    });

} // namespace
} // namespace tervane
