// The events during a scenario's run, and the type of its steps.
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
        bool expected = false;  // matched by an earlier step
    };

    /// Every event since the start, including those that have left their adapter's queue.
    std::vector<Seen>& Events();

    /// Stores an event that a step has fetched from the queue.
    void Keep(const Event& event);

private:
    void KeepLoss(const Event& event);

    Driver& driver_;
    std::vector<HX_U32> next_;  // for each adapter the number of the next event to store
    std::vector<Seen> events_;
};

/// The action of a step.
using Step = std::function<void(Story&)>;

}  // namespace hxsimctl
