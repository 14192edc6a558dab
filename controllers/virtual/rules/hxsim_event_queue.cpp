// The queue of events: the rules and calls fill it, callers fetch from it.
#include "rules/hxsim_event_queue.h"

#include <algorithm>

#include "hxraid.h"
#include "model/hxsim_record_bytes.h"

namespace hxsim {
namespace {

HX_U32 SecondsOf(Time now) {
    return static_cast<HX_U32>(std::clamp<Time>(now / 1000, 0, UINT32_MAX));
}

bool TellsOfLoss(const Event& event) { return hxcodes::KindOf(event) == EventKind::kEventError; }

// Drops the oldest events until one more fits beside the row that reports the loss. That row takes
// their place and the number of the last of them, so that numbers continue without a gap and never
// repeat.
void MakeRoom(Adapter& adapter, Time now) {
    std::vector<QueuedEvent>& queue = adapter.events;
    if (queue.size() < kMostEvents) return;
    const bool told_before = TellsOfLoss(queue.front().event);
    HX_U32 lost = told_before ? queue.front().event.Params[2] : 0;
    const std::size_t dropped = queue.size() - kMostEvents + 2;  // room for the new event and the
                                                                 // report
    lost += static_cast<HX_U32>(told_before ? dropped - 1 : dropped);
    const HX_U32 number = queue[dropped - 1].number;
    queue.erase(queue.begin(), queue.begin() + static_cast<std::ptrdiff_t>(dropped - 1));
    queue.front().number = number;
    Describe(adapter.id, now, EventKind::kEventError, adapter.id, number, {0, 0, lost, 0}, {},
             queue.front().event);
}

}  // namespace

void Queue(Adapter& adapter, Time now, EventKind kind, HX_U16 device, std::array<HX_U32, 4> params,
           std::string_view text) {
    MakeRoom(adapter, now);
    QueuedEvent& queued = adapter.events.emplace_back();
    queued.number = adapter.next_event++;
    Describe(adapter.id, now, kind, device, queued.number, params, text, queued.event);
}

void Describe(HX_U8 adapter, Time now, EventKind kind, HX_U16 device, HX_U32 number,
              std::array<HX_U32, 4> params, std::string_view text, Event& event) {
    text = text.substr(0, sizeof event.SenseData);
    event.Class = ClassOf(kind);
    event.Code = CodeOf(kind);
    event.Severity = NumberOf(SeverityOf(kind, params[0]));
    event.TimeStamp = SecondsOf(now);
    event.DeviceID = device;
    event.AdapterID = adapter;
    event.SequenceNo = number;
    std::ranges::copy(params, event.Params);
    event.SenseDataLength = static_cast<HX_U8>(text.size());
    SetZero(event.Reserved2, event.SenseData);
    std::ranges::copy(text, event.SenseData);
}

HX_U8 Take(Adapter& adapter, HX_U8 max, Event* events) {
    const auto count = static_cast<HX_U8>(std::min<std::size_t>(adapter.events.size(), max));
    for (HX_U8 i = 0; i < count; ++i) events[i] = adapter.events[i].event;
    adapter.events.erase(adapter.events.begin(), adapter.events.begin() + count);
    return count;
}

}  // namespace hxsim
