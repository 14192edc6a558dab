// Disks that are proved free, and every reason for which one is not.
#include "system/hxmd_proof.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <libfdisk/libfdisk.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

#include "controllers/linuxmd/support/recorded_machine.h"
#include "rules/hxmd_identity.h"
#include "sysfs/hxmd_look.h"
#include "system/hxmd_device.h"
#include "system/hxmd_table.h"

using hxcodes::Status;
using hxmd::StatusCode;

namespace {

constexpr std::uint64_t kMiB = 1 << 20;
constexpr std::uint64_t kDiskBytes = 1024 * kMiB;

class ADisk : public testing::Test {
protected:
    ADisk() {
        recorded_.AddDisk("sda", "0a");
        recorded_.Root().Write("/proc/1/mountinfo", "22 1 0:2 / / rw - rootfs rootfs rw\n");
    }

    void Write(std::uint64_t offset, const std::string& bytes) const {
        std::fstream device(recorded_.Root().Path("/dev/sda"),
                            std::ios::in | std::ios::out | std::ios::binary);
        device.seekp(static_cast<std::streamoff>(offset));
        device << bytes;
        ASSERT_TRUE(device.flush());
    }

    static StatusCode Prove(hxmd::FreeDisk& free) {
        auto machine = hxmd::Look();
        EXPECT_TRUE(machine);
        hxmd::Kept kept;
        hxmd::Identify(*machine, kept, hxmd::Numbering::kNewToo, 1);
        const auto disk = std::ranges::find(machine->disks, "sda", &hxmd::Disk::name);
        EXPECT_NE(disk, machine->disks.end());
        return hxmd::ProveFree(*machine, *disk, hxmd::Purpose::kChange, free);
    }
    static StatusCode Prove() {
        hxmd::FreeDisk free;
        return Prove(free);
    }

    static Descriptor Open() {
        return Descriptor(open(hxmd::DevicePath("sda").c_str(), O_RDWR | O_CLOEXEC));
    }

    // A partition of 100 MiB in a table on the disk, as the kernel shows it.
    void Partition() {
        const Descriptor disk = Open();
        ASSERT_EQ(hxmd::AddPartition(disk, "sda", hxmd::Table::kNew, 2048, 204800), 1U);
        recorded_.AddPartition("sda", "sda1");
        recorded_.Set("sda", "sda1/size", "204800\n");
    }
    void PartitionForArray() {
        Partition();
        recorded_.AddArray("md127", "raid1", 2);
        recorded_.AddMember("md127", "sda1", "0");
    }

