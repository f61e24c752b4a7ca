#include <algorithm>

#include "verify/tag_order.h"

namespace tervane::verify {

namespace {

std::string Narrow(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char16_t c : text)
        out += c < 0x80 ? static_cast<char>(c) : '?';
    return out;
}

// The bare name, with a leading '/' for an end tag.
std::string OrderName(const CTagLabelPiece& tag) {
    return (IsEndTag(tag) ? "/" : "") + Narrow(tag.tag.name.view());
}

bool Listed(const TagTable& table, const std::string& key, const std::string& name) {
    auto row = table.find(key);
    return row != table.end() &&
           std::find(row->second.begin(), row->second.end(), name) != row->second.end();
}

const char* const kGroupOfKind[] = {"", "menus", "dialogs", "stringtable", "versioninfo"};

} // namespace

CTagOrderChecker::CTagOrderChecker(IVerificationReport* report_)
    : successors(BuildSuccessorTable()), groups(BuildGroupTable()), report(report_) {}

void CTagOrderChecker::ReportTag(const CTagLabelPiece& piece, std::string_view format,
                                 LONG severity, LONG code) {
    Report(report, severity, code, Compose(format, {piece.tag.tagText.view()}), piece.range);
    failed = 1;
}

int CTagOrderChecker::CheckTagOrder(const Pieces& list) {
    Tags tags = StructuralTags(list);
    if (tags.empty())
        return 0;
    successors = BuildSuccessorTable();
    int result = 0;
    if (!IsResourcesOpen(tags.front()->tag))
        ReportTag(*tags.front(), "Tag order has been changed. Tag '<Resources>' was expected.",
                  kError, 40);
    TextChecks texts(report);
    const CTagLabelPiece* previous = tags.front();
    for (std::size_t i = 1; i < tags.size(); ++i) {
        CTagLabelPiece& current = *tags[i];
        if (HasIdAttribute(current.tag) && (IsDialogOpen(current.tag) || IsMenuOpen(current.tag)))
            result |= texts.FindDuplicates(current, Pieces(tags.begin() + i + 1, tags.end()));
        if (!Listed(successors, OrderName(*previous), OrderName(current))) {
            if (IsResourcesOpen(current.tag))
                ReportTag(current, "Tag order has been changed. Tag '<Resources>' is not expected.",
                          kError, 40);
            else
                ReportTag(current, "Unexpected tag '%s' detected .", kError, 56);
            result = 1;
        }
        previous = &current;
    }
    return result;
}

int CTagOrderChecker::CheckNesting(const Pieces& list) {
    Tags tags = StructuralTags(list);
    if (!tags.empty()) {
        firstTag = tags.front();
        for (CTagLabelPiece* tag : tags) {
            if (IsStartTag(*tag)) {
                if (OpenTag(*tag) == 1)
                    stack.push_back(tag);
            } else if (CloseTag(*tag) == 1) {
                if (IsResourceClose(tag->tag))
                    currentKind = 0;
                stack.pop_back();
            }
        }
        for (auto open = stack.rbegin(); open != stack.rend(); ++open)
            ReportTag(**open, "Expected closing tag missing for '%s'.", kError, 100);
    }
    return failed;
}

int CTagOrderChecker::OpenTag(CTagLabelPiece& tag) {
    if (stack.empty()) {
        if (IsResourceOpen(tag.tag))
            EnterResource(tag);
        return 1;
    }
    const CTagLabelPiece& top = *stack.back();
    const bool bothMenus = IsOpen(tag.tag, u"menu") && IsOpen(top.tag, u"menu");
    const bool bothItems = IsOpen(tag.tag, u"item") && IsOpen(top.tag, u"item");
    if (tag.tag.name.view() == top.tag.name.view() && !bothMenus && !bothItems) {
        ReportTag(tag, "The tag '%s' has been inserted.", kError, 16);
        return 0;
    }
    if (CheckMembership(tag) == 0)
        ReportTag(tag, "Unexpected segment has been found.", kError, 63);
    return 1;
}

int CTagOrderChecker::CheckMembership(CTagLabelPiece& tag) {
    if (currentKind == 0)
        return EnterResource(tag);
    if (!Listed(groups, kGroupOfKind[currentKind], Narrow(tag.tag.name.view())))
        return EnterResource(tag);
    if (IsResourceOpen(tag.tag))
        EnterResource(tag);
    return 1;
}

int CTagOrderChecker::EnterResource(CTagLabelPiece& tag) {
    const bool entry =
        currentKind == 0 && (IsOpen(tag.tag, u"item") || IsOpen(tag.tag, u"menu") ||
                             IsOpen(tag.tag, u"items") || IsOpen(tag.tag, u"dialog"));
    if (!entry && !IsResourceOpen(tag.tag))
        return 0;
    currentKind = ResourceKindOfOpen(tag.tag);
    if (!kinds.empty()) {
        previousKind = kinds.back();
        if (previousKind > currentKind && firstTag != nullptr)
            ReportTag(*firstTag, "The order of the resources has been modified.", kError, 100);
    }
    if (std::find(kinds.begin(), kinds.end(), currentKind) != kinds.end())
        ReportTag(tag, "The '%s' resource has been duplicated.", kError, 100);
    kinds.push_back(currentKind);
    return 1;
}

int CTagOrderChecker::CloseTag(CTagLabelPiece& tag) {
    auto found = std::find_if(stack.rbegin(), stack.rend(), [&](const CTagLabelPiece* open) {
        return open->tag.name.view() == tag.tag.name.view();
    });
    if (found == stack.rend()) {
        ReportTag(tag, "Expected open tag missing for '%s'.", kError, 100);
        return 0;
    }
    // Every tag in front of the one found was left open.
    const CTagLabelPiece* match = *found;
    while (stack.back() != match) {
        ReportTag(*stack.back(), "Expected closing tag missing for '%s'.", kError, 100);
        stack.pop_back();
    }
    return 1;
}

} // namespace tervane::verify
