// The alarm and its causes.
#include "rules/hxsim_alarm.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

using Alarm = StoryTest;

TEST_F(Alarm, StaysMutedWhenOneOfTwoLostDisksIsBack) {
    AddRaid5();
    PullOut(10, 0);
    PullOut(20, 1);
    adapter().muted = true;
    PutBack(30, 1);
    EXPECT_EQ(hxcodes::State::kDegraded, virtual_disk(0).state);
    EXPECT_FALSE(adapter().alarm);
}

TEST_F(Alarm, SoundsWhileAVirtualDiskIsDegraded) {
    AddRaid5AndSpare();
    Fail(0, 1);
    EXPECT_TRUE(adapter().alarm);
    At(100);
    EXPECT_FALSE(adapter().alarm);
}

TEST_F(Alarm, OnceMutedIsSilentUntilTheNextCause) {
    AddRaid5();
    Fail(0, 1);
    adapter().muted = true;
    Settle(adapter(), At(10));
    EXPECT_FALSE(adapter().alarm);
    Fail(20, 2);
    EXPECT_TRUE(adapter().alarm);
}

TEST_F(Alarm, IsSilentWhenItIsOffOrNotThere) {
    AddRaid5();
    adapter().config.AlarmOn = 0;
    Fail(0, 1);
    EXPECT_FALSE(adapter().alarm);
    adapter().config.AlarmOn = 1;
    UpdateAlarm(adapter());
    EXPECT_TRUE(adapter().alarm);
    adapter().info.AlarmSupport = 0;
    UpdateAlarm(adapter());
    EXPECT_FALSE(adapter().alarm);
}

TEST_F(Alarm, SoundsForACriticalElement) {
    AddEnclosure();
    element(kSupply).status = ElementStatus::kCritical;
    UpdateAlarm(adapter(), true);
    EXPECT_TRUE(adapter().alarm);
}

}  // namespace
}  // namespace hxsim
