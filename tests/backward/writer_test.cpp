// The writer as a host drives it: what its intake keeps, when its state
// machine reads and runs, and the texts of its failures.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "backward/tervane_writer.h"
#include "platform/com/error_info.h"
#include "platform/locale/code_pages.h"
#include "tests/backward/fake_items.h"
#include "tests/support/fixtures.h"

namespace tervane {
namespace {

namespace fs = std::filesystem;

using test::FakeInfo;
using test::FakeTag;
using test::FakeText;

// Each pump runs the next step of a script; past its end a pump does nothing.
class ScriptHost : public ComObjectRoot, public DispatchWithoutTypeInfo<IFilterHost> {
public:
    static InterfaceMap<ScriptHost> Interfaces() {
        static const InterfaceEntry<ScriptHost> map[] = {Entry<ScriptHost, IFilterHost>()};
        return map;
    }
    HRESULT raw_Progress(LONG) override { return S_OK; }
    HRESULT raw_Pump(LONG_PTR) override {
        ++pumps;
        return next < script.size() ? script[next++]() : S_OK;
    }
    std::vector<std::function<HRESULT()>> script;
    std::size_t next = 0;
    int pumps = 0;
};

std::string LastErrorText() {
    ComPtr<IErrorInfo> info;
    if (GetErrorInfo(0, info.Receive()) != S_OK || !info)
        return {};
    BSTR description = nullptr;
    info->GetDescription(&description);
    return Narrow(Bstr::Attach(description).view());
}

class Writer {
public:
    explicit Writer(const std::string& target) {
        ComObject<TervaneWriter>::Create(writer_.Receive());
        ComObject<ScriptHost>::Create(host_.Receive());
        Bstr path(Widen(target));
        EXPECT_EQ(
            writer_->Initialize(path.get(), nullptr, 0x407, 0, 0, host_.get(), events_.Receive()),
            S_OK);
    }
    ~Writer() { host_->script.clear(); }

    HRESULT Start(const std::string& source) {
        ComPtr<ComObject<FakeInfo>> info;
        ComObject<FakeInfo>::Create(info.Receive());
        info->path = Widen(source);
        return events_->raw_StartOfInput(info.get());
    }
    // "<x>" opens, "</x>" closes, "<x/>" stands alone, "{t}" is inline, else text.
    void Send(const std::string& spelt) {
        if (spelt.size() > 1 && spelt.front() == '{') {
            Tag(spelt.substr(1, spelt.size() - 2), 0, 0, 1);
        } else if (spelt.size() > 2 && spelt.front() == '<') {
            const bool close = spelt[1] == '/', alone = spelt[spelt.size() - 2] == '/';
            Tag(spelt, close || alone ? 0 : 1, close ? 1 : 0, 0);
        } else {
            ComPtr<ComObject<FakeText>> text;
            ComObject<FakeText>::Create(text.Receive());
            text->text = Widen(spelt);
            EXPECT_EQ(events_->raw_Text(text.get()), S_OK);
        }
    }
    void Tag(const std::string& text, LONG start, LONG end, LONG inlineMark) {
        ComPtr<ComObject<FakeTag>> tag;
        ComObject<FakeTag>::Create(tag.Receive());
        tag->tag.tagText = tag->tag.name = Widen(text);
        tag->tag.startTag = start;
        tag->tag.endTag = end;
        tag->tag.inlineTag = inlineMark;
        EXPECT_EQ(events_->raw_Tag(tag.get()), S_OK);
    }
    // The pieces as Send spells them, text pieces with "|1" when in a segment.
    std::string Pieces() {
        std::string spelt;
        for (const auto& piece : writer_->Updater().pieces) {
            if (const CTextLabelPiece* text = piece->AsText())
                spelt += Narrow(text->text.view()) + (text->inSegment ? "|1" : "") + " ";
            else if (const CTagLabelPiece* tag = piece->AsTag())
                spelt += (tag->tag.inlineTag ? "{" + Narrow(tag->tag.tagText.view()) + "}"
                                             : Narrow(tag->tag.tagText.view())) +
                         " ";
        }
        return spelt;
    }

