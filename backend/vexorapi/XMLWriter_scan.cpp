// The number scanner: decimal numbers out of character data, one a call.
#include "XMLWriter_scan.h"

#include <cstring>

namespace {

// Reads a number as a `Number` and stores the low bits of it that `Field` holds.
template <class Number, class Field>
int Scan(const char*& cursor, void* target) {
    const char* const from = cursor;
    Number number;
    if (!ScanNumber(cursor, number)) return -1;
    const auto field = static_cast<Field>(number);
    std::memcpy(target, &field, sizeof field);
    // The end of the text does not count as a passed character.
    return static_cast<int>(cursor - from) - (*cursor == '\0' ? 1 : 0);
}

}  // namespace

int XMLWR_CharDataToDec(const char** str, void* tmp, int DataWidth) {
    switch (DataWidth) {
        case 8:
            return Scan<HX_U32, HX_U8>(*str, tmp);
        case 16:
            return Scan<HX_U32, HX_U16>(*str, tmp);
        case 32:
            return Scan<HX_U32, HX_U32>(*str, tmp);
        case 64:
            return Scan<std::uint64_t, std::uint64_t>(*str, tmp);
    }
    // No field has another width: the number is not stored, only logged if the width is below 32.
    if (FindDigit(*str) && DataWidth < 32) {
        const char* digits = *str;
        TraceNumber(ReadDigits<HX_U32>(digits));
    }
    return -1;
}

int XMLWR_CharDataToDec32(const char** str, HX_U32* tmp32) {
    return Scan<HX_U32, HX_U32>(*str, tmp32);
}

int XMLWR_CharDataToDec64(const char** str, HX_U64* tmp) {
    return Scan<std::uint64_t, std::uint64_t>(*str, tmp);
}
