// What happens to a machine from outside: hands that pull disks, parts that break.
#pragma once

#include <string>

namespace hxsim {

/// Whether an incident happened; if not, why, as a sentence that says what to do instead.
struct Outcome {
    std::string refusal;  // empty: it happened
    explicit operator bool() const { return refusal.empty(); }
};

}  // namespace hxsim
