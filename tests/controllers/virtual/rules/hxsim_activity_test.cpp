// Background activities over time: small machines, literal stories.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>

#include "calls/hxsim_activity_control.h"
#include "calls/hxsim_disk_change.h"
#include "codes/activity.h"
#include "codes/disk.h"
#include "codes/state.h"
#include "codes/status.h"
#include "controllers/virtual/support/living_small_machine.h"
#include "model/hxsim_home.h"
#include "model/hxsim_invariants.h"
#include "rules/hxsim_migration.h"

namespace {

using hxcodes::ActivityKind;
using hxcodes::CheckType;
using hxcodes::ControlAction;
using hxcodes::RemapReason;
using hxcodes::State;
using hxcodes::Status;
using hxsim::Owner;
using living::kHundredSeconds;
using living::SmallMachine;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kRunning = 1, kPaused = 2, kAutoPaused = 3;

int Init(SmallMachine& it, hxsim::Time second, HX_U16 id, HX_U8 type) {
    return it.Call(second, [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::StartInitialisation(adapter, now, id, type);
    });
}

int Check(SmallMachine& it, hxsim::Time second, HX_U16 id, HX_U8 type) {
    return it.Call(second, [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::StartCheck(adapter, now, id, type);
    });
}

int Patrol(SmallMachine& it, hxsim::Time second, HX_U16 disk) {
    return it.Call(second, [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::StartMediaPatrol(adapter, now, disk);
    });
}

int Scrub(SmallMachine& it, hxsim::Time second, HX_U16 disk) {
    return it.Call(second, [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::StartDataScrub(adapter, now, disk);
    });
}

int Rebuild(SmallMachine& it, hxsim::Time second, HX_U16 id, std::vector<HX_U16> disks) {
    return it.Call(second, [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::RebuildVirtualDisk(adapter, now, id, disks);
    });
}

int RebuildGroup(SmallMachine& it, hxsim::Time second, HX_U16 id, std::vector<HX_U16> disks) {
    return it.Call(second, [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::RebuildDiskGroup(adapter, now, id, disks);
    });
}

int MigrateToRaid6(SmallMachine& it, hxsim::Time second, HX_U16 id,
                   std::initializer_list<HX_U16> disks) {
    Create_LD_Param param{};
    param.LDID = id;
    param.RaidMode = 6;
    for (const HX_U16 disk : disks) param.HDIDs[param.HDCount++] = disk;
    return it.Call(second, [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::StartMigration(adapter, now, param);
    });
}

// ---- Initialisation ----

TEST(Initialisation, InTheForegroundTellsOfItsProgress) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.VirtualDisk(id).errors = 4;
    EXPECT_EQ(0, Init(it, 0, id, hxcodes::Init::kForeground));
    EXPECT_FALSE(it.VirtualDisk(id).initialised);
    it.At(99);
    EXPECT_FALSE(it.VirtualDisk(id).initialised);
    it.At(1000);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("0 1.60 0", "20 1.66 0 20", "40 1.66 0 40",
                                             "60 1.66 0 60", "80 1.66 0 80", "100 1.65 0"));
    EXPECT_TRUE(it.VirtualDisk(id).initialised);
    EXPECT_EQ(0u, it.VirtualDisk(id).errors);
    EXPECT_THAT(it.It().activities, IsEmpty());
}

TEST(Initialisation, InTheBackgroundGoesAtTheRateThatIsSet) {
    SmallMachine it(3);
    it.It().config.InitRate = 50;
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    EXPECT_EQ(0, Init(it, 0, id, hxcodes::Init::kBackground));
    it.At(1000);
    EXPECT_EQ("200 1.55 0", it.TakeEvents().back());
}

TEST(Initialisation, AtARateOfZeroGoesAsAtOne) {
    SmallMachine it(3);
    it.It().config.InitRate = 0;
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    EXPECT_EQ(0, Init(it, 0, id, hxcodes::Init::kBackground));
    it.At(100000);
    EXPECT_EQ("10000 1.55 0", it.TakeEvents().back());
}

