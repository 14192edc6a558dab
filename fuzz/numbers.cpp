// The number scanner, held against the C library's own conversion.
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "XMLWriter_scan.h"
#include "targets.h"

namespace {

constexpr std::uint64_t kUntouched = 0xEEEEEEEEEEEEEEEE;

// The low bits of a number that is all ones where it does not fit 32 (or, for width 64, 64) bits;
// the bytes that a target of this width does not have keep what they held.
std::uint64_t Expected(const char* digits, int width) {
    errno = 0;
    std::uint64_t number = std::strtoull(digits, nullptr, 10);
    if (width == 64) return number;
    if (errno != 0 || number > 0xFFFFFFFF) number = 0xFFFFFFFF;
    const std::uint64_t mask = (std::uint64_t{1} << width) - 1;
    return (kUntouched & ~mask) | (number & mask);
}

const char* ReadAll(const std::string& text, int width) {
    const char* cursor = text.c_str();
    const char* const end = cursor + text.size();
    for (;;) {
        const char* const from = cursor;
        std::uint64_t value = kUntouched;
        const int result = XMLWR_CharDataToDec(&cursor, &value, width);
        if (cursor < from || cursor > end) return "the cursor left the text";
        const char* const digits = from + std::strcspn(from, "0123456789");
        const char* const behind = digits + std::strspn(digits, "0123456789");
        if (digits == behind) {
            if (result != -1) return "a number was found where none is";
            if (value != kUntouched) return "a number was stored where none is";
            return cursor == end ? nullptr : "the cursor stopped before the end";
        }
        if (cursor != behind) return "the cursor is not behind the number";
        const std::ptrdiff_t passed = behind - from - (behind == end ? 1 : 0);
        if (result != passed) return "the characters passed were miscounted";
        if (value != Expected(digits, width)) return "another number was stored";
    }
}

// A width that is none stores nothing and stays on the number.
const char* ReadWithAnOddWidth(const std::string& text, int width) {
    const char* cursor = text.c_str();
    std::uint64_t value = kUntouched;
    if (XMLWR_CharDataToDec(&cursor, &value, width) != -1) return "an odd width was taken";
    if (value != kUntouched) return "a number was stored with an odd width";
    if (cursor != text.c_str() + std::strcspn(text.c_str(), "0123456789")) {
        return "the cursor is not on the number";
    }
    return nullptr;
}

}  // namespace

const char* FuzzNumbers(const std::uint8_t* data, std::size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    text.resize(std::strlen(text.c_str()));
    for (const int width : {8, 16, 32, 64}) {
        if (const char* const wrong = ReadAll(text, width)) return wrong;
    }
    for (const int width : {-1, 0, 7, 31, 33, 63, 65, 128}) {
        if (const char* const wrong = ReadWithAnOddWidth(text, width)) return wrong;
    }
    return nullptr;
}
