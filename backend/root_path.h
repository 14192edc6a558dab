// The fixed files are below the folder named by VEXORAPI_ROOT, so that tests, the demo and
// unprivileged users need not touch "/". An installed system does not set it.
#pragma once

#include <cstddef>

// Room for the longest path that the kernel takes, its NUL included.
inline constexpr std::size_t kRootPathSize = 4096;

/// Writes the root prefix followed by `path` (which begins with "/") into the `size` bytes at
/// `out`.
///
/// The prefix is read anew by secure_getenv, so a set-user-ID process never follows it. Returns
/// `out`, or null with `out` emptied when the path does not fit: a truncated path would name
/// another file.
[[nodiscard]] const char* RootPath(char* out, std::size_t size, const char* path);

/// RootPath into an array of any size.
template <std::size_t size>
[[nodiscard]] const char* RootPath(char (&out)[size], const char* path) {
    return RootPath(out, size, path);
}
