// Arrays that are made and deleted.
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "controllers/linuxmd/support/recorded_machine.h"
#include "controllers/linuxmd/support/recording_tools.h"
#include "controllers/virtual/support/list_calls.h"
#include "hxraid.h"

namespace {

class AnArray : public testing::Test {
protected:
    AnArray() : tools_(recorded_) {
        for (const char* digits : {"0a", "0b", "0c", "0d"}) {
            recorded_.AddDisk(std::string("sd") + digits[1], digits);
        }
        recorded_.Root().Write("/proc/1/mountinfo", "22 1 0:2 / / rw - rootfs rootfs rw\n");
        recorded_.Root().Write("/proc/sys/kernel/hostname", "store\n");
    }
    void SetUp() override {
        if (geteuid() != 0) GTEST_SKIP() << "only root may change arrays";
        ASSERT_EQ(HX_API_Initialize(), HX_SUCCESS);
    }
    ~AnArray() override { HX_API_Finalize(); }

    static Create_LD_Param Wanted(HX_U8 level, std::vector<HX_U16> disks) {
        Create_LD_Param param{};
        param.RaidMode = level;
        param.HDCount = static_cast<HX_U8>(disks.size());
        for (std::size_t i = 0; i < disks.size(); ++i) param.HDIDs[i] = disks[i];
        param.StripeBlockSize = 64;
        param.SectorCoefficient = 1;
        std::strncpy(param.Name, "my data", sizeof param.Name);
        return param;
    }

    // Whether nothing is on the disk.
    bool IsBlank(const std::string& disk) const {
        std::ifstream device(recorded_.Root().Path("/dev/" + disk), std::ios::binary);
        std::string bytes(std::size_t{2} << 20, '\0');
        device.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return device && bytes.find_first_not_of('\0') == std::string::npos;
    }

