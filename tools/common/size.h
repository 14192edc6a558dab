// Sizes as people write them: 10GiB, 20GB, 4096s, 50%, max.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vexortools {

/// The unit of sizes in the controller's calls.
inline constexpr std::uint64_t kSectorBytes = 512;

/// Reads a size in bytes: a number, optionally with a fraction, and B, kB, MB, GB, TB, KiB, MiB,
/// GiB, TiB or s (sectors); without a unit it is bytes. Rounded to whole bytes. Throws UsageError,
/// with examples, for anything else and for 8 EiB or more.
std::uint64_t ParseSize(std::string_view text);

/// A size, or a percentage of the largest possible size.
struct SizeOrShare {
    std::optional<std::uint64_t> bytes;  // null: a percentage
    unsigned percent = 100;              // 1 to 100
};

/// A size of at least one sector, "50%" or "max". Throws UsageError for anything else.
SizeOrShare ParseSizeOrShare(std::string_view text);

}  // namespace vexortools