TEST(Initialisation, ThatIsQuickTakesFiveSecondsWhateverTheSize) {
    SmallMachine it(3);
    const HX_U16 small = it.AddVirtualDisk(0, {0}, 0, 1);
    const HX_U16 large = it.AddVirtualDisk(0, {1}, 0, 2 * kHundredSeconds);
    EXPECT_EQ(0, Init(it, 0, small, hxcodes::Init::kQuick));
    EXPECT_EQ(0, Init(it, 0, large, hxcodes::Init::kQuick));
    it.At(1000);
    EXPECT_THAT(it.TakeEvents(),
                ElementsAre("0 1.40 0", "0 1.40 1", "1 1.46 0 20", "1 1.46 1 20", "2 1.46 0 40",
                            "2 1.46 1 40", "3 1.46 0 60", "3 1.46 1 60", "4 1.46 0 80",
                            "4 1.46 1 80", "5 1.45 0", "5 1.45 1"));
}

TEST(Initialisation, IsRefusedWithAReason) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    EXPECT_EQ(Status::kNoVirtualDisk, Init(it, 0, 7, hxcodes::Init::kQuick));
    EXPECT_EQ(Status::kBadAction, Init(it, 0, id, hxcodes::Init::kNone));
    EXPECT_EQ(0, Init(it, 0, id, hxcodes::Init::kQuick));
    EXPECT_EQ(Status::kBusy, Init(it, 1, id, hxcodes::Init::kQuick));
    it.Fail(50, 0);
    EXPECT_EQ(Status::kWrongState, Init(it, 60, id, hxcodes::Init::kQuick));
}

TEST(Initialisation, InTheBackgroundEndsForARebuild) {
    SmallMachine it(4);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    Init(it, 0, id, hxcodes::Init::kBackground);
    it.Fail(10, 0);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("0 1.50 0", "10 2.2 0", "10 1.4 0", "10 2.10 3",
                                             "10 1.54 0", "10 1.70 0"));
}

TEST(Initialisation, InTheForegroundKeepsARebuildWaiting) {
    SmallMachine it(4);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    Init(it, 0, id, hxcodes::Init::kForeground);
    it.Fail(90, 0);
    it.TakeEvents();
    it.At(110);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("100 1.65 0", "100 2.10 3", "100 1.70 0"));
}

TEST(Initialisation, FailsWithItsVirtualDisk) {
    SmallMachine it(1);
    const HX_U16 id = it.AddVirtualDisk(0, {0});
    Init(it, 0, id, hxcodes::Init::kBackground);
    it.Fail(10, 0);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("0 1.50 0", "10 2.2 0", "10 1.0 0", "10 1.57 0"));
}

// ---- Checks ----

TEST(ConsistencyCheck, FindsWhatDisagrees) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.VirtualDisk(id).errors = 3;
    EXPECT_EQ(0, Check(it, 0, id, CheckType::kOnly));
    it.At(99);
    it.TakeEvents();
    it.At(100);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("100 1.8 0 3", "100 1.25 0"));
    EXPECT_EQ(3u, it.VirtualDisk(id).errors);
}

TEST(ConsistencyCheck, ThatFixesLeavesNothingThatDisagrees) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.VirtualDisk(id).errors = 3;
    EXPECT_EQ(0, Check(it, 0, id, CheckType::kAndFix));
    it.At(99);
    it.TakeEvents();
    it.At(100);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("100 1.7 0 3", "100 1.35 0"));
    EXPECT_EQ(0u, it.VirtualDisk(id).errors);
}

TEST(ConsistencyCheck, SaysNothingWhenAllAgrees) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    EXPECT_EQ(0, Check(it, 0, id, CheckType::kOnly));
    it.At(99);
    it.TakeEvents();
    it.At(100);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("100 1.25 0"));
}

TEST(ConsistencyCheck, IsRefusedWithAReason) {
    SmallMachine it(4);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    const HX_U16 plain = it.AddVirtualDisk(0, {3});
    EXPECT_EQ(Status::kNoVirtualDisk, Check(it, 0, 7, CheckType::kOnly));
    EXPECT_EQ(Status::kBadAction, Check(it, 0, id, 2));
    EXPECT_EQ(Status::kNotRedundant, Check(it, 0, plain, CheckType::kOnly));
    EXPECT_EQ(0, Check(it, 0, id, CheckType::kOnly));
    EXPECT_EQ(Status::kBusy, Check(it, 1, id, CheckType::kOnly));
    it.VirtualDisk(id).initialised = false;
    EXPECT_EQ(Status::kWrongState, Check(it, 200, id, CheckType::kOnly));
}

