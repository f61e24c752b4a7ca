#include "verify/text_checks.h"

#include <algorithm>
#include <cwctype>

namespace tervane::verify {

namespace {

constexpr char kEmpty[] = "The text content is empty.";
constexpr char kTooLong[] = "The text length is longer than the allowed %s characters ";

std::u16string Decimal(std::size_t value) {
    std::string digits = std::to_string(value);
    return std::u16string(digits.begin(), digits.end());
}

bool AnyStart(const CTagLabelPiece& tag) {
    return IsStartTag(tag);
}
bool AnyEnd(const CTagLabelPiece& tag) {
    return IsEndTag(tag);
}
bool ControlTextOpen(const CTagLabelPiece& tag) {
    return IsControlTextOpen(tag.tag);
}
bool ControlTextClose(const CTagLabelPiece& tag) {
    return IsControlTextClose(tag.tag);
}
bool ItemOpen(const CTagLabelPiece& tag) {
    return IsItemOpen(tag.tag);
}
bool ItemClose(const CTagLabelPiece& tag) {
    return IsItemClose(tag.tag);
}

bool IsBlank(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\v' || c == u'\f';
}

std::u16string_view Trimmed(std::u16string_view text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

const std::u16string kComboMessage = u"All Text Item in the combo box control " +
                                     std::u16string(12, u'\t') + u"have not been translated. " +
                                     std::u16string(12, u'\t') +
                                     u"\n\n Please translate all the text item and then try again.";

} // namespace

bool TextChecks::TextFits(const Pieces& pieces, std::size_t limit, bool& isEmpty) {
    std::size_t length = 0;
    for (CLabelPiece* piece : pieces) {
        if (const CTextLabelPiece* text = piece->AsText())
            length += text->text.size();
        else if (const CTagLabelPiece* tag = piece->AsTag(); tag != nullptr && HasNoMark(*tag))
            ++length;
    }
    isEmpty = length == 0;
    return length > 0 && length <= limit;
}

int TextChecks::TextScan(const Pieces& pieces, const Scan& scan) {
    int found = 0;
    Pieces gathered;
    const CTagLabelPiece* open = nullptr;
    for (CLabelPiece* piece : pieces) {
        const CTagLabelPiece* tag = piece->AsTag();
        if (tag == nullptr) {
            if (piece->AsText() != nullptr)
                gathered.push_back(piece);
            continue;
        }
        if (scan.isStart(*tag)) {
            gathered.clear();
            open = tag;
        } else if (HasNoMark(*tag)) {
            gathered.push_back(piece);
        } else if (scan.isEnd(*tag)) {
            bool isEmpty = false;
            const std::size_t limit = scan.limitOf(*tag);
            if (!TextFits(gathered, limit, isEmpty)) {
                if (isEmpty) {
                    if (open != nullptr)
                        Report(report_, scan.emptySeverity, 95, Compose(kEmpty, {}), open->range);
                } else {
                    PieceRange range{gathered.front()->range.start, gathered.back()->range.end};
                    Report(report_, kError, 95, Compose(kTooLong, {Decimal(limit)}), range);
                }
                found = 1;
            }
            gathered.clear();
        }
    }
    return found;
}

int TextChecks::CheckResources(const Pieces& target, const Pieces& /*source*/) {
    int found = 0;
    int kind = 0;
    Pieces gathered;
    auto run = [&] {
        if (gathered.empty())
            return;
        int result = 0;
        switch (kind) {
        case 1:
            result = CheckMenus(gathered);
            break;
        case 2:
            result = CheckDialogs(gathered);
            break;
        case 3:
            result = CheckStrings(gathered);
            break;
        case 4:
            result = CheckVersionInfo(gathered);
            break;
        default:
            break;
        }
        found |= result;
    };
    for (CLabelPiece* piece : target) {
        if (const CTagLabelPiece* tag = piece->AsTag()) {
            if (IsResourceOpen(tag->tag)) {
                const int open = ResourceKindOfOpen(tag->tag);
                if (open != kind) {
                    run();
                    gathered.clear();
                    kind = open;
                }
            } else if (IsResourceClose(tag->tag) && ResourceKindOfClose(tag->tag) == kind) {
                run();
                gathered.clear();
                continue;
            }
        }
        gathered.push_back(piece);
    }
    return found;
}

int TextChecks::CheckVersionInfo(const Pieces& pieces) {
    return TextScan(pieces, {AnyStart, AnyEnd,
                             [](const CTagLabelPiece&) -> std::size_t { return 300; }, kError});
}

int TextChecks::CheckStrings(const Pieces& pieces) {
    int found =
        TextScan(pieces, {AnyStart, AnyEnd,
                          [](const CTagLabelPiece&) -> std::size_t { return 4096; }, kError});
    Pieces starts;
    for (CLabelPiece* piece : pieces)
        if (const CTagLabelPiece* tag = piece->AsTag(); tag != nullptr && IsStartTag(*tag))
            starts.push_back(piece);
    return CheckDuplicateIds(starts) | found;
}

int TextChecks::CheckDialogs(const Pieces& pieces) {
    int found = 0;
    Pieces gathered;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const CTagLabelPiece* tag = pieces[i]->AsTag();
        if (tag != nullptr && IsItemOpen(tag->tag)) {
            while (i + 1 < pieces.size()) {
                const CTagLabelPiece* next = pieces[++i]->AsTag();
                if (next != nullptr && IsItemClose(next->tag))
                    break;
            }
            continue;
        }
        if (tag != nullptr && IsDialogOpen(tag->tag)) {
            CheckShortcuts(gathered);
            CheckHotkeys(gathered);
            found |= CheckDuplicateIds(gathered);
            gathered.clear();
        } else if (tag != nullptr && IsDialogClose(tag->tag)) {
            CheckHotkeys(gathered);
            found |= CheckDuplicateIds(gathered);
            gathered.clear();
        } else {
            gathered.push_back(pieces[i]);
        }
    }
    found |= TextScan(pieces, {ControlTextOpen, ControlTextClose,
                               [](const CTagLabelPiece& end) -> std::size_t {
                                   return IsItemClose(end.tag) ? 32767 : 256;
                               },
                               kError});
    return found;
}

int TextChecks::CheckMenus(const Pieces& pieces) {
    int found = 0;
    Pieces level, whole;
    for (CLabelPiece* piece : pieces) {
        const CTagLabelPiece* tag = piece->AsTag();
        if (tag != nullptr && IsMenuOpen(tag->tag) && HasIdAttribute(tag->tag) && !whole.empty()) {
            CheckShortcuts(whole);
            found |= CheckDuplicateIds(whole);
            whole.clear();
        }
        if (tag != nullptr && IsMenuClose(tag->tag)) {
            Pieces popup;
            while (!level.empty()) {
                CLabelPiece* last = level.back();
                level.pop_back();
                if (const CTagLabelPiece* lastTag = last->AsTag();
                    lastTag != nullptr && IsMenuOpen(lastTag->tag))
                    break;
                popup.push_back(last);
            }
            std::reverse(popup.begin(), popup.end());
            CheckHotkeys(popup);
            whole.insert(whole.end(), popup.begin(), popup.end());
            continue;
        }
        level.push_back(piece);
    }
    if (!whole.empty()) {
        CheckShortcuts(whole);
        found |= CheckDuplicateIds(whole);
    }
    found |= TextScan(pieces, {ItemOpen, ItemClose,
                               [](const CTagLabelPiece&) -> std::size_t { return 256; }, kWarning});
    return found;
}

int TextChecks::CheckDuplicateIds(const Pieces& pieces) {
    int found = 0;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const CTagLabelPiece* tag = pieces[i]->AsTag();
        if (tag != nullptr && HasIdAttribute(tag->tag))
            found |= FindDuplicates(*tag, Pieces(pieces.begin() + i + 1, pieces.end()));
    }
    return found;
}

