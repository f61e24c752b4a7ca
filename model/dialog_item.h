#pragma once
// One dialog: its template, and the flat list of pieces it gives to the
// document. The document's order is neither the template's nor the screen's:
// group boxes take the controls that lie in them, found by geometry after a
// sort by position, and each level then stands in tab order.
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "label/pieces/label_piece.h"
#include "model/dialog_controls.h"
#include "model/dialog_template.h"
#include "model/resource_buffer.h"
#include "model/text_checks.h"

namespace tervane {

class CLabelParser;

using ControlList = std::vector<DialogControl>;

// The sorts work in arrays of this size; a template with more controls is
// taken as corrupted.
inline constexpr std::size_t kMaxDialogControls = 1000;
// Characters of a title taken for the document.
inline constexpr std::size_t kMaxTitleLength = 256;

class CDialogItem {
public:
    CDialogItem();
    ~CDialogItem();
    CDialogItem(CDialogItem&&) noexcept;
    CDialogItem& operator=(CDialogItem&&) noexcept;

    // Reads the template and fills pieces; a dialog with nothing to translate
    // is marked skipped and has none. Throws CParserException on a template
    // that runs past the data.
    void ParseDialog(Bytes data, const std::string& identifier, WORD language);

    // Exchange sorts, kept exactly: controls at the same spot end in the order
    // these exchanges leave, and that decides which group box takes what.
    void SortByPosition();
    static void SortByTabIndex(ControlList& list, bool includeFirst);

    // Splits list, sorted by position, into the content of each group box
    // behind start and the rest; each box's content is appended to groupLists
    // with the box in front, and the rest last of all. The list is taken.
    void PartitionControls(std::size_t start, ControlList& list, bool isTop);
    // The content list of the group box at tabIndex, taken out; empty if none.
    ControlList TakeGroupList(WORD tabIndex);

    // Each control is copied into emittedControls, then gives its pieces;
    // a group box gives its content behind it.
    void EmitControls(const ControlList& list, bool includeFirst);
    void EmitControl(const DialogControl& control);
    // The list's start tag is the control's, given whole.
    void EmitListItems(const std::string& dialogIdentifier, WORD controlId, WideText tagText,
                       const ControlKindTags& kind);
    // Appends the pieces of a dialog title (isCaption) or a control's text.
    void AnalyseDialogText(std::u16string_view text, std::string_view marks, bool isCaption);

    // The translated titles from the merged pieces, in document order, into
    // newTexts; combo and list box items go to the table of init data.
    void ComposeTexts();
    // The template in the extended form, with the new titles, into buffer.
    void ConstructDialogBuffer();
    // An empty text is an Error; one over maximum is an Error in a final
    // conversion and is cut in a preview.
    static void VerifyTextLength(std::u16string& text, std::size_t maximum, const std::string& kind,
                                 const std::string& resourceId, const std::string& controlName,
                                 const std::string& controlId);
    // Whether the control's title stood as an element of its own in the
    // document, so that a new text of newTexts belongs to it.
    static bool TakesNewText(const DialogControl& control);

    // Composed by ComposeTexts: the title first if the dialog has one.
    std::vector<std::u16string> newTexts;

    DialogHeader header;
    // In template order, then the top level of the dialog.
    ControlList controls;
    // Every control in the order the emission met it, with or without a tag.
    ControlList emittedControls;
    std::vector<ControlList> groupLists;
    std::string identifier;
    CLabelPieceList pieces;
    // The label parser of this dialog; without one, the thread's serves.
    std::unique_ptr<CLabelParser> parser;
    long skipped = 0;
    // Hotkeys of the translated dialog, with the controls that use them.
    HotkeyTable hotkeys;
    WORD language = 0;
    WORD targetLanguage = 0;
    CResourceBuffer buffer;

private:
    void ReadAndEmitControls(CDialogTemplateReader& reader);
    // A group box's content, whose controls move into emittedControls.
    void EmitTakenControls(ControlList list);
    void EmitContent(const DialogControl& control);
    void EmitControlPieces(const DialogControl& control);
    void PartitionLevel(std::size_t start, ControlList& list, std::size_t depth);
    void CloseGroupBox(const char* kind);
    void AppendDialogOpen();
    void AppendOpen(WideText name, WideText tagText, std::uint32_t words);
    void AppendOpen(WideText name, const ConstantTagText& tagText);
    void AppendClose(WideText name, const ConstantTagText& tagText);
    void AppendCaption(std::u16string_view title, std::string_view marks, bool isCaption);
};

} // namespace tervane
