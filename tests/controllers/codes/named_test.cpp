// The checks of tables see what they are there to see; most of it happens in the compiler.
#include "codes/named.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "codes/activity.h"
#include "codes/complete.h"
#include "codes/disk.h"
#include "codes/event.h"
#include "codes/level.h"
#include "codes/rate.h"

namespace named_test {

using hxcodes::Named;

enum class Colour : HX_U8 { kRed = 1, kGreen = 2, kBlue = 9 };

constexpr Named kAll[] = {
    {Colour::kRed, "red"}, {Colour::kGreen, "green"}, {Colour::kBlue, "blue"}};
static_assert(hxcodes::IsTable(kAll));
static_assert(hxcodes::IsComplete<Colour, kAll>());

constexpr Named kOneForgotten[] = {{Colour::kRed, "red"}, {Colour::kBlue, "blue"}};
static_assert(!hxcodes::IsComplete<Colour, kOneForgotten>());

constexpr Named kLastForgotten[] = {{Colour::kRed, "red"}, {Colour::kGreen, "green"}};
static_assert(!hxcodes::IsComplete<Colour, kLastForgotten>());

constexpr Named kOneTooMany[] = {
    {Colour::kRed, "red"}, {Colour::kGreen, "green"}, {3, "yellow"}, {Colour::kBlue, "blue"}};
static_assert(!hxcodes::IsComplete<Colour, kOneTooMany>());

constexpr Named kOutOfOrder[] = {{Colour::kGreen, "green"}, {Colour::kRed, "red"}};
static_assert(!hxcodes::IsTable(kOutOfOrder));

constexpr Named kOneCodeTwice[] = {{Colour::kRed, "red"}, {Colour::kRed, "crimson"}};
static_assert(!hxcodes::IsTable(kOneCodeTwice));

constexpr Named kOneNameTwice[] = {{Colour::kRed, "red"}, {Colour::kGreen, "red"}};
static_assert(!hxcodes::IsTable(kOneNameTwice));

constexpr Named kUnfit[] = {{Colour::kRed, "Red wine"}};
static_assert(!hxcodes::IsTable(kUnfit));

enum class Flag : HX_U16 { kLow = 0x0001, kHigh = 0x8000 };

constexpr Named kFlags[] = {{Flag::kLow, "low"}, {Flag::kHigh, "high"}};
static_assert(hxcodes::IsTableOfBits(kFlags));
static_assert(hxcodes::IsCompleteInBits<Flag, kFlags>());

constexpr Named kHighForgotten[] = {{Flag::kLow, "low"}};
static_assert(!hxcodes::IsCompleteInBits<Flag, kHighForgotten>());

constexpr Named kTwoBits[] = {{3, "both"}};
static_assert(!hxcodes::IsTableOfBits(kTwoBits));

static_assert(hxcodes::HasGoodPlaces("{object} was made of {1} by {9}"));
static_assert(!hxcodes::HasGoodPlaces("{0} is not numbered"));
static_assert(!hxcodes::HasGoodPlaces("{object is open"));
static_assert(!hxcodes::HasGoodPlaces("{} is empty"));

TEST(Named, IsFoundByNumberAndByName) {
    EXPECT_EQ(hxcodes::NameOf(kAll, 9), "blue");
    EXPECT_EQ(hxcodes::NameOf(kAll, 3), "");
    EXPECT_EQ(hxcodes::FindName(kAll, "green"), &kAll[1]);
    EXPECT_EQ(hxcodes::FindName(kAll, "yellow"), nullptr);
}

TEST(Named, IsNotFoundByTheLowBitsOfALongNumber) {
    EXPECT_EQ(hxcodes::NameOf(kAll, 0x1'0000'0001), "");
}

TEST(Row, OfANumberThatIsNoCodeDoesNotExist) {
    EXPECT_THROW(hxcodes::RowOf(static_cast<hxcodes::Rate>(99)), std::out_of_range);
}

TEST(Bits, StandInTheirOrderWhateverTheOrderOfTheirRows) {
    ASSERT_EQ(hxcodes::kLevelBits.size(), 8U);
    EXPECT_EQ(hxcodes::kLevelBits[2].code, 0x0004U);
    EXPECT_EQ(hxcodes::kLevelBits[2].name, "raid10");
    ASSERT_EQ(hxcodes::kRateBits.size(), 6U);  // the general rate can always be set
    EXPECT_EQ(hxcodes::kRateBits[0].name, "rebuild");
    EXPECT_EQ(hxcodes::kRateBits[5].code, 0x40U);
    EXPECT_EQ(hxcodes::kRateBits[5].name, "copyback");
}

TEST(DiskWord, TellsWhatMattersMost) {
    EXPECT_EQ(hxcodes::DiskWordOf(0x00), "free");
    EXPECT_EQ(hxcodes::DiskWordOf(0x01), "free");
    EXPECT_EQ(hxcodes::DiskWordOf(0x05), "configured");
    EXPECT_EQ(hxcodes::DiskWordOf(0x41), "group_spare");
    EXPECT_EQ(hxcodes::DiskWordOf(0x0D), "global_spare");
    EXPECT_EQ(hxcodes::DiskWordOf(0x1D), "rebuilding");
    EXPECT_EQ(hxcodes::DiskWordOf(0x84), "missing");
    EXPECT_EQ(hxcodes::DiskWordOf(0x85), "offline");
    EXPECT_EQ(hxcodes::DiskWordOf(0x83), "foreign");
    EXPECT_EQ(hxcodes::DiskWordOf(0xA6), "failed");
}

TEST(Level, KeepsAsMuchRedundancyAsItsDisksMakeUpFor) {
    const auto redundancy = [](std::string_view name) {
        return hxcodes::RedundancyOf(*hxcodes::FindName(hxcodes::kLevels, name));
    };
    EXPECT_EQ(redundancy("raid0"), 0U);
    EXPECT_EQ(redundancy("raid1"), 1U);
    EXPECT_EQ(redundancy("raid5"), 1U);
    EXPECT_EQ(redundancy("raid6"), 2U);
    EXPECT_EQ(redundancy("raid10"), 1U);
    EXPECT_EQ(redundancy("raid1e"), 1U);
    EXPECT_EQ(redundancy("raid50"), 1U);
    EXPECT_EQ(redundancy("raid60"), 2U);
}

TEST(EventSeverity, OfAStepIsTheSteps) {
    using hxcodes::ActivityKind;
    using hxcodes::Step;
    const auto severity = [](auto kind, Step step) {
        return hxcodes::SeverityOf(*hxcodes::EventOf(kind, step));
    };
    EXPECT_EQ(severity(ActivityKind::kCheck, Step::kStart), 2);
    EXPECT_EQ(severity(ActivityKind::kCopyback, Step::kAbort), 3);
    EXPECT_EQ(severity(ActivityKind::kRebuild, Step::kError), 5);
    EXPECT_EQ(severity(ActivityKind::kMediaPatrol, Step::kError), 5);
    EXPECT_EQ(hxcodes::EventOf(ActivityKind::kDataScrub, Step::kStart), std::nullopt);
}

}  // namespace named_test
