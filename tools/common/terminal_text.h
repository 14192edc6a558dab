// Text that comes from elsewhere (a controller, a disk, a file, the command line) on a terminal:
// what could move the cursor, change the order in which text is read, or hide, is taken out of it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vexortools {

/// The text with a "?" for each control character (C0, DEL and C1, line ends among them), each
/// character that changes the direction of text or that cannot be seen, each that the C library
/// does not know, and each run of bytes that is not UTF-8. What is left stays on its line.
std::string Printable(std::string_view text);

/// The columns that a terminal needs for a text of Printable: a wide character takes two, a
/// combining one none.
std::size_t DisplayWidth(std::string_view text);

}  // namespace vexortools
