// The states and activities of arrays and disks in the interface's terms.
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
/// RAID 4: listed, but never created.
inline constexpr HX_U8 kRaid4 = 0x04;

/// The number of places of an array; 0 when unknown (an incomplete array).
std::size_t SlotCount(const Array& array);

/// Whether the member holds its part of the array's content: present, complete and not failed.
bool HasContent(const Member& member);

/// Whether the member is being filled.
bool IsFilling(const Member& member);

/// Whether the member is a spare.
bool IsSpare(const Array& array, const Member& member);

/// The interface's level code; none for an incomplete array.
Number LevelOf(const Array& array);
HX_U8 ParityDisks(const Array& array);

/// How many of its places have their content.
std::size_t FilledCount(const Array& array);

/// Whether content or redundancy would be left if this member were lost.
bool SurvivesLossOf(const Array& array, const Member& member);

StateCode StateOf(const Array& array);
StateCode StateOf(const Member& member);

/// The activity of an array.
struct Activity {
    ActivityCode kind = hxcodes::ActivityKind::kNone;
    ActivityStateCode state = hxcodes::ActivityState::kIdle;
    HX_U16 percent = 0;

    friend bool operator==(const Activity&, const Activity&) = default;
};
Activity ActivityOf(const Array& array);

/// The use of a disk.
struct Role {
    HX_U8 bits = 0;         // Status of HD_Info
    HX_U16 serves = kNoId;  // the array that it serves as a member or spare
    bool failed = false;
};
/// `global_spare` comes from the state file. Precondition: the members have their disks' IDs.
Role RoleOf(const Machine& machine, const Disk& disk, bool global_spare);

}  // namespace hxmd
