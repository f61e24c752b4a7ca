#include <optional>

#include "verify/tag_order.h"

namespace tervane::verify {

namespace {

// The key of each tag of a list in CompareTagSets: the tag text with the
// item and resource it stands in. Walks stop at </resources>.
class KeyWalk {
public:
    // Empty at </resources>.
    std::optional<std::u16string> Next(const CTagLabelPiece& tag) {
        const TagDescriptor& t = tag.tag;
        if (IsResourcesClose(t))
            return std::nullopt;
        if (IsNamedResourceOpen(t)) {
            itemKey_.clear();
            resourceKey_ = u":" + t.tagText.str();
        } else if (IsOpen(t, u"item id") || IsOpen(t, u"combobox")) {
            itemKey_ = u":" + t.tagText.str();
            if (IsOpen(t, u"combobox"))
                inCombo_ = true;
        }
        std::u16string key = t.tagText.str();
        if (!IsResourceOpen(t)) {
            key += itemKey_;
            key += resourceKey_;
        }
        if ((IsClose(t, u"item") || IsResourceOpen(t) || IsClose(t, u"combobox")) &&
            !(inCombo_ && !IsClose(t, u"combobox")))
            itemKey_.clear();
        return key;
    }

private:
    std::u16string itemKey_, resourceKey_;
    bool inCombo_ = false;
};

std::u16string BaseOf(CTagLabelPiece& tag) {
    const std::u16string text = tag.tag.tagText.str();
    const std::size_t colon = text.find(u':');
    if (colon != std::u16string::npos)
        tag.tag.tagText = WideText(std::u16string_view(text).substr(0, colon));
    return tag.tag.tagText.str();
}

std::u16string TextOfTag(const CLabelPiece* piece) {
    const CTagLabelPiece* tag = piece != nullptr ? piece->AsTag() : nullptr;
    return tag != nullptr ? tag->tag.tagText.str() : std::u16string();
}

} // namespace

int TagComparison::CompareTagSets(const Tags& first, const Tags& second, CLabelPiece* anchor,
                                  LONG severity) {
    std::map<std::u16string, std::vector<CTagLabelPiece*>> map;
    KeyWalk firstWalk;
    for (CTagLabelPiece* tag : first) {
        std::optional<std::u16string> key = firstWalk.Next(*tag);
        if (!key)
            break;
        map[*key].push_back(tag);
    }
    int result = 0;
    CLabelPiece* last = anchor;
    CLabelPiece* lastPlain = anchor;
    const bool menuAnchor = anchor != nullptr && IsMenuOpen(*anchor);
    const bool dialogAnchor = anchor != nullptr && IsDialogOpen(*anchor);
    const PieceRange anchorRange = anchor != nullptr ? anchor->range : PieceRange{};
    KeyWalk secondWalk;
    for (CTagLabelPiece* tag : second) {
        std::optional<std::u16string> key = secondWalk.Next(*tag);
        if (!key)
            break;
        if (IsEndTag(*tag))
            continue;
        auto found = map.find(*key);
        if (found != map.end()) {
            CTagLabelPiece* matched = found->second.front();
            found->second.erase(found->second.begin());
            if (found->second.empty())
                map.erase(found);
            last = matched;
            if (!IsShortcutOpen(matched->tag))
                lastPlain = matched;
            continue;
        }
        CLabelPiece* at = last != nullptr && IsShortcutOpen(*last) ? lastPlain : last;
        PieceRange range = at != nullptr ? at->range : tag->range;
        const std::u16string base = BaseOf(*tag);
        std::u16string message;
        LONG level = severity;
        if (base == u"<separator/>") {
            message = Compose("The tag '%s' has been deleted.", {base});
            level = kError;
        } else if (IsShortcutTag(*tag)) {
            message = Compose("The shortcut segment has been deleted.", {});
            level = kWarning;
        } else {
            message = Compose("The tag '%s' has been deleted.", {base});
        }
        if (base == u"<item>" && menuAnchor) {
            message = Compose("An '<item>' segment has been deleted within the resource '%s'.",
                              {TextOfTag(anchor)});
            range = anchorRange;
        } else if (base == u"<menu>" && menuAnchor) {
            message = Compose("An '<menu>' segment has been deleted within the resource '%s'.",
                              {TextOfTag(anchor)});
            range = anchorRange;
        } else if (tag->tag.name.view() == u"groupbox" && dialogAnchor) {
            message = Compose("The '%s' segment has been deleted within the resource '%s'.",
                              {base, TextOfTag(anchor)});
            range = anchorRange;
        }
        if (!IsShortcutTag(*tag))
            result = 1;
        Report(report_, level, 17, message, range);
    }
    for (auto& [key, tags] : map) {
        for (CTagLabelPiece* tag : tags) {
            if (IsEndTag(*tag))
                continue;
            const std::u16string text = tag->tag.tagText.str();
            std::u16string message = Compose("The tag '%s' has been inserted.", {text});
            LONG level = severity;
            PieceRange range = tag->range;
            if (tag->tag.name.view() == u"separator") {
                level = kError;
            } else if (IsShortcutTag(*tag)) {
                message = Compose("The shortcut segment has been inserted.", {});
                level = kWarning;
            }
            if (text == u"<item>" && menuAnchor) {
                message =
                    Compose("An extra '<item>' segment has been inserted within the resource '%s'.",
                            {TextOfTag(anchor)});
                range = anchorRange;
            } else if (text == u"<menu>" && menuAnchor) {
                message =
                    Compose("An extra '<menu>' segment has been inserted within the resource '%s'.",
                            {TextOfTag(anchor)});
                range = anchorRange;
            } else if (text == u"<groupbox>" && dialogAnchor) {
                message = Compose("An extra '<groupbox...>' segment has been inserted within the "
                                  "resource '%s'.",
                                  {TextOfTag(anchor)});
                range = anchorRange;
            }
            if (!IsShortcutTag(*tag))
                result = 1;
            Report(report_, level, 16, message, range);
        }
    }
    return result;
}

int TagComparison::CompareTagOrder(const Tags& expected, const Tags& actual, LONG severity) {
    int result = 0;
    std::size_t e = 0, a = 0;
    while (e < expected.size() && a < actual.size()) {
        const CTagLabelPiece& want = *expected[e];
        const CTagLabelPiece& have = *actual[a];
        if (want.tag.tagText.view() != have.tag.tagText.view()) {
            if (!IsShortcutTag(want) && !IsShortcutTag(have)) {
                Report(report_, severity, 40,
                       Compose("Tag order has been changed. Tag '%s' was expected.",
                               {want.tag.tagText.view()}),
                       have.range);
                result = 1;
            } else if (IsShortcutTag(want)) {
                ++e;
                continue;
            } else {
                ++a;
                continue;
            }
        }
        ++e;
        ++a;
    }
    return result;
}

int TagComparison::CompareInlineTags(const Pieces& target, const Pieces& source) {
    int result = 0;
    Tags inlineTarget, inlineSource;
    CLabelPiece* segmentStart = nullptr;
    std::size_t s = 0;
    for (CLabelPiece* piece : target) {
        CTagLabelPiece* tag = AsTag(piece);
        if (tag == nullptr) {
            if (segmentStart == nullptr && piece->AsText() != nullptr)
                segmentStart = piece;
            continue;
        }
        if (HasNoMark(*tag)) {
            if (segmentStart == nullptr)
                segmentStart = piece;
            inlineTarget.push_back(tag);
            continue;
        }
        if (IsShortcutTag(*tag))
            continue;
        for (; s < source.size(); ++s) {
            CTagLabelPiece* other = AsTag(source[s]);
            if (other == nullptr)
                continue;
            if (HasNoMark(*other)) {
                inlineSource.push_back(other);
            } else if (!IsShortcutTag(*other)) {
                ++s;
                break;
            }
        }
        if (!inlineTarget.empty() || !inlineSource.empty()) {
            if (CompareSegmentTags(inlineTarget, inlineSource,
                                   segmentStart != nullptr ? segmentStart : piece) == 1)
                result = 1;
        }
        inlineTarget.clear();
        inlineSource.clear();
        segmentStart = nullptr;
    }
    return result;
}

int TagComparison::CompareSegmentTags(const Tags& inlineTarget, const Tags& inlineSource,
                                      CLabelPiece* anchor) {
    struct Class {
        bool (*holds)(const TagDescriptor&);
        LONG setSeverity, orderSeverity;
    };
    const Class classes[] = {
        {IsOrderedTag, kError, kError},
        {[](const TagDescriptor& t) { return !IsOrderedTag(t) && IsNumberedPlaceholder(t); },
         kError, kNote},
        {[](const TagDescriptor& t) { return !IsOrderedTag(t) && !IsNumberedPlaceholder(t); },
         kWarning, kNote},
    };
    int result = 0;
    for (const Class& each : classes) {
        Tags target, source;
        for (CTagLabelPiece* tag : inlineTarget)
            if (each.holds(tag->tag))
                target.push_back(tag);
        for (CTagLabelPiece* tag : inlineSource)
            if (each.holds(tag->tag))
                source.push_back(tag);
        if (target.empty() && source.empty())
            continue;
        int found = CompareTagSets(target, source, anchor, each.setSeverity);
        if (found == 0)
            found = CompareTagOrder(source, target, each.orderSeverity);
        result |= found;
    }
    return result;
}

void TagComparison::ExtractMenus(const Tags& list, Tags& entries, TagMap& map) {
    Tags* current = nullptr;
    for (CTagLabelPiece* tag : list) {
        const TagDescriptor& t = tag->tag;
        if (IsMenusClose(t))
            break;
        if ((IsMenuOpen(t) && HasIdAttribute(t)) || IsMenusOpen(t)) {
            entries.push_back(tag);
            current = &map[t.tagText.str()];
            current->push_back(tag);
        } else if (current != nullptr && !HasIdAttribute(t) &&
                   (IsMenuOpen(t) || IsOpen(t, u"item"))) {
            current->push_back(tag);
        }
    }
}

void TagComparison::ExtractDialogs(const Tags& list, int flag, Tags& entries, TagMap& map) {
    Tags* current = nullptr;
    std::u16string groupKey;
    for (CTagLabelPiece* tag : list) {
        const TagDescriptor& t = tag->tag;
        if (IsDialogsClose(t))
            break;
        if (IsDialogOpen(t) || IsDialogsOpen(t)) {
            entries.push_back(tag);
            current = &map[t.tagText.str()];
            current->push_back(tag);
            groupKey = t.tagText.str();
        } else if (current != nullptr && IsOpen(t, u"groupbox")) {
            current->push_back(tag);
            groupKey = t.tagText.str();
        } else if (current != nullptr && flag == 0 &&
                   (IsOpen(t, u"caption") || IsOpen(t, u"items"))) {
            tag->tag.tagText = WideText(t.tagText.str() + u":" + groupKey);
            current->push_back(tag);
        }
    }
}

} // namespace tervane::verify
