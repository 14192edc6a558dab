// The scanner that reads numbers out of character data.
#pragma once

#include <cstdint>
#include <limits>

#include "hxraid.h"
#include "vx_dbg.h"

/// Reads the next decimal number at the cursor `*str` and moves the cursor behind it.
///
/// Everything but digits separates numbers, even signs. `DataWidth` is 8, 16, 32 or 64 bits; a
/// number that exceeds 32 bits (64 for width 64) becomes all ones, and then the low bits of the
/// width are stored. Returns -1 when no number is left (the target is then unchanged), else the
/// number of characters passed, less one when the number ends the text. Any other width returns -1.
int XMLWR_CharDataToDec(const char** str, void* tmp, int DataWidth);

/// XMLWR_CharDataToDec with width 32.
int XMLWR_CharDataToDec32(const char** str, HX_U32* tmp32);

/// XMLWR_CharDataToDec with width 64.
int XMLWR_CharDataToDec64(const char** str, HX_U64* tmp);

// The steps of a scan, inlined where parameters are stored: nearly every parameter is a number of a
// few digits, for which a call costs more than reading the digits.

inline bool IsDecChar(char a) { return a >= '0' && a <= '9'; }

/// Moves the cursor to the first digit. Returns false, with the cursor at the text's end, when
/// there is none.
[[gnu::always_inline]] inline bool FindDigit(const char*& cursor) {
    for (; !IsDecChar(*cursor); ++cursor) {
        if (*cursor == '\0') return false;
    }
    return true;
}

/// Moves the cursor behind the digits there and returns their number; all ones when it does not
/// fit, on every word size alike.
template <class Number>
[[gnu::always_inline]] inline Number ReadDigits(const char*& cursor) {
    // This many digits always fit, and nearly no number has more.
    constexpr int kSafe = std::numeric_limits<Number>::digits10;
    const char* const first = cursor;
    Number value = 0;
    for (; IsDecChar(*cursor); ++cursor) {
        const auto digit = static_cast<Number>(*cursor - '0');
        if (cursor - first < kSafe) [[likely]] {
            value = 10 * value + digit;
        } else if (__builtin_mul_overflow(value, Number{10}, &value) ||
                   __builtin_add_overflow(value, digit, &value)) {
            while (IsDecChar(*cursor)) ++cursor;
            return static_cast<Number>(-1);
        }
    }
    return value;
}

inline void TraceNumber(HX_U32 value) { VX_DBG_TRACE("XMLWR_CharDataToDec=%u\n", value); }
// The doubled "u" is part of the message.
inline void TraceNumber(std::uint64_t value) {
    VX_DBG_TRACE("XMLWR_CharDataToDec=%lluu\n", static_cast<unsigned long long>(value));
}

/// Reads the next number and moves the cursor behind it. Returns false when there is none.
template <class Number>
[[gnu::always_inline]] inline bool ScanNumber(const char*& cursor, Number& number) {
    if (!FindDigit(cursor)) return false;
    number = ReadDigits<Number>(cursor);
    TraceNumber(number);
    return true;
}
