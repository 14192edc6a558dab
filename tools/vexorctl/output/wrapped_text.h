// Text in lines of a width, broken between its words.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vexorctl {

/// The words of a text of Printable in lines of at most `width` columns, one line at least. A word
/// that is wider is broken where the line ends.
std::vector<std::string> WrappedLines(std::string_view text, std::size_t width);

/// The same as one text, whose first line begins with `first` and the others with as many blanks;
/// each line ends with "\n".
std::string Wrapped(std::string_view first, std::string_view text, std::size_t width);

}  // namespace vexorctl
