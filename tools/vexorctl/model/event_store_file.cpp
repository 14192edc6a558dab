#include "model/event_store_file.h"

#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <thread>

#include "common/read_file.h"
#include "model/library_session.h"

namespace vexorctl {

namespace {

constexpr char kDefaultPath[] = "/opt/kestrel/raid/db/vx_hx_raid.ev";
constexpr std::string_view kPathSetting = "EventLogConfig.Filename";

using State = hxconditions::Store::State;

// What an event file begins with, and how long its head is.
constexpr std::string_view kMagic = "Ombra Event File v0.1";
constexpr std::size_t kHeadSize = 112;

// The numbers of the head, little-endian, by their places.
constexpr std::size_t kCount = 32;     // valid entries
constexpr std::size_t kCapacity = 36;  // most valid entries; the ring has one slot more
constexpr std::size_t kStart = 40;     // the slot of the oldest entry
constexpr std::size_t kEnd = 44;       // the slot of the next one

// A file that is just being made is empty for a moment.
constexpr int kMostLooks = 3;
constexpr std::chrono::milliseconds kPause(50);

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string NotThere(const std::string& path) {
    const std::string folder = FolderOf(path);
    struct stat status {};
    if (stat(folder.c_str(), &status) == 0) {
        return "the event store " + path +
               " is not there (No such file or directory): no events have been stored yet, or it "
               "was removed; the event service makes it when it stores an event";
    }
    const int reason = errno;
    return "the event store " + path + " has no folder: " + folder + ": " + std::strerror(reason) +
           (reason == ENOENT ? "; create it, as with install -d" : "");
}

// What the file shows, and the errno of what keeps it from being read.
struct Sight {
    State state = State::kNotLooked;
    std::string reason;
    int error = 0;
};

std::uint64_t NumberAt(const std::string& head, std::size_t place) {
    std::uint64_t number = 0;
    for (std::size_t byte = sizeof(std::uint32_t); byte-- > 0;) {
        number = number << 8 | static_cast<unsigned char>(head[place + byte]);
    }
    return number;
}

// Whether the ring can hold what the head says that it holds.
bool IsExtentValid(const std::string& head) {
    const std::uint64_t capacity = NumberAt(head, kCapacity);
    const std::uint64_t start = NumberAt(head, kStart);
    const std::uint64_t count = NumberAt(head, kCount);
    if (capacity == 0 || count > capacity || start > capacity) return false;
    return (start + count) % (capacity + 1) == NumberAt(head, kEnd);
}

Sight LookOnce(const std::string& path) {
    std::string head;
    try {
        head = vexortools::ReadBeginning(path.c_str(), kHeadSize);
    } catch (const vexortools::FileError& failure) {
        const bool missing = failure.error == ENOENT || failure.error == ENOTDIR;
        return {missing ? State::kNotLooked : State::kUnreadable, failure.what(), failure.error};
    }
    if (head.size() < kHeadSize) {
        return {State::kDamaged, "it has " + std::to_string(head.size()) + " bytes, and its head " +
                                     std::to_string(kHeadSize)};
    }
    if (!head.starts_with(kMagic)) {
        return {State::kDamaged, "it does not begin with \"" + std::string(kMagic) + "\""};
    }
    if (!IsExtentValid(head)) {
        return {State::kDamaged, "its head tells of events that it cannot hold"};
    }
    return {State::kGood, ""};
}

Sight LookAt(const std::string& path) {
    Sight sight = LookOnce(path);
    for (int tried = 1; tried < kMostLooks && sight.state == State::kDamaged; ++tried) {
        std::this_thread::sleep_for(kPause);
        sight = LookOnce(path);
    }
    return sight;
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

hxconditions::Store LookAtEventStore() {
    hxconditions::Store store;
    store.path = EventStorePath();
    store.folder = FolderOf(store.path);
    const Sight sight = LookAt(store.path);
    store.state = sight.state;
    store.reason = sight.reason;
    store.is_there = sight.state != State::kNotLooked;
    return store;
}

std::optional<std::string> WhyNoEventStore(const std::string& path) {
    const Sight sight = LookAt(path);
    switch (sight.state) {
        case State::kGood:
        case State::kNotWritable:
            break;
        case State::kNotLooked:
            return NotThere(path);
        case State::kUnreadable:
            if (sight.error != EACCES) {
                return "the event store " + path + " cannot be read: " + sight.reason;
            }
            return "the event store " + path + " may not be read: " + sight.reason +
                   "; ask as its owner, or let your group read it";
        case State::kDamaged:
            return "the event store " + path + " is damaged: " + sight.reason +
                   "; move it aside, and the event service makes a new one";
    }
    return std::nullopt;
}

}  // namespace vexorctl
