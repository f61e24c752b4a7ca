#pragma once
// Error information for the host: the text of a failure, the ProgID of the
// reporting class as its source and the interface that failed.
#include "platform/com/unknown.h"

namespace tervane {

// Returns hr. Help context 0, no help file.
HRESULT ReportError(const CLSID& clsid, const char16_t* text, const IID& iid, HRESULT hr);
// The same with text in the process's code page; E_POINTER for a null text,
// E_OUTOFMEMORY if the conversion runs out of memory.
HRESULT ReportError(const CLSID& clsid, const char* text, const IID& iid, HRESULT hr);

} // namespace tervane
