// The limits of parsing a command or the configuration file. Anything beyond them is dropped or
// refused, so that it never overruns a record.
#pragma once

#include <cstddef>
#include <cstdint>

// The dotted path of the open elements and the text of one element, their NULs included. What does
// not fit is dropped.
inline constexpr std::size_t kPathSize = 2048;
inline constexpr std::size_t kTextSize = 2048;

// Levels below the root whose elements reach a function's handlers.
inline constexpr std::int32_t kHandledLevels = 3;

// A document type may declare this many items (entities, elements, attribute lists, notations); one
// that declares more is refused. Chains of thousands of entities overflow the stack of older
// expats.
inline constexpr std::uint32_t kMaxDeclarations = 256;
