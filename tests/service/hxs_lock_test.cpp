// The lock, held by another process and by none.
#include "service/hxs_lock.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "common/failure.h"
#include "support/temporary_root.h"

namespace {

using hxservice::HolderOf;
using hxservice::Lock;

// A process that holds the lock until the destructor.
class Holder {
public:
    explicit Holder(const std::string& path) {
        int ready[2];
        if (pipe(ready) != 0) return;
        process = fork();
        if (process == 0) {
            const Lock lock(path);
            if (write(ready[1], "x", 1) != 1) _exit(1);
            pause();
            _exit(0);
        }
        char byte = 0;
        is_ready = read(ready[0], &byte, 1) == 1;
        close(ready[0]);
        close(ready[1]);
    }
    ~Holder() {
        if (process <= 0) return;  // -1 would be every process of the machine
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
    pid_t process = -1;
    bool is_ready = false;
};

std::string RefusalOf(const std::string& path) {
    try {
        const Lock lock(path);
        return "";
    } catch (const vexortools::Failure& failure) {
        EXPECT_EQ(failure.exit, vexortools::Exit::kUnavailable);
        return failure.what();
    }
}

TEST(ServiceLock, IsHeldByOneProcessAndNamesIt) {
    const TemporaryRoot root;
    const std::string path = root.Path("/lock");
    const Holder holder(path);
    ASSERT_TRUE(holder.is_ready);
    EXPECT_EQ(HolderOf(path), std::optional(holder.process));
    EXPECT_EQ(RefusalOf(path), "another hxraidsvc runs already: process " +
                                   std::to_string(holder.process) + " holds " + path +
                                   ". Only one may take the controllers' events.");
}

TEST(ServiceLock, IsFreeOnceItsHolderWasKilled) {
    const TemporaryRoot root;
    const std::string path = root.Path("/lock");
    { const Holder holder(path); }
    EXPECT_EQ(HolderOf(path), std::nullopt);
    EXPECT_EQ(RefusalOf(path), "");
}

TEST(ServiceLock, HasNoHolderWhereNoServiceEverRan) {
    const TemporaryRoot root;
    EXPECT_EQ(HolderOf(root.Path("/run/hxraid/lock")), std::nullopt);
}

TEST(ServiceLock, IsRefusedWhereItsFileCannotBeMade) {
    const TemporaryRoot root;
    const std::string path = root.Path("/none/lock");
    EXPECT_EQ(RefusalOf(path), path +
                                   " cannot be opened: No such file or directory; the service "
                                   "needs it to be the only one, and root to write it");
}

}  // namespace
