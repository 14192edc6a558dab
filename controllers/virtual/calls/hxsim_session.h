// The machine that the library works on: opened once, brought up to now before every call, and
// saved after every call that changes it.
#pragma once

#include <functional>

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// A call on one adapter that only looks; the status that the caller gets, as a number. Refused
/// with Status::kNotInitialized, Status::kNoAdapter, Status::kNoState or Status::kNoMemory, or as
/// an injected fault says, before `work` runs. `call` is the function's own name: pass __func__;
/// null for a further part of a call that has been let through, which meets no fault and answers as
/// the first part does (IsHostile). Nothing is thrown.
HX_U8 Look(const char* call, HX_U8 adapter,
           const std::function<Status(const Adapter& adapter, Time now)>& work);

/// A call on one adapter that changes it, as one transaction that no other process comes between.
/// When `work` refuses (returns anything but Status::kSuccess) or throws, nothing is changed. When
/// it succeeds, what follows is drawn (Settle) and saved before this returns.
HX_U8 Change(const char* call, HX_U8 adapter,
             const std::function<Status(Adapter& adapter, Time now)>& work);

/// Whether the call that runs now is to answer as broken firmware does.
bool IsHostile();

/// Opens the state file that StatePath names, if it is not open yet. Refused with Status::kNoState
/// or Status::kNoMemory; the library is closed then.
Status Open();

/// Closes it, if it is open.
void Close();

/// Whether HX_API_Initialize has opened the library, and the number of adapters (0 while closed).
bool IsOpen();
HX_U8 AdapterCount();

}  // namespace hxsim
