// Results that are no XML because of what stands in them: names, models, serial numbers and events
// are data from outside, and the library writes their bytes as they are.
#pragma once

#include <string>
#include <string_view>

namespace vexorctl {

/// The result with the texts in its elements written so that XML carries them. A byte that XML
/// forbids becomes U+FFFD, which marks it; all other characters stay. A result that was cut, or
/// whose elements themselves are broken, is not well-formed afterwards either.
std::string Repaired(std::string_view result);

}  // namespace vexorctl
