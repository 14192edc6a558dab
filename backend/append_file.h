// How both logs put a message into a file: opened, appended to with one write, closed.
#pragma once

#include <cstdarg>
#include <cstddef>

#include "descriptor.h"
#include "heap_block.h"

/// Opens `path` for appending (created with mode 0600); the result is closed when that fails.
///
/// What OpenGuarded refuses counts as unopenable: what is neither a file nor a character device,
/// and what another user may have put in the log's place. Opening never waits. The descriptor is
/// close-on-exec.
[[nodiscard]] Descriptor OpenForAppend(const char* path);

/// Creates `path` with mode 0600, or empties it. What OpenForAppend would not open stays unchanged.
/// Failure is silent.
void TruncateFile(const char* path);

/// Appends `length` bytes, in one write where the file system takes them at once. The rest is
/// dropped when the disk is full or when writing would block.
void AppendBytes(int descriptor, const char* bytes, std::size_t length);

/// Formats into a heap block of the text's own size, so that no message is ever cut.
///
/// Returns the number of characters and sets `text`, NUL-terminated, or returns -1 with `text` null
/// when there is no memory or the format cannot be carried out.
[[gnu::format(printf, 2, 0)]] int FormatWhole(HeapBlock<char>& text, const char* fmt,
                                              std::va_list args);
