// What the machine does by itself as time goes on.
#include "rules/hxsim_advance.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "calls/hxsim_activity_control.h"
#include "calls/hxsim_disk_change.h"
#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_invariants.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_migration.h"

namespace hxsim {
namespace {

using testing::IsEmpty;

using NextTransitionOfAMachine = StoryTest;

TEST_F(NextTransitionOfAMachine, IsNeverWhenNothingRuns) {
    AddDisks(1);
    EXPECT_EQ(kNever, NextTransition(rows));
}

TEST_F(NextTransitionOfAMachine, IsTheFirstProgressOfWhatRuns) {
    AddDisks(1);
    const HX_U16 id = AddVirtualDisk(Level::kRaid0, {0});
    Initialise(0, id, hxcodes::Init::kForeground);
    EXPECT_EQ(kStart + 20'000, NextTransition(rows));
    Steer(1, id, ControlAction::kPause);
    EXPECT_EQ(kNever, NextTransition(rows));
}

// A machine with something of everything.
TestMachine Variety() {
    TestMachine machine(18, 3 * kHundredSeconds);
    machine.AddVirtualDisk(Level::kRaid5, {0, 1, 2});
    machine.AddVirtualDisk(Level::kRaid1, {1, 2}, 0, kHundredSeconds / 3);
    machine.AddVirtualDisk(Level::kRaid6, {3, 4, 5, 6});
    machine.AddVirtualDisk(Level::kRaid10, {7, 8, 9, 10}, 0, kHundredSeconds / 7);
    const HX_U16 group = machine.AddGroup(Level::kRaid5, {11, 12, 13});
    machine.AddVirtualDiskTo(group, kHundredSeconds / 2);
    machine.AddVirtualDiskTo(group, kHundredSeconds);
    machine.SetGlobalSpare(14);
    machine.SetGlobalSpare(15);
    machine.SetGroupSpare(16, group);
    machine.adapter().config.RebuildRate = 37;
    machine.adapter().config.CopybackRate = 83;
    for (VirtualDisk& each : machine.adapter().virtual_disks) each.size = 1000;
    return machine;
}

// One thing that hands or callers may do; what is refused changes nothing.
void DoSomething(TestMachine& machine, Time second, std::mt19937& random) {
    const auto disk = static_cast<HX_U16>(random() % 18);
    const auto id = static_cast<HX_U16>(random() % 6);
    const auto action = static_cast<ControlAction>(1 + random() % 3);
    switch (random() % 18) {
        case 0:
            return machine.Fail(second, disk);
        case 1:
            return machine.PullOut(second, disk);
        case 2:
        case 3:
            return machine.PutBack(second, disk);
        case 4:
        case 5:
            return machine.Replace(second, disk);
        case 6:
            machine.Initialise(second, id, static_cast<Init>(random() % 3));
            return;
        case 7:
            machine.CheckConsistency(second, id, static_cast<CheckType>(random() % 2));
            return;
        case 8:
            machine.Patrol(second, disk);
            return;
        case 9:
            machine.Scrub(second, disk);
            return;
        case 10:
            machine.Steer(second, id, action);
            return;
        case 11:
            machine.Rebuild(second, id, {disk});
            return;
        case 12:
            machine.MigrateToRaid6(second, id, {0, 1, 2, 17});
            return;
        case 13:
            machine.Call(second, [&](Adapter& adapter, Time now) {
                CreateOrModify_DG_Param param = GroupOn(0, 5, {11, 12, 13, 17});
                return StartGroupMigration(adapter, now, param);
            });
            return;
        case 14:
            machine.Call(second, [&](Adapter& adapter, Time now) {
                return SetDiskState(adapter, now, disk, NumberOf(action));
            });
            return;
        case 15:
            machine.Call(second, [&](Adapter& adapter, Time now) {
                return MakeGlobalSpare(adapter, now, disk);
            });
            return;
        case 16:
            machine.Call(second, [&](Adapter& adapter, Time now) {
                return ControlGroup(adapter, now, 0, NumberOf(action));
            });
            return;
        default:
            machine.Call(second, [&](Adapter& adapter, Time now) {
                adapter.config.RebuildRate = static_cast<HX_U8>(random() % 101);
                adapter.config.CopyBack = static_cast<HX_U8>(random() % 4 != 0);
                Reschedule(adapter, now);
                return Status::kSuccess;
            });
            return;
    }
}

class OneLeap : public testing::TestWithParam<unsigned> {};

TEST_P(OneLeap, EqualsManySmallStepsAndLeavesASoundMachine) {
    TestMachine leaping = Variety();
    TestMachine stepping = Variety();
    std::mt19937 random(GetParam());
    Time second = 0;
    for (int i = 0; i < 100; ++i) {
        const Time next = second + static_cast<Time>(random() % 40);
        for (Time now = second * 1000; now < next * 1000;
             now += 1 + static_cast<Time>(random() % 3000)) {
            Advance(stepping.rows, TestMachine::kStart + now);
        }
        second = next;
        std::mt19937 same = random;
        DoSomething(leaping, second, random);
        DoSomething(stepping, second, same);
        ASSERT_EQ(leaping.Everything(), stepping.Everything()) << "at " << second;
        ASSERT_THAT(Check(leaping.rows), IsEmpty()) << "at " << second;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, OneLeap, testing::Range(1u, 21u));

}  // namespace
}  // namespace hxsim
