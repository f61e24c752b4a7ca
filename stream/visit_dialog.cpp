#include <initializer_list>

#include "model/dialog_resource.h"
#include "stream/output_visitor.h"

namespace tervane {

namespace {

// A plain search of the whole tag text, attributes included.
bool HasAny(std::u16string_view text, std::initializer_list<std::u16string_view> words) {
    for (std::u16string_view word : words)
        if (text.find(word) != std::u16string_view::npos)
            return true;
    return false;
}

} // namespace

void COutputVisitor::SendIndentBefore(std::u16string_view tagText, bool start) {
    if (start) {
        if (HasAny(tagText, {u"dialog", u"combobox", u"listbox", u"groupbox", u"items", u"button",
                             u"label", u"radiobutton", u"checkbox", u"caption", u"item"}))
            SendIndent(level_);
        if (HasAny(tagText, {u"items", u"combobox", u"listbox"}))
            ++level_;
        return;
    }
    if (HasAny(tagText, {u"/items", u"/combobox", u"/listbox"}))
        --level_;
    if (HasAny(tagText, {u"dialog", u"combobox", u"listbox", u"groupbox", u"items"}))
        SendIndent(level_);
}

void COutputVisitor::SendLineEndAfter(std::u16string_view tagText) {
    if (HasAny(tagText,
               {u"dialog", u"groupbox", u"combobox", u"listbox", u"items", u"/label", u"/button",
                u"/radiobutton", u"/checkbox", u"/edit", u"/caption", u"/item"}))
        SendNewLine();
}

int COutputVisitor::VisitDialog(CDialogResource* resource) {
    const bool hasContent =
        !resource->dialogs.empty() && !resource->dialogs.front()->pieces.empty();
    OpenFrame(kDialogsGroup, hasContent);
    level_ = 2;
    for (const auto& dialog : resource->dialogs) {
        for (const auto& piece : dialog->pieces) {
            if (const CTextLabelPiece* text = TextOf(*piece)) {
                SendText(text->text);
                continue;
            }
            const TagDescriptor* tag = TagOf(*piece);
            if (tag == nullptr)
                continue;
            if (tag->startTag == 1 && tag->endTag == 0)
                SendIndentBefore(tag->tagText, true);
            else if (tag->endTag == 1 && tag->startTag == 0)
                SendIndentBefore(tag->tagText, false);
            SendTag(*tag);
            SendLineEndAfter(tag->tagText);
        }
    }
    CloseFrameIfLast(kDialogsGroup);
    return 0;
}

} // namespace tervane
