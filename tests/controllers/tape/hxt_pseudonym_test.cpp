#include "tape/hxt_pseudonym.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>

namespace hxtape {
namespace {

constexpr PseudonymKey kKey{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

std::string Of(Identity identity, std::string value, const PseudonymKey& key = kKey) {
    Pseudonymise(key, identity, value);
    return value;
}

// The published test vectors of SipHash-2-4.
TEST(SipHash, IsTheOneThatWasPublished) {
    std::string bytes;
    EXPECT_EQ(0x726fdb47dd0e0e31U, SipHash(kKey, bytes));
    for (char i = 0; i < 15; ++i) bytes += i;
    EXPECT_EQ(0xa129ca6149be45e5U, SipHash(kKey, bytes));
}

TEST(APseudonym, IsTheSameForTheSameValueAndAnotherWithAnotherKey) {
    EXPECT_EQ(Of(Identity::kSerial, "QD-W17VSWPDW"), Of(Identity::kSerial, "QD-W17VSWPDW"));
    PseudonymKey other = kKey;
    other[0] = 1;
    EXPECT_NE(Of(Identity::kSerial, "QD-W17VSWPDW"), Of(Identity::kSerial, "QD-W17VSWPDW", other));
}

TEST(APseudonym, KeepsWidthAndKindOfEveryCharacter) {
    const std::string value = std::string("Qd-17 x_9") + '\0' + "rest";
    const std::string found = Of(Identity::kName, value);
    ASSERT_EQ(value.size(), found.size());
    EXPECT_NE(value.substr(0, 9), found.substr(0, 9));
    EXPECT_TRUE(std::isupper(found[0]) != 0);
    EXPECT_TRUE(std::islower(found[1]) != 0);
    EXPECT_EQ('-', found[2]);
    EXPECT_TRUE(std::isdigit(found[3]) != 0 && std::isdigit(found[4]) != 0);
    EXPECT_EQ(' ', found[5]);
    EXPECT_EQ('_', found[7]);
    EXPECT_EQ(std::string(5, '\0'), found.substr(9)) << "nothing behind the end is kept";
}

TEST(APseudonym, IsNeverThatOfAnotherValue) {
    std::set<std::string> one, three, addresses;
    for (char c = 'a'; c <= 'z'; ++c) one.insert(Of(Identity::kName, std::string(1, c)));
    EXPECT_EQ(26U, one.size());
    for (int i = 0; i < 1000; ++i) {
        char text[4];
        std::snprintf(text, sizeof text, "%03d", i);
        three.insert(Of(Identity::kName, text));
    }
    EXPECT_EQ(1000U, three.size());
    for (int i = 1; i < 256; ++i) {
        std::string address("\x50\0\0\0\0\0\0\0", 8);
        address[7] = static_cast<char>(i);
        addresses.insert(Of(Identity::kAddress, address));
    }
    EXPECT_EQ(255U, addresses.size());
}

TEST(APseudonym, KeepsASerialNumberThatIsNone) {
    EXPECT_EQ('0', Of(Identity::kSerial, "0AB17")[0]);
    for (char c = '1'; c <= '9'; ++c) {
        EXPECT_NE('0', Of(Identity::kSerial, std::string(1, c) + "AB17")[0]);
    }
    EXPECT_EQ("", Of(Identity::kSerial, ""));
}

TEST(APseudonym, OfAnAddressKeepsItsFormatAndIsTheSameInDigits) {
    const std::string address("\x50\x01\x43\x80\x12\x34\x56\x78", 8);
    const std::string found = Of(Identity::kAddress, address);
    EXPECT_NE(address, found);
    EXPECT_EQ(5, static_cast<unsigned char>(found[0]) >> 4);
    std::string digits;
    for (const char c : found) {
        char two[3];
        std::snprintf(two, sizeof two, "%02X",
                      static_cast<unsigned>(static_cast<unsigned char>(c)));
        digits += two;
    }
    // Without a letter nothing tells capitals from small letters.
    std::string text = Of(Identity::kHexAddress, std::string("5001438012345678") + '\0');
    std::ranges::transform(text, text.begin(),
                           [](char c) { return static_cast<char>(std::toupper(c)); });
    EXPECT_EQ(digits + '\0', text);
    EXPECT_EQ(std::string(8, '\0'), Of(Identity::kAddress, std::string(8, '\0')));
}

TEST(APseudonym, OfSenseDataIsThatOfTheSerialNumberInThem) {
    const std::string serial =
        Of(Identity::kSerial, std::string("KAX0117") + std::string(23, '\0'));
    EXPECT_EQ(serial, Of(Identity::kSenseData, std::string("KAX0117") + std::string(23, '\0')));
    const std::string sense("\x70\0\x03\0\0\0\0\x0a\0\0\0\0\x11\0", 14);
    EXPECT_EQ(sense, Of(Identity::kSenseData, sense));
}

TEST(APseudonym, OfAnImageIsNothing) {
    EXPECT_EQ(std::string(4, '\0'), Of(Identity::kImage, "abcd"));
}

TEST(AKey, Has32Digits) {
    PseudonymKey key{};
    EXPECT_TRUE(ParseKey("000102030405060708090a0b0c0d0e0f", key));
    EXPECT_EQ(kKey, key);
    EXPECT_FALSE(ParseKey("000102030405060708090a0b0c0d0e0", key));
    EXPECT_FALSE(ParseKey("000102030405060708090a0b0c0d0e0G", key));
}

}  // namespace
}  // namespace hxtape
