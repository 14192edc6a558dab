// The state file: its path, its creation, and the transactions on it.
//
// The database uses a write-ahead log (WAL) and synchronous = NORMAL, so that no change waits for
// the disk: a killed process loses nothing that was committed, and a power cut may undo the last
// transactions, always whole ones. That is safe enough for a virtual machine.
#include "store/hxsim_store.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/auxv.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <optional>
#include <utility>

#include "library/set_while_inside.h"
#include "rules/hxsim_advance.h"
#include "store/hxsim_sqlite.h"
#include "store/hxsim_tables.h"
#include "store/hxsim_upgrade.h"

namespace hxsim {
namespace {

constexpr const char* kMemory = ":memory:";
constexpr const char* kSystemPath = "/var/lib/vexorapi/hxsim.db";
constexpr const char* kUserPath = "/vexorapi/hxsim.db";  // below the user's state folder

// ---- Paths ----

std::string Environment(const char* name) {
    const char* const value = secure_getenv(name);
    return value == nullptr ? "" : value;
}

std::string HomeFolder() {
    if (std::string home = Environment("HOME"); !home.empty()) return home;
    std::string room(16384, '\0');
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, room.data(), room.size(), &found) == 0 && found != nullptr) {
        return found->pw_dir;
    }
    throw StoreError(
        "This user has no home folder for the state file; name a file in HXSIM_STATE.");
}

[[noreturn]] void ThrowSystemError(const std::string& path, const char* what) {
    throw StoreError(path + " cannot be " + what + " (" + std::strerror(errno) +
                     "); name another file in HXSIM_STATE.");
}

// Makes the folders with mode 0700: like the file they are private to the user.
void MakeFolders(const std::filesystem::path& folder) {
    if (folder.empty() || std::filesystem::exists(folder)) return;
    MakeFolders(folder.parent_path());
    if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) ThrowSystemError(folder, "made");
}

void RequireRegular(const std::string& path, const struct stat& found) {
    if (S_ISREG(found.st_mode)) return;
    throw StoreError(path + " is no regular file; name another one in HXSIM_STATE.");
}

// Only the user's own file is overwritten: somebody else may have placed a link, or a file in a
// shared folder.
void RefuseForeign(const std::string& path) {
    struct stat found {};
    if (lstat(path.c_str(), &found) != 0) return;  // MakeFile reports why
    if (S_ISLNK(found.st_mode)) {
        throw StoreError(path +
                         " is a link, and a machine is made in no file behind one; name the "
                         "file itself, or remove the link.");
    }
    if (found.st_uid != geteuid()) {
        throw StoreError(path + " belongs to another user; name another file in HXSIM_STATE.");
    }
}

// Creates an empty file unless the path exists. An existing file is not opened, because closing it
// would release the locks that this process holds on it through other connections. SQLite gives the
// log and its index the same mode. Anything but a regular file is refused here, before SQLite
// creates files beside it.
void MakeFile(const std::string& path) {
    MakeFolders(std::filesystem::path(path).parent_path());
    const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (file >= 0) {
        close(file);
        return;
    }
    if (errno != EEXIST) ThrowSystemError(path, "made");
    struct stat found {};
    if (stat(path.c_str(), &found) != 0) ThrowSystemError(path, "found");
    RequireRegular(path, found);
}

[[noreturn]] void ThrowNoMachine(const std::string& path) {
    throw StoreError(path + ": there is no machine; make one with \"hxsimctl init --state " + path +
                     "\", or name another file in HXSIM_STATE.");
}

// Refuses a missing or empty file, which SQLite would turn into a database.
void RequireFile(const std::string& path) {
    struct stat found {};
    if (stat(path.c_str(), &found) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) ThrowNoMachine(path);
        ThrowSystemError(path, "found");
    }
    RequireRegular(path, found);
    if (found.st_size == 0) ThrowNoMachine(path);
}

// Refuses a file that may only be read, before SQLite opens it so and refuses the first change
// only: time passes in the machine with every look, and whoever sees it is to be able to act.
void RequireWritable(const std::string& path) {
    if (faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0) return;
    throw StoreError(path + " cannot be opened for writing (" + std::strerror(errno) +
                     "); make it writable, or name another file in HXSIM_STATE.");
}

// The absolute path, so that a later change of the working folder does not change the file.
std::string Absolute(const std::string& path) {
    if (path == kMemory) return path;
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path, error);
    if (error) throw StoreError(path + " cannot be found (" + error.message() + ").");
    return absolute;
}

// ---- Connections ----

// Retries, since two processes that open a new file at once block each other here: SQLite does not
// wait when both try to upgrade the same lock.
void UseLog(const Connection& connection) {
    constexpr int kTries = 500;
    constexpr timespec kPause{0, 10'000'000};
    for (int tried = 1;; ++tried) {
        try {
            connection.Execute("PRAGMA journal_mode = WAL");
            return;
        } catch (const BusyError&) {
            if (tried == kTries) throw;
        }
        nanosleep(&kPause, nullptr);
    }
}

