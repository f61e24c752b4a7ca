// Whole documents of `tervane extract`, one fixture a behaviour, on both widths.
#include <gtest/gtest.h>

#include "tests/app/extract_run.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

const char* const kStringsDocument = "<resources>\n"
                                     "\t<stringtable>\n"
                                     "\t\t<string id=\"1\">Speichern %s?</string>\n"
                                     "\t\t<string id=\"1\">Save %s?</string>\n"
                                     "\t\t<string id=\"2\"> </string>\n"
                                     "\t\t<string id=\"3\">100% of %d</string>\n"
                                     "\t\t<string id=\"4\">a&b</string>\n"
                                     "\t\t<string id=\"5\">back\\slash</string>\n"
                                     "\t\t<string id=\"6\">Line one\\r\\nLine two</string>\n"
                                     "\t\t<string id=\"37\">Thirty-seven</string>\n"
                                     "\t</stringtable>\n"
                                     "</resources>\n";

// Pop-ups nested four deep step the indentation up and back one tab at a
// time; the menu's own tag stands one tab in.
const char* const kMenusDocument = "<resources>\n"
                                   "\t<menus>\n"
                                   "\t<menu id=\"101\">\n"
                                   "\t\t<item>&File</item>\n"
                                   "\t\t<menu>\n"
                                   "\t\t\t<item id=\"100\">&Open...<shortcut>Ctrl+O</shortcut>"
                                   "</item>\n"
                                   "\t\t\t<separator/>\n"
                                   "\t\t\t<item>&Recent</item>\n"
                                   "\t\t\t<menu>\n"
                                   "\t\t\t\t<item>&More</item>\n"
                                   "\t\t\t\t<menu>\n"
                                   "\t\t\t\t\t<item>&Deep</item>\n"
                                   "\t\t\t\t\t<menu>\n"
                                   "\t\t\t\t\t\t<item id=\"110\">A&B 100%</item>\n"
                                   "\t\t\t\t\t</menu>\n"
                                   "\t\t\t\t</menu>\n"
                                   "\t\t\t</menu>\n"
                                   "\t\t\t<item>E&xit<shortcut>Alt+F4</shortcut></item>\n"
                                   "\t\t</menu>\n"
                                   "\t\t<item id=\"200\">&Help</item>\n"
                                   "\t</menu>\n"
                                   "\t<menu id=\"102\">\n"
                                   "\t\t<item id=\"300\">&Edit</item>\n"
                                   "\t\t<menu>\n"
                                   "\t\t\t<item id=\"301\">Cu&t<shortcut>Ctrl+Shift+X</shortcut>"
                                   "</item>\n"
                                   "\t\t\t<separator/>\n"
                                   "\t\t\t<item id=\"65534\">Back\\slash</item>\n"
                                   "\t\t</menu>\n"
                                   "\t</menu>\n"
                                   "\t<menu id=\"103\">\n"
                                   "\t\t<item>File</item>\n"
                                   "\t\t<menu>\n"
                                   "\t\t\t<item id=\"100\">Exit</item>\n"
                                   "\t\t</menu>\n"
                                   "\t</menu>\n"
                                   "\t</menus>\n"
                                   "</resources>\n";

// German before English by language; the block without any of the five
// values is last, gives nothing, and closes the document.
const char* const kVersionDocument =
    "<resources>\n"
    "\t<stringtable>\n"
    "\t\t<string id=\"1\">Hello</string>\n"
    "\t</stringtable>\n"
    "\t<versioninfo>\n"
    "\t\t<comments>Kommentar</comments>\n"
    "\t\t<productname>Tervane EN</productname>\n"
    "\t\t<legaltrademarks>TM</legaltrademarks>\n"
    "\t\t<comments>C:\\path\\n</comments>\n"
    "\t\t<legalcopyright>(c) Zelkor\\n\\rAll rights reserved</legalcopyright>\n"
    "\t\t<productversion>1.2</productversion>\n"
    "\t\t<productname>Tervane 100% & more</productname>\n"
    "\t</versioninfo>\n"
    "</resources>\n";

