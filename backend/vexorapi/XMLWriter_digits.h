// Numbers as text, three digits a step, for the writers of whole lines.
//
// Every function writes at `at` and returns the end of the text. A step stores four bytes whatever
// the number's length, so up to kDigitSlack bytes behind the text are overwritten with garbage.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "hxraid.h"

inline constexpr std::size_t kDigitSlack = 4;

/// One table entry: up to three characters in the low bytes, their number in the high byte.
using DigitStep = std::uint32_t;

// Entries for 0 to 999, without leading zeros or padded to three digits.
consteval std::array<DigitStep, 1000> MakeDigitSteps(bool padded) {
    std::array<DigitStep, 1000> steps{};
    for (std::uint32_t number = 0; number < 1000; ++number) {
        const std::uint32_t digits[] = {'0' + number / 100, '0' + number / 10 % 10,
                                        '0' + number % 10};
        const std::uint32_t length = padded || number >= 100 ? 3 : number >= 10 ? 2 : 1;
        DigitStep step = length << 24;
        for (std::uint32_t i = 0; i < length; ++i) step |= digits[3 - length + i] << (8 * i);
        steps[number] = step;
    }
    return steps;
}
inline constexpr std::array<DigitStep, 1000> kLeadingDigits = MakeDigitSteps(false);
inline constexpr std::array<DigitStep, 1000> kInnerDigits = MakeDigitSteps(true);

inline char* PutStep(char* at, DigitStep step) {
    std::memcpy(at, &step, sizeof step);  // little-endian: the first character is the low byte
    return at + (step >> 24);
}

inline char* PutInner(char* at, std::uint32_t below_1000) {
    std::memcpy(at, &kInnerDigits[below_1000], sizeof(DigitStep));
    return at + 3;
}

inline char* PutDecimal(char* at, HX_U8 value) { return PutStep(at, kLeadingDigits[value]); }

// Always inlined: otherwise compilers decide by the rest of the source.
[[gnu::always_inline]] inline char* PutDecimal(char* at, HX_U16 value) {
    const HX_U32 number = value;  // 16 bits take compilers more steps to divide
    if (number < 1000) [[likely]]
        return PutStep(at, kLeadingDigits[number]);
    const HX_U32 thousands = number / 1000;
    at = PutStep(at, kLeadingDigits[thousands]);
    return PutInner(at, number - 1000 * thousands);
}

inline char* PutDecimal(char* at, HX_U32 value) {
    if (value < 1000) [[likely]]
        return PutStep(at, kLeadingDigits[value]);
    const HX_U32 thousands = value / 1000;
    if (thousands < 1000) {
        at = PutStep(at, kLeadingDigits[thousands]);
    } else {
        const HX_U32 millions = thousands / 1000;
        if (millions < 1000) {
            at = PutStep(at, kLeadingDigits[millions]);
        } else {
            at = PutStep(at, kLeadingDigits[millions / 1000]);
            at = PutInner(at, millions % 1000);
        }
        at = PutInner(at, thousands % 1000);
    }
    return PutInner(at, value % 1000);
}

[[gnu::always_inline]] inline char* PutDecimal(char* at, std::uint64_t value) {
    constexpr std::uint64_t kBillion = 1000000000;
    if (value <= UINT32_MAX) return PutDecimal(at, static_cast<HX_U32>(value));
    const std::uint64_t billions = value / kBillion;
    const auto rest = static_cast<HX_U32>(value % kBillion);
    if (billions <= UINT32_MAX) {
        at = PutDecimal(at, static_cast<HX_U32>(billions));
    } else {  // at most 18 billion billions
        at = PutDecimal(at, static_cast<HX_U32>(billions / kBillion));
        const auto middle = static_cast<HX_U32>(billions % kBillion);
        at = PutInner(at, middle / 1000000);
        at = PutInner(at, middle / 1000 % 1000);
        at = PutInner(at, middle % 1000);
    }
    at = PutInner(at, rest / 1000000);
    at = PutInner(at, rest / 1000 % 1000);
    return PutInner(at, rest % 1000);
}

inline char* PutDecimal(char* at, HX_U64 value) { return PutDecimal(at, value.value); }

/// Lower-case hexadecimal without leading zeros.
inline char* PutHex(char* at, HX_U32 value) {
    int shift = 28;
    while (shift > 0 && value >> shift == 0) shift -= 4;
    for (; shift >= 0; shift -= 4) *at++ = "0123456789abcdef"[value >> shift & 15];
    return at;
}
