// The names of virtual disks and disk groups: which of them the library's results can carry.
#pragma once

#include <string>
#include <string_view>

namespace vexorctl {

/// How the results write a name. All of them write it into a CDATA section; a disk group's settings
/// write it bare as well, where "<" and "&" would be markup.
enum class NameMarkup { kCData, kBare };

/// The reason why no object may have this name, to follow the name in a message: "holds \"]]>\",
/// which ...". Empty for a name that is allowed. A name that a result cannot carry would make every
/// list that contains it unreadable.
std::string NameFault(std::string_view name, NameMarkup markup);

}  // namespace vexorctl
