// The state file: what goes into it comes out again, for every process, whatever happens to them.
#include "store/hxsim_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "codes/activity.h"
#include "model/hxsim_invariants.h"
#include "store/hxsim_sqlite.h"
#include "store/hxsim_store_error.h"
#include "store/hxsim_tables.h"
#include "store/hxsim_upgrade.h"
#include "support/child_process.h"
#include "support/temporary_root.h"
#include "topology/hxsim_topology.h"

namespace hxsim {
namespace {

using hxcodes::ActivityKind;
using hxcodes::ActivityState;
using testing::HasSubstr;
using testing::IsEmpty;

class StateFile : public testing::Test {
protected:
    std::string File() const { return root_.Path("/state/hxsim.db"); }

    void Make(const char* topology = "small") const {
        Store::Create(File(), MakeMachine(BuiltInTopology(topology), 7, RealNow()));
    }

    void Execute(const std::string& sql) const { Connection(File()).Execute(sql); }

    // The sentence with which opening and reading is refused; empty when it is not.
    std::string Refusal() const {
        try {
            Store(File(), DefaultMachine).Current();
        } catch (const StoreError& error) {
            return error.what();
        }
        return "";
    }

    static unsigned ModeOf(const std::string& path) {
        struct stat about {};
        return stat(path.c_str(), &about) == 0 ? about.st_mode & 0777 : 0;
    }

