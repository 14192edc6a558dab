// Reading of regular files by descriptor.
#include "read_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

Descriptor OpenForRead(const char* path) {
    // Without O_NONBLOCK, opening a FIFO would wait for a writer.
    Descriptor file(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file.IsOpen()) return file;
    struct stat status;
    if (fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) file.Close();
    return file;
}

std::size_t ReadBytes(int descriptor, char* buf, std::size_t size) {
    std::size_t total = 0;
    while (total < size) {
        const ssize_t bytes = read(descriptor, buf + total, size - total);
        if (bytes < 0 && errno == EINTR) continue;
        if (bytes <= 0) break;
        total += static_cast<std::size_t>(bytes);
    }
    return total;
}
