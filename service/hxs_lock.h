// The lock that makes the service the only one on its machine: two check-ins at once would
// overwrite each other's events.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "descriptor.h"

namespace hxservice {

/// Held until the destructor or the end of the process.
class Lock {
public:
    /// Throws vexortools::Failure with Exit::kUnavailable: another process holds the lock, which
    /// what() names, or the file cannot be opened.
    explicit Lock(const std::string& path);

private:
    Descriptor file_;
};

/// The process that holds the lock; null when none does or the file cannot be read. Takes no lock
/// itself, so that it never keeps a service from starting. Not for the process that holds it, which
/// would lose the lock by closing the file. 0 for a process that is not visible from
/// here, such as one of the host seen from a container.
std::optional<pid_t> HolderOf(const std::string& path);

}  // namespace hxservice
