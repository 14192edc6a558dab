#include "fault_sweep.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <new>

#include "fault_injector.h"

namespace {

struct Row {
    int kind;
    const char* name;
    std::vector<int> errors;
    bool alone_only = false;  // with all that follow: whoever retries would never end
};

const std::vector<Row>& Rows() {
    static const std::vector<Row> rows = {
        {kFaultAllocation, "allocation", {ENOMEM}},
        {kFaultOpen, "open", {EMFILE, EACCES}},
        {kFaultRead, "read", {EIO, kFaultShort}},
        {kFaultRead, "interrupted read", {EINTR}, true},
        {kFaultWrite, "write", {ENOSPC, EIO, kFaultShort}},
        {kFaultWrite, "interrupted write", {EINTR}, true},
        {kFaultSync, "fsync", {EIO}},
        {kFaultTruncate, "ftruncate", {EIO}},
        {kFaultRename, "rename", {ENOSPC}},
        {kFaultMap, "mmap", {ENOMEM}},
        {kFaultLock, "lock", {EIO}},
        {kFaultTime, "time", {EINVAL}},
        {kFaultUser, "user database", {EIO, ENOMEM}},
    };
    return rows;
}

// What the child tells of its work, also when it dies of it.
struct Progress {
    long faults;
    long at;
    int error;
    int always;
    char complaint[4096];
};

long Descriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

void Complain(Progress& progress, const std::string& what) {
    const std::string text = "call " + std::to_string(progress.at) +
                             (progress.always != 0 ? " and all that follow" : " alone") +
                             ", error " + std::to_string(progress.error) + ": " + what + "\n";
    std::strncat(progress.complaint, text.c_str(),
                 sizeof progress.complaint - std::strlen(progress.complaint) - 1);
}

std::string Cut(const std::string& text) {
    return text.size() <= 600 ? text : text.substr(0, 600) + " ... " + std::to_string(text.size());
}

class Sweep {
public:
    Sweep(const FaultScenario& scenario, const Row& row, Progress& progress)
        : scenario_(scenario), row_(row), progress_(progress) {
        Run(0, false, 0);  // what is made once and kept is made now
        calls_ = Run(0, false, 0);
        usual_ = scenario_.outcome();
        if (usual_.find(scenario_.usual) == std::string::npos) {
            Complain(progress_, "undisturbed it is " + Cut(usual_));
        }
    }

    void All() {
        const char* const form = std::getenv("FAULTS");
        const bool all = form != nullptr && std::strcmp(form, "all") == 0;
        const long most = scenario_.most;
        const long step = all ? 1 : std::max(1L, (calls_ + most - 1) / most);
        for (const int error : row_.errors) {
            for (long at = 1; at <= calls_; at += step) {
                One(at, false, error);
                if (!row_.alone_only) One(at, true, error);
            }
        }
    }

private:
    // Returns how many calls of the kind there were.
    long Run(long at, bool always, int error) {
        scenario_.prepare();
        const long bytes = FaultLiveBytes();
        const long descriptors = Descriptors();
        FaultArm(row_.kind, at, always ? 1 : 0, error);
        scenario_.run();
        const long calls = FaultDisarm();
        if (scenario_.tidy != nullptr) scenario_.tidy();
        left_bytes_ = FaultLiveBytes() - bytes;
        left_descriptors_ = Descriptors() - descriptors;
        return calls;
    }

    void One(long at, bool always, int error) {
        progress_.at = at;
        progress_.always = always ? 1 : 0;
        progress_.error = error;
        ++progress_.faults;
        Run(at, always, error);
        if (left_bytes_ > 0) Complain(progress_, std::to_string(left_bytes_) + " bytes are left");
        if (left_descriptors_ > 0) Complain(progress_, "a descriptor is left");
        const std::string seen = scenario_.outcome();
        if (seen != usual_ && !scenario_.is_documented(row_.kind, usual_, seen)) {
            Complain(progress_, "not documented: " + Cut(seen));
        }
        Run(0, false, 0);
        const std::string next = scenario_.outcome();
        if (next != usual_) Complain(progress_, "the next run is not the usual one: " + Cut(next));
    }

    const FaultScenario& scenario_;
    const Row& row_;
    Progress& progress_;
    long calls_ = 0;
    std::string usual_;
    long left_bytes_ = 0, left_descriptors_ = 0;
};

}  // namespace

void ExpectDocumentedUnderFaults(const FaultScenario& scenario) {
    auto* const progress = static_cast<Progress*>(
        mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(MAP_FAILED, static_cast<void*>(progress));
    long faults = 0;
    for (const Row& row : Rows()) {
        new (progress) Progress{};
        const pid_t child = fork();
        ASSERT_LE(0, child);
        if (child == 0) {
            Sweep(scenario, row, *progress).All();
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(child, waitpid(child, &status, 0));
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
            Complain(*progress, "the process ended with status " + std::to_string(status));
        }
        EXPECT_STREQ("", progress->complaint) << scenario.name << ", " << row.name;
        faults += progress->faults;
    }
    std::printf("%s: %ld faults\n", scenario.name, faults);
    munmap(progress, sizeof(Progress));
}
