#pragma once
// A verification of a bilingual document as the editor runs it: the plug-in
// made by class identifier and handed a view of the document and a report.
// The document is only read; the plug-in's copy is gone afterwards.
#include <string>
#include <vector>

#include "app/editor_objects.h"

namespace tervane::app {

struct Verification {
    std::string source;            // the source file compared with; empty if it is gone
    std::vector<Finding> findings; // sorted by place
    bool HasErrors() const;
};

// Throws CommandFailure for a document that cannot be read and for a run the
// plug-in ended with an error.
Verification VerifyDocument(const std::string& documentPath, const std::string& sourceOverride);

// The same on a document's bytes, with its source file found already (empty
// when it is gone); the view names the document by named, else by source.
Verification VerifyBytes(const std::string& bytes, const std::string& name,
                         const std::string& source, const std::string& named = {});

// The errors that the translator made: those of the document that a document
// made now from the source, with no translation, does not have as well. The
// tables of the tags refuse some resources (edit and list controls, a value
// block of a second language) whatever is translated; merge passes them.
std::vector<Finding> TranslatorErrors(const Verification& verification);

const char* SeverityWord(LONG severity);

} // namespace tervane::app
