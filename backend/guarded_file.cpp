// The guard: one call for a plain file without links, else a walk along the path.
#include "guarded_file.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <utility>

#include "root_path.h"

namespace {

// No terminal becomes the process's controlling terminal, and opening a FIFO does not wait.
constexpr int kAlways = O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

constexpr int kMostLinks = 40;  // as many as the kernel follows

bool IsTrusted(uid_t owner) { return owner == 0 || owner == geteuid(); }

// Whether another user can create or exchange files and links in the folder.
bool OthersMayWrite(const FileStatus& folder) {
    return !IsTrusted(folder.owner) || (folder.mode & (S_IWGRP | S_IWOTH)) != 0;
}

// Asks for no times: once they were queried, the next write would have to update them to the
// nanosecond through the file system's journal, which takes longer than the write itself.
bool Look(const Descriptor& file, FileStatus& status) {
    constexpr unsigned kAsked = STATX_TYPE | STATX_MODE | STATX_NLINK | STATX_UID;
    struct statx found;
    if (!file.IsOpen() || statx(file.Get(), "", AT_EMPTY_PATH, kAsked, &found) != 0) return false;
    if ((found.stx_mask & kAsked) != kAsked) return false;
    status = {.mode = found.stx_mode, .owner = found.stx_uid, .links = found.stx_nlink};
    return true;
}

bool IsWritableKind(const FileStatus& status) {
    return S_ISREG(status.mode) || S_ISCHR(status.mode);
}

// Opens a path without links to our own file with one name, which nobody can have exchanged,
// whatever the folders are. Nearly every path is like that, and one system call finds out.
GuardedFile OpenPlain(const char* path, int flags, mode_t mode) {
    open_how how{};
    how.flags = static_cast<unsigned>(flags | kAlways | O_LARGEFILE);
    how.mode = (flags & O_CREAT) != 0 ? mode : 0;
    how.resolve = RESOLVE_NO_SYMLINKS;
    GuardedFile opened;
    opened.file =
        Descriptor(static_cast<int>(syscall(SYS_openat2, AT_FDCWD, path, &how, sizeof how)));
    const bool plain = Look(opened.file, opened.status) && S_ISREG(opened.status.mode) &&
                       opened.status.links == 1 && IsTrusted(opened.status.owner);
    if (!plain) opened.file.Close();
    return opened;
}

// Walks a path name by name. The current folder is held open, so that its checks apply to the
// folder in which the next name is opened.
class Walk {
public:
    explicit Walk(const char* path) {
        const std::size_t length = std::strlen(path);
        if (length == 0 || length >= sizeof rest_) return;
        std::memcpy(rest_, path, length + 1);
        EnterStart();
    }

    GuardedFile Open(int flags, mode_t mode) {
        while (folder_.IsOpen()) {
            char name[kRootPathSize];
            const bool last = TakeName(name);
            if (last) {
                GuardedFile opened;
                opened.file = Descriptor(openat(folder_.Get(), name, flags | kAlways, mode));
                if (opened.file.IsOpen()) return Checked(std::move(opened));
                if (errno != ELOOP) return {};
            }
            if (!Step(name, last)) return {};
        }
        return {};
    }

private:
    // Enters the folder at which the rest of the path starts.
    void EnterStart() {
        Enter(Descriptor(open(rest_[0] == '/' ? "/" : ".", O_PATH | O_DIRECTORY | O_CLOEXEC)));
    }
    void Enter(Descriptor folder) {
        if (!Look(folder, folder_status_)) folder.Close();
        folder_ = std::move(folder);
    }

    // Removes the next name from the rest. Returns whether it is the last one. A path that ends in
    // a slash names no file: its last name is followed by an empty one, so it has no last name.
    bool TakeName(char (&name)[kRootPathSize]) {
        const char* const begin = rest_ + std::strspn(rest_, "/");
        const std::size_t length = std::strcspn(begin, "/");
        const bool last = begin[length] == '\0';
        std::memcpy(name, begin, length);
        name[length] = '\0';
        const char* const next = begin + length;
        std::copy(next, next + std::strlen(next) + 1, rest_);
        return last;
    }

    // Enters the folder of this name, or replaces a link by its target; the last name can only be a
    // link. Returns false when it is neither or the link must not be followed.
    bool Step(const char* name, bool last) {
        Descriptor next(openat(folder_.Get(), name, O_PATH | O_NOFOLLOW | O_CLOEXEC));
        FileStatus status;
        if (!Look(next, status)) return false;
        if (S_ISLNK(status.mode)) return Follow(next, status);
        if (last) return false;
        Enter(std::move(next));
        return true;
    }

    bool Follow(const Descriptor& link, const FileStatus& status) {
        if (!IsTrusted(status.owner) || OthersMayWrite(folder_status_)) return false;
        if (++links_ > kMostLinks) return false;
        char target[kRootPathSize];
        const ssize_t read = readlinkat(link.Get(), "", target, sizeof target);
        if (read <= 0) return false;
        const auto length = static_cast<std::size_t>(read);
        const std::size_t rest_length = std::strlen(rest_);
        // A target that fills its buffer may be truncated.
        if (length + rest_length >= sizeof rest_) return false;
        std::copy_backward(rest_, rest_ + rest_length + 1, rest_ + length + rest_length + 1);
        std::memcpy(rest_, target, length);
        if (rest_[0] == '/') EnterStart();
        return true;
    }

    GuardedFile Checked(GuardedFile opened) const {
        const FileStatus& status = opened.status;
        const bool shared = OthersMayWrite(folder_status_);
        const bool fine = Look(opened.file, opened.status) && IsWritableKind(status) &&
                          (IsTrusted(status.owner) || (!shared && status.links == 1)) &&
                          (!shared || status.links == 1);
        if (!fine) opened.file.Close();
        return opened;
    }

    char rest_[kRootPathSize];  // begins with a slash behind a folder that was entered
    Descriptor folder_;         // closed when the walk cannot continue
    FileStatus folder_status_;
    int links_ = 0;
};

}  // namespace

GuardedFile OpenGuarded(const char* path, int flags, mode_t mode) {
    GuardedFile plain = OpenPlain(path, flags, mode);
    return plain.file.IsOpen() ? std::move(plain) : Walk(path).Open(flags, mode);
}
