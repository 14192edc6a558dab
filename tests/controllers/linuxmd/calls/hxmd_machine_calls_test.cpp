// The library over recorded machines, as its callers have it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "controllers/linuxmd/support/recorded_machine.h"
#include "controllers/virtual/support/list_calls.h"
#include "hxraid.h"

using testing::ElementsAre;

namespace {

class TheLibrary : public testing::Test {
protected:
    TheLibrary() {
        recorded_.Root().Write("/etc/machine-id", "0123456789abcdef0123456789abcdef\n");
    }
    ~TheLibrary() override { HX_API_Finalize(); }

    void Open() { ASSERT_EQ(HX_API_Initialize(), HX_SUCCESS); }

    // A RAID 1 over a whole disk and a partition, and a disk that is free.
    void RecordMirror() {
        recorded_.AddMirror();
        recorded_.AddDisk("sdc", "0c");
    }

    // Class, code and device of the events that wait.
    using Told = std::vector<std::array<unsigned, 3>>;
    static Told Events() {
        Event events[HX_EVENTS_PER_CALL]{};
        HX_U8 count = 0;
        EXPECT_EQ(HX_EVT_GetEvent(0, HX_EVENTS_PER_CALL, &count, events), HX_SUCCESS);
        Told told;
        for (unsigned i = 0; i < count; ++i) {
            told.push_back({events[i].Class, events[i].Code, events[i].DeviceID});
        }
        return told;
    }

