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

void MoveToKeys(ControlList& list, std::span<const SortKey> keys) {
    ControlList sorted;
    sorted.reserve(list.size());
    for (const SortKey& key : keys)
        sorted.push_back(std::move(list[key.at]));
    list = std::move(sorted);
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
// only a box within a box goes one level deeper.
void CDialogItem::PartitionLevel(std::size_t start, ControlList& list, std::size_t depth) {
    if (depth > kMaxDialogControls)
        throw CParserException(kCorruptedDocumentMessage);
    while (start < list.size()) {
        ControlList inside;
        ControlList outside;
        outside.reserve(list.size());
        outside.insert(outside.end(), std::make_move_iterator(list.begin()),
                       std::make_move_iterator(list.begin() + static_cast<std::ptrdiff_t>(start)));
        std::size_t cursor = start;
        bool found = false;
        // Only the box's place is read once it has moved on: a moved control keeps it.
        const DialogControl* box = nullptr;
        for (std::size_t at = start; at < list.size(); ++at) {
            DialogControl& control = list[at];
            if (box != nullptr) {
                if (LiesIn(control, *box)) {
                    inside.push_back(std::move(control));
                    found = true;
                } else {
                    outside.push_back(std::move(control));
                }
                continue;
            }
            ++cursor;
            if (IsGroupBox(control)) {
                box = &control;
                inside.reserve(list.size() - at);
                inside.push_back(control);
            }
            outside.push_back(std::move(control));
        }
        list = std::move(outside);
        if (found)
            PartitionLevel(1, inside, depth + 1);
        start = cursor;
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
