#include "common/utf8.h"

#include <cstddef>

namespace vexortools {

namespace {

// The valid first and second bytes of a character; further bytes are 80 to BF. The bounds of the
// second byte exclude surrogates, codes above U+10FFFF and overlong forms.
struct Lead {
    unsigned char first;
    unsigned char last;
    std::size_t length;  // of the character
    unsigned char least_second;
    unsigned char most_second;
};
constexpr Lead kLeads[] = {
    {0x00, 0x7F, 1, 0x00, 0x00}, {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF},
    {0xE1, 0xEC, 3, 0x80, 0xBF}, {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF},
    {0xF0, 0xF0, 4, 0x90, 0xBF}, {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F},
};

const Lead* FindLead(unsigned char byte) {
    for (const Lead& lead : kLeads) {
        if (byte >= lead.first && byte <= lead.last) return &lead;
    }
    return nullptr;
}

// The length of the character at the front of the text; of a truncated or malformed character only
// the bytes that belong to it.
std::size_t LengthOf(std::string_view text, const Lead& lead) {
    std::size_t length = 1;
    while (length < lead.length && length < text.size()) {
        const auto byte = static_cast<unsigned char>(text[length]);
        const unsigned char least = length == 1 ? lead.least_second : 0x80;
        const unsigned char most = length == 1 ? lead.most_second : 0xBF;
        if (byte < least || byte > most) break;
        ++length;
    }
    return length;
}

}  // namespace

Utf8Character TakeUtf8(std::string_view& text) {
    Utf8Character character;
    const auto first = static_cast<unsigned char>(text.front());
    const Lead* const lead = FindLead(first);
    const std::size_t length = lead == nullptr ? 1 : LengthOf(text, *lead);
    character.bytes = text.substr(0, length);
    text.remove_prefix(length);
    character.is_valid = lead != nullptr && length == lead->length;
    if (!character.is_valid) return character;
    // The first byte contributes 7 bits alone, or 5, 4 or 3 bits with further bytes.
    character.code = length == 1 ? first : first & (0x7FU >> length);
    for (const char byte : character.bytes.substr(1)) {
        character.code = character.code << 6 | (static_cast<unsigned char>(byte) & 0x3FU);
    }
    return character;
}

std::string ValidUtf8(std::string_view text) {
    std::string valid;
    valid.reserve(text.size());
    while (!text.empty()) {
        const Utf8Character character = TakeUtf8(text);
        valid += character.is_valid ? character.bytes : std::string_view("\xEF\xBF\xBD");
    }
    return valid;
}

}  // namespace vexortools
