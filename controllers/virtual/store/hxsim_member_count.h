// How many members a plain struct has, so that the compiler notices a member without a column.
#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

namespace hxsim {

/// Stands for the value of any member in an expression that is never evaluated.
struct AnyMember {
    template <class Value>
    requires(!std::is_reference_v<Value>) operator Value() const;
};

template <class Row, std::size_t... i>
consteval bool TakesMembers(std::index_sequence<i...>) {
    return requires { Row{(static_cast<void>(i), AnyMember{})...}; };
}

/// The number of values with which the aggregate can be initialised: its members, and 1 for each
/// base. Members are no arrays.
template <class Row, std::size_t count = 1>
consteval std::size_t MemberCount() {
    if constexpr (TakesMembers<Row>(std::make_index_sequence<count>())) {
        return MemberCount<Row, count + 1>();
    } else {
        return count - 1;
    }
}

/// The same with the members of its one base, which stand first.
template <class Row, class Base>
consteval std::size_t MemberCountWith() {
    static_assert(std::is_base_of_v<Base, Row>);
    return MemberCount<Row>() - 1 + MemberCount<Base>();
}

}  // namespace hxsim
