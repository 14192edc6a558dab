// How both logs write a message: open the file, append with one write, close.
#pragma once

#include <cstdarg>
#include <cstddef>

#include "descriptor.h"
#include "heap_block.h"

/// Opens `path` for appending, creating it with mode 0600; the result is closed on failure.
///
/// Fails for everything that OpenGuarded refuses: anything but a regular file or character device,
/// and anything that another user may have put in the log's place. Opening never waits. The
/// descriptor is close-on-exec.
[[nodiscard]] Descriptor OpenForAppend(const char* path);

/// Creates `path` with mode 0600, or empties it. A file that OpenForAppend would not open stays
/// unchanged. Failure is silent.
void TruncateFile(const char* path);

/// Appends `length` bytes, in one write where the file system takes them at once. The rest is
/// dropped when the disk is full or when writing would block.
void AppendBytes(int descriptor, const char* bytes, std::size_t length);

/// Formats into a heap block of the text's size, so that no message is ever truncated.
///
/// Returns the number of characters and sets `text`, NUL-terminated, or returns -1 with `text` null
/// when memory is missing or formatting fails.
[[gnu::format(printf, 2, 0)]] int FormatWhole(HeapBlock<char>& text, const char* fmt,
                                              std::va_list args);
