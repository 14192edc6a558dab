// What a sink is told after a look: changes, what it does not know yet, and repeats.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "conditions/hxc_look.h"
#include "service/hxs_delivery_queue.h"
#include "service/hxs_sink_settings.h"

namespace hxservice {

struct Telling {
    std::string key;
    std::string_view change;  // as NoticeText has it
    hxconditions::Message message;
};

/// What the sink is told after this look; `known` then has it. It depends on the look and the
/// arguments alone.
std::vector<Telling> TellingsFor(const SinkSettings& sink, std::map<std::string, Known>& known,
                                 const hxconditions::Look& look);

}  // namespace hxservice
