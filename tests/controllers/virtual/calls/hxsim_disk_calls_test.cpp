// The disks of the virtual controller: what they are, what they are used for, what is on them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "controllers/virtual/support/list_calls.h"
#include "controllers/virtual/support/requests.h"
#include "hxraid.h"

namespace {

using testing::Each;
using testing::ElementsAre;

using SimulatorDisk = SimulatorTest;

template <std::size_t size>
std::string Field(const char (&field)[size]) {
    return {field, size};
}

HD_Info Disk(HX_U8 adapter, HX_U16 id) { return TheOne(HX_PD_GetHDInfo, adapter, id); }

// ---- What they are ----

TEST_F(SimulatorDisk, HasItsTextsFilledUpWithBlanks) {
    const HD_Info disk = Disk(0, 4);
    EXPECT_EQ("QUORLAN QD2000E7                        ", Field(disk.Model));
    EXPECT_EQ("QD-W17A0231         ", Field(disk.SerialNo));
    EXPECT_EQ("QL03B2  ", Field(disk.FWVersion));
}

TEST_F(SimulatorDisk, OfAnotherModelHasOtherTexts) {
    const HD_Info disk = Disk(1, 0);
    EXPECT_EQ("TARNWELL TW300S15                       ", Field(disk.Model));
    EXPECT_EQ("3TW07F90            ", Field(disk.SerialNo));
    EXPECT_EQ("J7C1    ", Field(disk.FWVersion));
}

TEST_F(SimulatorDisk, HasTheSectorsOfItsSize) {
    EXPECT_EQ(1172123568u, Disk(0, 0).Size.value);   // 600 GB
    EXPECT_EQ(3907029168u, Disk(0, 4).Size.value);   // 2 TB
    EXPECT_EQ(1758174768u, Disk(0, 11).Size.value);  // 900 GB
    EXPECT_EQ(976773168u, Disk(0, 16).Size.value);   // 500 GB
    EXPECT_EQ(586072368u, Disk(1, 0).Size.value);    // 300 GB
}

TEST_F(SimulatorDisk, WithSerialAttachedScsiSaysSo) {
    const HD_Info disk = Disk(0, 0);
    EXPECT_EQ(0x04, disk.HDType);
    EXPECT_EQ(0x06, disk.ConnectionType);
    EXPECT_EQ(0, disk.DeviceType);
    EXPECT_EQ(0, disk.PIOMode);
    EXPECT_EQ(0, disk.CurrentUDMAMode);
}

TEST_F(SimulatorDisk, WithSerialAtaSaysSoAndInWhichModes) {
    const HD_Info disk = Disk(0, 4);
    EXPECT_EQ(0x01, disk.HDType);
    EXPECT_EQ(0x05, disk.ConnectionType);
    EXPECT_EQ(0, disk.DeviceType);
    EXPECT_EQ(4, disk.PIOMode);
    EXPECT_EQ(2, disk.MDMAMode);
    EXPECT_EQ(6, disk.UDMAMode);
    EXPECT_EQ(4, disk.CurrentPIOMode);
    EXPECT_EQ(2, disk.CurrentMDMAMode);
    EXPECT_EQ(6, disk.CurrentUDMAMode);
}

TEST_F(SimulatorDisk, HasAWorldWideNameOfItsOwn) {
    EXPECT_THAT(Disk(0, 3).WWN, ElementsAre(0x50, 0xA4, 0x85, 0x83, 0, 3, 0, 0));
    EXPECT_THAT(Disk(0, 16).WWN, ElementsAre(0x50, 0xA4, 0x85, 0x83, 0, 16, 0, 0));
    EXPECT_THAT(Disk(1, 3).WWN, ElementsAre(0x50, 0xA4, 0x85, 0x83, 0, 3, 1, 0));
}

TEST_F(SimulatorDisk, OffersSmartWriteCacheAndQueueing) {
    EXPECT_EQ(0x07u, Disk(0, 0).FeatureSupport);
    EXPECT_EQ(0x07u, Disk(1, 7).FeatureSupport);
}

TEST_F(SimulatorDisk, LeavesTheReservedBytesZero) {
    const HD_Info disk = Disk(0, 0);
    EXPECT_EQ(0, disk.Reserved1);
    EXPECT_THAT(disk.Reserved2, Each(0));
    EXPECT_THAT(disk.Reserved3, Each(0));
}

TEST_F(SimulatorDisk, NamesItsAdapter) {
    EXPECT_EQ(0, Disk(0, 5).AdapterID);
    EXPECT_EQ(1, Disk(1, 5).AdapterID);
}

// ---- What they hang on ----

TEST_F(SimulatorDisk, InASlotHangsOnTheExpandersPhy) {
    const Link_Endpoint parent = Disk(0, 3).Link.Parent;
    EXPECT_EQ(0, parent.DevID);
    EXPECT_EQ(2, parent.DevType);
    EXPECT_EQ(1, parent.PhyCnt);
    EXPECT_THAT(parent.PhyID, ElementsAre(7, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(parent.SAS_Address, ElementsAre(0x50, 0xA4, 0x85, 0x81, 0, 0, 0, 0));
    EXPECT_EQ(0, parent.EnclosureID);
}

TEST_F(SimulatorDisk, WithSasHasTheAddressOfItsPort) {
    const Link_Endpoint self = Disk(0, 3).Link.Self;
    EXPECT_EQ(3, self.DevID);
    EXPECT_EQ(4, self.DevType);
    EXPECT_EQ(1, self.PhyCnt);
    EXPECT_THAT(self.PhyID, Each(0));
    EXPECT_THAT(self.SAS_Address, ElementsAre(0x50, 0xA4, 0x85, 0x83, 0, 3, 0, 1));
    EXPECT_EQ(0, self.EnclosureID);
}

TEST_F(SimulatorDisk, WithSataIsLentAnAddressByTheExpander) {
    EXPECT_THAT(Disk(0, 16).Link.Self.SAS_Address,
                ElementsAre(0x50, 0xA4, 0x85, 0x81, 0, 0, 0, 20));
}

TEST_F(SimulatorDisk, OnAPortHangsOnTheAdapter) {
    const Link_Entity link = Disk(1, 2).Link;
    EXPECT_EQ(1, link.Parent.DevID);
    EXPECT_EQ(1, link.Parent.DevType);
    EXPECT_THAT(link.Parent.PhyID, ElementsAre(2, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(link.Parent.SAS_Address, ElementsAre(0x50, 0xA4, 0x85, 0x80, 0, 0, 1, 3));
    EXPECT_EQ(65535, link.Parent.EnclosureID);
    EXPECT_THAT(link.Self.SAS_Address, Each(0));
    EXPECT_EQ(65535, link.Self.EnclosureID);
}

TEST_F(SimulatorDisk, BehindThePortMultiplierHangsOnThat) {
    const Link_Entity link = Disk(1, 7).Link;
    EXPECT_EQ(0, link.Parent.DevID);
    EXPECT_EQ(3, link.Parent.DevType);
    EXPECT_THAT(link.Parent.PhyID, ElementsAre(4, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(link.Parent.SAS_Address, Each(0));
    EXPECT_EQ(65535, link.Parent.EnclosureID);
}

// ---- What they are used for ----

HD_RAID_Status PartOf(HX_U8 adapter, HX_U16 id) {
    return TheOne(HX_PD_GetHDRaidStatus, adapter, id);
}

TEST_F(SimulatorDisk, OfTheGroupServesIt) {
    EXPECT_EQ(0x05, PartOf(0, 0).Status);
    EXPECT_EQ(0, PartOf(0, 0).DGID);
}

TEST_F(SimulatorDisk, WithoutAGroupServesItsVirtualDisk) {
    EXPECT_EQ(0x05, PartOf(0, 4).Status);
    EXPECT_EQ(2, PartOf(0, 4).DGID);
    EXPECT_EQ(0x05, PartOf(1, 1).Status);
    EXPECT_EQ(0, PartOf(1, 1).DGID);
}

TEST_F(SimulatorDisk, NineIsASpareForAll) {
    EXPECT_EQ(0x09, PartOf(0, 9).Status);
    EXPECT_EQ(65535, PartOf(0, 9).DGID);
}

TEST_F(SimulatorDisk, TenIsASpareForTheGroup) {
    EXPECT_EQ(0x41, PartOf(0, 10).Status);
    EXPECT_EQ(0, PartOf(0, 10).DGID);
}

TEST_F(SimulatorDisk, ThatIsFreeHasNoneOfTheBitsOfUse) {
    for (const HX_U16 id : Ids{11, 12, 13, 14, 16}) {
        EXPECT_EQ(0x01, PartOf(0, id).Status);
        EXPECT_EQ(65535, PartOf(0, id).DGID);
    }
    for (const HX_U16 id : Ids{2, 3, 4, 5, 6, 7}) EXPECT_EQ(0x01, PartOf(1, id).Status);
}

TEST_F(SimulatorDisk, HasTheFreeSpaceThatIsLeftForVirtualDisks) {
    const auto free = [](HX_U8 adapter, HX_U16 id) {
        return TheOne(HX_PD_GetFreeSpaceInfo, adapter, id).Size.value;
    };
    EXPECT_EQ(0u, free(0, 0));
    EXPECT_EQ(1759479984u, free(0, 4));
    EXPECT_EQ(0u, free(0, 9));
    EXPECT_EQ(0u, free(0, 10));
    EXPECT_EQ(1758109232u, free(0, 11));
    EXPECT_EQ(48u, free(1, 0));
    EXPECT_EQ(976707632u, free(1, 3));
}

TEST_F(SimulatorDisk, IsNotRemovable) {
    for (const HD_FreeSpaceInfo& space : All(HX_PD_GetFreeSpaceInfo, 1)) {
        EXPECT_EQ(1, space.isFixed);
        EXPECT_EQ(1, space.AdapterID);
    }
}

// ---- How they are set, what they do ----

TEST_F(SimulatorDisk, InUseWritesThroughItsCache) {
    EXPECT_EQ(0, TheOne(HX_PD_GetConfig, 0, 4).WriteCacheOn);
    EXPECT_EQ(1, TheOne(HX_PD_GetConfig, 0, 11).WriteCacheOn);
}

TEST_F(SimulatorDisk, IsOnlineAndWatchesItself) {
    for (const HD_Config& config : AllOfBoth(HX_PD_GetConfig)) {
        EXPECT_EQ(1, config.Online);
        EXPECT_EQ(1, config.SMARTOn);
    }
}

TEST_F(SimulatorDisk, HasTheLinkSpeedOfItsModel) {
    EXPECT_EQ(0x0A, TheOne(HX_PD_GetConfig, 0, 0).DriveSpeed);
    EXPECT_EQ(0x09, TheOne(HX_PD_GetConfig, 0, 16).DriveSpeed);
}

TEST_F(SimulatorDisk, DoesNothingInTheBackground) {
    for (const HD_BGA_Status& activity : AllOfBoth(HX_PD_GetBGAStatus)) {
        EXPECT_EQ(0, activity.Bga);
        EXPECT_EQ(0, activity.BgaStatus);
        EXPECT_EQ(0, activity.Percentage);
    }
}

TEST_F(SimulatorDisk, DoesNotAnnounceItsFailure) {
    for (const HD_SMART_Status& smart : AllOfBoth(HX_PD_GetSmartStatus)) {
        EXPECT_EQ(0, smart.SmartThresholdExceeded);
    }
}

// ---- Remapped sectors ----

HX_U32 RemapCount(HX_U8 adapter, HX_U16 id) {
    HX_U32 count = 0xA5A5A5A5;
    EXPECT_EQ(0, HX_PD_RCT_GetCount(adapter, id, &count));
    return count;
}

TEST_F(SimulatorDisk, SixAloneHasRemappedSectors) {
    for (const HX_U8 adapter : {HX_U8{0}, HX_U8{1}}) {
        for (const HD_Info& disk : All(HX_PD_GetHDInfo, adapter)) {
            const HX_U16 id = disk.Link.Self.DevID;
            EXPECT_EQ(adapter == 0 && id == 6 ? 5u : 0u, RemapCount(adapter, id));
        }
    }
}

TEST_F(SimulatorDisk, ListsItsRemappedSectors) {
    RCT_Record records[5];
    ASSERT_EQ(0, HX_PD_GetRCT(0, 6, records, 5));
    EXPECT_EQ(1842703u, records[0].lba.value);
    EXPECT_EQ(1u, records[0].sec);
    EXPECT_EQ(1, records[0].flag);
    EXPECT_EQ(733906944u, records[1].lba.value);
    EXPECT_EQ(8u, records[1].sec);
    EXPECT_EQ(2, records[1].flag);
    EXPECT_EQ(3890016200u, records[4].lba.value);
    EXPECT_EQ(16u, records[4].sec);
    EXPECT_EQ(1, records[4].flag);
}

TEST_F(SimulatorDisk, ListsNoMoreRemappedSectorsThanAskedFor) {
    RCT_Record records[3];
    std::memset(records, 0xA5, sizeof records);
    ASSERT_EQ(0, HX_PD_GetRCT(0, 6, records, 2));
    EXPECT_EQ(733906944u, records[1].lba.value);
    EXPECT_EQ(0xA5A5A5A5A5A5A5A5u, records[2].lba.value);
}

TEST_F(SimulatorDisk, ListsNothingWhenNothingIsAskedFor) {
    EXPECT_EQ(0, HX_PD_GetRCT(0, 6, nullptr, 0));
    EXPECT_EQ(0, HX_PD_GetRCT(0, 7, nullptr, 0));
}

TEST_F(SimulatorDisk, RefusesToListMoreRemappedSectorsThanThereAre) {
    RCT_Record records[6];
    std::memset(records, 0xA5, sizeof records);
    EXPECT_EQ(216, HX_PD_GetRCT(0, 6, records, 6));
    EXPECT_EQ(216, HX_PD_GetRCT(0, 6, records, 0xFFFFFFFF));
    EXPECT_EQ(0xA5A5A5A5A5A5A5A5u, records[0].lba.value);
}

TEST_F(SimulatorDisk, ThatIsNotThereHasNoRemappedSectors) {
    HX_U32 count = 7;
    EXPECT_EQ(205, HX_PD_RCT_GetCount(0, 15, &count));
    EXPECT_EQ(7u, count);
    RCT_Record record;
    EXPECT_EQ(205, HX_PD_GetRCT(0, 15, &record, 1));
}

// ---- What is on them ----

HD_MBR_Info AskedAbout(const Ids& ids) {
    HD_MBR_Info info{};
    info.HDCount = static_cast<HX_U8>(ids.size());
    std::copy(ids.begin(), ids.end(), info.HDIDs);
    std::memset(info.hasMBR, 0xA5, sizeof info.hasMBR);
    return info;
}

TEST_F(SimulatorDisk, TwoOfAdapterOneAloneHasAMasterBootRecord) {
    HD_MBR_Info info = AskedAbout({7, 2, 0, 1, 2});
    ASSERT_EQ(0, HX_PD_GetMBRInfo(1, &info));
    EXPECT_THAT(std::vector<HX_U8>(info.hasMBR, info.hasMBR + 6), ElementsAre(0, 1, 0, 0, 1, 0xA5));
    info = AskedAbout({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 16});
    ASSERT_EQ(0, HX_PD_GetMBRInfo(0, &info));
    EXPECT_THAT(std::vector<HX_U8>(info.hasMBR, info.hasMBR + 16), Each(0));
}

TEST_F(SimulatorDisk, ListsOf128CanBeAskedAbout) {
    HD_MBR_Info info = AskedAbout(Ids(128, 2));
    ASSERT_EQ(0, HX_PD_GetMBRInfo(1, &info));
    EXPECT_THAT(info.hasMBR, Each(1));
}

TEST_F(SimulatorDisk, ListsLongerThanTheirRecordAreRefused) {
    HD_MBR_Info info = AskedAbout(Ids(128, 2));
    info.HDCount = 129;
    EXPECT_EQ(216, HX_PD_GetMBRInfo(1, &info));
    EXPECT_THAT(info.hasMBR, Each(0xA5));
}

TEST_F(SimulatorDisk, ListsWithOneThatIsNotThereAreRefused) {
    HD_MBR_Info info = AskedAbout({2, 8});
    EXPECT_EQ(205, HX_PD_GetMBRInfo(1, &info));
    EXPECT_THAT(info.hasMBR, Each(0xA5));
}

TEST_F(SimulatorDisk, TwoOfAdapterOneAloneHoldsASystem) {
    for (const HX_U8 adapter : {HX_U8{0}, HX_U8{1}}) {
        for (const HD_Info& disk : All(HX_PD_GetHDInfo, adapter)) {
            const HX_U16 id = disk.Link.Self.DevID;
            EXPECT_EQ(adapter == 1 && id == 2 ? 218 : 0, HX_DiskHasOS(adapter, 1, 1, &id));
        }
    }
}

TEST_F(SimulatorDisk, WithASystemIsFoundAmongOthers) {
    const HX_U16 ids[] = {0, 1, 3, 2};
    EXPECT_EQ(0, HX_DiskHasOS(1, 1, 3, ids));
    EXPECT_EQ(218, HX_DiskHasOS(1, 1, 4, ids));
}

TEST_F(SimulatorDisk, ListsOfNoneHoldNoSystem) { EXPECT_EQ(0, HX_DiskHasOS(1, 1, 0, nullptr)); }

TEST_F(SimulatorDisk, ThatIsNotThereIsNotLookedAtForASystem) {
    const HX_U16 ids[] = {0, 8};
    EXPECT_EQ(205, HX_DiskHasOS(1, 1, 2, ids));
}

TEST_F(SimulatorDisk, IsLookedAtForASystemInOneWayOnly) {
    const HX_U16 id = 2;
    EXPECT_EQ(215, HX_DiskHasOS(1, 0, 1, &id));
    EXPECT_EQ(215, HX_DiskHasOS(1, 2, 1, &id));
}

// ---- Lights ----

class SimulatorLocateLight : public SimulatorTest {
protected:
    void TearDown() override {
        HX_LocateArrayDevice(0, 4, 16, 0);
        HX_LocateArrayDevice(1, 4, 0, 0);
        SimulatorTest::TearDown();
    }
};

TEST_F(SimulatorLocateLight, IsOffOnEveryDisk) {
    for (const HD_Info& disk : AllOfBoth(HX_PD_GetHDInfo)) {
        EXPECT_EQ(1, disk.ActivityLEDStatus);
        EXPECT_EQ(0, disk.LocateLEDStatus);
        EXPECT_EQ(0, disk.ErrorLEDStatus);
    }
}

TEST_F(SimulatorLocateLight, ShowsOnItsOwnDiskUntilItIsSwitchedOff) {
    ASSERT_EQ(0, HX_LocateArrayDevice(0, 4, 16, 1));
    for (const HX_U8 adapter : {HX_U8{0}, HX_U8{1}}) {
        for (const HD_Info& disk : All(HX_PD_GetHDInfo, adapter)) {
            EXPECT_EQ(adapter == 0 && disk.Link.Self.DevID == 16 ? 1 : 0, disk.LocateLEDStatus);
        }
    }
    ASSERT_EQ(0, HX_LocateArrayDevice(0, 4, 16, 0));
    EXPECT_EQ(0, Disk(0, 16).LocateLEDStatus);
}

TEST(SimulatorLocateLightOfAStateFile, StaysOnWhileTheLibraryIsClosed) {
    const StateFile state;
    HX_API_Initialize();
    ASSERT_EQ(0, HX_LocateArrayDevice(1, 4, 0, 1));
    HX_API_Finalize();
    HX_API_Initialize();
    EXPECT_EQ(1, Disk(1, 0).LocateLEDStatus);
    HX_API_Finalize();
}

TEST_F(SimulatorLocateLight, IsOnDisksOnly) {
    for (const HX_U8 type : std::vector<HX_U8>{0, 1, 2, 3, 5, 255}) {
        EXPECT_EQ(217, HX_LocateArrayDevice(0, type, 0, 1));
    }
}

TEST_F(SimulatorLocateLight, IsNotWhereNoDiskIs) {
    EXPECT_EQ(205, HX_LocateArrayDevice(0, 4, 15, 1));
}

TEST_F(SimulatorLocateLight, IsOnOrOffAndNothingElse) {
    EXPECT_EQ(215, HX_LocateArrayDevice(0, 4, 16, 2));
    EXPECT_EQ(0, Disk(0, 16).LocateLEDStatus);
}

}  // namespace
