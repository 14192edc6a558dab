#include "common/read_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "descriptor.h"

namespace vexortools {

namespace {

constexpr std::size_t kPiece = 65536;

Descriptor Open(const char* path, FileKind kind) {
    const int unless_it_waits = kind == FileKind::kRegular ? O_NONBLOCK : 0;
    Descriptor file(open(path, O_RDONLY | O_CLOEXEC | unless_it_waits));
    if (!file.IsOpen()) throw FileError(errno);
    if (kind == FileKind::kAny) return file;
    struct stat status;
    if (fstat(file.Get(), &status) != 0) throw FileError(errno);
    if (S_ISDIR(status.st_mode)) throw FileError(EISDIR);
    if (!S_ISREG(status.st_mode)) throw FileError(EINVAL, "Not a regular file");
    return file;
}

// Appends at most `most` bytes. Returns how many; 0 at the end of the file.
std::size_t Append(std::string& bytes, int descriptor, std::size_t most) {
    const std::size_t filled = bytes.size();
    bytes.resize(filled + most);
    ssize_t count;
    do {
        count = read(descriptor, bytes.data() + filled, most);
    } while (count < 0 && errno == EINTR);
    if (count < 0) throw FileError(errno);
    bytes.resize(filled + static_cast<std::size_t>(count));
    return static_cast<std::size_t>(count);
}

std::string ReadAll(int descriptor, std::size_t limit) {
    std::string bytes;
    while (Append(bytes, descriptor, kPiece) != 0) {
        if (bytes.size() > limit) throw FileError(EFBIG);
    }
    return bytes;
}

}  // namespace

FileError::FileError(int number) : FileError(number, std::strerror(number)) {}

FileError::FileError(int number, const char* reason) : std::runtime_error(reason), error(number) {}

std::string ReadFile(const char* path, FileKind kind, std::size_t limit) {
    // Standard input stays open, since the user may be asked a question later.
    if (kind == FileKind::kAny && std::strcmp(path, "-") == 0) return ReadAll(STDIN_FILENO, limit);
    return ReadAll(Open(path, kind).Get(), limit);
}

std::string ReadBeginning(const char* path, std::size_t most) {
    const Descriptor file = Open(path, FileKind::kRegular);
    std::string bytes;
    while (bytes.size() < most && Append(bytes, file.Get(), most - bytes.size()) != 0) {
    }
    return bytes;
}

}  // namespace vexortools
