// The alarm of an adapter and its causes.
#include "rules/hxsim_alarm.h"

#include <algorithm>

#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

bool IsWrong(const Element& element) {
    return element.status == ElementStatus::kCritical ||
           element.status == ElementStatus::kUnrecoverable;
}

}  // namespace

bool CausesAlarm(State state) { return state == State::kDegraded || state == State::kOffline; }

void UpdateAlarm(Adapter& adapter, bool new_cause) {
    const bool cause =
        std::ranges::any_of(adapter.virtual_disks,
                            [](const VirtualDisk& each) { return CausesAlarm(each.state); }) ||
        std::ranges::any_of(adapter.elements, IsWrong);
    if (!cause || new_cause) adapter.muted = false;
    adapter.alarm =
        cause && !adapter.muted && adapter.info.AlarmSupport != 0 && adapter.config.AlarmOn != 0;
}

}  // namespace hxsim
