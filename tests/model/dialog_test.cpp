#include <gtest/gtest.h>
#include <optional>
#include <regex>
#include <tuple>
#include <variant>

#include "frame/diagnostics/exceptions.h"
#include "model/dialog_controls.h"
#include "model/dialog_item.h"
#include "model/dialog_resource.h"
#include "model/dlginit_table.h"
#include "tests/model/test_images.h"

// Dialog templates built in code, in either form, with the layout's own
// alignment: whole header and each whole control record to 4 bytes.
namespace tervane::test {

// A name or a number, as a template gives menus, classes and titles.
using NameOrOrdinal = std::variant<std::u16string, std::uint16_t>;

struct TemplateControl {
    std::uint32_t style = 0x50000000; // WS_CHILD | WS_VISIBLE
    std::int16_t x = 0, y = 0, cx = 10, cy = 10;
    std::uint16_t id = 1;
    NameOrOrdinal windowClass = std::uint16_t{0x82};
    NameOrOrdinal title = u"";
    std::vector<std::uint8_t> creationData{};
};

struct TemplateDialog {
    bool extended = false;
    std::uint32_t style = 0x80000000;  // WS_POPUP
    std::optional<NameOrOrdinal> menu; // none: a zero word
    std::u16string title;
    bool fontBlock = false; // written where the style asks for one
    std::u16string typeface = u"MS Shell Dlg";
    std::vector<TemplateControl> controls;
    std::optional<std::uint16_t> itemCount; // none: the number of controls
};

inline void Item(Bytes& b, const std::optional<NameOrOrdinal>& item) {
    if (!item)
        b.U16(0);
    else if (const auto* name = std::get_if<std::u16string>(&*item))
        b.Text(*name);
    else
        b.U16(0xFFFF).U16(std::get<std::uint16_t>(*item));
}

inline std::vector<std::uint8_t> BuildTemplate(const TemplateDialog& d) {
    Bytes b;
    if (d.extended)
        b.U32(0xFFFF0001).U32(0x1234).U32(0); // signature, help id, extended style
    b.U32(d.style);
    if (!d.extended)
        b.U32(0);
    b.U16(d.itemCount.value_or(static_cast<std::uint16_t>(d.controls.size())));
    b.U16(0).U16(0).U16(200).U16(100);
    Item(b, d.menu);
    b.U16(0); // no class
    b.Text(d.title);
    if (d.fontBlock) {
        b.U16(8);
        if (d.extended)
            b.U16(700).U8(1).U8(204);
        b.Text(d.typeface);
    }
    for (const TemplateControl& c : d.controls) {
        b.Align();
        if (d.extended)
            b.U32(0x77).U32(0); // help id, extended style
        b.U32(c.style);
        if (!d.extended)
            b.U32(0);
        for (std::int16_t v : {c.x, c.y, c.cx, c.cy})
            b.U16(static_cast<std::uint16_t>(v));
        b.U16(c.id);
        if (d.extended)
            b.U16(0xABCD); // high word of the id
        Item(b, c.windowClass);
        Item(b, c.title);
        b.U16(static_cast<std::uint16_t>(c.creationData.size()));
        b.bytes.insert(b.bytes.end(), c.creationData.begin(), c.creationData.end());
    }
    return b.bytes;
}

} // namespace tervane::test

