// How the small files that steer the library are read: without ever waiting, and with a limit.
#pragma once

#include <cstddef>

#include "descriptor.h"

/// Opens `path` for reading; the result is closed when that fails. Anything but a regular file
/// counts as unopenable, and opening never waits. The descriptor is close-on-exec.
[[nodiscard]] Descriptor OpenForRead(const char* path);

/// Reads the next `size` bytes into `buf`. Returns how many there were: fewer at the end of the
/// file or at an error, which counts as the end.
[[nodiscard]] std::size_t ReadBytes(int descriptor, char* buf, std::size_t size);
