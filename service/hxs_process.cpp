#include "service/hxs_process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/epoll.h>
#include <sys/mman.h>  // IWYU pragma: keep (MFD_CLOEXEC comes from a header below it)
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <utility>

#include "common/failure.h"

namespace hxservice {

namespace {

using vexortools::Duration;
using File = ::Descriptor;

constexpr std::size_t kMostKept = 4096;
// A child that writes more is writing for ever; it then writes into a closed pipe.
constexpr std::size_t kMostOutput = std::size_t{1} << 20;
// Where the end of a child cannot be waited for, it is asked for so often.
constexpr Duration kAskedAfter = std::chrono::milliseconds(200);

std::string ErrorText(const std::string& what, int error) {
    return what + ": " + std::strerror(error);
}

// The whole input, so that nobody has to write while the child reads.
File InputOf(const std::string& text) {
    File file(memfd_create("alert", MFD_CLOEXEC));
    if (!file.IsOpen()) return file;
    std::string_view rest = text;
    while (!rest.empty()) {
        const ssize_t written = write(file.Get(), rest.data(), rest.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return {};
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
    if (lseek(file.Get(), 0, SEEK_SET) != 0) return {};
    return file;
}

std::vector<char*> Pointers(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    // posix_spawn takes them as char* and writes nothing.
    for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

// In a process group of its own, without the service's signal mask.
struct SpawnOptions {
    SpawnOptions() {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
    }
    ~SpawnOptions() {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
    }
    SpawnOptions(const SpawnOptions&) = delete;
    SpawnOptions& operator=(const SpawnOptions&) = delete;

    int Fill(int input, int output) {
        sigset_t none;
        sigset_t defaults;
        sigemptyset(&none);
        sigemptyset(&defaults);
        sigaddset(&defaults, SIGPIPE);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setsigdefault(&attributes, &defaults);
        posix_spawnattr_setpgroup(&attributes, 0);
        posix_spawnattr_setflags(
            &attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        int error = posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
        if (error == 0) error = posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
        if (error == 0) error = posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
        return error;
    }

    posix_spawn_file_actions_t actions{};
    posix_spawnattr_t attributes{};
};

std::string EndText(int status, bool was_killed, Duration limit) {
    if (was_killed) return "did not end within " + vexortools::DurationText(limit);
    if (WIFSIGNALED(status)) {
        return "ended by signal " + std::to_string(WTERMSIG(status));
    }
    const int code = WEXITSTATUS(status);
    return code == 0 ? "" : "ended with exit status " + std::to_string(code);
}

bool IsReady(int descriptor) {
    pollfd ready{descriptor, POLLIN, 0};
    return poll(&ready, 1, 0) == 1;
}

}  // namespace

struct Children::Child {
    std::string name;
    pid_t process = 0;
    File life;  // readable when it has ended
    File output;
    std::string text;
    Duration limit{0};
    Duration end{0};
    Duration asked{0};
    std::size_t written = 0;
    bool was_killed = false;
};

Children::Children() : events_(epoll_create1(EPOLL_CLOEXEC)) {
    if (!events_.IsOpen()) {
        throw vexortools::Failure(vexortools::Exit::kUnavailable,
                                  ErrorText("processes cannot be watched", errno));
    }
}

Children::~Children() {
    for (const auto& child : children_) {
        kill(-child->process, SIGKILL);
        while (waitpid(child->process, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
}

void Children::Start(const std::string& name, const Job& job, Duration now) {
    const auto refuse = [&](int error) {
        not_started_.push_back({name, false, ErrorText("cannot be started", error), ""});
    };
    auto child = std::make_unique<Child>();
    child->name = name;
    child->limit = job.limit;
    child->end = now + job.limit;
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return refuse(errno);
    child->output = File(ends[0]);
    const File writing(ends[1]);
    fcntl(child->output.Get(), F_SETFL, O_NONBLOCK);
    const File input = InputOf(job.input);
    if (!input.IsOpen()) return refuse(errno);
    SpawnOptions options;
    if (const int error = options.Fill(input.Get(), writing.Get())) return refuse(error);
    const std::vector<char*> words = Pointers(job.words);
    const std::vector<char*> environment = Pointers(job.environment);
    const int error = posix_spawn(&child->process, words[0], &options.actions, &options.attributes,
                                  words.data(), environment.data());
    if (error != 0) return refuse(error);
    child->life = File(static_cast<int>(syscall(SYS_pidfd_open, child->process, 0)));
    epoll_event event{};
    event.events = EPOLLIN;
    bool is_watched = child->life.IsOpen();
    for (const int each : {child->life.Get(), child->output.Get()}) {
        is_watched = is_watched && epoll_ctl(events_.Get(), EPOLL_CTL_ADD, each, &event) == 0;
    }
    if (!is_watched) child->life.Close();
    children_.push_back(std::move(child));
}

void Children::Read(Child& child) {
    std::array<char, 4096> bytes{};
    while (child.output.IsOpen()) {
        const ssize_t count = read(child.output.Get(), bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && errno == EAGAIN) return;
        child.written += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        if (count <= 0 || child.written > kMostOutput) {
            child.output.Close();
            return;
        }
        const std::size_t room = kMostKept - std::min(kMostKept, child.text.size());
        child.text.append(bytes.data(), std::min(room, static_cast<std::size_t>(count)));
    }
}

std::optional<JobEnd> Children::EndOf(Child& child, Duration now) {
    child.asked = now;
    if (!child.was_killed && now >= child.end) {
        child.was_killed = true;
        kill(-child.process, SIGKILL);
    }
    Read(child);
    if (child.life.IsOpen() && !child.was_killed && !IsReady(child.life.Get())) return std::nullopt;
    siginfo_t info{};
    const int seen =
        waitid(P_PID, static_cast<id_t>(child.process), &info, WEXITED | WNOHANG | WNOWAIT);
    if (seen == 0 && info.si_pid == 0) return std::nullopt;
    // What it has started goes with it. Its number is not used again before it is waited for.
    kill(-child.process, SIGKILL);
    int status = 0;
    while (waitpid(child.process, &status, 0) < 0 && errno == EINTR) {
    }
    Read(child);
    return JobEnd{child.name, true, EndText(status, child.was_killed, child.limit), child.text};
}

std::vector<JobEnd> Children::TakeEnded(Duration now) {
    std::vector<JobEnd> ended = std::exchange(not_started_, {});
    std::erase_if(children_, [&](const std::unique_ptr<Child>& child) {
        std::optional<JobEnd> end = EndOf(*child, now);
        if (end) ended.push_back(std::move(*end));
        return end.has_value();
    });
    return ended;
}

std::optional<Duration> Children::Due() const {
    std::optional<Duration> due;
    const auto take = [&](Duration next) { due = due ? std::min(*due, next) : next; };
    for (const auto& child : children_) {
        if (!child->was_killed) take(child->end);
        if (!child->life.IsOpen()) take(child->asked + kAskedAfter);
    }
    return not_started_.empty() ? due : Duration(0);
}

}  // namespace hxservice
