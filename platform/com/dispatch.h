#pragma once
// IDispatch and the automation scalars that the interfaces use. Without type
// libraries the four operations may answer E_NOTIMPL; callers bind by vtable.
#include "platform/com/bstr.h"
#include "platform/com/unknown.h"

using VARIANT_BOOL = short;
inline constexpr VARIANT_BOOL VARIANT_TRUE = -1; // 0xFFFF
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

using DISPID = LONG;
inline constexpr DISPID DISPID_UNKNOWN = -1;

// Opaque here: nothing in the system builds or reads them.
struct ITypeInfo;
struct DISPPARAMS;
struct VARIANT;
struct EXCEPINFO;

struct IDispatch : IUnknown {
    static constexpr IID iid = tervane::MakeGuid("{00020400-0000-0000-C000-000000000046}");
    virtual HRESULT GetTypeInfoCount(UINT* count) = 0;
    virtual HRESULT GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) = 0;
    virtual HRESULT GetIDsOfNames(REFIID reserved, LPOLESTR* names, UINT count, LCID locale,
                                  DISPID* ids) = 0;
    virtual HRESULT Invoke(DISPID member, REFIID reserved, LCID locale, WORD flags,
                           DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                           UINT* argumentError) = 0;
};

inline constexpr const IID& IID_IDispatch = IDispatch::iid;

namespace tervane {

// The four operations of a dual interface that has no type information.
template <typename DualInterface> struct DispatchWithoutTypeInfo : DualInterface {
    HRESULT GetTypeInfoCount(UINT* count) override {
        if (count == nullptr)
            return E_POINTER;
        *count = 0;
        return S_OK;
    }
    HRESULT GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
        if (info != nullptr)
            *info = nullptr;
        return E_NOTIMPL;
    }
    HRESULT GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }
};

} // namespace tervane
