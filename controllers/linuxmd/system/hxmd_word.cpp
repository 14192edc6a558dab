// Writing of attributes.
#include "system/hxmd_word.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "descriptor.h"
#include "root_path.h"

namespace hxmd {

int WriteWord(const std::string& attribute, const std::string& word) {
    char path[kRootPathSize];
    if (RootPath(path, ("/sys/block/" + attribute).c_str()) == nullptr) return ENAMETOOLONG;
    Descriptor file(open(path, O_WRONLY | O_TRUNC | O_CLOEXEC | O_NOCTTY));
    if (!file.IsOpen()) return errno;
    // An attribute takes the whole word in one write, or refuses it.
    const ssize_t bytes = write(file.Get(), word.data(), word.size());
    if (bytes < 0) return errno;
    return static_cast<std::size_t>(bytes) == word.size() ? 0 : EIO;
}

}  // namespace hxmd
