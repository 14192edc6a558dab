#include "model/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace vexorctl {

namespace {

constexpr std::size_t kPiece = 65536;

class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ > STDIN_FILENO) close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int number() const { return number_; }

private:
    int number_;
};

int Open(const char* path, FileKind kind) {
    if (kind == FileKind::kAny) {
        if (std::strcmp(path, "-") == 0) return STDIN_FILENO;
        return open(path, O_RDONLY | O_CLOEXEC);
    }
    return open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
}

}  // namespace

FileError::FileError(int number) : FileError(number, std::strerror(number)) {}

FileError::FileError(int number, const char* reason) : std::runtime_error(reason), error(number) {}

std::string ReadFile(const char* path, FileKind kind, std::size_t limit) {
    const Descriptor file(Open(path, kind));
    if (file.number() < 0) throw FileError(errno);
    if (kind == FileKind::kRegular) {
        struct stat status;
        if (fstat(file.number(), &status) != 0) throw FileError(errno);
        if (S_ISDIR(status.st_mode)) throw FileError(EISDIR);
        if (!S_ISREG(status.st_mode)) throw FileError(EINVAL, "Not a regular file");
    }
    std::string bytes;
    for (;;) {
        const std::size_t filled = bytes.size();
        bytes.resize(filled + kPiece);
        ssize_t count;
        do {
            count = read(file.number(), bytes.data() + filled, kPiece);
        } while (count < 0 && errno == EINTR);
        if (count < 0) throw FileError(errno);
        bytes.resize(filled + static_cast<std::size_t>(count));
        if (bytes.size() > limit) throw FileError(EFBIG);
        if (count == 0) return bytes;
    }
}

}  // namespace vexorctl
