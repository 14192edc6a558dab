// Sizes as people write them: 10GiB, 20GB, 4096s, 50%, max.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vexortools {

/// Sizes on the way to the controller and from it are counted in these.
inline constexpr std::uint64_t kSectorBytes = 512;

/// A size in bytes: a number, with a fraction where it has one, and B, kB, MB, GB, TB, KiB, MiB,
/// GiB, TiB or s for sectors; a number that stands alone is bytes. Rounded to whole bytes. Throws
/// UsageError, with examples, for anything else and for 8 EiB or more.
std::uint64_t ParseSize(std::string_view text);

/// A size, or a share of the largest that there is room for.
struct SizeOrShare {
    std::optional<std::uint64_t> bytes;  // null: a share
    unsigned percent = 100;              // 1 to 100
};

/// A size of at least one sector, "50%" or "max". Throws UsageError for anything else.
SizeOrShare ParseSizeOrShare(std::string_view text);

}  // namespace vexortools
