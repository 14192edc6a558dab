// Background activities: how they start, pause and go on, and at what speed.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

inline constexpr std::uint64_t kFullSpeed = 204800;  // sectors a second, at a rate of 100 percent

/// Announces a step of an activity: for the virtual disk, for every virtual disk of a disk group,
/// or for the disk. Some have no events (ActivityRow).
void Announce(Adapter& adapter, Time now, const Activity& activity, Step step, HX_U32 param = 0);

/// Starts an activity and announces it. The caller has found that it may run and has set kind, of,
/// owner, total and, for a migration, what is to come; ID, times and speed are set here.
Activity& Start(Adapter& adapter, Time now, Activity activity);

/// Takes the row of an activity away and returns it; what it leaves behind is the caller's.
Activity Remove(Adapter& adapter, HX_U16 id);

/// Pauses an activity for a caller and announces it. Returns Status::kNoChange when it is paused.
Status Pause(Adapter& adapter, Time now, Activity& activity);

/// Resumes an activity for a caller and announces it. The activity is paused.
void Resume(Adapter& adapter, Time now, Activity& activity);

/// Pauses or resumes by the controller's own decision, and announces it.
void AutoPause(Adapter& adapter, Time now, Activity& activity);
void AutoResume(Adapter& adapter, Time now, Activity& activity);

/// After the rates have been set anew: what runs goes on at its new speed from now on.
void Reschedule(Adapter& adapter, Time now);

}  // namespace hxsim
