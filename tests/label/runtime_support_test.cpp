// The runtime's stacks and sets at their limits, and the lead-byte classifier.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "label/runtime/rcparsedbcsinfo.h"
#include "label/runtime/ss_lifo.h"
#include "label/runtime/ss_yacc.h"
#include "tests/label/runtime_toy.h"

namespace tervane::test {
namespace {

TEST(RuntimeContainers, ErrorsAtTheirLimits) {
    struct Case {
        const char* name;
        std::function<void()> action;
        std::int32_t code;
        const char* message;
    };
    const std::vector<Case> cases = {
        {"push on a full stack without growth",
         [] {
             SSLifo<int> stack(2, 0);
             stack.push(1);
             stack.push(2);
             stack.push(3);
         },
         8, "SSLifo0001e: Stack full"},
        {"pop beyond the bottom",
         [] {
             SSLifo<int> stack(4, 4);
             stack.push(1);
             stack.pop(2);
         },
         10, "SSLifo0004e: Cannot pop empty stack"},
        {"add to a full set without growth",
         [] {
             SSSetArray set(1, 0);
             set.add(5);
             set.add(5); // present: nothing to add
             set.add(6);
         },
         23, "SSSetArray0001e: Set full"},
    };
    for (const Case& c : cases) {
        auto [code, message] = Raised(c.action);
        EXPECT_EQ(code, c.code) << c.name;
        EXPECT_EQ(message, c.message) << c.name;
    }
}

TEST(LeadByteClassifier, ModesAndTheirRanges) {
    struct Case {
        std::uint32_t mode;
        std::vector<std::uint8_t> lead;
        std::vector<std::uint8_t> single;
    };
    const std::vector<Case> cases = {
        {1, {}, {0x00, 0x81, 0xFE, 0xFF}},
        {2, {0x81, 0x9F, 0xE0, 0xFC}, {0x80, 0xA0, 0xDF, 0xFD, 0x41}},
        {3, {0xA1, 0xFE}, {0xA0, 0xFF, 0x81}},
        {4, {0x81, 0xFE}, {0x80, 0xFF}},
        {5, {0x81, 0xC0, 0xFE}, {0x80, 0xFF, 0x20}},
        {6, {}, {0x81, 0xA1, 0xFE}},
        // The process's code page is UTF-8, which has no lead bytes.
        {0, {}, {0x81, 0xC3, 0xE0, 0xFE}},
    };
    for (const Case& c : cases) {
        rcparsedbcsinfo info(c.mode);
        for (std::uint8_t b : c.lead)
            EXPECT_TRUE(info.isLeadByte(b)) << c.mode << " " << int(b);
        for (std::uint8_t b : c.single)
            EXPECT_FALSE(info.isLeadByte(b)) << c.mode << " " << int(b);
    }
    // An NT platform answers GetVersionExA, so the process asks the platform.
    EXPECT_EQ(rcparsedbcsinfo::startupMode(), 0u);
}

} // namespace
} // namespace tervane::test
