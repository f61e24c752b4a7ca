#include "label/pieces/tag_predicates.h"

#include <initializer_list>

#include "platform/locale/code_pages.h"

namespace tervane {
namespace {

using Words = std::initializer_list<std::u16string_view>;

bool Contains(const TagDescriptor& tag, std::u16string_view word) {
    return tag.tagText.find(word) != std::u16string::npos;
}

bool AnyOpen(const TagDescriptor& tag, Words words) {
    for (const auto word : words) {
        if (IsOpen(tag, word))
            return true;
    }
    return false;
}

bool AnyClose(const TagDescriptor& tag, Words words) {
    for (const auto word : words) {
        if (IsClose(tag, word))
            return true;
    }
    return false;
}

constexpr Words kResourceWords = {u"menus", u"dialogs", u"versioninfo", u"stringtable"};
constexpr Words kControlWords = {u"item",  u"radiobutton", u"button",
                                 u"label", u"checkbox",    u"caption"};
constexpr Words kSegmentCloseWords = {u"string",      u"legalcopyright", u"productversion",
                                      u"productname", u"comments",       u"legaltrademarks",
                                      u"item",        u"button",         u"label",
                                      u"radiobutton", u"checkbox",       u"caption"};

int ResourceKind(const TagDescriptor& tag, bool (*test)(const TagDescriptor&, Words)) {
    // "item" before "items": an <items> tag counts as a menu's, as it always has.
    if (test(tag, {u"menus", u"item", u"menu"}))
        return 1;
    if (test(tag, {u"dialogs", u"items", u"dialog"}))
        return 2;
    if (test(tag, {u"versioninfo"}))
        return 4;
    if (test(tag, {u"stringtable"}))
        return 3;
    return 0;
}

bool IsDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

} // namespace

bool IsOpen(const TagDescriptor& tag, std::u16string_view word) {
    return tag.endTag == 0 && tag.startTag == 1 && Contains(tag, word);
}

bool IsClose(const TagDescriptor& tag, std::u16string_view word) {
    return tag.endTag == 1 && tag.startTag == 0 && Contains(tag, word);
}

int ResourceKindOfOpen(const TagDescriptor& tag) {
    return ResourceKind(tag, AnyOpen);
}
int ResourceKindOfClose(const TagDescriptor& tag) {
    return ResourceKind(tag, AnyClose);
}

bool IsResourceOpen(const TagDescriptor& tag) {
    return AnyOpen(tag, kResourceWords);
}
bool IsResourceClose(const TagDescriptor& tag) {
    return AnyClose(tag, kResourceWords);
}
bool IsDialogsOpen(const TagDescriptor& tag) {
    return IsOpen(tag, u"dialogs");
}
bool IsDialogsClose(const TagDescriptor& tag) {
    return IsClose(tag, u"dialogs");
}
bool IsDialogOpen(const TagDescriptor& tag) {
    return IsOpen(tag, u"dialog");
}
bool IsDialogClose(const TagDescriptor& tag) {
    return IsClose(tag, u"dialog");
}
bool IsMenuOpen(const TagDescriptor& tag) {
    return IsOpen(tag, u"menu");
}
bool IsMenuClose(const TagDescriptor& tag) {
    return IsClose(tag, u"menu");
}
bool IsMenusOpen(const TagDescriptor& tag) {
    return IsOpen(tag, u"menus");
}
bool IsMenusClose(const TagDescriptor& tag) {
    return IsClose(tag, u"menus");
}
bool IsStringOpen(const TagDescriptor& tag) {
    return IsOpen(tag, u"string");
}
bool IsVersionInfoOpen(const TagDescriptor& tag) {
    return IsOpen(tag, u"versioninfo");
}

bool IsVersionInfoEntryOpen(const TagDescriptor& tag) {
    return AnyOpen(
        tag, {u"versioninfo", u"legalcopyright", u"comments", u"productversion", u"productname"});
}

bool IsResourcesOpen(const TagDescriptor& tag) {
    return IsOpen(tag, u"resources");
}
bool IsResourcesClose(const TagDescriptor& tag) {
    return IsClose(tag, u"resources");
}

bool IsNamedResourceOpen(const TagDescriptor& tag) {
    return AnyOpen(tag, {u"dialog id", u"menu id", u"string id", u"versioninfo"});
}

bool IsShortcutOpen(const TagDescriptor& tag) {
    return IsOpen(tag, u"shortcut");
}
bool IsShortcutClose(const TagDescriptor& tag) {
    return IsClose(tag, u"shortcut");
}

bool IsSegmentOpen(const TagDescriptor& tag) {
    return AnyOpen(tag, {u"string id", u"legalcopyright", u"productversion", u"productname",
                         u"comments", u"legaltrademarks", u"item", u"button", u"label",
                         u"radiobutton", u"checkbox", u"caption"}) &&
           !IsOpen(tag, u"items");
}

bool IsSegmentClose(const TagDescriptor& tag) {
    // An open <item> also ends the segment before it.
    return AnyClose(tag, kSegmentCloseWords) || (IsOpen(tag, u"item") && !IsOpen(tag, u"items"));
}

bool IsControlTextOpen(const TagDescriptor& tag) {
    return !IsOpen(tag, u"items") && AnyOpen(tag, kControlWords);
}

bool IsControlTextClose(const TagDescriptor& tag) {
    return !IsClose(tag, u"items") && AnyClose(tag, kControlWords);
}

bool IsItemOpen(const TagDescriptor& tag) {
    return IsOpen(tag, u"item") && !IsOpen(tag, u"items");
}
bool IsItemClose(const TagDescriptor& tag) {
    return IsClose(tag, u"item") && !IsClose(tag, u"items");
}

bool HasIdAttribute(const TagDescriptor& tag) {
    return tag.tagText.size() > 1 && tag.tagText.find(u" id=", 1) != std::u16string::npos;
}

bool IsSeparatorMark(const TagDescriptor& tag) {
    return tag.name == u",";
}

bool IsNumberedPlaceholder(const TagDescriptor& tag) {
    const std::u16string_view text = tag.tagText;
    if (text.empty() || text[0] != u'%')
        return false;
    // The digits at the end of the text, read towards its start, give the number;
    // any digit other than 0 among them makes it non-zero, however long the run.
    for (std::size_t i = text.size(); i > 1 && IsDigit(text[i - 1]); --i) {
        if (text[i - 1] != u'0')
            return true;
    }
    return false;
}

bool IsFixedInlineTag(const TagDescriptor& tag) {
    if (tag.endTag != 0 || tag.startTag != 0)
        return false;
    for (const std::u16string_view mark : {u"\\n", u"\\r", u"\\b", u"\\f", u"&", u"+", u","}) {
        if (tag.tagText == mark)
            return true;
    }
    return false;
}

bool IsOrderedTag(const TagDescriptor& tag) {
    return tag.endTag != 0 || tag.startTag != 0 ||
           (!IsNumberedPlaceholder(tag) && !IsFixedInlineTag(tag));
}

std::string GetIdAttribute(const TagDescriptor& tag) {
    const std::u16string_view text = tag.tagText;
    const std::size_t id = text.find(u"id");
    if (id == std::u16string::npos)
        return {};
    const std::size_t open = text.find(u'"', id + 2);
    if (open == std::u16string::npos)
        return {};
    const std::size_t close = text.find(u'"', open + 1);
    if (close == std::u16string::npos)
        return {};
    return Narrow(std::u16string_view(text).substr(open + 1, close - open - 1));
}

std::u16string GetTagWord(const TagDescriptor& tag) {
    const std::u16string_view text = tag.tagText;
    const std::size_t lt = text.find(u'<');
    if (lt == std::u16string::npos)
        return {};
    std::size_t end = text.find(u' ', lt + 1);
    if (end == std::u16string::npos)
        end = text.find(u'>', lt + 1);
    if (end == std::u16string::npos)
        end = text.size();
    return std::u16string(text.substr(lt + 1, end - lt - 1));
}

// A piece that is no tag answers false, 0 or empty.
#define TERVANE_ON_PIECE(Name, Result, Empty)                                                      \
    Result Name(const CLabelPiece& piece) {                                                        \
        const TagDescriptor* tag = TagOf(piece);                                                   \
        return tag != nullptr ? Name(*tag) : Empty;                                                \
    }

TERVANE_ON_PIECE(ResourceKindOfOpen, int, 0)
TERVANE_ON_PIECE(ResourceKindOfClose, int, 0)
TERVANE_ON_PIECE(IsResourceOpen, bool, false)
TERVANE_ON_PIECE(IsResourceClose, bool, false)
TERVANE_ON_PIECE(IsDialogsOpen, bool, false)
TERVANE_ON_PIECE(IsDialogsClose, bool, false)
TERVANE_ON_PIECE(IsDialogOpen, bool, false)
TERVANE_ON_PIECE(IsDialogClose, bool, false)
TERVANE_ON_PIECE(IsMenuOpen, bool, false)
TERVANE_ON_PIECE(IsMenuClose, bool, false)
TERVANE_ON_PIECE(IsMenusOpen, bool, false)
TERVANE_ON_PIECE(IsMenusClose, bool, false)
TERVANE_ON_PIECE(IsStringOpen, bool, false)
TERVANE_ON_PIECE(IsVersionInfoOpen, bool, false)
TERVANE_ON_PIECE(IsVersionInfoEntryOpen, bool, false)
TERVANE_ON_PIECE(IsResourcesOpen, bool, false)
TERVANE_ON_PIECE(IsResourcesClose, bool, false)
TERVANE_ON_PIECE(IsNamedResourceOpen, bool, false)
TERVANE_ON_PIECE(IsShortcutOpen, bool, false)
TERVANE_ON_PIECE(IsShortcutClose, bool, false)
TERVANE_ON_PIECE(IsSegmentOpen, bool, false)
TERVANE_ON_PIECE(IsSegmentClose, bool, false)
TERVANE_ON_PIECE(IsControlTextOpen, bool, false)
TERVANE_ON_PIECE(IsControlTextClose, bool, false)
TERVANE_ON_PIECE(IsItemOpen, bool, false)
TERVANE_ON_PIECE(IsItemClose, bool, false)
TERVANE_ON_PIECE(HasIdAttribute, bool, false)
TERVANE_ON_PIECE(IsSeparatorMark, bool, false)
TERVANE_ON_PIECE(IsNumberedPlaceholder, bool, false)
TERVANE_ON_PIECE(IsFixedInlineTag, bool, false)
TERVANE_ON_PIECE(IsOrderedTag, bool, false)
TERVANE_ON_PIECE(GetIdAttribute, std::string, std::string())
TERVANE_ON_PIECE(GetTagWord, std::u16string, std::u16string())

#undef TERVANE_ON_PIECE

bool IsOpen(const CLabelPiece& piece, std::u16string_view word) {
    const TagDescriptor* tag = TagOf(piece);
    return tag != nullptr && IsOpen(*tag, word);
}

std::optional<std::size_t> AfterGroupOpen(const CPieceStream& stream, std::u16string_view group) {
    for (std::size_t at = 0; at < stream.size(); ++at)
        if (IsOpen(*stream[at], group))
            return at + 1;
    return std::nullopt;
}

bool IsClose(const CLabelPiece& piece, std::u16string_view word) {
    const TagDescriptor* tag = TagOf(piece);
    return tag != nullptr && IsClose(*tag, word);
}

} // namespace tervane
