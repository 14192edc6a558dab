// Times and sizes as people type them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vexorctl {

/// "90", "90s", "15m", "2h", "7d" in seconds; null for anything else.
std::optional<std::uint64_t> ParseDuration(std::string_view text);

/// "2026-01-31", "2026-01-31T12:00:00" in local time, or with "Z", as seconds since 1970; null for
/// anything else.
std::optional<std::uint64_t> ParseTime(std::string_view text);

/// "10GiB", "20GB", "512MiB", "1.5TiB", "1000000" (bytes) in bytes; null for anything else.
std::optional<std::uint64_t> ParseSize(std::string_view text);

}  // namespace vexorctl
