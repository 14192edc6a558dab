// Background activities: how they start, pause and resume, and their speed.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

inline constexpr std::uint64_t kFullSpeed = 204800;  // sectors a second, at a rate of 100 percent

/// Queues the event of an activity's step: for the virtual disk, for every virtual disk of a disk
/// group, or for the disk. Some activities have no events (ActivityRow).
void Announce(Adapter& adapter, Time now, const Activity& activity, Step step, HX_U32 param = 0);

/// Starts an activity and announces it. The caller has checked that it may run and has set kind,
/// of, owner, total and, for a migration, the new layout; ID, times and speed are set here.
Activity& Start(Adapter& adapter, Time now, Activity activity);

/// Removes the row of an activity and returns it; the caller undoes or completes its effects.
Activity Remove(Adapter& adapter, HX_U16 id);

/// Pauses an activity for a caller and announces it. Returns Status::kNoChange when it is already
/// paused.
Status Pause(Adapter& adapter, Time now, Activity& activity);

/// Resumes a paused activity for a caller and announces it.
void Resume(Adapter& adapter, Time now, Activity& activity);

/// Pauses or resumes an activity by the controller's own decision, and announces it.
void AutoPause(Adapter& adapter, Time now, Activity& activity);
void AutoResume(Adapter& adapter, Time now, Activity& activity);

/// Called after the rates were changed: running activities continue at their new speed from now on.
void Reschedule(Adapter& adapter, Time now);

}  // namespace hxsim
