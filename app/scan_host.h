#pragma once
// The scanner driven as a host drives it before a conversion: one scanner
// object for one file, and the verdict the user is shown.
#include <cstdint>
#include <string>

#include "platform/win32/types.h"

namespace tervane::app {

struct ScanVerdict {
    const char* verdict; // ok, empty, refused, missing, skipped
    std::uint32_t status = 0;
    std::string text;
    LONG firstLanguage = -1;
};

// Asks the scanner, made through the module, about file. Calls on several
// threads are safe as long as no two files share a copy's path.
ScanVerdict ScanFile(const std::string& file);

// Before a conversion of file: throws a CommandFailure with the scanner's
// own text unless the scanner accepts the file.
void RequireScannerAccepts(const std::string& file);

} // namespace tervane::app
