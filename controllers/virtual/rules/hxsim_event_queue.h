// The queue of events that the machine reports to callers.
#pragma once

#include <array>
#include <string_view>

#include "model/hxsim_machine.h"

namespace hxsim {

/// Queues an event. A full queue drops its oldest events and reports that with one
/// EventKind::kEventError, whose Params[2] is the number of events lost since the last fetched
/// event.
void Queue(Adapter& adapter, Time now, EventKind kind, HX_U16 device,
           std::array<HX_U32, 4> params = {}, std::string_view text = {});

/// Writes every byte of an event's record.
void Describe(HX_U8 adapter, Time now, EventKind kind, HX_U16 device, HX_U32 number,
              std::array<HX_U32, 4> params, std::string_view text, Event& event);

/// Moves the oldest events, at most `max`, from the queue to `events`. Returns their number.
HX_U8 Take(Adapter& adapter, HX_U8 max, Event* events);

}  // namespace hxsim
