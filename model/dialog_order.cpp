// The order of a dialog's controls in the document.
#include <iterator>
#include <span>
#include <utility>

#include "frame/diagnostics/exceptions.h"
#include "frame/resource.h"
#include "model/dialog_controls.h"
#include "model/dialog_item.h"

namespace tervane {

namespace {

bool IsGroupBox(const DialogControl& control) {
    return std::string_view(GetControlKind(control.classOrdinal, control.style)).find("groupbox") !=
           std::string_view::npos;
}

// Only the top-left corner counts, both edges of the box included.
bool LiesIn(const DialogControl& control, const DialogControl& box) {
    const long x = control.x, y = control.y;
    const long left = box.x, top = box.y;
    return x >= left && x <= left + box.width && y >= top && y <= top + box.height;
}

// What the sorts compare, with the control's place in its list: the
// exchanges work on these small records, and the controls move once, to
// where the records end.
struct SortKey {
    int major;
    int minor;
    std::size_t at;
};

// Each control moves once, along the cycles of the order, through one spare.
void MoveToKeys(ControlList& list, std::span<SortKey> keys) {
    for (std::size_t first = 0; first < keys.size(); ++first) {
        if (keys[first].at == first)
            continue;
        DialogControl spare = std::move(list[first]);
        std::size_t to = first;
        for (;;) {
            const std::size_t from = keys[to].at;
            keys[to].at = to; // in place now
            if (from == first) {
                list[to] = std::move(spare);
                break;
            }
            list[to] = std::move(list[from]);
            to = from;
        }
    }
}

} // namespace

void CDialogItem::SortByPosition() {
    if (controls.size() > kMaxDialogControls)
        throw CParserException(kCorruptedDocumentMessage);
    SortKey keys[kMaxDialogControls];
    const std::size_t n = controls.size();
    for (std::size_t i = 0; i < n; ++i)
        keys[i] = {controls[i].y, controls[i].x, i};
    for (std::size_t i = 0; i + 1 < n; ++i)
        for (std::size_t j = i; j < n; ++j) {
            const SortKey& a = keys[i];
            const SortKey& b = keys[j];
            if (a.major > b.major || (a.major == b.major && a.minor > b.minor))
                std::swap(keys[i], keys[j]);
        }
    MoveToKeys(controls, std::span(keys, n));
}

void CDialogItem::SortByTabIndex(ControlList& list, bool includeFirst) {
    if (list.size() > kMaxDialogControls)
        throw CParserException(kCorruptedDocumentMessage);
    SortKey keys[kMaxDialogControls];
    const std::size_t n = list.size();
    for (std::size_t i = 0; i < n; ++i)
        keys[i] = {list[i].tabIndex, 0, i};
    for (std::size_t i = includeFirst ? 0 : 1; i + 1 < n; ++i)
        for (std::size_t j = i; j < n; ++j)
            if (keys[i].major > keys[j].major)
                std::swap(keys[i], keys[j]);
    MoveToKeys(list, std::span(keys, n));
}

void CDialogItem::PartitionControls(std::size_t start, ControlList& list, bool /*isTop*/) {
    PartitionLevel(start, list, 0);
}

// Each box found goes on behind it in the same list, which is a loop here;
// only a box within a box goes one level deeper. A box that takes nothing
// leaves the list as it is.
void CDialogItem::PartitionLevel(std::size_t start, ControlList& list, std::size_t depth) {
    if (depth > kMaxDialogControls)
        throw CParserException(kCorruptedDocumentMessage);
    while (start < list.size()) {
        std::size_t boxAt = start;
        while (boxAt < list.size() && !IsGroupBox(list[boxAt]))
            ++boxAt;
        if (boxAt == list.size())
            break;
        std::size_t firstInside = boxAt + 1;
        while (firstInside < list.size() && !LiesIn(list[firstInside], list[boxAt]))
            ++firstInside;
        start = boxAt + 1;
        if (firstInside == list.size())
            continue;

        ControlList inside;
        inside.reserve(list.size() - boxAt);
        inside.push_back(list[boxAt]);
        const DialogControl& box = inside.front();
        ControlList outside;
        outside.reserve(list.size());
        for (std::size_t at = 0; at < list.size(); ++at) {
            DialogControl& control = list[at];
            if (at > boxAt && LiesIn(control, box))
                inside.push_back(std::move(control));
            else
                outside.push_back(std::move(control));
        }
        list = std::move(outside);
        PartitionLevel(1, inside, depth + 1);
    }
    groupLists.push_back(std::move(list));
}

ControlList CDialogItem::TakeGroupList(WORD tabIndex) {
    for (auto it = groupLists.begin(); it != groupLists.end(); ++it) {
        if (!it->empty() && it->front().tabIndex == tabIndex) {
            ControlList taken = std::move(*it);
            groupLists.erase(it);
            return taken;
        }
    }
    return {};
}

} // namespace tervane
