#include "model/dialog_template.h"

#include <gtest/gtest.h>

#include "frame/diagnostics/exceptions.h"
#include "model/dialog_resource.h"
#include "tests/model/dialog_template_builder.h"

namespace tervane {
namespace {

using test::NameOrOrdinal;
using test::TemplateControl;
using test::TemplateDialog;

// Each form of header and of control record ends on the byte where the
// next record starts: the controls behind it read back whole.
TEST(DialogTemplate, EachFormReadsUpToTheNextRecord) {
    struct Case {
        const char* what;
        std::uint32_t style;
        bool extended;
        std::optional<NameOrOrdinal> menu;
        std::optional<NameOrOrdinal> windowClass;
        DWORD isExtended;
        WORD menuOrdinal;
    };
    const Case cases[] = {
        {"font by DS_FIXEDSYS alone", 0x08, false, {}, {}, 0, 0},
        {"font in the extended form", 0x40, true, NameOrOrdinal::Name(u"M"), {}, 1, 0},
        {"menu and class by number", 0, false, NameOrOrdinal::Number(7),
         NameOrOrdinal::Number(0x8002), 0, 7},
        // Only 0xFFFF0001 marks the extended form; anything else is a style.
        {"0xFFFF0002", 0xFFFF0002, false, {}, {}, 0, 0},
    };
    TemplateControl icon;
    icon.title = NameOrOrdinal::Number(42);
    TemplateControl named;
    named.windowClass = NameOrOrdinal::Name(u"SysLink");
    named.title = NameOrOrdinal::Name(u"link");
    TemplateControl data;
    data.creationData = {1, 2, 3};
    data.title = NameOrOrdinal::Name(u"x");
    for (const Case& c : cases) {
        TemplateDialog dialog;
        dialog.style = c.style;
        dialog.extended = c.extended;
        dialog.fontBlock = (c.style & 0x48) != 0;
        dialog.menu = c.menu;
        dialog.windowClass = c.windowClass;
        dialog.title = u"T";
        dialog.controls = {icon, named, data};
        auto bytes = test::BuildTemplate(dialog);
        CDialogTemplateReader reader;
        DialogHeader header = reader.ReadHeader(bytes);
        EXPECT_EQ(header.isExtended, c.isExtended) << c.what;
        EXPECT_EQ(header.style, c.style) << c.what;
        EXPECT_EQ(header.menuOrdinal, c.menuOrdinal) << c.what;
        EXPECT_EQ(header.title, u"T") << c.what;
        EXPECT_EQ(header.weight, c.extended ? 700 : 0) << c.what;
        const DialogControl first = reader.ReadControl();
        EXPECT_EQ(first.titleOrdinal, 42) << c.what;
        EXPECT_EQ(first.idHigh, c.extended ? 0xABCD : 0) << c.what;
        const DialogControl second = reader.ReadControl();
        EXPECT_EQ(second.className, u"SysLink") << c.what;
        EXPECT_EQ(second.title, u"link") << c.what;
        const DialogControl third = reader.ReadControl();
        EXPECT_EQ(third.creationData.size(), 3u) << c.what;
        EXPECT_EQ(third.title, u"x") << c.what;
        EXPECT_EQ(third.width, 10) << c.what;
    }
}

// Every template cut short ends in the corrupted-document exception, also
// where the resource's size is smaller than the bytes at hand.
TEST(DialogTemplate, EveryShortTemplateIsCorrupted) {
    TemplateDialog dialog;
    dialog.extended = true;
    dialog.style = 0x40;
    dialog.fontBlock = true;
    dialog.title = u"Title";
    dialog.menu = NameOrOrdinal::Name(u"M");
    TemplateControl control;
    control.title = NameOrOrdinal::Name(u"Label");
    control.creationData = {9, 9};
    dialog.controls = {control, control};
    const auto bytes = test::BuildTemplate(dialog);
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        std::vector<std::uint8_t> cut(bytes.begin(), bytes.begin() + static_cast<long>(size));
        CDialogResource byData;
        byData.identifierText = "1";
        byData.size = static_cast<DWORD>(bytes.size());
        CDialogResource bySize;
        bySize.identifierText = "1";
        bySize.size = static_cast<DWORD>(size);
        if (size < bytes.size()) {
            EXPECT_THROW(CDialogCommand().Execute(cut, &byData), CParserException) << size;
            EXPECT_THROW(CDialogCommand().Execute(bytes, &bySize), CParserException) << size;
        } else {
            EXPECT_NO_THROW(CDialogCommand().Execute(cut, &byData));
            EXPECT_EQ(byData.dialogs.size(), 1u);
        }
    }
    // A count that promises more controls than there are.
    dialog.itemCount = 3;
    auto more = test::BuildTemplate(dialog);
    CDialogResource resource;
    resource.size = static_cast<DWORD>(more.size());
    EXPECT_THROW(CDialogCommand().Execute(more, &resource), CParserException);
}

} // namespace
} // namespace tervane
