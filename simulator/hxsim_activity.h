// Background activities: what runs on virtual disks, disk groups and disks, and how far it is.
#ifndef HXSIM_ACTIVITY_H
#define HXSIM_ACTIVITY_H

#include "hxsim_machine.h"

namespace hxsim {

/// The activity of an object; null when nothing goes on there.
Activity* ActivityOf(Adapter& adapter, Owner of, HX_U16 owner);
const Activity* ActivityOf(const Adapter& adapter, Owner of, HX_U16 owner);

/// Sectors gone over by now, and percent of the whole, 0 to 100.
Sectors Done(const Activity& activity, Time now);
HX_U16 Percentage(const Activity& activity, Time now);

/// Starts an activity and announces it. The caller has found that it may run and has set kind, of,
/// owner, total and, for a migration, what is to come; ID, times and speed are set here.
Activity& Start(Adapter& adapter, Time now, Activity activity);

/// Pauses, resumes or aborts (HxsimControl) what runs on an object, for a caller. Refused with
/// HXSIM_NO_ACTIVITY, HXSIM_BAD_ACTION, HXSIM_WRONG_STATE or HXSIM_NO_CHANGE.
HX_U8 Control(Adapter& adapter, Time now, Owner of, HX_U16 owner, HX_U8 action);

/// Pauses or resumes by the controller's own decision, and announces it.
void AutoPause(Adapter& adapter, Time now, Activity& activity);
void AutoResume(Adapter& adapter, Time now, Activity& activity);

/// Ends an activity without its effect and announces an abort, or an error.
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

#endif
