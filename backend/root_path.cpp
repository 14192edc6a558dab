// The one function that builds every fixed path.
#include "root_path.h"

#include <cstdlib>
#include <cstring>

const char* RootPath(char* out, std::size_t size, const char* path) {
    const char* const root = secure_getenv("VEXORAPI_ROOT");
    const std::size_t root_length = root == nullptr ? 0 : std::strlen(root);
    const std::size_t path_length = std::strlen(path);
    if (root_length >= size || path_length >= size - root_length) {
        *out = '\0';
        return nullptr;
    }
    if (root_length != 0) std::memcpy(out, root, root_length);
    std::memcpy(out + root_length, path, path_length + 1);
    return out;
}
