#include "output/cell_text.h"

#include <gtest/gtest.h>

#include <string>

namespace vexorctl {
namespace {

constexpr ColumnInfo kRateColumn{"rate_bytes_per_second", "RATE", Kind::kRate, Place::kTable, ""};
constexpr ColumnInfo kLeftColumn{"seconds_left", "LEFT", Kind::kSeconds, Place::kTable, ""};
constexpr ColumnInfo kEffectsColumn{"effects", "EFFECTS", Kind::kSentences, Place::kWide, ""};

std::string Left(std::uint64_t seconds) { return CellText(kLeftColumn, NumberCell(seconds), {}); }

TEST(ADuration, IsRoundedForPeople) {
    EXPECT_EQ(Left(0), "0s");
    EXPECT_EQ(Left(59), "59s");
    EXPECT_EQ(Left(3599), "59m59s");
    EXPECT_EQ(Left(3600), "1h");
    EXPECT_EQ(Left(3661), "1h1m");
    EXPECT_EQ(Left(86399), "23h59m");
    EXPECT_EQ(Left(86400 + 3661), "1d1h");
    EXPECT_EQ(Left(UINT64_MAX), "1000000d");
    EXPECT_EQ(PlainText(kLeftColumn, NumberCell(3661), {}), "3661");
}

TEST(ARate, HasItsUnit) {
    EXPECT_EQ(CellText(kRateColumn, NumberCell(73400320), {}), "70 MiB/s");
    EXPECT_EQ(CellText(kRateColumn, NumberCell(73400320), Style{.bytes = true}), "73400320");
    EXPECT_EQ(PlainText(kRateColumn, NumberCell(73400320), {}), "73400320");
    EXPECT_EQ(CellText(kRateColumn, Unknown(), {}), "?");
}

TEST(Sentences, StayApartWhateverTheyHold) {
    const Cell effects = TextsCell({{"its disks: a0/pd4, a0/pd5", "all data will be lost"}});
    EXPECT_EQ(CellText(kEffectsColumn, effects, {}),
              "its disks: a0/pd4, a0/pd5; all data will be lost");
    EXPECT_EQ(PlainText(kEffectsColumn, effects, {}),
              "its disks: a0/pd4, a0/pd5\nall data will be lost");
}

}  // namespace
}  // namespace vexorctl
