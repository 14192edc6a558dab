// What has happened while a scenario runs, and what a step of it is.
#pragma once

#include <functional>
#include <vector>

#include "driver.h"

namespace hxsimctl {

class Story {
public:
    explicit Story(Driver& driver);

    Driver& driver() { return driver_; }

    struct Seen {
        Event event{};
        bool expected = false;  // by an earlier step
    };

    /// Every event since the beginning, also those that have left their adapter's queue.
    std::vector<Seen>& Events();

    /// Notes an event that a step has taken off the queue.
    void Keep(const Event& event);

private:
    void KeepLoss(const Event& event);

    Driver& driver_;
    std::vector<HX_U32> next_;  // number of each adapter's first event that has not been noted
    std::vector<Seen> events_;
};

/// What a step does.
using Step = std::function<void(Story&)>;

}  // namespace hxsimctl
