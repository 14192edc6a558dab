#include "service/hxs_sink_trial.h"

#include <algorithm>

#include "common/failure.h"
#include "service/hxs_notice.h"

namespace hxservice {

namespace {

using SinkList = std::vector<SinkSettings>;

SinkList Chosen(const SinkList& sinks, const std::string& only) {
    if (sinks.empty()) {
        throw vexortools::UsageError(
            "the settings name no sink; hxraidsvc.conf(5) tells how to make one");
    }
    SinkList chosen;
    std::string names;
    for (const SinkSettings& sink : sinks) {
        if (only.empty() || sink.name == only) chosen.push_back(sink);
        names += (names.empty() ? "" : ", ") + sink.name;
    }
    if (chosen.empty()) {
        throw vexortools::UsageError("there is no sink " + vexortools::Quoted(only) +
                                     "; the settings name " + names);
    }
    return chosen;
}

}  // namespace

void TrySinks(const SinkList& sinks, const std::string& only, Deliverer& deliverer,
              Outside& outside, const std::function<void(const Trial&)>& tell) {
    SinkList waiting = Chosen(sinks, only);
    for (const SinkSettings& sink : waiting) {
        const Sending sending{.sink = sink.name, .host = HostName(), .at = outside.Clocks().real};
        deliverer.Start(sink, TestLetterOf(sending), outside.Now());
    }
    const auto finish = [&](const SinkSettings& sink, const std::string& error) {
        tell({sink.name, std::string(sink.kind ? NameOf(*sink.kind) : ""), error});
    };
    while (!waiting.empty()) {
        for (const Delivery& delivery : deliverer.TakeEnded(outside.Now())) {
            const auto sink = std::ranges::find(waiting, delivery.name, &SinkSettings::name);
            if (sink == waiting.end()) continue;
            finish(*sink, delivery.error.empty() ? "" : ReasonOf(delivery));
            waiting.erase(sink);
        }
        if (waiting.empty()) return;
        const Duration now = outside.Now();
        const Duration left = std::max(deliverer.Due().value_or(now) - now, Duration(0));
        if (outside.Wait(left) != Wake::kEnd) continue;
        for (const SinkSettings& sink : waiting) finish(sink, "interrupted");
        return;
    }
}

}  // namespace hxservice
