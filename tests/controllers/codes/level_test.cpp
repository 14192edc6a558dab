// What the levels can be made of.
#include "codes/level.h"

#include <gtest/gtest.h>

#include <optional>

namespace hxcodes {
namespace {

TEST(Levels, HasItsOwnNumbersOfDisks) {
    const auto fits = [](Level level, unsigned disks, unsigned legs) {
        return CanBeMade(RowOf(level), disks, legs);
    };
    EXPECT_FALSE(fits(Level::kRaid0, 0, 0));
    EXPECT_FALSE(fits(Level::kRaid1, 3, 0));
    EXPECT_FALSE(fits(Level::kRaid10, 2, 0));
    EXPECT_FALSE(fits(Level::kRaid10, 5, 0));
    EXPECT_FALSE(fits(Level::kRaid1E, 4, 0));
    EXPECT_FALSE(fits(Level::kRaid1E, 1, 0));
    EXPECT_FALSE(fits(Level::kRaid5, 2, 0));
    EXPECT_FALSE(fits(Level::kRaid6, 2, 0));
    EXPECT_FALSE(fits(Level::kRaid50, 7, 2));
    EXPECT_FALSE(fits(Level::kRaid50, 6, 3));
    EXPECT_FALSE(fits(Level::kRaid50, 3, 1));
    EXPECT_FALSE(fits(Level::kRaid60, 5, 0));
    EXPECT_EQ(std::nullopt, ToCode<Level>(0x07));
}

}  // namespace
}  // namespace hxcodes
