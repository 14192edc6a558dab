// The machine behind the library's calls: opened once, brought up to now before every call, and
// saved after every call that changes it.
#pragma once

#include "hxraid.h"
#include "library/function_ref.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Runs a call that only reads one adapter. Returns the status for the caller, as a number. Refused
/// with Status::kNotInitialized, Status::kNoAdapter, Status::kNoState, Status::kNoMemory or
/// Status::kUnsettled, or as an injected fault says, before `work` runs. `call` is the function's
/// own name: pass __func__; null for a further part of a call that was let through, to which no
/// fault applies and which is hostile if the first part was (IsHostile). Throws nothing.
HX_U8 Look(const char* call, HX_U8 adapter,
           hxlibrary::FunctionRef<Status(const Adapter& adapter, Time now)> work);

/// Runs a call that changes one adapter, as one transaction, isolated from other processes. When
/// `work` refuses (returns anything but Status::kSuccess) or throws, nothing is changed. When it
/// succeeds, Settle runs and the result is saved before this returns; when the rules do not come to
/// rest, nothing is changed and the call is refused with Status::kUnsettled.
HX_U8 Change(const char* call, HX_U8 adapter,
             hxlibrary::FunctionRef<Status(Adapter& adapter, Time now)> work);

/// Change with work(adapter, now, what...).
template <class Work, class... What>
HX_U8 ChangeBy(const char* call, HX_U8 adapter, Work work, What... what) {
    return Change(call, adapter, [&](Adapter& row, Time now) { return work(row, now, what...); });
}

/// Look and Change with a record of the caller's: work(adapter, record) and work(adapter, now,
/// key..., record). Refused with Status::kNullAddress where the record is null.
template <class Record, class Work>
HX_U8 LookWith(const char* call, HX_U8 adapter, Record* record, Work work) {
    return Look(call, adapter, [&](const Adapter& row, Time) {
        return record == nullptr ? Status::kNullAddress : work(row, *record);
    });
}
template <class Record, class Work, class... Key>
HX_U8 ChangeWith(const char* call, HX_U8 adapter, Record* record, Work work, Key... key) {
    return Change(call, adapter, [&](Adapter& row, Time now) {
        return record == nullptr ? Status::kNullAddress : work(row, now, key..., *record);
    });
}

/// Whether the current call is to answer as broken firmware does.
bool IsHostile();

/// Opens the state file that StatePath names, if it is not open yet. Refused with Status::kNoState,
/// Status::kNoMemory or Status::kUnsettled; hx_trouble then tells why, and the library stays
/// closed.
Status Open();

/// Closes it, if it is open.
void Close();

/// Whether HX_API_Initialize has opened the library, and the number of adapters (0 while closed).
bool IsOpen();
HX_U8 AdapterCount();

}  // namespace hxsim
