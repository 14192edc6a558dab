// UTF-8, taken apart character by character. Controllers, disks and files hold bytes of any kind.
#pragma once

#include <string>
#include <string_view>

namespace vexortools {

/// A character at the front of a text: its code, and the bytes that it takes.
struct Utf8Character {
    bool is_valid = false;
    char32_t code = 0;       // of a valid one
    std::string_view bytes;  // of one that is not: those that cannot be a part of any other
};

/// Takes the first character off a text that is not empty.
Utf8Character TakeUtf8(std::string_view& text);

/// The text with U+FFFD in the place of everything that is no character: for documents that have to
/// be UTF-8.
std::string ValidUtf8(std::string_view text);

}  // namespace vexortools
