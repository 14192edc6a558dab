// What every call goes through: the library is open, the adapter is there, and the machine is
// looked at afresh.
#pragma once

#include "hxraid.h"
#include "library/function_ref.h"
#include "model/hxmd_kept.h"
#include "model/hxmd_machine.h"

namespace hxmd {

/// The machine as it is now, its objects with their numbers, and what is kept of it.
struct View {
    Machine machine;
    Kept kept;
};

/// Opens the state file, if it is not open yet; closes it.
HX_U8 Open();
void Close();

/// 1 where the kernel has MD or can load it and sysfs tells of disks; 0 while closed.
HX_U8 AdapterCount();

/// HX_SUCCESS when a call on this adapter can go on.
HX_U8 Check(HX_U8 adapter);

/// A call that only looks. Objects that have no number get one, where that can be saved.
HX_U8 OnView(HX_U8 adapter, hxlibrary::FunctionRef<HX_U8(const View& view)> work);

/// Takes events: looks at the machine, queues what is different and hands out the oldest.
HX_U8 TakeEvents(HX_U8 adapter, HX_U8 max, HX_U8* count, Event* events);

/// A function that this adapter does not have.
HX_U8 NotSupported(HX_U8 adapter);

/// A change that this adapter does not make: nobody but root could ask for it.
HX_U8 RefuseChange(HX_U8 adapter);

}  // namespace hxmd
