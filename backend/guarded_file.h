// Opens every file that the library writes, such that no other user can redirect it to another
// file: the library is loaded by root, and its paths can lead through folders of other users.
#pragma once

#include <sys/types.h>

#include <cstdint>

#include "descriptor.h"

/// The properties of a file that are checked before it is written.
struct FileStatus {
    mode_t mode = 0;
    uid_t owner = 0;
    std::uint32_t links = 0;
};

/// An opened file and its properties.
struct GuardedFile {
    Descriptor file;  // closed when the file cannot be opened or is refused
    FileStatus status;
};

/// Opens `path` with the access and O_ flags of `flags`; with O_CREAT it is created with `mode`.
/// Opening never waits, never empties the file (pass no O_TRUNC) and never makes a terminal the
/// process's own; the descriptor is close-on-exec.
///
/// Refused, with nothing changed, are:
/// - everything but regular files and character devices;
/// - a symbolic link anywhere in the path that neither root nor the process's user owns;
/// - every symbolic link in a folder that others may write, which is one that another user owns or
///   that has group or world write permission;
/// - a file with several names (hard links) that neither root nor the process's user owns, or that
///   stands in a folder that others may write;
/// - a file of another user in a folder that others may write.
///
/// The opened file is the checked one: links are read by descriptor, and the file is checked after
/// opening.
[[nodiscard]] GuardedFile OpenGuarded(const char* path, int flags, mode_t mode);
