#include "service/hxs_lock.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>

#include "common/failure.h"

namespace hxservice {

namespace {

// A record lock, not flock: the kernel names its holder and forgets it with the process.
struct flock Request(short type) {
    struct flock request {};
    request.l_type = type;
    request.l_whence = SEEK_SET;
    return request;
}

std::string NameOf(pid_t process) {
    return process == 0 ? "a process outside of this container"
                        : "process " + std::to_string(process);
}

}  // namespace

Lock::Lock(const std::string& path)
    : file_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY | O_NONBLOCK,
                 0644)) {
    using vexortools::Exit;
    using vexortools::Failure;
    if (!file_.IsOpen()) {
        throw Failure(Exit::kUnavailable,
                      path + " cannot be opened: " + std::strerror(errno) +
                          "; the service needs it to be the only one, and root to write it");
    }
    struct flock request = Request(F_WRLCK);
    if (fcntl(file_.Get(), F_SETLK, &request) == 0) return;
    const int error = errno;
    if (error != EACCES && error != EAGAIN) {
        throw Failure(Exit::kUnavailable,
                      path + " cannot be locked: " + std::strerror(error) +
                          "; the folder must be on a file system that has locks");
    }
    const std::optional<pid_t> holder = HolderOf(path);
    throw Failure(Exit::kUnavailable,
                  "another hxraidsvc runs already: " +
                      (holder ? NameOf(*holder) : std::string("a process that has just ended")) +
                      " holds " + path + ". Only one may take the controllers' events.");
}

std::optional<pid_t> HolderOf(const std::string& path) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (!file.IsOpen()) return std::nullopt;
    struct flock request = Request(F_RDLCK);
    if (fcntl(file.Get(), F_GETLK, &request) != 0 || request.l_type == F_UNLCK) {
        return std::nullopt;
    }
    return request.l_pid;
}

}  // namespace hxservice
