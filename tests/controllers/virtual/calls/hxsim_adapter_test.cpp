// The adapter's settings and what they announce, and its alarm's switch.
#include "calls/hxsim_adapter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"
#include "rules/hxsim_activity.h"

namespace hxsim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AdapterSettings : public MixedMachineTest {
protected:
    Status Set(const std::function<void(Adapter_Config_V2& config)>& change) {
        Adapter_Config_V2 config = adapter().config;
        change(config);
        return SetAdapter(adapter(), kNow, config);
    }

    void ExpectRefusal(Status code, const std::function<void(Adapter_Config_V2& config)>& change) {
        const std::string before = Everything();
        ExpectRefused(code, Set(change), before);
    }
};

TEST_F(AdapterSettings, AnnouncesEachRateThatChangesWithItsPercentage) {
    adapter().config.MediaPatrolRate = 50;
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

TEST_F(AdapterSettings, AnnouncesWhatIsSwitchedOn) {
    adapter().config.AlarmOn = adapter().config.PollSMARTStatus = 0;
    EXPECT_EQ(0, Set([](Adapter_Config_V2& config) {
                  config.AlarmOn = config.AutoRebuildOn = config.PollSMARTStatus = config.CopyBack =
                      1;
              }));
    EXPECT_THAT(Events(), ElementsAre("0/2 of 0", "0/4 of 0", "0/0 of 0", "0/7 of 0"));
}

TEST_F(AdapterSettings, AnnouncesWhatIsSwitchedOff) {
    adapter().config.AutoRebuildOn = adapter().config.CopyBack = 1;
    EXPECT_EQ(0, Set([](Adapter_Config_V2& config) {
                  config.AlarmOn = config.AutoRebuildOn = config.PollSMARTStatus = config.CopyBack =
                      0;
              }));
    EXPECT_THAT(Events(), ElementsAre("0/3 of 0", "0/5 of 0", "0/1 of 0", "0/8 of 0"));
}

TEST_F(AdapterSettings, AnnouncesNothingThatStaysAsItIs) {
    EXPECT_EQ(0, Set([](Adapter_Config_V2&) {}));
    EXPECT_THAT(Events(), IsEmpty());
}

TEST_F(AdapterSettings, KeepsWhatHasNoEvent) {
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

TEST_F(AdapterSettings, RefusesRatesAboveAHundredPercent) {
    for (const auto rate :
         {&Adapter_Config_V2::BGARate, &Adapter_Config_V2::SyncRate, &Adapter_Config_V2::InitRate,
          &Adapter_Config_V2::RebuildRate, &Adapter_Config_V2::MigrationRate,
          &Adapter_Config_V2::CopybackRate, &Adapter_Config_V2::MediaPatrolRate}) {
        ExpectRefusal(Status::kBadValue, [&](Adapter_Config_V2& config) { config.*rate = 101; });
    }
}

TEST_F(AdapterSettings, RefusesSwitchesThatAreNeitherOnNorOff) {
    for (const auto setting :
         {&Adapter_Config_V2::PollSMARTStatus, &Adapter_Config_V2::CopyBack,
          &Adapter_Config_V2::InterruptCoalescing, &Adapter_Config_V2::ModuleConsolidate}) {
        ExpectRefusal(Status::kBadValue, [&](Adapter_Config_V2& config) { config.*setting = 2; });
    }
}

TEST_F(AdapterSettings, RefusesARateThatItsModelDoesNotLetBeSet) {
    adapter().info.Features = 0x5F & ~0x08;
    ExpectRefusal(Status::kNotSupported,
                  [](Adapter_Config_V2& config) { config.MigrationRate = 10; });
    EXPECT_EQ(0, Set([](Adapter_Config_V2& config) { config.RebuildRate = 10; }));
}

TEST_F(AdapterSettings, RefusesAnAlarmThatItDoesNotHave) {
    adapter().info.AlarmSupport = 0;
    adapter().config.AlarmOn = 0;
    ExpectRefusal(Status::kNotSupported, [](Adapter_Config_V2& config) { config.AlarmOn = 1; });
}

TEST_F(AdapterSettings, LetsWhatRunsGoOnAtItsNewRate) {
    adapter().config.SyncRate = 10;
    Activity check;
    check.kind = ActivityKind::kCheck;
    check.owner = 0;
    check.total = 640000;
    Start(adapter(), kNow, check);
    EXPECT_EQ(20480u, adapter().activities[0].speed);
    EXPECT_EQ(0, Set([](Adapter_Config_V2& config) { config.SyncRate = 50; }));
    EXPECT_EQ(102400u, adapter().activities[0].speed);
}

TEST_F(AdapterSettings, WithoutAnAlarmHasNothingToMute) {
    adapter().info.AlarmSupport = 0;
    EXPECT_EQ(Status::kNotSupported, Mute(adapter()));
}

TEST_F(AdapterSettings, SwitchingTheAlarmOffSilencesIt) {
    virtual_disk(0).state = State::kDegraded;
    adapter().alarm = true;
    EXPECT_EQ(0, Set([](Adapter_Config_V2& config) { config.AlarmOn = 0; }));
    EXPECT_FALSE(adapter().alarm);
}

}  // namespace
}  // namespace hxsim
