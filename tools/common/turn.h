// A lock that lets one tool at a time check and change an object. Without it two tools could both
// check first and then both act on outdated results.
#pragma once

#include <chrono>

namespace vexortools {

/// The lock; released by the destructor or the end of the process.
class Turn {
public:
    /// Waits for other tools, at most for `patience`.
    explicit Turn(std::chrono::milliseconds patience);
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    /// False when another tool still holds the lock. True where no file can be locked.
    bool IsOurs() const { return is_ours_; }

private:
    int lock_;  // -1: no file to lock
    bool is_ours_ = true;
};

}  // namespace vexortools