    RecordedMachine recorded_;
    RecordingTools tools_;
};

TEST_F(AnArray, IsMadeOfPartitionsOnFreeDisks) {
    Create_LD_Param param = Wanted(0x05, {0, 1, 2});
    EXPECT_EQ(HX_LD_Create(0, &param), HX_SUCCESS);
    EXPECT_EQ(tools_.Runs(),
              "mdadm --create /dev/md/my_data --run --metadata=1.2 --homehost=store "
              "--name=my_data --level=5 --force --raid-devices=3 --chunk=64K --size=1045504K "
              "--data-offset=1024K --bitmap=none /dev/sda1 /dev/sdb1 /dev/sdc1\n");
    EXPECT_EQ(param.LDID, 0);
    EXPECT_EQ(TheOne(HX_LD_GetInfo, 0, 0).RaidMode, 0x05);
    EXPECT_FALSE(IsBlank("sdc"));
    EXPECT_TRUE(IsBlank("sdd"));
}

TEST_F(AnArray, IsMadeWithCopiesAndWithoutRedundancy) {
    Create_LD_Param param = Wanted(0x11, {0, 1, 2});
    param.InitializationOption = 3;
    param.Size.value = 300000;
    EXPECT_EQ(HX_LD_Create(0, &param), HX_SUCCESS);
    EXPECT_EQ(tools_.Runs(),
              "mdadm --create /dev/md/my_data --run --metadata=1.2 --homehost=store "
              "--name=my_data --level=10 --layout=n2 --raid-devices=3 --chunk=64K --size=100032K "
              "--data-offset=1024K --bitmap=none --assume-clean /dev/sda1 /dev/sdb1 /dev/sdc1\n");
}

TEST_F(AnArray, WithoutRedundancyHasNeitherSizeNorBitmap) {
    Create_LD_Param param = Wanted(0x00, {0, 1});
    std::strncpy(param.Name, "-7", sizeof param.Name);
    EXPECT_EQ(HX_LD_Create(0, &param), HX_SUCCESS);
    EXPECT_EQ(tools_.Runs(),
              "mdadm --create /dev/md/vd-7 --run --metadata=1.2 --homehost=store --name=vd-7 "
              "--level=0 --raid-devices=2 --chunk=64K --data-offset=1024K /dev/sda1 /dev/sdb1\n");
}

TEST_F(AnArray, CanBeAsLargeAsIsTold) {
    Create_LD_Param param = Wanted(0x05, {0, 1, 2});
    EXPECT_EQ(HX_LD_GetMaxSize(0, &param), HX_SUCCESS);
    EXPECT_EQ(param.Size.value, 2U * 2 * 1045504);
    Create_LD_Param wanted = Wanted(0x05, {0, 1, 2});
    wanted.Size.value = param.Size.value + 1;
    EXPECT_EQ(HX_LD_Create(0, &wanted), 226);
    EXPECT_EQ(HX_LD_Create(0, &param), HX_SUCCESS);
}

struct Refusal {
    const char* name;
    HX_U8 status;
    void (*ask)(Create_LD_Param& param);
};

std::string PrintName(const testing::TestParamInfo<Refusal>& each) { return each.param.name; }

class ARequest : public AnArray, public testing::WithParamInterface<Refusal> {};

TEST_P(ARequest, IsRefusedAndNothingIsWritten) {
    Create_LD_Param param = Wanted(0x05, {0, 1, 2});
    GetParam().ask(param);
    EXPECT_EQ(HX_LD_Create(0, &param), GetParam().status);
    EXPECT_EQ(tools_.Runs(), "");
    for (const char* disk : {"sda", "sdb", "sdc"}) EXPECT_TRUE(IsBlank(disk));
}

constexpr Refusal kRefusals[] = {
    {"UnknownLevel", 219, [](Create_LD_Param& param) { param.RaidMode = 0x03; }},
    {"LevelWithLegs", 219, [](Create_LD_Param& param) { param.RaidMode = 0x50; }},
    {"OddStripe", 220, [](Create_LD_Param& param) { param.StripeBlockSize = 65; }},
    {"LargeStripe", 220, [](Create_LD_Param& param) { param.StripeBlockSize = 8192; }},
    {"UnknownRounding", 221, [](Create_LD_Param& param) { param.RoundingScheme = 3; }},
    {"LargeSectors", 222, [](Create_LD_Param& param) { param.SectorCoefficient = 8; }},
    {"NoDisks", 216, [](Create_LD_Param& param) { param.HDCount = 0; }},
    {"TooManyDisks", 216, [](Create_LD_Param& param) { param.HDCount = 129; }},
    {"UnknownDisk", 205, [](Create_LD_Param& param) { param.HDIDs[2] = 9; }},
    {"DiskTwice", 224, [](Create_LD_Param& param) { param.HDIDs[2] = 0; }},
    {"TwoDisksForParity", 223, [](Create_LD_Param& param) { param.HDCount = 2; }},
    {"Raid6OfThreeDisks", 223, [](Create_LD_Param& param) { param.RaidMode = 0x06; }},
    {"Foreground", 202, [](Create_LD_Param& param) { param.InitializationOption = 1; }},
    {"ParityNotCalculated", 245, [](Create_LD_Param& param) { param.InitializationOption = 3; }},
    {"TooLarge", 226, [](Create_LD_Param& param) { param.Size.value = 1U << 30; }},
    {"LessThanItsRounding", 226, [](Create_LD_Param& param) { param.RoundingScheme = 2; }},
};
INSTANTIATE_TEST_SUITE_P(Of, ARequest, testing::ValuesIn(kRefusals), PrintName);

TEST_F(AnArray, IsNotMadeWhenOneDiskIsNotFree) {
    std::fstream(recorded_.Root().Path("/dev/sdc"), std::ios::in | std::ios::out) << "x";
    Create_LD_Param param = Wanted(0x05, {0, 1, 2});
    EXPECT_EQ(HX_LD_Create(0, &param), 253);
    EXPECT_EQ(tools_.Runs(), "");
    EXPECT_TRUE(IsBlank("sda"));
    EXPECT_TRUE(IsBlank("sdb"));
}

TEST_F(AnArray, LeavesNothingBehindWhenMdadmFails) {
    tools_.Fail("--create");
    Create_LD_Param param = Wanted(0x05, {0, 1, 2});
    EXPECT_EQ(HX_LD_Create(0, &param), 252);
    for (const char* disk : {"sda", "sdb", "sdc"}) EXPECT_TRUE(IsBlank(disk));
}

TEST_F(AnArray, IsDeletedWithItsSuperblocksAndPartitions) {
    Create_LD_Param param = Wanted(0x01, {0, 1});
    ASSERT_EQ(HX_LD_Create(0, &param), HX_SUCCESS);
    const std::size_t before = tools_.Runs().size();
    EXPECT_EQ(HX_LD_Delete(0, 9, 0), 207);
    EXPECT_EQ(HX_LD_Delete(0, 0, 0), HX_SUCCESS);
    EXPECT_EQ(tools_.Runs().substr(before),
              "mdadm --stop /dev/md126\nmdadm --zero-superblock /dev/sda1\n"
              "mdadm --zero-superblock /dev/sdb1\n");
    EXPECT_TRUE(All(HX_LD_GetInfo, 0).empty());
    EXPECT_TRUE(IsBlank("sda"));
    EXPECT_TRUE(IsBlank("sdb"));
}

TEST_F(AnArray, IsToldToBeDeletedAndNotToBeOffline) {
    Create_LD_Param param = Wanted(0x01, {0, 1});
    ASSERT_EQ(HX_LD_Create(0, &param), HX_SUCCESS);
    std::array<Event, 8> events{};
    HX_U8 count = 0;
    ASSERT_EQ(HX_EVT_GetEvent(0, 8, &count, events.data()), HX_SUCCESS);
    ASSERT_EQ(HX_LD_Delete(0, 0, 0), HX_SUCCESS);
    ASSERT_EQ(HX_EVT_GetEvent(0, 8, &count, events.data()), HX_SUCCESS);
    ASSERT_EQ(count, 1);
    EXPECT_EQ(events[0].Class, 1);
    EXPECT_EQ(events[0].Code, 3);
    EXPECT_EQ(events[0].DeviceID, param.LDID);
    ASSERT_EQ(HX_EVT_GetEvent(0, 8, &count, events.data()), HX_SUCCESS);
    EXPECT_EQ(count, 0);
}

TEST_F(AnArray, IsNotDeletedWhileSomethingUsesIt) {
    Create_LD_Param param = Wanted(0x01, {0, 1});
    ASSERT_EQ(HX_LD_Create(0, &param), HX_SUCCESS);
    const std::string before = tools_.Runs();
    std::filesystem::create_directories(recorded_.Root().Path("/sys/block/md126/holders/dm-0"));
    EXPECT_EQ(HX_LD_Delete(0, 0, 1), 253);
    std::filesystem::remove_all(recorded_.Root().Path("/sys/block/md126/holders"));
    std::filesystem::create_directories(
        recorded_.Root().Path("/sys/block/md126/md126p1/holders/dm-0"));
    recorded_.Set("md126", "md126p1/partition", "1\n");
    EXPECT_EQ(HX_LD_Delete(0, 0, 1), 253);
    std::filesystem::remove_all(recorded_.Root().Path("/sys/block/md126/md126p1"));
    std::filesystem::rename(recorded_.Root().Path("/dev/md126"), recorded_.Root().Path("/away"));
    EXPECT_EQ(HX_LD_Delete(0, 0, 1), 253);  // it cannot be opened alone
    EXPECT_EQ(tools_.Runs(), before);
}

TEST_F(AnArray, StaysWhenItCannotBeStopped) {
    Create_LD_Param param = Wanted(0x01, {0, 1});
    ASSERT_EQ(HX_LD_Create(0, &param), HX_SUCCESS);
    tools_.Fail("--stop");
    EXPECT_EQ(HX_LD_Delete(0, 0, 0), 252);
    EXPECT_EQ(tools_.Runs().find("--zero-superblock"), std::string::npos);
    EXPECT_FALSE(IsBlank("sda"));
}

}  // namespace
