#include "model/event_store_file.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "common/read_file.h"
#include "model/library_session.h"

namespace vexorctl {

namespace {

constexpr char kDefaultPath[] = "/opt/kestrel/raid/db/vx_hx_raid.ev";
constexpr std::string_view kPathSetting = "EventLogConfig.Filename";

// What an event file begins with, and how long it is at least.
constexpr std::string_view kMagic = "Ombra Event File v0.1";
constexpr std::size_t kHeadSize = 112;

// No event file is larger: 65535 entries and a spare slot of 192 bytes behind 512.
constexpr std::size_t kMostBytes = 512 + std::size_t{65536} * 192;

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string NotThere(const std::string& path) {
    const std::string folder = FolderOf(path);
    struct stat status {};
    if (stat(folder.c_str(), &status) == 0) {
        return "no events have been stored yet: " + path +
               " is not there (No such file or directory); the event service makes it when it "
               "stores the first one";
    }
    const int reason = errno;
    return "the event store " + path + " has no folder: " + folder + ": " + std::strerror(reason) +
           (reason == ENOENT ? "; create it, as with install -d" : "");
}

}  // namespace

std::string EventStorePath() {
    std::string path;
    for (auto& [name, value] : ReadConfiguration()) {
        if (name == kPathSetting) path = std::move(value);
    }
    if (!path.empty()) return path;
    const char* const root = secure_getenv("VEXORAPI_ROOT");
    return std::string(root == nullptr ? "" : root) + kDefaultPath;
}

bool IsEventStoreThere(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

std::optional<std::string> WhyNoEventStore(const std::string& path) {
    std::string bytes;
    try {
        bytes = vexortools::ReadFile(path.c_str(), vexortools::FileKind::kRegular, kMostBytes);
    } catch (const vexortools::FileError& failure) {
        switch (failure.error) {
            case EFBIG:
                break;  // no reason why the library could not read it
            case ENOENT:
            case ENOTDIR:
                return NotThere(path);
            case EACCES:
                return "the event store " + path + " may not be read: " + failure.what() +
                       "; ask as its owner, or let your group read it";
            default:
                return "the event store " + path + " cannot be read: " + failure.what();
        }
        return std::nullopt;
    }
    if (bytes.size() >= kHeadSize && bytes.starts_with(kMagic)) return std::nullopt;
    return "the event store " + path + " is damaged: " +
           (bytes.size() < kHeadSize ? "it has " + std::to_string(bytes.size()) +
                                           " bytes, and its head " + std::to_string(kHeadSize)
                                     : "it does not begin with \"" + std::string(kMagic) + "\"") +
           "; move it aside, and the event service makes a new one";
}

}  // namespace vexorctl
