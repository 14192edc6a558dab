#include "model/controller_choice.h"

#include <dlfcn.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string_view>
#include <vector>

#include "common/read_file.h"
#include "model/failure.h"
#include "model/library_session.h"

namespace vexorctl {

namespace {

constexpr char kLibraryFile[] = "/libhxraid.so";
constexpr char kLoaderPath[] = "LD_LIBRARY_PATH";

// Tells the program that was started anew who has chosen, and that it is not to start again.
constexpr char kStarted[] = "VEXORCTL_CONTROLLER_BY";

constexpr std::size_t kMostArguments = std::size_t{4} << 20;  // bytes; the kernel's limit is lower

// Who has chosen the library over which this program was started anew; empty when it was not.
std::string chosen_by;

// Where a controller of ours is, from the folder of libvexorapi on: as packages install it, as
// CMake does, and in a build folder.
struct Place {
    std::string_view name;
    std::array<const char*, 3> folders;
};
constexpr Place kPlaces[] = {
    {"virtual", {"/vexorapi/virtual", "/vexorapi", ""}},
    {"linuxmd", {"/vexorapi/linuxmd", "/linuxmd", nullptr}},
};

// The file at the path, links resolved; empty when there is none.
std::string Resolved(const std::string& path) {
    std::array<char, PATH_MAX> resolved{};
    return realpath(path.c_str(), resolved.data()) == nullptr ? "" : resolved.data();
}

// A library of that name, of those that have it, which may be a link to another one.
bool IsOf(const Place& place, const std::string& file, const std::string& around) {
    if (!file.starts_with(around + "/")) return false;  // the vendor's, chosen as an alternative
    const std::string folder = FolderAround(file);
    return std::ranges::none_of(kPlaces, [&](const Place& other) {
        return other.name != place.name && folder.ends_with("/" + std::string(other.name));
    });
}

std::string FileNamed(const Place& place) {
    const std::string around = FolderAround(FileOf("vexorApi"));
    for (const char* const folder : place.folders) {
        if (folder == nullptr) continue;
        std::string file = Resolved(around + folder + kLibraryFile);
        if (!file.empty() && IsOf(place, file, around)) return file;
    }
    throw Unavailable("", "the controller " + std::string(place.name) +
                              " is not installed beside " + around + "/libvexorapi.so.1");
}

std::string FileAt(const std::string& path) {
    std::string file = Resolved(path);
    if (!file.ends_with(kLibraryFile) && !file.empty()) file = Resolved(path + kLibraryFile);
    if (file.empty()) {
        throw Unavailable(path, "there is no libhxraid.so");
    }
    return file;
}

std::string FileOfChoice(const std::string& name) {
    const auto* const place = std::ranges::find(kPlaces, name, &Place::name);
    if (place != std::end(kPlaces)) return FileNamed(*place);
    if (name.find('/') != std::string::npos) return FileAt(name);
    throw UsageError("there is no controller \"" + name +
                     "\"; say virtual, linuxmd, or the path of a libhxraid.so");
}

// The words with which this program was started.
std::vector<std::string> OwnWords() {
    const std::string text =
        vexortools::ReadFile("/proc/self/cmdline", vexortools::FileKind::kAny, kMostArguments);
    std::vector<std::string> words;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\0', start), text.size());
        words.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return words;
}

[[noreturn]] void StartOver(const std::string& file, const char* by) {
    const char* const before = std::getenv(kLoaderPath);
    std::string folders = FolderAround(file);
    if (before != nullptr && before[0] != '\0') folders.append(":").append(before);
    setenv(kLoaderPath, folders.c_str(), 1);
    setenv(kStarted, by, 1);
    std::vector<std::string> words = OwnWords();
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    execv("/proc/self/exe", pointers.data());
    throw Unavailable(file,
                      std::string("vexorctl cannot start anew over it: ") + std::strerror(errno));
}

}  // namespace

std::string FileOf(const char* function) {
    Dl_info info{};
    void* const address = dlsym(RTLD_DEFAULT, function);
    if (address == nullptr || dladdr(address, &info) == 0 || info.dli_fname == nullptr) return {};
    return Resolved(info.dli_fname);
}

std::string FolderAround(const std::string& path) { return path.substr(0, path.rfind('/')); }

std::string UsedController() { return FileOf("HX_API_Version"); }

std::string WhyThisController() {
    if (!chosen_by.empty()) return chosen_by;
    const char* const folders = secure_getenv(kLoaderPath);
    std::string_view left = folders == nullptr ? "" : folders;
    const std::string used = FolderAround(UsedController());
    while (!left.empty()) {
        const std::size_t end = std::min(left.find(':'), left.size());
        if (Resolved(std::string(left.substr(0, end))) == used) return kLoaderPath;
        left.remove_prefix(std::min(end + 1, left.size()));
    }
    return "loader";
}

void ChooseController(const std::string* named) {
    if (const char* const by = secure_getenv(kStarted)) chosen_by = by;
    unsetenv(kStarted);  // not for the programs that this one starts
    const char* const chosen = secure_getenv(kControllerChoice);
    if (named == nullptr && (chosen == nullptr || chosen[0] == '\0')) return;
    if (getauxval(AT_SECURE) != 0) {
        throw UsageError(
            "--controller is not taken by a program that runs with another user's rights");
    }
    const std::string file = FileOfChoice(named != nullptr ? *named : chosen);
    const std::string used = UsedController();
    if (used == file) return;
    if (!chosen_by.empty()) {
        throw Unavailable(file, "the loader takes " + used + " in its place");
    }
    StartOver(file, named != nullptr ? "--controller" : kControllerChoice);
}

}  // namespace vexorctl
