#pragma once
// The framework's items as a test host or a fuzz target hands them to the
// writer: filled directly, read through the interfaces.
#include <string>

#include "host/items.h"
#include "host/tag_descriptor.h"
#include "platform/com/component.h"
#include "platform/com/dispatch.h"

namespace tervane::test {

inline HRESULT GetText(std::u16string_view from, BSTR* to) {
    *to = SysAllocStringLen(from.data(), static_cast<UINT>(from.size()));
    return S_OK;
}

class FakeTag : public ComObjectRoot, public DispatchWithoutTypeInfo<ITag> {
public:
    static InterfaceMap<FakeTag> Interfaces() {
        static const InterfaceEntry<FakeTag> map[] = {Entry<FakeTag, ITag>()};
        return map;
    }
    HRESULT get_TagText(BSTR* v) override { return GetText(tag.tagText, v); }
    HRESULT put_TagText(BSTR) override { return S_OK; }
    HRESULT get_TagName(BSTR* v) override { return GetText(tag.name, v); }
    HRESULT put_TagName(BSTR) override { return S_OK; }
    HRESULT get_EndTag(LONG* v) override { return *v = tag.endTag, S_OK; }
    HRESULT put_EndTag(LONG) override { return S_OK; }
    HRESULT get_StartTag(LONG* v) override { return *v = tag.startTag, S_OK; }
    HRESULT put_StartTag(LONG) override { return S_OK; }
    HRESULT get_Inline(LONG* v) override { return *v = tag.inlineTag, S_OK; }
    HRESULT put_Inline(LONG) override { return S_OK; }
    TagDescriptor tag;
};

class FakeText : public ComObjectRoot, public DispatchWithoutTypeInfo<IText> {
public:
    static InterfaceMap<FakeText> Interfaces() {
        static const InterfaceEntry<FakeText> map[] = {Entry<FakeText, IText>()};
        return map;
    }
    HRESULT get_Text(BSTR* v) override { return GetText(text, v); }
    HRESULT put_Text(BSTR) override { return S_OK; }
    std::u16string text;
};

class FakeInfo : public ComObjectRoot, public DispatchWithoutTypeInfo<IDocumentInfo> {
public:
    static InterfaceMap<FakeInfo> Interfaces() {
        static const InterfaceEntry<FakeInfo> map[] = {Entry<FakeInfo, IDocumentInfo>()};
        return map;
    }
    HRESULT get_SourceFile(BSTR* v) override { return GetText(path, v); }
    HRESULT put_SourceFile(BSTR) override { return S_OK; }
    HRESULT get_Extra(BSTR* v) override { return GetText({}, v); }
    HRESULT put_Extra(BSTR) override { return S_OK; }
    HRESULT get_DocumentNumber(LONG* v) override { return *v = 0, S_OK; }
    HRESULT put_DocumentNumber(LONG) override { return S_OK; }
    HRESULT get_SecondNumber(LONG* v) override { return *v = 0, S_OK; }
    HRESULT put_SecondNumber(LONG) override { return S_OK; }
    std::u16string path;
};

} // namespace tervane::test