int TextChecks::FindDuplicates(const CTagLabelPiece& tag, const Pieces& rest) {
    int found = 0;
    for (CLabelPiece* piece : rest) {
        const CTagLabelPiece* other = piece->AsTag();
        if (other != nullptr && HasIdAttribute(other->tag) &&
            other->tag.tagText.view() == tag.tag.tagText.view()) {
            Report(report_, kError, 91,
                   Compose("The tag '%s' is a duplicate tag.", {other->tag.tagText.view()}),
                   other->range);
            found = 1;
        }
    }
    return found;
}

void TextChecks::CheckHotkeys(const Pieces& pieces) {
    std::u16string seen;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const CTagLabelPiece* tag = pieces[i]->AsTag();
        if (tag == nullptr)
            continue;
        if (IsShortcutOpen(tag->tag)) {
            while (i + 1 < pieces.size()) {
                const CTagLabelPiece* next = pieces[++i]->AsTag();
                if (next != nullptr && IsShortcutClose(next->tag))
                    break;
            }
            continue;
        }
        if (tag->tag.name.view() != u"&")
            continue;
        const CTextLabelPiece* text = i + 1 < pieces.size() ? pieces[i + 1]->AsText() : nullptr;
        if (text == nullptr || text->text.empty()) {
            Report(report_, kWarning, 9,
                   Compose("Some Text has to follow the hotkey '%s' placeholder.",
                           {tag->tag.name.view()}),
                   tag->range);
            if (i + 1 >= pieces.size())
                return;
            continue;
        }
        const char16_t key = static_cast<char16_t>(std::towupper(text->text[0]));
        if (seen.find(key) != std::u16string::npos)
            Report(report_, kWarning, 8,
                   Compose("The hotkey '%s' has been duplicated.", {std::u16string(1, key)}),
                   tag->range);
        else
            seen += key;
    }
}

