#pragma once
// Proves, before anything is written, that the tags that came back from the
// host are those that the source file gives now: the expected sequence is
// rebuilt from the model and walked in lockstep with the received one. A
// structural difference ends the run; a difference in the inline tags of one
// text is judged by the tag's class.
#include <string>
#include <vector>

#include "frame/resource.h"
#include "label/pieces/label_piece.h"

namespace tervane {

using ResourceRefs = std::vector<CResource*>;
using TagList = std::vector<CTagLabelPiece>;

class CResourceVerifier {
public:
    // 1, or throws CVerificationException.
    int VerifyTagStructure(ResourceRefs resources, const CPieceStream& received);
    // The tags that the forward conversion emits for resources, in order,
    // appended to expected. 1.
    static int BuildExpectedTags(ResourceRefs resources, TagList& expected);
    int CompareTags(const TagList& expected, const TagList& received);
    // Compares the inline tags of one run, class by class.
    void VerifyNumPlaceHolders(const TagList& expected, const TagList& received);
    // severity 2 is an Alert, 3 a Warning.
    void AddMessage(const std::string& text, int severity);

    const std::u16string& messages() const { return messages_; }

private:
    enum Mode { kOtherClass = 1, kNumberedClass = 2, kSpecialClass = 3 };

    void CompareInlineRun(const TagList& expected, const TagList& received, std::ptrdiff_t& e,
                          std::ptrdiff_t& r, std::ptrdiff_t& remaining);
    void CompareClass(Mode mode, const TagList& expected, TagList received);
    void ReportAddedOrDeleted(Mode mode, const CTagLabelPiece& tag, bool added);
    void SkipDeletedShortcut(const TagList& expected, const TagList& received, std::ptrdiff_t& e,
                             std::ptrdiff_t r);
    int TakeAddedShortcut(const TagList& received, std::ptrdiff_t& r, std::ptrdiff_t& remaining);
    std::string MismatchText(const CTagLabelPiece& current, const CTagLabelPiece& expected) const;
    [[noreturn]] void Fail(std::string text, const char* operation = "VerifyTagStructure") const;

    std::u16string messages_;
    std::u16string controlName_;
    std::u16string resourceKind_;
    std::string controlId_;
    std::string resourceId_;
};

} // namespace tervane
