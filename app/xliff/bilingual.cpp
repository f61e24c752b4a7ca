#include "app/xliff/bilingual.h"

#include <algorithm>
#include <span>
#include <unordered_map>
#include <unordered_set>

#include "app/xliff/units.h"
#include "platform/locale/utf8.h"

namespace tervane::xliff {

namespace {

std::string Utf8(std::u16string_view text) {
    std::string out;
    locale::AppendUtf8(out, text);
    return out;
}

std::span<const Event> Span(const EventList& events, const UnitPlace& place) {
    return std::span<const Event>(events).subspan(place.begin, place.end - place.begin);
}

std::vector<std::u16string> Codes(const Content& content) {
    std::vector<std::u16string> codes;
    for (const Piece& piece : content) {
        if (piece.placeholder)
            codes.push_back(piece.text);
    }
    std::sort(codes.begin(), codes.end());
    return codes;
}

// The target must carry the source's placeholders, each as often; their
// order is the writer's to judge.
void CheckPlaceholders(const Unit& unit) {
    std::vector<std::u16string> source = Codes(unit.source), target = Codes(*unit.target);
    if (source == target)
        return;
    std::vector<std::u16string> lost, added;
    std::set_difference(source.begin(), source.end(), target.begin(), target.end(),
                        std::back_inserter(lost));
    std::set_difference(target.begin(), target.end(), source.begin(), source.end(),
                        std::back_inserter(added));
    int line = unit.targetLine ? unit.targetLine : unit.line;
    if (!lost.empty())
        throw DocumentError("the target lacks the placeholder <ph>" + Utf8(lost.front()) +
                                "</ph> of the source",
                            unit.id, line);
    throw DocumentError("the target has the placeholder <ph>" + Utf8(added.front()) +
                            "</ph>, which the source has not",
                        unit.id, line);
}

// A tool that turns units into plain text (Translate Toolkit by way of PO)
// gives the target back with the source's codes as text. Each code the
// target lacks as a placeholder is looked for in its text, from the left,
// and becomes a placeholder again; the longest code wins at one place.
Content RecoverPlaceholders(const Content& target, const Content& source) {
    std::vector<std::u16string> have = Codes(target), want = Codes(source), missing;
    std::set_difference(want.begin(), want.end(), have.begin(), have.end(),
                        std::back_inserter(missing));
    if (missing.empty())
        return target;
    Content out;
    for (const Piece& piece : target) {
        if (piece.placeholder) {
            out.push_back(piece);
            continue;
        }
        std::u16string text;
        for (std::size_t at = 0; at < piece.text.size();) {
            auto code = missing.end();
            for (auto each = missing.begin(); each != missing.end(); ++each) {
                if (piece.text.compare(at, each->size(), *each) == 0 &&
                    (code == missing.end() || each->size() > code->size()))
                    code = each;
            }
            if (code == missing.end()) {
                text += piece.text[at++];
                continue;
            }
            if (!text.empty())
                out.push_back({false, std::move(text)});
            text.clear();
            out.push_back({true, *code});
            at += code->size();
            missing.erase(code);
        }
        if (!text.empty())
            out.push_back({false, std::move(text)});
    }
    return out;
}

bool IsEmpty(const Content& content) {
    return std::all_of(content.begin(), content.end(),
                       [](const Piece& piece) { return piece.text.empty(); });
}

} // namespace

Document MakeDocument(const EventList& events) {
    Units units = FindUnits(events);
    Document document;
    for (const ResourceGroup& group : units.groups)
        document.groups.push_back({group.id, group.restype, group.resname, {}});
    for (const UnitPlace& place : units.places) {
        Unit unit;
        unit.id = place.id;
        unit.restype = place.restype;
        unit.resname = place.resname;
        unit.coord = place.coord;
        unit.translate = place.translate;
        unit.source = ToContent(Span(events, place), place.hotkeys);
        document.groups[place.group].units.push_back(std::move(unit));
    }
    return document;
}

Merged ApplyDocument(const EventList& source, const Document& document) {
    Units units = FindUnits(source);
    std::unordered_set<std::string> known;
    for (const UnitPlace& place : units.places)
        known.insert(place.id);
    std::unordered_map<std::string, const Unit*> byId;
    for (const Group& group : document.groups) {
        for (const Unit& unit : group.units) {
            if (!known.count(unit.id))
                throw DocumentError("the source file has no unit of this id", unit.id, unit.line);
            byId.emplace(unit.id, &unit);
        }
    }

    Merged merged;
    std::size_t at = 0;
    for (const UnitPlace& place : units.places) {
        merged.events.insert(merged.events.end(), source.begin() + at,
                             source.begin() + place.begin);
        at = place.end;
        std::span<const Event> events = Span(source, place);
        auto found = byId.find(place.id);
        if (found == byId.end()) {
            merged.warnings.push_back(
                {place.id, 0, "the document has no unit of this id: the source is kept"});
            merged.events.insert(merged.events.end(), events.begin(), events.end());
            continue;
        }
        const Unit& unit = *found->second;
        Content expected = ToContent(events, place.hotkeys);
        if (unit.source != expected)
            throw DocumentError("the unit's source is not the source file's \"" +
                                    Utf8(Flatten(expected)) + "\": the document is stale",
                                unit.id, unit.sourceLine ? unit.sourceLine : unit.line);
        bool translated = unit.target && !IsEmpty(*unit.target);
        if (!place.translate || !translated || *unit.target == expected) {
            if (place.translate && !translated && !IsEmpty(expected))
                merged.warnings.push_back(
                    {unit.id, unit.line, "the unit has no translation: the source is kept"});
            merged.events.insert(merged.events.end(), events.begin(), events.end());
            continue;
        }
        Unit recovered = unit;
        recovered.target = RecoverPlaceholders(*unit.target, unit.source);
        CheckPlaceholders(recovered);
        EventList target = ToEvents(*recovered.target, place.hotkeys);
        merged.events.insert(merged.events.end(), target.begin(), target.end());
    }
    merged.events.insert(merged.events.end(), source.begin() + at, source.end());
    return merged;
}

} // namespace tervane::xliff
