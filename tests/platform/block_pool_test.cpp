#include "platform/memory/block_pool.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "label/pieces/label_piece.h"

namespace tervane {
namespace {

std::u16string Numbered(std::size_t n) {
    const std::string digits = std::to_string(n);
    return std::u16string(digits.begin(), digits.end());
}

// Pieces made on one thread, partly freed there, and freed on another after
// the first has ended: every block keeps its piece apart from the others, and
// every chunk goes back to the heap once its last block is back.
TEST(BlockPool, PiecesOutliveTheirThreadAndChunksGoBack) {
    const std::size_t before = block_pool::ChunksInUse();
    constexpr std::size_t kCount = 3000; // several chunks of each size
    CLabelPieceList kept;
    std::thread([&] {
        CLabelPieceList dropped;
        for (std::size_t i = 0; i < kCount; ++i) {
            CLabelPieceList& list = i % 2 ? dropped : kept;
            list.push_back(MakeText(Numbered(i)));
            list.push_back(MakeInlineTag(Numbered(i)));
            list.push_back(std::make_unique<CLabelPiece>(
                PieceRange{{static_cast<LONG>(i), 0}, {0, static_cast<LONG>(i)}}));
        }
    }).join();
    ASSERT_EQ(kept.size(), kCount / 2 * 3);
    for (std::size_t at = 0; at < kept.size(); at += 3) {
        const std::size_t i = at / 3 * 2;
        EXPECT_EQ(TextOf(*kept[at])->text, Numbered(i));
        EXPECT_EQ(TagOf(*kept[at + 1])->tagText, Numbered(i));
        EXPECT_EQ(kept[at + 2]->range.end.second, static_cast<LONG>(i));
    }
    std::thread([&] { kept.clear(); }).join();
    EXPECT_EQ(block_pool::ChunksInUse(), before);
}

} // namespace
} // namespace tervane
