// A power cut, and what the controller finds when it comes up again.
#include "incidents/hxsim_incident_power.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "controllers/virtual/support/test_machine.h"
#include "incidents/hxsim_incident_battery.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

using testing::ElementsAre;

using PowerCut = MixedMachineTest;

TEST_F(PowerCut, BeginsWithTheAdapterAndWhatIsMissing) {
    disk(0).present = false;
    Settle(adapter(), kNow);
    adapter().events.clear();
    CutPower(adapter(), kNow);
    EXPECT_THAT(Events(), ElementsAre("0/9 of 0", "12/16 of 0", "12/17 of 0"));
    EXPECT_EQ(4, adapter().events[0].event.SenseDataLength);
    EXPECT_EQ(0, std::memcmp("VC-1", adapter().events[0].event.SenseData, 4));
}

TEST_F(PowerCut, TellsOfAVirtualDiskThatIsGoneWithAllItsDisks) {
    for (HX_U16 id = 0; id < 3; ++id) disk(id).present = false;
    Settle(adapter(), kNow);
    adapter().events.clear();
    CutPower(adapter(), kNow);
    EXPECT_THAT(Events(),
                ElementsAre("0/9 of 0", "12/16 of 0", "12/16 of 1", "12/16 of 2", "12/18 of 0"));
}

TEST_F(PowerCut, RestartsWhatRanWhereItWas) {
    StartActivity(ActivityKind::kCheck, Owner::kVirtualDisk, 0).done = 700;
    StartActivity(ActivityKind::kMediaPatrol, Owner::kDisk, 6).state = ActivityState::kPaused;
    CutPower(adapter(), kNow);
    EXPECT_THAT(Events(), ElementsAre("0/9 of 0", "1/21 of 0"));
    EXPECT_EQ(700u, adapter().activities[0].done);
}

TEST_F(PowerCut, LosesWhatIsCachedWithoutABattery) {
    virtual_disk(0).cache = NumberOf(CacheBit::kWriteBack);
    adapter().batteries.clear();
    CutPower(adapter(), kNow);
    EXPECT_EQ(1u, virtual_disk(0).errors);
    EXPECT_EQ(0u, virtual_disk(1).errors);
}

TEST_F(PowerCut, LosesNothingOfWhatIsNotWrittenAnyMore) {
    virtual_disk(0).cache = NumberOf(CacheBit::kWriteBack);
    adapter().batteries.clear();
    disk(0).present = disk(1).present = false;
    Settle(adapter(), kNow);
    ASSERT_EQ(State::kOffline, virtual_disk(0).state);
    CutPower(adapter(), kNow);
    EXPECT_EQ(0u, virtual_disk(0).errors);
}

TEST_F(PowerCut, LosesNothingThatABatteryKeepsOrForbids) {
    virtual_disk(0).cache = NumberOf(CacheBit::kWriteBack);
    CutPower(adapter(), kNow);
    EXPECT_EQ(0u, virtual_disk(0).errors);
    ASSERT_TRUE(RemoveBattery(adapter(), kNow));
    adapter().events.clear();
    CutPower(adapter(), kNow);
    EXPECT_EQ(0u, virtual_disk(0).errors);
    EXPECT_THAT(Events(), ElementsAre("0/9 of 0", "9/1 of 0"));
}

}  // namespace
}  // namespace hxsim
