#include "common/duration.h"

#include <gtest/gtest.h>

#include "tools/common/usage_message.h"

namespace {

using vexortools::Duration;
using vexortools::DurationText;
using vexortools::ParseDuration;
using vexortools::ReadDuration;

TEST(Duration, IsTheSumOfItsParts) {
    struct Written {
        const char* text;
        std::int64_t milliseconds;
    };
    constexpr Written kDurations[] = {
        {"0s", 0},
        {"1ms", 1},
        {"90s", 90000},
        {"1m", 60000},
        {"2h", 7200000},
        {"7d", 604800000},
        {"1w", 604800000},
        {"2h30m", 9000000},
        {"1w1d1h1m1s1ms", 694861001},
        {"30m2h", 9000000},
        {"1h1h", 7200000},
        {"007s", 7000},
        {"106751991167d", 9223372036828800000},
        {"9223372036854775807ms", INT64_MAX},
    };
    for (const Written& row : kDurations) {
        EXPECT_EQ(ParseDuration(row.text), Duration(row.milliseconds)) << row.text;
    }
}

TEST(Duration, OfANumberAloneIsInSeconds) {
    EXPECT_EQ(ParseDuration("90"), Duration(90000));
    EXPECT_EQ(ParseDuration("0"), Duration(0));
}

TEST(Duration, IsRefusedWithExamplesWhenItIsNone) {
    for (const char* const text : {"", "s", "soon", "-1s", "+1s", "1x", "3S", "1.5h", "2h30",
                                   "30 s", " 1s", "1s ", "2h,30m", "1 ", "99999999999999999999x"}) {
        EXPECT_EQ(ReadDuration(text), std::nullopt) << text;
        EXPECT_EQ(
            UsageMessage([&] { ParseDuration(text); }),
            "\"" + std::string(text) + "\" is no duration; write one such as 2h30m, 90s or 1w");
    }
}

TEST(Duration, ThatCannotBeCountedIsRefused) {
    for (const char* const text :
         {"106751991168d", "9223372036854775808ms", "18446744073709551615", "99999999999999999999s",
          "106751991167d1w", "9223372036854775807ms1ms", "1s99999999999999999999w"}) {
        EXPECT_EQ(UsageMessage([&] { ReadDuration(text); }),
                  "\"" + std::string(text) +
                      "\" is too long a duration; the longest that can be counted is "
                      "106751991167d");
    }
}

TEST(Duration, IsWrittenAsShortAsItCanBeRead) {
    EXPECT_EQ(DurationText(Duration(0)), "0s");
    EXPECT_EQ(DurationText(Duration(1)), "1ms");
    EXPECT_EQ(DurationText(Duration(90000)), "1m30s");
    EXPECT_EQ(DurationText(Duration(129600000)), "1d12h");
    EXPECT_EQ(DurationText(Duration(1209600000)), "14d");
    EXPECT_EQ(DurationText(Duration::max()), "106751991167d7h12m55s807ms");
}

}  // namespace
