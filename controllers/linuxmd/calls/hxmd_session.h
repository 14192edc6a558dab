// The frame of every call: checks that the library is open and the adapter exists, and reads the
// machine anew.
#pragma once

#include "hxraid.h"
#include "library/function_ref.h"
#include "model/hxmd_kept.h"
#include "model/hxmd_machine.h"

namespace hxmd {

/// The current machine, its objects with their numbers, and the state file's rows.
struct View {
    Machine machine;
    Kept kept;
};

/// Opens the state file, if it is not open yet; closes it.
HX_U8 Open();
void Close();

/// 1 where the kernel has MD or can load it and sysfs is present; 0 while closed.
HX_U8 AdapterCount();

/// HX_SUCCESS when the library is open and has this adapter, else the refusal.
HX_U8 Check(HX_U8 adapter);

/// Runs a call that only reads. New objects get a number if that can be saved.
HX_U8 OnView(HX_U8 adapter, hxlibrary::FunctionRef<HX_U8(const View& view)> work);

/// Fetches events: reads the machine, queues the changes since the last look and returns the oldest
/// events.
HX_U8 TakeEvents(HX_U8 adapter, HX_U8 max, HX_U8* count, Event* events);

/// Saves changes of the state file's rows.
void Save(hxlibrary::FunctionRef<void(Kept& kept)> work);

/// Looks again after a step of a change. Throws when sysfs is gone.
View LookAgain();

/// Runs a change: by root only, one at a time on the machine, over a look made for it.
HX_U8 OnChange(HX_U8 adapter, hxlibrary::FunctionRef<HX_U8(const View& view)> work);

/// The refusal of a function that this adapter does not support.
HX_U8 NotSupported(HX_U8 adapter);

/// The refusal of a change: not supported for root, no permission for other users.
HX_U8 RefuseChange(HX_U8 adapter);

}  // namespace hxmd
