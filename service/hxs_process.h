// Child processes that deliver alerts: never waited for, limited in time and output, and killed
// with the processes that they have started, also those that have left their process group and
// session. For that this process becomes the parent of orphans (PR_SET_CHILD_SUBREAPER).
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/duration.h"
#include "descriptor.h"

namespace hxservice {

struct Job {
    std::vector<std::string> words;        // the program by its whole path, and its words
    std::vector<std::string> environment;  // all of it: "NAME=VALUE"
    std::string input;                     // what it reads from standard input
    vexortools::Duration limit{0};
    // What it leaves running when it ends by itself goes on: mail programs deliver so.
    bool may_leave_processes = false;
};

struct JobEnd {
    std::string name;
    bool has_begun = false;        // it may have done something
    std::string error;             // empty: it ended with 0
    std::string output;            // the first bytes of what it wrote to standard output and error
    bool is_refused = false;       // it fails again until somebody changes something
    vexortools::Duration wait{0};  // nothing more is taken before
};

class Children {
public:
    Children();
    /// Kills what still runs.
    ~Children();
    Children(const Children&) = delete;
    Children& operator=(const Children&) = delete;

    /// Starts a job under a name that no running job has. One that cannot be started has ended.
    void Start(const std::string& name, const Job& job, vexortools::Duration now);

    /// Reads output, kills what has reached its limit, and returns what has ended.
    std::vector<JobEnd> TakeEnded(vexortools::Duration now);

    /// When the next limit is reached.
    std::optional<vexortools::Duration> Due() const;

    /// Readable when TakeEnded has something to do.
    int Descriptor() const { return events_.Get(); }

private:
    struct Child;
    void Read(Child& child);
    std::optional<JobEnd> EndOf(Child& child, vexortools::Duration now);
    void KillWithAllStarted(const Child& child) const;
    bool IsOfChild(pid_t process) const;
    bool IsOrphanOf(const Child& child, pid_t process) const;
    void TakeUpOrphans();

    ::Descriptor events_;  // epoll
    std::vector<std::unique_ptr<Child>> children_;
    std::vector<JobEnd> not_started_;
    std::uint64_t started_ = 0;
    bool has_left_processes_ = false;
};

}  // namespace hxservice
