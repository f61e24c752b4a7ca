#pragma once
// Writes each merged resource anew: turns its pieces back into the exact texts
// of the resource, checks each against its limit, rebuilds the binary form and
// puts it into the work file under the target language.
#include <string>

#include "frame/resource.h"
#include "model/resource_buffer.h"

namespace tervane {

struct MenuItemRecord;

class CUpdateVisitor : public CResourceVisitor {
public:
    int VisitVersionInfo(CVersionInfoResource* resource) override;
    int VisitDialog(CDialogResource* resource) override;
    int VisitMenu(CMenuResource* resource) override;
    int VisitStringBlock(CStringBlockResource* resource) override;

    // The text of a string, menu item or version value; with escape, a '%'
    // is doubled for printf and the escapes of the inline tags become the
    // control characters. Notes the tags of the last text for the messages.
    std::u16string GetTranslatedText(const CLabelPieceList& pieces, bool escape);
    // An empty text is an Error, or with allowEmpty an Alert; a text over
    // maximum is an Error in a final conversion and is cut in a preview.
    // Always 0; an Error raises CVerificationException.
    int VerifyTranslatedTextLen(std::u16string& text, std::size_t maximum, bool allowEmpty,
                                bool isPopup);
    // The number in the first structural tag, 0 without one; notes its tag
    // word and id as the unit now worked on.
    long GetUnitNumber(const CLabelPieceList& pieces);

    // Writes one resource into workPath in a transaction of its own. 0, or 1
    // when a Win32 call failed, which is traced and logged, not raised.
    virtual int UpdateResourceData(WORD type, const std::string& identifier, const void* data,
                                   DWORD size, WORD language);

    std::string resourceKind;
    std::string resourceId;
    std::string controlName;
    std::string controlId;
    LONG isSeparator = 0;

private:
    void ClearContext();
    // A menu item's checked text, into buffer.
    void WriteMenuText(CResourceBuffer& buffer, const MenuItemRecord& record, bool topLevel);
    void WriteExtendedItems(CResourceBuffer& buffer, const std::vector<MenuItemRecord>& records,
                            bool topLevel);
    void WritePlainItems(CResourceBuffer& buffer, const std::vector<MenuItemRecord>& records,
                         bool topLevel);
    void WriteTrailingWords(CResourceBuffer& buffer, const MenuItemRecord& record);
};

} // namespace tervane