namespace tervane {
namespace {

using test::TemplateControl;
using test::TemplateDialog;

constexpr DWORD kVisible = 0x50000000;

// Pieces spelt out, tags without place and size: the golden documents show those.
std::string Spell(const CLabelPieceList& pieces) {
    static const std::regex place(" x=\"-?\\d+\" y=\"-?\\d+\" width=\"-?\\d+\" height=\"-?\\d+\"");
    return std::regex_replace(test::Spell(pieces), place, "");
}

TemplateControl Control(WORD classOrdinal, DWORD style, std::int16_t x, std::int16_t y,
                        std::int16_t cx, std::int16_t cy, WORD id, std::u16string title) {
    return {style, x, y, cx, cy, id, classOrdinal, std::move(title)};
}
TemplateControl Label(std::int16_t x, std::int16_t y, WORD id, std::u16string title) {
    return Control(0x82, kVisible, x, y, 40, 8, id, std::move(title));
}
TemplateControl Box(std::int16_t x, std::int16_t y, std::int16_t cx, std::int16_t cy,
                    std::u16string title) {
    return Control(0x80, kVisible | 7, x, y, cx, cy, 1, std::move(title));
}

CDialogItem Parse(const TemplateDialog& dialog, const std::string& identifier = " 7 ") {
    auto bytes = test::BuildTemplate(dialog);
    CDialogItem item;
    item.ParseDialog(bytes, identifier, 0x409);
    return item;
}

// A hotkey mark is an inline tag but in a caption and where the style says
// there are none.
TEST(DialogItem, TextAnalysis) {
    const std::tuple<std::u16string, const char*, bool, const char*> cases[] = {
        {u"A&B", " style=\"SS_NOPREFIX\"", false, "[A][&][B]"},
        {u"Print &Setup", "", true, "[Print ][&][Setup]"},
        {u"Save &As\\%1", "", false, "[Save ]{&}[As\\]{%1}"},
    };
    for (const auto& [text, marks, isCaption, spelt] : cases) {
        CDialogItem item;
        item.AnalyseDialogText(text, marks, isCaption);
        EXPECT_EQ(Spell(item.pieces), spelt) << spelt;
    }
}

TEST(DialogItem, WhatADialogGives) {
    struct Case {
        const char* what;
        std::vector<TemplateControl> controls;
        const char* spelt;
    };
    TemplateControl numberedBox = Box(0, 0, 100, 100, u"");
    numberedBox.title = std::uint16_t{5};

    const Case cases[] = {
        {"the corner of a box is inside, one unit beyond is not",
         {Box(0, 0, 100, 50, u""), Label(100, 50, 2, u"in"), Label(101, 50, 3, u"right"),
          Label(100, 51, 4, u"below")},
         "<dialog id=\"7\"><items><groupbox id=\"1\"><items><label id=\"2\">[in]</label></items>"
         "</groupbox><label id=\"3\">[right]</label><label id=\"4\">[below]</label></items>"
         "</dialog>"},
        {"a box whose title is a number gives its content to its level",
         {numberedBox, Label(10, 10, 2, u"A")},
         "<dialog id=\"7\"><items><label id=\"2\">[A]</label></items></dialog>"},
        {"template order is not the order on screen",
         {Label(0, 30, 2, u"C"), Box(0, 0, 50, 50, u"Box"), Label(0, 10, 3, u"A"),
          Label(5, 60, 4, u"D"), Label(0, 20, 5, u"B")},
         "<dialog id=\"7\"><items><groupbox id=\"1\"><caption>[Box]</caption><items>"
         "<label id=\"2\">[C]</label><label id=\"3\">[A]</label><label id=\"5\">[B]</label>"
         "</items></groupbox><label id=\"4\">[D]</label></items></dialog>"},
        // The exchanges put Q before P, so Q lies before the box and is not in it.
        {"a label on the spot of a box, by the exchanges",
         {Box(0, 10, 100, 100, u"Box"), Label(0, 10, 2, u"Q"), Label(0, 0, 3, u"R")},
         "<dialog id=\"7\"><items><groupbox id=\"1\"><caption>[Box]</caption></groupbox>"
         "<label id=\"2\">[Q]</label><label id=\"3\">[R]</label></items></dialog>"},
    };
    for (const Case& c : cases) {
        TemplateDialog dialog;
        dialog.controls = c.controls;
        for (bool extended : {false, true}) {
            dialog.extended = extended;
            EXPECT_EQ(Spell(Parse(dialog).pieces), c.spelt) << c.what;
        }
    }
}

// The start tag of a control at the edges of what a template holds, whole
// and as the body alone.
TEST(DialogControls, StartTagsAtTheEdges) {
    DialogControl c;
    c.classOrdinal = 0x80;
    c.style = 0x09; // hidden, auto radio button
    c.x = -32768;
    c.y = 32767;
    c.width = -1;
    c.height = -10000;
    c.id = 0xFFFF;
    const std::u16string_view expected =
        u"<radiobutton x=\"-32768\" y=\"32767\" width=\"-1\" height=\"-10000\" hidden=\"yes\">";
    EXPECT_EQ(std::u16string_view(ControlStartTag(c, true)), expected);
    const std::string body = ControlTagBody(c, true);
    EXPECT_EQ(std::u16string(body.begin(), body.end()), expected.substr(1, expected.size() - 2));
}

// The tags of controls with and without marks, and the dialog's own whatever
// its identifier, keep the words of their texts.
TEST(DialogItem, TagsKeepTheWordsOfTheirTexts) {
    TemplateDialog dialog;
    dialog.title = u"Title";
    dialog.controls = {
        Box(0, 0, 300, 300, u"Box"),
        Control(0x80, 0x09, 1, 20, 5, 5, 4, u"Radio"),
        Control(0x81, kVisible | 0x2038, 1, 30, 5, 5, 0xFFFF, u"Edit"),
        Control(0x82, kVisible | 0x80, 1, 40, 5, 5, 6, u"A&B"),
        Control(0x85, kVisible | 0x6000, 1, 60, 5, 5, 8, u"Combo"),
    };
    for (const char* identifier : {"7", "menu id", "/items/label"}) {
        const CDialogItem item = Parse(dialog, identifier);
        ASSERT_FALSE(item.pieces.empty());
        test::ExpectKeptWords(item.pieces);
    }
}

// Titles are cut to 256; only 0xFFFF0001 marks the extended form, anything else is a style.
TEST(DialogItem, TitlesAreCutTo256) {
    TemplateDialog dialog;
    dialog.style = 0xFFFF0002;
    dialog.title = std::u16string(300, u'a');
    dialog.controls = {Label(0, 0, 1, std::u16string(257, u'b'))};
    EXPECT_EQ(Spell(Parse(dialog).pieces), "<dialog id=\"7\"><caption>[" + std::string(256, 'a') +
                                               "]</caption><items><label id=\"1\">[" +
                                               std::string(256, 'b') +
                                               "]</label></items></dialog>");
}

// A list's strings are read in the code page of its init data's language.
TEST(DialogItem, ListsFilledFromInitDataInItsCodePage) {
    test::Bytes records;
    records.U16(402).U16(0x180).U32(4).U8(0xCF).U8(0xF0).U8(0xE8).U8(0).U16(0);
    auto data = std::make_unique<CDlgInitData>();
    data->Parse(records.bytes, records.bytes.size());
    data->language = 0x419;
    CDlgInitTable::GetInstance().Store("8", std::move(data));
    TemplateDialog dialog;
    dialog.controls = {Control(0x83, kVisible, 0, 0, 9, 9, 402, u"")};
    EXPECT_EQ(Spell(Parse(dialog, "8").pieces),
              "<dialog id=\"8\"><items><listbox id=\"402\"><item>[\u041f\u0440\u0438]</item>"
              "</listbox></items></dialog>");
    EXPECT_EQ(Spell(Parse(dialog, "9").pieces), "");
    CDlgInitTable::GetInstance().Clear();
}

// Every template cut short ends in the corrupted-document exception, also
// where the resource's size is smaller than the bytes at hand; so do a count
// that promises more controls than there are and one beyond the limit.
TEST(DialogTemplate, ShortAndOverlongTemplatesAreCorrupted) {
    TemplateDialog dialog;
    dialog.extended = true;
    dialog.style = 0x40;
    dialog.fontBlock = true;
    // A typeface with a unit whose low byte is zero: each byte of the font
    // block must be read where it stands for the controls to follow.
    dialog.typeface = u"MS\x3000Gothic";
    dialog.title = u"Title";
    dialog.menu = u"M";
    TemplateControl control;
    control.title = u"Label";
    control.creationData = {9, 9};
    dialog.controls = {control, control};
    auto execute = [](const std::vector<std::uint8_t>& bytes, std::size_t size) {
        CDialogResource resource;
        resource.identifierText = "1";
        resource.size = static_cast<DWORD>(size);
        CDialogCommand().Execute(bytes, &resource);
        return resource.dialogs.size();
    };
    const auto bytes = test::BuildTemplate(dialog);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        std::vector<std::uint8_t> cut(bytes.begin(), bytes.begin() + static_cast<long>(size));
        EXPECT_THROW(execute(cut, bytes.size()), CParserException) << size;
        EXPECT_THROW(execute(bytes, size), CParserException) << size;
    }
    EXPECT_EQ(execute(bytes, bytes.size()), 1u);
    dialog.itemCount = 3;
    auto more = test::BuildTemplate(dialog);
    EXPECT_THROW(execute(more, more.size()), CParserException);

