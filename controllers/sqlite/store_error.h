// The exception for a state file that cannot be used.
#pragma once

#include <stdexcept>

namespace hxsqlite {

/// The state file cannot be used; what() is one sentence that names the file and says what to do.
struct StoreError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace hxsqlite