    RecordedMachine recorded_;
};

std::string TextOf(const char* field, std::size_t size) { return {field, strnlen(field, size)}; }

// ---- The library ----

TEST_F(TheLibrary, TellsItsVersionAndIsOpenedBeforeEveryCall) {
    EXPECT_STREQ(HX_API_Version(), PROJECT_VERSION " (linuxmd)");
    EXPECT_EQ(HX_Adapter_GetCount(), 0);
    HX_U8 count = 0;
    Adapter_Info info{};
    EXPECT_EQ(HX_Adapter_GetInfo(0, &count, &info), 200);
    Open();
    Open();
    EXPECT_EQ(HX_Adapter_GetCount(), 1);
    EXPECT_EQ(HX_Adapter_GetInfo(0, &count, &info), HX_SUCCESS);
    EXPECT_EQ(HX_Adapter_GetInfo(1, &count, &info), 201);
    EXPECT_EQ(HX_Adapter_GetInfo(0, nullptr, &info), 203);
    HX_API_Finalize();
    EXPECT_EQ(HX_Adapter_GetInfo(0, &count, &info), 200);
}

TEST_F(TheLibrary, HasNoAdapterOnAMachineWithoutMdOrSysfs) {
    std::filesystem::remove(recorded_.Root().Path("/proc/mdstat"));
    Open();
    EXPECT_EQ(HX_Adapter_GetCount(), 0);
    recorded_.Root().Write("/proc/mdstat", "");
    EXPECT_EQ(HX_Adapter_GetCount(), 1);
    std::filesystem::remove_all(recorded_.Root().Path("/sys"));
    EXPECT_EQ(HX_Adapter_GetCount(), 0);
}

TEST_F(TheLibrary, IsNotOpenedOverADamagedStateFile) {
    recorded_.Root().Write("/var/lib/vexorapi/hxmd.db", std::string(5000, 'x'));
    EXPECT_EQ(HX_API_Initialize(), 229);
    EXPECT_EQ(HX_Adapter_GetCount(), 0);
}

TEST_F(TheLibrary, TellsOfTheKernelAndWhatItCanTake) {
    Open();
    HX_U8 count = 0;
    Adapter_Info info{};
    ASSERT_EQ(HX_Adapter_GetInfo(0, &count, &info), HX_SUCCESS);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(info.DriverVersion.VerMajor, 6U);
    EXPECT_EQ(info.DriverVersion.VerMinor, 1U);
    EXPECT_EQ(info.MaxLogicalDrive, 255);
    EXPECT_EQ(info.MaxHD_Ext, 65535);
    EXPECT_EQ(info.DiskGroupSupport, 0);
    const std::string serial = TextOf(info.SerialNo, sizeof info.SerialNo);
    EXPECT_EQ(serial.size(), 17U);
    EXPECT_EQ(serial.front(), 'M');
    Adapter_Config_V2 config{};
    EXPECT_EQ(HX_Adapter_GetConfig(0, &count, &config), HX_SUCCESS);
    EXPECT_EQ(config.AutoRebuildOn, 0);
}

TEST_F(TheLibrary, TellsOfNoDamageInTheFlashThatItHasNot) {
    Open();
    HX_U8 count = 0;
    Adapter_Info info{};
    ASSERT_EQ(HX_Adapter_GetInfo(0, &count, &info), HX_SUCCESS);
    for (const HX_BOOLEAN health :
         {info.img_health, info.autoload_img_health, info.boot_loader_img_health,
          info.firmware_img_health, info.boot_rom_img_health, info.hba_info_img_health}) {
        EXPECT_EQ(health, 1);
    }
}

// ---- Disks ----

TEST_F(TheLibrary, ListsDisksWithAllThatIsKnownOfThem) {
    recorded_.AddDisk("sda", "0a");
    recorded_.AddEnclosure("1:0:5:0", "0x50000000000000e0");
    recorded_.AddSlot("1:0:5:0", "SLOT 001", "sda");
    Open();
    const auto disks = All(HX_PD_GetHDInfo_Ext, 0);
    ASSERT_EQ(disks.size(), 1U);
    const HD_Info& disk = disks[0];
    EXPECT_EQ(disk.Link.Self.DevID, 0);
    EXPECT_EQ(disk.Link.Self.DevType, 4);
    EXPECT_EQ(disk.Link.Self.EnclosureID, 0);
    EXPECT_EQ(disk.Link.Parent.DevType, 1);
    EXPECT_EQ(disk.Status, 0x01);
    EXPECT_EQ(disk.ConnectionType, 0x05);
    EXPECT_EQ(disk.FeatureSupport, 0x06U);
    EXPECT_EQ(TextOf(disk.Model, sizeof disk.Model), "TARNWELL T-1000");
    EXPECT_EQ(TextOf(disk.SerialNo, sizeof disk.SerialNo), "TW00000a");
    EXPECT_EQ(TextOf(disk.FWVersion, sizeof disk.FWVersion), "A101");
    EXPECT_EQ(std::to_array(disk.WWN), (std::array<HX_U8, 8>{0x50, 0, 0, 0, 0, 0, 0, 0x0A}));
    EXPECT_EQ(disk.Size.value, 2097152U);
    EXPECT_EQ(disk.ActivityLEDStatus, 1);
    EXPECT_EQ(TheOne(HX_PD_GetFreeSpaceInfo, 0, 0).Size.value, 2093056U);
    EXPECT_EQ(TheOne(HX_PD_GetFreeSpaceInfo, 0, 0).isFixed, 1);
    EXPECT_EQ(TheOne(HX_PD_GetConfig, 0, 0).WriteCacheOn, 1);
    EXPECT_EQ(TheOne(HX_PD_GetConfig, 0, 0).Online, 1);
    EXPECT_EQ(TheOne(HX_PD_GetSmartStatus, 0, 0).SmartThresholdExceeded, 0);
    EXPECT_EQ(TheOne(HX_PD_GetHDRaidStatus, 0, 0).Status, 0x01);
}

TEST_F(TheLibrary, ListsDisksPageByPage) {
    for (const char* digits : {"0a", "0b", "0c"}) {
        recorded_.AddDisk(std::string("sd") + digits[1], digits);
    }
    Open();
    auto page = Ask(HX_PD_GetHDInfo, 0, HX_REQUEST_BY_INDEX, 0, 2);
    EXPECT_EQ(page.header.numReturned, 2);
    EXPECT_EQ(page.header.nextStartingIndex, 2);
    page = Ask(HX_PD_GetHDInfo, 0, HX_REQUEST_BY_INDEX, 2, 2);
    EXPECT_EQ(page.header.numReturned, 1);
    EXPECT_EQ(page.header.nextStartingIndex, HX_LIST_COMPLETE);
    page = Ask(HX_PD_GetHDInfo, 0, HX_REQUEST_BY_INDEX, 9, 2);
    EXPECT_EQ(page.header.numReturned, 0);
    EXPECT_EQ(page.header.nextStartingIndex, HX_LIST_COMPLETE);
    page = Ask(HX_PD_GetHDInfo, 0, HX_REQUEST_BY_ID, 1, 1);
    EXPECT_EQ(page.records.at(0).Link.Self.DevID, 1);
    EXPECT_EQ(page.header.nextStartingIndex, HX_LIST_COMPLETE);
    EXPECT_EQ(Ask(HX_PD_GetHDInfo, 0, HX_REQUEST_BY_ID, 3, 1).status, 205);
    EXPECT_EQ(Ask(HX_PD_GetHDInfo, 0, 3, 0, 1).status, 204);
    EXPECT_EQ(HX_PD_GetHDInfo(0, nullptr), 203);
}

TEST_F(TheLibrary, KnowsADiskAgainAfterItHasBeenClosed) {
    recorded_.AddDisk("sda", "0a");
    recorded_.AddDisk("sdb", "0b");
    Open();
    EXPECT_EQ(All(HX_PD_GetHDInfo, 0).size(), 2U);
    HX_API_Finalize();
    recorded_.Pull("sda");
    recorded_.Pull("sdb");
    recorded_.AddDisk("sda", "0b");  // the letters follow no order
    Open();
    const auto disks = All(HX_PD_GetHDInfo, 0);
    ASSERT_EQ(disks.size(), 1U);
    EXPECT_EQ(disks[0].Link.Self.DevID, 1);
}

TEST_F(TheLibrary, SaysWhatADiskHolds) {
    RecordMirror();
    recorded_.AddDisk("sdd", "0d");
    recorded_.AddPartition("sdd", "sdd1");
    // The system lies on the array.
    recorded_.Root().Write("/proc/1/mountinfo",
                           "22 1 9:1 / / rw,relatime shared:1 - ext4 /dev/md127 rw\n"
                           "23 22 0:5 / /dev rw - devtmpfs udev rw\n");
    for (const char* way : {"md127", "sda", "sdb"}) {
        std::filesystem::create_directories(recorded_.Root().Path("/sys/class/block"));
        std::filesystem::create_symlink(
            std::filesystem::canonical(recorded_.Root().Path(std::string("/sys/block/") + way)),
            recorded_.Root().Path(std::string("/sys/class/block/") + way));
    }
    std::filesystem::create_symlink(
        std::filesystem::canonical(recorded_.Root().Path("/sys/block/sdb/sdb1")),
        recorded_.Root().Path("/sys/class/block/sdb1"));
    std::filesystem::create_directories(recorded_.Root().Path("/sys/dev/block"));
    std::filesystem::create_symlink("../../class/block/md127",
                                    recorded_.Root().Path("/sys/dev/block/9:1"));
    recorded_.Set("md127", "slaves/sda/x", "");
    recorded_.Set("md127", "slaves/sdb1/x", "");
    Open();
    const HX_U16 ids[] = {0, 1, 2, 3, 9};
    EXPECT_EQ(HX_DiskHasOS(0, 1, 1, &ids[0]), 218);
    EXPECT_EQ(HX_DiskHasOS(0, 1, 1, &ids[1]), 218);  // through its partition
    EXPECT_EQ(HX_DiskHasOS(0, 1, 1, &ids[2]), HX_SUCCESS);
    EXPECT_EQ(HX_DiskHasOS(0, 1, 1, &ids[3]), 253);
    EXPECT_EQ(HX_DiskHasOS(0, 1, 2, &ids[3]), 205);
    EXPECT_EQ(HX_DiskHasOS(0, 2, 1, &ids[2]), 215);
    // What neither sysfs nor udev knows, root finds on the disk itself.
    if (geteuid() == 0) {
        recorded_.AddDevice("sdc", 2097152);
        recorded_.Root().Write("/dev/sdc", "x");
        std::filesystem::resize_file(recorded_.Root().Path("/dev/sdc"), 2097152 * 512);
        EXPECT_EQ(HX_DiskHasOS(0, 1, 1, &ids[2]), 253);
        recorded_.AddDevice("sdc", 2097152);
    }
    EXPECT_EQ(HX_DiskHasOS(0, 1, 1, nullptr), 203);
    // A root that cannot be followed to its disks can lie on each that is not free.
    recorded_.Root().Write("/proc/1/mountinfo", "22 1 0:30 / / rw - zfs rpool/ROOT rw\n");
    EXPECT_EQ(HX_DiskHasOS(0, 1, 1, &ids[2]), HX_SUCCESS);
    EXPECT_EQ(HX_DiskHasOS(0, 1, 1, &ids[3]), 218);

    HD_MBR_Info tables{};
    tables.HDCount = 2;
    tables.HDIDs[0] = 0;
    tables.HDIDs[1] = 3;
    EXPECT_EQ(HX_PD_GetMBRInfo(0, &tables), HX_SUCCESS);
    EXPECT_EQ(tables.hasMBR[0], 0);
    EXPECT_EQ(tables.hasMBR[1], 1);
    if (geteuid() == 0) {
        // udev has not examined the disk: root looks for the table itself.
        std::filesystem::remove(recorded_.Root().Path("/run/udev/data/b8:99"));
        tables.HDIDs[1] = 2;
        EXPECT_EQ(HX_PD_GetMBRInfo(0, &tables), HX_SUCCESS);
        EXPECT_EQ(tables.hasMBR[1], 0);
        std::filesystem::remove(recorded_.Root().Path("/dev/sdc"));
        EXPECT_EQ(HX_PD_GetMBRInfo(0, &tables), HX_SUCCESS);
        EXPECT_EQ(tables.hasMBR[1], 1);  // nobody has seen that there is none
    }
    tables.HDIDs[1] = 9;
    EXPECT_EQ(HX_PD_GetMBRInfo(0, &tables), 205);
    tables.HDCount = 129;
    EXPECT_EQ(HX_PD_GetMBRInfo(0, &tables), 216);
}

// ---- Virtual disks ----

TEST_F(TheLibrary, ListsAnArrayAsAVirtualDisk) {
    RecordMirror();
    Open();
    const LD_Info info = TheOne(HX_LD_GetInfo, 0, 0);
    EXPECT_EQ(info.DGID, 255);
    EXPECT_EQ(info.Status, 1);
    EXPECT_EQ(info.BGAStatus, 0);
    EXPECT_EQ(info.RaidMode, 0x01);
    EXPECT_EQ(info.HDCount, 2);
    EXPECT_EQ(info.StripeBlockSize, 512);
    EXPECT_EQ(info.SectorCoefficient, 1);
    EXPECT_EQ(info.CacheMode, 0x04);
    EXPECT_EQ(info.Size.value, 4186112U);
    EXPECT_EQ(TextOf(info.Name, sizeof info.Name), "data");
    EXPECT_EQ(info.BlockIDs[0], 0);
    EXPECT_EQ(info.BlockIDs[1], 1);
    EXPECT_EQ(info.BlockIDs[2], 65535);
    LD_Info target{};
    EXPECT_EQ(HX_LD_GetTargetLDInfo(0, 0, &target), HX_SUCCESS);
    EXPECT_EQ(std::memcmp(&info, &target, sizeof info), 0);
    EXPECT_EQ(HX_LD_GetTargetLDInfo(0, 1, &target), 207);
    EXPECT_EQ(HX_LD_GetTargetLDInfo(0, 0, nullptr), 203);

    const Block_Info block = TheOne(HX_BLK_GetInfo, 0, 1);
    EXPECT_EQ(block.HDID, 1);
    EXPECT_EQ(block.LDID, 0);
    EXPECT_EQ(block.Flags, 0x0001);
    EXPECT_EQ(block.Status, 1);
    EXPECT_EQ(block.BlockSize, 512);
    EXPECT_EQ(block.StartLBA.value, 4096U);  // behind the partition's start and the superblock
    EXPECT_EQ(block.Size.value, 2093056U);
    EXPECT_EQ(TheOne(HX_BLK_GetHDBlock, 0, 1).BlockIDs[0], 1);
    EXPECT_EQ(TheOne(HX_BLK_GetHDBlock, 0, 2).BlockIDs[0], 65535);
    EXPECT_EQ(TheOne(HX_PD_GetHDRaidStatus, 0, 1).Status, 0x05);
    EXPECT_EQ(TheOne(HX_PD_GetHDRaidStatus, 0, 1).DGID, 0);
    EXPECT_EQ(TheOne(HX_LD_GetConfig, 0, 0).CacheMode, 0x04);
    EXPECT_EQ(TheOne(HX_LD_GetStatus, 0, 0).Status, 1);
}

TEST_F(TheLibrary, TellsARebuildOfTheArrayAndOfTheDisk) {
    RecordMirror();
    recorded_.Set("md127", "md/sync_action", "recover\n");
    recorded_.Set("md127", "md/sync_completed", "1046528 / 2093056\n");
    recorded_.SetMember("md127", "sdb1", "state", "spare\n");
    Open();
    const LD_Status status = TheOne(HX_LD_GetStatus, 0, 0);
    EXPECT_EQ(status.Status, 4);
    EXPECT_EQ(status.Bga, 6);
    EXPECT_EQ(status.BgaState, 1);
    EXPECT_EQ(status.BgaPercentage, 50);
    const HD_BGA_Status disk = TheOne(HX_PD_GetBGAStatus, 0, 1);
    EXPECT_EQ(disk.Bga, 6);
    EXPECT_EQ(disk.Percentage, 50);
    EXPECT_EQ(disk.Status, 0x15);
    EXPECT_EQ(TheOne(HX_PD_GetBGAStatus, 0, 0).Bga, 0);
    EXPECT_EQ(TheOne(HX_BLK_GetInfo, 0, 1).Flags, 0x0005);
    EXPECT_EQ(TheOne(HX_BLK_GetInfo, 0, 1).Status, 3);
}

TEST_F(TheLibrary, ListsTheDiskThatAnArrayLacks) {
    RecordMirror();
    Open();
    EXPECT_EQ(All(HX_PD_GetHDInfo, 0).size(), 3U);
    recorded_.Pull("sdb");
    EXPECT_EQ(TheOne(HX_LD_GetStatus, 0, 0).Status, 4);
    const HD_Info missing = TheOne(HX_PD_GetHDInfo, 0, 1);
    EXPECT_EQ(missing.Status, 0x84);
    EXPECT_EQ(TextOf(missing.SerialNo, sizeof missing.SerialNo), "TW00000b");
    EXPECT_EQ(TheOne(HX_BLK_GetInfo, 0, 1).Status, 5);
    EXPECT_EQ(TheOne(HX_BLK_GetInfo, 0, 1).HDID, 1);
}

TEST_F(TheLibrary, KnowsTheLevelOfAnArrayThatHasBecomeIncomplete) {
    RecordMirror();
    Open();
    TheOne(HX_LD_GetInfo, 0, 0);
    recorded_.Set("md127", "md/array_state", "inactive\n");
    recorded_.Set("md127", "md/level", "\n");
    recorded_.Set("md127", "md/raid_disks", "\n");
    recorded_.Set("md127", "size", "0\n");
    const LD_Info info = TheOne(HX_LD_GetInfo, 0, 0);
    EXPECT_EQ(info.Status, 5);
    EXPECT_EQ(info.RaidMode, 0x01);
    EXPECT_EQ(info.HDCount, 2);
}

// ---- Enclosures, and what there is none of ----

TEST_F(TheLibrary, ListsEnclosuresWithoutElements) {
    recorded_.AddEnclosure("1:0:5:0", "0x50000000000000e0");
    Open();
    const Enclosure_Info info = TheOne(HX_ENC_GetEnclosureInfo, 0, 0);
    EXPECT_STREQ(info.LogicalID, "50000000000000e0");
    EXPECT_STREQ(info.ProductID, "SHELF 12");
    EXPECT_EQ(info.Status, 6);  // not seen is not well
    HX_U8 count = 9;
    EncElementType_Info elements[1];
    EncElement_Config thresholds[1];
    EXPECT_EQ(HX_ENC_GetElementInfo(0, 0, elements, &count), HX_SUCCESS);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(HX_ENC_GetElementConfig(0, 0, thresholds, &count), HX_SUCCESS);
    EXPECT_EQ(HX_ENC_GetElementInfo(0, 1, elements, &count), 209);
    EXPECT_EQ(HX_ENC_GetElementInfo(0, 0, nullptr, &count), 203);
}

TEST_F(TheLibrary, HasNoDiskGroupsBatteryOrPortMultipliers) {
    Open();
    EXPECT_TRUE(All(HX_DG_GetInfo, 0).empty());
    EXPECT_EQ(Ask(HX_DG_GetInfo, 0, HX_REQUEST_BY_ID, 0, 1).status, 208);
    EXPECT_TRUE(All(HX_DG_GetConfig, 0).empty());
    EXPECT_TRUE(All(HX_PD_GetPMInfo, 0).empty());
    EXPECT_EQ(Ask(HX_PD_GetPMInfo, 0, HX_REQUEST_BY_ID, 0, 1).status, 211);
    EXPECT_TRUE(All(HX_PD_GetExpanderInfo, 0).empty());
    BBU_Info battery{};
    EXPECT_EQ(HX_BBU_GetInfo(0, &battery), 212);
    EXPECT_EQ(HX_BBU_GetInfo(1, &battery), 201);
}

TEST_F(TheLibrary, DoesNotDenyExpandersThatItCannotRead) {
    recorded_.Root().Write("/sys/class/sas_expander/expander-1:0/vendor_id", "TARNWELL\n");
    Open();
    EXPECT_EQ(Ask(HX_PD_GetExpanderInfo, 0, HX_REQUEST_BY_INDEX, 0, 1).status, 202);
}

// ---- Refusals ----

std::vector<HX_U8> EveryChange(HX_U8 adapter) {
    HD_Config disk{};
    LD_Config settings{};
    Create_LD_Param create{};
    return {
        HX_LocateArrayDevice(adapter, 4, 0, 1), HX_PD_SetConfig(adapter, 0, &disk),
        HX_PD_WipeHDMDD(adapter, 0, 1),         HX_PD_FreeHD2GlobalSpare(adapter, 2),
        HX_LD_SetConfig(adapter, 0, &settings), HX_LD_Import(adapter, 0),
        HX_LD_StartMigration(adapter, &create),
    };
}

std::vector<HX_U8> EveryOther(HX_U8 adapter) {
    HX_U32 count = 0;
    Create_LD_Param create{};
    DG_Config settings{};
    CreateOrModify_DG_Param group{};
    CreateOrModify_VD_Param slot{};
    const auto piece = std::make_unique<Flash_Data>();
    return {
        HX_AdapterMute(adapter),
        HX_PD_RCT_GetCount(adapter, 0, &count),
        HX_PD_GetRCT(adapter, 0, nullptr, 0),
        HX_PD_StartMediaPatrol(adapter, 0),
        HX_PD_HDMPCheck(adapter, 0),
        HX_PD_StartDataScrub(adapter, 0),
        HX_PD_BGAControl(adapter, 0, 1),
        HX_LD_StartINIT(adapter, 0, 0),
        HX_LD_GetMigratedLdSize(adapter, &create),
        HX_DG_SetConfig(adapter, 0, &settings),
        HX_CreateOrModify_DG(adapter, &group, 0),
        HX_CreateOrModify_VD(adapter, &slot),
        HX_DG_Delete(adapter, 0),
        HX_DG_StartMigration(adapter, &group),
        HX_DG_BGAControl(adapter, 0, 1),
        HX_Flash_Erase(adapter, 0),
        HX_Flash_Bin(adapter, HX_FLASH_READ, 0, piece.get()),
    };
}

TEST_F(TheLibrary, ChangesNothing) {
    RecordMirror();
    Open();
    EXPECT_THAT(EveryChange(0), testing::Each(geteuid() == 0 ? HX_U8{202} : HX_U8{251}));
    EXPECT_THAT(EveryChange(1), testing::Each(HX_U8{201}));
    EXPECT_THAT(EveryOther(0), testing::Each(HX_U8{202}));
    EXPECT_THAT(EveryOther(1), testing::Each(HX_U8{201}));
    HX_API_Finalize();
    EXPECT_THAT(EveryChange(0), testing::Each(HX_U8{200}));
    EXPECT_THAT(EveryOther(0), testing::Each(HX_U8{200}));
}

TEST_F(TheLibrary, ListsForEverybodyWhatRootHasMet) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can become nobody";
    RecordMirror();
    std::filesystem::permissions(recorded_.Root().Path(""), std::filesystem::perms(0755));
    const auto as_nobody = [](const auto& look) {
        ASSERT_EQ(seteuid(65534), 0);
        ASSERT_EQ(HX_API_Initialize(), HX_SUCCESS);
        look();
        HX_API_Finalize();
        ASSERT_EQ(seteuid(0), 0);
    };
    as_nobody([] {
        EXPECT_EQ(HX_Adapter_GetCount(), 1);
        EXPECT_TRUE(All(HX_PD_GetHDInfo, 0).empty());
        EXPECT_TRUE(All(HX_LD_GetInfo, 0).empty());
        HX_U8 count = 0;
        Event event{};
        EXPECT_EQ(HX_EVT_GetEvent(0, 1, &count, &event), 229);
    });
    Open();
    EXPECT_EQ(All(HX_PD_GetHDInfo, 0).size(), 3U);
    HX_API_Finalize();
    recorded_.AddDisk("sdd", "0d");
    as_nobody([] {
        EXPECT_EQ(All(HX_PD_GetHDInfo, 0).size(), 3U);
        EXPECT_EQ(All(HX_LD_GetInfo, 0).size(), 1U);
        EXPECT_EQ(All(HX_BLK_GetInfo, 0).size(), 2U);
        EXPECT_THAT(EveryChange(0), testing::Each(HX_U8{251}));
    });
}

