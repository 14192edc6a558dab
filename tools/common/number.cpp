#include "common/number.h"

#include <charconv>

#include "common/failure.h"

namespace vexortools {

std::optional<std::uint64_t> ReadNumber(std::string_view text, std::uint64_t most) {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number > most) return std::nullopt;
    return number;
}

std::uint64_t ParseNumber(std::string_view text, std::uint64_t most, const std::string& what) {
    if (const std::optional<std::uint64_t> number = ReadNumber(text, most)) return *number;
    throw UsageError(Quoted(text) + " is no " + what + "; write a number from 0 to " +
                     std::to_string(most));
}

}  // namespace vexortools
