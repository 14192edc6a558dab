#include "common/turn.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <thread>

#include "descriptor.h"

namespace vexortools {

namespace {

// Only root can open it, so that no other user can block root. Processes that cannot write there
// work with the virtual controller and lock the program's own file, which everybody can open.
constexpr char kLockFile[] = "/run/vexorctl.lock";
constexpr char kProgramFile[] = "/proc/self/exe";

constexpr std::chrono::milliseconds kPause{10};

int OpenLock() {
    const char* const root = secure_getenv("VEXORAPI_ROOT");
    const std::string path = std::string(root == nullptr ? "" : root) + kLockFile;
    Descriptor lock(open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY, 0600));
    if (!lock.IsOpen()) lock = Descriptor(open(kProgramFile, O_RDONLY | O_CLOEXEC));
    return lock.Release();
}

}  // namespace

Turn::Turn(std::chrono::milliseconds patience) : lock_(OpenLock()) {
    if (lock_ < 0) return;
    const auto end = std::chrono::steady_clock::now() + patience;
    while (flock(lock_, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR) continue;
        if (errno != EWOULDBLOCK) return;  // a file system without locks
        is_ours_ = std::chrono::steady_clock::now() < end;
        if (!is_ours_) return;
        std::this_thread::sleep_for(kPause);
    }
}

Turn::~Turn() {
    if (lock_ >= 0) close(lock_);
}

}  // namespace vexortools
