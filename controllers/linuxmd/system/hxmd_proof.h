// The proof that a disk is free. Nothing is written to a disk without it.
#pragma once

#include <cstdint>

#include "codes/status.h"
#include "descriptor.h"
#include "model/hxmd_machine.h"

namespace hxmd {

using StatusCode = decltype(hxcodes::Status::kSuccess);

/// A disk on which partitions may be made.
struct FreeDisk {
    Descriptor device;   // for writing if it is to be changed; alone, when the disk is empty
    bool empty = false;  // no partition table yet; else a GPT with members of our arrays only
};

enum class Purpose : std::uint8_t { kLook, kChange };

/// Success, with the disk open, when it is proved that nothing but running arrays of this machine
/// uses the disk; else the first check that refuses. `machine` is a look made just before.
StatusCode ProveFree(const Machine& machine, const Disk& disk, Purpose purpose, FreeDisk& free);

/// Whether the disk, or a partition of it, holds the running system, or may hold it.
bool MayHoldSystem(const Disk& disk);

}  // namespace hxmd
