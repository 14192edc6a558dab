// The conditions of this machine, from one look to the next.
#pragma once

#include <vector>

#include "conditions/hxc_answers.h"
#include "conditions/hxc_look.h"
#include "conditions/hxc_overview.h"
#include "conditions/hxc_state.h"
#include "service/hxs_log.h"

namespace hxservice {

class Watch {
public:
    /// `state` is the state of the last look, maybe of an earlier process.
    Watch(Log& log, hxconditions::State state);

    /// Takes up what one look found, and tells in the log what has changed.
    void Look(const hxconditions::Answers& answers, const std::vector<hxconditions::Event>& events,
              const hxconditions::Now& now, const hxconditions::Settings& settings);

    /// What the last look found and told.
    const hxconditions::Look& Last() const { return look_; }
    /// To acknowledge and silence; the next look takes it up.
    hxconditions::State& Edit() { return look_.state; }
    const hxconditions::State& State() const { return look_.state; }
    const hxconditions::Overview& Overview() const { return look_.overview; }
    const hxconditions::Counts& Counts() const { return counts_; }

    /// Whether a condition only waits for its time to be raised or cleared, so that the next look
    /// should come soon.
    bool IsPending() const;

private:
    Log& log_;
    hxconditions::Look look_;
    hxconditions::Counts counts_;
};

}  // namespace hxservice