// ---- Steering ----

TEST(AnActivity, PausedStandsStillAndGoesOnWhereItWasOverAReload) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    Init(it, 0, id, hxcodes::Init::kForeground);
    EXPECT_EQ(0, it.Control(30, id, ControlAction::kPause));
    EXPECT_EQ(kPaused, it.ActivityOf(id)->state);
    SmallMachine reloaded = it;
    const hxsim::Time later = reloaded.At(1000);
    EXPECT_EQ(30, Percentage(*reloaded.ActivityOf(id), later));
    EXPECT_EQ(0, reloaded.Control(1000, id, ControlAction::kResume));
    reloaded.At(2000);
    EXPECT_THAT(reloaded.TakeEvents(),
                ElementsAre("0 1.60 0", "20 1.66 0 20", "30 1.62 0", "1000 1.63 0",
                            "1010 1.66 0 40", "1030 1.66 0 60", "1050 1.66 0 80", "1070 1.65 0"));
}

TEST(AnActivity, AbortedEndsWithoutItsEffect) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    Init(it, 0, id, hxcodes::Init::kForeground);
    EXPECT_EQ(0, it.Control(10, id, ControlAction::kAbort));
    it.At(1000);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("0 1.60 0", "10 1.64 0"));
    EXPECT_FALSE(it.VirtualDisk(id).initialised);
}

TEST(AnActivity, CannotBeControlledInVain) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    EXPECT_EQ(Status::kNoActivity, it.Control(0, id, ControlAction::kPause));
    Init(it, 0, id, hxcodes::Init::kForeground);
    EXPECT_EQ(Status::kBadAction, it.Control(1, id, 0));
    EXPECT_EQ(Status::kBadAction, it.Control(1, id, 4));
    EXPECT_EQ(Status::kNoChange, it.Control(1, id, ControlAction::kResume));
    it.Control(2, id, ControlAction::kPause);
    EXPECT_EQ(Status::kNoChange, it.Control(3, id, ControlAction::kPause));
}

TEST(AnActivity, GoesOnAtTheNewSpeedWhenTheRateIsSet) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    Init(it, 0, id, hxcodes::Init::kForeground);
    const hxsim::Time now = it.At(50);
    it.It().config.InitRate = 25;
    hxsim::Reschedule(it.It(), now);
    EXPECT_EQ(50, Percentage(*it.ActivityOf(id), now));
    it.At(1000);
    EXPECT_EQ("250 1.65 0", it.TakeEvents().back());
}

TEST(AnActivity, OfEveryVirtualDiskIsPausedAtOnce) {
    SmallMachine it(4);
    const HX_U16 first = it.AddVirtualDisk(0, {0});
    const HX_U16 second = it.AddVirtualDisk(0, {1});
    Init(it, 0, first, hxcodes::Init::kForeground);
    Init(it, 0, second, hxcodes::Init::kForeground);
    Patrol(it, 0, 3);
    it.TakeEvents();
    EXPECT_EQ(0, it.Call(5, hxsim::PauseAll));
    EXPECT_THAT(it.TakeEvents(), ElementsAre("5 1.62 0", "5 1.62 1"));
    EXPECT_EQ(kRunning, hxsim::ActivityOf(it.It(), Owner::kDisk, 3)->state);
    EXPECT_EQ(0, it.Call(6, hxsim::PauseAll));
    EXPECT_THAT(it.TakeEvents(), IsEmpty());
}

TEST(AnActivity, OfAllVirtualDisksOfADiskGroupIsControlledByTheGroup) {
    SmallMachine it(4);
    const HX_U16 group = it.AddGroup(5, {0, 1, 2});
    const HX_U16 first = it.AddVirtualDiskTo(group);
    const HX_U16 second = it.AddVirtualDiskTo(group, kHundredSeconds / 2);
    it.MakeGlobalSpare(3);
    const auto pause = [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::ControlGroup(adapter, now, group, ControlAction::kPause);
    };
    EXPECT_EQ(Status::kNoActivity, it.Call(0, pause));
    it.Fail(0, 1);
    EXPECT_EQ(0, it.Call(10, pause));
    EXPECT_EQ(kPaused, it.ActivityOf(first)->state);
    EXPECT_EQ(kPaused, it.ActivityOf(second)->state);
    EXPECT_EQ(Status::kNoChange, it.Call(20, pause));
}

