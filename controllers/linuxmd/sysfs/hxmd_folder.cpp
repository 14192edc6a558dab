// Reading of folders by descriptor.
#include "sysfs/hxmd_folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>

#include "root_path.h"

namespace hxmd {
namespace {

struct CloseFolder {
    void operator()(DIR* folder) const { closedir(folder); }
};

Descriptor OpenFolder(int at, const char* path) {
    return Descriptor(openat(at, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

}  // namespace

Folder Folder::OfSystem(const char* path) {
    char full[kRootPathSize];
    if (RootPath(full, path) == nullptr) return {};
    return Folder(OpenFolder(AT_FDCWD, full));
}

Folder Folder::Open(const std::string& path) const {
    if (!IsOpen()) return {};
    return Folder(OpenFolder(folder_.Get(), path.c_str()));
}

std::optional<std::string> Folder::Read(const std::string& path, std::size_t most) const {
    if (!IsOpen()) return std::nullopt;
    // O_NONBLOCK: opening an unexpected FIFO would block.
    const Descriptor file(
        openat(folder_.Get(), path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat found {};
    if (!file.IsOpen() || fstat(file.Get(), &found) != 0 || !S_ISREG(found.st_mode)) {
        return std::nullopt;
    }
    std::string text;
    char piece[kMostBytes + 1];
    while (text.size() <= most) {
        const ssize_t bytes = read(file.Get(), piece, sizeof piece);
        if (bytes < 0 && errno == EINTR) continue;
        if (bytes < 0) return std::nullopt;
        if (bytes == 0) return text;
        text.append(piece, static_cast<std::size_t>(bytes));
    }
    return std::nullopt;
}

std::string Folder::Link(const std::string& path) const {
    if (!IsOpen()) return "";
    char target[kRootPathSize];
    const ssize_t size = readlinkat(folder_.Get(), path.c_str(), target, sizeof target);
    if (size <= 0 || static_cast<std::size_t>(size) == sizeof target) return "";
    return {target, static_cast<std::size_t>(size)};
}

bool Folder::Has(const std::string& path) const {
    struct stat found {};
    return IsOpen() && fstatat(folder_.Get(), path.c_str(), &found, 0) == 0;
}

std::vector<std::string> Folder::Names() const {
    std::vector<std::string> names;
    if (!IsOpen()) return names;
    // A separate descriptor, because the position in a folder belongs to the open file.
    Descriptor again = OpenFolder(folder_.Get(), ".");
    const std::unique_ptr<DIR, CloseFolder> folder(again.IsOpen() ? fdopendir(again.Get())
                                                                  : nullptr);
    if (folder == nullptr) return names;
    static_cast<void>(again.Release());  // closed with the folder
    while (names.size() < kMostEntries) {
        const dirent* const entry = readdir(folder.get());
        if (entry == nullptr) break;
        if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
    }
    std::ranges::sort(names);
    return names;
}

std::string LastPart(const std::string& path) { return path.substr(path.rfind('/') + 1); }

}  // namespace hxmd
