// Reads whole files.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

/// A file cannot be read; what() is the system's reason.
struct FileError : std::runtime_error {
    explicit FileError(int error);
    int error;  // the errno, or 0 when the file is larger than allowed
};

enum class FileKind { kAny, kRegular };

/// Returns all bytes of the file at `path`, or of standard input when the path is "-" and any kind
/// will do. Opening a file that must be a regular one never waits (a FIFO would). Throws FileError,
/// also when the file holds more than `limit` bytes.
std::string ReadFile(const char* path, FileKind kind, std::size_t limit);
