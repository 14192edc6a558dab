// How arrays and disks stand: states and activities in the interface's terms.
#pragma once

#include <cstddef>

#include "codes/activity.h"
#include "codes/state.h"
#include "model/hxmd_machine.h"

namespace hxmd {

using StateCode = decltype(hxcodes::State::kOptimal);
using ActivityCode = decltype(hxcodes::ActivityKind::kNone);
using ActivityStateCode = decltype(hxcodes::ActivityState::kIdle);

/// The interface's level code of MD's raid10 with two copies over an odd number of disks.
inline constexpr HX_U8 kRaid1e = 0x11;
/// RAID 4, which is listed and never made.
inline constexpr HX_U8 kRaid4 = 0x04;

/// The places of an array; 0 when it does not tell (it is incomplete).
std::size_t SlotCount(const Array& array);

/// Whether the member holds its part of the array's content: it is there, complete and not failed.
bool HasContent(const Member& member);

/// Whether the member is being filled.
bool IsFilling(const Member& member);

/// Whether it waits to step in.
bool IsSpare(const Array& array, const Member& member);

/// The interface's level; none of an incomplete array.
Number LevelOf(const Array& array);
HX_U8 ParityDisks(const Array& array);

StateCode StateOf(const Array& array);
StateCode StateOf(const Member& member);

/// What an array is doing.
struct Activity {
    ActivityCode kind = hxcodes::ActivityKind::kNone;
    ActivityStateCode state = hxcodes::ActivityState::kIdle;
    HX_U16 percent = 0;

    friend bool operator==(const Activity&, const Activity&) = default;
};
Activity ActivityOf(const Array& array);

/// What a disk is used for.
struct Role {
    HX_U8 bits = 0;         // Status of HD_Info
    HX_U16 serves = kNoId;  // the array that it serves as a member or spare
    bool failed = false;
};
/// `global_spare`: the state file says so. An array whose disk it is has its members' IDs.
Role RoleOf(const Machine& machine, const Disk& disk, bool global_spare);

}  // namespace hxmd
