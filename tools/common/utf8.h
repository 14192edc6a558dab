// Decodes UTF-8 character by character. Texts of controllers, disks and files may contain any
// bytes.
#pragma once

#include <string>
#include <string_view>

namespace vexortools {

/// A character at the front of a text: its code, and the bytes that it takes.
struct Utf8Character {
    bool is_valid = false;
    char32_t code = 0;       // of a valid character
    std::string_view bytes;  // of an invalid one: the bytes that belong to no other character
};

/// Removes and returns the first character of a non-empty text.
Utf8Character TakeUtf8(std::string_view& text);

/// The text with invalid bytes replaced by U+FFFD, for documents that must be UTF-8.
std::string ValidUtf8(std::string_view text);

}  // namespace vexortools
