// The BIOS image in the flash, read back in pieces.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <numeric>
#include <vector>

#include "controllers/virtual/support/list_calls.h"
#include "hxraid.h"

namespace {

using SimulatorFlash = SimulatorTest;

constexpr HX_U8 kBios = 1;

std::unique_ptr<Flash_Data> Piece(HX_U16 number) {
    auto piece = std::make_unique<Flash_Data>();
    std::memset(piece.get(), 0xA5, sizeof *piece);
    piece->PageNum = number;
    return piece;
}

bool IsUntouched(const Flash_Data& piece) {
    const auto untouched = Piece(piece.PageNum);
    return std::memcmp(untouched.get(), &piece, sizeof piece) == 0;
}

std::vector<HX_U8> Image(HX_U8 adapter) {
    std::vector<HX_U8> image;
    const auto piece = Piece(0);
    do {
        if (HX_Flash_Bin(adapter, HX_FLASH_READ, kBios, piece.get()) != 0) break;
        image.insert(image.end(), piece->Data, piece->Data + piece->DataLength);
        ++piece->PageNum;
    } while (piece->isLastPage == 0 && image.size() < 1000000);
    return image;
}

std::vector<HX_U8> Part(const std::vector<HX_U8>& bytes, std::ptrdiff_t at, std::ptrdiff_t size) {
    return {bytes.begin() + at, bytes.begin() + at + size};
}

TEST_F(SimulatorFlash, ImageComesInAWholePieceAndAShorterLastOne) {
    const auto first = Piece(0);
    EXPECT_EQ(0, HX_Flash_Bin(0, 240, kBios, first.get()));
    EXPECT_EQ(32768u, first->DataLength);
    EXPECT_EQ(0, first->isLastPage);
    const auto second = Piece(1);
    EXPECT_EQ(0, HX_Flash_Bin(0, 240, kBios, second.get()));
    EXPECT_EQ(8192u, second->DataLength);
    EXPECT_EQ(1, second->isLastPage);
    EXPECT_EQ(0xA5, second->Data[8192]);
}

TEST_F(SimulatorFlash, ImageIsAnOptionRom) {
    const std::vector<HX_U8> image = Image(0);
    ASSERT_EQ(40960u, image.size());
    EXPECT_EQ((std::vector<HX_U8>{0x55, 0xAA, 80, 0, 0, 0}), Part(image, 0, 6));
    EXPECT_EQ(0u, std::accumulate(image.begin(), image.end(), 0u) % 256);
}

TEST_F(SimulatorFlash, ImageHasTheVersionThatTheAdapterTells) {
    EXPECT_EQ((std::vector<HX_U8>{3, 0, 1, 0, 0, 0, 27, 0}), Part(Image(0), 6, 8));
    EXPECT_EQ((std::vector<HX_U8>{3, 0, 0, 0, 1, 0, 14, 0}), Part(Image(1), 6, 8));
}

TEST_F(SimulatorFlash, ImageHasTheSubsystemIdsThatTheAdapterTells) {
    EXPECT_EQ((std::vector<HX_U8>{0xC0, 0xFA, 1, 0}), Part(Image(0), 32, 4));
    EXPECT_EQ((std::vector<HX_U8>{0xC0, 0xFA, 2, 0}), Part(Image(1), 32, 4));
}

TEST_F(SimulatorFlash, ImageIsTheSameEveryTime) { EXPECT_EQ(Image(1), Image(1)); }

TEST_F(SimulatorFlash, ImageEndsBehindItsLastPiece) {
    for (const HX_U16 number : {HX_U16{2}, HX_U16{65535}}) {
        const auto piece = Piece(number);
        EXPECT_EQ(214, HX_Flash_Bin(0, 240, kBios, piece.get()));
        EXPECT_TRUE(IsUntouched(*piece));
    }
}

TEST_F(SimulatorFlash, HasNoImageOfAnotherType) {
    for (const HX_U8 type : {HX_U8{0}, HX_U8{2}, HX_U8{255}}) {
        const auto piece = Piece(0);
        EXPECT_EQ(213, HX_Flash_Bin(0, 240, type, piece.get()));
        EXPECT_TRUE(IsUntouched(*piece));
    }
}

TEST_F(SimulatorFlash, IsNotWrittenBeforeItIsErased) {
    const auto piece = Piece(0);
    EXPECT_EQ(248, HX_Flash_Bin(0, 15, kBios, piece.get()));
    EXPECT_TRUE(IsUntouched(*piece));
}

TEST_F(SimulatorFlash, IsReadOrWrittenAndNothingElse) {
    for (const HX_U8 action : {HX_U8{0}, HX_U8{1}, HX_U8{255}}) {
        const auto piece = Piece(0);
        EXPECT_EQ(215, HX_Flash_Bin(0, action, kBios, piece.get()));
        EXPECT_TRUE(IsUntouched(*piece));
    }
}

}  // namespace
