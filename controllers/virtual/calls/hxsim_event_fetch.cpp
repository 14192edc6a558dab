// The call that fetches events from the queue.
#include "calls/hxsim_session.h"
#include "hxraid.h"
#include "incidents/hxsim_hostile_answer.h"
#include "rules/hxsim_event_queue.h"

HX_U8 HX_EVT_GetEvent(HX_U8 AdapterID, HX_U8 max, HX_U8* count, Event* events) {
    // The queue is nearly always empty, so look first: that writes nothing to the state file.
    bool empty = true;
    const HX_U8 status = hxsim::Look(
        __func__, AdapterID, [&](const hxsim::Adapter& adapter, hxsim::Time) -> hxcodes::Status {
            if (count == nullptr || events == nullptr) return hxcodes::Status::kNullAddress;
            empty = max == 0 || adapter.events.empty();
            if (empty) *count = 0;
            return hxcodes::Status::kSuccess;
        });
    if (status != hxcodes::Status::kSuccess || empty) return status;
    // No name: this is a further part of the same call, which faults have counted already.
    HX_U8 taken = 0;
    const HX_U8 changed = hxsim::Change(
        nullptr, AdapterID, [&](hxsim::Adapter& adapter, hxsim::Time) -> hxcodes::Status {
            taken = hxsim::Take(adapter, max, events);
            if (hxsim::IsHostile()) {
                hxsim::MakeRecordHostile(events, taken * sizeof *events);
                taken = UINT8_MAX;  // more than there was room for
            }
            return hxcodes::Status::kSuccess;
        });
    // When saving fails, the events stay in the queue and come again, so report none.
    *count = changed == hxcodes::Status::kSuccess ? taken : HX_U8{0};
    return changed;
}
