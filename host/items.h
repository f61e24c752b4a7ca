#pragma once
// The framework's items: the small objects that carry one event of the
// stream. The host creates them; the system sets and reads their properties.
// All are dual: their own operations follow IDispatch's.
#include "platform/com/dispatch.h"

struct ITag : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{AA3B70E2-7B61-45E1-AC50-761C0756C851}");
    virtual HRESULT get_TagText(BSTR* text) = 0;
    virtual HRESULT put_TagText(BSTR text) = 0;
    virtual HRESULT get_TagName(BSTR* name) = 0;
    virtual HRESULT put_TagName(BSTR name) = 0;
    virtual HRESULT get_EndTag(LONG* value) = 0;
    virtual HRESULT put_EndTag(LONG value) = 0;
    virtual HRESULT get_StartTag(LONG* value) = 0;
    virtual HRESULT put_StartTag(LONG value) = 0;
    virtual HRESULT get_Inline(LONG* value) = 0;
    virtual HRESULT put_Inline(LONG value) = 0;
};

struct IText : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{592A5BDB-5B6C-4C5D-9E49-6D6349270EB3}");
    virtual HRESULT get_Text(BSTR* text) = 0;
    virtual HRESULT put_Text(BSTR text) = 0;
};

struct IProperty : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{C3AE0E20-F0F0-408D-9389-32D5DC22D974}");
    virtual HRESULT get_Name(BSTR* name) = 0;
    virtual HRESULT put_Name(BSTR name) = 0;
    virtual HRESULT get_Value(BSTR* value) = 0;
    virtual HRESULT put_Value(BSTR value) = 0;
};

struct IDocumentInfo : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{AE5DD61A-35A3-419B-9A26-4FDF4C0D73AF}");
    // The path of the document's source file.
    virtual HRESULT get_SourceFile(BSTR* path) = 0;
    virtual HRESULT put_SourceFile(BSTR path) = 0;
    // Not used by the system.
    virtual HRESULT get_Extra(BSTR* value) = 0;
    virtual HRESULT put_Extra(BSTR value) = 0;
    // The preview writer compares the first with its target language.
    virtual HRESULT get_DocumentNumber(LONG* value) = 0;
    virtual HRESULT put_DocumentNumber(LONG value) = 0;
    virtual HRESULT get_SecondNumber(LONG* value) = 0;
    virtual HRESULT put_SecondNumber(LONG value) = 0;
};

inline constexpr CLSID CLSID_Tag = tervane::MakeGuid("{A3AC0B00-29FD-4FA2-A003-AE1889879899}");
inline constexpr CLSID CLSID_Text = tervane::MakeGuid("{1C345A15-95D1-4354-AE7E-6A2DBA4022E1}");
inline constexpr CLSID CLSID_DocumentInfo =
    tervane::MakeGuid("{6C52FC9C-B19D-485D-9509-AB9FCF445725}");
