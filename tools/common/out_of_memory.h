// What a tool says when memory runs out where nothing can be caught: in static objects, which are
// made before main begins, in noexcept functions and in threads.
#pragma once

namespace vexortools {

inline constexpr char kOutOfMemory[] = "not enough memory";

/// Ends the program with Exit::kUnavailable and the sentence. Needs no memory.
[[noreturn]] void EndWithoutMemory() noexcept;

}  // namespace vexortools
