// What a look finds in recorded machines.
#include "sysfs/hxmd_look.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <random>
#include <string>

#include "controllers/linuxmd/support/recorded_machine.h"
#include "rules/hxmd_state.h"

using namespace hxmd;

namespace {

class ALook : public testing::Test {
protected:
    Machine Now() {
        auto machine = Look();
        EXPECT_TRUE(machine.has_value());
        return machine.value_or(Machine{});
    }
    Disk TheDisk() {
        Machine machine = Now();
        EXPECT_EQ(machine.disks.size(), 1U);
        machine.disks.resize(1);
        return machine.disks[0];
    }
    Array TheArray() {
        Machine machine = Now();
        EXPECT_EQ(machine.arrays.size(), 1U);
        machine.arrays.resize(1);
        return machine.arrays[0];
    }
    RecordedMachine recorded_;
};

// ---- Disks ----

TEST_F(ALook, FindsADiskWithAllItsAttributes) {
    recorded_.AddDisk("sda", "0a");
    const Disk disk = TheDisk();
    EXPECT_EQ(disk.key, "wwid naa.500000000000000a");
    EXPECT_TRUE(disk.stable);
    EXPECT_EQ(disk.link, Link::kSata);
    EXPECT_EQ(disk.sectors, 2097152U);
    EXPECT_EQ(disk.vendor, "TARNWELL");
    EXPECT_EQ(disk.model, "T-1000");
    EXPECT_EQ(disk.firmware, "A101");
    EXPECT_EQ(disk.serial, "TW00000a");
    EXPECT_EQ(disk.write_cache, "write back");
    EXPECT_EQ(disk.queue_depth, 32U);
    EXPECT_EQ(disk.rotational, 1U);
    EXPECT_TRUE(disk.content.known);
    EXPECT_FALSE(disk.content.anything);
    EXPECT_FALSE(disk.held);
}

struct Way {
    const char* way;
    Link link;
};
constexpr Way kWays[] = {
    {"pci0000:00/0000:01:00.0/nvme/nvme0", Link::kNvme},
    {"virtual/nvme-subsystem/nvme-subsys0", Link::kNvme},
    {"pci0000:00/0000:00:05.0/virtio2", Link::kVirtio},
    {"pci0000:00/usb1/1-1/1-1:1.0/host6/target6:0:0/6:0:0:0", Link::kUsb},
    {"pci0000:00/host1/port-1:0/end_device-1:0/target1:0:0/1:0:0:0", Link::kSas},
    {"pci0000:00/0000:00:1f.2/ata1/host0/target0:0:0/0:0:0:0", Link::kSata},
    {"platform/mmc_host/mmc0/mmc0:0001", Link::kOther},
};

TEST_F(ALook, TellsFromItsPathHowADiskIsLinked) {
    char name[] = "sda";
    for (const Way& way : kWays) {
        recorded_.AddBareDisk(name, way.way);
        ++name[2];
    }
    const Machine machine = Now();
    ASSERT_EQ(machine.disks.size(), std::size(kWays));
    for (std::size_t i = 0; i < std::size(kWays); ++i) {
        EXPECT_EQ(machine.disks[i].link, kWays[i].link) << kWays[i].way;
    }
}

TEST_F(ALook, KnowsADiskByTheFirstKeyThatItHas) {
    recorded_.AddBareDisk("vda", "pci0000:00/virtio2");
    EXPECT_EQ(TheDisk().key, "path /devices/pci0000:00/virtio2/block/vda");
    EXPECT_FALSE(TheDisk().stable);
    recorded_.Set("vda", "device/cid", "150100\n");
    EXPECT_EQ(TheDisk().key, "card 150100");
    recorded_.Set("vda", "serial", "ROOT\n");
    EXPECT_EQ(TheDisk().key, "serial ROOT");
    recorded_.Set("vda", "wwid", "eui.0000000000000000\n");  // which all of its kind share
    EXPECT_EQ(TheDisk().key, "serial ROOT");
    recorded_.Set("vda", "wwid", "eui.0025388b710116a3\n");
    EXPECT_EQ(TheDisk().key, "wwid eui.0025388b710116a3");
    EXPECT_TRUE(TheDisk().stable);
}

TEST_F(ALook, TakesAMakersSerialNumberForItsModelsAlone) {
    recorded_.AddDisk("sda", "0a");
    recorded_.Forget("sda", "device/wwid");
    EXPECT_EQ(TheDisk().key, "serial TARNWELL T-1000 TW00000a");
}

TEST_F(ALook, ListsADiskWithTwoPathsOnce) {
    recorded_.AddDisk("sda", "0a");
    recorded_.AddDisk("sdb", "0a");
    EXPECT_TRUE(TheDisk().twice);
}

TEST_F(ALook, LeavesOutWhatIsNoDisk) {
    recorded_.AddDisk("sda", "0a");
    recorded_.AddDisk("sr0", "0b");
    recorded_.Set("sr0", "device/type", "5\n");
    recorded_.AddDisk("sdc", "0c");
    recorded_.Set("sdc", "size", "0\n");  // a drive without a medium
    recorded_.AddDisk("nvme0c0n1", "0d");
    recorded_.Set("nvme0c0n1", "hidden", "1\n");
    recorded_.AddDisk("loop0", "0e");
    recorded_.Forget("loop0", "device");
    EXPECT_EQ(TheDisk().name, "sda");
}

TEST_F(ALook, FindsPartitionsAndWhatUdevKnowsOfThem) {
    recorded_.AddDisk("sda", "0a");
    recorded_.AddPartition("sda", "sda1");
    const Disk disk = TheDisk();
    ASSERT_EQ(disk.partitions.size(), 1U);
    EXPECT_EQ(disk.partitions[0].start, 2048U);
    EXPECT_EQ(disk.partitions[0].sectors, 2095104U);
    EXPECT_TRUE(disk.content.partition_table);
    EXPECT_TRUE(disk.content.anything);
}

TEST_F(ALook, DoesNotTakeADiskForEmptyThatUdevHasNotLookedAt) {
    recorded_.AddDisk("sda", "0a");
    std::filesystem::remove_all(recorded_.Root().Path("/run/udev/data"));
    EXPECT_FALSE(TheDisk().content.known);
}

TEST_F(ALook, SeesThatAnotherProgramHoldsADisk) {
    recorded_.AddDisk("sda", "0a");
    recorded_.Set("sda", "holders/dm-0/x", "");
    EXPECT_TRUE(TheDisk().held);
}

// ---- Arrays ----

TEST_F(ALook, FindsAnArrayAndItsMembers) {
    recorded_.AddMirror();
    const Machine machine = Now();
    ASSERT_EQ(machine.arrays.size(), 1U);
    const Array& array = machine.arrays[0];
    EXPECT_EQ(array.uuid, "cbf9fd121c5985999101145232746691");
    EXPECT_EQ(array.title, "data");
    EXPECT_EQ(array.level, 0x01U);
    EXPECT_EQ(array.sectors, 4186112U);
    ASSERT_EQ(array.members.size(), 2U);
    EXPECT_EQ(array.members[0].slot, 0U);
    EXPECT_EQ(array.members[0].device, "wwid naa.500000000000000a");
    EXPECT_EQ(array.members[0].start, 0U);
    EXPECT_EQ(array.members[1].name, "sdb1");
    EXPECT_EQ(array.members[1].device, "wwid naa.500000000000000b");
    EXPECT_EQ(array.members[1].start, 2048U);
    EXPECT_FALSE(machine.disks[0].held);  // by an array that is listed
}

// The array stays clean and the member in_sync until the next write: only its link dangles.
TEST_F(ALook, SeesThatAMembersDiskWasPulled) {
    recorded_.AddDisk("sda", "0a");
    recorded_.AddDisk("sdb", "0b");
    recorded_.AddArray("md0", "raid1", 2);
    recorded_.AddMember("md0", "sda", "0");
    recorded_.AddMember("md0", "sdb", "1");
    recorded_.Pull("sdb");
    const Array array = TheArray();
    ASSERT_EQ(array.members.size(), 2U);
    EXPECT_EQ(array.members[1].name, "sdb");
    EXPECT_TRUE(array.members[1].state->in_sync);
    EXPECT_FALSE(array.members[1].present);
}

TEST_F(ALook, ListsAnIncompleteArrayThatSaysNeitherLevelNorSize) {
    recorded_.AddArray("md0", "raid5", 3);
    recorded_.Set("md0", "md/array_state", "inactive\n");
    recorded_.Set("md0", "md/level", "\n");
    recorded_.Set("md0", "md/raid_disks", "\n");
    for (const char* gone : {"md/degraded", "md/sync_action", "md/sync_completed"}) {
        recorded_.Forget("md0", gone);
    }
    const Array array = TheArray();
    EXPECT_EQ(array.state, ArrayState::kInactive);
    EXPECT_FALSE(array.level.has_value());
    EXPECT_FALSE(array.disks.has_value());
}

TEST_F(ALook, ListsNoContainersAndNoLinearArrays) {
    recorded_.AddDisk("sda", "0a");
    recorded_.AddArray("md0", "raid1", 2, '1');
    recorded_.Set("md0", "md/metadata_version", "external:imsm\n");
    recorded_.AddArray("md1", "linear", 2, '2');
    recorded_.AddMember("md1", "sda", "0");
    recorded_.AddArray("md2", "raid1", 2, '3');
    recorded_.Set("md2", "md/array_state", "clear\n");
    const Machine machine = Now();
    EXPECT_TRUE(machine.arrays.empty());
    EXPECT_TRUE(machine.disks.at(0).held);
}

TEST_F(ALook, TakesTheUuidOfUdevWhereTheKernelTellsNone) {
    recorded_.AddArray("md0", "raid1", 2);
    recorded_.Forget("md0", "md/uuid");
    recorded_.Note("md0", "E:MD_UUID=0123abcd:1c598599:91011452:32746692\n");
    EXPECT_EQ(TheArray().uuid, "0123abcd1c5985999101145232746692");
    EXPECT_EQ(TheArray().title, "md0");
}

// ---- Enclosures ----

TEST_F(ALook, FindsEnclosuresAndWhatIsInTheirSlots) {
    recorded_.AddEnclosure("1:0:5:0", "0x50000000000000e0");
    recorded_.AddSlot("1:0:5:0", "SLOT 001", "sda");
    recorded_.AddSlot("1:0:5:0", "SLOT 002", "");
    const Machine machine = Now();
    ASSERT_EQ(machine.enclosures.size(), 1U);
    EXPECT_EQ(machine.enclosures[0].product, "SHELF 12");
    ASSERT_EQ(machine.enclosures[0].slots.size(), 2U);
    EXPECT_EQ(machine.enclosures[0].slots[0].device, "sda");
    EXPECT_EQ(machine.enclosures[0].slots[1].device, "");
    EXPECT_EQ(machine.enclosures[0].slots[1].status, "not installed");
}

// ---- What is not there, and what is there and cannot be right ----

TEST_F(ALook, WithoutSysfsFindsNothingAndSaysSo) {
    std::filesystem::remove_all(recorded_.Root().Path("/sys"));
    EXPECT_FALSE(Look().has_value());
}

TEST_F(ALook, DoesNotWaitForWhatIsNoFileAndTakesNoLongerText) {
    recorded_.AddDisk("sda", "0a");
    recorded_.Forget("sda", "device/rev");
    ASSERT_EQ(mkfifo(recorded_.Root().Path("/sys/block/sda/device/rev").c_str(), 0600), 0);
    recorded_.Set("sda", "device/model", std::string(4096, 'm'));
    EXPECT_EQ(TheDisk().model->size(), 4096U);
    EXPECT_FALSE(TheDisk().firmware.has_value());
    recorded_.Set("sda", "device/model", std::string(4097, 'm'));
    EXPECT_FALSE(TheDisk().model.has_value());
}

// Whatever is missing or damaged: nothing crashes, and what is found can be told of.
TEST_F(ALook, StandsWhateverTheAttributesSay) {
    recorded_.AddDisk("sda", "0a");
    recorded_.AddDisk("sdb", "0b");
    recorded_.AddArray("md0", "raid10", 2);
    recorded_.AddMember("md0", "sda", "0");
    recorded_.AddMember("md0", "sdb", "1");
    std::vector<std::filesystem::path> files;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(recorded_.Root().Path("/sys/devices"))) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::mt19937 random(1);
    const char* const texts[] = {"",
                                 "\n",
                                 "none\n",
                                 "18446744073709551615\n",
                                 "-1\n",
                                 "raid6",
                                 "4 (99)",
                                 "\x80",
                                 "65536 / 0\n",
                                 "frozen\n",
                                 "recover"};
    for (int round = 0; round < 500; ++round) {
        const auto& file = files[random() % files.size()];
        std::ofstream(file, std::ios::binary) << texts[random() % std::size(texts)];
        for (const Array& array : Now().arrays) {
            StateOf(array);
            EXPECT_LE(ActivityOf(array).percent, 100);
        }
    }
}

TEST(Md, IsThereWhenTheKernelHasItOrCanLoadIt) {
    const RecordedMachine recorded;
    EXPECT_TRUE(HasMd());
    std::filesystem::remove(recorded.Root().Path("/proc/mdstat"));
    EXPECT_FALSE(HasMd());
    recorded.Root().Write("/lib/modules/6.1.0-42-amd64/modules.dep",
                          "kernel/drivers/md/md-mod.ko:\n");
    EXPECT_TRUE(HasMd());
}

}  // namespace
