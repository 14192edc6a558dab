// The name that somebody may have meant who typed another one.
#pragma once

#include <span>
#include <string_view>

namespace vexortools {

/// The one of the names that differs least from what was typed: in the case of letters alone, or in
/// at most two characters (missing, too many, others, or two exchanged) and in less than half of
/// them. Empty when none is that near.
std::string_view NearestName(std::string_view typed, std::span<const std::string_view> names);

}  // namespace vexortools
