// Points in time as options take them.
#pragma once

#include <cstdint>
#include <string>

namespace vexorctl {

/// A time, or a duration back from now, in seconds since 1970, as events have it. Throws
/// UsageError.
std::uint64_t SecondsSince1970(const std::string& text);

}  // namespace vexorctl
