#include "backward/resource_verifier.h"

#include "backward/text_format.h"
#include "frame/conversion_state.h"
#include "frame/diagnostics/exceptions.h"
#include "label/pieces/tag_predicates.h"
#include "platform/locale/code_pages.h"

namespace tervane {

namespace {

bool IsOpening(const TagDescriptor& tag) {
    return tag.startTag == 1 && tag.endTag == 0;
}
bool IsClosing(const TagDescriptor& tag) {
    return tag.endTag == 1 && tag.startTag == 0;
}
bool IsStandalone(const TagDescriptor& tag) {
    return tag.endTag == 0 && tag.startTag == 0;
}
bool IsInline(const TagDescriptor& tag) {
    return IsStandalone(tag) && tag.inlineTag == 1;
}

std::string N(std::u16string_view text) {
    return Narrow(text);
}

} // namespace

void CResourceVerifier::Fail(std::string text, const char* operation) const {
    text += kVerificationTrailer;
    throw CVerificationException(KeepText(text.c_str()), "CResourceVerifier", operation);
}

void CResourceVerifier::AddMessage(const std::string& text, int severity) {
    std::string line = (severity == 2 ? "Alert: " : "Warning: ") + text + "\n";
    std::u16string wide = Widen(line);
    messages_ += wide;
    g_messages.push_back(std::move(wide));
}

int CResourceVerifier::VerifyTagStructure(ResourceRefs resources, const CPieceStream& received) {
    TagList expected;
    BuildExpectedTags(resources, expected);
    if (resources.empty())
        return 1;
    TagList tags;
    for (const auto& piece : received)
        if (const CTagLabelPiece* tag = piece->AsTag())
            tags.push_back(*tag);
    return CompareTags(expected, tags);
}

std::string CResourceVerifier::MismatchText(const CTagLabelPiece& current,
                                            const CTagLabelPiece& expected) const {
    std::string first;
    if (!IsResourceOpen(expected.tag))
        first = resourceId_.empty()
                    ? FormatText("(%s resource", N(resourceKind_).c_str())
                    : FormatText("(%s id = %s", N(resourceKind_).c_str(), resourceId_.c_str());
    std::string second;
    if (IsClosing(expected.tag))
        second = controlId_.empty() ? FormatText(" ,control name = '%s')", N(controlName_).c_str())
                                    : FormatText(" ,control name = '%s' & id = %s)",
                                                 N(controlName_).c_str(), controlId_.c_str());
    else if (!first.empty())
        second = ")";
    return FormatText("Error: Unexpected tag '%s' found, tag '%s' is expected%s%s.\n",
                      N(current.tag.tagText).c_str(), N(expected.tag.tagText).c_str(),
                      first.c_str(), second.c_str());
}

// The source has a <shortcut> here: the received list keeps its place, and
// the expected walk passes over the element when the translator deleted it.
void CResourceVerifier::SkipDeletedShortcut(const TagList& expected, const TagList& received,
                                            std::ptrdiff_t& e, std::ptrdiff_t r) {
    const auto size = static_cast<std::ptrdiff_t>(received.size());
    std::ptrdiff_t k = r < 0 ? 0 : r;
    while (k < size && IsStandalone(received[static_cast<std::size_t>(k)].tag))
        ++k;
    if (k < size) {
        const TagDescriptor& reached = received[static_cast<std::size_t>(k)].tag;
        if (IsOpen(reached, u"shortcut") || IsClose(reached, u"shortcut"))
            return;
    }
    AddMessage(FormatText("Shortcut key has been deleted(%s resource id = %s, control name = '%s' "
                          "id = %s)",
                          N(resourceKind_).c_str(), resourceId_.c_str(), N(controlName_).c_str(),
                          controlId_.c_str()),
               2);
    const auto end = static_cast<std::ptrdiff_t>(expected.size());
    ++e;
    while (e < end && IsInline(expected[static_cast<std::size_t>(e)].tag))
        ++e;
    if (e < end && IsClose(expected[static_cast<std::size_t>(e)].tag, u"shortcut"))
        ++e;
}

// A menu item that had no shortcut may be given one: <shortcut>, at most one
// inline tag, </shortcut>. 1 when the element was taken.
int CResourceVerifier::TakeAddedShortcut(const TagList& received, std::ptrdiff_t& r,
                                         std::ptrdiff_t& remaining) {
    const auto size = static_cast<std::ptrdiff_t>(received.size());
    auto at = [&](std::ptrdiff_t i) -> const TagDescriptor* {
        return i >= 0 && i < size ? &received[static_cast<std::size_t>(i)].tag : nullptr;
    };
    std::string description = "<shortcut>";
    ++r;
    --remaining;
    description += ", ";
    const TagDescriptor* tag = at(r);
    if (tag != nullptr && IsClosing(*tag) && IsClose(*tag, u"</shortcut>")) {
        description += "</shortcut>.";
    } else if (tag != nullptr && IsInline(*tag)) {
        ++r;
        --remaining;
        description += N(tag->name);
        const TagDescriptor* close = at(r);
        if (close == nullptr || !IsClose(*close, u"</shortcut>"))
            return 0;
        description += ", ";
        description += "</shortcut>.";
    } else {
        return 0;
    }
    ++r;
    --remaining;
    if (controlId_.empty())
        AddMessage(FormatText("Shortcut key tags (%s) have been added to %s resource id = %s, "
                              "control name = '%s').",
                              description.c_str(), N(resourceKind_).c_str(), resourceId_.c_str(),
                              N(controlName_).c_str()),
                   2);
    else
        AddMessage(FormatText("Shortcut key tags (%s) have been added to %s resource id = %s, "
                              "control name = '%s' & id = %s).",
                              description.c_str(), N(resourceKind_).c_str(), resourceId_.c_str(),
                              N(controlName_).c_str(), controlId_.c_str()),
                   2);
    return 1;
}

void CResourceVerifier::CompareInlineRun(const TagList& expected, const TagList& received,
                                         std::ptrdiff_t& e, std::ptrdiff_t& r,
                                         std::ptrdiff_t& remaining) {
    TagList expectedRun, receivedRun;
    const auto expectedSize = static_cast<std::ptrdiff_t>(expected.size());
    const auto receivedSize = static_cast<std::ptrdiff_t>(received.size());
    while (e >= 0 && e < expectedSize && IsInline(expected[static_cast<std::size_t>(e)].tag))
        expectedRun.push_back(expected[static_cast<std::size_t>(e++)]);
    while (r >= 0 && r < receivedSize && IsInline(received[static_cast<std::size_t>(r)].tag)) {
        receivedRun.push_back(received[static_cast<std::size_t>(r++)]);
        --remaining;
    }
    VerifyNumPlaceHolders(expectedRun, receivedRun);
    // The caller's advance of both lands on the first tag behind the run.
    --e;
    --r;
    ++remaining;
}

int CResourceVerifier::CompareTags(const TagList& expected, const TagList& received) {
    const auto expectedSize = static_cast<std::ptrdiff_t>(expected.size());
    const auto receivedSize = static_cast<std::ptrdiff_t>(received.size());
    std::ptrdiff_t e = 0, r = 0, remaining = receivedSize;
    CTagLabelPiece current;
    const CTagLabelPiece* previous = nullptr;
    CTagLabelPiece previousCopy;
    auto receivedAt = [&](std::ptrdiff_t i) -> const CTagLabelPiece* {
        return i >= 0 && i < receivedSize ? &received[static_cast<std::size_t>(i)] : nullptr;
    };
    while (e < expectedSize) {
        if (remaining > 0) {
            if (const CTagLabelPiece* at = receivedAt(r))
                current = *at;
            --remaining;
        } else if (expectedSize > receivedSize) {
            Fail(FormatText("Error: Unexpected end found, tag '%s' is expected.\n",
                            N(expected[static_cast<std::size_t>(e)].tag.name).c_str()));
        }
        const CTagLabelPiece* want = &expected[static_cast<std::size_t>(e)];
        if (IsNamedResourceOpen(want->tag)) {
            resourceKind_ = GetTagWord(want->tag);
            resourceId_ = GetIdAttribute(want->tag);
        }
        if (IsInline(want->tag) || IsInline(current.tag)) {
            CompareInlineRun(expected, received, e, r, remaining);
            ++e;
            ++r;
            continue;
        }
        if (IsOpening(want->tag) && IsOpen(want->tag, u"shortcut")) {
            SkipDeletedShortcut(expected, received, e, r);
            if (e >= expectedSize)
                break;
        } else if (IsOpening(current.tag) && IsOpen(current.tag, u"shortcut") &&
                   previous != nullptr && IsOpening(previous->tag) &&
                   IsOpen(previous->tag, u"item") && resourceKind_ == u"menu") {
            if (TakeAddedShortcut(received, r, remaining) == 1)
                if (const CTagLabelPiece* at = receivedAt(r))
                    current = *at;
        }
        want = &expected[static_cast<std::size_t>(e)];
        if (IsOpening(want->tag)) {
            controlName_ = GetTagWord(want->tag);
            controlId_ = GetIdAttribute(want->tag);
        }
        if (IsInline(want->tag) || IsInline(current.tag)) {
            CompareInlineRun(expected, received, e, r, remaining);
            ++e;
            ++r;
            continue;
        }
        if (want->tag.tagText.view() != current.tag.tagText.view())
            Fail(MismatchText(current, *want));
        previousCopy = current;
        previous = &previousCopy;
        if (IsClosing(want->tag) && IsClose(want->tag, u"/resources") &&
            receivedSize > expectedSize && r + 1 < receivedSize)
            Fail(FormatText("Error: The tag '%s' has been added after the resource context.\n",
                            N(received[static_cast<std::size_t>(r + 1)].tag.name).c_str()));
        ++e;
        ++r;
    }
    return 1;
}

} // namespace tervane
