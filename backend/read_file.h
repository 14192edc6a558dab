// Reads the small files that configure the library: never waits, and reads at most a limit.
#pragma once

#include <cstddef>

#include "descriptor.h"

/// Opens `path` for reading; the result is closed on failure. Fails for anything but a regular
/// file, and never waits. The descriptor is close-on-exec.
[[nodiscard]] Descriptor OpenForRead(const char* path);

/// Reads the next `size` bytes into `buf`. Returns their number, which is smaller at the end of the
/// file or after an error.
[[nodiscard]] std::size_t ReadBytes(int descriptor, char* buf, std::size_t size);
