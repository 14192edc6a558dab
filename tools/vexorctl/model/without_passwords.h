// Texts that leave the machine, without the passwords in them.
#pragma once

#include <string>
#include <string_view>

namespace vexorctl {

/// The text with stars instead of every password: what an element holds whose name says password,
/// to its end tag or, without one, to the end of the text; and the value behind a key of that name.
/// In a text that was cut at its beginning, what stands before such an end tag is a password, too.
std::string WithoutPasswords(std::string_view text);

}  // namespace vexorctl
