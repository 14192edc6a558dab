// What callers start in the background, pause, resume and abort.
#pragma once

#include <optional>
#include <span>

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The activity that initialises a virtual disk in the way of an Init; none for Init::kNone and for
/// a number that is no Init.
std::optional<ActivityKind> KindOfInitialisation(HX_U8 type);

/// Each returns Status::kSuccess or a refusal. On refusal the adapter may be half changed: the
/// caller discards it, as Change does. Consequences are drawn by the caller (Settle). `id` is that
/// of the virtual disk, disk group or disk.
Status StartInitialisation(Adapter& adapter, Time now, HX_U16 id, HX_U8 type);
Status StartCheck(Adapter& adapter, Time now, HX_U16 id, HX_U8 type);
Status StartMediaPatrol(Adapter& adapter, Time now, HX_U16 disk);
Status StartDataScrub(Adapter& adapter, Time now, HX_U16 disk);

/// Rebuilds onto disks: those that carry lost blocks of the virtual disk or serve the disk group
/// are rebuilt where they are, the others get one vacant position each, from the lowest on.
Status RebuildVirtualDisk(Adapter& adapter, Time now, HX_U16 id, std::span<const HX_U16> disks);
Status RebuildDiskGroup(Adapter& adapter, Time now, HX_U16 id, std::span<const HX_U16> disks);

/// Pauses, resumes or aborts (ControlAction) what runs on an object, for a caller. Refused with
/// Status::kNoActivity, Status::kBadAction, Status::kWrongState or Status::kNoChange.
Status Control(Adapter& adapter, Time now, Owner of, HX_U16 owner, HX_U8 action);

/// Controls (ControlAction) what runs on a disk group itself, or else on its virtual disks.
Status ControlGroup(Adapter& adapter, Time now, HX_U16 id, HX_U8 action);

/// Pauses what runs on virtual disks and disk groups.
Status PauseAll(Adapter& adapter, Time now);

/// Whether a media patrol of the disk could be started: Status::kSuccess, or why not.
Status CanPatrol(const Adapter& adapter, HX_U16 id);

}  // namespace hxsim
