// Reports that memory has run out where no exception can be caught: in static objects, which are
// initialised before main, in noexcept functions and in threads.
#pragma once

namespace vexortools {

inline constexpr char kOutOfMemory[] = "not enough memory";

/// A command whose callers want another end than the program's: what it says on standard output,
/// and its exit code. `text` has to last. To be called before any static object is made.
void EndWithoutMemoryBy(const char* text, int code) noexcept;

/// Ends the program with Exit::kUnavailable and the message, or as EndWithoutMemoryBy has said.
/// Allocates nothing.
[[noreturn]] void EndWithoutMemory() noexcept;

}  // namespace vexortools
