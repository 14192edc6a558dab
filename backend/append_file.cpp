// Log files are opened so that a wrongly configured name does no harm.
#include "append_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <utility>

namespace {

// Logs can hold commands with passwords: they are created for their owner alone.
constexpr mode_t kLogMode = 0600;

// Opening must not wait for the other end of a FIFO, and a terminal must not become the process's
// own. Nothing is ever truncated by opening: only fstat tells what was opened.
constexpr int kLogFlags = O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

struct OpenedLog {
    Descriptor file;
    bool regular = false;  // a file, not a character device
};

OpenedLog OpenLog(const char* path, int access_flags) {
    Descriptor file(open(path, access_flags | kLogFlags, kLogMode));
    struct stat status;
    if (!file.IsOpen() || fstat(file.Get(), &status) != 0) return {};
    if (S_ISREG(status.st_mode)) return {std::move(file), true};
    if (S_ISCHR(status.st_mode)) return {std::move(file), false};
    return {};
}

}  // namespace

Descriptor OpenForAppend(const char* path) { return OpenLog(path, O_RDWR | O_APPEND).file; }

void TruncateFile(const char* path) {
    const OpenedLog log = OpenLog(path, O_WRONLY);
    // A file that cannot be emptied keeps its text, and messages are appended behind it.
    [[maybe_unused]] const bool emptied = log.regular && ftruncate(log.file.Get(), 0) == 0;
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
    // After a failure the pointer is not ours to free: its value is undefined.
    text.reset(length < 0 ? nullptr : formatted);
    return length < 0 ? -1 : length;
}