    TemporaryRoot root_;
};

void Locate(Store& store, HX_U16 disk, bool on) {
    store.Change([&](Machine& machine, Time) {
        machine.adapters[0].disks[disk].locate_light = on;
        return true;
    });
}

bool IsLocated(Store& store, HX_U16 disk) {
    return store.Current().adapters[0].disks[disk].locate_light;
}

TEST_F(StateFile, IsLookedAtWithoutSystemCallsWhileNobodyChangesIt) {
    if (kSanitized) GTEST_SKIP() << "a sanitizer makes system calls of its own";
    Make();
    const auto calls_of_looks = [&](int looks) {
        return SystemCallsOf([&] {
                   Store store(File(), DefaultMachine);
                   for (int look = 0; look < looks; ++look) store.Current();
               })
            .size();
    };
    const std::size_t of_two = calls_of_looks(2);
    EXPECT_LT(0u, of_two);
    EXPECT_EQ(of_two, calls_of_looks(50));
}

TEST_F(StateFile, HoldsEveryRowOfTheMachineThatWasPutIn) {
    Machine machine = MakeMachine(BuiltInTopology("default"), 7, 1000);
    machine.clock = {1000, 1000, 0};
    machine.injections.push_back({3, "HX_LD_GetInfo", 7, 2, 1, 0, false});
    Adapter& adapter = machine.adapters[0];
    adapter.alarm = true;
    adapter.disks[11].wwn = UINT64_MAX;
    adapter.disks[11].serial = std::string("a\0b", 3);
    adapter.images[0].data = std::make_shared<const std::string>("image\0bytes", 11);
    adapter.activities.push_back({.id = 4,
                                  .kind = ActivityKind::kCheck,
                                  .state = ActivityState::kPaused,
                                  .owner = 2,
                                  .total = 2147483648,
                                  .done = 5,
                                  .since = -3,
                                  .speed = 9,
                                  .announced = 20,
                                  .found = 6});
    Store::Create(File(), machine);

    Store store(File(), DefaultMachine);
    const Machine& read = store.Current();
    EXPECT_EQ(read.clock.start, 1000);
    EXPECT_EQ(read.clock.speed, 0);
    EXPECT_EQ(read.topology, "default");
    EXPECT_EQ(read.seed, 7U);
    ASSERT_EQ(read.injections.size(), 1U);
    EXPECT_EQ(read.injections[0].call, "HX_LD_GetInfo");
    EXPECT_EQ(read.injections[0].after, 1U);
    const Adapter& found = read.adapters.at(0);
    EXPECT_TRUE(found.alarm);
    EXPECT_EQ(std::memcmp(&found.info, &adapter.info, sizeof found.info), 0);
    EXPECT_EQ(std::memcmp(&found.config, &adapter.config, sizeof found.config), 0);
    EXPECT_EQ(found.disks.at(11).wwn, UINT64_MAX);
    EXPECT_EQ(found.disks.at(11).serial, std::string("a\0b", 3));
    EXPECT_EQ(found.disks.at(10).spare, Spare::kGroup);
    EXPECT_EQ(found.blocks.size(), adapter.blocks.size());
    EXPECT_EQ(found.virtual_disks.at(1).name, "ARCHIVE");
    EXPECT_EQ(found.disk_groups.at(0).name, "GROUP_A");
    EXPECT_EQ(found.homes.size(), 9U);
    ASSERT_EQ(found.activities.size(), 1U);
    EXPECT_EQ(found.activities[0].total, 2147483648U);
    EXPECT_EQ(found.activities[0].since, -3);
    EXPECT_EQ(found.activities[0].found, 6U);
    EXPECT_EQ(found.remaps.size(), 5U);
    EXPECT_EQ(found.expanders.at(0).component, 0x0524);
    EXPECT_EQ(found.elements.at(11).reading, 1208);
    EXPECT_EQ(found.batteries.at(0).info.percentage, 96);
    ASSERT_NE(found.images.at(0).data, nullptr);
    EXPECT_EQ(*found.images[0].data, std::string("image\0bytes", 11));
    EXPECT_EQ(found.images.at(1).data, nullptr);
    EXPECT_EQ(found.events.size(), 22U);
    EXPECT_EQ(found.next_event, 23U);
    EXPECT_EQ(read.adapters.at(1).port_multipliers.at(0).device, 0x3705);
}

TEST_F(StateFile, IsMadeWithTheDefaultMachineWhereThereIsNone) {
    EXPECT_EQ(Store(File(), DefaultMachine).Current().topology, "default");
    EXPECT_EQ(Store(File(), DefaultMachine).Current().adapters.size(), 2U);
}

TEST_F(StateFile, AndItsFolderAndItsLogAreTheUsersOwn) {
    Store store(File(), DefaultMachine);
    Locate(store, 0, true);
    EXPECT_EQ(ModeOf(root_.Path("/state")), 0700U);
    EXPECT_EQ(ModeOf(File()), 0600U);
    EXPECT_EQ(ModeOf(File() + "-wal"), 0600U);
    EXPECT_EQ(ModeOf(File() + "-shm"), 0600U);
}

TEST_F(StateFile, KeepsAChangeForTheNextStore) {
    Make();
    {
        Store store(File(), DefaultMachine);
        Locate(store, 3, true);
    }
    Store store(File(), DefaultMachine);
    EXPECT_TRUE(IsLocated(store, 3));
    EXPECT_FALSE(IsLocated(store, 2));
}

TEST_F(StateFile, LosesTheRowsThatAChangeRemoves) {
    Make("default");
    {
        Store store(File(), DefaultMachine);
        store.Change([](Machine& machine, Time) {
            machine.adapters[0].events.erase(machine.adapters[0].events.begin());
            machine.adapters[0].remaps.clear();
            machine.adapters[0].batteries.clear();
            return true;
        });
    }
    const Machine machine = Store(File(), DefaultMachine).Current();
    EXPECT_EQ(machine.adapters[0].events.front().number, 2U);
    EXPECT_THAT(machine.adapters[0].remaps, IsEmpty());
    EXPECT_THAT(machine.adapters[0].batteries, IsEmpty());
}

TEST_F(StateFile, IsAsItWasAfterARefusedChange) {
    Make();
    Store store(File(), DefaultMachine);
    const auto refuse = [](Machine& machine, Time) {
        machine.adapters[0].disks[1].failed = true;
        return false;
    };
    EXPECT_FALSE(store.Change(refuse));
    EXPECT_FALSE(store.Current().adapters[0].disks[1].failed);
    EXPECT_FALSE(Store(File(), DefaultMachine).Current().adapters[0].disks[1].failed);
}

TEST_F(StateFile, IsAsItWasAfterAChangeThatThrows) {
    Make();
    Store store(File(), DefaultMachine);
    const auto fail = [](Machine& machine, Time) -> bool {
        machine.adapters[0].disks[1].failed = true;
        throw std::runtime_error("broken");
    };
    EXPECT_THROW(store.Change(fail), std::runtime_error);
    EXPECT_FALSE(store.Current().adapters[0].disks[1].failed);
    EXPECT_FALSE(Store(File(), DefaultMachine).Current().adapters[0].disks[1].failed);
}

TEST_F(StateFile, IsNotWrittenByAChangeThatLeavesEverythingAsItWas) {
    Make();
    Store watching(File(), DefaultMachine);
    Store store(File(), DefaultMachine);
    const Machine* const before = &watching.Current();
    const HX_U16* const row = &before->adapters[0].disks[0].id;
    store.Change([](Machine&, Time) { return true; });
    // Rows that are read anew are other rows.
    EXPECT_EQ(&watching.Current().adapters[0].disks[0].id, row);
}

TEST_F(StateFile, ShowsEachProcessWhatTheOtherHasDone) {
    Make();
    Store store(File(), DefaultMachine);
    EXPECT_FALSE(IsLocated(store, 5));
    EXPECT_EQ(InChild([&] {
                  Store other(File(), DefaultMachine);
                  Locate(other, 5, true);
                  return 0;
              }),
              0);
    EXPECT_TRUE(IsLocated(store, 5));
}

TEST_F(StateFile, CountsEveryChangeOfTwoProcessesThatChangeItAtOnce) {
    Make();
    const auto add = [&] {
        Store store(File(), DefaultMachine);
        for (int i = 0; i < 100; ++i) {
            store.Change([](Machine& machine, Time) {
                ++machine.random;
                return true;
            });
        }
        return 0;
    };
    const std::uint64_t before = Store(File(), DefaultMachine).Current().random;
    const pid_t child = fork();
    if (child == 0) _exit(add());
    ASSERT_GT(child, 0);
    add();
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(Store(File(), DefaultMachine).Current().random, before + 200);
}

TEST_F(StateFile, CanBeMadeByTwoProcessesAtOnce) {
    for (int round = 0; round < 10; ++round) {
        std::filesystem::remove_all(root_.Path("/state"));
        const pid_t child = fork();
        if (child == 0) _exit(Refusal().empty() ? 0 : 1);
        ASSERT_GT(child, 0);
        EXPECT_EQ(Refusal(), "");
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
}

// The log's index tells whether anything is new: it must, whatever others do to the log.
struct Interference {
    const char* name;
    const char* before;  // what the other process does first, in SQL
    const char* after;   // and last
};
void PrintTo(const Interference& each, std::ostream* out) { *out << each.name; }

constexpr Interference kInterferences[] = {
    {"Nothing", "", ""},
    {"LogEmptiedBefore", "PRAGMA wal_checkpoint(TRUNCATE)", ""},
    {"LogEmptiedAfter", "", "PRAGMA wal_checkpoint(TRUNCATE)"},
    {"LogRestarted", "PRAGMA wal_checkpoint(RESTART)", "PRAGMA wal_checkpoint(RESTART)"},
    {"FileRewritten", "VACUUM", "VACUUM"},
};

class StateFileBesideOthers : public StateFile, public testing::WithParamInterface<Interference> {};

TEST_P(StateFileBesideOthers, ShowsEveryChangeHoweverOftenItWasTheSame) {
    Make();
    Store store(File(), DefaultMachine);
    for (int round = 0; round < 12; ++round) {
        const bool on = round % 2 == 0;
        for (int look = 0; look < 3; ++look) ASSERT_EQ(IsLocated(store, 5), !on) << round;
        ASSERT_EQ(InChild([&] {
                      Execute(GetParam().before);
                      {
                          Store other(File(), DefaultMachine);
                          Locate(other, 5, on);
                      }
                      Execute(GetParam().after);
                      return 0;
                  }),
                  0);
        ASSERT_EQ(IsLocated(store, 5), on) << round;
    }
}
INSTANTIATE_TEST_SUITE_P(Interferences, StateFileBesideOthers, testing::ValuesIn(kInterferences),
                         [](const auto& each) { return each.param.name; });

TEST_F(StateFile, ShowsTheChangesOfAProcessThatWasKilledAfterThem) {
    Make();
    Store store(File(), DefaultMachine);
    for (int round = 0; round < 10; ++round) {
        const bool on = round % 2 == 0;
        for (int look = 0; look < 3; ++look) ASSERT_EQ(IsLocated(store, 5), !on) << round;
        EXPECT_EQ(InChild([&] {
                      Store other(File(), DefaultMachine);
                      Locate(other, 5, on);
                      return raise(SIGKILL);
                  }),
                  -1);
        ASSERT_EQ(IsLocated(store, 5), on) << round;
    }
}

TEST_F(StateFile, IsReplacedAsAWholeForThoseWhoHaveItOpen) {
    Make("small");
    Store store(File(), DefaultMachine);
    EXPECT_EQ(store.Current().topology, "small");
    Make("default");
    EXPECT_EQ(store.Current().topology, "default");
    EXPECT_EQ(store.Current().adapters.size(), 2U);
}

// ---- Forks ----

// A forked child sees that disk 1 is located, and locates disk 2.
void LocateInChild(Store& store) {
    EXPECT_EQ(InChild([&] {
                  const bool seen = IsLocated(store, 1);
                  Locate(store, 2, true);
                  return seen && IsLocated(store, 2) ? 0 : 1;
              }),
              0);
}

TEST_F(StateFile, IsOpenedAnewByAForkedChild) {
    Make();
    Store store(File(), DefaultMachine);
    Locate(store, 1, true);
    LocateInChild(store);
    EXPECT_TRUE(IsLocated(store, 2));
    Locate(store, 3, true);
    EXPECT_TRUE(IsLocated(store, 3));
}

TEST_F(StateFile, IsOpenedAnewByAChildOfAForkedChild) {
    Make();
    Store store(File(), DefaultMachine);
    Locate(store, 1, true);
    EXPECT_EQ(InChild([&] {
                  const bool seen = IsLocated(store, 1);
                  LocateInChild(store);
                  return seen && IsLocated(store, 2) && !HasFailure() ? 0 : 1;
              }),
              0);
    EXPECT_TRUE(IsLocated(store, 2));
}

TEST_F(StateFile, ThatAForkedChildCannotOpenIsRefusedToItEachTime) {
    Make();
    Store store(File(), DefaultMachine, IfMissing::kRefuse);
    EXPECT_FALSE(IsLocated(store, 1));
    EXPECT_EQ(InChild([&] {
                  for (const char* const part : {"", "-wal", "-shm"}) {
                      std::filesystem::rename(File() + part, File() + part + ".old");
                  }
                  std::ofstream(File()).close();
                  Execute("CREATE TABLE t (n); DROP TABLE t");  // a database without a machine
                  int refused = 0;
                  for (int look = 0; look < 4; ++look) {
                      try {
                          store.Current();
                      } catch (const StoreError&) {
                          ++refused;
                      }
                  }
                  return refused;
              }),
              4);
}

// A daemon: the parent that has opened it ends at once, and others come and go meanwhile.
TEST_F(StateFile, KeepsTheChangesOfAForkedChildWhoseParentIsGone) {
    Make();
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t parent = fork();
    if (parent == 0) {
        auto store = std::make_unique<Store>(File(), DefaultMachine);
        Locate(*store, 1, true);
        const pid_t child = fork();
        if (child != 0) {
            store.reset();  // the last to close, for all that it knows
            _exit(0);
        }
        bool ok = true;
        for (HX_U16 i = 0; i < 40; ++i) {
            Locate(*store, 2, true);
            Locate(*store, 3, i % 2 == 1);
            ok = ok && IsLocated(*store, 2);
            usleep(2000);
        }
        const char answer = ok ? 'y' : 'n';
        _exit(write(ready[1], &answer, 1) == 1 ? 0 : 1);
    }
    close(ready[1]);
    ASSERT_EQ(waitpid(parent, nullptr, 0), parent);
    for (HX_U16 i = 0; i < 20; ++i) {
        Store other(File(), DefaultMachine);
        Locate(other, 4, true);
        usleep(1000);
    }
    char answer = 0;
    EXPECT_EQ(read(ready[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y');
    close(ready[0]);
    Store store(File(), DefaultMachine);
    EXPECT_TRUE(IsLocated(store, 2));
    EXPECT_TRUE(IsLocated(store, 3));
    EXPECT_TRUE(IsLocated(store, 4));
}

TEST_F(StateFile, InMemoryGoesOnInAForkedChild) {
    Store store(":memory:", DefaultMachine);
    Locate(store, 1, true);
    LocateInChild(store);
    EXPECT_FALSE(IsLocated(store, 2));
}

TEST_F(StateFile, InMemoryIsNoFile) {
    Store store(":memory:", DefaultMachine);
    Locate(store, 1, true);
    EXPECT_TRUE(IsLocated(store, 1));
    EXPECT_FALSE(root_.Exists("/state"));
    EXPECT_FALSE(std::filesystem::exists(":memory:"));
}

// ---- Time ----

TEST_F(StateFile, BringsTheMachineUpToNowWhenItIsLookedAt) {
    Machine machine = MakeMachine(BuiltInTopology("default"), 7, RealNow() - 3600'000);
    Battery& battery = machine.adapters[0].batteries.at(0);
    battery.phase = BatteryPhase::kDischarging;
    Store::Create(File(), machine);

    Store store(File(), DefaultMachine);
    EXPECT_LT(store.Current().adapters[0].batteries.at(0).info.curCapacity, 1680);
    // It is saved: another process need not do it again.
    const Time since = store.Current().adapters[0].batteries[0].since;
    EXPECT_GT(since, machine.clock.start);
    EXPECT_EQ(Store(File(), DefaultMachine).Current().adapters[0].batteries.at(0).since, since);
}

TEST(VirtualTime, GoesAsFastAsItsSpeed) {
    EXPECT_EQ(Now({1000, 50, 1}, 60), 1010);
    EXPECT_EQ(Now({1000, 50, 600}, 60), 7000);
    EXPECT_EQ(Now({1000, 50, 0}, 60), 1000);
}

TEST(VirtualTime, DoesNotGoBackWithTheRealClock) { EXPECT_EQ(Now({1000, 50, 1}, 20), 1000); }

TEST(VirtualTime, StopsAtItsEnd) {
    EXPECT_EQ(Now({1000, 0, INT64_MAX}, 60), INT64_MAX);
    EXPECT_EQ(Now({INT64_MAX, 0, 1}, INT64_MAX), INT64_MAX);
    EXPECT_EQ(Now({0, INT64_MIN, 1}, INT64_MAX), INT64_MAX);
}

TEST(VirtualTime, IsReachedAtARealTime) {
    EXPECT_EQ(RealTimeOf({1000, 50, 1}, 1010), 60);
    EXPECT_EQ(RealTimeOf({1000, 50, 600}, 7000), 60);
    EXPECT_EQ(RealTimeOf({1000, 50, 600}, 7001), 61);
    EXPECT_EQ(RealTimeOf({1000, 50, 1}, 900), 50);
    EXPECT_EQ(RealTimeOf({1000, 50, 0}, 1010), kNever);
    EXPECT_EQ(RealTimeOf({1000, 50, 1}, kNever), kNever);
}

// ---- Where it is ----

struct PathCase {
    const char* name;
    std::vector<std::pair<const char*, const char*>> environment;  // everything else is unset
    const char* path;
};
void PrintTo(const PathCase& each, std::ostream* out) { *out << each.name; }

const PathCase kPaths[] = {
    {"AUserIsInItsHome",
     {{"HOME", "/home/someone"}},
     "/home/someone/.local/state/vexorapi/hxsim.db"},
    {"AUserWithAStateFolderIsThere",
     {{"HOME", "/home/someone"}, {"XDG_STATE_HOME", "/state"}},
     "/state/vexorapi/hxsim.db"},
    {"AStateFolderThatIsNotAbsoluteIsIgnored",
     {{"HOME", "/home/someone"}, {"XDG_STATE_HOME", "state"}},
     "/home/someone/.local/state/vexorapi/hxsim.db"},
    {"ARootIsBelowIt",
     {{"XDG_STATE_HOME", "/state"}, {"VEXORAPI_ROOT", "/prefix"}},
     "/prefix/var/lib/vexorapi/hxsim.db"},
    {"ANamedFileIsThatFile",
     {{"VEXORAPI_ROOT", "/prefix"}, {"HXSIM_STATE", "/named.db"}},
     "/named.db"},
};

// Unsets what says where the state file is, as long as it lives.
class CleanEnvironment {
public:
    CleanEnvironment() {
        for (const char* name : {"HXSIM_STATE", "VEXORAPI_ROOT", "XDG_STATE_HOME", "HOME"}) {
            const char* const value = getenv(name);
            before_.emplace_back(name, value == nullptr ? "" : value);
            unsetenv(name);
        }
    }
    CleanEnvironment(const CleanEnvironment&) = delete;
    CleanEnvironment& operator=(const CleanEnvironment&) = delete;
    ~CleanEnvironment() {
        for (const auto& [name, value] : before_) {
            if (value.empty()) {
                unsetenv(name);
            } else {
                setenv(name, value.c_str(), 1);
            }
        }
    }

private:
    std::vector<std::pair<const char*, std::string>> before_;
};

class StatePathOf : public testing::TestWithParam<PathCase> {};

TEST_P(StatePathOf, FollowsFromTheEnvironment) {
    const CleanEnvironment clean;
    for (const auto& [name, value] : GetParam().environment) setenv(name, value, 1);
    EXPECT_EQ(StatePath(), GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(Environments, StatePathOf, testing::ValuesIn(kPaths),
                         [](const auto& each) { return std::string(each.param.name); });

TEST(StateFilePath, OfAUserWithoutEnvironmentIsFoundInTheUserList) {
    const CleanEnvironment clean;
    EXPECT_THAT(StatePath(), testing::EndsWith("/.local/state/vexorapi/hxsim.db"));
}

// ---- Files that cannot be used ----

TEST_F(StateFile, OfANewerVersionIsRefusedAndCanBeMadeAnew) {
    Make();
    Execute("PRAGMA user_version = 1000");
    EXPECT_EQ(Refusal(), File() +
                             " was made by a newer version of the virtual controller (schema "
                             "1000; this one knows " +
                             std::to_string(kSchemaVersion) +
                             "). Move it away, or make a new machine in its place "
                             "with: hxsimctl init --force");
    Make();
    EXPECT_EQ(Refusal(), "");
}

TEST_F(StateFile, OfAnOlderVersionThatNothingLeadsFromIsRefused) {
    Make();
    Execute("PRAGMA user_version = 0");
    EXPECT_EQ(Refusal(), File() +
                             " was made by a version of the virtual controller that is too old "
                             "(schema 0). Move it away, or make a new machine in its place "
                             "with: hxsimctl init --force");
}

TEST_F(StateFile, OfAnotherProgramIsRefusedAndLeftAsItIs) {
    std::filesystem::create_directories(root_.Path("/state"));
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(File().c_str(), &database), SQLITE_OK);
    sqlite3_exec(database, "CREATE TABLE diary (day TEXT)", nullptr, nullptr, nullptr);
    sqlite3_close(database);
    const std::string before = root_.Read("/state/hxsim.db");
    const std::string refusal = File() +
                                " is another program's database; move it away and run: hxsimctl "
                                "init, or name another file in HXSIM_STATE.";
    EXPECT_EQ(Refusal(), refusal);
    EXPECT_THROW(Make(), StoreError);
    EXPECT_EQ(root_.Read("/state/hxsim.db"), before);
}

TEST_F(StateFile, ThatIsNoDatabaseIsRefusedAndLeftAsItIs) {
    const std::string text(5000, 'x');
    root_.Write("/state/hxsim.db", text);
    EXPECT_THAT(Refusal(), HasSubstr("is damaged or no state file of the virtual controller"));
    EXPECT_THAT(Refusal(), HasSubstr("run: hxsimctl init"));
    EXPECT_EQ(root_.Read("/state/hxsim.db"), text);
}

TEST_F(StateFile, ThatIsEmptyGetsTheDefaultMachine) {
    root_.Write("/state/hxsim.db", "");
    EXPECT_EQ(Store(File(), DefaultMachine).Current().topology, "default");
}

// Bytes that no program has written: nothing crashes, and what is read is sound or refused.
TEST_F(StateFile, ThatIsDamagedAnywhereIsRefusedOrSound) {
    Make("default");
    const std::string whole = root_.Read("/state/hxsim.db");
    std::mt19937 random(1);
    for (int round = 0; round < 150; ++round) {
        std::string damaged = whole;
        for (int i = 0; i < 20; ++i) {
            damaged[random() % damaged.size()] = static_cast<char>(random());
        }
        if (round % 3 == 0) damaged.resize(random() % damaged.size());
        root_.Write("/state/hxsim.db", damaged);
        std::filesystem::remove(File() + "-wal");
        try {
            EXPECT_THAT(Check(Store(File(), DefaultMachine).Current()), IsEmpty());
        } catch (const StoreError& error) {
            EXPECT_THAT(error.what(), HasSubstr("hxsim"));
        }
    }
}

struct Damage {
    const char* name;
    const char* sql;
    const char* sentence;
};

void PrintTo(const Damage& damage, std::ostream* out) { *out << damage.name; }

class DamagedStateFile : public StateFile, public testing::WithParamInterface<Damage> {};

TEST_P(DamagedStateFile, IsRefusedWithTheReason) {
    Make("default");
    Execute(GetParam().sql);
    EXPECT_EQ(Refusal(), File() + " is damaged: " + GetParam().sentence +
                             " Move it away and run: hxsimctl init");
}

constexpr Damage kDamages[] = {
    {"NumberTooLarge", "UPDATE disk SET slot = 65536 WHERE adapter = 0 AND id = 3",
     "table disk has an impossible slot."},
    {"NumberBelowZero", "UPDATE disk SET phy = -1 WHERE adapter = 0 AND id = 3",
     "table disk has an impossible phy."},
    {"NeitherTrueNorFalse", "UPDATE disk SET failed = 2 WHERE adapter = 0 AND id = 3",
     "table disk has an impossible failed."},
    {"NoSuchKindOfSpare", "UPDATE disk SET spare = 3 WHERE adapter = 0 AND id = 3",
     "table disk has an impossible spare."},
    {"NoSuchLevel", "UPDATE virtual_disk SET level = 2 WHERE adapter = 0",
     "table virtual_disk has an impossible level."},
    {"NoSuchRemapReason",
     "INSERT INTO remap (adapter, disk, lba, sectors, reason) "
     "VALUES (0, 3, 5, 1, 99)",
     "table remap has an impossible reason."},
    {"RecordTooShort", "UPDATE adapter SET info = x'00'", "table adapter has an impossible info."},
    {"NoMachine", "DELETE FROM machine", "table machine is empty."},
    {"RowOfNoAdapter", "UPDATE block SET adapter = 3 WHERE adapter = 1 AND id = 0",
     "table block has a row of adapter 3, which is not there."},
    {"OverlappingBlocks", "UPDATE block SET start = 5 WHERE adapter = 1 AND id = 0",
     "a1/pd0 has sectors 0 to 4 in no block."},
};
INSTANTIATE_TEST_SUITE_P(Rows, DamagedStateFile, testing::ValuesIn(kDamages),
                         [](const auto& about) { return std::string(about.param.name); });

TEST_F(StateFile, WithoutATableIsRefused) {
    Make();
    Execute("DROP TABLE remap");
    EXPECT_THAT(Refusal(), HasSubstr("is damaged or no state file of the virtual controller (no "
                                     "such table: remap); move it away and run: hxsimctl init"));
}

TEST_F(StateFile, ThatIsAFolderIsRefused) {
    std::filesystem::create_directories(File());
    EXPECT_THAT(Refusal(), HasSubstr("is no regular file; name another one in HXSIM_STATE."));
}

TEST_F(StateFile, ThatIsNoFileIsRefusedAndNothingIsLeftBesideIt) {
    std::filesystem::create_directory(root_.Path("/state"));
    ASSERT_EQ(mkfifo(File().c_str(), 0600), 0);
    EXPECT_THAT(Refusal(), HasSubstr("is no regular file"));
    EXPECT_THROW(Make(), StoreError);
    const std::filesystem::directory_iterator folder(root_.Path("/state"));
    EXPECT_EQ(std::distance(begin(folder), end(folder)), 1);
}

TEST_F(StateFile, BehindALinkIsUsed) {
    root_.Write("/state/other", "");
    std::filesystem::create_symlink(root_.Path("/state/other"), File());
    EXPECT_EQ(Refusal(), "");
}

TEST_F(StateFile, BehindALinkIsNotMadeAnew) {
    Make("default");
    std::filesystem::rename(File(), root_.Path("/state/other"));
    std::filesystem::create_symlink(root_.Path("/state/other"), File());
    const std::string before = root_.Read("/state/other");
    EXPECT_THROW(Make(), StoreError);
    EXPECT_EQ(root_.Read("/state/other"), before);
    EXPECT_EQ(Store(File(), DefaultMachine).Current().topology, "default");
}

TEST_F(StateFile, OfAnotherUserIsNotMadeAnew) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can give files away";
    Make("default");
    ASSERT_EQ(chown(File().c_str(), 65534, 65534), 0);
    EXPECT_THROW(Make(), StoreError);
    EXPECT_EQ(Store(File(), DefaultMachine).Current().topology, "default");
}

TEST_F(StateFile, BelowAFileIsRefused) {
    root_.Write("/state", "a file");
    EXPECT_THAT(Refusal(), HasSubstr("cannot be made (Not a directory); name another file"));
}

// What a disk without room does, as far as a process can be made to feel it.
TEST_F(StateFile, ThatCannotGrowIsRefusedAndAsItWas) {
    Make();
    EXPECT_EQ(InChild([&] {
                  signal(SIGXFSZ, SIG_IGN);
                  Store store(File(), DefaultMachine);
                  store.Current();
                  const rlimit none{1, 1};
                  setrlimit(RLIMIT_FSIZE, &none);
                  try {
                      Locate(store, 1, true);
                  } catch (const StoreError&) {
                      return IsLocated(store, 1) ? 2 : 0;
                  }
                  return 1;
              }),
              0);
    Store store(File(), DefaultMachine);
    EXPECT_FALSE(IsLocated(store, 1));
}

TEST_F(StateFile, ThatAnotherProcessKeepsIsRefusedAfterFiveSeconds) {
    Make();
    Store store(File(), DefaultMachine);
    store.Current();
    const Connection keeper(File());
    const Transaction transaction(keeper);
    using std::chrono::steady_clock;
    const steady_clock::time_point start = steady_clock::now();
    EXPECT_THROW(Locate(store, 1, true), StoreError);
    EXPECT_GE(steady_clock::now() - start, std::chrono::milliseconds(4900));
    EXPECT_FALSE(IsLocated(store, 1));  // looking does not wait
}

// ---- Killed processes ----

TEST_F(StateFile, IsSoundAfterProcessesWereKilledWhileTheyWrote) {
    Make("default");
    const std::uint64_t before = Store(File(), DefaultMachine).Current().random;
    std::mt19937 random(1);
    for (int kills = 0; kills < 200; ++kills) {
        int begun[2];
        ASSERT_EQ(pipe(begun), 0);
        const pid_t child = fork();
        if (child == 0) {
            Store store(File(), DefaultMachine);
            for (bool on = true;; on = !on) {
                if (!on && write(begun[1], "", 1) != 1) _exit(1);
                store.Change([&](Machine& machine, Time) {
                    // Two rows that must go together, and some that make the log grow.
                    for (Disk& disk : machine.adapters[0].disks) disk.locate_light = on;
                    ++machine.random;
                    return true;
                });
            }
        }
        ASSERT_GT(child, 0);
        close(begun[1]);
        // Half of them at any moment of their beginning, the others once they have written
        // something.
        char ignored;
        if (kills % 2 == 0) {
            ASSERT_EQ(read(begun[0], &ignored, 1), 1);
        }
        usleep(static_cast<useconds_t>(random() % 15000));
        kill(child, SIGKILL);
        ASSERT_EQ(waitpid(child, nullptr, 0), child);
        close(begun[0]);
        Store store(File(), DefaultMachine);
        const Machine& machine = store.Current();
        ASSERT_THAT(Check(machine), IsEmpty()) << "after kill " << kills;
        for (const Disk& disk : machine.adapters[0].disks) {
            ASSERT_EQ(disk.locate_light, machine.adapters[0].disks[0].locate_light);
        }
    }
    // How many changes there were in between is for the machine's speed to say.
    EXPECT_NE(Store(File(), DefaultMachine).Current().random, before);
}

}  // namespace
}  // namespace hxsim
