#include <gtest/gtest.h>

#include <functional>

#include "backward/update_visitor.h"
#include "backward/visitor_factory.h"
#include "frame/diagnostics/exceptions.h"
#include "model/resource_buffer.h"
#include "stream/output_visitor.h"

namespace tervane {
namespace {

using Bytes = std::vector<std::uint8_t>;

TEST(ResourceBuffer, WritesLittleEndianTextsAndAlignment) {
    const std::pair<std::function<void(CResourceBuffer&)>, Bytes> cases[] = {
        {[](CResourceBuffer& b) { b.WriteText(u"ab"); }, {'a', 0, 'b', 0, 0, 0}},
        {[](CResourceBuffer& b) { b.WriteText(std::u16string(u"a\0b", 3)); }, {'a', 0, 0, 0}},
        {[](CResourceBuffer& b) { b.WriteOptionalText(std::nullopt); }, {0, 0}},
        {[](CResourceBuffer& b) { b.WriteOrdinal(0x85); }, {0xFF, 0xFF, 0x85, 0}},
        {[](CResourceBuffer& b) { b.WriteCountedText(u"ab"); }, {2, 0, 'a', 0, 'b', 0}},
        {[](CResourceBuffer& b) { b.WriteDword(0x01020304); }, {4, 3, 2, 1}},
        {[](CResourceBuffer& b) { b.WriteWord(7), b.Align(); }, {7, 0, 0, 0}},
        {[](CResourceBuffer& b) { b.WriteByte(1), b.Align(); }, {1}},
        {[](CResourceBuffer& b) { b.WriteDword(0), b.Align(); }, {0, 0, 0, 0}},
    };
    for (const auto& [write, expected] : cases) {
        CResourceBuffer buffer;
        write(buffer);
        EXPECT_EQ(buffer.bytes(), expected);
        EXPECT_EQ(buffer.capacity(), CResourceBuffer::kGrowth);
    }
    CResourceBuffer buffer;
    buffer.WriteNarrowText(std::string(CResourceBuffer::kGrowth + 1, 'x'));
    EXPECT_EQ(buffer.capacity(), 2 * CResourceBuffer::kGrowth);
}

// A count that outgrows its word names the resource instead of wrapping.
TEST(ResourceBuffer, CountsBeyondSixteenBitsAreRefused) {
    for (const auto& [units, fits] : {std::pair{0xFFFFu, true}, {0x10000u, false}}) {
        CResourceBuffer buffer;
        buffer.SetContext("string block id = 7");
        const std::u16string text(units, u'z');
        if (fits) {
            buffer.WriteCountedText(text);
            EXPECT_EQ(buffer.used(), 2 + 2 * units);
            continue;
        }
        try {
            buffer.WriteCountedText(text);
            ADD_FAILURE() << "no error";
        } catch (const TervaneFilterException& e) {
            EXPECT_NE(std::string(e.message).find("string block id = 7"), std::string::npos);
            EXPECT_EQ(buffer.used(), 0u);
        }
    }
}

TEST(VisitorFactory, MakesTheVisitorOfEachKind) {
    EXPECT_NE(dynamic_cast<COutputVisitor*>(CreateVisitor(1).get()), nullptr);
    EXPECT_NE(dynamic_cast<CUpdateVisitor*>(CreateVisitor(2).get()), nullptr);
    EXPECT_EQ(CreateVisitor(0), nullptr);
    EXPECT_EQ(CreateVisitor(3), nullptr);
}

} // namespace
} // namespace tervane
