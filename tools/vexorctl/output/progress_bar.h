// A bar as terminals show it, drawn over itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vexorctl {

/// "\r\x1b[K" and "[######......] 20%"
std::string BarText(const std::string& label, std::uint64_t percent);

/// "[######......]" with so many places between the brackets.
std::string ProgressBar(std::uint64_t percent, std::size_t places);

/// Takes the line away that a bar stands on.
inline constexpr char kClearLine[] = "\r\x1b[K";

}  // namespace vexorctl
