// The named text functions of fixed-width fields.
#include "xml_rapi_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using testing::ElementsAre;

// A text as the functions take it: bytes that they may change.
class Text {
public:
    explicit Text(const std::string& text) : bytes_(text.begin(), text.end()) {
        bytes_.push_back('\0');
    }
    HX_U8* Bytes() { return reinterpret_cast<HX_U8*>(bytes_.data()); }
    std::string After(void (*change)(HX_U8*)) {
        change(Bytes());
        return bytes_.data();
    }

private:
    std::vector<char> bytes_;
};

TEST(GetCharArray, CopiesAFieldWithoutATerminatorWhole) {
    HX_U8 field[4] = {'A', 'B', 'C', 'D'};
    char text[6] = {'x', 'x', 'x', 'x', 'x', 'x'};
    get_char_array(text, field, 4);
    EXPECT_THAT(text, ElementsAre('A', 'B', 'C', 'D', '\0', 'x'));
}

TEST(GetCharArray, StopsAtATerminatorAndClearsTheRest) {
    HX_U8 field[4] = {'A', '\0', 'C', 'D'};
    char text[6] = {'x', 'x', 'x', 'x', 'x', 'x'};
    get_char_array(text, field, 4);
    EXPECT_THAT(text, ElementsAre('A', '\0', '\0', '\0', '\0', 'x'));
}

TEST(GetCharArray, TakesNoMoreThanItsLength) {
    HX_U8 field[4] = {'A', 'B', 'C', 'D'};
    char text[3] = {'x', 'x', 'x'};
    get_char_array(text, field, 1);
    EXPECT_THAT(text, ElementsAre('A', '\0', 'x'));
}

TEST(GetCharArray, OfNoLengthIsEmpty) {
    HX_U8 field[1] = {'A'};
    char text[2] = {'x', 'x'};
    get_char_array(text, field, 0);
    EXPECT_THAT(text, ElementsAre('\0', 'x'));
}

TEST(DigitToStr, OfAFieldThatBeginsWithZeroIsEmpty) {
    const HX_U8 field[4] = {'0', '1', '2', '3'};
    char text[5] = {'x', 'x', 'x', 'x', 'x'};
    digit_to_str(text, field, 4);
    EXPECT_STREQ(text, "");
}

TEST(DigitToStr, CopiesExactlyItsLengthAndTerminates) {
    const HX_U8 field[4] = {'1', '0', '2', '3'};
    char text[5] = {'x', 'x', 'x', 'x', 'x'};
    digit_to_str(text, field, 3);
    EXPECT_THAT(text, ElementsAre('1', '0', '2', '\0', 'x'));
}

TEST(Trim, KeepsLeadingBlanksAndDropsTrailingOnes) {
    EXPECT_EQ(Text("  AB  ").After(trim), "  AB");
}

TEST(Trim, KeepsBlanksWithin) { EXPECT_EQ(Text("A  B ").After(trim), "A  B"); }

TEST(Trim, KeepsLeadingZeros) { EXPECT_EQ(Text("00AB").After(trim), "00AB"); }

TEST(Trim, RemovesBlanksOnly) { EXPECT_EQ(Text("AB\t\n").After(trim), "AB\t\n"); }

TEST(Trim, LeavesAnEmptyTextEmpty) { EXPECT_EQ(Text("").After(trim), ""); }

TEST(Trim, OfBlanksAloneIsEmpty) { EXPECT_EQ(Text("   ").After(trim), ""); }

TEST(Trimblank, RemovesEverythingUpToTheFirstBlank) {
    EXPECT_EQ(Text("size 512").After(trimblank), "512");
}

TEST(Trimblank, LeavesATextWithoutABlank) { EXPECT_EQ(Text("512").After(trimblank), "512"); }

TEST(Trimblank, KeepsTheBlanksBehindTheFirst) {
    EXPECT_EQ(Text("a b c").After(trimblank), "b c");
    EXPECT_EQ(Text("  AB").After(trimblank), " AB");
}

TEST(Trimblank, OfATextWhoseOnlyBlankIsItsLastCharacterIsEmpty) {
    EXPECT_EQ(Text("size ").After(trimblank), "");
}

TEST(Trimblank, LeavesAnEmptyTextEmpty) { EXPECT_EQ(Text("").After(trimblank), ""); }

}  // namespace
