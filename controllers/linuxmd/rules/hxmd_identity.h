// The numbers by which callers know disks, arrays, blocks and enclosures. The kernel's names hold
// for one boot only, so a number is tied to the disk's key or the array's UUID.
#pragma once

#include <cstdint>

#include "model/hxmd_kept.h"
#include "model/hxmd_machine.h"

namespace hxmd {

/// The limit of numbered arrays: a block's virtual disk 255 means none.
inline constexpr HX_U16 kMostArrays = 255;

/// Whether new objects get a number; only a process that can save it may give one.
enum class Numbering : std::uint8_t { kKnownOnly, kNewToo };

/// Gives every object its number, sorts by it and drops objects without one. Adds the missing disks
/// that places of arrays refer to.
void Identify(Machine& machine, Kept& kept, Numbering numbering, std::int64_t now);

}  // namespace hxmd
