// Reads whole files.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace vexortools {

/// A file cannot be read; what() is the system's reason or ours.
struct FileError : std::runtime_error {
    explicit FileError(int number);  // an errno
    FileError(int number, const char* reason);
    int error;  // the best matching errno
};

enum class FileKind { kAny, kRegular };

/// Returns all bytes of the file at `path`, or of standard input for "-" with FileKind::kAny. With
/// kRegular, opening never waits (as it would for a FIFO). Throws FileError, with EFBIG when the
/// file has more than `limit` bytes.
std::string ReadFile(const char* path, FileKind kind, std::size_t limit);

/// Returns the first `most` bytes of the regular file at `path`, or all of a shorter one. Throws
/// FileError.
std::string ReadBeginning(const char* path, std::size_t most);

}  // namespace vexortools
