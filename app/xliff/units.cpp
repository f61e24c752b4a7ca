#include "app/xliff/units.h"

#include <array>
#include <optional>
#include <unordered_set>

#include "app/xliff/document.h"
#include "label/pieces/tag_predicates.h"
#include "platform/locale/utf8.h"

namespace tervane::xliff {

namespace {

std::string Utf8(std::u16string_view text) {
    std::string out;
    locale::AppendUtf8(out, text);
    return out;
}

TagDescriptor Descriptor(const Event& event) {
    TagDescriptor tag;
    tag.name = event.name;
    tag.tagText = event.text;
    tag.endTag = event.end;
    tag.startTag = event.start;
    tag.inlineTag = event.inlineMark;
    return tag;
}

// The value of NAME="..." in a tag text, with the blank in front of the name.
std::optional<std::string> Attribute(std::u16string_view tag, std::u16string_view name) {
    std::u16string key = u" ";
    key += name;
    key += u"=\"";
    std::size_t at = tag.find(key);
    if (at == std::u16string_view::npos)
        return std::nullopt;
    at += key.size();
    std::size_t close = tag.find(u'"', at);
    if (close == std::u16string_view::npos)
        return std::nullopt;
    return Utf8(tag.substr(at, close - at));
}

// The order in which a version block lists its values: a value that does not
// come later than the one before begins the next block.
constexpr std::array<std::u16string_view, 5> kVersionValues = {
    u"comments", u"legalcopyright", u"productversion", u"productname", u"legaltrademarks"};

std::size_t VersionOrder(std::u16string_view name) {
    for (std::size_t i = 0; i < kVersionValues.size(); ++i) {
        if (kVersionValues[i] == name)
            return i;
    }
    return kVersionValues.size();
}

bool IsControl(std::u16string_view name) {
    return name == u"button" || name == u"radiobutton" || name == u"checkbox" ||
           name == u"groupbox" || name == u"edit" || name == u"label" || name == u"listbox" ||
           name == u"combobox";
}

UnitPlace Place(std::string id, std::string restype, std::string resname, std::string coord = {}) {
    UnitPlace place;
    place.id = std::move(id);
    place.restype = std::move(restype);
    place.resname = std::move(resname);
    place.coord = std::move(coord);
    return place;
}

struct Control {
    std::u16string name;
    std::optional<std::string> id;
    std::string coord;
    std::string unitId; // the id its own text and entries build on
    int entries = 0;
};

class Walk {
public:
    explicit Walk(const EventList& events) : events_(events) {}

    Units Run() {
        for (std::size_t i = 0; i < events_.size(); ++i) {
            const Event& event = events_[i];
            if (!event.IsTag() || event.inlineMark)
                continue;
            const TagDescriptor tag = Descriptor(event);
            if (IsSegmentOpen(tag))
                i = Segment(i);
            else if (event.start)
                Open(event);
            else if (event.end && IsControl(event.name) && !controls_.empty())
                controls_.pop_back();
        }
        return std::move(units_);
    }

private:
    void Open(const Event& event) {
        const std::u16string& name = event.name;
        auto id = Attribute(event.text, u"id");
        if (name == u"menu" && id) {
            NewGroup("mnu." + *id, "menu", *id);
            ordinal_ = 0;
            controls_.clear();
        } else if (name == u"dialog" && id) {
            NewGroup("dlg." + *id, "dialog", *id);
            ordinal_ = 0;
            controls_.clear();
        } else if (name == u"versioninfo") {
            NewVersionBlock();
        } else if (IsControl(name)) {
            controls_.push_back({name, id, Coord(event.text), ControlId(id), 0});
        }
    }

    std::size_t Segment(std::size_t open) {
        const Event& event = events_[open];
        const std::u16string& name = event.name;
        auto id = Attribute(event.text, u"id");
        UnitPlace place;
        if (name == u"string") {
            std::string number = id.value_or("");
            std::string block = "0";
            try {
                block = std::to_string(std::stoul(number) / 16 + 1);
            } catch (const std::exception&) {
            }
            if (group_.empty() || group_ != "str.b" + block) {
                NewGroup("str.b" + block, "x-stringblock", block);
                group_ = "str.b" + block;
            }
            place = Place("str." + number, "string", number);
        } else if (VersionOrder(name) < kVersionValues.size()) {
            if (VersionOrder(name) <= versionOrder_ && versionOrder_ != kVersionValues.size())
                NewVersionBlock();
            versionOrder_ = VersionOrder(name);
            place = Place(version_ + "." + Utf8(name), "x-" + Utf8(name), Utf8(name));
        } else if (name == u"item" && !controls_.empty()) {
            Control& list = controls_.back();
            place = Place(list.unitId + ".i" + std::to_string(++list.entries),
                          list.name == u"combobox" ? "comboboxitem" : "listitem", "");
        } else if (name == u"item") {
            place.id = id ? menu_ + ".i" + *id : menu_ + ".p" + std::to_string(++ordinal_);
            place.restype = "menuitem";
            place.resname = id.value_or("");
            place.hotkeys = true;
        } else if (name == u"caption" && !controls_.empty()) {
            const Control& box = controls_.back();
            place = Place(box.unitId, "groupbox", box.id.value_or(""), box.coord);
        } else if (name == u"caption") {
            place = Place(dialog_ + ".caption", "caption", "caption");
        } else {
            place = Place(ControlId(id), name == u"radiobutton" ? "radio" : Utf8(name),
                          id.value_or(""), Coord(event.text));
            place.hotkeys = event.text.find(u"\"SS_NOPREFIX") == std::u16string::npos;
        }
        return TakeContent(open, std::move(place));
    }

