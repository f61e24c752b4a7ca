// The checks of a verification on lists of pieces, with a report that keeps
// what it is given; and the plug-in's test of a document's file name.
#include <gtest/gtest.h>

#include "platform/com/bstr.h"
#include "verify/tag_order.h"
#include "verify/tervane_verifier.h"

namespace tervane::verify {
namespace {

struct Kept {
    LONG severity, code;
    std::u16string message;
    LONG line;
};

class KeptEntry : public ComObjectRoot, public DispatchWithoutTypeInfo<IReportEntry> {
public:
    explicit KeptEntry(Kept kept) : kept_(std::move(kept)) {}
    static InterfaceMap<KeptEntry> Interfaces() {
        static const InterfaceEntry<KeptEntry> map[] = {
            Entry<KeptEntry, IReportEntry>(), Entry<KeptEntry, IDispatch, IReportEntry>()};
        return map;
    }
    HRESULT get_Severity(LONG* severity) override {
        *severity = kept_.severity;
        return S_OK;
    }
    HRESULT get_StartPair(LONG* first, LONG* second) override {
        *first = kept_.line;
        *second = 1;
        return S_OK;
    }
    HRESULT get_Message(BSTR* text) override {
        *text = SysAllocStringLen(kept_.message.data(), static_cast<UINT>(kept_.message.size()));
        return S_OK;
    }

private:
    Kept kept_;
};

class KeptReport : public ComObjectRoot, public DispatchWithoutTypeInfo<IVerificationReport> {
public:
    static InterfaceMap<KeptReport> Interfaces() {
        static const InterfaceEntry<KeptReport> map[] = {Entry<KeptReport, IVerificationReport>()};
        return map;
    }
    HRESULT get_Item(VARIANT index, IDispatch** item) override {
        if (index.vt != VT_I4 || index.lVal < 0 ||
            static_cast<std::size_t>(index.lVal) >= entries.size())
            return E_INVALIDARG;
        ComObject<KeptEntry>* entry = nullptr;
        HRESULT hr = ComObject<KeptEntry>::Create(&entry, entries[index.lVal]);
        *item = static_cast<IDispatch*>(entry);
        return hr;
    }
    HRESULT get_Count(LONG* count) override {
        *count = static_cast<LONG>(entries.size());
        return S_OK;
    }
    HRESULT Add(BSTR message, LONG, LONG severity, LONG code, LONG, LONG first, LONG, LONG, LONG,
                LONG, LONG, LONG*) override {
        entries.push_back({severity, code, std::u16string(message, SysStringLen(message)), first});
        return S_OK;
    }
    HRESULT Remove(LONG index) override {
        if (index < 0 || static_cast<std::size_t>(index) >= entries.size())
            return E_INVALIDARG;
        entries.erase(entries.begin() + index);
        return S_OK;
    }