// ---- Rebuilds by hand ----

TEST(RebuildByHand, TakesTheDiskThatIsNamed) {
    SmallMachine it(4);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.It().config.AutoRebuildOn = 0;
    it.Fail(0, 1);
    EXPECT_EQ(0, Rebuild(it, 10, id, {3}));
    it.At(200);
    EXPECT_THAT(it.TakeEvents(),
                ElementsAre("0 2.2 1", "0 1.4 0", "10 1.70 0", "30 1.76 0 20", "50 1.76 0 40",
                            "70 1.76 0 60", "90 1.76 0 80", "110 1.75 0", "110 1.1 0"));
    it.Replace(300, 1);
    it.At(600);
    EXPECT_EQ(3, it.BlockOf(id, 1)->disk);  // where it has been put it belongs
    EXPECT_THAT(hxsim::Check(it.machine), IsEmpty());
}

TEST(RebuildByHand, StartsAnAbortedOneAgainWhichDoesNotStartByItself) {
    SmallMachine it(4);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    it.Fail(0, 1);
    it.Control(10, id, ControlAction::kAbort);
    it.TakeEvents();
    hxsim::Settle(it.It(), it.At(500));
    EXPECT_THAT(it.TakeEvents(), IsEmpty());
    EXPECT_EQ(State::kRebuilding, it.BlockOf(id, 1)->state);
    EXPECT_EQ(0, Rebuild(it, 500, id, {3}));
    it.At(600);
    EXPECT_EQ("600 1.1 0", it.TakeEvents().back());
    EXPECT_THAT(hxsim::Check(it.machine), IsEmpty());
}

TEST(RebuildByHand, IsRefusedWithAReason) {
    SmallMachine it(6);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    const HX_U16 plain = it.AddVirtualDisk(0, {3});
    const HX_U16 small = it.AddDisk(kHundredSeconds - 1);
    it.It().config.AutoRebuildOn = 0;
    EXPECT_EQ(Status::kNoVirtualDisk, Rebuild(it, 0, 9, {4}));
    EXPECT_EQ(Status::kNoDisk, Rebuild(it, 0, id, {99}));
    EXPECT_EQ(Status::kDiskRepeated, Rebuild(it, 0, id, {4, 4}));
    EXPECT_EQ(Status::kWrongState, Rebuild(it, 0, id, {4}));
    EXPECT_EQ(Status::kNotRedundant, Rebuild(it, 0, plain, {4}));
    it.Fail(0, 1);
    EXPECT_EQ(Status::kDiskInUse, Rebuild(it, 0, id, {0}));
    EXPECT_EQ(Status::kDiskNotReady, Rebuild(it, 0, id, {1}));
    EXPECT_EQ(Status::kNoSpace, Rebuild(it, 0, id, {small}));
    EXPECT_EQ(Status::kBadDiskCount, Rebuild(it, 0, id, {4, 5}));
    EXPECT_EQ(Status::kBadDiskCount, Rebuild(it, 0, id, {}));
    it.Disk(4).offline = true;
    EXPECT_EQ(Status::kDiskNotReady, Rebuild(it, 0, id, {4}));
    EXPECT_EQ(0, Rebuild(it, 0, id, {5}));
    EXPECT_EQ(Status::kBusy, Rebuild(it, 0, id, {5}));
}

TEST(RebuildByHand, OfADiskGroupTakesAWholeDisk) {
    SmallMachine it(5);
    const HX_U16 group = it.AddGroup(5, {0, 1, 2});
    const HX_U16 id = it.AddVirtualDiskTo(group);
    it.AddVirtualDisk(0, {3}, 0, 1000);
    it.It().config.AutoRebuildOn = 0;
    EXPECT_EQ(Status::kNoDiskGroup, RebuildGroup(it, 0, 7, {4}));
    EXPECT_EQ(Status::kWrongState, RebuildGroup(it, 0, group, {4}));
    it.Fail(0, 1);
    EXPECT_EQ(Status::kOnDiskGroup, Rebuild(it, 0, id, {4}));
    EXPECT_EQ(Status::kDiskTaken, RebuildGroup(it, 0, group, {3}));
    EXPECT_EQ(0, RebuildGroup(it, 0, group, {4}));
    it.At(100);
    EXPECT_EQ(State::kOptimal, it.VirtualDisk(id).state);
    EXPECT_EQ(4, hxsim::HomeOf(it.It(), Owner::kDiskGroup, group, 1)->home);
    EXPECT_THAT(hxsim::Check(it.machine), IsEmpty());
}

