#include "app/editor_elements.h"

#include <unordered_map>

#include "app/xliff/content.h"
#include "app/xliff/units.h"

namespace tervane::app {

namespace {

std::vector<std::string_view> SplitLines(std::string_view xml) {
    std::vector<std::string_view> lines;
    std::size_t at = 0;
    while (at <= xml.size()) {
        std::size_t end = xml.find('\n', at);
        if (end == std::string_view::npos)
            end = xml.size();
        lines.push_back(xml.substr(at, end - at));
        at = end + 1;
    }
    return lines;
}

// The byte after the opening tag element on line, or npos.
std::size_t ContentStart(std::string_view line, std::string_view element) {
    const std::string open = "<" + std::string(element);
    std::size_t at = line.find(open);
    while (at != std::string_view::npos) {
        const char next = at + open.size() < line.size() ? line[at + open.size()] : '\0';
        if (next == '>' || next == ' ' || next == '/')
            break;
        at = line.find(open, at + 1);
    }
    if (at == std::string_view::npos)
        return at;
    const std::size_t close = line.find('>', at);
    return close == std::string_view::npos ? close : close + 1;
}

// The content offsets of each event, as ToEvents made them from the content.
std::vector<std::size_t> EventOffsets(const xliff::EventList& events, bool hotkeys) {
    std::vector<std::size_t> offsets;
    std::size_t at = 0;
    for (const xliff::Event& event : events) {
        offsets.push_back(at);
        std::size_t length = event.text.size();
        if (hotkeys && !event.IsTag())
            for (char16_t c : event.text)
                length += c == u'&' ? 1 : 0; // && in the content
        at += length;
    }
    offsets.push_back(at);
    return offsets;
}

class Builder {
public:
    explicit Builder(std::string_view xml) : lines_(SplitLines(xml)) {}

    void Outside(const xliff::Event& event, LONG line) {
        EditorElement element = Element(event);
        element.range = {{line, 0}, {line, 0}};
        elements_.push_back(std::move(element));
    }

    // A unit without a target is no translation unit to the editor: its
    // source stands as plain text, in both sides.
    void AddUnit(const xliff::Unit& unit, const xliff::EventList& source, bool hotkeys) {
        if (!unit.target) {
            Side(source, hotkeys, unit.sourceLine, "source");
            return;
        }
        const std::size_t at = elements_.size();
        EditorElement element;
        element.kind = EditorElement::Kind::Unit;
        element.range = {{unit.line, 0}, {unit.line, 0}};
        elements_.push_back(element);
        elements_[at].sourceParts = Side(source, hotkeys, unit.sourceLine, "source");
        elements_[at].targetParts =
            Side(xliff::ToEvents(*unit.target, hotkeys), hotkeys, unit.targetLine, "target");
    }

    EditorElements Take() { return std::move(elements_); }

private:
    static EditorElement Element(const xliff::Event& event) {
        EditorElement element;
        element.kind = event.IsTag() ? EditorElement::Kind::Tag : EditorElement::Kind::Text;
        element.text = event.text;
        element.name = event.name;
        element.startMark = event.start;
        element.endMark = event.end;
        return element;
    }

    std::string_view Line(int line) const {
        return line >= 1 && static_cast<std::size_t>(line) <= lines_.size() ? lines_[line - 1]
                                                                            : std::string_view();
    }

    // The parts of one side on line.
    std::vector<std::size_t> Side(const xliff::EventList& events, bool hotkeys, int line,
                                  std::string_view element) {
        const std::string_view text = Line(line);
        const std::size_t start = ContentStart(text, element);
        std::vector<LONG> columns;
        if (start != std::string_view::npos)
            columns = ContentColumns(text, start);
        const LONG first = start != std::string_view::npos ? static_cast<LONG>(start) + 1 : 1;
        auto column = [&](std::size_t offset) -> LONG {
            if (columns.empty())
                return first;
            return offset < columns.size() ? columns[offset] : columns.back() + 1;
        };
        const std::vector<std::size_t> offsets = EventOffsets(events, hotkeys);
        std::vector<std::size_t> parts;
        for (std::size_t i = 0; i < events.size(); ++i) {
            EditorElement part = Element(events[i]);
            part.range = {{line, column(offsets[i])}, {line, column(offsets[i + 1])}};
            parts.push_back(elements_.size());
            elements_.push_back(std::move(part));
        }
        return parts;
    }

    std::vector<std::string_view> lines_;
    EditorElements elements_;
};

} // namespace

std::vector<LONG> ContentColumns(std::string_view line, std::size_t from) {
    std::vector<LONG> columns;
    std::size_t i = from;
    while (i < line.size()) {
        const char c = line[i];
        if (c == '<') {
            if (line.compare(i, 9, "</source>") == 0 || line.compare(i, 9, "</target>") == 0)
                break;
            const std::size_t close = line.find('>', i);
            if (close == std::string_view::npos)
                break;
            i = close + 1;
            continue;
        }
        const LONG column = static_cast<LONG>(i) + 1;
        if (c == '&') {
            const std::size_t semicolon = line.find(';', i);
            columns.push_back(column);
            i = semicolon == std::string_view::npos ? i + 1 : semicolon + 1;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        std::size_t length = byte < 0x80 ? 1 : byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
        columns.push_back(column);
        if (length == 4)
            columns.push_back(column); // a surrogate pair
        i += length;
    }
    return columns;
}

EditorElements BuildEditorElements(const xliff::Document& document, const xliff::EventList& events,
                                   std::string_view xml) {
    Builder builder(xml);
    std::unordered_map<std::string, const xliff::Unit*> byId;
    std::unordered_map<std::string, int> groupLines;
    for (const xliff::Group& group : document.groups) {
        groupLines.emplace(group.id, group.line);
        for (const xliff::Unit& unit : group.units)
            byId.emplace(unit.id, &unit);
    }
    if (events.empty()) {
        for (const xliff::Group& group : document.groups)
            for (const xliff::Unit& unit : group.units)
                builder.AddUnit(unit, xliff::ToEvents(unit.source, false), false);
        return builder.Take();
    }

    const xliff::Units units = xliff::FindUnits(events);
    auto lineOfGroup = [&](std::size_t group) -> LONG {
        auto found = groupLines.find(units.groups[group].id);
        return found != groupLines.end() ? found->second : document.line;
    };
    // The segment's own tags stand at the line of its unit.
    auto lineOfUnit = [&](std::size_t place, LONG otherwise) -> LONG {
        auto found = byId.find(units.places[place].id);
        return found != byId.end() ? found->second->line : otherwise;
    };
    std::size_t at = 0;
    LONG previousLine = document.line;
    for (std::size_t p = 0; p < units.places.size(); ++p) {
        const xliff::UnitPlace& place = units.places[p];
        const LONG nextLine = lineOfGroup(place.group);
        const std::size_t from = at;
        for (; at < place.begin; ++at) {
            LONG line = events[at].start ? nextLine : previousLine;
            if (events[at].IsTag() && at + 1 == place.begin)
                line = lineOfUnit(p, line);
            else if (events[at].IsTag() && at == from && p > 0)
                line = lineOfUnit(p - 1, line);
            builder.Outside(events[at], line);
        }
        at = place.end;
        previousLine = nextLine;
        auto found = byId.find(place.id);
        if (found == byId.end())
            continue; // a removed unit: neither side
        builder.AddUnit(*found->second, xliff::ToEvents(found->second->source, place.hotkeys),
                        place.hotkeys);
    }
    for (; at < events.size(); ++at)
        builder.Outside(events[at], previousLine);
    return builder.Take();
}

} // namespace tervane::app
