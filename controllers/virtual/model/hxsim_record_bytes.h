// Bytes of the interface's records that carry no information.
#pragma once

#include <cstring>

namespace hxsim {

/// Sets members to zero: reserved ones, and arrays before some of their entries are filled.
template <class... Member>
void SetZero(Member&... members) {
    (std::memset(&members, 0, sizeof members), ...);
}

}  // namespace hxsim
