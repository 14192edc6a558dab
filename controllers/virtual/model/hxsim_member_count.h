// Counts the members of a plain struct, so that the compiler notices a member missing in a list.
#pragma once

#include <cstddef>
#include <type_traits>

#include "model/hxsim_machine.h"

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

/// The number of values that initialise the aggregate, by bisection between two bounds: one for
/// each member, for each element of an array, and for a base.
template <class Row, std::size_t least = 0, std::size_t most = sizeof(Row) + 1>
consteval std::size_t MemberCount() {
    constexpr std::size_t middle = (least + most + 1) / 2;
    if constexpr (least == most) {
        return least;
    } else if constexpr (TakesMembers<Row>(std::make_index_sequence<middle>())) {
        return MemberCount<Row, middle, most>();
    } else {
        return MemberCount<Row, least, middle - 1>();
    }
}

/// The number of members of a row of the machine, including those of its Attachment base.
template <class Row>
consteval std::size_t RowMembers() {
    if constexpr (std::is_base_of_v<Attachment, Row> && !std::is_same_v<Attachment, Row>) {
        return MemberCount<Row>() - 1 + MemberCount<Attachment>();
    } else {
        return MemberCount<Row>();
    }
}

}  // namespace hxsim
