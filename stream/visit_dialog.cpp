#include "label/pieces/tag_words.h"
#include "model/dialog_resource.h"
#include "stream/output_visitor.h"

namespace tervane {

namespace {

constexpr std::uint32_t kIndentedOpen = kWordDialog | kWordCombobox | kWordListbox | kWordGroupbox |
                                        kWordItems | kWordButton | kWordLabel | kWordRadiobutton |
                                        kWordCheckbox | kWordCaption | kWordItem;
constexpr std::uint32_t kContainers = kWordItems | kWordCombobox | kWordListbox;
constexpr std::uint32_t kIndentedClose =
    kWordDialog | kWordCombobox | kWordListbox | kWordGroupbox | kWordItems;
constexpr std::uint32_t kLineAfterAny =
    kWordDialog | kWordGroupbox | kWordCombobox | kWordListbox | kWordItems;
constexpr std::uint32_t kLineAfterClose = kWordLabel | kWordButton | kWordRadiobutton |
                                          kWordCheckbox | kWordEdit | kWordCaption | kWordItem;

} // namespace

// The words are searched in the whole tag text, attributes included.
void COutputVisitor::SendIndentBefore(const TagWords& words, bool start) {
    if (start) {
        if (words.Any(kIndentedOpen))
            SendIndent(level_);
        if (words.Any(kContainers))
            ++level_;
        return;
    }
    if (words.AnyAfterSlash(kContainers))
        --level_;
    if (words.Any(kIndentedClose))
        SendIndent(level_);
}

void COutputVisitor::SendLineEndAfter(const TagWords& words) {
    if (words.Any(kLineAfterAny) || words.AnyAfterSlash(kLineAfterClose))
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
            const CTagLabelPiece* tagPiece = piece->AsTag();
            if (tagPiece == nullptr)
                continue;
            const TagDescriptor& tag = tagPiece->tag;
            // The same words serve the white space before and after the tag.
            const TagWords words = tagPiece->Words();
            if (tag.startTag == 1 && tag.endTag == 0)
                SendIndentBefore(words, true);
            else if (tag.endTag == 1 && tag.startTag == 0)
                SendIndentBefore(words, false);
            SendTag(tag);
            SendLineEndAfter(words);
        }
    }
    CloseFrameIfLast(kDialogsGroup);
    return 0;
}

} // namespace tervane
