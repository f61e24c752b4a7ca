#pragma once
// The bilingual document as XLIFF 1.2 holds it: the source file's facts, and
// one unit per segment in a group per resource.
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/xliff/content.h"

namespace tervane::xliff {

struct Unit {
    std::string id, restype, resname, coord;
    bool translate = true;
    Content source;
    std::optional<Content> target;
    std::string state;                  // the target's state, if it has one
    int line = 0;                       // where the reader met the unit, 0 for a new one
    int sourceLine = 0, targetLine = 0; // and of its source and target
};

struct Group {
    std::string id, restype, resname;
    std::vector<Unit> units;
    int line = 0; // where the reader met it
};

struct Document {
    std::string original; // the source file, as found from the document's folder
    std::string sourceLanguage, targetLanguage;
    std::string sha256; // of the source file, lower-case hex
    std::uint64_t size = 0;
    std::vector<Group> groups;
    int line = 0; // of <file>, where the reader met it
};

// A document that cannot be read or does not fit its source: the unit and the
// line where that was found, when known.
class DocumentError : public std::runtime_error {
public:
    explicit DocumentError(const std::string& message, std::string unitId = {}, int line = 0)
        : std::runtime_error(message), unitId_(std::move(unitId)), line_(line) {}
    const std::string& UnitId() const { return unitId_; }
    int Line() const { return line_; }

private:
    std::string unitId_;
    int line_;
};

} // namespace tervane::xliff
