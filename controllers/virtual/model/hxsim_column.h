// A member of a row and its name in the state file and in topologies.
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