void TextChecks::CheckShortcuts(const Pieces& pieces) {
    std::u16string current;
    std::vector<std::u16string> seen;
    bool inside = false;
    const CTagLabelPiece* open = nullptr;
    for (CLabelPiece* piece : pieces) {
        const CTagLabelPiece* tag = piece->AsTag();
        if (tag != nullptr && IsShortcutOpen(tag->tag)) {
            inside = true;
            current.clear();
            open = tag;
        } else if (tag != nullptr && inside &&
                   (IsShortcutClose(tag->tag) || IsSeparatorMark(tag->tag))) {
            bool equal = false;
            for (const std::u16string& each : seen) {
                if (each == current) {
                    Report(report_, kWarning, 10,
                           Compose("The shortcut '%s' has been duplicated.", {current}),
                           open->range);
                    equal = true;
                }
            }
            const bool close = IsShortcutClose(tag->tag);
            if (!equal && (!close || !current.empty()))
                seen.push_back(current);
            current.clear();
            if (close)
                inside = false;
        } else if (inside) {
            if (tag != nullptr)
                current += tag->tag.name.view();
            else if (const CTextLabelPiece* text = piece->AsText())
                current += text->text.view();
        }
    }
}

void TextChecks::CheckComboBoxes(const Pieces& target) {
    const CTagLabelPiece* anchor = nullptr;
    int seen = 0;
    LONG state = 0;
    for (std::size_t i = 0; i < target.size(); ++i) {
        const CTagLabelPiece* tag = target[i]->AsTag();
        if (tag == nullptr)
            continue;
        if (tag->tag.tagText.view() == u"<dialogs>")
            anchor = tag;
        if (tag->tag.name.find(u"combobox") == std::u16string_view::npos)
            continue;
        for (std::size_t j = i + 1; j < target.size(); ++j) {
            if (IsClose(*target[j], u"combobox")) {
                i = j;
                break;
            }
            const CTextLabelPiece* text = target[j]->AsText();
            if (text == nullptr || Trimmed(text->text.view()).empty())
                continue;
            if (seen == 1 && ((text->inSegment == 0) != (state == 0))) {
                if (anchor != nullptr)
                    Report(report_, kNote, 96, kComboMessage, anchor->range);
                return;
            }
            seen = 1;
            state = text->inSegment;
        }
    }
}

} // namespace tervane::verify
