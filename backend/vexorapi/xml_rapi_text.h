// Texts in fixed-width fields: of requests, and of the controller's records in results.
//
// A cleaner's Put(at, field) writes the text of an n-character field at `at` and returns its end;
// n + 1 bytes from `at` on may be overwritten.
#pragma once

#include <bit>
#include <cstddef>
#include <cstring>

#include "hxraid.h"

/// The end of the text in the `n` bytes at `at`: its NUL, or at + n when there is none. A word a
/// step, for fields of a few dozen bytes.
template <std::size_t n>
[[gnu::always_inline]] inline char* TextEnd(char* at) {
    using Word = std::size_t;
    constexpr Word kOnes = static_cast<Word>(-1) / 255;  // 0x0101...
    std::size_t i = 0;
    for (; i + sizeof(Word) <= n; i += sizeof(Word)) {
        Word word;
        std::memcpy(&word, at + i, sizeof word);
        const Word nul = (word - kOnes) & ~word & (kOnes << 7);
        if (nul != 0) return at + i + static_cast<std::size_t>(std::countr_zero(nul)) / 8;
    }
    while (i < n && at[i] != '\0') ++i;
    return at + i;
}

/// Copies `length` characters into a field, cut so that a NUL follows them.
template <std::size_t n>
void CutText(char (&field)[n], const char* text, std::size_t length) {
    const std::size_t kept = length < n ? length : n - 1;
    std::memcpy(field, text, kept);
    field[kept] = '\0';
}

/// The text in a request's field of `size` bytes.
///
/// Null when there is none, or when the field has no NUL: then the text was too long, and a name,
/// password or path must not be cut.
inline const char* WholeText(const HX_U8* field, std::size_t size) {
    if (field == nullptr || std::memchr(field, '\0', size) == nullptr) return nullptr;
    return reinterpret_cast<const char*>(field);
}

/// The text as it stands.
struct PlainText {
    template <class C, std::size_t n>
    static char* Put(char* at, const C (&field)[n]) {
        // Without a NUL the whole field is text.
        std::memcpy(at, field, n);
        return TextEnd<n>(at);
    }
};

/// The end of the text without its trailing blanks, which are all that trim removes.
[[gnu::always_inline]] inline char* WithoutTrailingBlanks(const char* at, char* end) {
    while (end != at && end[-1] == ' ') --end;
    return end;
}

/// A disk's text: trailing blanks removed, leading ones kept.
struct TrimmedText {
    template <class C, std::size_t n>
    static char* Put(char* at, const C (&field)[n]) {
        return WithoutTrailingBlanks(at, PlainText::Put(at, field));
    }
};

/// The end of the text without its first word and the blank behind that, when it has a blank.
[[gnu::always_inline]] inline char* WithoutFirstWord(char* at, char* end) {
    for (char* blank = at; blank != end; ++blank) {
        if (*blank != ' ') continue;
        const auto rest = static_cast<std::size_t>(end - blank - 1);
        std::memmove(at, blank + 1, rest);
        return at + rest;
    }
    return end;
}

/// A disk's model: trimmed, then without its first word, the maker's name; a text of one word
/// stays.
struct ModelText {
    template <class C, std::size_t n>
    static char* Put(char* at, const C (&field)[n]) {
        return WithoutFirstWord(at, TrimmedText::Put(at, field));
    }
};

/// Copies at most `len` characters of `_field` to `_tmp`, which holds len + 1; a NUL ends them
/// early. Zeroes fill the rest, so that position `len` is always a NUL.
inline void get_char_array(char* _tmp, HX_U8* _field, int len) {
    const auto width = static_cast<std::size_t>(len);
    const std::size_t length = strnlen(reinterpret_cast<const char*>(_field), width);
    std::memcpy(_tmp, _field, length);
    std::memset(_tmp + length, 0, width + 1 - length);
}

/// Removes the trailing blanks of a NUL-terminated text. Leading ones stay: readers of disk texts
/// rely on them.
inline void trim(HX_U8* str) {
    char* const text = reinterpret_cast<char*>(str);
    *WithoutTrailingBlanks(text, text + std::strlen(text)) = '\0';
}

/// Removes everything up to and including the first blank of a NUL-terminated text, and nothing
/// when it has none.
inline void trimblank(HX_U8* str) {
    char* const text = reinterpret_cast<char*>(str);
    *WithoutFirstWord(text, text + std::strlen(text)) = '\0';
}

/// Copies exactly `len` characters of `_field` to `_tmp`, which holds len + 1, and terminates them.
/// A field that begins with "0" gives the empty text.
inline void digit_to_str(char* _tmp, const HX_U8* _field, int len) {
    const std::size_t width = _field[0] == '0' ? 0 : static_cast<std::size_t>(len);
    std::memcpy(_tmp, _field, width);
    _tmp[width] = '\0';
}

/// An adapter's serial number: none when it begins with "0".
struct DigitText {
    template <std::size_t n>
    static char* Put(char* at, const char (&field)[n]) {
        digit_to_str(at, reinterpret_cast<const HX_U8*>(field), static_cast<int>(n));
        return TextEnd<n>(at);
    }
};
