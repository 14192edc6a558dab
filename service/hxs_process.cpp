#include "service/hxs_process.h"

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/epoll.h>
#include <sys/mman.h>  // IWYU pragma: keep (MFD_CLOEXEC comes from a header below it)
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <set>
#include <string_view>
#include <utility>

#include "common/failure.h"
#include "common/read_file.h"

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

struct RunningProcess {
    pid_t id = 0;
    pid_t parent = 0;
};

std::string ProcessFile(pid_t process, const char* name) {
    constexpr std::size_t kMostBytes = std::size_t{1} << 20;
    try {
        return vexortools::ReadFile(("/proc/" + std::to_string(process) + "/" + name).c_str(),
                                    vexortools::FileKind::kAny, kMostBytes);
    } catch (const vexortools::FileError&) {
        return "";  // it has ended, or belongs to somebody else
    }
}

// The parent stands behind the name, which may contain anything, and the state. Processes that have
// ended are left out: they start nothing more.
std::optional<RunningProcess> AskProcess(pid_t process) {
    const std::string stat = ProcessFile(process, "stat");
    const std::size_t name_end = stat.rfind(')');
    if (name_end == std::string::npos || stat.size() < name_end + 5) return std::nullopt;
    if (stat[name_end + 2] == 'Z') return std::nullopt;
    RunningProcess found{.id = process};
    const char* const parent = stat.data() + name_end + 4;
    if (std::from_chars(parent, stat.data() + stat.size(), found.parent).ec != std::errc()) {
        return std::nullopt;
    }
    return found;
}

std::vector<RunningProcess> RunningProcesses() {
    std::vector<RunningProcess> processes;
    DIR* const folder = opendir("/proc");
    if (folder == nullptr) return processes;
    while (const dirent* const entry = readdir(folder)) {
        const std::string_view name = entry->d_name;
        pid_t process = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
        if (error != std::errc() || end != name.data() + name.size()) continue;
        if (const auto found = AskProcess(process)) processes.push_back(*found);
    }
    closedir(folder);
    return processes;
}

// Tells orphans of one job from those of another, where the environment can be read and was kept.
constexpr std::string_view kMark = "HXRAIDSVC_JOB=";

std::string MarkOf(pid_t process) {
    const std::string environment = std::string(1, '\0') + ProcessFile(process, "environ");
    const std::size_t begin = environment.find(std::string(1, '\0') + std::string(kMark));
    if (begin == std::string::npos) return "";
    return environment.c_str() + begin + 1;
}

// Tells them apart when they were started with an environment of their own, too: every process
// inherits its limits, and nobody misses a few bytes of the 800 KiB of message queues.
constexpr unsigned kQueueLimits = 65536;

// While it lives, what is started has that job's limit.
class QueueLimit {
public:
    explicit QueueLimit(rlim_t limit) {
        if (limit == 0 || getrlimit(RLIMIT_MSGQUEUE, &usual_) != 0) return;
        rlimit marked = usual_;
        marked.rlim_cur = limit;
        is_set_ = setrlimit(RLIMIT_MSGQUEUE, &marked) == 0;
    }
    ~QueueLimit() {
        if (is_set_) setrlimit(RLIMIT_MSGQUEUE, &usual_);
    }
    QueueLimit(const QueueLimit&) = delete;
    QueueLimit& operator=(const QueueLimit&) = delete;

private:
    rlimit usual_{};
    bool is_set_ = false;
};

// 0: there is no room for marks below the usual limit.
rlim_t QueueLimitOf(unsigned job) {
    rlimit usual{};
    if (getrlimit(RLIMIT_MSGQUEUE, &usual) != 0 || usual.rlim_cur <= kQueueLimits) return 0;
    return usual.rlim_cur - 1 - job;
}

// 0 where it is none of a job.
rlim_t QueueLimitOfProcess(pid_t process) {
    rlimit usual{};
    rlimit its{};
    if (getrlimit(RLIMIT_MSGQUEUE, &usual) != 0 ||
        prlimit(process, RLIMIT_MSGQUEUE, nullptr, &its) != 0) {
        return 0;
    }
    const bool is_mark =
        its.rlim_cur < usual.rlim_cur && usual.rlim_cur - its.rlim_cur <= kQueueLimits;
    return is_mark ? its.rlim_cur : 0;
}