const char* const kDialogsDocument =
    "<resources>\n"
    "\t<dialogs>\n"
    "\t\t<dialog id=\"SETTINGS\">\n"
    "\t\t<caption>Named</caption>\n"
    "\t\t<items>\n"
    "\t\t\t<button x=\"10\" y=\"10\" width=\"50\" height=\"14\" id=\"800\">Line one\\nLine "
    "two</button>\n"
    "\t\t</items>\n"
    "\t\t</dialog>\n"
    "\t\t<dialog id=\"100\">\n"
    "\t\t<caption>Print &Setup</caption>\n"
    "\t\t<items>\n"
    "\t\t\t<button x=\"130\" y=\"10\" width=\"50\" height=\"14\" id=\"1\">OK</button>\n"
    "\t\t\t<button x=\"5\" y=\"5\" width=\"50\" height=\"14\" id=\"2\">Cancel</button>\n"
    "\t\t\t<button x=\"130\" y=\"40\" width=\"50\" height=\"14\" id=\"9\">&Help</button>\n"
    "\t\t</items>\n"
    "\t\t</dialog>\n"
    "\t\t<dialog id=\"101\">\n"
    "\t\t<caption>Options</caption>\n"
    "\t\t<items>\n"
    "\t\t\t<label x=\"10\" y=\"150\" width=\"30\" height=\"8\" id=\"205\">Below</label>\n"
    "\t\t\t<groupbox x=\"5\" y=\"5\" width=\"200\" height=\"100\" id=\"200\">\n"
    "\t\t\t<caption>Outer</caption>\n"
    "\t\t\t<items>\n"
    "\t\t\t\t<label x=\"100\" y=\"30\" width=\"40\" height=\"8\" id=\"203\">Outer label</label>\n"
    "\t\t\t\t<groupbox x=\"10\" y=\"20\" width=\"80\" height=\"40\" id=\"201\">\n"
    "\t\t\t\t<items>\n"
    "\t\t\t\t\t<label x=\"15\" y=\"30\" width=\"40\" height=\"8\" id=\"202\">Inner "
    "label</label>\n"
    "\t\t\t\t</items>\n"
    "\t\t\t\t</groupbox>\n"
    "\t\t\t\t<label x=\"205\" y=\"105\" width=\"30\" height=\"8\" id=\"204\">Corner</label>\n"
    "\t\t\t</items>\n"
    "\t\t\t</groupbox>\n"
    "\t\t</items>\n"
    "\t\t</dialog>\n"
    "\t\t<dialog id=\"102\">\n"
    "\t\t<items>\n"
    "\t\t\t<checkbox x=\"10\" y=\"10\" width=\"60\" height=\"10\" id=\"300\">&Check</checkbox>\n"
    "\t\t\t<radiobutton x=\"10\" y=\"20\" width=\"60\" height=\"10\" id=\"301\">&Auto "
    "radio</radiobutton>\n"
    "\t\t\t<button x=\"10\" y=\"30\" width=\"60\" height=\"10\" id=\"302\">Radio</button>\n"
    "\t\t\t<checkbox x=\"10\" y=\"40\" width=\"60\" height=\"10\" id=\"303\">Drawn</checkbox>\n"
    "\t\t\t<button x=\"10\" y=\"50\" width=\"60\" height=\"10\" id=\"304\" "
    "hidden=\"yes\">Hidden</button>\n"
    "\t\t\t<label style=\"SS_NOPREFIX\" x=\"10\" y=\"60\" width=\"60\" height=\"10\" "
    "id=\"305\">A&B</label>\n"
    "\t\t\t<label style=\"SS_NOPREFIX\" x=\"10\" y=\"70\" width=\"60\" height=\"10\" "
    "id=\"306\">A&&B</label>\n"
    "\t\t\t<label x=\"10\" y=\"80\" width=\"60\" height=\"10\" id=\"307\">Fish & Chips</label>\n"
    // An edit's start tag has no indent.
    "<edit style=\"ES_PASSWORD\" x=\"10\" y=\"90\" width=\"60\" height=\"10\" "
    "id=\"308\">secret</edit>\n"
    "<edit style=\"ES_UPPERCASE ES_NUMBER\" x=\"10\" y=\"100\" width=\"60\" height=\"10\" "
    "id=\"309\">KEY</edit>\n"
    "\t\t\t<label x=\"-1\" y=\"110\" width=\"60\" height=\"10\" id=\"65534\">100% done "
    "%d</label>\n"
    "\t\t\t<label x=\"10\" y=\"120\" width=\"60\" height=\"10\">Static text</label>\n"
    "\t\t\t<groupbox x=\"100\" y=\"140\" width=\"20\" height=\"10\" id=\"312\">\n"
    "\t\t\t<caption>Empty box</caption>\n"
    "\t\t\t</groupbox>\n"
    "\t\t</items>\n"
    "\t\t</dialog>\n"
    "\t\t<dialog id=\"103\">\n"
    "\t\t<items>\n"
    // A combobox with a title and init data stands twice.
    "\t\t\t<combobox style=\"CBS_UPPERCASE\" x=\"10\" y=\"10\" width=\"80\" height=\"40\" "
    "id=\"400\">\n"
    "Pick\t\t\t</combobox>\n"
    "\t\t\t<combobox style=\"CBS_UPPERCASE\" x=\"10\" y=\"10\" width=\"80\" height=\"40\" "
    "id=\"400\">\n"
    "\t\t\t\t<item>Alpha</item>\n"
    "\t\t\t\t<item>Beta</item>\n"
    "\t\t\t</combobox>\n"
    "\t\t\t<listbox x=\"10\" y=\"30\" width=\"80\" height=\"40\" id=\"401\">\n"
    "\t\t\t\t<item>One</item>\n"
    "\t\t\t\t<item>Two</item>\n"
    "\t\t\t\t<item>Three</item>\n"
    "\t\t\t</listbox>\n"
    "\t\t</items>\n"
    "\t\t</dialog>\n"
    "\t\t<dialog id=\"105\">\n"
    "\t\t<caption>Only a title</caption>\n"
    "\t\t</dialog>\n"
    "\t\t<dialog id=\"106\">\n"
    "\t\t<caption>Empty edit</caption>\n"
    "\t\t</dialog>\n"
    "\t</dialogs>\n"
    "</resources>\n";

TEST(Extract, WholeDocuments) {
    struct Case {
        const char* fixture;
        const char* document;
    };
    const Case cases[] = {
        {"fwd_strings", kStringsDocument},
        // A named block counts as block zero.
        {"fwd_edges", "<resources>\n\t<stringtable>\n\t\t<string id=\"-16\">Hi</string>\n"
                      "\t</stringtable>\n</resources>\n"},
        {"fwd_menus", kMenusDocument},
        {"fwd_version", kVersionDocument},
        {"fwd_dialogs", kDialogsDocument},
        {"fwd_dialogs_skipped", "<resources>\n\t<stringtable>\n\t\t<string id=\"1\">Only</string>\n"
                                "\t</stringtable>\n</resources>\n"},
    };
    for (const Case& c : cases) {
        for (const auto& image : test::FixtureImages(c.fixture)) {
            test::ExtractRun run = test::Extract("", image);
            EXPECT_EQ(run.status, 0) << run.err;
            EXPECT_EQ(run.out, c.document) << image;
        }
    }
}

} // namespace
} // namespace tervane
