// A member of a row and its name in a state file or a document.
#pragma once

namespace hxlibrary {

template <class Class, class Value>
struct Column {
    const char* name;
    Value Class::*field;
};
template <class Class, class Value>
constexpr Column<Class, Value> Col(const char* name, Value Class::*field) {
    return {name, field};
}

}  // namespace hxlibrary
