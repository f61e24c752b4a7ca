#pragma once
// The structural side of a verification: the order of the tags against the
// successor table, their nesting, the tags of the two sides as multisets and
// as sequences, and the inline tags of each segment.
#include <map>
#include <string>

#include "stream/tag_tables.h"
#include "verify/text_checks.h"

namespace tervane::verify {

// One run of the stages; thrown away after it.
class CTagOrderChecker {
public:
    explicit CTagOrderChecker(IVerificationReport* report);

    int CheckTagOrder(const Pieces& list);
    int CheckNesting(const Pieces& list);

private:
    void ReportTag(const CTagLabelPiece& piece, std::string_view format, LONG severity, LONG code);
    int OpenTag(CTagLabelPiece& tag);
    int CloseTag(CTagLabelPiece& tag);
    int CheckMembership(CTagLabelPiece& tag);
    int EnterResource(CTagLabelPiece& tag);

    int failed = 0;
    std::vector<CTagLabelPiece*> stack; // the back is the innermost
    std::vector<int> kinds;             // the back is the latest
    int currentKind = 0;
    int previousKind = 0;
    TagTable successors;
    TagTable groups;
    IVerificationReport* report;
    const CTagLabelPiece* firstTag = nullptr;
};

using TagMap = std::map<std::u16string, Tags>;

class TagComparison {
public:
    explicit TagComparison(IVerificationReport* report) : report_(report) {}

    int CompareTagSets(const Tags& first, const Tags& second, CLabelPiece* anchor, LONG severity);
    int CompareTagOrder(const Tags& expected, const Tags& actual, LONG severity);
    int CompareInlineTags(const Pieces& target, const Pieces& source);
    int CompareSegmentTags(const Tags& inlineTarget, const Tags& inlineSource, CLabelPiece* anchor);

    static void ExtractMenus(const Tags& list, Tags& entries, TagMap& map);
    static void ExtractDialogs(const Tags& list, int flag, Tags& entries, TagMap& map);

private:
    IVerificationReport* report_;
};

// Every stage in its order, on the two sides; the findings stand in report.
void RunStages(const Pieces& source, const Pieces& target, IVerificationReport* report);

} // namespace tervane::verify
