#pragma once
// The push stream: a producer calls these on its consumer, one item per event.
#include "host/items.h"

struct IEvents : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{9B05B22E-3C20-4737-B7B2-DA6BB89413E7}");
    virtual HRESULT raw_Property(IProperty* property) = 0;
    virtual HRESULT raw_StartOfInput(IDocumentInfo* info) = 0;
    virtual HRESULT raw_EndOfInput() = 0;
    // Consumers of this system don't look into the segment's argument.
    virtual HRESULT raw_StartOfSegment(IUnknown* segment) = 0;
    virtual HRESULT raw_EndOfSegment() = 0;
    virtual HRESULT raw_Text(IText* text) = 0;
    virtual HRESULT raw_Tag(ITag* tag) = 0;
};

// The host's callback object.
struct IFilterHost : IDispatch {
    static constexpr IID iid = tervane::MakeGuid("{FE6A5418-4FD9-4A1F-9206-DB70FC678BF5}");
    virtual HRESULT raw_Progress(LONG percent) = 0;
    // The host replays the next part of its document as IEvents calls inside
    // this call. E_FAIL means that reading failed.
    virtual HRESULT raw_Pump(LONG_PTR cookie) = 0;
};

// The framework's type library, which defines the interfaces above.
inline constexpr GUID LIBID_FilterFrameworkComApi =
    tervane::MakeGuid("{22460B1B-4BB3-4BCC-8B66-072D128F0774}");
