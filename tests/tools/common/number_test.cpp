#include "common/number.h"

#include <gtest/gtest.h>

#include "tools/common/usage_message.h"

namespace {

using vexortools::ParseNumber;
using vexortools::ReadNumber;

TEST(Number, IsDigitsAlone) {
    EXPECT_EQ(ReadNumber("0", 254), 0U);
    EXPECT_EQ(ReadNumber("254", 254), 254U);
    EXPECT_EQ(ReadNumber("007", 254), 7U);
    EXPECT_EQ(ReadNumber("18446744073709551615", UINT64_MAX), UINT64_MAX);
    for (const char* const text :
         {"", "-1", "+1", " 1", "1 ", "1x", "0x10", "1.0", "one", "255", "18446744073709551616"}) {
        EXPECT_EQ(ReadNumber(text, 254), std::nullopt) << text;
    }
}

TEST(Number, IsRefusedWithItsBounds) {
    EXPECT_EQ(ParseNumber("100", 100, "charge in percent"), 100U);
    EXPECT_EQ(UsageMessage([] { ParseNumber("101", 100, "charge in percent"); }),
              "\"101\" is no charge in percent; write a number from 0 to 100");
}

}  // namespace
