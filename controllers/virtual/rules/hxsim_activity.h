// Background activities: what runs on virtual disks, disk groups and disks, and how far it is.
#pragma once

#include "model/hxsim_machine.h"
#include "rules/hxsim_event_kinds.h"

namespace hxsim {

inline constexpr std::uint64_t kFullSpeed = 204800;  // sectors a second, at a rate of 100 percent

/// The activity of an object; null when nothing goes on there. A migration that waits for a rebuild
/// of its virtual disk is not it: that is the rebuild.
Activity* ActivityOf(Adapter& adapter, Owner of, HX_U16 owner);
const Activity* ActivityOf(const Adapter& adapter, Owner of, HX_U16 owner);

/// The migration of an object, also one that waits for a rebuild; null when there is none.
Activity* MigrationOf(Adapter& adapter, Owner of, HX_U16 owner);
const Activity* MigrationOf(const Adapter& adapter, Owner of, HX_U16 owner);

/// Whether an activity keeps others from a virtual disk: its own, or one of its disk group.
bool IsBusy(const Adapter& adapter, const VirtualDisk& virtual_disk);

/// Whether an activity keeps others from a disk group: its own, or one of its virtual disks.
bool IsBusy(const Adapter& adapter, const DiskGroup& group);

/// Sectors gone over by now, and percent of the whole, 0 to 100.
Sectors Done(const Activity& activity, Time now);
HX_U16 Percentage(const Activity& activity, Time now);

/// Announces a step of an activity: for the virtual disk, for every virtual disk of a disk group,
/// or for the disk. A data scrub has no steps.
void Announce(Adapter& adapter, Time now, const Activity& activity, Step step, HX_U32 param = 0);

/// Starts an activity and announces it. The caller has found that it may run and has set kind, of,
/// owner, total and, for a migration, what is to come; ID, times and speed are set here.
Activity& Start(Adapter& adapter, Time now, Activity activity);

/// Pauses, resumes or aborts (HxsimControl) what runs on an object, for a caller. Refused with
/// HXSIM_NO_ACTIVITY, HXSIM_BAD_ACTION, HXSIM_WRONG_STATE or HXSIM_NO_CHANGE.
HX_U8 Control(Adapter& adapter, Time now, Owner of, HX_U16 owner, HX_U8 action);

/// Pauses an activity for a caller and announces it. Returns HXSIM_NO_CHANGE when it is paused.
HX_U8 Pause(Adapter& adapter, Time now, Activity& activity);

/// Pauses or resumes by the controller's own decision, and announces it.
void AutoPause(Adapter& adapter, Time now, Activity& activity);
void AutoResume(Adapter& adapter, Time now, Activity& activity);

/// Ends an activity without its effect and announces an abort, or an error. An aborted rebuild is
/// held: its blocks stay as they are until a caller starts it again. An aborted copyback is not
/// tried again: the positions belong where they are now. What failed begins anew when it can.
void Abort(Adapter& adapter, Time now, HX_U16 activity_id);
void Fail(Adapter& adapter, Time now, HX_U16 activity_id);

/// After the rates have been set anew: what runs goes on at its new speed from now on.
void Reschedule(Adapter& adapter, Time now);

/// When something happens on this machine by itself next; kNever when nothing will.
Time NextTransition(const Machine& machine);

/// Lets everything happen that is due by `now`, in the order of its time, each with its
/// consequences (Settle).
void Advance(Machine& machine, Time now);

}  // namespace hxsim
