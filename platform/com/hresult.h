#pragma once
// COM result codes and class contexts under their Win32 names.
#include <cstdint>

#include "platform/win32/types.h"

using HRESULT = std::int32_t;
using SCODE = HRESULT;

constexpr HRESULT MakeHresult(std::uint32_t bits) {
    return static_cast<HRESULT>(bits);
}

constexpr bool SUCCEEDED(HRESULT hr) {
    return hr >= 0;
}
constexpr bool FAILED(HRESULT hr) {
    return hr < 0;
}
constexpr DWORD HRESULT_CODE(HRESULT hr) {
    return static_cast<DWORD>(hr) & 0xFFFFu;
}
constexpr DWORD HRESULT_FACILITY(HRESULT hr) {
    return (static_cast<DWORD>(hr) >> 16) & 0x1FFFu;
}

inline constexpr DWORD FACILITY_WIN32 = 7;

// Codes that already are HRESULTs (0 or negative) pass through unchanged.
constexpr HRESULT HRESULT_FROM_WIN32(DWORD code) {
    return static_cast<HRESULT>(code) <= 0
               ? static_cast<HRESULT>(code)
               : MakeHresult((code & 0xFFFFu) | (FACILITY_WIN32 << 16) | 0x80000000u);
}

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = MakeHresult(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = MakeHresult(0x80004002);
inline constexpr HRESULT E_POINTER = MakeHresult(0x80004003);
inline constexpr HRESULT E_ABORT = MakeHresult(0x80004004);
inline constexpr HRESULT E_FAIL = MakeHresult(0x80004005);
inline constexpr HRESULT E_UNEXPECTED = MakeHresult(0x8000FFFF);
inline constexpr HRESULT E_ACCESSDENIED = MakeHresult(0x80070005);
inline constexpr HRESULT E_HANDLE = MakeHresult(0x80070006);
inline constexpr HRESULT E_OUTOFMEMORY = MakeHresult(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = MakeHresult(0x80070057);

inline constexpr HRESULT CLASS_E_NOAGGREGATION = MakeHresult(0x80040110);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = MakeHresult(0x80040111);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = MakeHresult(0x80040154);
inline constexpr HRESULT CO_E_CLASSSTRING = MakeHresult(0x800401F3);
inline constexpr HRESULT CO_E_OBJNOTREG = MakeHresult(0x800401FB);

inline constexpr HRESULT DISP_E_UNKNOWNINTERFACE = MakeHresult(0x80020001);
inline constexpr HRESULT DISP_E_MEMBERNOTFOUND = MakeHresult(0x80020003);
inline constexpr HRESULT DISP_E_PARAMNOTFOUND = MakeHresult(0x80020004);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = MakeHresult(0x80020005);
inline constexpr HRESULT DISP_E_UNKNOWNNAME = MakeHresult(0x80020006);
inline constexpr HRESULT DISP_E_BADVARTYPE = MakeHresult(0x80020008);
inline constexpr HRESULT DISP_E_EXCEPTION = MakeHresult(0x80020009);
inline constexpr HRESULT DISP_E_OVERFLOW = MakeHresult(0x8002000A);
inline constexpr HRESULT DISP_E_BADINDEX = MakeHresult(0x8002000B);
inline constexpr HRESULT DISP_E_BADPARAMCOUNT = MakeHresult(0x8002000E);
inline constexpr HRESULT DISP_E_PARAMNOTOPTIONAL = MakeHresult(0x8002000F);

using CLSCTX = DWORD;
inline constexpr CLSCTX CLSCTX_INPROC_SERVER = 0x1;
inline constexpr CLSCTX CLSCTX_INPROC_HANDLER = 0x2;
inline constexpr CLSCTX CLSCTX_LOCAL_SERVER = 0x4;
inline constexpr CLSCTX CLSCTX_REMOTE_SERVER = 0x10;
inline constexpr CLSCTX CLSCTX_INPROC = CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER;
inline constexpr CLSCTX CLSCTX_SERVER =
    CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;
inline constexpr CLSCTX CLSCTX_ALL = CLSCTX_SERVER | CLSCTX_INPROC_HANDLER;

inline constexpr DWORD REGCLS_SINGLEUSE = 0;
inline constexpr DWORD REGCLS_MULTIPLEUSE = 1;