    std::vector<Kept> entries;
};

// A list written as words: <x> opens, </x> closes, <x/> and %s are marks
// without either, anything else is text. Each piece's line is its index.
CLabelPieceList Words(std::initializer_list<std::string> words) {
    CLabelPieceList list;
    for (const std::string& word : words) {
        std::unique_ptr<CLabelPiece> piece;
        const std::string name = word.size() > 2 ? word.substr(word[1] == '/' ? 2 : 1) : word;
        const std::string bare = name.substr(0, name.find_first_of(" >/"));
        if (word.rfind("</", 0) == 0)
            piece = MakeCloseTag(bare, word);
        else if (word.size() > 2 && word.front() == '<' && word[word.size() - 2] == '/')
            piece = MakeEmptyTag(bare, word);
        else if (word.front() == '<')
            piece = MakeOpenTag(bare, word);
        else if (word == "&" || word[0] == '%')
            piece = MakeInlineTag(std::u16string(word.begin(), word.end()));
        else
            piece = MakeText(std::u16string(word.begin(), word.end()));
        const LONG line = static_cast<LONG>(list.size());
        piece->range = {{line, 1}, {line, 1}};
        list.push_back(std::move(piece));
    }
    return list;
}

struct CheckRow {
    const char* name;
    CLabelPieceList (*pieces)();
    const char* stage; // "texts", "order", "nesting" or "combo"
    std::vector<Kept> expected;
};

const std::string k4096(4096, 'x');

const CheckRow kRows[] = {
    {"string at its limit",
     [] {
         return Words({"<stringtable>", "<string id=\"1\">", k4096, "</string>", "</stringtable>"});
     },
     "texts",
     {}},
    {"string past its limit",
     [] {
         return Words(
             {"<stringtable>", "<string id=\"1\">", k4096, "%s", "</string>", "</stringtable>"});
     },
     "texts",
     {{3, 95, u"The text length is longer than the allowed 4096 characters ", 2}}},
    {"a conversion alone is no empty string",
     [] {
         return Words({"<stringtable>", "<string id=\"1\">", "%s", "</string>", "</stringtable>"});
     },
     "texts",
     {}},
    {"empty string",
     [] {
         return Words({"<stringtable>", "<string id=\"1\">", "</string>", "</stringtable>"});
     },
     "texts",
     {{3, 95, u"The text content is empty.", 1}}},
    {"empty menu item",
     [] {
         return Words({"<menus>", "<menu id=\"1\">", "<item>", "</item>", "</menu>", "</menus>"});
     },
     "texts",
     {{2, 95, u"The text content is empty.", 2}}},
    {"string id twice",
     [] {
         return Words({"<stringtable>", "<string id=\"5\">", "a", "</string>", "<string id=\"5\">",
                       "b", "</string>", "</stringtable>"});
     },
     "texts",
     {{3, 91, u"The tag '<string id=\"5\">' is a duplicate tag.", 4}}},
    {"string id three times, another between",
     [] {
         return Words({"<stringtable>", "<string id=\"5\">", "a", "</string>", "<string id=\"6\">",
                       "b", "</string>", "<string id=\"5\">", "c", "</string>", "<string id=\"5\">",
                       "d", "</string>", "</stringtable>"});
     },
     "texts",
     {{3, 91, u"The tag '<string id=\"5\">' is a duplicate tag.", 7},
      {3, 91, u"The tag '<string id=\"5\">' is a duplicate tag.", 10},
      {3, 91, u"The tag '<string id=\"5\">' is a duplicate tag.", 10}}},
    {"hotkeys Save and send in one dialog",
     [] {
         return Words({"<dialogs>", "<dialog id=\"1\">", "<button>", "&", "Save", "</button>",
                       "<button>", "&", "send", "</button>", "</dialog>", "</dialogs>"});
     },
     "texts",
     {{2, 8, u"The hotkey 'S' has been duplicated.", 7}}},
    {"hotkeys in two popups",
     [] {
         return Words({"<menus>", "<menu id=\"1\">", "<menu>", "<item>", "&", "Save", "</item>",
                       "</menu>", "<menu>", "<item>", "&", "Send", "</item>", "</menu>", "</menu>",
                       "</menus>"});
     },
     "texts",
     {}},
    {"hotkey at the end",
     [] {
         return Words({"<dialogs>", "<dialog id=\"1\">", "<button>", "Save", "&", "</button>",
                       "</dialog>", "</dialogs>"});
     },
     "texts",
     {{2, 9, u"Some Text has to follow the hotkey '&' placeholder.", 4}}},
    {"menus behind dialogs",
     [] {
         return Words(
             {"<resources>", "<dialogs>", "</dialogs>", "<menus>", "</menus>", "</resources>"});
     },
     "nesting",
     {{3, 100, u"The order of the resources has been modified.", 0}}},
    {"second string table",
     [] {
         return Words({"<resources>", "<stringtable>", "</stringtable>", "<stringtable>",
                       "</stringtable>", "</resources>"});
     },
     "nesting",
     {{3, 100, u"The '<stringtable>' resource has been duplicated.", 3}}},
    {"closing a button inside a label",
     [] {
         return Words(
             {"<resources>", "<dialogs>", "<dialog id=\"1\">", "<items>", "<label>", "</button>"});
     },
     "nesting",
     {{3, 100, u"Expected open tag missing for '</button>'.", 5},
      {3, 100, u"Expected closing tag missing for '<label>'.", 4},
      {3, 100, u"Expected closing tag missing for '<items>'.", 3},
      {3, 100, u"Expected closing tag missing for '<dialog id=\"1\">'.", 2},
      {3, 100, u"Expected closing tag missing for '<dialogs>'.", 1},
      {3, 100, u"Expected closing tag missing for '<resources>'.", 0}}},
    {"first tag not resources",
     [] {
         return Words({"<menus>", "</menus>"});
     },
     "order",
     {{3, 40, u"Tag order has been changed. Tag '<Resources>' was expected.", 0},
      {3, 56, u"Unexpected tag '</menus>' detected .", 1}}},
    {"tag out of order",
     [] {
         return Words({"<resources>", "<menus>", "<string id=\"1\">", "</resources>"});
     },
     "order",
     {{3, 56, u"Unexpected tag '<string id=\"1\">' detected .", 2},
      {3, 56, u"Unexpected tag '</resources>' detected .", 3}}},
    {"combo box translated, then one that is not",
     [] {
         CLabelPieceList list =
             Words({"<dialogs>", "<combobox>", "Red", "</combobox>", "<combobox>", "Blue",
                    "</combobox>", "<combobox>", "Green", "</combobox>"});
         static_cast<CTextLabelPiece*>(list[2].get())->inSegment = 1;
         return list;
     },
     "combo",
     {{1, 96,
       u"All Text Item in the combo box control " + std::u16string(12, u'\t') +
           u"have not been translated. " + std::u16string(12, u'\t') +
           u"\n\n Please translate all the text item and then try again.",
       0}}},
};

class Checks : public testing::TestWithParam<CheckRow> {};

TEST_P(Checks, ReportWhatThePiecesHold) {
    const CheckRow& row = GetParam();
    ComObject<KeptReport>* report = nullptr;
    ASSERT_EQ(ComObject<KeptReport>::Create(&report), S_OK);
    CLabelPieceList list = row.pieces();
    const Pieces pieces = View(list);
    const std::string stage = row.stage;
    int result = 0;
    if (stage == "texts") {
        result = TextChecks(report).CheckResources(pieces, {});
    } else if (stage == "combo") {
        TextChecks(report).CheckComboBoxes(pieces);
    } else {
        CTagOrderChecker checker(report);
        result = stage == "order" ? checker.CheckTagOrder(pieces) : checker.CheckNesting(pieces);
    }
    ASSERT_EQ(report->entries.size(), row.expected.size()) << row.name;
    for (std::size_t i = 0; i < row.expected.size(); ++i) {
        const Kept& want = row.expected[i];
        const Kept& have = report->entries[i];
        EXPECT_EQ(have.severity, want.severity) << row.name << " #" << i;
        EXPECT_EQ(have.code, want.code) << row.name << " #" << i;
        EXPECT_EQ(have.message, want.message) << row.name << " #" << i;
        EXPECT_EQ(have.line, want.line) << row.name << " #" << i;
    }
    // Hotkeys and the combo box's note stop no stage.
    const bool stops = !row.expected.empty() && row.expected[0].code != 8 &&
                       row.expected[0].code != 9 && stage != "combo";
    EXPECT_EQ(result, stops ? 1 : 0) << row.name;
    report->Release();
}

INSTANTIATE_TEST_SUITE_P(Rows, Checks, testing::ValuesIn(kRows),
                         [](const testing::TestParamInfo<CheckRow>& info) {
                             std::string name = info.param.name;
                             for (char& c : name)
                                 if (!std::isalnum(static_cast<unsigned char>(c)))
                                     c = '_';
                             return name;
                         });

// The view of a document, as far as CanVerify asks.
class NamedView : public ComObjectRoot, public DispatchWithoutTypeInfo<IEditorView> {
public:
    explicit NamedView(std::u16string name) : name_(std::move(name)) {}
    static InterfaceMap<NamedView> Interfaces() {
        static const InterfaceEntry<NamedView> map[] = {Entry<NamedView, IEditorView>(),
                                                        Entry<NamedView, IDispatch, IEditorView>()};
        return map;
    }
    HRESULT get_SourcePath(BSTR* path) override { return get_FileName(path); }
    HRESULT get_FileName(BSTR* name) override {
        *name = SysAllocStringLen(name_.data(), static_cast<UINT>(name_.size()));
        return S_OK;
    }
    HRESULT SaveAs(BSTR) override { return E_UNEXPECTED; }

private:
    std::u16string name_;
};

TEST(TervaneVerifier, CanVerifyKnownExtensionsExactly) {
    struct Row {
        const char16_t* name;
        VARIANT_BOOL expected;
    } rows[] = {{u"app.exe", VARIANT_TRUE},
                {u"a.b.dll", VARIANT_TRUE},
                {u"x.ocx", VARIANT_TRUE},
                {u"t.lng", VARIANT_TRUE},
                {u"APP.EXE", 7},
                {u"exe", 7},
                {u"app.exe.xlf", 7},
                {u"", 7}};
    RegisterTervaneVerifierClass();
    for (const Row& row : rows) {
        ComObject<TervaneVerifier>* verifier = nullptr;
        ComObject<NamedView>* view = nullptr;
        ASSERT_EQ(ComObject<TervaneVerifier>::Create(&verifier), S_OK);
        ASSERT_EQ(ComObject<NamedView>::Create(&view, std::u16string(row.name)), S_OK);
        VARIANT_BOOL result = 7; // left as it was without a match
        IVerificationPlugIn* plugIn = verifier;
        EXPECT_EQ(plugIn->CanVerify(static_cast<IEditorView*>(view), &result), S_OK);
        EXPECT_EQ(result, row.expected) << row.expected;
        // Another extension: Verify ends at once, without saving a copy.
        if (row.expected != VARIANT_TRUE) {
            EXPECT_EQ(plugIn->Verify(static_cast<IEditorView*>(view), nullptr), S_OK);
        }
        view->Release();
        verifier->Release();
    }
}

// The stages drop a finding that repeats another at its place: the third
// string 5 is reported twice (after each earlier one), once remains beside
// its emptiness; the note ends the run.
TEST(Stages, OneFindingAPlace) {
    ComObject<KeptReport>* report = nullptr;
    ASSERT_EQ(ComObject<KeptReport>::Create(&report), S_OK);
    CLabelPieceList list = Words(
        {"<resources>", "<stringtable>", "<string id=\"5\">", "a", "</string>", "<string id=\"5\">",
         "b", "</string>", "<string id=\"5\">", "", "</string>", "</stringtable>", "</resources>"});
    const Pieces pieces = View(list);
    RunStages(pieces, pieces, report);
    std::vector<std::pair<LONG, LONG>> found;
    for (const Kept& kept : report->entries)
        found.emplace_back(kept.line, kept.code);
    EXPECT_EQ(found, (std::vector<std::pair<LONG, LONG>>{{8, 95}, {5, 91}, {8, 91}, {12, 5}}));
    report->Release();
}

// Tags of the first list that the second lacks are reported in the order of
// their keys, and each tag of the second takes the next unmatched one of its
// key: the two <string id="5"> of the second take lines 1 and 2, not line 1
// twice.
TEST(TagSets, LeftOversInKeyOrder) {
    ComObject<KeptReport>* report = nullptr;
    ASSERT_EQ(ComObject<KeptReport>::Create(&report), S_OK);
    CLabelPieceList first = Words({"<string id=\"9\">", "<string id=\"5\">", "<string id=\"5\">",
                                   "<string id=\"7\">", "<string id=\"5\">", "<string id=\"5\">"});
    CLabelPieceList second = Words({"<string id=\"5\">", "<string id=\"6\">", "<string id=\"5\">"});
    TagComparison compare(report);
    EXPECT_EQ(compare.CompareTagSets(StructuralTags(View(first)), StructuralTags(View(second)),
                                     nullptr, kError),
              1);
    std::vector<std::pair<LONG, LONG>> found;
    for (const Kept& kept : report->entries)
        found.emplace_back(kept.line, kept.code);
    EXPECT_EQ(found,
              (std::vector<std::pair<LONG, LONG>>{{1, 17}, {4, 16}, {5, 16}, {3, 16}, {0, 16}}));
    ASSERT_FALSE(report->entries.empty());
    EXPECT_EQ(report->entries[0].message, u"The tag '<string id=\"6\">' has been deleted.");
    report->Release();
}

} // namespace
} // namespace tervane::verify
