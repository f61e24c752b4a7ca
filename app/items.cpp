#include "app/items.h"

#include <new>

#include "platform/com/class_objects.h"
#include "platform/com/pooled_factory.h"

namespace tervane::app {

namespace {

HRESULT GetString(const Bstr& value, BSTR* out) {
    if (out == nullptr)
        return E_POINTER;
    *out = SysAllocStringLen(value.get(), value.length());
    return *out == nullptr && value.length() ? E_OUTOFMEMORY : S_OK;
}

HRESULT PutString(Bstr& value, BSTR text) {
    value = Bstr(std::u16string_view(text ? text : u"", SysStringLen(text)));
    return S_OK;
}

HRESULT GetString(const ItemString& value, BSTR* out) {
    if (out == nullptr)
        return E_POINTER;
    const std::u16string_view text = value.View();
    *out = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return *out == nullptr && !text.empty() ? E_OUTOFMEMORY : S_OK;
}

HRESULT PutString(ItemString& value, BSTR text) {
    return value.Assign(text) ? S_OK : E_OUTOFMEMORY;
}

HRESULT GetNumber(LONG value, LONG* out) {
    if (out == nullptr)
        return E_POINTER;
    *out = value;
    return S_OK;
}

void Register(const CLSID& clsid, IClassFactory* factory) {
    DWORD cookie = 0;
    if (factory != nullptr)
        CoRegisterClassObject(clsid, factory, CLSCTX_ALL, 0, &cookie);
}

} // namespace

bool ItemString::Grow(std::size_t length) {
    constexpr std::size_t kLeast = 32;
    std::size_t room = room_ * 2 > kLeast ? room_ * 2 : kLeast;
    if (room < length)
        room = length;
    std::unique_ptr<char16_t[]> grown(new (std::nothrow) char16_t[room]);
    if (!grown)
        return false;
    data_ = std::move(grown);
    room_ = room;
    return true;
}

InterfaceMap<Tag> Tag::Interfaces() {
    static const InterfaceEntry<Tag> map[] = {Entry<Tag, ITag>(), Entry<Tag, IDispatch, ITag>()};
    return map;
}
HRESULT Tag::get_TagText(BSTR* text) {
    return GetString(text_, text);
}
HRESULT Tag::put_TagText(BSTR text) {
    return PutString(text_, text);
}
HRESULT Tag::get_TagName(BSTR* name) {
    return GetString(name_, name);
}
HRESULT Tag::put_TagName(BSTR name) {
    return PutString(name_, name);
}
HRESULT Tag::get_EndTag(LONG* value) {
    return GetNumber(end_, value);
}
HRESULT Tag::put_EndTag(LONG value) {
    return end_ = value, S_OK;
}
HRESULT Tag::get_StartTag(LONG* value) {
    return GetNumber(start_, value);
}
HRESULT Tag::put_StartTag(LONG value) {
    return start_ = value, S_OK;
}
HRESULT Tag::get_Inline(LONG* value) {
    return GetNumber(inline_, value);
}
HRESULT Tag::put_Inline(LONG value) {
    return inline_ = value, S_OK;
}
void Tag::Clear() {
    text_.Clear();
    name_.Clear();
    end_ = start_ = inline_ = 0;
}

InterfaceMap<Text> Text::Interfaces() {
    static const InterfaceEntry<Text> map[] = {Entry<Text, IText>(),
                                               Entry<Text, IDispatch, IText>()};
    return map;
}
HRESULT Text::get_Text(BSTR* text) {
    return GetString(text_, text);
}
HRESULT Text::put_Text(BSTR text) {
    return PutString(text_, text);
}

InterfaceMap<DocumentInfo> DocumentInfo::Interfaces() {
    static const InterfaceEntry<DocumentInfo> map[] = {
        Entry<DocumentInfo, IDocumentInfo>(), Entry<DocumentInfo, IDispatch, IDocumentInfo>()};
    return map;
}
HRESULT DocumentInfo::get_SourceFile(BSTR* path) {
    return GetString(sourceFile_, path);
}
HRESULT DocumentInfo::put_SourceFile(BSTR path) {
    return PutString(sourceFile_, path);
}
HRESULT DocumentInfo::get_Extra(BSTR* value) {
    return GetString(extra_, value);
}
HRESULT DocumentInfo::put_Extra(BSTR value) {
    return PutString(extra_, value);
}
HRESULT DocumentInfo::get_DocumentNumber(LONG* value) {
    return GetNumber(documentNumber_, value);
}
HRESULT DocumentInfo::put_DocumentNumber(LONG value) {
    return documentNumber_ = value, S_OK;
}
HRESULT DocumentInfo::get_SecondNumber(LONG* value) {
    return GetNumber(secondNumber_, value);
}
HRESULT DocumentInfo::put_SecondNumber(LONG value) {
    return secondNumber_ = value, S_OK;
}

void RegisterItemClasses() {
    static const bool done = [] {
        Register(CLSID_Tag, CachedPooledClassFactory<Tag>());
        Register(CLSID_Text, CachedPooledClassFactory<Text>());
        Register(CLSID_DocumentInfo, CachedClassFactory<DocumentInfo>());
        return true;
    }();
    (void)done;
}

} // namespace tervane::app