// ---- Events ----

TEST_F(TheLibrary, TellsALostDiskAndItsRebuildEachOnce) {
    RecordMirror();
    Open();
    EXPECT_THAT(Events(), ElementsAre(std::array{0U, 9U, 0U}));
    EXPECT_TRUE(Events().empty());
    recorded_.Pull("sdb");
    EXPECT_THAT(Events(), ElementsAre(std::array{2U, 0U, 1U}, std::array{1U, 4U, 0U}));
    EXPECT_TRUE(Events().empty());
    recorded_.RemoveMember("md127", "sdb1");
    recorded_.AddMember("md127", "sdc", "1", "spare");
    recorded_.Set("md127", "md/sync_action", "recover\n");
    recorded_.Set("md127", "md/sync_completed", "0 / 2093056\n");
    HX_API_Finalize();
    Open();  // what was seen is in the file
    EXPECT_THAT(Events(), ElementsAre(std::array{1U, 70U, 0U}));
    recorded_.Set("md127", "md/sync_completed", "1046528 / 2093056\n");
    EXPECT_THAT(Events(), ElementsAre(std::array{1U, 76U, 0U}));
    recorded_.Set("md127", "md/sync_action", "idle\n");
    recorded_.Set("md127", "md/sync_completed", "none\n");
    recorded_.SetMember("md127", "sdc", "state", "in_sync\n");
    EXPECT_THAT(Events(), ElementsAre(std::array{1U, 75U, 0U}, std::array{1U, 1U, 0U}));
    EXPECT_EQ(All(HX_PD_GetHDInfo, 0).size(), 2U);
}

