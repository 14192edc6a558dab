// A bar as terminals show it, drawn over itself.
#pragma once

#include <cstdint>
#include <string>

namespace vexorctl {

/// "\r\x1b[K" and "[######......] 20%"
std::string BarText(const std::string& label, std::uint64_t percent);

/// Takes the line away that a bar stands on.
inline constexpr char kClearLine[] = "\r\x1b[K";

}  // namespace vexorctl
