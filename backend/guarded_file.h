// How every file is opened that the library writes, so that no other user of the machine chooses
// which one it is: the library is loaded by root, and its paths can lead through folders of others.
#pragma once

#include <sys/types.h>

#include <cstdint>

#include "descriptor.h"

/// What is asked about a file before it is written.
struct FileStatus {
    mode_t mode = 0;
    uid_t owner = 0;
    std::uint32_t links = 0;
};

/// A file that has been opened, and what it is.
struct GuardedFile {
    Descriptor file;  // closed when the file could not be opened or is refused
    FileStatus status;
};

/// Opens `path` with the access and O_ flags of `flags`; with O_CREAT it is made with `mode`.
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
/// What is opened is what was checked: links are read by descriptor, and the file is looked at when
/// it is open.
[[nodiscard]] GuardedFile OpenGuarded(const char* path, int flags, mode_t mode);
