#include "common/size.h"

#include <gtest/gtest.h>

#include "tools/common/usage_message.h"

namespace {

using vexortools::ParseSize;
using vexortools::ParseSizeOrShare;
using vexortools::SizeOrShare;

struct WrittenSize {
    const char* text;
    std::uint64_t bytes;
};
constexpr WrittenSize kSizes[] = {
    {"0", 0},
    {"1000000", 1000000},
    {"512B", 512},
    {"1kB", 1000},
    {"20MB", 20000000},
    {"20GB", 20000000000},
    {"2TB", 2000000000000},
    {"64KiB", 65536},
    {"512MiB", 536870912},
    {"10GiB", 10737418240},
    {"2TiB", 2199023255552},
    {"4096s", 2097152},
    {"10G", 10737418240},
    {"1.5t", 1649267441664},
    {"64k", 65536},
    {"512M", 536870912},
    {"10gib", 10737418240},
    {"20gb", 20000000000},
    {"1KB", 1000},
    {"8S", 4096},
    {"1.5TiB", 1649267441664},
    {"0.5KiB", 512},
    {".5KiB", 512},
    {"10G", 10737418240},
    {"10gib", 10737418240},
    {"10gb", 10000000000},
    {"5.GiB", 5368709120},
    {"0.1GiB", 107374182},
    {"1.9999999999GiB", 2147483648},
    // Past what a floating-point number of 64 bits counts one by one.
    {"9007199254740993", 9007199254740993},
    {"9223372036854775807", 9223372036854775807},
    {"8388607TiB", 9223370937343148032},
};

TEST(Size, IsReadInBytes) {
    for (const WrittenSize& row : kSizes) EXPECT_EQ(ParseSize(row.text), row.bytes) << row.text;
}

TEST(Size, IsRefusedWithExamplesWhenItIsNone) {
    for (const char* const text :
         {"", ".", "GiB", "much", "-1GiB", "+1GiB", "10 GiB", "10Gi", "10P", "1,5TiB", "1e3",
          "0x10", "inf", "nan", "1.2.3GiB", "50%", "max", "10GiB ", "99999999999999999999x"}) {
        EXPECT_EQ(UsageMessage([&] { ParseSize(text); }),
                  "\"" + std::string(text) +
                      "\" is no size; write one such as 10GiB, 20GB, 1.5TiB, 4096s (sectors) or "
                      "1000000 (bytes)");
    }
}

TEST(Size, OfEightExbibytesOrMoreIsRefused) {
    for (const char* const text :
         {"8388608TiB", "9223372036854775808", "8388607.9999999999999TiB", "18446744073709551616",
          "99999999999999999999GiB", "18014398509481984s"}) {
        EXPECT_EQ(
            UsageMessage([&] { ParseSize(text); }),
            "\"" + std::string(text) + "\" is too large a size; write one of less than 8388608TiB");
    }
}

TEST(SizeOrShare, IsASizeOrAPartOfTheMost) {
    const SizeOrShare size = ParseSizeOrShare("10GiB");
    EXPECT_EQ(size.bytes, 10737418240);
    const SizeOrShare half = ParseSizeOrShare("50%");
    EXPECT_EQ(half.bytes, std::nullopt);
    EXPECT_EQ(half.percent, 50U);
    EXPECT_EQ(ParseSizeOrShare("1%").percent, 1U);
    EXPECT_EQ(ParseSizeOrShare("100%").percent, 100U);
    const SizeOrShare most = ParseSizeOrShare("max");
    EXPECT_EQ(most.bytes, std::nullopt);
    EXPECT_EQ(most.percent, 100U);
    EXPECT_EQ(ParseSizeOrShare("MAX").percent, 100U);
    EXPECT_EQ(ParseSizeOrShare("1s").bytes, 512);
}

TEST(SizeOrShare, OfLessThanASectorIsRefused) {
    EXPECT_EQ(
        UsageMessage([] { ParseSizeOrShare("511"); }),
        "\"511\" is less than a sector, which has 512 bytes; a number alone counts bytes: write "
        "511GiB, 511GB or 511s for sectors");
    EXPECT_EQ(UsageMessage([] { ParseSizeOrShare("0.1kB"); }),
              "\"0.1kB\" is less than a sector, which has 512 bytes");
    for (const char* const text : {"0", "0GiB", "0s", "0.0"}) {
        EXPECT_EQ(
            UsageMessage([&] { ParseSizeOrShare(text); }),
            "\"" + std::string(text) + "\" is nothing; the least is 1s, a sector of 512 bytes");
    }
}

TEST(SizeOrShare, OutsideOneToAHundredPercentIsRefused) {
    for (const char* const text : {"0%", "101%", "%", "-1%", "5.5%", "50%%", "99999999999%"}) {
        EXPECT_EQ(UsageMessage([&] { ParseSizeOrShare(text); }),
                  "a share is from 1% to 100%, not \"" + std::string(text) + "\"");
    }
}

TEST(SizeOrShare, IsRefusedWithExamplesWhenItIsNone) {
    for (const char* const text : {"", "much", "MAXI", "maximum", "10Gibi"}) {
        EXPECT_EQ(UsageMessage([&] { ParseSizeOrShare(text); }),
                  "\"" + std::string(text) +
                      "\" is no size; write one such as 10GiB, 20GB, 50% of the most, or max");
    }
}

}  // namespace
