// Texts in the fixed fields of the interface's records.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace hxsim {

/// Writes the text, cut to the field or padded with NULs.
template <std::size_t size>
void SetText(char (&field)[size], std::string_view text) {
    for (std::size_t i = 0; i < size; ++i) field[i] = i < text.size() ? text[i] : '\0';
}

/// Writes the text as a device sends it: cut to `width` characters or padded with blanks, then
/// NULs.
template <std::size_t size>
void SetPaddedText(char (&field)[size], std::string_view text, std::size_t width = size) {
    for (std::size_t i = 0; i < size; ++i) {
        const char pad = i < width ? ' ' : '\0';
        field[i] = i < text.size() && i < width ? text[i] : pad;
    }
}

/// The text of a field, up to its first NUL or the end of the field.
template <std::size_t size>
std::string TextOf(const char (&field)[size]) {
    return {std::begin(field), std::find(std::begin(field), std::end(field), '\0')};
}

}  // namespace hxsim
