// The program's functions come before the C library's, for the libraries that it loads, too.
#undef _FILE_OFFSET_BITS  // every name is defined here by itself
#undef _TIME_BITS
#include "write_recorder.h"

#include <dlfcn.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

bool recording = false;
std::string watched;
std::vector<RecordedWrite> writes;

template <class Function>
Function* Next(const char* name) {
    void* const address = dlsym(RTLD_NEXT, name);
    Function* function;
    std::memcpy(&function, &address, sizeof function);
    return function;
}

std::string PathOf(int file) {
    char path[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t length = readlink(link.c_str(), path, sizeof path);
    return length <= 0 ? std::string() : std::string(path, static_cast<std::size_t>(length));
}

void Note(int file, std::size_t offset, const void* bytes, std::size_t size, bool is_length) {
    if (!recording) return;
    recording = false;  // noting writes nothing, and allocates
    const std::string path = PathOf(file);
    if (path.starts_with(watched)) {
        writes.push_back({path, offset, {static_cast<const char*>(bytes), size}, is_length});
    }
    recording = true;
}

}  // namespace

extern "C" {
ssize_t pwrite(int file, const void* bytes, size_t size, off_t at) {
    static auto* const next = Next<ssize_t(int, const void*, size_t, off_t)>("pwrite");
    Note(file, static_cast<std::size_t>(at), bytes, size, false);
    return next(file, bytes, size, at);
}
ssize_t pwrite64(int file, const void* bytes, size_t size, off64_t at) {
    static auto* const next = Next<ssize_t(int, const void*, size_t, off64_t)>("pwrite64");
    Note(file, static_cast<std::size_t>(at), bytes, size, false);
    return next(file, bytes, size, at);
}
int ftruncate(int file, off_t size) noexcept {
    static auto* const next = Next<int(int, off_t)>("ftruncate");
    Note(file, static_cast<std::size_t>(size), "", 0, true);
    return next(file, size);
}
int ftruncate64(int file, off64_t size) noexcept {
    static auto* const next = Next<int(int, off64_t)>("ftruncate64");
    Note(file, static_cast<std::size_t>(size), "", 0, true);
    return next(file, size);
}
}

void StartRecording(const std::string& folder) {
    writes.clear();
    watched = folder;
    recording = true;
}

std::vector<RecordedWrite> StopRecording() {
    recording = false;
    return std::exchange(writes, {});
}

void Apply(FileSet& files, const RecordedWrite& write, std::size_t length) {
    std::string& file = files[write.path];
    if (write.is_length) {
        file.resize(write.offset);
        return;
    }
    const std::size_t end = write.offset + std::min(length, write.bytes.size());
    file.resize(std::max<std::size_t>(file.size(), end));
    file.replace(write.offset, end - write.offset, write.bytes, 0, end - write.offset);
}
