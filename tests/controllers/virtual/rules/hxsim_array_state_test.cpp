// The states that are announced as disks are lost and come back.
#include "rules/hxsim_array_state.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "calls/hxsim_virtual_disk_change.h"
#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

using Disks = std::vector<HX_U16>;

using ArrayState = StoryTest;

TEST_F(ArrayState, OfARaid0IsOnlineAgainWithItsDisks) {
    AddDisks(2);
    AddVirtualDisk(Level::kRaid0, {0, 1});
    PullOut(10, 1);
    PutBack(20, 1);
    EXPECT_THAT(TakeEvents(),
                ElementsAre("10 2.0 1", "10 1.0 0", "10 12.17 0", "20 2.1 1", "20 1.1 0"));
}

TEST_F(ArrayState, IsNotAnnouncedBesideAnImport) {
    const HX_U16 id = AddRaid5();
    virtual_disk(id).foreign = true;
    virtual_disk(id).state = hxcodes::State::kForeign;
    for (HX_U16 i = 0; i < 3; ++i) disk(i).foreign = true;
    ASSERT_EQ(0, Call(10, [&](Adapter& adapter, Time now) {
                  return ImportVirtualDisk(adapter, now, id);
              }));
    EXPECT_THAT(TakeEvents(), ElementsAre("10 1.9 0"));
    EXPECT_EQ(State::kOptimal, virtual_disk(id).state);
}

Event LastEvent(const Adapter& adapter, EventKind kind) {
    Event found{};
    for (const QueuedEvent& queued : adapter.events) {
        if (hxcodes::KindOf(queued.event) == kind) found = queued.event;
    }
    return found;
}

TEST_F(ArrayState, DegradedTellsWhichDisksOfARaid10MayStillFail) {
    AddDisks(4);
    AddVirtualDisk(Level::kRaid10, {0, 1, 2, 3}, 2);
    PullOut(10, 0);
    EXPECT_THAT(LastEvent(adapter(), EventKind::kVirtualDiskDegraded).Params,
                ElementsAreArray(ParamsOfDegraded(Disks{1}, Disks{2, 3})));
}

TEST_F(ArrayState, DegradedTellsThatNoDiskOfARaid5MayFail) {
    AddRaid5();
    PullOut(10, 1);
    EXPECT_THAT(LastEvent(adapter(), EventKind::kVirtualDiskDegraded).Params,
                ElementsAreArray(ParamsOfDegraded(Disks{0, 2}, {})));
}

TEST_F(ArrayState, PartiallyOptimalTellsWhetherItWasWorse) {
    AddDisks(4);
    AddVirtualDisk(Level::kRaid6, {0, 1, 2, 3});
    PullOut(10, 0);
    Event event = LastEvent(adapter(), EventKind::kVirtualDiskPartiallyOptimal);
    EXPECT_EQ(0U, event.Params[0]);
    EXPECT_EQ(NumberOf(hxcodes::Severity::kWarning), event.Severity);
    PullOut(20, 1);
    Replace(30, 1);
    Finish();
    event = LastEvent(adapter(), EventKind::kVirtualDiskPartiallyOptimal);
    EXPECT_EQ(1U, event.Params[0]);
    EXPECT_EQ(NumberOf(hxcodes::Severity::kInfo), event.Severity);
}

}  // namespace
}  // namespace hxsim
