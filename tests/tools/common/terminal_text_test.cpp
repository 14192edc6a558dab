#include "common/terminal_text.h"

#include <gtest/gtest.h>
#include <langinfo.h>
#include <locale.h>
#include <stdlib.h>

namespace {

using vexortools::DisplayWidth;
using vexortools::Printable;
using namespace std::string_literals;

TEST(TerminalText, ShowsWhatCanBeReadAsItIs) {
    for (const std::string text :
         {"", "DATABASE", "a b", "na\u00EFve", "\u65E5\u672C\u8A9E", "\U0001F600", "e\u0301",
          "\u05D0\u05D1", "\u0627\u0644\u200C\u0641", "\u00A0", "\uFFFD", "~!@#$%^&*()\"'\\"}) {
        EXPECT_EQ(Printable(text), text);
    }
}

TEST(TerminalText, HasNoControlCharacterThatATerminalActsUpon) {
    EXPECT_EQ(Printable("a\x1B[2Jb"), "a?[2Jb");
    EXPECT_EQ(Printable("a\nb\rc\td"), "a?b?c?d");
    EXPECT_EQ(Printable("\x7F\x01\x1F"), "???");
    EXPECT_EQ(Printable("a\0b"s), "a?b");
    // C1: U+0080 to U+009F; U+009B begins a sequence as ESC [ does.
    EXPECT_EQ(Printable("\u009B2J"), "?2J");
    for (char last = '\x80'; last <= '\x9F' && last < 0; ++last) {
        EXPECT_EQ(Printable("\xC2"s + last), "?");
    }
    EXPECT_EQ(Printable("\u2028\u2029"), "??");
}

TEST(TerminalText, CannotChangeTheOrderInWhichItIsRead) {
    for (const std::string text : {"\u202A", "\u202B", "\u202C", "\u202D", "\u202E", "\u2066",
                                   "\u2067", "\u2068", "\u2069", "\u200E", "\u200F", "\u061C"}) {
        EXPECT_EQ(Printable("ok" + text + "dexif"), "ok?dexif");
    }
}

TEST(TerminalText, HidesNothing) {
    for (const std::string text : {"\u200B", "\u2060", "\u2064", "\u206A", "\u206F", "\uFEFF",
                                   "\uFFF9", "\uFFFB", "\u180E", "\U000E0001", "\U000E007F"}) {
        EXPECT_EQ(Printable(text), "?");
    }
}

TEST(TerminalText, HasNoBytesThatAreNotUtf8) {
    EXPECT_EQ(Printable("a\xFFz"), "a?z");
    EXPECT_EQ(Printable("a\x9Bz"), "a?z");           // C1 as a byte
    EXPECT_EQ(Printable("cut \xE4\xB8"), "cut ?");   // in the middle of a character
    EXPECT_EQ(Printable("\xED\xA0\x80"), "???");     // a surrogate
    EXPECT_EQ(Printable("\xC0\x9B"), "??");          // ESC, longer than need be
    EXPECT_EQ(Printable("\uFFFF\U0010FFFF"), "??");  // no characters
}

TEST(TerminalText, IsAsWideAsItsCharacters) {
    struct Measured {
        const char* text;
        std::size_t columns;
    };
    constexpr Measured kTexts[] = {
        {"", 0},
        {"abc", 3},
        {"na\u00EFve", 5},
        {"nai\u0308ve", 5},         // the same with a combining mark
        {"\u65E5\u672C\u8A9E", 6},  // wide
        {"\uFF21", 2},              // full width
        {"\uFF71", 1},              // half width
        {"\uAC00", 2},
        {"\U0001F600", 2},
        {"\u200C", 0},
        {"?", 1},
    };
    for (const Measured& row : kTexts) EXPECT_EQ(DisplayWidth(row.text), row.columns) << row.text;
}

// Whatever the environment says: what is shown does not depend on LANG, and the locale of the
// process stays as it was.
TEST(TerminalText, IsTheSameInEveryLocale) {
    const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    ASSERT_NE(plain, nullptr);
    const locale_t former = uselocale(plain);
    EXPECT_EQ(Printable("\u65E5\u009B"), "\u65E5?");
    EXPECT_EQ(DisplayWidth("\u65E5"), 2U);
    EXPECT_EQ(uselocale(nullptr), plain);
    EXPECT_STREQ(nl_langinfo(CODESET), "ANSI_X3.4-1968");
    uselocale(former);
    freelocale(plain);
}

}  // namespace
