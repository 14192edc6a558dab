// The number scanner: decimal numbers out of character data, one a call.
#include "XMLWriter_scan.h"

#include <cstdint>
#include <cstring>

#include "vx_dbg.h"

namespace {

bool IsDecChar(char a) { return a >= '0' && a <= '9'; }

// Moves the cursor to the first digit. Returns the characters examined, less one: the text's end
// counts as one of them only when a digit stops the search.
int StrFindDecChar(const char*& str) {
    const char* const from = str;
    while (*str != '\0' && !IsDecChar(*str)) ++str;
    return static_cast<int>(str - from) - (*str == '\0' ? 1 : 0);
}

// Moves the cursor behind the digits; counts like StrFindDecChar.
int StrFindNonDecChar(const char*& str) {
    const char* const from = str;
    while (IsDecChar(*str)) ++str;
    return static_cast<int>(str - from) - (*str == '\0' ? 1 : 0);
}

// The digits at `text` as a number; all ones when they do not fit, on every word size alike.
template <class Number>
Number ReadDigits(const char* text) {
    Number value = 0;
    for (; IsDecChar(*text); ++text) {
        if (__builtin_mul_overflow(value, Number{10}, &value) ||
            __builtin_add_overflow(value, static_cast<Number>(*text - '0'), &value)) {
            return static_cast<Number>(-1);
        }
    }
    return value;
}

}  // namespace

int XMLWR_CharDataToDec(const char** str, void* tmp, int DataWidth) {
    const int skipped = StrFindDecChar(*str);
    if (skipped == -1) return -1;
    HX_U32 value32 = 0;
    std::uint64_t value64 = 0;
    if (DataWidth <= 32) {
        if (!IsDecChar(**str)) return -1;
        value32 = ReadDigits<HX_U32>(*str);
        VX_DBG_TRACE("XMLWR_CharDataToDec=%u\n", value32);
    } else if (DataWidth == 64) {
        if (!IsDecChar(**str)) return -1;
        value64 = ReadDigits<std::uint64_t>(*str);
        // The doubled "u" is part of the message.
        VX_DBG_TRACE("XMLWR_CharDataToDec=%lluu\n", static_cast<unsigned long long>(value64));
    }
    const auto value8 = static_cast<HX_U8>(value32);
    const auto value16 = static_cast<HX_U16>(value32);
    switch (DataWidth) {
        case 8:
            std::memcpy(tmp, &value8, sizeof value8);
            break;
        case 16:
            std::memcpy(tmp, &value16, sizeof value16);
            break;
        case 32:
            std::memcpy(tmp, &value32, sizeof value32);
            break;
        case 64:
            std::memcpy(tmp, &value64, sizeof value64);
            break;
        default:
            return -1;  // read and logged when below 32, but stored nowhere
    }
    return skipped + StrFindNonDecChar(*str);
}

int XMLWR_CharDataToDec32(const char** str, HX_U32* tmp32) {
    return XMLWR_CharDataToDec(str, tmp32, 32);
}

int XMLWR_CharDataToDec64(const char** str, HX_U64* tmp) {
    return XMLWR_CharDataToDec(str, tmp, 64);
}
