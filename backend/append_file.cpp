// Log files are opened so that a wrongly configured name does no harm.
#include "append_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "guarded_file.h"

namespace {

// Logs can contain commands with passwords, so only their owner may read them.
constexpr mode_t kLogMode = 0600;

}  // namespace

Descriptor OpenForAppend(const char* path) {
    return OpenGuarded(path, O_RDWR | O_CREAT | O_APPEND, kLogMode).file;
}

void TruncateFile(const char* path) {
    const GuardedFile log = OpenGuarded(path, O_WRONLY | O_CREAT, kLogMode);
    // If truncation fails, the file keeps its text and messages are appended to it. Devices have
    // nothing to truncate.
    [[maybe_unused]] const bool emptied = log.file.IsOpen() && ftruncate(log.file.Get(), 0) == 0;
}

void AppendBytes(int descriptor, const char* bytes, std::size_t length) {
    while (length > 0) {
        const ssize_t written = write(descriptor, bytes, length);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        bytes += written;
        length -= static_cast<std::size_t>(written);
    }
}

int FormatWhole(HeapBlock<char>& text, const char* fmt, std::va_list args) {
    char* formatted = nullptr;
    const int length = vasprintf(&formatted, fmt, args);
    // After a failure the pointer is undefined and must not be freed.
    text.reset(length < 0 ? nullptr : formatted);
    return length < 0 ? -1 : length;
}
