// Whether a table has a row for every enumerator of its codes, decided by how the compiler spells a
// value: with a name or without.
#pragma once

#include "codes/named.h"

namespace hxcodes {

/// Whether each of the values is an enumerator: the compiler spells it by name, else as "(Type)7".
template <auto... values>
consteval auto AreEnumerators() {
    std::array<bool, sizeof...(values)> are{};
    const char* at = __PRETTY_FUNCTION__;
    while (*at != '=') ++at;
    at += 3;  // "= {" or "= <"
    for (bool& is : are) {
        is = *at != '(' && (*at < '0' || *at > '9');
        while (*at != ' ' && *at != '\0') ++at;
        if (*at == ' ') ++at;
    }
    return are;
}

/// Whether the rows are exactly the enumerators among `count` numbers from `first` on.
template <class Code, const auto& rows, HX_U32 first, std::size_t count>
consteval bool HasRowForEach() {
    constexpr auto are = []<std::size_t... i>(std::index_sequence<i...>) {
        return AreEnumerators<static_cast<Code>(first + i)...>();
    }
    (std::make_index_sequence<count>());
    for (std::size_t i = 0; i < count; ++i) {
        if (are[i] != HasCode(rows, first + i)) return false;
    }
    return true;
}
template <class Code, const auto& rows>
consteval bool IsComplete() {
    return HasRowForEach<Code, rows, 0, 256>();
}

/// The same for bits: 1, 2, 4, ....
template <class Code, const auto& rows>
consteval bool IsCompleteInBits() {
    constexpr auto are = []<std::size_t... i>(std::index_sequence<i...>) {
        return AreEnumerators<static_cast<Code>(1U << i)...>();
    }
    (std::make_index_sequence<8 * sizeof(Code)>());
    for (std::size_t i = 0; i < are.size(); ++i) {
        if (are[i] != HasCode(rows, 1U << i)) return false;
    }
    return true;
}

}  // namespace hxcodes