    ComPtr<ComObject<TervaneWriter>> writer_;
    ComPtr<ComObject<ScriptHost>> host_;
    ComPtr<IEvents> events_;
};

struct IntakeRow {
    const char* what;
    std::vector<std::string> events; // "[" and "]" are the segment marks
    std::string pieces;
};

void PrintTo(const IntakeRow& row, std::ostream* out) {
    *out << row.what;
}

class Intake : public ::testing::TestWithParam<IntakeRow> {};

TEST_P(Intake, KeepsWhatTheTargetNeeds) {
    Writer writer(test::TempDir() + "/out.dll");
    for (const std::string& event : GetParam().events) {
        if (event == "[")
            writer.events_->raw_StartOfSegment(nullptr);
        else if (event == "]")
            writer.events_->raw_EndOfSegment();
        else
            writer.Send(event);
    }
    EXPECT_EQ(writer.Pieces(), GetParam().pieces);
}

INSTANTIATE_TEST_SUITE_P(
    Events, Intake,
    ::testing::Values(
        IntakeRow{"structure kept, text between elements dropped",
                  {"<stringtable>", "\t\t", "{%s}", "</stringtable>", "<separator/>"},
                  "<stringtable> </stringtable> <separator/> "},
        IntakeRow{"a wanted element whole",
                  {"<string id=\"1\">", "Save ", "{%s}", "", "?", "</string>", "\n", "{&}"},
                  "<string id=\"1\"> Save  {%s} ? </string> "},
        IntakeRow{"the segment marks beside each text",
                  {"<item>", "[", "a", "]", "b", "[", "<shortcut>", "c", "</item>"},
                  "<item> a|1 b <shortcut> c </item> "},
        IntakeRow{"a new item ends the text before it",
                  {"<item>", "a", "<item id=\"2\">", "b", "</item>", "c"},
                  "<item> a <item id=\"2\"> b </item> "},
        IntakeRow{"a group tag is no element", {"<items>", "x", "</items>"}, "<items> </items> "}),
    [](const auto& info) {
        std::string name;
        for (const char* c = info.param.what; *c; ++c)
            name += std::isalnum(static_cast<unsigned char>(*c)) ? *c : '_';
        return name;
    });

// Without raw_StartOfInput every raw_Write only pumps.
TEST(WriterStates, WaitsForInput) {
    const std::string dir = test::TempDir();
    Writer writer(dir + "/out.dll");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(writer.writer_->raw_Write(0), S_OK);
    EXPECT_EQ(writer.host_->pumps, 3);
    EXPECT_FALSE(fs::exists(dir + "/out.dll"));
}

// A failed opening of the source is the host's to judge: E_FAIL from the
// pump makes it the result of raw_Write, anything else lets it pass.
TEST(WriterStates, MissingSource) {
    for (HRESULT pumped : {E_FAIL, S_FALSE}) {
        const std::string dir = test::TempDir();
        Writer writer(dir + "/out.dll");
        writer.host_->script = {[&] {
            EXPECT_EQ(writer.Start(dir + "/gone.dll"), E_ACCESSDENIED);
            return pumped;
        }};
        const HRESULT hr = writer.writer_->raw_Write(0);
        if (pumped == E_FAIL) {
            EXPECT_EQ(hr, E_ACCESSDENIED);
            EXPECT_EQ(LastErrorText(), "Source file not found, make sure the source file is "
                                       "present in the following path.\n('" +
                                           dir + "/gone.dll'.)");
        } else {
            EXPECT_EQ(hr, S_OK);
        }
    }
}

// The source is read in the call after the input opens, and the run takes
// place in the call after the one that pumped the end of the input. A
// read-only source passes its mark to the target and keeps it.
class RunsAfterTheEnd : public ::testing::TestWithParam<bool> {};

TEST_P(RunsAfterTheEnd, WritesTheTargetThen) {
    const bool readOnly = GetParam();
    const std::string dir = test::TempDir();
    const std::string source = dir + "/src.dll";
    fs::copy_file(test::FixturePath("fwd_blocks", "x64"), source);
    const std::string events = test::RunCommand(std::string(TERVANE_BINARY_DIR) +
                                                "/tervane extract --no-scan --document " + source);
    if (readOnly)
        fs::permissions(source,
                        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                        fs::perm_options::remove);
    Writer writer(dir + "/out.dll");
    writer.host_->script = {[&] { return writer.Start(source); },
                            [&] {
                                // The document of extract --document, tag by tag: this one holds no
                                // inline tag.
                                for (std::size_t at = 0; at < events.size();) {
                                    const std::size_t end = events[at] == '<'
                                                                ? events.find('>', at) + 1
                                                                : events.find('<', at);
                                    writer.Send(events.substr(at, end - at));
                                    at = end;
                                }
                                return writer.events_->raw_EndOfInput();
                            }};
    EXPECT_EQ(writer.writer_->raw_Write(0), S_OK); // opens the input
    EXPECT_EQ(writer.writer_->raw_Write(0), S_OK); // reads the source, pumps the rest
    EXPECT_FALSE(fs::exists(dir + "/out.dll"));
    const HRESULT run = writer.writer_->raw_Write(0); // runs
    EXPECT_EQ(run, S_OK) << LastErrorText();
    EXPECT_EQ(writer.host_->pumps, 3);
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"out.dll", "src.dll"}));
    const auto writable = [](const std::string& path) {
        return (fs::status(path).permissions() & fs::perms::owner_write) != fs::perms::none;
    };
    EXPECT_EQ(writable(dir + "/out.dll"), !readOnly);
    EXPECT_EQ(writable(source), !readOnly);
}

