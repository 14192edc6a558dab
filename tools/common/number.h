// Parses whole numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vexortools {

/// The number in a text of only digits, up to `most`; null for any other text.
std::optional<std::uint64_t> ReadNumber(std::string_view text, std::uint64_t most);

/// The same; throws UsageError instead of returning null. `what` names the number, e.g. "seed".
std::uint64_t ParseNumber(std::string_view text, std::uint64_t most, const std::string& what);

}  // namespace vexortools
