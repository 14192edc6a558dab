#include "service/hxs_watch.h"

#include <algorithm>
#include <string>
#include <utility>

#include "conditions/hxc_rows.h"
#include "conditions/hxc_text.h"

namespace hxservice {

namespace {

namespace hxc = hxconditions;

// "raised: [critical] VD_NO_REDUNDANCY: DATA (a0/vd0) has no redundancy left: ...".
std::string LineOf(const hxc::Message& message) {
    std::string line(hxc::NameOf(message.change));
    if (message.was) line += ", was " + std::string(hxc::RowOf(*message.was).name);
    if (message.change == hxc::Change::kCleared || message.change == hxc::Change::kPassed) {
        line += " after " + hxc::DurationText(message.lasted_s);
    }
    if (!message.reason.empty()) line += ", " + message.reason;
    const hxc::Condition& condition = message.condition;
    return line + ": [" + std::string(hxc::NameOf(condition.level)) + "] " +
           std::string(hxc::RowOf(condition.code).name) + ": " + condition.sentence;
}

}  // namespace

Watch::Watch(Log& log, hxc::State state) : log_(log) { look_.state = std::move(state); }

void Watch::Look(const hxc::Answers& answers, const std::vector<hxc::Event>& events,
                 const hxc::Now& now, const hxc::Settings& settings) {
    look_ = hxc::LookAt(std::move(look_.state), answers, events, now, settings);
    counts_ = hxc::CountsOf(answers);
    for (const hxc::Message& message : look_.messages) log_.Say(LineOf(message));
}

bool Watch::IsPending() const {
    return std::ranges::any_of(look_.state.held, [](const hxc::Held& held) {
        const bool rises = !held.is_shown && !held.is_stale && held.looks != 0 &&
                           hxc::RowOf(held.found.code).needs != hxc::Needs::kEvents;
        return rises || held.good_since.has_value();
    });
}

}  // namespace hxservice
