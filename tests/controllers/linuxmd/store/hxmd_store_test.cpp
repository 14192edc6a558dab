// The state file.
#include "store/hxmd_store.h"

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "support/temporary_root.h"

using namespace hxmd;
using hxsqlite::StoreError;

namespace {

class TheStateFile : public testing::Test {
protected:
    static std::string File() { return StatePath(); }
    TemporaryRoot root_;
};

TEST_F(TheStateFile, StandsBelowTheRootAndIsForEverybodyToRead) {
    EXPECT_EQ(File(), root_.Path("/var/lib/vexorapi/hxmd.db"));
    Store store(File());
    EXPECT_TRUE(store.IsWritable());
    struct stat found {};
    ASSERT_EQ(stat(File().c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777, 0644U);
    ASSERT_EQ(stat(root_.Path("/var/lib/vexorapi").c_str(), &found), 0);
    EXPECT_EQ(found.st_mode & 0777, 0755U);
}

TEST_F(TheStateFile, KeepsEveryTable) {
    Kept kept;
    Store(File()).Change([&](Kept& saved) {
        saved.known_disks.push_back({4, "wwid x", "T-1000", std::string("S\0N", 3), UINT64_MAX});
        saved.known_arrays.push_back({5, "uuid", "data", 0x10, 4, 77});
        saved.known_blocks.push_back({.id = 1, .disk = 4, .array = 5, .slot = 2, .start = 2048});
        saved.known_enclosures.push_back({6, "0x50"});
        saved.spares.push_back({4});
        saved.smart.push_back({.disk = 4, .at = 99, .passed = 1});
        saved.settings.push_back({"rebuild_rate", 30});
        saved.look.push_back({"boot", 12});
        saved.disks.push_back({.id = 4, .present = 1, .serves = 5, .errors = 3, .bad_blocks = 2});
        saved.arrays.push_back({.id = 5, .present = 1, .state = 4, .percent = 50});
        saved.slots.push_back({5, 2, 4});
        saved.events.push_back({11, std::string(64, '\x01')});
        kept = saved;
    });
    const Kept read = Store(File()).Read();
    EXPECT_EQ(read.known_disks, kept.known_disks);
    EXPECT_EQ(read.known_arrays, kept.known_arrays);
    EXPECT_EQ(read.known_blocks, kept.known_blocks);
    EXPECT_EQ(read.known_enclosures, kept.known_enclosures);
    EXPECT_EQ(read.spares, kept.spares);
    EXPECT_EQ(read.smart, kept.smart);
    EXPECT_EQ(read.settings, kept.settings);
    EXPECT_EQ(read.look, kept.look);
    EXPECT_EQ(read.disks, kept.disks);
    EXPECT_EQ(read.arrays, kept.arrays);
    EXPECT_EQ(read.slots, kept.slots);
    EXPECT_EQ(read.events, kept.events);
}

TEST_F(TheStateFile, KeepsNothingOfAChangeThatIsThrownOutOf) {
    Store store(File());
    EXPECT_THROW(store.Change([](Kept& kept) {
        kept.spares.push_back({4});
        throw std::runtime_error("no");
    }),
                 std::runtime_error);
    EXPECT_TRUE(store.Read().spares.empty());
}

TEST_F(TheStateFile, ThatIsNotThereIsNothingToWhoMayNotMakeIt) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can become nobody";
    std::filesystem::permissions(root_.Path(""), std::filesystem::perms(0755));
    ASSERT_EQ(seteuid(65534), 0);
    {
        Store store(File());
        EXPECT_FALSE(store.IsWritable());
        EXPECT_FALSE(store.IsThere());
        EXPECT_TRUE(store.Read().known_disks.empty());
        EXPECT_THROW(store.Change([](Kept&) {}), StoreError);
        ASSERT_EQ(seteuid(0), 0);
        Store(File()).Change([](Kept& kept) { kept.spares.push_back({4}); });
        ASSERT_EQ(seteuid(65534), 0);
        EXPECT_EQ(store.Read().spares.size(), 1U);  // it is found when it comes
        EXPECT_THROW(store.Change([](Kept&) {}), StoreError);
    }
    ASSERT_EQ(seteuid(0), 0);
}

TEST_F(TheStateFile, OfAnotherProgramIsLeftAsItIs) {
    std::filesystem::create_directories(root_.Path("/var/lib/vexorapi"));
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(File().c_str(), &database), SQLITE_OK);
    sqlite3_exec(database, "CREATE TABLE diary (day TEXT)", nullptr, nullptr, nullptr);
    sqlite3_close(database);
    const std::string before = root_.Read("/var/lib/vexorapi/hxmd.db");
    EXPECT_THROW(Store{File()}, StoreError);
    EXPECT_EQ(root_.Read("/var/lib/vexorapi/hxmd.db"), before);
}

TEST_F(TheStateFile, OfTheFirstVersionGetsWhatItLacks) {
    Store(File()).Change([](Kept& kept) { kept.spares.push_back({4}); });
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(File().c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, "DROP TABLE pause; PRAGMA user_version = 1", nullptr, nullptr,
                           nullptr),
              SQLITE_OK);
    sqlite3_close(database);
    Store store(File());
    EXPECT_EQ(store.Read().spares.size(), 1U);
    store.Change([](Kept& kept) { kept.pauses.push_back({1, 2, 3, "boot"}); });
    EXPECT_EQ(store.Read().pauses.size(), 1U);
}

TEST_F(TheStateFile, ThatIsNoDatabaseOrNoFileIsRefused) {
    root_.Write("/var/lib/vexorapi/hxmd.db", std::string(5000, 'x'));
    EXPECT_THROW(Store{File()}, StoreError);
    std::filesystem::remove(File());
    std::filesystem::create_directories(File());
    EXPECT_THROW(Store{File()}, StoreError);
}

TEST_F(TheStateFile, WithAnImpossibleNumberIsRefused) {
    Store(File()).Change([](Kept& kept) { kept.spares.push_back({4}); });
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(File().c_str(), &database), SQLITE_OK);
    sqlite3_exec(database, "UPDATE spare SET disk = 65536", nullptr, nullptr, nullptr);
    sqlite3_close(database);
    Store store(File());
    EXPECT_THROW(store.Read(), StoreError);
}

}  // namespace