bool IsReady(int descriptor) {
    pollfd ready{descriptor, POLLIN, 0};
    return poll(&ready, 1, 0) == 1;
}

}  // namespace

struct Children::Child {
    std::string name;
    std::string mark;
    rlim_t queue_limit = 0;
    pid_t process = 0;
    bool may_leave_processes = false;
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
    prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0);
}

Children::~Children() {
    for (const auto& child : children_) {
        KillWithAllStarted(*child);
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
    child->mark = std::string(kMark) + std::to_string(getpid()) + "-" + std::to_string(++started_);
    child->queue_limit = QueueLimitOf(static_cast<unsigned>(started_ % kQueueLimits));
    child->may_leave_processes = job.may_leave_processes;
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
    std::vector<std::string> variables = job.environment;
    variables.push_back(child->mark);
    const std::vector<char*> environment = Pointers(variables);
    const int error = [&] {
        const QueueLimit limit(child->queue_limit);
        return posix_spawn(&child->process, words[0], &options.actions, &options.attributes,
                           words.data(), environment.data());
    }();
    if (error != 0) return refuse(error);
    has_left_processes_ = has_left_processes_ || job.may_leave_processes;
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

bool Children::IsOfChild(pid_t process) const {
    return std::ranges::any_of(children_,
                               [&](const auto& child) { return child->process == process; });
}

// A process of which nothing tells whose it is belongs to the child, unless others may stay.
bool Children::IsOrphanOf(const Child& child, pid_t process) const {
    if (IsOfChild(process)) return false;
    const std::string mark = MarkOf(process);
    if (!mark.empty()) return mark == child.mark;
    const rlim_t limit = QueueLimitOfProcess(process);
    if (limit != 0) return limit == child.queue_limit;
    return !has_left_processes_;
}

// Processes may start others meanwhile, so that it is looked again until nothing new is there; one
// that is killed starts nothing more.
void Children::KillWithAllStarted(const Child& child) const {
    constexpr int kMostLooks = 1000;
    kill(-child.process, SIGKILL);
    std::set<pid_t> killed;
    for (int look = 0; look < kMostLooks; ++look) {
        const std::vector<RunningProcess> running = RunningProcesses();
        std::set<pid_t> family{child.process};
        for (bool has_grown = true; has_grown;) {
            has_grown = false;
            for (const RunningProcess& each : running) {
                if (family.contains(each.id)) continue;
                if (!family.contains(each.parent) &&
                    !(each.parent == getpid() && IsOrphanOf(child, each.id)))
                    continue;
                has_grown = family.insert(each.id).second;
            }
        }
        bool is_any_new = false;
        for (const pid_t process : family) {
            if (!killed.insert(process).second) continue;
            kill(process, SIGKILL);
            is_any_new = true;
        }
        if (!is_any_new) return;
    }
}

// The ended ones are waited for; those of jobs by their own numbers.
void Children::TakeUpOrphans() {
    for (;;) {
        siginfo_t info{};
        if (waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid == 0) return;
        if (IsOfChild(info.si_pid)) return;
        waitpid(info.si_pid, nullptr, WNOHANG);
    }
}

std::optional<JobEnd> Children::EndOf(Child& child, Duration now) {
    child.asked = now;
    if (!child.was_killed && now >= child.end) {
        child.was_killed = true;
        KillWithAllStarted(child);
    }
    Read(child);
    if (child.life.IsOpen() && !child.was_killed && !IsReady(child.life.Get())) return std::nullopt;
    siginfo_t info{};
    const int seen =
        waitid(P_PID, static_cast<id_t>(child.process), &info, WEXITED | WNOHANG | WNOWAIT);
    if (seen == 0 && info.si_pid == 0) return std::nullopt;
    // Its number is not used again before it is waited for.
    if (child.was_killed || !child.may_leave_processes) KillWithAllStarted(child);
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
    TakeUpOrphans();
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
