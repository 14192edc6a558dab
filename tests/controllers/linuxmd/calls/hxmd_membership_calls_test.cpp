// Disks that become spares or members of an array, and that leave it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "controllers/linuxmd/support/recorded_machine.h"
#include "controllers/linuxmd/support/recording_tools.h"
#include "controllers/virtual/support/list_calls.h"
#include "hxraid.h"

namespace {

constexpr HX_U8 kOnline = 1, kOffline = 2, kFree = 3;

// A RAID 1 on the disks 0 and 1, and the disk 2, which is free.
class AMirror : public testing::Test {
protected:
    AMirror() : tools_(recorded_) {
        for (const char* digits : {"0a", "0b", "0c"}) {
            recorded_.AddDisk(std::string("sd") + digits[1], digits);
        }
        recorded_.Root().Write("/proc/1/mountinfo", "22 1 0:2 / / rw - rootfs rootfs rw\n");
    }
    void SetUp() override {
        if (geteuid() != 0) GTEST_SKIP() << "only root may change arrays";
        ASSERT_EQ(HX_API_Initialize(), HX_SUCCESS);
        Create_LD_Param param{};
        param.RaidMode = 0x01;
        param.HDCount = 2;
        param.HDIDs[1] = 1;
        ASSERT_EQ(HX_LD_Create(0, &param), HX_SUCCESS);
        before_ = tools_.Runs().size();
    }
    ~AMirror() override { HX_API_Finalize(); }

    std::string Runs() const { return tools_.Runs().substr(before_); }
    void SetMember(const std::string& member, const std::string& state) {
        recorded_.SetMember("md126", member, "state", state + "\n");
    }
    std::string StateOf(const std::string& member) const {
        return recorded_.Root().Read("/sys/block/md126/md/dev-" + member + "/state");
    }
    static unsigned Bits(HX_U16 disk) { return TheOne(HX_PD_GetHDRaidStatus, 0, disk).Status; }
    bool IsBlank(const std::string& disk) const {
        std::ifstream device(recorded_.Root().Path("/dev/" + disk), std::ios::binary);
        std::string bytes(std::size_t{2} << 20, '\0');
        device.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return device && bytes.find_first_not_of('\0') == std::string::npos;
    }

