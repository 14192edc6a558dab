#include "input_file.h"

#include <cstdint>

#include "common/read_file.h"
#include "failure.h"

namespace hxsimctl {

std::string ReadInput(const std::string& path, const std::string& otherwise) {
    try {
        return vexortools::ReadFile(path.c_str(), vexortools::FileKind::kAny, SIZE_MAX);
    } catch (const vexortools::FileError& error) {
        throw UsageError(path + ": cannot be read: " + error.what() + "; " + otherwise);
    }
}

}  // namespace hxsimctl
