#pragma once
// The base interfaces of COM. Interfaces are classes of pure virtual functions
// without a virtual destructor, so that their vtables have COM's layout; each
// carries its identifier as a static member, which takes no room in objects.
#include "platform/com/guid.h"
#include "platform/com/hresult.h"

struct IUnknown {
    static constexpr IID iid = tervane::MakeGuid("{00000000-0000-0000-C000-000000000046}");
    virtual HRESULT QueryInterface(REFIID riid, void** object) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
};

struct IClassFactory : IUnknown {
    static constexpr IID iid = tervane::MakeGuid("{00000001-0000-0000-C000-000000000046}");
    virtual HRESULT CreateInstance(IUnknown* outer, REFIID riid, void** object) = 0;
    virtual HRESULT LockServer(BOOL lock) = 0;
};

inline constexpr const IID& IID_IUnknown = IUnknown::iid;
inline constexpr const IID& IID_IClassFactory = IClassFactory::iid;

namespace tervane {

template <typename Interface> constexpr const IID& IidOf() {
    return Interface::iid;
}

// QueryInterface with the identifier taken from the requested type.
template <typename Interface> HRESULT QueryInterfaceAs(IUnknown* unknown, Interface** out) {
    if (out == nullptr)
        return E_POINTER;
    *out = nullptr;
    if (unknown == nullptr)
        return E_POINTER;
    return unknown->QueryInterface(Interface::iid, reinterpret_cast<void**>(out));
}

} // namespace tervane
