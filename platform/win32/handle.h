#pragma once
// Win32's opaque HANDLE. Each kind of handle is validated by the registry of
// the calls that hand it out, so a stale or foreign value fails cleanly.
#include <cstdint>

using HANDLE = void*;

inline HANDLE const INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1));
