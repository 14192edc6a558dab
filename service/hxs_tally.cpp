#include "service/hxs_tally.h"

#include <string_view>

#include "codes/event_class.h"
#include "codes/named.h"

namespace hxservice {

std::string ClassNameOf(const hxconditions::Event& event) {
    const std::string_view name = hxcodes::NameOf(hxcodes::kEventClassNames, event.event_class);
    return name.empty() ? std::to_string(event.event_class) : std::string(name);
}

void EventTally::Count(const StoredEvent& event) {
    ++counts_.told[{ClassNameOf(event.event), event.severity}];
    Remember(event);
}

void EventTally::Remember(const StoredEvent& event) {
    last_.push_back(event);
    if (last_.size() > kLastEvents) last_.pop_front();
}

}  // namespace hxservice
