// Whether the rows of a record cover its members. A list of rows that forgets one does not compile.
//
// A row says in kWidth how many bytes of its record it shows or fills. Records have no unnamed
// gaps, so that the widths of the rows and of the members that are left out by name add up to the
// record.
#pragma once

#include <cstddef>

// Never defined: a list of rows that comes to call it does not compile, and the compiler's message
// names the reason.
void RowsAndMembersDifferInWidth();

/// The members that rows leave out: reserved ones, and others for a reason.
template <class R>
struct LeftOut {
    static constexpr std::size_t kNotCounted = static_cast<std::size_t>(-1);
    std::size_t bytes;
};

template <class R, class... T>
consteval LeftOut<R> Without(T R::*...) {
    return {(sizeof(T) + ... + 0)};
}

/// For rows that cover a part of their record on purpose.
template <class R>
consteval LeftOut<R> PartOf() {
    return {LeftOut<R>::kNotCounted};
}

template <class R, class... Row>
consteval void CheckThatRowsCover(LeftOut<R> left_out) {
    if (left_out.bytes == LeftOut<R>::kNotCounted) return;
    if ((left_out.bytes + ... + Row::kWidth) != sizeof(R)) RowsAndMembersDifferInWidth();
}
