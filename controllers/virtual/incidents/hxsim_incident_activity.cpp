// Incidents of background activities.
#include "incidents/hxsim_incident_activity.h"

#include <string>

#include "model/hxsim_activity_row.h"

namespace hxsim {

Outcome StallActivity(Adapter& adapter, Time now, HX_U16 virtual_disk) {
    // In sectors a second: no percent of any disk in a year, and still one that ends.
    constexpr std::uint64_t kStalled = 1;
    for (Activity& activity : adapter.activities) {
        if (activity.of != Owner::kVirtualDisk || activity.owner != virtual_disk) continue;
        if (activity.state != ActivityState::kRunning) continue;
        activity.done = Done(activity, now);
        activity.since = now;
        activity.speed = kStalled;
        return {};
    }
    return {"Nothing runs on virtual disk " + std::to_string(virtual_disk) +
            "; hxsimctl show lists what runs."};
}

}  // namespace hxsim
