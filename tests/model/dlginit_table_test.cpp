#include "model/dlginit_table.h"

#include <gtest/gtest.h>

#include "frame/diagnostics/exceptions.h"
#include "model/dlginit_resource.h"
#include "tests/model/test_images.h"

namespace tervane {
namespace {

using ByteList = std::vector<std::uint8_t>;

// One record: control id, message 0x403, the data's length, length high, the data.
ByteList Record(WORD control, const std::string& data, WORD lengthHigh = 0) {
    test::Bytes out;
    out.U16(control).U16(0x403).U16(static_cast<WORD>(data.size())).U16(lengthHigh);
    out.bytes.insert(out.bytes.end(), data.begin(), data.end());
    return out.bytes;
}

ByteList Join(const std::vector<ByteList>& parts) {
    ByteList out;
    for (const ByteList& part : parts)
        out.insert(out.end(), part.begin(), part.end());
    return out;
}

const ByteList kEnd = {0, 0};

CDlgInitData Parsed(const ByteList& bytes) {
    CDlgInitData data;
    data.Parse(bytes, bytes.size());
    return data;
}

// What Rebuild writes, after the given translations have been set.
TEST(DlgInitTable, RebuildOrdersByControlAndKeepsSourceBytes) {
    struct Case {
        const char* name;
        ByteList source;
        std::map<WORD, NarrowTextList> translated;
        ByteList rebuilt;
    };
    using namespace std::string_literals;
    const Case cases[] = {
        {"ascending control ids",
         Join({Record(1002, "B\0"s), Record(1001, "A\0"s), kEnd}),
         {},
         Join({Record(1001, "A\0"s), Record(1002, "B\0"s), kEnd})},
        {"a later run replaces an earlier one",
         Join({Record(1001, "a\0"s), Record(1002, "b\0"s), Record(1001, "c\0"s),
               Record(1001, "d\0"s), kEnd}),
         {},
         Join({Record(1001, "c\0"s), Record(1001, "d\0"s), Record(1002, "b\0"s), kEnd})},
        {"unchanged but for the zero byte",
         Join({Record(1001, "One\0"s, 7), kEnd}),
         {{1001, {"One"}}},
         Join({Record(1001, "One\0"s), kEnd})},
        {"translated texts by position",
         Join({Record(1001, "One\0"s), Record(1001, "Two\0"s), kEnd}),
         {{1001, {"Eins", "Zwei"}}},
         Join({Record(1001, "Eins\0"s), Record(1001, "Zwei\0"s), kEnd})},
        {"binary data of another control go back as they came",
         Join({Record(7, "\x01\x00\xFF"s, 3), Record(1001, "x\0"s), kEnd}),
         {{1001, {"y"}}},
         Join({Record(7, "\x01\x00\xFF"s), Record(1001, "y\0"s), kEnd})},
    };
    for (const Case& c : cases) {
        CDlgInitData data = Parsed(c.source);
        for (const auto& [control, list] : c.translated)
            data.SetStrings(control, list);
        data.Rebuild();
        EXPECT_EQ(data.buffer, c.rebuilt) << c.name;
    }
}

// A word or less holds no record; the end word is written back as zero.
TEST(DlgInitTable, TinyResourcesHoldNoRecord) {
    for (const ByteList& bytes : {ByteList{}, ByteList{0x34}, ByteList{0x34, 0x12}}) {
        CDlgInitData data = Parsed(bytes);
        EXPECT_TRUE(data.records.empty()) << bytes.size();
        data.Rebuild();
        EXPECT_EQ(data.buffer, kEnd) << bytes.size();
    }
}

TEST(DlgInitTable, RecordPastTheEndIsCorrupted) {
    using namespace std::string_literals;
    ByteList good = Join({Record(1001, "One\0"s), kEnd});
    const ByteList cases[] = {
        ByteList(good.begin(), good.begin() + 3),           // a header cut short
        ByteList(good.begin(), good.begin() + 10),          // data cut short
        Join({Record(1001, "One\0"s), {0x01, 0x02, 0x03}}), // a second header cut short
    };
    for (const ByteList& bytes : cases) {
        CDlgInitData data;
        EXPECT_THROW(data.Parse(bytes, bytes.size()), CParserException) << bytes.size();

        CDlgInitTable::GetInstance().Clear();
        CDlgInitResource resource;
        resource.identifierText = "100";
        resource.size = static_cast<DWORD>(bytes.size());
        EXPECT_THROW(CDlgInitCommand().Execute(bytes, &resource), CParserException);
        EXPECT_EQ(CDlgInitTable::GetInstance().Find("100"), nullptr);
    }
    // The size of the resource bounds the reading, not the bytes behind it.
    CDlgInitData data;
    EXPECT_THROW(data.Parse(good, 10), CParserException);
}

TEST(DlgInitTable, TableByIdentifier) {
    using namespace std::string_literals;
    CDlgInitTable& table = CDlgInitTable::GetInstance();
    table.Clear();
    table.language = 0;
    // Without an entry: nothing to give, nothing to take.
    EXPECT_TRUE(table.GetItems("100", 1001).empty());
    table.SetItems("100", 1001, {"x"});
    EXPECT_EQ(table.Find("100"), nullptr);
    EXPECT_TRUE(table.Empty());

    for (WORD language : {0x409, 0x407}) {
        ByteList bytes = Join({Record(1001, language == 0x409 ? "en\0"s : "de\0"s), kEnd});
        CDlgInitResource resource;
        resource.identifierText = "100";
        resource.language = language;
        resource.size = static_cast<DWORD>(bytes.size());
        EXPECT_EQ(CDlgInitCommand().Execute(bytes, &resource), &resource);
    }
    // The second resource of an identifier took the place of the first.
    EXPECT_EQ(table.GetItems("100", 1001), NarrowTextList{"de\0"s});
    EXPECT_EQ(table.language, 0x407);
    table.Clear();
}

} // namespace
} // namespace tervane
