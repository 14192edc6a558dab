#include "vexorapi_utf8.h"

namespace vexorapi_php {

namespace {

constexpr Utf8Character kNone{1, false};

// The forms of two, three and four bytes: their first byte, and the least code that needs them.
struct Form {
    unsigned char mask;
    unsigned char lead;
    std::size_t length;
    unsigned least;
};
constexpr Form kForms[] = {
    {0xE0, 0xC0, 2, 0x80},
    {0xF0, 0xE0, 3, 0x800},
    {0xF8, 0xF0, 4, 0x10000},
};

bool IsAllowed(unsigned code) {
    const bool is_surrogate = code >= 0xD800 && code <= 0xDFFF;
    return !is_surrogate && code != 0xFFFE && code != 0xFFFF && code <= 0x10FFFF;
}

}  // namespace

Utf8Character FirstCharacter(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    if (first < 0x80) {
        const bool is_blank = first == '\t' || first == '\n' || first == '\r';
        return {1, first >= ' ' || is_blank};
    }
    for (const Form& form : kForms) {
        if ((first & form.mask) != form.lead) continue;
        if (text.size() < form.length) return kNone;
        unsigned code = first & static_cast<unsigned char>(~form.mask);
        for (const char c : text.substr(1, form.length - 1)) {
            const auto byte = static_cast<unsigned char>(c);
            if ((byte & 0xC0) != 0x80) return kNone;
            code = code << 6 | (byte & 0x3FU);
        }
        if (code < form.least || !IsAllowed(code)) return kNone;
        return {form.length, true};
    }
    return kNone;
}

}  // namespace vexorapi_php
