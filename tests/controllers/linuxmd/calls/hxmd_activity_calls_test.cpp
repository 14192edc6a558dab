// Activities of arrays that are started, paused, resumed and aborted, and their rates.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "controllers/linuxmd/support/recorded_machine.h"
#include "controllers/virtual/support/list_calls.h"
#include "hxraid.h"

using testing::ElementsAre;

namespace {

constexpr HX_U8 kPause = 1, kResume = 2, kAbort = 3;

class AnActivity : public testing::Test {
protected:
    AnActivity() { recorded_.AddMirror(); }
    void SetUp() override {
        if (geteuid() != 0) GTEST_SKIP() << "only root may change arrays";
        ASSERT_EQ(HX_API_Initialize(), HX_SUCCESS);
    }
    ~AnActivity() override { HX_API_Finalize(); }

    std::string Attribute(const std::string& name) const {
        return recorded_.Root().Read("/sys/block/md127/md/" + name);
    }
    void Run(const std::string& action, const std::string& completed) {
        recorded_.Set("md127", "md/sync_action", action + "\n");
        recorded_.Set("md127", "md/sync_completed", completed + "\n");
    }
    static std::array<unsigned, 3> Status() {
        const LD_Status status = TheOne(HX_LD_GetStatus, 0, 0);
        return {status.Bga, status.BgaState, status.BgaPercentage};
    }
    using Told = std::vector<std::array<unsigned, 3>>;
    static Told Events() {
        Event events[HX_EVENTS_PER_CALL]{};
        HX_U8 count = 0;
        EXPECT_EQ(HX_EVT_GetEvent(0, HX_EVENTS_PER_CALL, &count, events), HX_SUCCESS);
        Told told;
        for (unsigned i = 0; i < count; ++i) {
            told.push_back({events[i].Class, events[i].Code, events[i].Params[0]});
        }
        return told;
    }

    RecordedMachine recorded_;
};

TEST_F(AnActivity, IsRefusedWhatItCannotDo) {
    EXPECT_EQ(HX_LD_BGAControl(0, 9, kPause), 207);
    EXPECT_EQ(HX_LD_BGAControl(0, 0, 4), 215);
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kPause), 241);
    EXPECT_EQ(HX_LD_BGAControl(1, 0, kPause), 201);
    EXPECT_EQ(Attribute("sync_action"), "idle\n");
    Run("recover", "200 / 1000");
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kResume), 249);
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kAbort), 242);  // MD would start it again
    EXPECT_EQ(Attribute("sync_action"), "recover\n");
}

TEST_F(AnActivity, IsFrozenAndGoesOnWhenItIsASynchronisation) {
    Run("resync", "200 / 1000");
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kPause), HX_SUCCESS);
    EXPECT_EQ(Attribute("sync_action"), "frozen");
    recorded_.Set("md127", "md/resync_start", "418618\n");
    EXPECT_THAT(Status(), ElementsAre(2, 2, 20));
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kPause), 249);
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kResume), HX_SUCCESS);
    EXPECT_EQ(Attribute("sync_action"), "idle");
}

TEST_F(AnActivity, KeepsThePlaceOfAPausedCheck) {
    Events();
    Run("check", "1050000 / 2093056");
    EXPECT_THAT(Events(), ElementsAre(std::array{1U, 20U, 0U}));
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kPause), HX_SUCCESS);
    EXPECT_EQ(Attribute("sync_action"), "idle");
    EXPECT_EQ(Attribute("sync_min"), "1049600");  // the beginning of the chunk
    EXPECT_THAT(Status(), ElementsAre(1, 2, 50));
    EXPECT_THAT(Events(), ElementsAre(std::array{1U, 22U, 0U}));
    EXPECT_EQ(HX_LD_StartConsistencyCheck(0, 0, 0), 240);
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kResume), HX_SUCCESS);
    EXPECT_EQ(Attribute("sync_action"), "check");
    EXPECT_EQ(Attribute("sync_min"), "1049600");
}

TEST_F(AnActivity, ForgetsThePlaceOfAnAbortedCheck) {
    Run("repair", "1050000 / 2093056");
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kPause), HX_SUCCESS);
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kAbort), HX_SUCCESS);
    EXPECT_EQ(Attribute("sync_min"), "0");
    EXPECT_THAT(Status(), ElementsAre(0, 0, 0));
    Run("check", "1050000 / 2093056");
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kAbort), HX_SUCCESS);
    EXPECT_EQ(Attribute("sync_action"), "idle");
    EXPECT_THAT(Status(), ElementsAre(0, 0, 0));
}

TEST_F(AnActivity, IsNotPausedAfterTheNextBoot) {
    Run("check", "1050000 / 2093056");
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kPause), HX_SUCCESS);
    recorded_.Root().Write("/proc/sys/kernel/random/boot_id", "another\n");
    EXPECT_THAT(Status(), ElementsAre(0, 0, 0));
}

TEST_F(AnActivity, IsNotDisturbedWhileMdadmGuardsIt) {
    Run("reshape", "100 / 1000");
    recorded_.Set("md127", "md/sync_max", "4096\n");
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kPause), 240);
    recorded_.Set("md127", "md/sync_max", "max\n");
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kPause), HX_SUCCESS);
    recorded_.Set("md127", "md/reshape_position", "418611\n");
    EXPECT_THAT(Status(), ElementsAre(7, 2, 9));
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kResume), HX_SUCCESS);
    EXPECT_EQ(Attribute("sync_action"), "reshape");
}

