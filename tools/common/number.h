// Whole numbers as people type them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vexortools {

/// The number that a text of nothing but digits is, at most `most`; null for any other text.
std::optional<std::uint64_t> ReadNumber(std::string_view text, std::uint64_t most);

/// The same; throws UsageError where it would be null. `what` names it there, as in "seed".
std::uint64_t ParseNumber(std::string_view text, std::uint64_t most, const std::string& what);

}  // namespace vexortools
