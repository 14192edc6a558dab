// Making and dropping of partitions, step by step.
#include "calls/hxmd_place.h"

#include <sys/file.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <thread>

#include "codes/status.h"
#include "rules/hxmd_space.h"
#include "sysfs/hxmd_look.h"
#include "system/hxmd_device.h"
#include "system/hxmd_run.h"
#include "system/hxmd_table.h"

namespace hxmd {
namespace {

using hxcodes::Status;

constexpr std::chrono::seconds kAppears{5};
constexpr std::chrono::milliseconds kLookPause{50};

// Waits until udev has looked at the new partition, so that it does not hold it when mdadm comes.
// Without udev there is nothing to wait for.
void Settle() { Run("/bin/udevadm", {"settle", "--timeout=5"}); }

const Partition* FindPartition(const Machine& machine, const Place& place) {
    const auto disk = std::ranges::find(machine.disks, place.disk, &Disk::name);
    if (disk == machine.disks.end()) return nullptr;
    for (const Partition& partition : disk->partitions) {
        if (partition.start == place.start && partition.sectors == place.sectors) {
            return &partition;
        }
    }
    return nullptr;
}

// The new partition, once it is there and nobody holds it.
bool Await(Place& place) {
    const auto end = std::chrono::steady_clock::now() + kAppears;
    Settle();
    while (true) {
        const auto machine = Look();
        const Partition* const found = machine ? FindPartition(*machine, place) : nullptr;
        if (found != nullptr &&
            OpenDevice(found->name, found->device_number, found->sectors, Access::kReadAlone)
                .IsOpen()) {
            place.partition = found->name;
            return true;
        }
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(kLookPause);
    }
}

// Nobody has looked at what lies below a new table. What has a signature is left alone.
StatusCode Clear(const Descriptor& device, const Place& place) {
    const std::uint64_t start = place.start * kSectorBytes;
    const std::uint64_t bytes = place.sectors * kSectorBytes;
    if (Probe(device, start, bytes, Kinds::kTablesToo).found != Found::kNothing) {
        return Status::kHeld;
    }
    const bool cleared = WriteZeros(device, start, kMebibyte) &&
                         WriteZeros(device, start + bytes - kMebibyte, kMebibyte);
    return cleared ? Status::kSuccess : Status::kDiskNotReady;
}

// A table without partitions would make a disk look used. Anything before the first partition but
// the table itself, such as a boot loader, stays.
void DropEmptyTable(const Descriptor& device, const std::string& disk, std::uint64_t sectors) {
    constexpr std::uint64_t kLoader = 440;  // bytes
    constexpr std::uint64_t kTable = 34 * kSectorBytes;
    const auto entries = ReadTable(device, disk);
    const std::uint64_t bytes = sectors * kSectorBytes;
    if (!entries || !entries->empty() || !IsZero(device, 0, kLoader)) return;
    if (!IsZero(device, kTable, kMebibyte - kTable)) return;
    WriteZeros(device, 0, kMebibyte);
    WriteZeros(device, bytes - kTable, kTable);
}

}  // namespace

StatusCode MakePlace(const Machine& machine, const Disk& disk, std::uint64_t sectors,
                     Place& place) {
    const Gap gap = LargestGap(disk);
    sectors = (sectors + kAlignment - 1) / kAlignment * kAlignment;
    if (sectors == 0 || sectors > gap.sectors) return Status::kNoSpace;
    FreeDisk free;
    if (const auto refusal = ProveFree(machine, disk, Purpose::kChange, free);
        refusal != Status::kSuccess) {
        return refusal;
    }
    place = {disk.name, "", disk.device_number, disk.sectors, gap.start, sectors, free.empty};
    if (const auto refusal = Clear(free.device, place); refusal != Status::kSuccess) {
        return refusal;
    }
    // udev leaves a locked disk alone; it would take the partitions away for a moment.
    static_cast<void>(flock(free.device.Get(), LOCK_EX | LOCK_NB));
    const Table table = free.empty ? Table::kNew : Table::kPresent;
    const bool added =
        AddPartition(free.device, disk.name, table, place.start, sectors).has_value();
    free.device.Close();  // mdadm takes the device for itself
    if (added && Await(place)) return Status::kSuccess;
    UndoPlace(place);
    return Status::kDiskNotReady;
}

void UndoPlace(const Place& place) {
    const Descriptor device =
        OpenDevice(place.disk, place.number, place.disk_sectors, Access::kWrite);
    if (!device.IsOpen()) return;
    static_cast<void>(flock(device.Get(), LOCK_EX | LOCK_NB));
    // While an array uses it the kernel keeps the partition, and then nothing is written.
    if (!DropPartition(device, place.disk, place.start)) return;
    WriteZeros(device, place.start * kSectorBytes, kMebibyte);  // a superblock of mdadm's
    if (place.new_table) DropEmptyTable(device, place.disk, *place.disk_sectors);
}

bool RemovePartition(const Disk& disk, const std::string& partition) {
    const auto found = std::ranges::find(disk.partitions, partition, &Partition::name);
    if (found == disk.partitions.end() || !found->start) return false;
    const Descriptor device =
        OpenDevice(disk.name, disk.device_number, disk.sectors, Access::kWrite);
    if (!device.IsOpen()) return false;
    static_cast<void>(flock(device.Get(), LOCK_EX | LOCK_NB));
    if (!DropPartition(device, disk.name, *found->start)) return false;
    DropEmptyTable(device, disk.name, *disk.sectors);
    return true;
}

}  // namespace hxmd
