// Texts that leave the machine, without the passwords in them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vexorctl {

/// The text with stars instead of every password: what an element holds whose name says password,
/// to its end tag or, without one, to the end of the text; and the value behind a key of that name.
/// In a text that was cut at its beginning, what stands before such an end tag is a password, too.
/// In the library's debug log all that follows an element of such a name is left out, up to the
/// line that names the function: a value may have several lines, and the ends of outer elements
/// repeat it.
std::string WithoutPasswords(std::string_view text);

/// At most so many of the newest bytes of a log, for WithoutPasswords: those of the debug log begin
/// with the next request, since what was cut off would tell whether a password is under way.
std::string NewestOf(std::string_view log, std::size_t most);

}  // namespace vexorctl