// ---- Migrations ----

// Virtual disk 0, a RAID 5 that becomes a RAID 6, with a spare.
SmallMachine OnItsWayToRaid6() {
    SmallMachine it(5, 3 * kHundredSeconds);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.VirtualDisk(id).size = 2 * kHundredSeconds;
    it.It().info.LogicalDriverMode = 0x017F;
    it.It().info.StripeSizeSupported = 0xFFFF;
    it.It().info.MaxPDPerVD = 32;
    it.It().info.MaxParityDisks = 4;
    it.MakeGlobalSpare(4);
    EXPECT_EQ(0, MigrateToRaid6(it, 0, id, {0, 1, 2, 3}));
    return it;
}

TEST(AMigration, WaitsWhileItsVirtualDiskIsRebuiltAndThenGoesOn) {
    SmallMachine it = OnItsWayToRaid6();
    it.PullOut(10, 1);
    EXPECT_EQ(ActivityKind::kRebuild, it.ActivityOf(0)->kind);
    EXPECT_EQ(kAutoPaused, hxsim::MigrationOf(it.It(), Owner::kVirtualDisk, 0)->state);
    EXPECT_THAT(hxsim::Check(it.machine), IsEmpty());
    it.At(500);
    EXPECT_THAT(
        it.TakeEvents(),
        ElementsAre("0 1.80 0", "10 2.0 1", "10 1.4 0", "10 12.17 0", "10 1.88 0", "10 2.10 4",
                    "10 1.70 0", "30 1.76 0 20", "50 1.76 0 40", "70 1.76 0 60", "90 1.76 0 80",
                    "110 1.75 0", "110 1.1 0", "110 1.89 0", "120 1.86 0 20", "140 1.86 0 40",
                    "160 1.86 0 60", "180 1.86 0 80", "200 1.85 0"));
    EXPECT_EQ(6, it.VirtualDisk(0).level);
    EXPECT_EQ(State::kOptimal, it.VirtualDisk(0).state);
    EXPECT_THAT(hxsim::Check(it.machine), IsEmpty());
}

TEST(AMigration, LeavesAPlaceThatASpareHasTakenWhereItBelongs) {
    SmallMachine it = OnItsWayToRaid6();
    it.Fail(10, 1);
    it.At(500);
    EXPECT_EQ(4, it.BlockOf(0, 1)->disk);
    it.TakeEvents();
    it.Replace(600, 1);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("600 2.1 1", "600 1.90 0"));
    it.At(900);
    EXPECT_EQ(1, it.BlockOf(0, 1)->disk);
    EXPECT_EQ(hxsim::Spare::kGlobal, it.Disk(4).spare);
    EXPECT_THAT(hxsim::Check(it.machine), IsEmpty());
}

// ---- Disks ----

TEST(AMediaPatrol, FindsWhatIsDamagedAndRemapsIt) {
    SmallMachine it(1);
    it.It().remaps.push_back({0, 0x200000005, 2, hxsim::kNotRemapped});
    it.It().remaps.push_back({0, 0x200000009, 1, RemapReason::kWriteError});
    EXPECT_EQ(0, Patrol(it, 0, 0));
    it.At(199);
    it.TakeEvents();
    it.At(201);
    const Event found = it.It().events[1].event;
    EXPECT_THAT(it.TakeEvents(), ElementsAre("200 2.15 0", "200 2.37 0 2", "200 2.22 0"));
    EXPECT_THAT(found.Params, ElementsAre(2u, 5u, 2u, 1u));
    EXPECT_EQ(RemapReason::kReadError, it.It().remaps[0].reason);
    EXPECT_EQ(RemapReason::kWriteError, it.It().remaps[1].reason);
}