TEST_F(TheLibrary, TellsAtFirstOnlyWhatIsNotWell) {
    RecordMirror();
    recorded_.SetMember("md127", "sda", "state", "faulty\n");
    Open();
    EXPECT_THAT(Events(), ElementsAre(std::array{0U, 9U, 0U}, std::array{2U, 2U, 0U},
                                      std::array{1U, 4U, 0U}));
}

TEST_F(TheLibrary, CountsADiskAsMissingAtBootOnceTheMachineHasSettled) {
    RecordMirror();
    Open();
    Events();
    recorded_.Pull("sdc");
    recorded_.Root().Write("/proc/sys/kernel/random/boot_id",
                           "00000000-0000-4000-8000-000000000001\n");
    recorded_.Root().Write("/proc/uptime", "29.99 10.00\n");
    EXPECT_TRUE(Events().empty());
    recorded_.Root().Write("/proc/uptime", "30.00 10.00\n");
    EXPECT_THAT(Events(), ElementsAre(std::array{12U, 16U, 2U}));
    EXPECT_TRUE(Events().empty());
}

TEST_F(TheLibrary, HandsOutNoMoreEventsThanAreAskedFor) {
    RecordMirror();
    recorded_.SetMember("md127", "sda", "state", "faulty\n");
    Open();
    HX_U8 count = 9;
    Event event{};
    EXPECT_EQ(HX_EVT_GetEvent(0, 0, &count, &event), HX_SUCCESS);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(HX_EVT_GetEvent(0, 1, &count, &event), HX_SUCCESS);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(event.SequenceNo, 1U);
    EXPECT_EQ(Events().size(), 2U);
    EXPECT_EQ(HX_EVT_GetEvent(0, 1, nullptr, &event), 203);
}

// ---- Through a program, where there is one ----

#ifdef VEXORCTL
TEST_F(TheLibrary, ServesVexorctl) {
    RecordMirror();
    const std::string command =
        std::string("LD_LIBRARY_PATH='" HXMD_FOLDER "' '" VEXORCTL "' -o csv vd list 2>&1");
    FILE* const program = popen(command.c_str(), "r");
    ASSERT_NE(program, nullptr);
    std::string output;
    char line[512];
    while (std::fgets(line, sizeof line, program) != nullptr) output += line;
    EXPECT_EQ(pclose(program), 0) << output;
    EXPECT_THAT(output, testing::HasSubstr("a0/vd0"));
    EXPECT_THAT(output, testing::HasSubstr("data"));
    EXPECT_THAT(output, testing::HasSubstr("raid1"));
    EXPECT_THAT(output, testing::HasSubstr("optimal"));
}
#endif

}  // namespace
