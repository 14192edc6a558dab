// The exception that the store throws when the state file cannot be used.
#pragma once

#include "sqlite/store_error.h"

namespace hxsim {

using hxsqlite::StoreError;

}  // namespace hxsim
