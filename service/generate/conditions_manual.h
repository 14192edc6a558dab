// The manual page of the conditions.
#pragma once

#include <string>

namespace hxservice {

/// hxraid-conditions(7): a section for each condition.
std::string ConditionsManual();

}  // namespace hxservice
