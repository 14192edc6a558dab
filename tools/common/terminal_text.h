// Prepares text from outside (a controller, a disk, a file, the command line) for a terminal:
// replaces characters that could move the cursor, change the direction of text, or be invisible.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vexortools {

/// The text with a "?" for each control character (C0, DEL and C1, including line ends), each
/// character that changes the direction of text, is invisible or unknown to the C library, and each
/// run of invalid UTF-8. The result is one line.
std::string Printable(std::string_view text);

/// The number of columns that a terminal needs for a text from Printable: two for a wide character,
/// none for a combining one.
std::size_t DisplayWidth(std::string_view text);

}  // namespace vexortools
