// How the small files that steer the library are read: without ever waiting, and with a limit.
#pragma once

#include <cstddef>

/// Opens `path` for reading, or returns -1. Anything but a regular file counts as unopenable, and
/// opening never waits. The descriptor is close-on-exec and belongs to the caller.
[[nodiscard]] int OpenForRead(const char* path);

/// Reads the next `size` bytes into `buf`. Returns how many there were: fewer at the end of the
/// file or at an error, which counts as the end.
[[nodiscard]] std::size_t ReadBytes(int descriptor, char* buf, std::size_t size);