    dialog = TemplateDialog{};
    dialog.controls.assign(kMaxDialogControls, Label(0, 0, 1, u""));
    auto most = test::BuildTemplate(dialog);
    EXPECT_EQ(execute(most, most.size()), 1u);
    dialog.controls.push_back(Label(0, 0, 1, u""));
    auto many = test::BuildTemplate(dialog);
    EXPECT_THROW(execute(many, many.size()), CParserException);
}

// A translated stream as the writer gathers it, white space included.
TEST(DialogResource, ExtractTakesItsOwnDialog) {
    CPieceStream stream;
    stream.push_back(MakeOpenTag("dialogs", "<dialogs>"));
    for (const char* id : {"1", "2"}) {
        stream.push_back(MakeText(u"\t\t"));
        stream.push_back(MakeOpenTag("dialog", std::string("<dialog id=\"") + id + "\">"));
        stream.push_back(std::make_unique<CLabelPiece>());
        stream.push_back(MakeText(std::u16string(u"T") + char16_t(*id)));
        stream.push_back(MakeCloseTag("dialog", "</dialog>"));
    }
    stream.push_back(MakeCloseTag("dialogs", "</dialogs>"));
    CDialogResource first;
    first.ExtractPieces(stream);
    ASSERT_EQ(first.dialogs.size(), 1u);
    EXPECT_EQ(Spell(first.dialogs[0]->pieces), "[\t\t]<dialog id=\"1\">[T1]");
    // The group's tag stays at the head, the next dialog behind it.
    ASSERT_EQ(stream.size(), 7u);
    EXPECT_EQ(TagOf(*stream[2])->tagText, u"<dialog id=\"2\">");
}

} // namespace
} // namespace tervane
