#pragma once
// A verification of a bilingual document as the editor runs it: the plug-in
// made by class identifier and handed a view of the document and a report.
// The document is only read; the plug-in's copy is gone afterwards.
#include <string>
#include <vector>

#include "app/editor_objects.h"

namespace tervane::app {

struct Verification {
    std::string source;           // the source file compared with; empty if it is gone
    std::vector<Finding> findings; // sorted by place
    bool HasErrors() const;
};

// Throws CommandFailure for a document that cannot be read and for a run the
// plug-in ended with an error.
Verification VerifyDocument(const std::string& documentPath, const std::string& sourceOverride);

const char* SeverityWord(LONG severity);

} // namespace tervane::app
