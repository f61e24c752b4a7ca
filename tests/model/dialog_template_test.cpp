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

TEST(DialogTemplate, HeaderFields) {
    struct Case {
        const char* what;
        TemplateDialog dialog;
        DWORD isExtended;
        DWORD style;
        OptionalText menuName;
        WORD menuOrdinal;
        OptionalText className;
        OptionalText title;
        OptionalText fontName;
        WORD weight;
    };
    TemplateDialog plainFont;
    plainFont.style = 0x80000040;
    plainFont.fontBlock = true;
    plainFont.title = u"Plain";
    TemplateDialog extendedFont = plainFont;
    extendedFont.extended = true;
    TemplateDialog fixedSys;
    fixedSys.style = 0x08;
    fixedSys.fontBlock = true;
    fixedSys.fontName = u"Fixed";
    TemplateDialog names;
    names.menu = NameOrOrdinal::Name(u"MAINMENU");
    names.windowClass = NameOrOrdinal::Name(u"MyClass");
    TemplateDialog numbers;
    numbers.menu = NameOrOrdinal::Number(7);
    numbers.windowClass = NameOrOrdinal::Number(0x8002);
    // Only 0xFFFF0001 marks the extended form; anything else is a style.
    TemplateDialog notExtended;
    notExtended.style = 0xFFFF0002;

    const Case cases[] = {
        {"plain font", plainFont, 0, 0x80000040, {}, 0, {}, u"Plain", u"MS Shell Dlg", 0},
        {"extended font", extendedFont, 1, 0x80000040, {}, 0, {}, u"Plain", u"MS Shell Dlg", 700},
        {"fixedsys alone", fixedSys, 0, 0x08, {}, 0, {}, {}, u"Fixed", 0},
        {"names", names, 0, 0x80000000, u"MAINMENU", 0, u"MyClass", {}, {}, 0},
        {"numbers", numbers, 0, 0x80000000, {}, 7, {}, {}, {}, 0},
        {"0xFFFF0002", notExtended, 0, 0xFFFF0002, {}, 0, {}, {}, {}, 0},
    };
    for (const Case& c : cases) {
        auto bytes = test::BuildTemplate(c.dialog);
        CDialogTemplateReader reader;
        DialogHeader header = reader.ReadHeader(bytes);
        EXPECT_EQ(header.isExtended, c.isExtended) << c.what;
        EXPECT_EQ(reader.isExtended, c.isExtended) << c.what;
        EXPECT_EQ(header.style, c.style) << c.what;
        EXPECT_EQ(header.menuName, c.menuName) << c.what;
        EXPECT_EQ(header.menuOrdinal, c.menuOrdinal) << c.what;
        EXPECT_EQ(header.className, c.className) << c.what;
        EXPECT_EQ(header.title, c.title) << c.what;
        EXPECT_EQ(header.fontName, c.fontName) << c.what;
        EXPECT_EQ(header.weight, c.weight) << c.what;
        EXPECT_EQ(header.cx, 200) << c.what;
    }
}

TEST(DialogTemplate, ControlFields) {
    struct Case {
        const char* what;
        TemplateControl control;
        bool extended;
        WORD classOrdinal;
        OptionalText className;
        OptionalText title;
        WORD titleOrdinal;
        std::size_t creationBytes;
        WORD idHigh;
    };
    TemplateControl icon;
    icon.title = NameOrOrdinal::Number(42);
    TemplateControl named;
    named.windowClass = NameOrOrdinal::Name(u"SysLink");
    named.title = NameOrOrdinal::Name(u"link");
    TemplateControl data;
    data.creationData = {1, 2, 3};
    data.title = NameOrOrdinal::Name(u"x");
    const Case cases[] = {
        {"empty title", TemplateControl{}, false, 0x82, {}, u"", 0, 0, 0},
        {"icon", icon, false, 0x82, {}, {}, 42, 0, 0},
        {"class by name", named, true, 0, u"SysLink", u"link", 0, 0, 0xABCD},
        {"creation data", data, true, 0x82, {}, u"x", 0, 3, 0xABCD},
    };
    for (const Case& c : cases) {
        TemplateDialog dialog;
        dialog.extended = c.extended;
        dialog.controls = {c.control, c.control};
        auto bytes = test::BuildTemplate(dialog);
        CDialogTemplateReader reader;
        reader.ReadHeader(bytes);
        // The second record checks that the first ended on the right byte.
        for (int i = 0; i < 2; ++i) {
            DialogControl control = reader.ReadControl();
            EXPECT_EQ(control.classOrdinal, c.classOrdinal) << c.what;
            EXPECT_EQ(control.className, c.className) << c.what;
            EXPECT_EQ(control.title, c.title) << c.what;
            EXPECT_EQ(control.titleOrdinal, c.titleOrdinal) << c.what;
            EXPECT_EQ(control.creationData.size(), c.creationBytes) << c.what;
            EXPECT_EQ(control.idHigh, c.idHigh) << c.what;
            EXPECT_EQ(control.helpId, c.extended ? 0x77u : 0u) << c.what;
            EXPECT_EQ(control.width, 10) << c.what;
        }
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
