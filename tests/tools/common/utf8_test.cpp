#include "common/utf8.h"

#include <gtest/gtest.h>

namespace {

using vexortools::TakeUtf8;
using vexortools::Utf8Character;
using vexortools::ValidUtf8;

TEST(Utf8, CharactersOfEveryLengthAreTakenOneByOne) {
    std::string_view text = "A\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80";
    for (const char32_t code : {U'A', U'\u00E9', U'\u4E2D', U'\U0001F600'}) {
        const Utf8Character character = TakeUtf8(text);
        EXPECT_TRUE(character.is_valid);
        EXPECT_EQ(character.code, code);
    }
    EXPECT_TRUE(text.empty());
}

TEST(Utf8, TheFirstAndTheLastCodeOfEachLengthAreCharacters) {
    struct Edge {
        std::string_view bytes;
        char32_t code;
    };
    using namespace std::string_view_literals;
    const Edge kEdges[] = {
        {"\0"sv, 0},
        {"\x7F", 0x7F},
        {"\xC2\x80", 0x80},
        {"\xDF\xBF", 0x7FF},
        {"\xE0\xA0\x80", 0x800},
        {"\xED\x9F\xBF", 0xD7FF},
        {"\xEE\x80\x80", 0xE000},
        {"\xEF\xBF\xBF", 0xFFFF},
        {"\xF0\x90\x80\x80", 0x10000},
        {"\xF4\x8F\xBF\xBF", 0x10FFFF},
    };
    for (const Edge& edge : kEdges) {
        std::string_view text = edge.bytes;
        const Utf8Character character = TakeUtf8(text);
        EXPECT_TRUE(character.is_valid);
        EXPECT_EQ(character.code, edge.code);
        EXPECT_EQ(ValidUtf8(edge.bytes), edge.bytes);
    }
}

// One replacement for each run that cannot be a part of a character: what the Unicode standard
// recommends, and what other programs do.
TEST(Utf8, WhatIsNoCharacterIsReplaced) {
    struct Broken {
        std::string_view bytes;
        std::string_view valid;
    };
    constexpr Broken kBroken[] = {
        {"", ""},
        {"\xFF", "\uFFFD"},
        {"a\x80z", "a\uFFFDz"},
        {"\xC3", "\uFFFD"},
        {"\xC3z", "\uFFFDz"},
        {"\xE4\xB8", "\uFFFD"},
        {"\xE4\xB8z", "\uFFFDz"},
        {"\xF0\x9F\x98", "\uFFFD"},
        {"\xF0\x9F\x98\xC3\xA9", "\uFFFD\u00E9"},
        {"\xC0\xAF", "\uFFFD\uFFFD"},                      // longer than need be
        {"\xE0\x9F\xBF", "\uFFFD\uFFFD\uFFFD"},            // the same
        {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},            // a surrogate
        {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},  // past the last code
        {"\xF5", "\uFFFD"},
        {"\xC3\xA9\xFF\xC3\xA9", "\u00E9\uFFFD\u00E9"},
    };
    for (const Broken& row : kBroken) EXPECT_EQ(ValidUtf8(row.bytes), row.valid);
}

}  // namespace
