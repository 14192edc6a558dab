// How tasks have ended that the controller does not list any more.
#pragma once

#include <cstdint>
#include <span>

#include "model/ask_controller.h"
#include "model/exit_code.h"
#include "model/tasks.h"

namespace vexorctl {

class TaskEnds {
public:
    /// To be made before the tasks are asked for: what events told until then is of earlier ones.
    explicit TaskEnds(Controller& controller);

    /// Tells of each that has not done what it was started for: aborted, failed, a check that has
    /// found errors, a virtual disk that is lost, or not optimal after its rebuild. Where a service
    /// collects events, it waits until that has had time to store those of the end; else only what
    /// the virtual disks are is known.
    Exit Tell(std::span<const Task> gone) const;

private:
    Controller& controller_;
    std::uint64_t first_event_ = 0;
};

}  // namespace vexorctl
