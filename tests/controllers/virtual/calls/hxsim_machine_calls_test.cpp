// What must hold over the whole virtual machine: its lists tell of one machine, and of one that can
// be.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "controllers/virtual/support/list_calls.h"
#include "hxraid.h"

namespace {

constexpr uint64_t kMetadata = 65536;  // sectors at a disk's end
constexpr HX_U16 kNone = 255;          // LDID of a free block

class SimulatorMachine : public SimulatorTest, public testing::WithParamInterface<HX_U8> {
protected:
    static HX_U8 Adapter() { return GetParam(); }

    static std::vector<HD_Info> Disks() { return All(HX_PD_GetHDInfo, Adapter()); }
    static std::vector<Block_Info> Blocks() { return All(HX_BLK_GetInfo, Adapter()); }
    static std::vector<LD_Info> VirtualDisks() { return All(HX_LD_GetInfo, Adapter()); }
    static std::vector<DG_Info> DiskGroups() { return All(HX_DG_GetInfo, Adapter()); }

    static std::vector<Block_Info> BlocksOn(HX_U16 disk) {
        std::vector<Block_Info> blocks = Blocks();
        std::erase_if(blocks, [&](const Block_Info& block) { return block.HDID != disk; });
        return blocks;
    }
    static std::vector<Block_Info> BlocksOf(HX_U16 virtual_disk) {
        std::vector<Block_Info> blocks = Blocks();
        std::erase_if(blocks, [&](const Block_Info& block) { return block.LDID != virtual_disk; });
        return blocks;
    }
    static Adapter_Info Info() {
        Adapter_Info info{};
        HX_U8 count = 0;
        EXPECT_EQ(0, HX_Adapter_GetInfo(Adapter(), &count, &info));
        return info;
    }
};

// ---- Sectors ----

TEST_P(SimulatorMachine, HasEverySectorOfADiskInOneBlockOrInItsMetadata) {
    for (const HD_Info& disk : Disks()) {
        std::vector<Block_Info> blocks = BlocksOn(disk.Link.Self.DevID);
        std::ranges::sort(blocks, {}, [](const Block_Info& block) { return block.StartLBA.value; });
        uint64_t end = 0;
        for (const Block_Info& block : blocks) {
            EXPECT_EQ(end, block.StartLBA.value) << "block " << block.ID;
            EXPECT_LT(0u, block.Size.value) << "block " << block.ID;
            end = block.StartLBA.value + block.Size.value;
        }
        EXPECT_EQ(disk.Size.value, end + kMetadata) << "disk " << disk.Link.Self.DevID;
    }
}

TEST_P(SimulatorMachine, CountsAsFreeWhatIsInFreeBlocksOfDisksThatCanBeUsed) {
    for (const HD_RAID_Status& status : All(HX_PD_GetHDRaidStatus, Adapter())) {
        const bool is_spare = (status.Status & (0x08 | 0x40)) != 0;
        bool is_in_group = false;
        for (const DG_Info& group : DiskGroups()) {
            is_in_group |=
                std::ranges::count(group.PDIDs, group.PDIDs + group.PDCount, status.HDID) != 0;
        }
        uint64_t free = 0;
        for (const Block_Info& block : BlocksOn(status.HDID)) {
            if (block.LDID == kNone) free += block.Size.value;
        }
        EXPECT_EQ(is_spare || is_in_group ? 0 : free,
                  TheOne(HX_PD_GetFreeSpaceInfo, Adapter(), status.HDID).Size.value)
            << "disk " << status.HDID;
    }
}

TEST_P(SimulatorMachine, HasAsMuchInAVirtualDiskAsItsLevelLeavesOfItsBlocks) {
    for (const LD_Info& virtual_disk : VirtualDisks()) {
        const std::vector<Block_Info> blocks = BlocksOf(virtual_disk.ID);
        ASSERT_FALSE(blocks.empty());
        const uint64_t copies = virtual_disk.RaidMode == 0x01 ? 2 : 1;
        const uint64_t data = blocks.size() / copies - virtual_disk.NumParityDisk;
        for (const Block_Info& block : blocks) {
            EXPECT_EQ(virtual_disk.Size.value, data * block.Size.value) << "block " << block.ID;
            EXPECT_EQ(0u, block.Size.value % (2u * virtual_disk.StripeBlockSize));
        }
    }
}

TEST_P(SimulatorMachine, HasAGroupsSpaceInItsSlotsOrLeft) {
    for (const DG_Info& group : DiskGroups()) {
        uint64_t used = 0;
        for (const HX_U64& slot : group.VDSlotSize) used += slot.value;
        EXPECT_EQ(group.TotalManagedSpace.value, used + group.RemainingManagedSpace.value);
        EXPECT_LE(group.TotalManagedSpace.value / 3, group.SmallestAvailablePDSize.value);
    }
}

// ---- Blocks ----

TEST_P(SimulatorMachine, ListsABlockUnderItsDiskAsWell) {
    for (const HD_Block_Info& disk : All(HX_BLK_GetHDBlock, Adapter())) {
        std::vector<HX_U16> expected;
        for (const Block_Info& block : BlocksOn(disk.ID)) expected.push_back(block.ID);
        expected.resize(16, 65535);
        EXPECT_EQ(expected, std::vector<HX_U16>(disk.BlockIDs, disk.BlockIDs + 16));
        EXPECT_EQ(4, disk.Type);
    }
}

TEST_P(SimulatorMachine, ListsABlockUnderItsVirtualDiskAsWell) {
    for (const LD_Info& virtual_disk : VirtualDisks()) {
        std::vector<HX_U16> expected;
        for (const Block_Info& block : BlocksOf(virtual_disk.ID)) expected.push_back(block.ID);
        EXPECT_EQ(expected, std::vector<HX_U16>(virtual_disk.BlockIDs,
                                                virtual_disk.BlockIDs + virtual_disk.HDCount));
    }
}

TEST_P(SimulatorMachine, HasNoBlockOfAVirtualDiskThatIsNotThere) {
    std::set<HX_U16> ids{kNone};
    for (const LD_Info& virtual_disk : VirtualDisks()) ids.insert(virtual_disk.ID);
    for (const Block_Info& block : Blocks()) EXPECT_EQ(1u, ids.count(block.LDID));
}

TEST_P(SimulatorMachine, HasAVirtualDiskOnceOnEachOfItsDisks) {
    for (const LD_Info& virtual_disk : VirtualDisks()) {
        std::set<HX_U16> disks;
        for (const Block_Info& block : BlocksOf(virtual_disk.ID)) disks.insert(block.HDID);
        EXPECT_EQ(virtual_disk.HDCount, disks.size());
    }
}

TEST_P(SimulatorMachine, FlagsABlockByItsUseAndItsDisksGroup) {
    std::set<HX_U16> grouped;
    for (const DG_Info& group : DiskGroups()) {
        grouped.insert(group.PDIDs, group.PDIDs + group.PDCount);
    }
    for (const Block_Info& block : Blocks()) {
        const int used = block.LDID != kNone ? 1 : 0;
        const int of_group = grouped.contains(block.HDID) ? 2 : 0;
        EXPECT_EQ(used + of_group, block.Flags) << "block " << block.ID;
        EXPECT_EQ(1, block.Status);
        EXPECT_EQ(512, block.BlockSize);
        EXPECT_EQ(0u, block.ReservedSpaceForMigration);
    }
}

// ---- Groups ----

TEST_P(SimulatorMachine, HasAVirtualDiskInASlotOfItsGroup) {
    std::map<HX_U16, HX_U16> group_of;  // by virtual disk
    for (const DG_Info& group : DiskGroups()) {
        for (std::size_t slot = 0; slot < group.VDSlotCount; ++slot) {
            group_of[group.VDIDs[slot]] = group.DGID;
            EXPECT_EQ(TheOne(HX_LD_GetInfo, Adapter(), group.VDIDs[slot]).Size.value,
                      group.VDSlotSize[slot].value);
        }
    }
    for (const LD_Info& virtual_disk : VirtualDisks()) {
        const auto found = group_of.find(virtual_disk.ID);
        EXPECT_EQ(virtual_disk.DGID, found == group_of.end() ? 255 : found->second);
    }
}

TEST_P(SimulatorMachine, HasAVirtualDiskOfAGroupAtItsLevelOnItsDisks) {
    for (const LD_Info& virtual_disk : VirtualDisks()) {
        if (virtual_disk.DGID == 255) continue;
        const DG_Info group = TheOne(HX_DG_GetInfo, Adapter(), virtual_disk.DGID);
        EXPECT_EQ(group.RaidMode, virtual_disk.RaidMode);
        EXPECT_EQ(group.StripeBlockSize, virtual_disk.StripeBlockSize);
        EXPECT_EQ(group.NumParityDisk, virtual_disk.NumParityDisk);
        std::vector<HX_U16> disks;
        for (const Block_Info& block : BlocksOf(virtual_disk.ID)) disks.push_back(block.HDID);
        EXPECT_EQ(std::vector<HX_U16>(group.PDIDs, group.PDIDs + group.PDCount), disks);
    }
}

// ---- Disks ----

TEST_P(SimulatorMachine, TellsADisksStateEverywhereAlike) {
    for (const HD_Info& disk : Disks()) {
        const HX_U16 id = disk.Link.Self.DevID;
        EXPECT_EQ(disk.Status, TheOne(HX_PD_GetHDRaidStatus, Adapter(), id).Status);
        EXPECT_EQ(disk.Status, TheOne(HX_PD_GetBGAStatus, Adapter(), id).Status);
    }
}

TEST_P(SimulatorMachine, HasADiskConfiguredWhereABlockOfItIsUsed) {
    for (const HD_RAID_Status& status : All(HX_PD_GetHDRaidStatus, Adapter())) {
        const std::vector<Block_Info> blocks = BlocksOn(status.HDID);
        const bool used = std::ranges::any_of(
            blocks, [](const Block_Info& block) { return block.LDID != kNone; });
        EXPECT_EQ(used ? 0x04 : 0, status.Status & 0x04) << "disk " << status.HDID;
    }
}

TEST_P(SimulatorMachine, HasTheGroupsDisksAndSparesServeIt) {
    for (const DG_Info& group : DiskGroups()) {
        for (int i = 0; i < group.PDCount; ++i) {
            const auto part = TheOne(HX_PD_GetHDRaidStatus, Adapter(), group.PDIDs[i]);
            EXPECT_EQ(group.DGID, part.DGID);
            EXPECT_EQ(0x05, part.Status);
        }
        for (int i = 0; i < group.SparePDCount; ++i) {
            const auto part = TheOne(HX_PD_GetHDRaidStatus, Adapter(), group.SparePDIDs[i]);
            EXPECT_EQ(group.DGID, part.DGID);
            EXPECT_EQ(0x41, part.Status);
        }
    }
}

TEST_P(SimulatorMachine, GivesTwoDisksNoSerialNumberInCommon) {
    std::set<std::string> serials;
    for (const HD_Info& disk : Disks()) {
        EXPECT_TRUE(serials.emplace(disk.SerialNo, sizeof disk.SerialNo).second);
    }
}

TEST_P(SimulatorMachine, HasRemappedSectorsOnTheDiskAndAscending) {
    for (const HD_Info& disk : Disks()) {
        HX_U32 count = 0;
        ASSERT_EQ(0, HX_PD_RCT_GetCount(Adapter(), disk.Link.Self.DevID, &count));
        std::vector<RCT_Record> records(count);
        ASSERT_EQ(0, HX_PD_GetRCT(Adapter(), disk.Link.Self.DevID, records.data(), count));
        uint64_t end = 0;
        for (const RCT_Record& record : records) {
            EXPECT_LE(end, record.lba.value);
            end = record.lba.value + record.sec;
            EXPECT_LE(end, disk.Size.value);
        }
    }
}

// ---- Links ----

TEST_P(SimulatorMachine, HasEveryDeviceHangOnOneThatIsThere) {
    std::vector<Link_Entity> links;
    for (const HD_Info& disk : Disks()) links.push_back(disk.Link);
    for (const auto& info : All(HX_PD_GetExpanderInfo, Adapter())) links.push_back(info.Link);
    for (const auto& info : All(HX_PD_GetPMInfo, Adapter())) links.push_back(info.Link);
    for (const auto& info : All(HX_ENC_GetEnclosureInfo, Adapter())) links.push_back(info.Link);
    std::set<std::array<int, 3>> taken;  // device type, ID and phy
    for (const Link_Entity& link : links) {
        const Link_Endpoint& parent = link.Parent;
        int phys = 0;
        if (parent.DevType == 1) {
            EXPECT_EQ(Adapter(), parent.DevID);
            phys = Info().PortCount;
        } else if (parent.DevType == 2) {
            const auto expander = TheOne(HX_PD_GetExpanderInfo, Adapter(), parent.DevID);
            EXPECT_EQ(0, std::memcmp(expander.Link.Self.SAS_Address, parent.SAS_Address, 8));
            EXPECT_EQ(expander.Link.Self.EnclosureID, parent.EnclosureID);
            EXPECT_EQ(parent.EnclosureID, link.Self.EnclosureID);
            phys = expander.PhyCount;
        } else {
            ASSERT_EQ(3, parent.DevType);
            phys = TheOne(HX_PD_GetPMInfo, Adapter(), parent.DevID).NumberOfPorts;
        }
        ASSERT_LE(1, parent.PhyCnt);
        ASSERT_GE(8, parent.PhyCnt);
        for (int i = 0; i < parent.PhyCnt; ++i) {
            EXPECT_LT(parent.PhyID[i], phys);
            EXPECT_TRUE(taken.insert({parent.DevType, parent.DevID, parent.PhyID[i]}).second)
                << "phy " << int{parent.PhyID[i]} << " is taken twice";
        }
    }
}

TEST_P(SimulatorMachine, HasNoSasDiskBehindAPortMultiplier) {
    for (const HD_Info& disk : Disks()) {
        EXPECT_FALSE(disk.Link.Parent.DevType == 3 && disk.ConnectionType != 0x05);
    }
}

TEST_P(SimulatorMachine, HasItsExpandersInItsEnclosures) {
    for (const auto& enclosure : All(HX_ENC_GetEnclosureInfo, Adapter())) {
        for (int i = 0; i < enclosure.ExpanderCount; ++i) {
            const auto expander =
                TheOne(HX_PD_GetExpanderInfo, Adapter(), enclosure.ExpanderIDs[i]);
            EXPECT_EQ(enclosure.Link.Self.DevID, expander.Link.Self.EnclosureID);
        }
    }
}

// ---- Limits ----

TEST_P(SimulatorMachine, HasNoMoreOfAnythingThanTheAdapterTakes) {
    const Adapter_Info info = Info();
    EXPECT_LE(Disks().size(), info.MaxHD);
    EXPECT_LE(Disks().size(), info.MaxHD_Ext);
    EXPECT_LE(VirtualDisks().size(), info.MaxLogicalDrive);
    EXPECT_LE(All(HX_PD_GetExpanderInfo, Adapter()).size(), info.MaxExpander);
    EXPECT_LE(All(HX_PD_GetPMInfo, Adapter()).size(), info.MaxPM);
    EXPECT_LE(DiskGroups().size(), info.DiskGroupSupport ? 64u : 0u);
    for (const DG_Info& group : DiskGroups()) {
        EXPECT_LE(group.PDCount, info.MaxPDPerDG);
        EXPECT_LE(group.VDSlotCount, info.MaxVDPerDG);
        EXPECT_LE(group.NumParityDisk, info.MaxParityDisks);
    }
    for (const HD_Info& disk : Disks()) {
        EXPECT_LE(BlocksOn(disk.Link.Self.DevID).size(), info.MaxBlockPerPD);
    }
    for (const LD_Info& virtual_disk : VirtualDisks()) {
        EXPECT_LE(virtual_disk.HDCount, info.MaxPDPerVD);
        EXPECT_LE(virtual_disk.NumParityDisk, info.MaxParityDisks);
        EXPECT_NE(0, virtual_disk.StripeBlockSize & info.StripeSizeSupported);
    }
}

TEST_P(SimulatorMachine, HasVirtualDisksAtLevelsThatTheAdapterOffers) {
    const std::map<int, int> mode_of = {{0x00, 0x0001}, {0x01, 0x0002}, {0x10, 0x0004},
                                        {0x05, 0x0010}, {0x06, 0x0020}, {0x50, 0x0040},
                                        {0x60, 0x0100}};
    for (const LD_Info& virtual_disk : VirtualDisks()) {
        EXPECT_NE(0, mode_of.at(virtual_disk.RaidMode) & Info().LogicalDriverMode);
    }
}

TEST_P(SimulatorMachine, SettlesVirtualDisksAlikeInAllRecords) {
    for (const LD_Info& virtual_disk : VirtualDisks()) {
        const LD_Config config = TheOne(HX_LD_GetConfig, Adapter(), virtual_disk.ID);
        EXPECT_STREQ(virtual_disk.Name, config.Name);
        EXPECT_EQ(virtual_disk.CacheMode, config.CacheMode);
        EXPECT_EQ(virtual_disk.Status, config.Status);
        EXPECT_EQ(virtual_disk.Status, TheOne(HX_LD_GetStatus, Adapter(), virtual_disk.ID).Status);
    }
}

std::string AdapterName(const testing::TestParamInfo<HX_U8>& info) {
    return "Adapter" + std::to_string(info.param);
}
INSTANTIATE_TEST_SUITE_P(Each, SimulatorMachine, testing::Values(0, 1), AdapterName);

// ---- Both adapters ----

using Address = std::array<HX_U8, 8>;

Address AddressAt(const HX_U8* bytes) {
    Address address{};
    std::copy(bytes, bytes + 8, address.begin());
    return address;
}

using SimulatorAddresses = SimulatorTest;

TEST_F(SimulatorAddresses, AreGivenOnceInTheWholeMachine) {
    std::vector<Address> addresses;
    for (const HX_U8 adapter : {HX_U8{0}, HX_U8{1}}) {
        Adapter_Info info{};
        HX_U8 count = 0;
        ASSERT_EQ(0, HX_Adapter_GetInfo(adapter, &count, &info));
        addresses.push_back(AddressAt(info.WWN));
        for (int i = 0; i < info.PortCount; ++i) {
            addresses.push_back(AddressAt(info.PortSasAddress[i]));
        }
        for (const HD_Info& disk : All(HX_PD_GetHDInfo, adapter)) {
            addresses.push_back(AddressAt(disk.WWN));
            addresses.push_back(AddressAt(disk.Link.Self.SAS_Address));
        }
        for (const auto& each : All(HX_PD_GetExpanderInfo, adapter)) {
            addresses.push_back(AddressAt(each.Link.Self.SAS_Address));
        }
        for (const auto& each : All(HX_ENC_GetEnclosureInfo, adapter)) {
            addresses.push_back(AddressAt(each.Link.Self.SAS_Address));
        }
    }
    // Six SATA disks on adapter 1 have a name and no address.
    EXPECT_EQ(6, std::erase(addresses, Address{}));
    const std::set<Address> different(addresses.begin(), addresses.end());
    EXPECT_EQ(addresses.size(), different.size());
    for (const Address& address : addresses) EXPECT_EQ(0x50, address[0]);
}

}  // namespace
