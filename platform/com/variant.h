#pragma once
// The automation VARIANT, as far as the host's collections take it: an index
// (VT_I4) or nothing.
#include "platform/com/dispatch.h"

using VARTYPE = unsigned short;
inline constexpr VARTYPE VT_EMPTY = 0;
inline constexpr VARTYPE VT_I4 = 3;
inline constexpr VARTYPE VT_BSTR = 8;

struct VARIANT {
    VARTYPE vt = VT_EMPTY;
    WORD reserved1 = 0, reserved2 = 0, reserved3 = 0;
    union {
        LONG lVal;
        BSTR bstrVal;
        void* byref = nullptr;
    };
};

namespace tervane {

inline VARIANT IndexVariant(LONG index) {
    VARIANT value;
    value.vt = VT_I4;
    value.lVal = index;
    return value;
}

} // namespace tervane
