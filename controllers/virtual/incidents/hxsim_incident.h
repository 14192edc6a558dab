// Incidents that happen to a machine from outside: disks are pulled, parts break.
#pragma once

#include <string>

namespace hxsim {

/// Whether an incident happened; if not, a sentence that says why and what to do instead.
struct Outcome {
    std::string refusal;  // empty: it happened
    explicit operator bool() const { return refusal.empty(); }
};

}  // namespace hxsim