INSTANTIATE_TEST_SUITE_P(Source, RunsAfterTheEnd, ::testing::Values(false, true),
                         [](const auto& info) { return info.param ? "ReadOnly" : "Writable"; });

// A source that lists no resource is read again on every call and never run.
TEST(WriterStates, SourceWithoutResources) {
    const std::string dir = test::TempDir();
    Writer writer(dir + "/out.dll");
    writer.host_->script = {[&] { return writer.Start(test::FixturePath("fwd_none", "x64")); },
                            [&] { return writer.events_->raw_EndOfInput(); }};
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(writer.writer_->raw_Write(0), S_OK);
    EXPECT_FALSE(fs::exists(dir + "/out.dll"));
}

TEST(WriterFailures, FixedTexts) {
    Writer writer(test::TempDir() + "/out.dll");
    EXPECT_EQ(writer.events_->raw_Tag(nullptr), E_FAIL);
    EXPECT_EQ(LastErrorText(),
              "Unexpected error when accessing Initialize method [TervaneWriter ].");
    writer.Send("<string id=\"1\">");
    EXPECT_EQ(writer.events_->raw_Text(nullptr), E_FAIL);
    EXPECT_EQ(LastErrorText(),
              "Unexpected error when accessing raw_Text  method [TervaneWriter ].");
    IFileWriter* fileWriter = writer.writer_.get();
    EXPECT_EQ(fileWriter->Initialize(nullptr, nullptr, 0, 0, 0, nullptr, nullptr), E_FAIL);
    EXPECT_EQ(LastErrorText(), "Unexpected error when accessing [TervaneWriter.Initialize ]");
    // Without a host there is nothing to pump.
    ComPtr<IEvents> events;
    EXPECT_EQ(fileWriter->Initialize(nullptr, nullptr, 0, 0, 0, nullptr, events.Receive()), S_OK);
    EXPECT_EQ(fileWriter->raw_Write(0), E_FAIL);
    EXPECT_EQ(LastErrorText(), "Unexpected exception occured accessing [TervaneWriter.raw_Write]");
}

} // namespace
} // namespace tervane
