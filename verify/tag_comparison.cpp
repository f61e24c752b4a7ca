#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "verify/tag_order.h"

namespace tervane::verify {

namespace {

// The key of each tag of a list in CompareTagSets: the tag text with the
// item and resource it stands in. Walks stop at </resources>.
class KeyWalk {
public:
    // False at </resources>. Writes the key when key is given: the walk
    // must see every tag, but only some keys are looked at.
    bool Next(const CTagLabelPiece& tag, std::u16string* key) {
        const TagDescriptor& t = tag.tag;
        if (IsResourcesClose(t))
            return false;
        const bool resourceOpen = IsResourceOpen(t);
        const bool comboOpen = IsOpen(t, u"combobox");
        if (IsNamedResourceOpen(t)) {
            itemKey_.clear();
            resourceKey_.assign(u":").append(t.tagText.view());
        } else if (IsOpen(t, u"item id") || comboOpen) {
            itemKey_.assign(u":").append(t.tagText.view());
            if (comboOpen)
                inCombo_ = true;
        }
        if (key != nullptr) {
            key->assign(t.tagText.view());
            if (!resourceOpen) {
                key->append(itemKey_);
                key->append(resourceKey_);
            }
        }
        const bool comboClose = IsClose(t, u"combobox");
        if ((IsClose(t, u"item") || resourceOpen || comboClose) && !(inCombo_ && !comboClose))
            itemKey_.clear();
        return true;
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
    // The first list's start tags with their keys, in list order; end tags
    // are never looked up. Each key leads to its first untaken entry, and
    // each entry to the next of the same key.
    constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    struct Entry {
        std::u16string key;
        CTagLabelPiece* tag;
        std::size_t sameKey = kNone;
        bool taken = false;
    };
    std::vector<Entry> entries;
    entries.reserve(first.size());
    KeyWalk firstWalk;
    std::u16string key;
    for (CTagLabelPiece* tag : first) {
        const bool end = IsEndTag(*tag);
        if (!firstWalk.Next(*tag, end ? nullptr : &key))
            break;
        if (!end)
            entries.push_back({key, tag});
    }
    struct Chain {
        std::size_t head, tail;
    };
    std::unordered_map<std::u16string_view, Chain> chains(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        auto [chain, added] = chains.try_emplace(entries[i].key, Chain{i, i});
        if (!added) {
            entries[chain->second.tail].sameKey = i;
            chain->second.tail = i;
        }
    }
    int result = 0;
    CLabelPiece* last = anchor;
    CLabelPiece* lastPlain = anchor;
    const bool menuAnchor = anchor != nullptr && IsMenuOpen(*anchor);
    const bool dialogAnchor = anchor != nullptr && IsDialogOpen(*anchor);
    const PieceRange anchorRange = anchor != nullptr ? anchor->range : PieceRange{};
    KeyWalk secondWalk;
    for (CTagLabelPiece* tag : second) {
        const bool end = IsEndTag(*tag);
        if (!secondWalk.Next(*tag, end ? nullptr : &key))
            break;
        if (end)
            continue;
        auto found = chains.find(key);
        if (found != chains.end() && found->second.head != kNone) {
            Entry& entry = entries[found->second.head];
            found->second.head = entry.sameKey;
            entry.taken = true;
            CTagLabelPiece* matched = entry.tag;
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
    // The untaken ones in key order, and in list order within a key.
    std::vector<const Entry*> left;
    for (const Entry& entry : entries)
        if (!entry.taken)
            left.push_back(&entry);
    std::stable_sort(left.begin(), left.end(),
                     [](const Entry* a, const Entry* b) { return a->key < b->key; });
    for (const Entry* entry : left) {
        CTagLabelPiece* tag = entry->tag;
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