TEST(AMediaPatrol, LeavesDamagedWhatTheDiskHasNoRoomFor) {
    SmallMachine it(1);
    for (hxsim::Sectors lba = 0; lba < 66; ++lba) {
        it.It().remaps.push_back({0, lba, 1, hxsim::kNotRemapped});
    }
    EXPECT_EQ(0, Patrol(it, 0, 0));
    it.At(1000);
    EXPECT_EQ(RemapReason::kReadError, it.It().remaps[63].reason);
    EXPECT_EQ(hxsim::kNotRemapped, it.It().remaps[64].reason);
    const std::vector<std::string> events = it.TakeEvents();
    EXPECT_EQ(1, std::ranges::count(events, "200 2.13 0"));  // 80 percent full
    EXPECT_EQ(2, std::ranges::count(events, "200 2.14 0"));  // full, and no room for one more
}

TEST(ConsistencyCheck, RemapsTheDamageThatItMeets) {
    SmallMachine it(3);
    const HX_U16 id = it.AddVirtualDisk(5, {0, 1, 2});
    it.It().remaps.push_back({1, kHundredSeconds - 1, 1, hxsim::kNotRemapped});
    it.It().remaps.push_back({1, kHundredSeconds, 1, hxsim::kNotRemapped});
    EXPECT_EQ(0, Check(it, 0, id, CheckType::kOnly));
    it.At(1000);
    EXPECT_EQ(RemapReason::kReadError, it.It().remaps[0].reason);
    EXPECT_EQ(hxsim::kNotRemapped, it.It().remaps[1].reason);  // behind its block
}

TEST(AMediaPatrol, MakesWayForARebuildAndGoesOnAfterIt) {
    SmallMachine it(4);
    it.AddVirtualDisk(5, {0, 1, 2});
    it.MakeGlobalSpare(3);
    EXPECT_EQ(0, Patrol(it, 0, 0));
    EXPECT_EQ(0, Patrol(it, 0, 3));
    it.Fail(10, 1);
    EXPECT_EQ(kAutoPaused, hxsim::ActivityOf(it.It(), Owner::kDisk, 0)->state);
    EXPECT_EQ(kAutoPaused, hxsim::ActivityOf(it.It(), Owner::kDisk, 3)->state);
    it.At(109);
    it.TakeEvents();
    it.At(111);
    EXPECT_THAT(it.TakeEvents(),
                ElementsAre("110 1.75 0", "110 1.1 0", "110 2.26 0", "110 2.26 3"));
}

TEST(AMediaPatrol, FailsWithItsDisk) {
    SmallMachine it(1);
    EXPECT_EQ(0, Patrol(it, 0, 0));
    it.PullOut(10, 0);
    EXPECT_THAT(it.TakeEvents(), ElementsAre("0 2.17 0", "10 2.0 0", "10 2.24 0"));
}

TEST(AMediaPatrol, IsRefusedWithAReason) {
    SmallMachine it(2);
    EXPECT_EQ(Status::kNoDisk, Patrol(it, 0, 9));
    it.Disk(1).present = false;
    EXPECT_EQ(Status::kNoDisk, Patrol(it, 0, 1));
    it.Disk(1).present = true;
    it.Disk(1).failed = true;
    EXPECT_EQ(Status::kDiskNotReady, Patrol(it, 0, 1));
    EXPECT_EQ(0, hxsim::CanPatrol(it.It(), 0));
    EXPECT_EQ(0, Patrol(it, 0, 0));
    EXPECT_EQ(Status::kBusy, hxsim::CanPatrol(it.It(), 0));
    it.It().info.Features = 0;
    it.Disk(1).failed = false;
    EXPECT_EQ(Status::kNotSupported, Patrol(it, 0, 1));
}

TEST(ADataScrub, TellsOfDamageAndLeavesItAsItIs) {
    SmallMachine it(1);
    it.It().remaps.push_back({0, 0x200000005, 1, hxsim::kNotRemapped});
    it.It().remaps.push_back({0, 0x200000007, 1, hxsim::kNotRemapped});
    EXPECT_EQ(0, Scrub(it, 0, 0));
    EXPECT_EQ(Status::kBusy, Scrub(it, 0, 0));
    it.At(1000);
    ASSERT_EQ(1u, it.It().events.size());
    EXPECT_THAT(it.It().events[0].event.Params, ElementsAre(2u, 2u, 5u, 0u));
    EXPECT_THAT(it.TakeEvents(), ElementsAre("200 2.36 0 2"));
    EXPECT_EQ(hxsim::kNotRemapped, it.It().remaps[0].reason);
}

