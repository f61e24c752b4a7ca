#pragma once
// XLIFF 1.2 (strict) in and out, through libxml2. The source file's facts
// stand in the header: the executable is the skeleton (external-file with its
// SHA-256), its size a count of the group "source-file".
#include <string>
#include <string_view>

#include "app/xliff/document.h"

namespace tervane::xliff {

inline constexpr const char* kXliffNamespace = "urn:oasis:names:tc:xliff:document:1.2";

// The whole document, UTF-8. toolVersion goes into the header's tool entry.
std::string WriteXliff(const Document& document, const std::string& toolVersion);

// Reads a document; a malformed one, or one that is no XLIFF 1.2 of a single
// file, throws DocumentError with the line. name is used in libxml2's messages.
Document ReadXliff(std::string_view bytes, const std::string& name);

} // namespace tervane::xliff
