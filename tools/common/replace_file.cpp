#include "common/replace_file.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "descriptor.h"

namespace vexortools {

namespace {

constexpr mode_t kPermissions = 07777;

bool WriteAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t count = write(descriptor, content.data(), content.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        content.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

Descriptor OpenToWrite(const std::string& path, int flags = 0) {
    Descriptor file(open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY | flags, 0600));
    if (!file.IsOpen()) throw FileError(errno);
    return file;
}

mode_t Umask() {
    const mode_t mask = umask(0);
    umask(mask);
    return mask;
}

// Finds the file or link at the path itself, without following a link. Anything else, such as a
// device, is not replaced: throws.
bool FindFile(const std::string& path, struct stat& found) {
    if (lstat(path.c_str(), &found) != 0) {
        if (errno != ENOENT) throw FileError(errno);
        return false;
    }
    if (S_ISDIR(found.st_mode)) throw FileError(EISDIR);
    if (!S_ISREG(found.st_mode) && !S_ISLNK(found.st_mode)) {
        throw FileError(EINVAL, "Not a regular file");
    }
    return S_ISREG(found.st_mode);
}

// Renames; with kKeep without replacing anything. On file systems without such a rename the check
// comes first, and another process may create the file in between.
void Rename(const std::string& from, const std::string& to, Existing existing) {
    if (existing == Existing::kKeep) {
        if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return;
        if (errno != EINVAL && errno != ENOSYS) throw FileError(errno);
        if (access(to.c_str(), F_OK) == 0) throw FileError(EEXIST);
    }
    if (std::rename(from.c_str(), to.c_str()) != 0) throw FileError(errno);
}

// A rename is durable once its folder is synced. An unreadable folder cannot be synced.
void SyncFolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const Descriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.IsOpen()) fsync(opened.Get());
}

}  // namespace

NewFile::NewFile(const std::string& path) : place_(path) {
    // In the same folder, because rename works only within a file system.
    const std::size_t slash = path.rfind('/');
    folder_ = path.substr(0, slash == std::string::npos ? 0 : slash + 1) + ".new-XXXXXX";
    if (mkdtemp(folder_.data()) == nullptr) throw FileError(errno);
    file_ = folder_ + "/file";
    try {
        OpenToWrite(file_, O_CREAT | O_EXCL);
    } catch (const FileError&) {
        rmdir(folder_.c_str());
        throw;
    }
}

NewFile::~NewFile() {
    unlink(file_.c_str());
    rmdir(folder_.c_str());
}

bool NewFile::Reserve(std::uint64_t bytes) const {
    // The process's limit of file sizes applies to writing but not to this kind of reservation, so
    // check it here.
    rlimit limit{};
    if (getrlimit(RLIMIT_FSIZE, &limit) == 0 && bytes > limit.rlim_cur) throw FileError(EFBIG);
    const Descriptor file = OpenToWrite(file_, O_TRUNC);
    if (fallocate(file.Get(), FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(bytes)) == 0) return true;
    if (errno == EOPNOTSUPP || errno == ENOSYS) return false;
    throw FileError(errno);
}

std::uint64_t NewFile::Size() const {
    struct stat status;
    if (lstat(file_.c_str(), &status) != 0) throw FileError(errno);
    return static_cast<std::uint64_t>(status.st_size);
}

void NewFile::Put(Existing existing, mode_t mode) const {
    struct stat old;
    const bool replaces = FindFile(place_, old);
    if (replaces && existing == Existing::kKeep) throw FileError(EEXIST);
    Descriptor file = OpenToWrite(file_);
    // Release reserved space that was not needed.
    if (ftruncate(file.Get(), static_cast<off_t>(Size())) != 0) throw FileError(errno);
    mode_t wanted = mode & ~Umask();
    if (replaces) {
        wanted = old.st_mode & kPermissions;
        // If the owner cannot be changed, drop the group's and others' permissions, which would
        // apply to other users.
        if (fchown(file.Get(), old.st_uid, old.st_gid) != 0) wanted &= S_IRWXU;
    }
    if (fchmod(file.Get(), wanted) != 0 || fsync(file.Get()) != 0 || !file.Close()) {
        throw FileError(errno);
    }
    Rename(file_, place_, existing);
    SyncFolderOf(place_);
}

void ReplaceFile(const std::string& path, std::string_view content, mode_t mode) {
    const NewFile file(path);
    Descriptor opened = OpenToWrite(file.Path());
    if (!WriteAll(opened.Get(), content) || !opened.Close()) throw FileError(errno);
    if (file.Size() != content.size()) throw FileError(EIO);
    file.Put(Existing::kReplace, mode);
}

}  // namespace vexortools
