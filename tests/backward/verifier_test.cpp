// The lockstep comparison of expected and received tags, on tag sequences
// written out as the document spells them.
#include <gtest/gtest.h>

#include <cctype>

#include <sstream>
#include <string>
#include <vector>

#include "backward/resource_verifier.h"
#include "frame/conversion_state.h"
#include "frame/diagnostics/exceptions.h"
#include "platform/locale/code_pages.h"

namespace tervane {
namespace {

// A row's description as the name of its test.
template <typename Info> std::string RowName(const Info& info) {
    std::string name;
    for (const char* c = info.param.what; *c; ++c)
        name += std::isalnum(static_cast<unsigned char>(*c)) ? *c : '_';
    return name;
}

// "<x a>" opens, "</x>" closes, "<x/>" stands alone, anything else is an
// inline tag; tags are separated by blanks outside quotes, "~" stands for a blank.
TagList Tags(const std::string& spelt) {
    TagList tags;
    std::vector<std::string> words;
    std::string word;
    bool quoted = false;
    for (char c : spelt) {
        if (c == '"')
            quoted = !quoted;
        if (c == ' ' && !quoted) {
            if (!word.empty())
                words.push_back(word);
            word.clear();
        } else {
            word += c == '~' ? ' ' : c;
        }
    }
    if (!word.empty())
        words.push_back(word);
    for (const std::string& w : words) {
        if (w.size() > 2 && w.front() == '<' && w.back() == '>') {
            const bool close = w[1] == '/', alone = w[w.size() - 2] == '/';
            std::string name = w.substr(close ? 2 : 1);
            name = name.substr(0, name.find_first_of(" />"));
            if (close)
                tags.push_back(*MakeCloseTag(name, w));
            else if (alone)
                tags.push_back(*MakeEmptyTag(name, w));
            else
                tags.push_back(*MakeOpenTag(name, w));
        } else {
            tags.push_back(*MakeInlineTag(Widen(w)));
        }
    }
    return tags;
}

const std::string kTrailer = kVerificationTrailer;

const char* const kString = "<resources> <stringtable> <string~id=\"7\"> %s %d \\n %1 %2 "
                            "</string> </stringtable> </resources>";
const char* const kMenu = "<resources> <menus> <menu~id=\"3\"> <item~id=\"9\"> & <shortcut> + "
                          "</shortcut> </item> <item~id=\"10\"> </item> </menu> </menus> "
                          "</resources>";
const char* const kDialog = "<resources> <dialogs> <dialog~id=\"5\"> <items> "
                            "<button~x=\"1\"~id=\"4\"> </button> </items> </dialog> </dialogs> "
                            "</resources>";
const std::string kStringContext = "(string id = 7,control name = 'string' & id = 7)";

struct Row {
    const char* what;
    const char* expected;
    std::string received;
    std::string error;     // the exception's text, empty if none
    const char* operation; // the exception's operation word
    std::string messages;  // the verifier's messages
};

std::string Replace(std::string text, const std::string& from, const std::string& to) {
    text.replace(text.find(from), from.size(), to);
    return text;
}

void PrintTo(const Row& row, std::ostream* out) {
    *out << row.what;
}

class VerifierRows : public ::testing::TestWithParam<Row> {};

TEST_P(VerifierRows, Judges) {
    const Row& row = GetParam();
    g_messages.clear();
    CResourceVerifier verifier;
    std::string error, operation;
    try {
        EXPECT_EQ(verifier.CompareTags(Tags(row.expected), Tags(row.received)), 1);
    } catch (const CVerificationException& e) {
        error = e.message;
        operation = e.methodName;
        EXPECT_STREQ(e.className, "CResourceVerifier");
    }
    EXPECT_EQ(error, row.error);
    if (!row.error.empty()) {
        EXPECT_EQ(operation, row.operation);
    }
    EXPECT_EQ(Narrow(verifier.messages()), row.messages);
    // Each message stands in the run's list too.
    std::u16string all;
    for (const auto& m : g_messages)
        all += m;
    EXPECT_EQ(all, verifier.messages());
}

INSTANTIATE_TEST_SUITE_P(
    Tags, VerifierRows,
    ::testing::Values(
        Row{"identical", kString, kString, "", "", ""},
        Row{"identical menu", kMenu, kMenu, "", "", ""},
        Row{"opening attribute changed", kDialog, Replace(kDialog, "x=\"1\"", "x=\"2\""),
            "Error: Unexpected tag '<button x=\"2\" id=\"4\">' found, tag '<button x=\"1\" "
            "id=\"4\">' is expected(dialog id = 5).\n" +
                kTrailer,
            "VerifyTagStructure", ""},
        Row{"closing tag changed", kDialog, Replace(kDialog, "</button>", "</label>"),
            "Error: Unexpected tag '</label>' found, tag '</button>' is expected(dialog id = 5 "
            ",control name = 'button' & id = 4).\n" +
                kTrailer,
            "VerifyTagStructure", ""},
        Row{"group tag changed", kDialog, Replace(kDialog, "<dialogs>", "<menus>"),
            "Error: Unexpected tag '<menus>' found, tag '<dialogs>' is expected.\n" + kTrailer,
            "VerifyTagStructure", ""},
        Row{"printf conversions swapped", kString, Replace(kString, "%s %d", "%d %s"),
            "Error :The tag order in this segment has been changed " + kStringContext + "." +
                kTrailer,
            "VerifyTagStructure", ""},
        Row{"printf conversion deleted", kString, Replace(kString, "%d ", ""),
            "Error: The tag '%d' has been deleted " + kStringContext + "." + kTrailer,
            "VerifyNumPlaceHolders", ""},
        Row{"printf conversion added", kString, Replace(kString, "%d ", "%d %x "),
            "Error: The tag '%x' has been added " + kStringContext + "." + kTrailer,
            "VerifyNumPlaceHolders", ""},
        Row{"numbered placeholder deleted", kString, Replace(kString, "%1 ", ""),
            "Error: The tag '%1' has been deleted " + kStringContext + "." + kTrailer,
            "VerifyNumPlaceHolders", ""},
        Row{"numbered placeholders swapped", kString, Replace(kString, "%1 %2", "%2 %1"), "", "",
            "Warning: The tag order in this segment has been changed " + kStringContext + ".\n"},
        Row{"special mark deleted", kString, Replace(kString, "\\n ", ""), "", "",
            "Alert: The tag '\\n' has been deleted " + kStringContext + ".\n"},
        Row{"special mark added and moved", kString, Replace(kString, "%s %d \\n", "\\n %s %d &"),
            "", "", "Alert: The tag '&' has been added " + kStringContext + ".\n"},
        Row{"special mark added at the end", kString,
            Replace(kString, "</string>", "\\r </string>"), "", "",
            "Alert: The tag '\\r' has been added " + kStringContext + ".\n"},
        Row{"shortcut deleted", kMenu, Replace(kMenu, "<shortcut> + </shortcut> ", ""), "", "",
            "Alert: Shortcut key has been deleted(menu resource id = 3, control name = 'item' id "
            "= 9)\n"},
        Row{"shortcut added to a menu item", kMenu,
            Replace(kMenu, "<item~id=\"10\"> </item>",
                    "<item~id=\"10\"> <shortcut> , </shortcut> </item>"),
            "", "",
            "Alert: Shortcut key tags (<shortcut>, ,, </shortcut>.) have been added to menu "
            "resource id = 3, control name = 'item' & id = 10).\n"},
        Row{"shortcut added elsewhere", kDialog,
            Replace(kDialog, "</button>", "<shortcut> </shortcut> </button>"),
            "Error: Unexpected tag '<shortcut>' found, tag '</button>' is expected(dialog id = 5 "
            ",control name = 'button' & id = 4).\n" +
                kTrailer,
            "VerifyTagStructure", ""},
        Row{"tag behind the root", kString, std::string(kString) + " <extra>",
            "Error: The tag 'extra' has been added after the resource context.\n" + kTrailer,
            "VerifyTagStructure", ""},
        Row{"document cut off", kString, Replace(kString, " </stringtable> </resources>", ""),
            "Error: Unexpected end found, tag 'stringtable' is expected.\n" + kTrailer,
            "VerifyTagStructure", ""},
        Row{"cut off behind added inline tags", kString,
            Replace(kString, "</string> </stringtable> </resources>", "\\r \\r \\r"),
            "Error: Unexpected tag '%s' found, tag '</string>' is expected(string id = 7 "
            ",control name = 'string' & id = 7).\n" +
                kTrailer,
            "VerifyTagStructure",
            "Alert: The tag '\\r' has been added " + kStringContext + ".\n" +
                "Alert: The tag '\\r' has been added " + kStringContext + ".\n" +
                "Alert: The tag '\\r' has been added " + kStringContext + ".\n"},
        Row{"inline run at the very end", "<resources> %s", "<resources> %s", "", "", ""},
        Row{"nothing received", kString, "",
            "Error: Unexpected end found, tag 'resources' is expected.\n" + kTrailer,
            "VerifyTagStructure", ""}),
    [](const auto& info) { return RowName(info); });

// Two classes at once: the numbered class is judged before the special one,
// and a failing class stops the rest.
TEST(Verifier, ClassesInTheirOrder) {
    g_messages.clear();
    CResourceVerifier verifier;
    const TagList expected = Tags("<string~id=\"1\"> %1 %2 \\n %d </string>");
    const TagList received = Tags("<string~id=\"1\"> %2 %1 %d </string>");
    verifier.CompareTags(expected, received);
    EXPECT_EQ(Narrow(verifier.messages()),
              "Warning: The tag order in this segment has been changed (string id = 1,control "
              "name = 'string' & id = 1).\n"
              "Alert: The tag '\\n' has been deleted (string id = 1,control name = 'string' & id "
              "= 1).\n");
}

} // namespace
} // namespace tervane
