// The background activities, with how fast they go by what earlier looks saw.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "conditions/hxc_answers.h"
#include "conditions/hxc_object.h"

namespace hxservice {

struct RunningTask {
    hxconditions::Object object;
    hxconditions::Activity activity;
    std::int64_t first_seen = 0;  // seconds since 1970
    std::optional<double> percent_per_hour;
    std::optional<std::uint64_t> seconds_left;
};

class TaskHistory {
public:
    /// Takes up one look. The activities of lists that could not be read are not among Running, and
    /// what was seen of them is kept.
    void Take(const hxconditions::Answers& answers, const hxconditions::Now& now);

    /// What the last look saw: virtual disks, disk groups and disks of one adapter after the other.
    const std::vector<RunningTask>& Running() const { return running_; }

private:
    struct Step {
        std::int64_t boot = 0;
        unsigned percent = 0;
    };
    struct Seen {
        std::string adapter{};
        unsigned kind = 0;
        unsigned state = 0;
        std::int64_t first_seen = 0;
        std::int64_t look = 0;
        std::deque<Step> steps{};  // one for each percent that was reached while it ran
    };

    void TakeOne(const hxconditions::Object& object,
                 const std::optional<hxconditions::Activity>& activity,
                 const hxconditions::Now& now);

    std::map<std::string, Seen> seen_;  // by the object's identity
    std::vector<RunningTask> running_;
    std::string boot_id_;
    std::int64_t looks_ = 0;
};

}  // namespace hxservice
