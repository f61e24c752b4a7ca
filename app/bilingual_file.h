#pragma once
// The bilingual document on disk: its source file's facts, reading and
// writing it, and its faults as the commands report them.
#include <cstdint>
#include <string>

#include "app/failure.h"
#include "app/output_file.h"
#include "app/xliff/document.h"

namespace tervane::app {

struct SourceFacts {
    std::string sha256;
    std::uint64_t size = 0;
    std::string language; // the resources' language as a tag; empty if neutral or unknown
};

// Throws CommandFailure when the file cannot be read.
SourceFacts ReadSourceFacts(const std::string& path);

// The source as the document names it: from the folder of the document when
// it is written to a file, else as given.
std::string OriginalFor(const std::string& source, const std::string& documentPath);
// The other way: where the document's original stands.
std::string SourceFromOriginal(const std::string& original, const std::string& documentPath);

// A language tag as the document writes it, from what a user typed ("de-de",
// "de-DE", "0x407", "1031"); throws CommandFailure for an unknown language.
std::string LanguageTagOption(const std::string& text, const std::string& option);

// Throws CommandFailure with the path and the line for a fault of the document.
xliff::Document LoadDocument(const std::string& path);
// Writes and commits the whole document.
void SaveDocument(const xliff::Document& document, OutputFile& output);

CommandFailure DocumentFailure(const std::string& path, const xliff::DocumentError& error);

} // namespace tervane::app
