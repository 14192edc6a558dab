// The number scanner: what it stores, what it returns, where it leaves the cursor, what it logs.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "XMLWriter_scan.h"
#include "debug_log.h"
#include "support/temporary_root.h"

namespace {

constexpr int kNothingLeft = -1;

// One call of the scanner on a text, and what it left behind.
struct Scan {
    int result;
    std::uint64_t value;  // the target's bytes; those that were not written are 0xEE
    std::size_t cursor;   // bytes passed
};

Scan ScanWith(const char* text, int width) {
    const char* cursor = text;
    Scan scan{};
    scan.value = 0xEEEEEEEEEEEEEEEE;
    scan.result = XMLWR_CharDataToDec(&cursor, &scan.value, width);
    scan.cursor = static_cast<std::size_t>(cursor - text);
    return scan;
}

// The numbers of a text: what the scanner returned, stored and left.
struct Found {
    int result;
    HX_U32 value;
    std::string rest;
    friend bool operator==(const Found&, const Found&) = default;
};
void PrintTo(const Found& found, std::ostream* out) {
    *out << found.result << ' ' << found.value << " \"" << found.rest << '"';
}

std::vector<Found> AllOf(const char* text) {
    const char* cursor = text;
    std::vector<Found> all;
    HX_U32 value = 99;
    for (int result = XMLWR_CharDataToDec32(&cursor, &value); result != kNothingLeft;
         result = XMLWR_CharDataToDec32(&cursor, &value)) {
        all.push_back({result, value, cursor});
    }
    EXPECT_STREQ("", cursor);
    EXPECT_EQ(all.empty() ? 99 : all.back().value, value) << "stored without a number";
    return all;
}

// ---- numbers and separators --------------------------------------------------------------------

TEST(NumberScanner, ReadsNumbersOneAfterTheOther) {
    EXPECT_EQ((std::vector<Found>{{1, 1, " 2 3"}, {2, 2, " 3"}, {1, 3, ""}}), AllOf("1 2 3"));
}

TEST(NumberScanner, PassesATextWithoutDigitsAndStoresNothing) {
    for (const std::string text : {"", "none", " "}) {
        const Scan scan = ScanWith(text.c_str(), 32);
        EXPECT_EQ(kNothingLeft, scan.result) << text;
        EXPECT_EQ(0xEEEEEEEEEEEEEEEE, scan.value) << text;
        EXPECT_EQ(text.size(), scan.cursor) << text;
    }
}

TEST(NumberScanner, CountsTheCharactersBeforeANumberAndItsDigits) {
    const Scan scan = ScanWith("ab 1234,", 32);
    EXPECT_EQ(7, scan.result);
    EXPECT_EQ(7u, scan.cursor);
}

TEST(NumberScanner, CountsOneLessWhenTheNumberEndsTheText) {
    const Scan scan = ScanWith("ab 1234", 32);
    EXPECT_EQ(6, scan.result);
    EXPECT_EQ(7u, scan.cursor);
}

TEST(NumberScanner, CountsZeroForOneDigitThatEndsTheText) {
    const Scan scan = ScanWith("7", 32);
    EXPECT_EQ(0, scan.result);
    EXPECT_EQ(1u, scan.cursor);
}

TEST(NumberScanner, SkipsSigns) {
    EXPECT_EQ((std::vector<Found>{{1, 5, ""}}), AllOf("-5"));
    EXPECT_EQ((std::vector<Found>{{2, 5, " "}}), AllOf("+5 "));
}

TEST(NumberScanner, ReadsHexadecimalDigitsAsTwoNumbers) {
    EXPECT_EQ((std::vector<Found>{{1, 0, "x1F"}, {2, 1, "F"}}), AllOf("0x1F"));
}

TEST(NumberScanner, ReadsLeadingZeros) {
    const Scan scan = ScanWith("00000000000000000000000000042;", 32);
    EXPECT_EQ(29, scan.result);
    EXPECT_EQ(42u, scan.value & 0xFFFFFFFF);
}

TEST(NumberScanner, TakesEverythingButDigitsForASeparator) {
    std::vector<HX_U32> values;
    for (const Found& each : AllOf("\n\t1,\r2./:3\x01")) values.push_back(each.value);
    EXPECT_EQ((std::vector<HX_U32>{1, 2, 3}), values);
}

TEST(NumberScanner, TakesNoByteFrom128OnForADigit) {
    for (int byte = 128; byte < 256; ++byte) {
        const std::string text =
            std::string(3, static_cast<char>(byte)) + "7" + static_cast<char>(byte);
        const Scan scan = ScanWith(text.c_str(), 32);
        EXPECT_EQ(4, scan.result) << byte;
        EXPECT_EQ(7u, scan.value & 0xFFFFFFFF) << byte;
        EXPECT_EQ(4u, scan.cursor) << byte;
    }
}

TEST(NumberScanner, TakesTheTenDigitsAndNoOtherByteBelow128) {
    for (int byte = 1; byte < 128; ++byte) {
        const char text[] = {static_cast<char>(byte), '\0'};
        const Scan scan = ScanWith(text, 32);
        EXPECT_EQ(byte >= 48 && byte <= 57 ? 0 : kNothingLeft, scan.result) << byte;
    }
}

// ---- widths ------------------------------------------------------------------------------------

TEST(NumberScanner, StoresTheLow8Bits) {
    const Scan scan = ScanWith("300", 8);
    EXPECT_EQ(2, scan.result);
    EXPECT_EQ(0xEEEEEEEEEEEEEE2C, scan.value);
}

TEST(NumberScanner, StoresTheLow16Bits) {
    const Scan scan = ScanWith("65537", 16);
    EXPECT_EQ(4, scan.result);
    EXPECT_EQ(0xEEEEEEEEEEEE0001, scan.value);
}

TEST(NumberScanner, Stores32Bits) {
    const Scan scan = ScanWith("4294967295", 32);
    EXPECT_EQ(9, scan.result);
    EXPECT_EQ(0xEEEEEEEEFFFFFFFF, scan.value);
}

TEST(NumberScanner, Stores64BitsWithTheLowHalfFirst) {
    const char* cursor = "4294967296";
    HX_U64 value{};
    EXPECT_EQ(9, XMLWR_CharDataToDec64(&cursor, &value));
    EXPECT_EQ(1u, value.half.high);
    EXPECT_EQ(0u, value.half.low);
    EXPECT_STREQ("", cursor);
}

TEST(NumberScanner, StoresTheLargest64BitNumber) {
    const Scan scan = ScanWith("18446744073709551615 ", 64);
    EXPECT_EQ(20, scan.result);
    EXPECT_EQ(0xFFFFFFFFFFFFFFFF, scan.value);
}

TEST(NumberScanner, Takes32BitsThatOverflowForAllOnes) {
    for (const char* text : {"4294967296", "4294967297", "42949672950", "18446744073709551615",
                             "18446744073709551616", "99999999999999999999999999999999999999"}) {
        EXPECT_EQ(0xEEEEEEEEFFFFFFFF, ScanWith(text, 32).value) << text;
        EXPECT_EQ(0xEEEEEEEEEEEEFFFF, ScanWith(text, 16).value) << text;
        EXPECT_EQ(0xEEEEEEEEEEEEEEFF, ScanWith(text, 8).value) << text;
        EXPECT_EQ(std::string(text).size() - 1, static_cast<std::size_t>(ScanWith(text, 32).result))
            << text;
    }
}

TEST(NumberScanner, Takes64BitsThatOverflowForAllOnes) {
    for (const char* text : {"18446744073709551616", "18446744073709551620",
                             "184467440737095516150", "99999999999999999999999999999999999999"}) {
        EXPECT_EQ(0xFFFFFFFFFFFFFFFF, ScanWith(text, 64).value) << text;
    }
}

TEST(NumberScanner, ReadsButStoresNothingWithAnOddWidthBelow32) {
    for (int width = -2; width < 32; ++width) {
        if (width == 8 || width == 16) continue;
        const Scan scan = ScanWith("ab 12 ", width);
        EXPECT_EQ(-1, scan.result) << width;
        EXPECT_EQ(0xEEEEEEEEEEEEEEEE, scan.value) << width;
        EXPECT_EQ(3u, scan.cursor) << width;
    }
}

TEST(NumberScanner, ReadsNothingWithAnOddWidthAbove32) {
    for (int width = 33; width < 131; ++width) {
        if (width == 64) continue;
        const Scan scan = ScanWith("ab 12 ", width);
        EXPECT_EQ(-1, scan.result) << width;
        EXPECT_EQ(0xEEEEEEEEEEEEEEEE, scan.value) << width;
        EXPECT_EQ(3u, scan.cursor) << width;
    }
}

TEST(NumberScanner, RefusesTheExtremeWidths) {
    EXPECT_EQ(-1, ScanWith("1 ", std::numeric_limits<int>::min()).result);
    EXPECT_EQ(-1, ScanWith("1 ", std::numeric_limits<int>::max()).result);
}

TEST(NumberScanner, StoresIntoATargetOfAnyAlignment) {
    alignas(8) unsigned char target[17] = {};
    const char* cursor = "1 2 3 4";
    EXPECT_EQ(1, XMLWR_CharDataToDec(&cursor, target + 1, 16));
    EXPECT_EQ(2, XMLWR_CharDataToDec(&cursor, target + 5, 32));
    EXPECT_EQ(2, XMLWR_CharDataToDec(&cursor, target + 9, 64));
    EXPECT_EQ(1, target[1]);
    EXPECT_EQ(2, target[5]);
    EXPECT_EQ(3, target[9]);
}

// ---- the debug log -----------------------------------------------------------------------------

class NumberScannerLog : public testing::Test {
protected:
    TemporaryRoot root;
    DebugLog log{root};
};

TEST_F(NumberScannerLog, TellsEachNumberAsItWasRead) {
    ScanWith("300", 8);
    ScanWith("65537", 16);
    ScanWith("4294967295", 32);
    EXPECT_EQ(
        "XMLWR_CharDataToDec=300\n"
        "XMLWR_CharDataToDec=65537\n"
        "XMLWR_CharDataToDec=4294967295\n",
        log.Text());
}

TEST_F(NumberScannerLog, TellsA64BitNumberWithAnotherU) {
    ScanWith("4294967296", 64);
    EXPECT_EQ("XMLWR_CharDataToDec=4294967296u\n", log.Text());
}

TEST_F(NumberScannerLog, TellsANumberThatOverflowsAsAllOnes) {
    ScanWith("99999999999999999999999", 32);
    ScanWith("99999999999999999999999", 64);
    EXPECT_EQ(
        "XMLWR_CharDataToDec=4294967295\n"
        "XMLWR_CharDataToDec=18446744073709551615u\n",
        log.Text());
}

TEST_F(NumberScannerLog, TellsNothingOfAnEmptyText) {
    ScanWith("", 32);
    ScanWith("", 64);
    EXPECT_EQ("", log.Text());
}

TEST_F(NumberScannerLog, TellsNothingOfATextWithoutDigits) {
    ScanWith("none", 32);
    ScanWith("none", 64);
    ScanWith("none", 7);
    EXPECT_EQ("", log.Text());
}

TEST_F(NumberScannerLog, TellsTheNumberThatAnOddWidthBelow32DoesNotStore) {
    ScanWith("ab 12 ", 7);
    ScanWith("ab 13 ", 0);
    ScanWith("ab 14 ", -64);
    EXPECT_EQ(
        "XMLWR_CharDataToDec=12\n"
        "XMLWR_CharDataToDec=13\n"
        "XMLWR_CharDataToDec=14\n",
        log.Text());
}

TEST_F(NumberScannerLog, TellsNothingWithAnOddWidthAbove32) {
    ScanWith("ab 12 ", 33);
    ScanWith("ab 12 ", 63);
    ScanWith("ab 12 ", 65);
    EXPECT_EQ("", log.Text());
}

}  // namespace
