#include "model/dlginit_table.h"

#include <gtest/gtest.h>

#include "frame/diagnostics/exceptions.h"
#include "model/dlginit_resource.h"
#include "tests/model/test_images.h"

namespace tervane {
namespace {

using ByteList = std::vector<std::uint8_t>;
using namespace std::string_literals;

// Records of control id, message 0x403, the data's length, length high and
// the data, then the end word.
ByteList Records(const std::vector<std::pair<WORD, std::string>>& records, WORD lengthHigh = 0) {
    test::Bytes out;
    for (const auto& [control, data] : records) {
        out.U16(control).U16(0x403).U16(static_cast<WORD>(data.size())).U16(lengthHigh);
        out.bytes.insert(out.bytes.end(), data.begin(), data.end());
    }
    return out.U16(0).bytes;
}

// What Rebuild writes, after the given translations have been set.
TEST(DlgInitTable, RebuildOrdersByControlAndKeepsSourceBytes) {
    struct Case {
        const char* name;
        ByteList source;
        std::map<WORD, NarrowTextList> translated;
        ByteList rebuilt;
    };
    const Case cases[] = {
        {"a word or less holds no record", {0x34, 0x12}, {}, Records({})},
        {"ascending control ids, a later run replacing an earlier one",
         Records({{1001, "a\0"s}, {1002, "b\0"s}, {1001, "c\0"s}, {1001, "d\0"s}}),
         {},
         Records({{1001, "c\0"s}, {1001, "d\0"s}, {1002, "b\0"s}})},
        {"unchanged but for the zero byte, length high cleared",
         Records({{1001, "One\0"s}}, 7),
         {{1001, {"One"}}},
         Records({{1001, "One\0"s}})},
        {"translated texts by position",
         Records({{1001, "One\0"s}, {1001, "Two\0"s}}),
         {{1001, {"Eins", "Zwei"}}},
         Records({{1001, "Eins\0"s}, {1001, "Zwei\0"s}})},
        {"binary data of another control go back as they came",
         Records({{7, "\x01\x00\xFF"s}, {1001, "x\0"s}}),
         {{1001, {"y"}}},
         Records({{7, "\x01\x00\xFF"s}, {1001, "y\0"s}})},
    };
    for (const Case& c : cases) {
        CDlgInitData data;
        data.Parse(c.source, c.source.size());
        for (const auto& [control, list] : c.translated)
            data.SetStrings(control, list);
        data.Rebuild();
        EXPECT_EQ(data.buffer.bytes(), c.rebuilt) << c.name;
    }
}

TEST(DlgInitTable, RecordPastTheEndIsCorrupted) {
    const ByteList good = Records({{1001, "One\0"s}});
    ByteList second(good.begin(), good.end() - 2);
    second.insert(second.end(), {0x01, 0x02, 0x03});
    const ByteList cases[] = {
        ByteList(good.begin(), good.begin() + 3),  // a header cut short
        ByteList(good.begin(), good.begin() + 10), // data cut short
        second,                                    // a second header cut short
    };
    CDlgInitTable::GetInstance().Clear();
    for (const ByteList& bytes : cases) {
        CDlgInitResource resource;
        resource.identifierText = "100";
        resource.size = static_cast<DWORD>(bytes.size());
        EXPECT_THROW(CDlgInitCommand().Execute(bytes, &resource), CParserException) << bytes.size();
        EXPECT_EQ(CDlgInitTable::GetInstance().Find("100"), nullptr);
    }
    // The size of the resource bounds the reading, not the bytes behind it.
    CDlgInitData data;
    EXPECT_THROW(data.Parse(good, 10), CParserException);
}

} // namespace
} // namespace tervane