TEST_F(AnActivity, IsFreedWhenItsArrayLosesAMemberMeanwhile) {
    Run("resync", "200 / 1000");
    recorded_.Set("md127", "md/resync_start", "418618\n");
    EXPECT_EQ(HX_LD_BGAControl(0, 0, kPause), HX_SUCCESS);
    Events();
    EXPECT_EQ(Attribute("sync_action"), "frozen");
    recorded_.SetMember("md127", "sda", "state", "faulty\n");
    Events();
    EXPECT_EQ(Attribute("sync_action"), "idle");
}

TEST_F(AnActivity, IsPausedOnAllArraysAtOnce) {
    EXPECT_EQ(HX_LD_PauseAll(0), HX_SUCCESS);
    EXPECT_EQ(Attribute("sync_action"), "idle\n");
    Run("recover", "200 / 1000");
    EXPECT_EQ(HX_LD_PauseAll(0), HX_SUCCESS);
    EXPECT_EQ(Attribute("sync_action"), "frozen");
}

TEST_F(AnActivity, StartsAsACheckOrARepair) {
    recorded_.Set("md127", "md/sync_min", "4096\n");  // of a check that another program has stopped
    EXPECT_EQ(HX_LD_StartConsistencyCheck(0, 0, 0), HX_SUCCESS);
    EXPECT_EQ(Attribute("sync_action"), "check");
    EXPECT_EQ(Attribute("sync_min"), "0");
    EXPECT_EQ(HX_LD_StartConsistencyCheck(0, 0, 1), 240);
    Run("idle", "none");
    EXPECT_EQ(HX_LD_StartConsistencyCheck(0, 0, 1), HX_SUCCESS);
    EXPECT_EQ(Attribute("sync_action"), "repair");
}

TEST_F(AnActivity, DoesNotStartWhereItCannotRun) {
    EXPECT_EQ(HX_LD_StartConsistencyCheck(0, 9, 0), 207);
    EXPECT_EQ(HX_LD_StartConsistencyCheck(0, 0, 2), 215);
    recorded_.Set("md127", "md/level", "raid0\n");
    EXPECT_EQ(HX_LD_StartConsistencyCheck(0, 0, 0), 243);
    recorded_.Set("md127", "md/array_state", "inactive\n");
    EXPECT_EQ(HX_LD_StartConsistencyCheck(0, 0, 0), 242);
    EXPECT_EQ(Attribute("sync_action"), "idle\n");
}

TEST_F(AnActivity, GetsTheRateOfItsKind) {
    Events();
    Adapter_Config_V2 config{};
    config.RebuildRate = 40;
    config.AutoRebuildOn = 1;
    Run("recover", "200 / 1000");
    recorded_.Set("md127", "md/sync_speed_min", "1000 (system)\n");
    recorded_.SetMember("md127", "sda", "state", "spare\n");
    EXPECT_EQ(HX_Adapter_SetConfig(0, &config), HX_SUCCESS);
    EXPECT_EQ(Attribute("sync_speed_min"), "60000");  // of 150 MB/s
    HX_U8 count = 0;
    Adapter_Config_V2 kept{};
    EXPECT_EQ(HX_Adapter_GetConfig(0, &count, &kept), HX_SUCCESS);
    EXPECT_EQ(kept.RebuildRate, 40);
    EXPECT_EQ(kept.AutoRebuildOn, 1);
    const Told told = Events();
    ASSERT_GE(told.size(), 2U);
    EXPECT_THAT(told[0], ElementsAre(0, 4, 0));
    EXPECT_THAT(told[1], ElementsAre(12, 24, 40));
    EXPECT_EQ(HX_Adapter_SetConfig(0, &config), HX_SUCCESS);
    EXPECT_TRUE(Events().empty());
}

TEST_F(AnActivity, GetsItsRateWhenItBegins) {
    Adapter_Config_V2 config{};
    config.SyncRate = 10;
    EXPECT_EQ(HX_Adapter_SetConfig(0, &config), HX_SUCCESS);
    Events();
    recorded_.Set("md127", "md/sync_speed_min", "1000 (system)\n");
    Run("check", "0 / 1000");
    Events();
    EXPECT_EQ(Attribute("sync_speed_min"), "15000");
    recorded_.Set("md127", "md/sync_speed_min", "1 (local)\n");
    Events();
    EXPECT_EQ(Attribute("sync_speed_min"), "1 (local)\n");  // somebody else has changed it since
}

TEST_F(AnActivity, RefusesARateAboveTheWhole) {
    Adapter_Config_V2 config{};
    EXPECT_EQ(HX_Adapter_SetConfig(0, nullptr), 203);
    config.SyncRate = 101;
    EXPECT_EQ(HX_Adapter_SetConfig(0, &config), 245);
    config.SyncRate = 100;
    config.PollSMARTStatus = 2;
    EXPECT_EQ(HX_Adapter_SetConfig(0, &config), 245);
    HX_U8 count = 0;
    EXPECT_EQ(HX_Adapter_GetConfig(0, &count, &config), HX_SUCCESS);
    EXPECT_EQ(config.SyncRate, 0);
}

}  // namespace
