#include "model/tape_run.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <string_view>

#include "common/read_file.h"
#include "descriptor.h"
#include "model/controller_choice.h"
#include "model/exit_code.h"
#include "model/failure.h"

namespace vexorctl {

namespace {

constexpr char kLibraryFolder[] = "/vexorapi/tape";  // beside libvexorapi
constexpr char kLibraryFile[] = "/libhxraid.so";

std::string NewKey() {
    std::array<char, 16> bytes{};
    if (getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
        throw Failure(Exit::kUnavailable, "the system has no random key for the pseudonyms");
    }
    return hxtape::HexOf({bytes.data(), bytes.size()});
}

// The text of a file of the run; empty when it was not made.
std::string RunText(const std::string& path) {
    try {
        return vexortools::ReadFile(path.c_str(), vexortools::FileKind::kRegular, hxtape::kMaxTape);
    } catch (const vexortools::FileError& error) {
        if (error.error == ENOENT) return {};
        throw Failure(Exit::kUnavailable, path + ": " + error.what());
    }
}

[[noreturn]] void FailAt(const std::string& path, int error) {
    const Exit exit = error == EACCES || error == EPERM ? Exit::kNotPermitted : Exit::kUsage;
    throw Failure(exit, path + ": " + std::strerror(error));
}

// Of what stands at the path only a regular file or a link is replaced, and the new one is never
// written through a link.
// Anything but a file or a link is not replaced.
void RefuseUnlessFile(const std::string& path) {
    struct stat found {};
    if (lstat(path.c_str(), &found) != 0 || S_ISREG(found.st_mode) || S_ISLNK(found.st_mode))
        return;
    throw Failure(Exit::kUsage, path + ": not a regular file");
}

}  // namespace

void MakeTape(const std::string& path, bool anonymous) {
    Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file.IsOpen() && errno == EEXIST) {
        throw Failure(Exit::kUsage, path + " is there already; --force replaces it");
    }
    if (!file.IsOpen()) FailAt(path, errno);
    const std::string head = hxtape::HeadText(std::time(nullptr), anonymous);
    const ssize_t count = write(file.Get(), head.data(), head.size());
    if (count != static_cast<ssize_t>(head.size()) || !file.Close()) {
        throw Failure(Exit::kUnavailable, path + ": " + std::strerror(count < 0 ? errno : ENOSPC));
    }
}

NewTape::NewTape(std::string path, bool anonymous, bool replace)
    : place_(std::move(path)), file_(replace ? place_ + "." + std::to_string(getpid()) : place_) {
    if (replace) RefuseUnlessFile(place_);
    MakeTape(file_, anonymous);
}

NewTape::~NewTape() {
    if (!is_kept_) unlink(file_.c_str());
}

void NewTape::Keep() {
    if (file_ != place_ && rename(file_.c_str(), place_.c_str()) != 0) FailAt(place_, errno);
    is_kept_ = true;
}

hxtape::Tape LoadTape(const std::string& path) {
    try {
        return hxtape::ReadTape(path);
    } catch (const hxtape::TapeError& error) {
        throw Failure(Exit::kUsage, path + ": " + error.what());
    }
}

TapeRun::TapeRun() : controller_(UsedController()) {
    library_ = FolderAround(FileOf("vexorApi")) + kLibraryFolder;
    const std::string file = library_ + kLibraryFile;
    if (access(file.c_str(), R_OK) != 0) {
        throw Failure(Exit::kUnavailable, file + ": " + std::strerror(errno));
    }
    if (controller_.empty() || std::filesystem::equivalent(controller_, file)) {
        throw Failure(Exit::kUsage, "this vexorctl runs over a tape itself");
    }
    folder_ = (std::filesystem::temp_directory_path() / "vexorctl-tape-XXXXXX").string();
    if (mkdtemp(folder_.data()) == nullptr) {
        throw Failure(Exit::kUnavailable, folder_ + ": " + std::strerror(errno));
    }
}

TapeRun::~TapeRun() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

Variables TapeRun::Recording(const std::string& tape, bool anonymous) const {
    return {{"LD_LIBRARY_PATH", library_},
            {kControllerChoice, ""},
            {hxtape::kRecordVariable, std::filesystem::absolute(tape).string()},
            {hxtape::kControllerVariable, controller_},
            {hxtape::kKeyVariable, anonymous ? NewKey() : ""},
            {hxtape::kReplayVariable, ""},
            {hxtape::kFolderVariable, folder_}};
}

Variables TapeRun::Replaying(const std::string& tape) const {
    return {{"LD_LIBRARY_PATH", library_},
            {kControllerChoice, ""},
            {hxtape::kReplayVariable, std::filesystem::absolute(tape).string()},
            {hxtape::kRecordVariable, ""},
            {hxtape::kControllerVariable, ""},
            {hxtape::kFolderVariable, folder_}};
}

std::string TapeRun::Trouble() const {
    const std::string text = RunText(folder_ + hxtape::kTroubleFile);
    return text.substr(0, text.find('\n'));
}

std::vector<std::string> TapeRun::Missed() const {
    const std::string text = RunText(folder_ + hxtape::kMissedFile);
    std::vector<std::string> lines;
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t end = rest.find('\n');
        lines.emplace_back(rest.substr(0, end));
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return lines;
}

bool TapeRun::WasPlayed() const {
    return std::filesystem::exists(folder_ + hxtape::kPositionsFile) ||
           std::filesystem::exists(folder_ + hxtape::kMissedFile);
}

}  // namespace vexorctl