    RecordedMachine recorded_;
};

TEST_F(ADisk, IsFreeWhenNothingIsOnIt) {
    hxmd::FreeDisk free;
    EXPECT_EQ(Prove(free), Status::kSuccess);
    EXPECT_TRUE(free.empty);
    EXPECT_TRUE(free.device.IsOpen());
}

// ---- The device ----

TEST_F(ADisk, IsRefusedWhenItIsOffline) {
    recorded_.Set("sda", "device/state", "offline\n");
    EXPECT_EQ(Prove(), Status::kDiskNotReady);
}

TEST_F(ADisk, IsRefusedWhenNothingIdentifiesIt) {
    recorded_.Forget("sda", "device/wwid");
    recorded_.Forget("sda", "device/vpd_pg80");
    EXPECT_EQ(Prove(), Status::kDiskNotReady);
}

TEST_F(ADisk, IsRefusedWhenItIsWriteProtectedOrThatIsUnknown) {
    recorded_.Set("sda", "ro", "1\n");
    EXPECT_EQ(Prove(), Status::kDiskNotReady);
    recorded_.Forget("sda", "ro");
    EXPECT_EQ(Prove(), Status::kDiskNotReady);
}

TEST_F(ADisk, IsRefusedWhenItIsRemovableOrThatIsUnknown) {
    recorded_.Set("sda", "removable", "1\n");
    EXPECT_EQ(Prove(), Status::kDiskNotReady);
    recorded_.Forget("sda", "removable");
    EXPECT_EQ(Prove(), Status::kDiskNotReady);
}

TEST_F(ADisk, IsRefusedWithLargeSectors) {
    recorded_.Set("sda", "queue/logical_block_size", "4096\n");
    EXPECT_EQ(Prove(), Status::kBadSectorSize);
}

TEST_F(ADisk, IsRefusedWhenItHasTwoPaths) {
    recorded_.AddDisk("sdb", "0a");
    EXPECT_EQ(Prove(), Status::kHeld);
}

TEST_F(ADisk, IsRefusedWhenItCannotBeOpened) {
    std::filesystem::remove(recorded_.Root().Path("/dev/sda"));
    EXPECT_EQ(Prove(), Status::kHeld);
    std::filesystem::create_directory(recorded_.Root().Path("/dev/sda"));
    EXPECT_EQ(Prove(), Status::kHeld);
}

TEST_F(ADisk, IsRefusedWhenTheDeviceHasAnotherSize) {
    recorded_.AddDevice("sda", 2097151);
    EXPECT_EQ(Prove(), Status::kHeld);
}

TEST_F(ADisk, IsRefusedWhenItsNodeIsALink) {
    std::filesystem::rename(recorded_.Root().Path("/dev/sda"), recorded_.Root().Path("/dev/other"));
    std::filesystem::create_symlink("other", recorded_.Root().Path("/dev/sda"));
    EXPECT_EQ(Prove(), Status::kHeld);
}

TEST_F(ADisk, IsRefusedWhenAnotherOneHasItsNameByNow) {
    auto machine = hxmd::Look();
    ASSERT_TRUE(machine);
    recorded_.Set("sda", "diskseq", "6\n");
    hxmd::FreeDisk free;
    EXPECT_EQ(hxmd::ProveFree(*machine, machine->disks[0], hxmd::Purpose::kLook, free),
              Status::kHeld);
}

// ---- Its use ----

TEST_F(ADisk, IsRefusedBelowTheSystem) {
    recorded_.Root().Write("/proc/1/mountinfo", "22 1 8:97 / / rw - ext4 /dev/sda rw\n");
    std::filesystem::create_directories(recorded_.Root().Path("/sys/dev/block"));
    std::filesystem::create_directories(recorded_.Root().Path("/sys/class/block"));
    std::filesystem::create_symlink("../../block/sda",
                                    recorded_.Root().Path("/sys/dev/block/8:97"));
    std::filesystem::create_symlink("../../block/sda",
                                    recorded_.Root().Path("/sys/class/block/sda"));
    EXPECT_EQ(Prove(), Status::kHoldsSystem);
    recorded_.Root().Write("/proc/1/mountinfo", "22 1 8:97 / /srv/x rw - ext4 /dev/sda rw\n");
    EXPECT_EQ(Prove(), Status::kHeld);
    recorded_.Root().Write("/proc/1/mountinfo", "");
    EXPECT_EQ(Prove(), Status::kSuccess);
}

TEST_F(ADisk, IsRefusedWhenItIsSwap) {
    recorded_.Root().Write("/proc/swaps",
                           "Filename Type Size Used Priority\n/dev/sda partition 1 0 -2\n");
    std::filesystem::create_directories(recorded_.Root().Path("/sys/class/block"));
    std::filesystem::create_symlink("../../block/sda",
                                    recorded_.Root().Path("/sys/class/block/sda"));
    EXPECT_EQ(Prove(), Status::kHoldsSystem);
}

TEST_F(ADisk, IsRefusedWhenAVolumeManagerHoldsIt) {
    std::filesystem::create_directories(recorded_.Root().Path("/sys/block/sda/holders/dm-0"));
    EXPECT_EQ(Prove(), Status::kHeld);
}

// ---- Its content ----

struct OnDisk {
    const char* name;
    std::uint64_t offset;
    std::string bytes;
    const char* type;
};

std::string PrintName(const testing::TestParamInfo<OnDisk>& each) { return each.param.name; }

class Content : public ADisk, public testing::WithParamInterface<OnDisk> {};

TEST_P(Content, IsFoundAndKept) {
    Write(GetParam().offset, GetParam().bytes);
    EXPECT_EQ(Prove(), Status::kHeld);
    const Descriptor disk = Open();
    const hxmd::Signature found = hxmd::Probe(disk, 0, kDiskBytes, hxmd::Kinds::kTablesToo);
    EXPECT_EQ(found.found, hxmd::Found::kSomething);
    EXPECT_EQ(found.type, GetParam().type);
}

std::string WithTail(std::string head, std::size_t at, const std::string& tail) {
    head.resize(at, '\0');
    return head + tail;
}

// Superblocks as short as libblkid takes them for real.
const OnDisk kContents[] = {
    {"Ext4", 1024 + 56, std::string("\x53\xef", 2), "ext2"},
    {"Luks", 0, std::string("LUKS\xba\xbe\0\1", 8), "crypto_LUKS"},
    {"Lvm", 512, std::string("LABELONE\1\0\0\0\0\0\0\0\0\0\0\0\x20\0\0\0LVM2 001", 32),
     "LVM2_member"},
    {"Swap", 1024, WithTail(std::string("\1\0\0\0\xff\0\0\0", 8), 3062, "SWAPSPACE2"), "swap"},
    {"MasterBootRecord", 446,
     WithTail(std::string("\0\0\0\0\x83\0\0\0\0\x08\0\0\0\x08\0\0", 16), 64, "\x55\xaa"), "dos"},
    // Behind the first MiB: libblkid's finding alone.
    {"BehindTheFirstMebibyte", 2 * kMiB, "\x5e\xf1\xab\x2f", "VMFS"},
};
INSTANTIATE_TEST_SUITE_P(Kinds, Content, testing::ValuesIn(kContents), PrintName);

TEST_F(ADisk, IsRefusedWithAnArraysOldSuperblock) {
    Write(4096, std::string("\xfc\x4e\x2b\xa9\1\0\0\0", 8));
    EXPECT_EQ(Prove(), Status::kHeld);
}

TEST_F(ADisk, IsRefusedWithAnyByteInItsFirstMebibyte) {
    Write(kMiB - 1, "x");
    EXPECT_EQ(Prove(), Status::kHeld);
}

TEST_F(ADisk, IsRefusedWithAnyByteInItsLastMebibyte) {
    Write(kDiskBytes - kMiB, "x");
    EXPECT_EQ(Prove(), Status::kHeld);
}

TEST_F(ADisk, IsNotChangedByTheProof) {
    Write(500 * kMiB, "data");
    EXPECT_EQ(Prove(), Status::kSuccess);
    const Descriptor disk = Open();
    EXPECT_TRUE(hxmd::IsZero(disk, 0, 2 * kMiB));
    EXPECT_TRUE(hxmd::IsZero(disk, 1022 * kMiB, 2 * kMiB));
    EXPECT_FALSE(hxmd::IsZero(disk, 500 * kMiB, 4));
    EXPECT_FALSE(hxmd::IsZero(disk, kDiskBytes - 1, 2));  // past its end
}

// ---- Partitions ----

TEST_F(ADisk, IsFreeBesideTheMembersOfRunningArrays) {
    PartitionForArray();
    hxmd::FreeDisk free;
    EXPECT_EQ(Prove(free), Status::kSuccess);
    EXPECT_FALSE(free.empty);
}

TEST_F(ADisk, IsRefusedWhenAPartitionIsNoMember) {
    Partition();
    EXPECT_EQ(Prove(), Status::kHeld);
}

TEST_F(ADisk, IsRefusedWhenThePartitionsArrayStands) {
    PartitionForArray();
    recorded_.Set("md127", "md/array_state", "inactive\n");
    EXPECT_EQ(Prove(), Status::kHeld);
}

TEST_F(ADisk, IsRefusedWhenAMemberLiesInAPartitionOfAnotherType) {
    PartitionForArray();
    const Descriptor disk = Open();
    fdisk_context* const context = fdisk_new_context();
    ASSERT_EQ(fdisk_assign_device_by_fd(context, disk.Get(), "sda", 0), 0);
    fdisk_parttype* const type = fdisk_label_parse_parttype(fdisk_get_label(context, nullptr),
                                                            "0FC63DAF-8483-4772-8E79-3D69D8477DE4");
    EXPECT_EQ(fdisk_set_partition_type(context, 0, type), 0);
    EXPECT_EQ(fdisk_write_disklabel(context), 0);
    fdisk_unref_parttype(type);
    fdisk_unref_context(context);
    EXPECT_EQ(Prove(), Status::kHeld);
}

TEST_F(ADisk, IsRefusedWithADamagedTable) {
    PartitionForArray();
    Write(1024, "one copy of the table");
    EXPECT_EQ(Prove(), Status::kHeld);
}

TEST_F(ADisk, IsRefusedWhenTheKernelHasOtherPartitionsThanTheTable) {
    PartitionForArray();
    recorded_.Set("sda", "sda1/size", "204799\n");
    EXPECT_EQ(Prove(), Status::kHeld);
}

TEST_F(ADisk, IsRefusedWithATableAndNoPartition) {
    Partition();
    std::filesystem::remove_all(recorded_.Root().Path("/sys/block/sda/sda1"));
    EXPECT_EQ(Prove(), Status::kHeld);
}

TEST_F(ADisk, IsRefusedWhenTheSystemCannotBeTraced) {
    PartitionForArray();
    recorded_.Root().Write("/proc/1/mountinfo", "22 1 0:30 / / rw - overlay overlay rw\n");
    EXPECT_EQ(Prove(), Status::kHoldsSystem);
    recorded_.Root().Write("/proc/1/mountinfo", "22 1 0:2 / / rw - rootfs rootfs rw\n");
    EXPECT_EQ(Prove(), Status::kSuccess);
}

TEST_F(ADisk, IsRefusedWhenAPartitionIsHeldByAnother) {
    PartitionForArray();
    std::filesystem::create_directories(recorded_.Root().Path("/sys/block/sda/sda1/holders/dm-0"));
    EXPECT_EQ(Prove(), Status::kHeld);
}

// ---- Tables ----

TEST_F(ADisk, KeepsOtherPartitionsWhenOneIsDropped) {
    const Descriptor disk = Open();
    ASSERT_EQ(hxmd::AddPartition(disk, "sda", hxmd::Table::kNew, 2048, 204800), 1U);
    ASSERT_EQ(hxmd::AddPartition(disk, "sda", hxmd::Table::kPresent, 206848, 4096), 2U);
    EXPECT_FALSE(hxmd::AddPartition(disk, "sda", hxmd::Table::kPresent, 2048, 2048));
    EXPECT_TRUE(hxmd::DropPartition(disk, "sda", 2048));
    EXPECT_FALSE(hxmd::DropPartition(disk, "sda", 2048));
    const auto left = hxmd::ReadTable(disk, "sda");
    ASSERT_TRUE(left);
    ASSERT_EQ(left->size(), 1U);
    EXPECT_EQ(left->front().start, 206848U);
    EXPECT_EQ(left->front().sectors, 4096U);
    EXPECT_TRUE(left->front().raid);
}

TEST_F(ADisk, HasNoTableWithoutOne) {
    const Descriptor disk = Open();
    EXPECT_FALSE(hxmd::ReadTable(disk, "sda"));
    EXPECT_FALSE(hxmd::AddPartition(disk, "sda", hxmd::Table::kPresent, 2048, 2048));
    EXPECT_TRUE(hxmd::IsZero(disk, 0, 2 * kMiB));
}

}  // namespace
