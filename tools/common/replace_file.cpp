#include "common/replace_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "common/read_file.h"
#include "descriptor.h"

namespace vexortools {

namespace {

bool WriteAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t count = write(descriptor, content.data(), content.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        content.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

}  // namespace

void ReplaceFile(const std::string& path, std::string_view content) {
    // In the same folder: a file is renamed within one file system only.
    std::string temporary = path + ".XXXXXX";
    Descriptor file(mkostemp(temporary.data(), O_CLOEXEC));
    if (!file.IsOpen()) throw FileError(errno);
    const bool is_replaced = WriteAll(file.Get(), content) && fsync(file.Get()) == 0 &&
                             file.Close() && std::rename(temporary.c_str(), path.c_str()) == 0;
    if (is_replaced) return;
    const int error = errno;
    unlink(temporary.c_str());
    throw FileError(error);
}

}  // namespace vexortools
