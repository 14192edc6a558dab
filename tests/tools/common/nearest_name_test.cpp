#include "common/nearest_name.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace vexortools {
namespace {

constexpr std::string_view kNames[] = {"AdapterID", "HD_ID", "numRequested", "n"};

TEST(NearestName, IsFoundBehindSlips) {
    EXPECT_EQ(NearestName("adapterid", kNames), "AdapterID");
    EXPECT_EQ(NearestName("AdaptreID", kNames), "AdapterID");
    EXPECT_EQ(NearestName("Adapter_ID", kNames), "AdapterID");
    EXPECT_EQ(NearestName("HDID", kNames), "HD_ID");
    EXPECT_EQ(NearestName("numRequest", kNames), "numRequested");
}

TEST(NearestName, IsNoneOfAnotherName) {
    EXPECT_EQ(NearestName("Adapter", kNames), "AdapterID");  // two are missing
    EXPECT_EQ(NearestName("Adapt", kNames), "");
    EXPECT_EQ(NearestName("x", kNames), "");  // every name of one letter is one slip away
    EXPECT_EQ(NearestName("", kNames), "");
    EXPECT_EQ(NearestName("AdapterID", {}), "");
}

TEST(NearestName, IsFoundBehindOneLetterTooManyOfAShortName) {
    constexpr std::string_view kShort[] = {"vd", "dg", "n"};
    EXPECT_EQ(NearestName("vdd", kShort), "vd");
    EXPECT_EQ(NearestName("vx", kShort), "");
    EXPECT_EQ(NearestName("nn", kShort), "");
}

TEST(NearestName, TakesTheNearestAndTheFirstOfEquals) {
    constexpr std::string_view kAlike[] = {"volLowerBound", "volUpperBound", "volLowerBounds"};
    EXPECT_EQ(NearestName("volLowerBounds", kAlike), "volLowerBounds");
    EXPECT_EQ(NearestName("volLowrBound", kAlike), "volLowerBound");
}

TEST(NearestName, IsNotSearchedForOfLongTexts) {
    const std::string text(100000, 'a');
    EXPECT_EQ(NearestName(text, kNames), "");
}

}  // namespace
}  // namespace vexortools
