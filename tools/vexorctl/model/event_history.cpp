#include "model/event_history.h"

#include <algorithm>
#include <cstdint>

#include "library_fields.h"
#include "model/controller_codes.h"
#include "model/event_store.h"
#include "model/failure.h"
#include "model/library_record.h"

namespace vexorctl {

History ReadHistory(Controller& controller) {
    History history;
    const Extent extent = AskExtent(controller);
    Timeline timeline(extent.first != 0);
    std::uint64_t at_once = kEventsPerPage;
    for (std::uint64_t next = extent.first; next < extent.next;) {
        const std::uint64_t count = std::min(at_once, extent.next - next);
        const std::vector<StoredEvent> events = ReadEvents(controller, next, count, at_once);
        next += count;
        for (const StoredEvent& each : events) {
            // Of a store whose oldest were overwritten meanwhile, more may have come.
            next = std::max(next, each.sequence + 1);
            const auto time = each.record[fields::Event::TimeStamp];
            if (!each.facts || !time || !each.object) continue;
            const Happening event{.number = each.sequence,
                                  .facts = *each.facts,
                                  .time = *time,
                                  .object = *each.object};
            timeline.Take(event);
            history.initialised.Take(event);
        }
    }
    history.periods = timeline.Periods();
    return history;
}

History KnownHistory(Controller& controller) {
    if (!controller.codes().AreKnown()) return {};
    const std::size_t faults = controller.faults().size();
    const Exit exit = controller.exit();
    History history;
    try {
        history = ReadHistory(controller);
    } catch (const Failure&) {
        // No event service collects events here, or they may not be read.
    }
    controller.TakeBack(faults, exit);
    return history;
}

}  // namespace vexorctl
