#include "story.h"

#include "codes/event.h"

namespace hxsimctl {

Story::Story(Driver& driver) : driver_(driver) {
    for (const hxsim::Adapter& adapter : driver.Current().adapters) {
        next_.push_back(adapter.next_event);
    }
}

void Story::Keep(const Event& event) {
    if (hxcodes::KindOf(event) == hxcodes::EventKind::kEventError) {
        return KeepLoss(event);
    }
    if (event.AdapterID >= next_.size() || event.SequenceNo < next_[event.AdapterID]) return;
    next_[event.AdapterID] = event.SequenceNo + 1;
    events_.push_back({event, false});
}

// A full queue replaces the events that it drops by a single one, which takes over the number of a
// dropped event and changes with every further loss. So the stored copy is replaced.
void Story::KeepLoss(const Event& event) {
    for (Seen& each : events_) {
        if (each.event.AdapterID != event.AdapterID || each.event.Class != event.Class ||
            each.event.Code != event.Code) {
            continue;
        }
        if (!each.expected || each.event.SequenceNo == event.SequenceNo) {
            each.event = event;
            return;
        }
    }
    events_.push_back({event, false});
}

std::vector<Story::Seen>& Story::Events() {
    for (const hxsim::Adapter& adapter : driver_.Current().adapters) {
        for (const hxsim::QueuedEvent& queued : adapter.events) Keep(queued.event);
    }
    return events_;
}

}  // namespace hxsimctl
