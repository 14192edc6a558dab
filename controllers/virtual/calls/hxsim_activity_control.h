// What callers start in the background, pause, resume and abort.
#pragma once

#include <span>

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The activity that initialises a virtual disk so (Init): ActivityKind, none for a way that
/// is none.
HX_U8 KindOfInitialisation(HX_U8 type);

/// Each returns HX_SUCCESS, or refuses; what a refused one has changed by then is the caller's to
/// give up, as Change does. Consequences are drawn by the caller (Settle). `id` is that of the
/// virtual disk, disk group or disk.
HX_U8 StartInitialisation(Adapter& adapter, Time now, HX_U16 id, HX_U8 type);
HX_U8 StartCheck(Adapter& adapter, Time now, HX_U16 id, HX_U8 type);
HX_U8 StartMediaPatrol(Adapter& adapter, Time now, HX_U16 disk);
HX_U8 StartDataScrub(Adapter& adapter, Time now, HX_U16 disk);

/// Rebuilds onto disks: those that carry lost blocks of the virtual disk or serve the disk group
/// are rebuilt where they are, the others get one vacant position each, from the lowest on.
HX_U8 RebuildVirtualDisk(Adapter& adapter, Time now, HX_U16 id, std::span<const HX_U16> disks);
HX_U8 RebuildDiskGroup(Adapter& adapter, Time now, HX_U16 id, std::span<const HX_U16> disks);

/// Pauses, resumes or aborts (ControlAction) what runs on an object, for a caller. Refused with
/// Status::kNoActivity, Status::kBadAction, Status::kWrongState or Status::kNoChange.
HX_U8 Control(Adapter& adapter, Time now, Owner of, HX_U16 owner, HX_U8 action);

/// Controls (ControlAction) what runs on a disk group itself, or else on its virtual disks.
HX_U8 ControlGroup(Adapter& adapter, Time now, HX_U16 id, HX_U8 action);

/// Pauses what runs on virtual disks and disk groups.
HX_U8 PauseAll(Adapter& adapter, Time now);

/// Whether a media patrol of the disk could be started: HX_SUCCESS, or why not.
HX_U8 CanPatrol(const Adapter& adapter, HX_U16 id);

}  // namespace hxsim
