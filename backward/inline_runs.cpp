// The inline tags of one text, judged by class: printf conversions keep
// count and order, numbered placeholders keep count, the fixed marks may go.
#include "backward/resource_verifier.h"
#include "backward/text_format.h"
#include "label/pieces/tag_predicates.h"
#include "platform/locale/code_pages.h"

namespace tervane {

void CResourceVerifier::VerifyNumPlaceHolders(const TagList& expected, const TagList& received) {
    TagList split[2][3];
    auto classOf = [](const CTagLabelPiece& tag) {
        if (IsNumberedPlaceholder(tag.tag))
            return 0;
        return IsFixedInlineTag(tag.tag) ? 1 : 2;
    };
    for (const CTagLabelPiece& tag : expected)
        split[0][classOf(tag)].push_back(tag);
    for (const CTagLabelPiece& tag : received)
        split[1][classOf(tag)].push_back(tag);
    const Mode modes[3] = {kNumberedClass, kSpecialClass, kOtherClass};
    for (int c = 0; c < 3; ++c)
        if (!split[0][c].empty() || !split[1][c].empty())
            CompareClass(modes[c], split[0][c], split[1][c]);
}

void CResourceVerifier::ReportAddedOrDeleted(Mode mode, const CTagLabelPiece& tag, bool added) {
    const std::string id = resourceId_.empty() ? "" : FormatText(" id = %s", resourceId_.c_str());
    const std::string control =
        controlId_.empty() ? "" : FormatText(" & id = %s", controlId_.c_str());
    const std::string text =
        FormatText(added ? "The tag '%s' has been added (%s%s,control name = '%s'%s)."
                         : "The tag '%s' has been deleted (%s%s,control name = '%s'%s).",
                   Narrow(tag.tag.name).c_str(), Narrow(resourceKind_).c_str(), id.c_str(),
                   Narrow(controlName_).c_str(), control.c_str());
    if (mode == kSpecialClass)
        AddMessage(text, 2);
    else
        Fail("Error: " + text, "VerifyNumPlaceHolders");
}

void CResourceVerifier::CompareClass(Mode mode, const TagList& expected, TagList received) {
    if (expected.empty() && received.empty())
        return;
    if (expected.empty()) {
        for (const CTagLabelPiece& tag : received)
            ReportAddedOrDeleted(mode, tag, true);
        return;
    }
    if (received.empty()) {
        for (const CTagLabelPiece& tag : expected)
            ReportAddedOrDeleted(mode, tag, false);
        return;
    }
    bool orderDiffers = false, deleted = false;
    for (const CTagLabelPiece& tag : expected) {
        auto found = received.begin();
        while (found != received.end() && found->tag.tagText.view() != tag.tag.tagText.view())
            ++found;
        if (found != received.begin())
            orderDiffers = true;
        if (found != received.end()) {
            received.erase(found);
        } else {
            ReportAddedOrDeleted(mode, tag, false);
            deleted = true;
        }
    }
    if (!received.empty()) {
        for (const CTagLabelPiece& tag : received)
            ReportAddedOrDeleted(mode, tag, true);
        return;
    }
    if (deleted || !orderDiffers)
        return;
    const std::string control =
        controlId_.empty() ? "" : FormatText(" & id = %s", controlId_.c_str());
    const std::string text =
        FormatText("The tag order in this segment has been changed (%s id = %s,control name = "
                   "'%s'%s).",
                   Narrow(resourceKind_).c_str(), resourceId_.c_str(), Narrow(controlName_).c_str(),
                   control.c_str());
    if (mode == kOtherClass)
        Fail("Error :" + text, "VerifyTagStructure");
    AddMessage(text, 3);
}

} // namespace tervane
