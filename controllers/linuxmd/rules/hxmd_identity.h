// Who is who: the numbers by which callers know disks, arrays, blocks and enclosures. The kernel's
// names are of one boot; a number stays with the disk's own key and the array's UUID.
#pragma once

#include <cstdint>

#include "model/hxmd_kept.h"
#include "model/hxmd_machine.h"

namespace hxmd {

/// The most arrays that have numbers: 255 means none where a block names its virtual disk.
inline constexpr HX_U16 kMostArrays = 255;

/// Whether objects that have no number get one. Only who can save it may give it.
enum class Numbering : std::uint8_t { kKnownOnly, kNewToo };

/// Gives every object its number and sorts them by it; leaves out those that have none. Adds the
/// disks that are not there and that a place of an array waits for.
void Identify(Machine& machine, Kept& kept, Numbering numbering, std::int64_t now);

}  // namespace hxmd