// A read transaction, which ends with this object.
class Reading {
public:
    explicit Reading(const Connection& connection) : connection_(connection) {
        connection_.Execute("BEGIN");
    }
    /// Ends it now. Throws what SQLite says, a lack of memory too: it goes on then.
    void End() {
        connection_.Execute("COMMIT");
        is_open_ = false;
    }
    ~Reading() {
        if (!is_open_) return;
        try {
            connection_.Execute("COMMIT");
        } catch (const std::exception&) {
            return;  // SQLite has ended it already because of the error
        }
    }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

private:
    const Connection& connection_;
    bool is_open_ = true;
};

Connection Open(const std::string& path) {
    Connection connection(path);
    {
        // Check the file first, so that another program's database stays unchanged. In one
        // transaction, since another process may be creating the tables right now.
        Reading reading(connection);
        IsStateFile(connection, path);
        reading.End();
    }
    UseLog(connection);
    connection.Execute("PRAGMA synchronous = NORMAL");
    return connection;
}

void Fill(const Connection& connection, const Machine& machine) {
    MakeTables(connection);
    Tables(connection).Save(Machine{}, machine);
}

}  // namespace

std::string StatePath() {
    if (getauxval(AT_SECURE) != 0) return kSystemPath;
    if (std::string path = Environment("HXSIM_STATE"); !path.empty()) return path;
    if (const std::string root = Environment("VEXORAPI_ROOT"); !root.empty()) {
        return root + kSystemPath;
    }
    // The XDG base directory rules say to ignore a relative path.
    const std::string state = Environment("XDG_STATE_HOME");
    if (!state.empty() && state.front() == '/') return state + kUserPath;
    return HomeFolder() + "/.local/state" + kUserPath;
}

IfMissing WhenStateIsMissing() {
    // secure_getenv returns nothing in a set-user-ID process, which ignores HXSIM_STATE
    // (StatePath).
    return Environment("HXSIM_STATE").empty() ? IfMissing::kMake : IfMissing::kRefuse;
}

// ---- The open file ----

struct Store::Database {
    // Tells whether the process has forked since the mark was made or renewed, without the system
    // call that getpid would cost before every call of the controller.
    class ForkMark {
    public:
        ForkMark() {
            void* const page = mmap(nullptr, sizeof *in_child_zero_, PROT_READ | PROT_WRITE,
                                    MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
            if (page == MAP_FAILED) return;
            in_child_zero_ = static_cast<int*>(page);
            // Some emulators (qemu before version 8) ignore every advice and report success. They
            // are detected by an advice that does not exist.
            constexpr int kNoAdvice = -1;
            wiped_ = madvise(page, sizeof *in_child_zero_, kNoAdvice) != 0 &&
                     madvise(page, sizeof *in_child_zero_, MADV_WIPEONFORK) == 0;
        }
        ~ForkMark() {
            if (in_child_zero_ != nullptr) munmap(in_child_zero_, sizeof *in_child_zero_);
        }
        ForkMark(const ForkMark&) = delete;
        ForkMark& operator=(const ForkMark&) = delete;

        void Renew() {
            pid_ = getpid();
            if (wiped_) *in_child_zero_ = 1;
        }
        bool IsForked() const { return wiped_ ? *in_child_zero_ == 0 : pid_ != getpid(); }

    private:
        int* in_child_zero_ = nullptr;  // alone in its page
        bool wiped_ = false;            // whether the kernel empties that page in a child
        pid_t pid_ = 0;                 // where it does not
    };

    // A connection and the statements on it.
    struct Link {
        explicit Link(const std::string& path)
            : connection(Open(path)), data_version(connection.Prepare("PRAGMA data_version")) {}

        // A number that changes whenever another connection commits.
        std::int64_t DataVersion() {
            const std::int64_t version = data_version.Step() ? data_version.Integer(0) : 0;
            data_version.Reset();
            return version;
        }

        const Connection connection;
        Tables tables{connection};
        Statement data_version;
    };

    Database(const std::string& file, std::function<Machine()> first, IfMissing if_missing)
        : path_(Absolute(file)), first_(std::move(first)), if_missing_(if_missing) {
        Connect(nullptr);
    }

    const Machine& Current() {
        FollowFork();
        const hxlibrary::SetWhileInside inside(busy_);
        Follow();
        if (RealNow() >= due_) Write({});
        return machine_;
    }

