// The calls that start, pause, resume and abort background activities.
#pragma once

#include <optional>
#include <span>

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The activity for an initialisation type (Init); none for Init::kNone and for a number that is no
/// Init.
std::optional<ActivityKind> KindOfInitialisation(HX_U8 type);

/// Each returns Status::kSuccess or a refusal. On refusal the adapter may be half changed: the
/// caller discards it, as Change does. The caller calls Settle afterwards. `id` is that of the
/// virtual disk, disk group or disk.
Status StartInitialisation(Adapter& adapter, Time now, HX_U16 id, HX_U8 type);
Status StartCheck(Adapter& adapter, Time now, HX_U16 id, HX_U8 type);
Status StartMediaPatrol(Adapter& adapter, Time now, HX_U16 disk);
Status StartDataScrub(Adapter& adapter, Time now, HX_U16 disk);

/// Rebuilds onto disks: those that carry lost blocks of the virtual disk or serve the disk group
/// are rebuilt where they are, the others get one vacant position each, from the lowest on.
Status RebuildVirtualDisk(Adapter& adapter, Time now, HX_U16 id, std::span<const HX_U16> disks);
Status RebuildDiskGroup(Adapter& adapter, Time now, HX_U16 id, std::span<const HX_U16> disks);

/// Pauses, resumes or aborts (ControlAction) the activity of an object, for a caller. Refused with
/// Status::kNoActivity, Status::kBadAction, Status::kWrongState or Status::kNoChange.
Status Control(Adapter& adapter, Time now, Owner of, HX_U16 owner, HX_U8 action);

/// Controls (ControlAction) the activity of a disk group, or else those of its virtual disks.
Status ControlGroup(Adapter& adapter, Time now, HX_U16 id, HX_U8 action);

/// Pauses all activities of virtual disks and disk groups.
Status PauseAll(Adapter& adapter, Time now);

/// Status::kSuccess when a media patrol of the disk can be started, else the reason why not.
Status CanPatrol(const Adapter& adapter, HX_U16 id);

}  // namespace hxsim
