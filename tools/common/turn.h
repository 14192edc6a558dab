// One tool at a time between its second look at what it changes and the end of its act. Without
// that, two of them could both look and then both act on what they have seen.
#pragma once

#include <chrono>

namespace vexortools {

/// Held until it is destroyed, or until its process ends in whatever way.
class Turn {
public:
    /// Waits for the others, at most so long.
    explicit Turn(std::chrono::milliseconds patience);
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    /// False when somebody else still has it. Where there is nothing that can be locked, nobody has
    /// it: it is true.
    bool IsOurs() const { return is_ours_; }

private:
    int lock_;  // -1: there is nothing to lock
    bool is_ours_ = true;
};

}  // namespace vexortools
