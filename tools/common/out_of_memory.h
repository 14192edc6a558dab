// Reports that memory has run out where no exception can be caught: in static objects, which are
// initialised before main, in noexcept functions and in threads.
#pragma once

namespace vexortools {

inline constexpr char kOutOfMemory[] = "not enough memory";

/// Ends the program with Exit::kUnavailable and the message. Allocates nothing.
[[noreturn]] void EndWithoutMemory() noexcept;

}  // namespace vexortools
