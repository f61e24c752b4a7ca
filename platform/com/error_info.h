#pragma once
// Error information: the description of the last failure, kept per thread for
// the caller of a failed operation to fetch.
#include "platform/com/bstr.h"
#include "platform/com/unknown.h"

struct IErrorInfo : IUnknown {
    static constexpr IID iid = tervane::MakeGuid("{1CF2B120-547D-101B-8E65-08002B2BD119}");
    virtual HRESULT GetGUID(GUID* guid) = 0;
    virtual HRESULT GetSource(BSTR* source) = 0;
    virtual HRESULT GetDescription(BSTR* description) = 0;
    virtual HRESULT GetHelpFile(BSTR* helpFile) = 0;
    virtual HRESULT GetHelpContext(DWORD* helpContext) = 0;
};

struct ICreateErrorInfo : IUnknown {
    static constexpr IID iid = tervane::MakeGuid("{22F03340-547D-101B-8E65-08002B2BD119}");
    virtual HRESULT SetGUID(REFGUID guid) = 0;
    virtual HRESULT SetSource(LPOLESTR source) = 0;
    virtual HRESULT SetDescription(LPOLESTR description) = 0;
    virtual HRESULT SetHelpFile(LPOLESTR helpFile) = 0;
    virtual HRESULT SetHelpContext(DWORD helpContext) = 0;
};

// Answers S_OK for the interfaces whose failures leave error information.
struct ISupportErrorInfo : IUnknown {
    static constexpr IID iid = tervane::MakeGuid("{DF0B3D60-548F-101B-8E65-08002B2BD119}");
    virtual HRESULT InterfaceSupportsErrorInfo(REFIID riid) = 0;
};

inline constexpr const IID& IID_IErrorInfo = IErrorInfo::iid;
inline constexpr const IID& IID_ICreateErrorInfo = ICreateErrorInfo::iid;
inline constexpr const IID& IID_ISupportErrorInfo = ISupportErrorInfo::iid;

// A new, empty error object.
HRESULT CreateErrorInfo(ICreateErrorInfo** out);
// Replaces the thread's error object (null clears it).
HRESULT SetErrorInfo(ULONG reserved, IErrorInfo* info);
// Hands the thread's error object over and clears it; S_FALSE if there is none.
HRESULT GetErrorInfo(ULONG reserved, IErrorInfo** out);

namespace tervane {

// ISupportErrorInfo for a class whose one interface named by Own reports errors.
template <const IID& Own> struct SupportErrorInfoFor : ISupportErrorInfo {
    HRESULT InterfaceSupportsErrorInfo(REFIID riid) override {
        return riid == Own ? S_OK : S_FALSE;
    }
};

} // namespace tervane
