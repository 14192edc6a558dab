// The exception for a text that is no topology.
#pragma once

#include <stdexcept>

namespace hxsim {

/// The text is no topology; what() names the member and the value expected there.
struct TopologyError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace hxsim
