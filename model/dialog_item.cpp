// A dialog's pieces, in the order of the document.
#include "model/dialog_item.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "frame/diagnostics/exceptions.h"
#include "frame/diagnostics/trace.h"
#include "frame/resource.h"
#include "label/grammars/label_parser.h"
#include "model/dialog_controls.h"
#include "model/dlginit_table.h"
#include "model/read_failure.h"
#include "platform/locale/code_pages.h"
#include "platform/locale/locale_info.h"

namespace tervane {

namespace {

bool Contains(std::string_view text, std::string_view word) {
    return text.find(word) != std::string_view::npos;
}

bool NameContains(const CLabelPiece& piece, std::u16string_view word) {
    const TagDescriptor* tag = TagOf(piece);
    return tag != nullptr && tag->name.find(word) != std::u16string::npos;
}

// How a container's list ends: Content unless its <items> is the last piece;
// Empty if the piece before that is the container's own start tag, so that
// it has no title either.
enum class Ending { Empty, TitleOnly, Content };
Ending HowItEnds(const CLabelPieceList& pieces, std::u16string_view owner) {
    const std::size_t n = pieces.size();
    if (n == 0 || !NameContains(*pieces[n - 1], u"items"))
        return Ending::Content;
    if (n >= 2 && NameContains(*pieces[n - 2], owner))
        return Ending::Empty;
    return Ending::TitleOnly;
}

std::string TrimNarrow(const std::string& text) {
    const char* const blanks = " \t\r\n\v\f";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

void TraceWithIdentifier(const char* format, const std::string& identifier) {
    std::vector<char> buffer(std::char_traits<char>::length(format) + identifier.size() + 1);
    std::snprintf(buffer.data(), buffer.size(), format, identifier.c_str());
    Trace(buffer.data());
}

std::u16string_view TitleText(const OptionalText& title) {
    return title ? std::u16string_view(*title).substr(0, kMaxTitleLength) : std::u16string_view();
}

constexpr WideText kDialogName = WideText::Constant(u"dialog");
constexpr ConstantTagText kDialogClose = ConstantTag(u"</dialog>");
constexpr WideText kCaptionName = WideText::Constant(u"caption");
constexpr ConstantTagText kCaptionOpen = ConstantTag(u"<caption>");
constexpr ConstantTagText kCaptionClose = ConstantTag(u"</caption>");
constexpr WideText kItemsName = WideText::Constant(u"items");
constexpr ConstantTagText kItemsOpen = ConstantTag(u"<items>");
constexpr ConstantTagText kItemsClose = ConstantTag(u"</items>");
constexpr WideText kItemName = WideText::Constant(u"item");
constexpr ConstantTagText kItemOpen = ConstantTag(u"<item>");
constexpr ConstantTagText kItemClose = ConstantTag(u"</item>");

UINT AnsiCodePage(WORD language) {
    char buffer[8] = {};
    if (GetLocaleInfoA(language, LOCALE_IDEFAULTANSICODEPAGE, buffer, sizeof buffer) == 0)
        return CP_ACP;
    return static_cast<UINT>(std::atoi(buffer));
}

} // namespace

CDialogItem::CDialogItem() = default;
CDialogItem::~CDialogItem() = default;
CDialogItem::CDialogItem(CDialogItem&&) noexcept = default;
CDialogItem& CDialogItem::operator=(CDialogItem&&) noexcept = default;

void CDialogItem::AppendOpen(WideText name, WideText tagText, std::uint32_t words) {
    pieces.push_back(MakeStructuralTag(std::move(name), std::move(tagText), 0, 1, words));
}

void CDialogItem::AppendOpen(WideText name, const ConstantTagText& tagText) {
    pieces.push_back(MakeStructuralTag(std::move(name), tagText, 0, 1));
}

void CDialogItem::AppendClose(WideText name, const ConstantTagText& tagText) {
    pieces.push_back(MakeStructuralTag(std::move(name), tagText, 1, 0));
}

void CDialogItem::AppendCaption(std::u16string_view title, std::string_view marks, bool isCaption) {
    AppendOpen(kCaptionName, kCaptionOpen);
    AnalyseDialogText(title, marks, isCaption);
    AppendClose(kCaptionName, kCaptionClose);
}

void CDialogItem::AppendDialogOpen() {
    // The identifier may hold any narrow text: widened as the whole tag is.
    std::string tagText = "<";
    tagText += DialogTagBody(identifier);
    tagText += '>';
    WideText wide = WidenTagText(tagText);
    const std::uint32_t words = PackTagWords(FindTagWords(wide));
    pieces.push_back(MakeStructuralTag(kDialogName, std::move(wide), 0, 1, words));
}

void CDialogItem::ParseDialog(Bytes data, const std::string& identifierText, WORD languageId) {
    language = languageId;
    skipped = 0;
    identifier = TrimNarrow(identifierText);

    CDialogTemplateReader reader;
    header = reader.ReadHeader(data);
    const std::u16string_view title = TitleText(header.title);

    if (header.itemCount == 0) {
        if (title.empty()) {
            TraceWithIdentifier("-----Dialog id = %s has been skipped-----\n", identifier);
            skipped = 1;
            return;
        }
        AppendDialogOpen();
        AppendCaption(title, {}, true);
        AppendClose(kDialogName, kDialogClose);
        return;
    }
    if (header.itemCount > kMaxDialogControls)
        ThrowCorrupted(header.isExtended ? 16 : 8, "cDlgItems");

    AppendDialogOpen();
    if (!title.empty())
        AppendCaption(title, {}, true);
    AppendOpen(kItemsName, kItemsOpen);
    ReadAndEmitControls(reader);

    switch (HowItEnds(pieces, u"dialog")) {
    case Ending::Empty:
        pieces.clear();
        TraceWithIdentifier(
            "!!!!!Dialog id = %s has been skipped, there is no translatable contents.!!!!!\n",
            identifier);
        skipped = 1;
        return;
    case Ending::TitleOnly:
        pieces.pop_back();
        AppendClose(kDialogName, kDialogClose);
        return;
    case Ending::Content:
        AppendClose(kItemsName, kItemsClose);
        AppendClose(kDialogName, kDialogClose);
        return;
    }
}

void CDialogItem::ReadAndEmitControls(CDialogTemplateReader& reader) {
    controls.clear();
    controls.reserve(header.itemCount);
    emittedControls.reserve(emittedControls.size() + header.itemCount);
    for (WORD place = 0; place < header.itemCount; ++place) {
        DialogControl control = reader.ReadControl();
        control.tabIndex = place;
        controls.push_back(std::move(control));
    }
    SortByPosition();
    PartitionControls(0, controls, true);
    // The top level is always the last list appended.
    controls = std::move(groupLists.back());
    groupLists.pop_back();
    SortByTabIndex(controls, true);
    // Each group box stays in front of its own list.
    for (ControlList& list : groupLists)
        SortByTabIndex(list, false);
    EmitControls(controls, true);
}

void CDialogItem::EmitControls(const ControlList& list, bool includeFirst) {
    for (std::size_t at = includeFirst ? 0 : 1; at < list.size(); ++at) {
        emittedControls.push_back(list[at]);
        EmitContent(list[at]);
    }
}

void CDialogItem::EmitTakenControls(ControlList list) {
    // The box in front was emitted with the level above.
    for (std::size_t at = 1; at < list.size(); ++at) {
        emittedControls.push_back(std::move(list[at]));
        EmitContent(emittedControls.back());
    }
}

void CDialogItem::EmitContent(const DialogControl& control) {
    EmitControlPieces(control);
    const char* kind = GetControlKind(control.classOrdinal, control.style);
    if (!Contains(kind, "groupbox"))
        return;
    const bool titled = control.title.has_value();
    // The box's content goes behind it; the box may move in the list meanwhile.
    EmitTakenControls(TakeGroupList(control.tabIndex));
    // A box whose title is a number opened no tag, so there is nothing to
    // close: its content stands at this level, and the tags stay balanced.
    if (titled)
        CloseGroupBox(kind);
}

void CDialogItem::CloseGroupBox(const char* kind) {
    const ControlKindTags& tags = GetControlKindTags(kind);
    switch (HowItEnds(pieces, u"groupbox")) {
    case Ending::Empty:
        pieces.pop_back();
        pieces.pop_back();
        return;
    case Ending::TitleOnly:
        pieces.pop_back();
        AppendClose(tags.name, tags.closeTag);
        return;
    case Ending::Content:
        AppendClose(kItemsName, kItemsClose);
        AppendClose(tags.name, tags.closeTag);
        return;
    }
}

void CDialogItem::EmitControl(const DialogControl& control) {
    emittedControls.push_back(control);
    EmitControlPieces(control);
}

void CDialogItem::EmitControlPieces(const DialogControl& control) {
    if (!control.title && !control.className)
        return;
    const char* kind = GetControlKind(control.classOrdinal, control.style);
    if (Contains(kind, "unknown"))
        return;
    const std::u16string_view title = TitleText(control.title);
    const std::string marks = GetStyleMarks(control.classOrdinal, control.style);
    const ControlKindTags& tags = GetControlKindTags(kind);

    if (Contains(kind, "groupbox")) {
        AppendOpen(tags.name, ControlStartTag(control, false), tags.openWords);
        if (!title.empty())
            AppendCaption(title, marks, false);
        AppendOpen(kItemsName, kItemsOpen);
        return;
    }
    // One text for the control's tag and its list's, when it has both.
    WideText tagText = ControlStartTag(control, true);
    if (!title.empty()) {
        AppendOpen(tags.name, tagText, tags.openWords);
        AnalyseDialogText(title, marks, false);
        AppendClose(tags.name, tags.closeTag);
    }
    if (Contains(kind, "combobox") || Contains(kind, "listbox"))
        EmitListItems(identifier, control.id, std::move(tagText), tags);
}

void CDialogItem::EmitListItems(const std::string& dialogIdentifier, WORD controlId,
                                WideText tagText, const ControlKindTags& kind) {
    CDlgInitTable& table = CDlgInitTable::GetInstance();
    const NarrowTextList entries = table.GetItems(dialogIdentifier, controlId);
    if (entries.empty())
        return;
    const UINT codePage = AnsiCodePage(table.language);
    AppendOpen(kind.name, std::move(tagText), kind.openWords);
    for (const std::string& entry : entries) {
        AppendOpen(kItemName, kItemOpen);
        // Up to the first zero byte: the string's own terminator, or where
        // binary data stop showing.
        pieces.push_back(MakeText(Widen(entry.substr(0, entry.find('\0')), codePage)));
        AppendClose(kItemName, kItemClose);
    }
    AppendClose(kind.name, kind.closeTag);
}

} // namespace tervane
