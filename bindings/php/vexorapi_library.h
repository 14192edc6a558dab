// The library in this process: initialised at the first call, called by one thread at a time.
#pragma once

#include <cstddef>

namespace vexorapi_php {

/// Holds every result, its NUL included.
inline constexpr std::size_t kResultSize = 524288;

/// Lets a child of fork() initialise the library anew. Called once, when the module is loaded.
/// Returns false when there is no memory for that.
bool PrepareForForks();

/// Carries out one command. Returns whether the library took it; then `result`, of kResultSize
/// bytes, is its text, and the empty one when it was lost.
bool Send(const char* command, char* result);

/// Ends the library where this process has used it.
void ShutDown();

}  // namespace vexorapi_php
