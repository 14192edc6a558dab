// Starting a program and waiting for it, in a host program of which nothing is known: it may ignore
// SIGCHLD, wait for all its children, and have any number of threads.
#include "system/hxmd_run.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <thread>

#include "descriptor.h"
#include "root_path.h"

namespace hxmd {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kMostOutput = 4096;

// mdadm is tried again this often, after this pause, when a device is busy.
constexpr int kTries = 3;
constexpr std::chrono::milliseconds kRetryPause{700};

int OpenPidfd(pid_t pid) { return static_cast<int>(syscall(SYS_pidfd_open, pid, 0)); }

int WaitTime(Clock::time_point end) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    return static_cast<int>(std::max<std::chrono::milliseconds::rep>(left, 0));
}

// ---- Starting ----

class Actions {
public:
    Actions() { posix_spawn_file_actions_init(&actions_); }
    ~Actions() { posix_spawn_file_actions_destroy(&actions_); }
    Actions(const Actions&) = delete;
    Actions& operator=(const Actions&) = delete;
    posix_spawn_file_actions_t* Get() { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

class Attributes {
public:
    Attributes() { posix_spawnattr_init(&attributes_); }
    ~Attributes() { posix_spawnattr_destroy(&attributes_); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    posix_spawnattr_t* Get() { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

// The program's ID; none when it cannot be started.
pid_t Start(const char* path, const std::vector<std::string>& arguments, int output) {
    Actions actions;
    posix_spawn_file_actions_addopen(actions.Get(), STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(actions.Get(), output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(actions.Get(), STDOUT_FILENO, STDERR_FILENO);
    // The host program's own descriptors need not be close-on-exec.
    posix_spawn_file_actions_addclosefrom_np(actions.Get(), STDERR_FILENO + 1);
    Attributes attributes;
    sigset_t none, all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(attributes.Get(), &none);
    posix_spawnattr_setsigdefault(attributes.Get(), &all);
    posix_spawnattr_setflags(attributes.Get(), POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    std::vector<std::string> words{path};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    char locale[] = "LC_ALL=C";
    char search[] = "PATH=/usr/sbin:/usr/bin:/sbin:/bin";
    char* environment[] = {locale, search, nullptr};
    pid_t pid = 0;
    if (posix_spawn(&pid, path, actions.Get(), attributes.Get(), argv.data(), environment) != 0) {
        return 0;
    }
    return pid;
}

// ---- Waiting ----

void ReadSome(Descriptor& output, std::string& text) {
    char piece[512];
    const ssize_t bytes = read(output.Get(), piece, sizeof piece);
    if (bytes < 0 && (errno == EINTR || errno == EAGAIN)) return;
    if (bytes <= 0) {
        output.Close();
        return;
    }
    // The rest is read, too, so that the program never waits for a full pipe.
    text.append(piece, std::min(static_cast<std::size_t>(bytes), kMostOutput - text.size()));
}

// Waits for the end of the program and reads what it writes. False when the time is over.
bool AwaitEnd(int process, Descriptor& output, std::string& text, Clock::time_point end) {
    // The time is asked for each piece: a program that never stops writing ends, too.
    while (Clock::now() < end) {
        // Without a descriptor of the process, the end of its output stands for its own.
        if (process < 0 && !output.IsOpen()) return true;
        pollfd watched[] = {{process, POLLIN, 0}, {output.Get(), POLLIN, 0}};
        const int ready = poll(watched, 2, WaitTime(end));
        if (ready < 0 && errno == EINTR) continue;
        if (ready < 0) return false;
        if (watched[1].revents != 0) {
            ReadSome(output, text);
            continue;  // all of its output before its end
        }
        if (watched[0].revents != 0) return true;
    }
    return false;
}

Outcome Collect(pid_t pid, int& exit_code) {
    int status = 0;
    pid_t ended = 0;
    do ended = waitpid(pid, &status, 0);
    while (ended < 0 && errno == EINTR);
    if (ended != pid) return Outcome::kUnknown;
    if (!WIFEXITED(status)) return Outcome::kFailed;
    exit_code = WEXITSTATUS(status);
    return exit_code == 0 ? Outcome::kSucceeded : Outcome::kFailed;
}

bool IsBusy(const Ran& ran) {
    return ran.outcome == Outcome::kFailed && ran.message.find("busy") != std::string::npos;
}

}  // namespace

Ran Run(const char* path, const std::vector<std::string>& arguments,
        std::chrono::milliseconds limit) {
    Ran ran;
    char program[kRootPathSize];
    int ends[2];
    if (RootPath(program, path) == nullptr || pipe2(ends, O_CLOEXEC) != 0) return ran;
    Descriptor output(ends[0]);
    Descriptor input(ends[1]);
    const pid_t pid = Start(program, arguments, input.Get());
    input.Close();
    if (pid == 0) {
        ran.message = std::string(path) + " cannot be started.";
        return ran;
    }
    // Where SIGCHLD is ignored, a program that has ended already is gone: there is no descriptor
    // then, and its output is at its end.
    const Descriptor process(OpenPidfd(pid));
    fcntl(output.Get(), F_SETFL, O_NONBLOCK);
    if (AwaitEnd(process.Get(), output, ran.message, Clock::now() + limit)) {
        ran.outcome = Collect(pid, ran.exit_code);
    } else {
        if (process.IsOpen()) syscall(SYS_pidfd_send_signal, process.Get(), SIGKILL, nullptr, 0);
        if (process.IsOpen()) Collect(pid, ran.exit_code);
        ran.outcome = Outcome::kTimedOut;
        ran.exit_code = -1;
    }
    ran.message = ran.message.substr(0, ran.message.find('\n'));
    return ran;
}

Ran RunMdadm(const std::vector<std::string>& arguments) {
    Ran ran;
    for (int tries = 0; tries < kTries; ++tries) {
        if (tries != 0) std::this_thread::sleep_for(kRetryPause);
        ran = Run("/sbin/mdadm", arguments);
        if (!IsBusy(ran)) break;
    }
    return ran;
}

}  // namespace hxmd
