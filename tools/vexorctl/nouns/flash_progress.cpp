#include "nouns/flash_progress.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "common/terminal_text.h"
#include "output/progress_bar.h"
#include "shell/interrupt.h"

namespace vexorctl {

namespace {

constexpr auto kLook = std::chrono::milliseconds(50);

// The position of a descriptor of this process, in bytes.
std::optional<std::uint64_t> PositionOf(const char* descriptor) {
    const std::string path = std::string("/proc/self/fdinfo/") + descriptor;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "re"),
                                                               &std::fclose);
    unsigned long long position = 0;
    if (!file || std::fscanf(file.get(), "pos: %llu", &position) != 1) return std::nullopt;
    return position;
}

// The position at which this process has the file open, in bytes; null when it is not open.
std::optional<std::uint64_t> PositionIn(const std::string& path) {
    struct stat wanted {};
    if (stat(path.c_str(), &wanted) != 0) return std::nullopt;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir("/proc/self/fd"), &closedir);
    if (!folder) return std::nullopt;
    while (const dirent* const entry = readdir(folder.get())) {
        struct stat status {};
        if (fstatat(dirfd(folder.get()), entry->d_name, &status, 0) != 0) continue;
        if (status.st_dev == wanted.st_dev && status.st_ino == wanted.st_ino) {
            return PositionOf(entry->d_name);
        }
    }
    return std::nullopt;
}

std::string ProgressText(const std::string& label, std::uint64_t bytes, std::uint64_t pieces) {
    const std::uint64_t done = (bytes + kFlashPieceBytes - 1) / kFlashPieceBytes;
    if (pieces == 0)
        return kClearLine + vexortools::Printable(label) + " piece " + std::to_string(done);
    return BarText(label, 100 * done / pieces) + " piece " + std::to_string(done) + " of " +
           std::to_string(pieces);
}

}  // namespace

struct TransferProgress::Watcher {
    Watcher(std::string what, std::string file, std::uint64_t count)
        : label(std::move(what)), path(std::move(file)), pieces(count) {}

    std::string label;
    std::string path;
    std::uint64_t pieces;
    std::mutex lock;
    std::condition_variable wake;
    bool over = false;
    std::thread thread;

    void Watch() {
        std::unique_lock<std::mutex> held(lock);
        while (!wake.wait_for(held, kLook, [this] { return over; })) {
            const auto position = PositionIn(path);
            if (!position) continue;
            const std::string text = ProgressText(label, *position, pieces);
            std::fwrite(text.data(), 1, text.size(), stderr);
        }
        std::fputs(kClearLine, stderr);
    }
};

TransferProgress::TransferProgress(std::string label, std::string path, std::uint64_t pieces) {
    WatchForInterrupts();
    if (isatty(STDERR_FILENO) != 1) return;
    watcher_ = std::make_unique<Watcher>(std::move(label), std::move(path), pieces);
    watcher_->thread = std::thread([this] { watcher_->Watch(); });
}

TransferProgress::~TransferProgress() {
    if (!watcher_) return;
    {
        const std::lock_guard<std::mutex> held(watcher_->lock);
        watcher_->over = true;
    }
    watcher_->wake.notify_one();
    watcher_->thread.join();
}

}  // namespace vexorctl
