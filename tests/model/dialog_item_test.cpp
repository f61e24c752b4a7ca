#include "model/dialog_item.h"

#include <gtest/gtest.h>
#include <regex>

#include "frame/diagnostics/exceptions.h"
#include "model/dialog_resource.h"
#include "model/dlginit_table.h"
#include "tests/model/dialog_template_builder.h"

namespace tervane {
namespace {

using test::NameOrOrdinal;
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
    TemplateControl c;
    c.windowClass = NameOrOrdinal::Number(classOrdinal);
    c.style = style;
    c.x = x;
    c.y = y;
    c.cx = cx;
    c.cy = cy;
    c.id = id;
    c.title = NameOrOrdinal::Name(std::move(title));
    return c;
}
TemplateControl Label(std::int16_t x, std::int16_t y, WORD id, std::u16string title) {
    return Control(0x82, kVisible, x, y, 40, 8, id, std::move(title));
}
TemplateControl Box(std::int16_t x, std::int16_t y, std::int16_t cx, std::int16_t cy, WORD id,
                    std::u16string title) {
    return Control(0x80, kVisible | 7, x, y, cx, cy, id, std::move(title));
}

CDialogItem Parse(const TemplateDialog& dialog, const std::string& identifier = " 7 ") {
    auto bytes = test::BuildTemplate(dialog);
    CDialogItem item;
    item.ParseDialog(bytes, identifier, 0x409);
    return item;
}

TEST(DialogItem, TextAnalysis) {
    struct Case {
        std::u16string text;
        const char* marks;
        bool isCaption;
        const char* spelt;
    };
    const Case cases[] = {
        {u"&Print", "", true, "[&][Print]"},
        {u"&Print", "", false, "{&}[Print]"},
        {u"A&B", " style=\"SS_NOPREFIX\"", false, "[A][&][B]"},
        {u"A&&B", " style=\"SS_NOPREFIX\"", false, "[A&&B]"},
        {u"100%% done", "", false, "[100% done]"},
        {u" %d", "", false, "[ ]{%d}"},
        {u"50% off", "", false, "[50]{% o}[ff]"},
        {u"x\r\ny", "", true, "[x]{\\r}{\\n}[y]"},
        {u"Save &As\\%1", "", false, "[Save ]{&}[As\\]{%1}"},
    };
    for (const Case& c : cases) {
        CDialogItem item;
        item.AnalyseDialogText(c.text, c.marks, c.isCaption);
        EXPECT_EQ(Spell(item.pieces), c.spelt) << c.spelt;
    }
}

TEST(DialogItem, WhatADialogGives) {
    struct Case {
        const char* what;
        std::vector<TemplateControl> controls;
        const char* spelt;
    };
    TemplateControl numberedBox = Box(0, 0, 100, 100, 1, u"");
    numberedBox.title = NameOrOrdinal::Number(5);

    const Case cases[] = {
        {"the corner of a box is inside, one unit beyond is not",
         {Box(0, 0, 100, 50, 1, u""), Label(100, 50, 2, u"in"), Label(101, 50, 3, u"right"),
          Label(100, 51, 4, u"below")},
         "<dialog id=\"7\"><items><groupbox id=\"1\"><items><label id=\"2\">[in]</label></items>"
         "</groupbox><label id=\"3\">[right]</label><label id=\"4\">[below]</label></items>"
         "</dialog>"},
        {"a box whose title is a number gives its content to its level",
         {numberedBox, Label(10, 10, 2, u"A")},
         "<dialog id=\"7\"><items><label id=\"2\">[A]</label></items></dialog>"},
        // The exchanges put Q before P, so Q lies before the box and is not in it.
        {"a label on the spot of a box, by the exchanges",
         {Box(0, 10, 100, 100, 1, u"Box"), Label(0, 10, 2, u"Q"), Label(0, 0, 3, u"R")},
         "<dialog id=\"7\"><items><groupbox id=\"1\"><caption>[Box]</caption></groupbox>"
         "<label id=\"2\">[Q]</label><label id=\"3\">[R]</label></items></dialog>"},
    };
    for (const Case& c : cases) {
        TemplateDialog dialog;
        dialog.controls = c.controls;
        for (bool extended : {false, true}) {
            dialog.extended = extended;
            CDialogItem item = Parse(dialog);
            EXPECT_EQ(Spell(item.pieces), c.spelt) << c.what;
        }
    }
}

TEST(DialogItem, TitlesAreCutTo256) {
    TemplateDialog dialog;
    dialog.title = std::u16string(300, u'a');
    dialog.controls = {Label(0, 0, 1, std::u16string(257, u'b'))};
    CDialogItem item = Parse(dialog);
    EXPECT_EQ(Spell(item.pieces), "<dialog id=\"7\"><caption>[" + std::string(256, 'a') +
                                      "]</caption><items><label id=\"1\">[" +
                                      std::string(256, 'b') + "]</label></items></dialog>");
}

TEST(DialogItem, ExchangeSortsKeepTheirOrder) {
    CDialogItem item;
    auto at = [](std::int16_t x, std::int16_t y, WORD tab) {
        DialogControl c;
        c.x = x;
        c.y = y;
        c.tabIndex = tab;
        return c;
    };
    item.controls = {at(0, 1, 0), at(0, 1, 1), at(0, 0, 2), at(-5, 0, 3)};
    item.SortByPosition();
    auto order = [&item] {
        std::vector<WORD> tabs;
        for (const auto& c : item.controls)
            tabs.push_back(c.tabIndex);
        return tabs;
    };
    EXPECT_EQ(order(), (std::vector<WORD>{3, 2, 0, 1}));
    // Here the exchanges turn two controls at one spot round: a stable sort
    // would give 2, 0, 1.
    item.controls = {at(0, 1, 0), at(0, 1, 1), at(0, 0, 2)};
    item.SortByPosition();
    EXPECT_EQ(order(), (std::vector<WORD>{2, 1, 0}));

    ControlList list = {at(0, 0, 9), at(0, 0, 4), at(0, 0, 1)};
    CDialogItem::SortByTabIndex(list, false);
    EXPECT_EQ(list[0].tabIndex, 9);
    EXPECT_EQ(list[1].tabIndex, 1);
    CDialogItem::SortByTabIndex(list, true);
    EXPECT_EQ(list[0].tabIndex, 1);
}

TEST(DialogItem, AThousandControlsAtMost) {
    for (std::size_t count : {std::size_t{1000}, std::size_t{1001}}) {
        TemplateDialog dialog;
        dialog.title = u"Many";
        dialog.controls.assign(count, Label(0, 0, 1, u""));
        auto bytes = test::BuildTemplate(dialog);
        CDialogResource resource;
        resource.identifierText = "1";
        resource.size = static_cast<DWORD>(bytes.size());
        if (count > kMaxDialogControls)
            EXPECT_THROW(CDialogCommand().Execute(bytes, &resource), CParserException);
        else
            EXPECT_NO_THROW(CDialogCommand().Execute(bytes, &resource));
    }
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

// A translated stream as the writer gathers it, white space included.
TEST(DialogResource, ExtractAndMergeByPosition) {
    CLabelPieceList stream;
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

    TemplateDialog dialog;
    dialog.title = u"Source";
    auto bytes = test::BuildTemplate(dialog);
    CDialogResource source;
    source.size = static_cast<DWORD>(bytes.size());
    CDialogCommand().Execute(bytes, &source);
    CDialogResource empty;
    source.MergePieces(empty);
    EXPECT_EQ(Spell(source.dialogs[0]->pieces),
              "<dialog id=\"\"><caption>[Source]</caption></dialog>");
    source.MergePieces(first);
    EXPECT_EQ(Spell(source.dialogs[0]->pieces), "[\t\t]<dialog id=\"1\">[T1]");
    EXPECT_EQ(source.dialogs[0]->header.title, u"Source");
}

} // namespace
} // namespace tervane
