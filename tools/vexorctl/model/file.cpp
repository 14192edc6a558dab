#include "model/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "descriptor.h"

namespace vexorctl {

namespace {

constexpr std::size_t kPiece = 65536;

Descriptor Open(const char* path, FileKind kind) {
    const int flags = O_RDONLY | O_CLOEXEC | (kind == FileKind::kRegular ? O_NONBLOCK : 0);
    return Descriptor(open(path, flags));
}

}  // namespace

FileError::FileError(int number) : FileError(number, std::strerror(number)) {}

FileError::FileError(int number, const char* reason) : std::runtime_error(reason), error(number) {}

std::string ReadFile(const char* path, FileKind kind, std::size_t limit) {
    // Standard input is not ours to close.
    const bool input = kind == FileKind::kAny && std::strcmp(path, "-") == 0;
    const Descriptor owned = input ? Descriptor() : Open(path, kind);
    const int file = input ? STDIN_FILENO : owned.Get();
    if (file < 0) throw FileError(errno);
    if (kind == FileKind::kRegular) {
        struct stat status;
        if (fstat(file, &status) != 0) throw FileError(errno);
        if (S_ISDIR(status.st_mode)) throw FileError(EISDIR);
        if (!S_ISREG(status.st_mode)) throw FileError(EINVAL, "Not a regular file");
    }
    std::string bytes;
    for (;;) {
        const std::size_t filled = bytes.size();
        bytes.resize(filled + kPiece);
        ssize_t count;
        do {
            count = read(file, bytes.data() + filled, kPiece);
        } while (count < 0 && errno == EINTR);
        if (count < 0) throw FileError(errno);
        bytes.resize(filled + static_cast<std::size_t>(count));
        if (bytes.size() > limit) throw FileError(EFBIG);
        if (count == 0) return bytes;
    }
}

}  // namespace vexorctl
