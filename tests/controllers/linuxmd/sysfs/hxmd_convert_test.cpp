// The forms of attributes, and what is none of them.
#include "sysfs/hxmd_convert.h"

#include <gtest/gtest.h>

#include <string>

using namespace hxmd;

TEST(AnAttribute, IsANumberOnlyWhenNothingElseStandsThere) {
    EXPECT_EQ(ToNumber("2097152\n"), 2097152U);
    EXPECT_EQ(ToNumber(" 0 \n"), 0U);
    EXPECT_EQ(ToNumber("18446744073709551615"), UINT64_MAX);
    for (const char* text : {"", "\n", "none", "-1", "1x", "0x10", "18446744073709551616", "1 2"}) {
        EXPECT_EQ(ToNumber(text), std::nullopt) << text;
    }
}

TEST(AnAttribute, IsAnAddressBehind0x) {
    EXPECT_EQ(ToAddress("0x5000c500a1b2c3d4\n"), 0x5000c500a1b2c3d4U);
    EXPECT_EQ(ToAddress("5000c500a1b2c3d4"), std::nullopt);
    EXPECT_EQ(ToAddress("0x"), std::nullopt);
}

TEST(AnAttribute, IsATextUnlessItIsEmpty) {
    EXPECT_EQ(ToText("write back\n"), "write back");
    EXPECT_EQ(ToText(" \n"), std::nullopt);
}

TEST(ASerialPage, EndsWhereItsHeaderSays) {
    EXPECT_EQ(ToSerialPage(std::string("\0\x80\0\x04TW01rest", 12)), "TW01");
    EXPECT_EQ(ToSerialPage(std::string("\0\x80\0\x08  TW01", 10)), "TW01");
    EXPECT_EQ(ToSerialPage(std::string("\0\x80\xFF\xFFTW", 6)), "TW");  // says more than there is
    EXPECT_EQ(ToSerialPage(std::string("\0\x80\0\0", 4)), std::nullopt);
    EXPECT_EQ(ToSerialPage(std::string("\0\x83\0\x02TW", 6)), std::nullopt);
    EXPECT_EQ(ToSerialPage(""), std::nullopt);
}

TEST(AUuid, IsTheSameInEachForm) {
    EXPECT_EQ(ToUuid("cbf9fd12-1c59-8599-9101-145232746692\n"), "cbf9fd121c5985999101145232746692");
    EXPECT_EQ(ToUuid("CBF9FD12:1c598599:91011452:32746692"), "cbf9fd121c5985999101145232746692");
    EXPECT_EQ(ToUuid("cbf9fd12"), std::nullopt);
    EXPECT_EQ(ToUuid("gbf9fd12-1c59-8599-9101-145232746692"), std::nullopt);
}

TEST(AnArrayState, OfALaterKernelIsUnknownAndNotMissing) {
    EXPECT_EQ(ToArrayState("active-idle\n"), ArrayState::kRunning);
    EXPECT_EQ(ToArrayState("read-auto\n"), ArrayState::kReadAuto);
    EXPECT_EQ(ToArrayState("inactive\n"), ArrayState::kInactive);
    EXPECT_EQ(ToArrayState("broken\n"), ArrayState::kBroken);
    EXPECT_EQ(ToArrayState("dozing\n"), ArrayState::kUnknown);
    EXPECT_EQ(ToArrayState("\n"), std::nullopt);
}

TEST(Progress, HasThreeForms) {
    EXPECT_EQ(ToCompleted("1024 / 2093056\n")->done, 1024U);
    EXPECT_EQ(ToCompleted("1024 / 2093056\n")->total, 2093056U);
    EXPECT_TRUE(ToCompleted("delayed\n")->delayed);
    EXPECT_EQ(ToCompleted("none\n")->total, 0U);
    EXPECT_FALSE(ToCompleted("1024 /").has_value());
    EXPECT_FALSE(ToCompleted("").has_value());
}

TEST(ADiskCount, HasTheOldOneInBracketsWhileTheArrayGrows) {
    EXPECT_EQ(ToDiskCount("4\n")->now, 4U);
    EXPECT_EQ(ToDiskCount("4\n")->before, 0U);
    EXPECT_EQ(ToDiskCount("4 (3)\n")->now, 4U);
    EXPECT_EQ(ToDiskCount("4 (3)\n")->before, 3U);
    EXPECT_FALSE(ToDiskCount("\n").has_value());  // of an incomplete array
    EXPECT_FALSE(ToDiskCount("4 (3").has_value());
}

TEST(AMemberState, IsAListOfWords) {
    EXPECT_TRUE(ToMemberState("in_sync\n")->in_sync);
    const auto faulty = ToMemberState("faulty,blocked\n");
    EXPECT_TRUE(faulty->faulty);
    EXPECT_FALSE(faulty->in_sync);
    const auto replacement = ToMemberState("spare,replacement\n");
    EXPECT_TRUE(replacement->spare && replacement->replacement);
    EXPECT_TRUE(ToMemberState("in_sync,write_mostly,want_replacement")->want_replacement);
    EXPECT_FALSE(ToMemberState("\n").has_value());
}

TEST(ALevel, OfNoVirtualDiskIsNone) {
    EXPECT_EQ(ToLevel("raid10\n"), 0x10U);
    EXPECT_EQ(ToLevel("raid4\n"), 0x04U);
    for (const char* text : {"linear", "multipath", "faulty", "container", "\n"}) {
        EXPECT_EQ(ToLevel(text), std::nullopt) << text;
    }
}

TEST(ABadBlockLog, HasARowForEachLine) {
    EXPECT_EQ(ToRowCount(""), 0U);
    EXPECT_EQ(ToRowCount("2048 8\n"), 1U);
    EXPECT_EQ(ToRowCount("2048 8\n4096 1\n"), 2U);
}