// ---- Time ----

TEST(TheNextTransition, IsNeverWhenNothingRuns) {
    SmallMachine it(1);
    EXPECT_EQ(hxsim::kNever, hxsim::NextTransition(it.machine));
}

TEST(TheNextTransition, IsTheFirstProgressOfWhatRuns) {
    SmallMachine it(1);
    const HX_U16 id = it.AddVirtualDisk(0, {0});
    Init(it, 0, id, hxcodes::Init::kForeground);
    EXPECT_EQ(living::kStart + 20'000, hxsim::NextTransition(it.machine));
    it.Control(1, id, ControlAction::kPause);
    EXPECT_EQ(hxsim::kNever, hxsim::NextTransition(it.machine));
}

// Everything that can differ between two machines after the same calls, as text.
std::string Portrait(const hxsim::Machine& machine) {
    std::ostringstream text;
    for (const hxsim::Adapter& adapter : machine.adapters) {
        text << adapter.alarm << adapter.muted << '\n';
        for (const hxsim::Disk& each : adapter.disks) {
            text << "disk " << each.id << ' ' << each.serial << each.present << each.failed
                 << each.offline << int(each.spare) << int(each.spare_before) << '\n';
        }
        for (const hxsim::Block& each : adapter.blocks) {
            text << "block " << each.id << ' ' << each.disk << ' ' << each.virtual_disk << ' '
                 << int(each.position) << ' ' << each.target << int(each.state) << ' ' << each.start
                 << ' ' << each.sectors << '\n';
        }
        for (const hxsim::VirtualDisk& each : adapter.virtual_disks) {
            text << "virtual disk " << each.id << ' ' << int(each.level) << ' ' << int(each.state)
                 << each.initialised << ' ' << each.errors << '\n';
        }
        for (const hxsim::DiskGroup& each : adapter.disk_groups) {
            text << "group " << each.id << ' ' << int(each.state) << '\n';
        }
        for (const hxsim::Home& each : adapter.homes) {
            text << "home " << int(each.of) << ' ' << each.owner << ' ' << int(each.position) << ' '
                 << each.disk << ' ' << each.home << '\n';
        }
        for (const hxsim::Activity& each : adapter.activities) {
            text << "activity " << each.id << ' ' << int(each.kind) << ' ' << int(each.state) << ' '
                 << int(each.of) << ' ' << each.owner << ' ' << each.total << ' ' << each.done
                 << ' ' << each.since << ' ' << each.speed << ' ' << int(each.announced) << '\n';
        }
        for (const hxsim::Remap& each : adapter.remaps) {
            text << "remap " << each.disk << ' ' << each.lba << ' ' << int(each.reason) << '\n';
        }
        for (const hxsim::QueuedEvent& each : adapter.events) {
            text << "event " << each.number << ' ' << each.event.TimeStamp << ' '
                 << each.event.Class << ' ' << each.event.Code << ' ' << each.event.DeviceID << ' '
                 << each.event.Params[0] << '\n';
        }
    }
    return text.str();
}

// A machine with something of everything.
SmallMachine Variety() {
    SmallMachine it(18, 3 * kHundredSeconds);
    it.It().info.LogicalDriverMode = 0x017F;
    it.It().info.StripeSizeSupported = 0xFFFF;
    it.It().info.MaxPDPerVD = 32;
    it.It().info.MaxPDPerDG = 32;
    it.It().info.MaxVDPerDG = 32;
    it.It().info.MaxParityDisks = 4;
    it.It().info.DiskGroupSupport = 1;
    it.AddVirtualDisk(5, {0, 1, 2});
    it.AddVirtualDisk(1, {1, 2}, 0, kHundredSeconds / 3);
    it.AddVirtualDisk(6, {3, 4, 5, 6});
    it.AddVirtualDisk(0x10, {7, 8, 9, 10}, 0, kHundredSeconds / 7);
    const HX_U16 group = it.AddGroup(5, {11, 12, 13});
    it.AddVirtualDiskTo(group, kHundredSeconds / 2);
    it.AddVirtualDiskTo(group, kHundredSeconds);
    it.MakeGlobalSpare(14);
    it.MakeGlobalSpare(15);
    it.MakeGroupSpare(16, group);
    it.It().config.RebuildRate = 37;
    it.It().config.CopybackRate = 83;
    for (hxsim::VirtualDisk& each : it.It().virtual_disks) each.size = 1000;
    return it;
}

// One thing that hands or callers may do; what is refused changes nothing.
void DoSomething(SmallMachine& it, hxsim::Time second, std::mt19937& random) {
    const auto disk = static_cast<HX_U16>(random() % 18);
    const auto id = static_cast<HX_U16>(random() % 6);
    const auto action = static_cast<HX_U8>(1 + random() % 3);
    switch (random() % 18) {
        case 0:
            return it.Fail(second, disk);
        case 1:
            return it.PullOut(second, disk);
        case 2:
        case 3:
            return it.PutBack(second, disk);
        case 4:
        case 5:
            return it.Replace(second, disk);
        case 6:
            Init(it, second, id, static_cast<HX_U8>(random() % 3));
            return;
        case 7:
            Check(it, second, id, static_cast<HX_U8>(random() % 2));
            return;
        case 8:
            Patrol(it, second, disk);
            return;
        case 9:
            Scrub(it, second, disk);
            return;
        case 10:
            it.Control(second, id, action);
            return;
        case 11:
            Rebuild(it, second, id, {disk});
            return;
        case 12:
            MigrateToRaid6(it, second, id, {0, 1, 2, 17});
            return;
        case 13:
            it.Call(second, [&](hxsim::Adapter& adapter, hxsim::Time now) {
                CreateOrModify_DG_Param param{};
                param.DGID = 0;
                param.RaidMode = 5;
                param.PDCount = 4;
                std::ranges::copy(std::initializer_list<HX_U16>{11, 12, 13, 17}, param.PDIDs);
                return hxsim::StartGroupMigration(adapter, now, param);
            });
            return;
        case 14:
            it.Call(second, [&](hxsim::Adapter& adapter, hxsim::Time now) {
                return hxsim::SetDiskState(adapter, now, disk, action);
            });
            return;
        case 15:
            it.Call(second, [&](hxsim::Adapter& adapter, hxsim::Time now) {
                return hxsim::MakeGlobalSpare(adapter, now, disk);
            });
            return;
        case 16:
            it.Call(second, [&](hxsim::Adapter& adapter, hxsim::Time now) {
                return hxsim::ControlGroup(adapter, now, 0, action);
            });
            return;
        default:
            it.Call(second, [&](hxsim::Adapter& adapter, hxsim::Time now) -> HX_U8 {
                adapter.config.RebuildRate = static_cast<HX_U8>(random() % 101);
                adapter.config.CopyBack = static_cast<HX_U8>(random() % 4 != 0);
                hxsim::Reschedule(adapter, now);
                return HX_SUCCESS;
            });
            return;
    }
}

class OneLeap : public testing::TestWithParam<unsigned> {};

TEST_P(OneLeap, EqualsManySmallStepsAndLeavesASoundMachine) {
    SmallMachine leaping = Variety();
    SmallMachine stepping = Variety();
    std::mt19937 random(GetParam());
    hxsim::Time second = 0;
    for (int i = 0; i < 100; ++i) {
        const hxsim::Time next = second + static_cast<hxsim::Time>(random() % 40);
        for (hxsim::Time now = second * 1000; now < next * 1000;
             now += 1 + static_cast<hxsim::Time>(random() % 3000)) {
            hxsim::Advance(stepping.machine, living::kStart + now);
        }
        second = next;
        std::mt19937 same = random;
        DoSomething(leaping, second, random);
        DoSomething(stepping, second, same);
        ASSERT_EQ(Portrait(leaping.machine), Portrait(stepping.machine)) << "at " << second;
        ASSERT_THAT(hxsim::Check(leaping.machine), IsEmpty()) << "at " << second;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, OneLeap, testing::Range(1u, 21u));

}  // namespace
