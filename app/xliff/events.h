#pragma once
// The tags and texts of a forward conversion as plain values, in the order
// the host received them. The bilingual document is made from them, and a
// merge rebuilds them from the source and the document.
#include <string>
#include <vector>

namespace tervane::xliff {

struct Event {
    enum class Kind { Tag, Text };
    Kind kind = Kind::Text;
    std::u16string text; // the tag text, or the text
    std::u16string name; // a tag's bare name
    int start = 0, end = 0, inlineMark = 0;

    static Event Text(std::u16string text) { return {Kind::Text, std::move(text), {}, 0, 0, 0}; }
    // As the forward conversion makes an inline tag: name and text alike.
    static Event Inline(std::u16string text) {
        std::u16string name = text;
        return {Kind::Tag, std::move(text), std::move(name), 0, 0, 1};
    }
    bool IsTag() const { return kind == Kind::Tag; }
    bool IsInline() const { return IsTag() && inlineMark != 0; }
    bool operator==(const Event&) const = default;
};

using EventList = std::vector<Event>;

} // namespace tervane::xliff
