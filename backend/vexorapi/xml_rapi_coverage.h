// Checks that the rows of a record cover its members: a list of rows without one of them does not
// compile.
//
// kWidth of a row is the number of bytes of its record that it shows or fills. Records have no
// unnamed gaps, so the widths of the rows and of the members left out by name must add up to the
// record.
#pragma once

#include <cstddef>

// Never defined: a faulty list of rows calls it and does not compile, and the compiler's message
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
