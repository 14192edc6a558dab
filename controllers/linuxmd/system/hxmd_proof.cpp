// The checks, one after the other; each refuses by itself.
#include "system/hxmd_proof.h"

#include <algorithm>
#include <set>
#include <string>

#include "sysfs/hxmd_convert.h"
#include "sysfs/hxmd_look.h"
#include "sysfs/hxmd_system.h"
#include "system/hxmd_device.h"
#include "system/hxmd_table.h"

namespace hxmd {
namespace {

using hxcodes::Status;

bool Contains(const std::set<std::string>& names, const Disk& disk) {
    return names.contains(disk.name) ||
           std::ranges::any_of(disk.partitions, [&](const Partition& partition) {
               return names.contains(partition.name);
           });
}

// What is not known does not count as well.
StatusCode CheckDevice(const Disk& disk) {
    const std::string state = disk.state.value_or("running");
    if (!disk.present || (state != "running" && state != "live")) return Status::kDiskNotReady;
    if (!disk.stable) return Status::kDiskNotReady;
    if (disk.read_only != 0 || disk.removable != 0) return Status::kDiskNotReady;
    if (disk.sector_size != kSectorBytes) return Status::kBadSectorSize;
    return Status::kSuccess;
}

StatusCode CheckUse(const Disk& disk) {
    // Another path could be used by something that this one does not show.
    if (disk.twice) return Status::kHeld;
    if (disk.held || std::ranges::any_of(disk.partitions, &Partition::held)) return Status::kHeld;
    return Contains(FindUsed().names, disk) ? Status::kHeld : Status::kSuccess;
}

// Whether it is still the disk of the look: the number is never given twice in a boot.
bool IsSame(const Disk& disk) {
    return ToNumber(LineOf("/sys/block", disk.name + "/diskseq")) == disk.sequence;
}

bool IsMember(const Machine& machine, const std::string& device) {
    return std::ranges::any_of(machine.arrays, [&](const Array& array) {
        const bool runs =
            array.state == ArrayState::kRunning || array.state == ArrayState::kReadAuto;
        return runs && array.id != kNoId &&
               std::ranges::find(array.members, device, &Member::name) != array.members.end();
    });
}

StatusCode CheckEmpty(const Disk& disk, Purpose purpose, FreeDisk& free) {
    const auto access = purpose == Purpose::kChange ? Access::kWriteAlone : Access::kReadAlone;
    free.device = OpenDevice(disk.name, disk.device_number, disk.sectors, access);
    if (!free.device.IsOpen() || !IsSame(disk)) return Status::kHeld;
    const std::uint64_t bytes = *disk.sectors * kSectorBytes;
    if (bytes < 2 * kMebibyte) return Status::kNoSpace;
    if (Probe(free.device, 0, bytes, Kinds::kTablesToo).found != Found::kNothing) {
        return Status::kHeld;
    }
    // Databases and the like have no signature that libblkid knows.
    if (!IsZero(free.device, 0, kMebibyte)) return Status::kHeld;
    if (!IsZero(free.device, bytes - kMebibyte, kMebibyte)) return Status::kHeld;
    free.empty = true;
    return Status::kSuccess;
}

// The table, the kernel's partitions and the members of running arrays have to agree.
StatusCode CheckTable(const Machine& machine, const Disk& disk, Purpose purpose, FreeDisk& free) {
    const auto access = purpose == Purpose::kChange ? Access::kWrite : Access::kRead;
    if (MayHoldSystem(disk)) return Status::kHoldsSystem;
    free.device = OpenDevice(disk.name, disk.device_number, disk.sectors, access);
    if (!free.device.IsOpen() || !IsSame(disk)) return Status::kHeld;
    const std::uint64_t bytes = *disk.sectors * kSectorBytes;
    if (Probe(free.device, 0, bytes, Kinds::kSuperblocks).found != Found::kNothing) {
        return Status::kHeld;
    }
    const auto entries = ReadTable(free.device, disk.name);
    if (!entries || entries->size() != disk.partitions.size()) return Status::kHeld;
    for (const Partition& partition : disk.partitions) {
        const bool ours = std::ranges::any_of(*entries, [&](const Entry& entry) {
            return entry.raid && entry.start == partition.start &&
                   entry.sectors == partition.sectors;
        });
        if (!ours || !IsMember(machine, partition.name)) return Status::kHeld;
    }
    return Status::kSuccess;
}

}  // namespace

bool MayHoldSystem(const Disk& disk) {
    const SystemDevices system = FindSystem();
    return !system.complete || Contains(system.names, disk);
}

StatusCode ProveFree(const Machine& machine, const Disk& disk, Purpose purpose, FreeDisk& free) {
    if (const auto refusal = CheckDevice(disk); refusal != Status::kSuccess) return refusal;
    if (Contains(FindSystem().names, disk)) return Status::kHoldsSystem;
    if (const auto refusal = CheckUse(disk); refusal != Status::kSuccess) return refusal;
    return disk.partitions.empty() ? CheckEmpty(disk, purpose, free)
                                   : CheckTable(machine, disk, purpose, free);
}

}  // namespace hxmd