    RecordedMachine recorded_;
    RecordingTools tools_;
    std::size_t before_ = 0;
};

TEST_F(AMirror, GetsASpareAndGivesItBack) {
    EXPECT_EQ(HX_PD_Spare2FreeHD(0, 2), 232);
    EXPECT_EQ(HX_PD_FreeHD2DGSpare(0, 2, 0), HX_SUCCESS);
    EXPECT_EQ(Runs(), "mdadm --manage /dev/md126 --add /dev/sdc1\n");
    EXPECT_EQ(Bits(2), 0x41U);
    EXPECT_EQ(HX_PD_FreeHD2DGSpare(0, 2, 0), 233);
    EXPECT_EQ(HX_PD_Spare2FreeHD(0, 2), HX_SUCCESS);
    EXPECT_EQ(Runs(),
              "mdadm --manage /dev/md126 --add /dev/sdc1\n"
              "mdadm --manage /dev/md126 --remove /dev/sdc1\n"
              "mdadm --zero-superblock /dev/sdc1\n");
    EXPECT_TRUE(IsBlank("sdc"));
}

TEST_F(AMirror, RefusesSparesThatItCannotTake) {
    EXPECT_EQ(HX_PD_FreeHD2DGSpare(0, 9, 0), 205);
    EXPECT_EQ(HX_PD_FreeHD2DGSpare(0, 2, 9), 207);
    EXPECT_EQ(HX_PD_FreeHD2DGSpare(0, 1, 0), 233);
    SetMember("sdb1", "faulty");
    EXPECT_EQ(HX_PD_FreeHD2DGSpare(0, 2, 0), 242);
    SetMember("sdb1", "in_sync");
    recorded_.Set("md126", "md/sync_action", "frozen\n");
    EXPECT_EQ(HX_PD_FreeHD2DGSpare(0, 2, 0), 240);
    recorded_.Set("md126", "md/sync_action", "idle\n");
    std::fstream(recorded_.Root().Path("/dev/sdc"), std::ios::in | std::ios::out) << "x";
    EXPECT_EQ(HX_PD_FreeHD2DGSpare(0, 2, 0), 253);
    EXPECT_EQ(Runs(), "");
}

TEST_F(AMirror, LeavesADiskBlankThatMdadmCannotAdd) {
    tools_.Fail("--add");
    EXPECT_EQ(HX_PD_FreeHD2DGSpare(0, 2, 0), 252);
    EXPECT_TRUE(IsBlank("sdc"));
}

TEST_F(AMirror, IsRebuiltOntoAFreeDiskWhenItIsDegraded) {
    EXPECT_EQ(HX_LD_StartRebuild(0, 0, 2), 242);
    SetMember("sdb1", "faulty");
    EXPECT_EQ(HX_LD_StartRebuild(0, 9, 2), 207);
    EXPECT_EQ(HX_LD_StartRebuild(0, 0, 9), 205);
    EXPECT_EQ(HX_LD_StartRebuild(0, 0, 0), 233);
    EXPECT_EQ(HX_LD_StartRebuild(0, 0, 2), HX_SUCCESS);
    EXPECT_EQ(Runs(), "mdadm --manage /dev/md126 --add /dev/sdc1\n");
}

TEST_F(AMirror, IsRebuiltOntoTheDisksOfARequest) {
    SetMember("sdb1", "faulty");
    LD_DG_Rebuild_Param param{};
    EXPECT_EQ(HX_LD_DG_StartRebuild(0, nullptr), 203);
    EXPECT_EQ(HX_LD_DG_StartRebuild(0, &param), 223);
    param.PDCount = 1;
    param.PDIDs[0] = 2;
    param.RebuildType = 1;
    EXPECT_EQ(HX_LD_DG_StartRebuild(0, &param), 202);
    param.RebuildType = 0;
    EXPECT_EQ(HX_LD_DG_StartRebuild(0, &param), HX_SUCCESS);
    EXPECT_EQ(Runs(), "mdadm --manage /dev/md126 --add /dev/sdc1\n");
}

TEST_F(AMirror, GivesUpAMemberButNeverTheLastOne) {
    EXPECT_EQ(HX_PD_SetHDStatus(0, 2, kOffline), 242);
    EXPECT_EQ(HX_PD_SetHDStatus(0, 1, 4), 215);
    EXPECT_EQ(HX_PD_SetHDStatus(0, 1, kFree), 233);
    recorded_.Set("md126", "md/resync_start", "0\n");
    EXPECT_EQ(HX_PD_SetHDStatus(0, 1, kOffline), 243);  // not yet redundant
    recorded_.Set("md126", "md/resync_start", "none\n");
    EXPECT_EQ(HX_PD_SetHDStatus(0, 1, kOffline), HX_SUCCESS);
    EXPECT_EQ(StateOf("sdb1"), "faulty");
    EXPECT_EQ(HX_PD_SetHDStatus(0, 0, kOffline), 243);
    EXPECT_EQ(StateOf("sda1"), "in_sync\n");
    EXPECT_EQ(Runs(), "");
}

TEST_F(AMirror, NeverGivesUpAMemberWithoutRedundancy) {
    recorded_.Set("md126", "md/level", "raid0\n");
    EXPECT_EQ(HX_PD_SetHDStatus(0, 1, kOffline), 243);
    EXPECT_EQ(StateOf("sdb1"), "in_sync\n");
}

TEST_F(AMirror, FreesAFailedDisk) {
    SetMember("sdb1", "faulty");
    EXPECT_EQ(HX_PD_SetHDStatus(0, 1, kFree), HX_SUCCESS);
    EXPECT_EQ(Runs(),
              "mdadm --manage /dev/md126 --remove /dev/sdb1\nmdadm --zero-superblock /dev/sdb1\n");
    EXPECT_TRUE(IsBlank("sdb"));
}

TEST_F(AMirror, TakesAFailedMemberBack) {
    EXPECT_EQ(HX_PD_SetHDStatus(0, 1, kOnline), 242);
    SetMember("sdb1", "faulty");
    EXPECT_EQ(HX_PD_SetHDStatus(0, 1, kOnline), HX_SUCCESS);
    EXPECT_EQ(Runs(),
              "mdadm --manage /dev/md126 --remove /dev/sdb1\n"
              "mdadm --manage /dev/md126 --re-add /dev/sdb1\n");
}

TEST_F(AMirror, WritesAMemberAnewThatCannotBeTakenBack) {
    SetMember("sdb1", "faulty");
    tools_.Fail("--re-add");
    EXPECT_EQ(HX_PD_SetHDStatus(0, 1, kOnline), HX_SUCCESS);
    EXPECT_EQ(Runs(),
              "mdadm --manage /dev/md126 --remove /dev/sdb1\n"
              "mdadm --manage /dev/md126 --re-add /dev/sdb1\n"
              "mdadm --manage /dev/md126 --add /dev/sdb1\n");
}

}  // namespace
