// A member of a row and the name that it has in texts: in the state file and in topologies.
#pragma once

namespace hxsim {

template <class Class, class Value>
struct Column {
    const char* name;
    Value Class::*field;
};
template <class Class, class Value>
constexpr Column<Class, Value> Col(const char* name, Value Class::*field) {
    return {name, field};
}

}  // namespace hxsim
