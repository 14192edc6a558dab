// The adapter's settings and what they announce, and its alarm's switch.
#include "calls/hxsim_adapter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "codes/activity.h"
#include "codes/state.h"
#include "codes/status.h"
#include "controllers/virtual/support/living_parts.h"
#include "rules/hxsim_activity.h"

namespace {

using hxcodes::ActivityKind;
using hxcodes::State;
using hxcodes::Status;
using parts::kNow;
using testing::ElementsAre;
using testing::IsEmpty;

class LivingAdapter : public parts::PartsTest {
protected:
    HX_U8 Set(const std::function<void(Adapter_Config_V2& config)>& change) {
        Adapter_Config_V2 config = adapter().config;
        change(config);
        return hxsim::SetAdapter(adapter(), kNow, config);
    }

    void ExpectRefused(HX_U8 code, const std::function<void(Adapter_Config_V2& config)>& change) {
        const std::string before = Everything();
        EXPECT_EQ(code, Set(change));
        EXPECT_EQ(before, Everything());
    }
};

TEST_F(LivingAdapter, AnnouncesEachRateThatChangesWithItsPercentage) {
    EXPECT_EQ(0, Set([](Adapter_Config_V2& config) {
                  config.BGARate = 1;
                  config.SyncRate = 2;
                  config.InitRate = 3;
                  config.RebuildRate = 4;
                  config.MigrationRate = 5;
                  config.CopybackRate = 6;
                  config.MediaPatrolRate = 100;
              }));
    EXPECT_THAT(EventsWithParams(),
                ElementsAre("12/1 of 0 1 0 0 0", "12/22 of 0 2 0 0 0", "12/23 of 0 3 0 0 0",
                            "12/24 of 0 4 0 0 0", "12/25 of 0 5 0 0 0", "12/26 of 0 6 0 0 0",
                            "12/27 of 0 100 0 0 0"));
}

TEST_F(LivingAdapter, AnnouncesWhatIsSwitchedOn) {
    adapter().config.AlarmOn = adapter().config.PollSMARTStatus = 0;
    EXPECT_EQ(0, Set([](Adapter_Config_V2& config) {
                  config.AlarmOn = config.AutoRebuildOn = config.PollSMARTStatus = config.CopyBack =
                      1;
              }));
    EXPECT_THAT(Events(), ElementsAre("0/2 of 0", "0/4 of 0", "0/0 of 0", "0/7 of 0"));
}

TEST_F(LivingAdapter, AnnouncesWhatIsSwitchedOff) {
    adapter().config.AutoRebuildOn = adapter().config.CopyBack = 1;
    EXPECT_EQ(0, Set([](Adapter_Config_V2& config) {
                  config.AlarmOn = config.AutoRebuildOn = config.PollSMARTStatus = config.CopyBack =
                      0;
              }));
    EXPECT_THAT(Events(), ElementsAre("0/3 of 0", "0/5 of 0", "0/1 of 0", "0/8 of 0"));
}

TEST_F(LivingAdapter, AnnouncesNothingThatStaysAsItIs) {
    EXPECT_EQ(0, Set([](Adapter_Config_V2&) {}));
    EXPECT_THAT(Events(), IsEmpty());
}

TEST_F(LivingAdapter, KeepsWhatHasNoEvent) {
    EXPECT_EQ(0, Set([](Adapter_Config_V2& config) {
                  config.InterruptCoalescing = config.ModuleConsolidate = 1;
                  config.v_atapi_disable = 7;
                  config.port_phy_ctrl[7] = 9;
                  config.Reserved[0] = 5;
              }));
    EXPECT_EQ(1, adapter().config.InterruptCoalescing);
    EXPECT_EQ(1, adapter().config.ModuleConsolidate);
    EXPECT_EQ(1, adapter().config.v_atapi_disable);
    EXPECT_EQ(9, adapter().config.port_phy_ctrl[7]);
    EXPECT_EQ(0, adapter().config.Reserved[0]);
    EXPECT_THAT(Events(), IsEmpty());
}

TEST_F(LivingAdapter, RefusesRatesAboveAHundredPercent) {
    for (const auto rate :
         {&Adapter_Config_V2::BGARate, &Adapter_Config_V2::SyncRate, &Adapter_Config_V2::InitRate,
          &Adapter_Config_V2::RebuildRate, &Adapter_Config_V2::MigrationRate,
          &Adapter_Config_V2::CopybackRate, &Adapter_Config_V2::MediaPatrolRate}) {
        ExpectRefused(Status::kBadValue, [&](Adapter_Config_V2& config) { config.*rate = 101; });
    }
}

TEST_F(LivingAdapter, RefusesSwitchesThatAreNeitherOnNorOff) {
    for (const auto setting :
         {&Adapter_Config_V2::PollSMARTStatus, &Adapter_Config_V2::CopyBack,
          &Adapter_Config_V2::InterruptCoalescing, &Adapter_Config_V2::ModuleConsolidate}) {
        ExpectRefused(Status::kBadValue, [&](Adapter_Config_V2& config) { config.*setting = 2; });
    }
}

TEST_F(LivingAdapter, RefusesARateThatItsModelDoesNotLetBeSet) {
    adapter().info.Features = 0x5F & ~0x08;
    ExpectRefused(Status::kNotSupported,
                  [](Adapter_Config_V2& config) { config.MigrationRate = 10; });
    EXPECT_EQ(0, Set([](Adapter_Config_V2& config) { config.RebuildRate = 10; }));
}

TEST_F(LivingAdapter, RefusesAnAlarmThatItDoesNotHave) {
    adapter().info.AlarmSupport = 0;
    adapter().config.AlarmOn = 0;
    ExpectRefused(Status::kNotSupported, [](Adapter_Config_V2& config) { config.AlarmOn = 1; });
}

TEST_F(LivingAdapter, LetsWhatRunsGoOnAtItsNewRate) {
    adapter().config.SyncRate = 10;
    hxsim::Activity check;
    check.kind = ActivityKind::kCheck;
    check.owner = 0;
    check.total = 640000;
    hxsim::Start(adapter(), kNow, check);
    EXPECT_EQ(20480u, adapter().activities[0].speed);
    EXPECT_EQ(0, Set([](Adapter_Config_V2& config) { config.SyncRate = 50; }));
    EXPECT_EQ(102400u, adapter().activities[0].speed);
}

TEST_F(LivingAdapter, WithoutAnAlarmHasNothingToMute) {
    adapter().info.AlarmSupport = 0;
    EXPECT_EQ(Status::kNotSupported, hxsim::Mute(adapter()));
}

TEST_F(LivingAdapter, SwitchingTheAlarmOffSilencesIt) {
    virtual_disk(0).state = State::kDegraded;
    adapter().alarm = true;
    EXPECT_EQ(0, Set([](Adapter_Config_V2& config) { config.AlarmOn = 0; }));
    EXPECT_FALSE(adapter().alarm);
}

}  // namespace
