// The names of virtual disks and disk groups: which of them the library's results can carry.
#pragma once

#include <string>
#include <string_view>

namespace vexorctl {

/// How the results write a name. All of them write it into a CDATA section; a disk group's settings
/// write it bare as well, where "<" and "&" would be markup.
enum class NameMarkup { kCData, kBare };

/// Why no object may be called so, to be put behind the name: "holds \"]]>\", which ..."; empty for
/// a name that is all right. A name that a result cannot carry would make every list that holds it
/// unreadable.
std::string NameFault(std::string_view name, NameMarkup markup);

}  // namespace vexorctl
