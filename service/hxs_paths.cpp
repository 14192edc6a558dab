#include "service/hxs_paths.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "common/failure.h"

namespace hxservice {

std::string UnderRoot(std::string_view path) {
    const char* const root = secure_getenv("VEXORAPI_ROOT");
    return std::string(root == nullptr ? "" : root).append(path);
}

void MakeBelowRoot(std::string_view path) {
    const std::string folder = UnderRoot(path);
    if (folder.size() == path.size()) return;
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) {
        throw vexortools::Failure(vexortools::Exit::kUnavailable,
                                  folder + " cannot be made: " + error.message());
    }
}

void RequireFolder(std::string_view path, MissingFolder missing) {
    using vexortools::Exit;
    using vexortools::Failure;
    const std::string folder = UnderRoot(path);
    if (missing == MissingFolder::kMakeBelowRoot) MakeBelowRoot(path);
    struct stat status {};
    if (stat(folder.c_str(), &status) != 0) {
        throw Failure(Exit::kUnavailable, folder + ": " + std::strerror(errno) +
                                              "; make it with: install -d -m 0755 " + folder);
    }
    if (!S_ISDIR(status.st_mode)) {
        throw Failure(Exit::kUnavailable, folder + " is no folder; move it aside and run: " +
                                              "install -d -m 0755 " + folder);
    }
}

}  // namespace hxservice
