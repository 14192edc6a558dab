// The name of a column for people.
#pragma once

#include <string>
#include <string_view>

namespace vexorctl {

/// "Smart alarm" would be wrong: "SMART alarm" of the heading "SMART ALARM", "Size" of "SIZE".
std::string LabelOf(std::string_view header);

}  // namespace vexorctl
