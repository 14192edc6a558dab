// The speed of background activities.
#include "rules/hxsim_activity.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

using RunningActivity = StoryTest;

TEST_F(RunningActivity, GoesOnAtTheNewSpeedWhenTheRateIsSet) {
    const HX_U16 id = AddRaid5();
    Initialise(0, id, hxcodes::Init::kForeground);
    const Time now = At(50);
    adapter().config.InitRate = 25;
    Reschedule(adapter(), now);
    EXPECT_EQ(50, Percentage(*activity(id), now));
    At(1000);
    EXPECT_EQ("250 1.65 0", TakeEvents().back());
}

}  // namespace
}  // namespace hxsim