    bool Change(const std::function<bool(Machine&, Time)>& work) {
        FollowFork();
        const hxlibrary::SetWhileInside inside(busy_);
        return Write(work);
    }

private:
    // Opens the file and creates the machine when there is none: a copy of `inherited`, or
    // `first_`.
    void Connect(const Machine* inherited) {
        if (path_ != kMemory && if_missing_ == IfMissing::kMake) MakeFile(path_);
        if (path_ != kMemory && if_missing_ == IfMissing::kRefuse) RequireFile(path_);
        if (path_ != kMemory) RequireWritable(path_);
        link_ = std::make_unique<Link>(path_);
        known_head_.reset();
        Transaction transaction(link_->connection);
        if (IsStateFile(link_->connection, path_)) {
            Upgrade(link_->connection, path_, kUpgradeSteps, kSchemaVersion);
        } else if (path_ != kMemory && if_missing_ == IfMissing::kRefuse) {
            ThrowNoMachine(path_);
        } else {
            Fill(link_->connection, inherited != nullptr ? *inherited : first_());
        }
        transaction.Commit();
        loaded_ = false;
        // Last, so that a child in which Connect fails tries again instead of using its parent's
        // data.
        fork_mark_.Renew();
    }

    // In a forked child, opens everything anew. A machine in memory is kept.
    void FollowFork() {
        if (!fork_mark_.IsForked()) return;
        if (busy_) {
            // A thread of the parent, missing in the child, was using the connection: leak it.
            static_cast<void>(link_.release());
            busy_ = false;
        } else if (link_ != nullptr) {
            // Closing is safe: locks are not inherited, so none of the parent's are released, and
            // with LeaveLog nothing is tidied up. Keeping the connection open would be worse:
            // SQLite identifies files by inode, and a new connection would rely on locks that only
            // the parent holds.
            link_->connection.LeaveLog();
            link_.reset();
        }
        if (path_ == kMemory && loaded_) {
            const Machine inherited = machine_;
            Connect(&inherited);
        } else {
            Connect(nullptr);
        }
    }

    // Reads the machine anew if another process has committed.
    void Follow() {
        // Taken before asking SQLite, so that a commit in between is noticed the next time.
        const auto head = link_->connection.Head();
        if (loaded_ && head && head == known_head_) return;
        if (!loaded_ || link_->DataVersion() != known_version_) {
            const Reading reading(link_->connection);
            Refresh();
        }
        known_head_ = head;
    }

    // Reads the machine if another process has changed it. Within a transaction.
    void Refresh() {
        const std::int64_t version = link_->DataVersion();
        if (loaded_ && version == known_version_) return;
        loaded_ = false;
        Upgrade(link_->connection, path_, {}, kSchemaVersion);  // refuses a file recreated with
                                                                // another schema
        machine_ = link_->tables.Load(path_);
        known_version_ = version;
        loaded_ = true;
        Reckon();
    }

    // Sets due_, so that Current needs no computation until the next transition.
    void Reckon() {
        const Time next = NextTransition(machine_);
        const Time real = RealNow();
        due_ = next <= Now(machine_.clock, real) ? real : RealTimeOf(machine_.clock, next);
    }

    // One transaction: brings the machine up to now, then runs `work`, if any.
    bool Write(const std::function<bool(Machine&, Time)>& work) {
        Transaction transaction(link_->connection);
        Refresh();
        const Time now = Now(machine_.clock, RealNow());
        Machine before = machine_;
        // If anything below throws, the machine in memory is invalid.
        loaded_ = false;
        if (NextTransition(machine_) <= now) {
            Advance(machine_, now);
            link_->tables.Save(before, machine_);
            before = machine_;
        }
        const bool done = !work || work(machine_, now);
        if (done) {
            link_->tables.Save(before, machine_);
        } else {
            machine_ = std::move(before);
        }
        transaction.Commit();
        loaded_ = true;
        Reckon();
        return done;
    }

    const std::string path_;
    const std::function<Machine()> first_;  // creates the machine of a new file
    const IfMissing if_missing_;
    ForkMark fork_mark_;  // of the process that opened the file
    std::unique_ptr<Link> link_;
    std::int64_t known_version_ = 0;
    std::optional<hxsqlite::LogHead> known_head_;  // of the log when machine_ was current
    bool busy_ = false;                            // during a call
    bool loaded_ = false;  // whether `machine_` equals the file at `known_version_`
    Machine machine_;
    Time due_ = kNever;  // real time of the next transition
};

Store::Store(const std::string& path, std::function<Machine()> first, IfMissing if_missing)
    : database_(std::make_unique<Database>(path, std::move(first), if_missing)) {}
Store::~Store() = default;

void Store::Create(const std::string& path, const Machine& machine) {
    const std::string file = Absolute(path);
    RefuseForeign(file);
    MakeFile(file);
    const Connection connection = Open(file);
    if (chmod(file.c_str(), 0600) != 0) ThrowSystemError(file, "made private");
    Transaction transaction(connection);
    Fill(connection, machine);
    transaction.Commit();
}

const Machine& Store::Current() { return database_->Current(); }

bool Store::Change(const std::function<bool(Machine& machine, Time now)>& work) {
    return database_->Change(work);
}

}  // namespace hxsim