    // By its id where it has one; the tag leaves out IDC_STATIC (0xFFFF),
    // shared by many, so those go by their place among the id-less controls.
    std::string ControlId(const std::optional<std::string>& id) {
        if (id)
            return dialog_ + ".c" + *id;
        return dialog_ + ".s" + std::to_string(++ordinal_);
    }

    // The content behind the opening tag at open, to the segment's close; a
    // shortcut inside is a unit of its own. Gives the index of the close.
    std::size_t TakeContent(std::size_t open, UnitPlace place) {
        std::size_t i = open + 1;
        while (i < events_.size() && (!events_[i].IsTag() || events_[i].inlineMark))
            ++i;
        place.begin = open + 1;
        place.end = i;
        const std::string itemId = place.id;
        Add(std::move(place));
        if (i < events_.size() && IsShortcutOpen(Descriptor(events_[i]))) {
            std::size_t keys = i + 1;
            while (++i < events_.size() && (!events_[i].IsTag() || events_[i].inlineMark)) {
            }
            UnitPlace shortcut = Place(itemId + ".shortcut", "shortcut", "");
            shortcut.translate = false;
            shortcut.begin = keys;
            shortcut.end = i;
            Add(std::move(shortcut));
            if (i < events_.size() && IsShortcutClose(Descriptor(events_[i])))
                ++i;
            else
                Unexpected(i, itemId);
        }
        if (i >= events_.size() || !IsSegmentClose(Descriptor(events_[i])) || events_[i].start != 0)
            Unexpected(i, itemId);
        return i;
    }

    [[noreturn]] void Unexpected(std::size_t at, const std::string& unitId) {
        if (at >= events_.size())
            throw DocumentError("the events end inside the unit", unitId);
        throw DocumentError("the tag " + Utf8(events_[at].text) + " stands inside the unit",
                            unitId);
    }

    void Add(UnitPlace place) {
        place.id = Unique(std::move(place.id));
        if (units_.groups.empty())
            NewGroup("resources", "x-resources", "");
        place.group = units_.groups.size() - 1;
        units_.places.push_back(std::move(place));
    }

    // Two resources of one name (one in each of two languages) give their
    // units the same path; the later ones are told apart by a count.
    std::string Unique(std::string id) {
        if (ids_.insert(id).second)
            return id;
        for (int n = 2;; ++n) {
            std::string next = id + "~" + std::to_string(n);
            if (ids_.insert(next).second)
                return next;
        }
    }

    void NewGroup(std::string id, std::string restype, std::string resname) {
        id = UniqueGroup(std::move(id));
        if (restype == "menu")
            menu_ = id;
        else if (restype == "dialog")
            dialog_ = id;
        else if (restype == "versioninfo")
            version_ = id;
        if (restype != "x-stringblock")
            group_.clear();
        units_.groups.push_back({std::move(id), std::move(restype), std::move(resname)});
    }

    std::string UniqueGroup(std::string id) {
        if (groupIds_.insert(id).second)
            return id;
        for (int n = 2;; ++n) {
            std::string next = id + "~" + std::to_string(n);
            if (groupIds_.insert(next).second)
                return next;
        }
    }

    void NewVersionBlock() {
        ++versions_;
        NewGroup("ver." + std::to_string(versions_), "versioninfo", std::to_string(versions_));
        versionOrder_ = kVersionValues.size();
    }

    static std::string Coord(std::u16string_view tag) {
        auto x = Attribute(tag, u"x"), y = Attribute(tag, u"y"), cx = Attribute(tag, u"width"),
             cy = Attribute(tag, u"height");
        if (!x || !y || !cx || !cy)
            return {};
        return *x + ";" + *y + ";" + *cx + ";" + *cy;
    }

    const EventList& events_;
    Units units_;
    std::unordered_set<std::string> ids_, groupIds_;
    std::string menu_ = "mnu", dialog_ = "dlg", version_ = "ver", group_;
    std::vector<Control> controls_;
    int ordinal_ = 0, versions_ = 0;
    std::size_t versionOrder_ = kVersionValues.size();
};

} // namespace

Units FindUnits(const EventList& events) {
    return Walk(events).Run();
}

} // namespace tervane::xliff
