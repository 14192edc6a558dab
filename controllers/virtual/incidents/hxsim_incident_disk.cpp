// Incidents of disks: they fail, are removed, inserted and replaced.
#include "incidents/hxsim_incident_disk.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "model/hxsim_activity_row.h"
#include "model/hxsim_link.h"
#include "model/hxsim_random.h"
#include "model/hxsim_redundancy.h"
#include "model/hxsim_space.h"
#include "rules/hxsim_activity_end.h"
#include "rules/hxsim_copyback.h"
#include "rules/hxsim_disk_contents.h"
#include "rules/hxsim_event_queue.h"
#include "rules/hxsim_remap.h"

namespace hxsim {
namespace {

Outcome Refused(HX_U16 disk, const std::string& rest) {
    return {"Disk " + std::to_string(disk) + ' ' + rest};
}

Outcome NoSuchDisk(HX_U16 disk) {
    return Refused(disk, "has no place in this adapter; take one that hxsimctl show lists.");
}

Outcome NotThere(HX_U16 disk) { return Refused(disk, "is not there; insert or replace it first."); }

Outcome HasFailed(HX_U16 disk) { return Refused(disk, "has failed; replace it."); }

// Whether a disk of the adapter has that serial number or world wide name.
bool IsTaken(const Adapter& adapter, const std::string& serial) {
    return std::ranges::find(adapter.disks, serial, &Disk::serial) != adapter.disks.end();
}
bool IsTaken(const Adapter& adapter, std::uint64_t wwn) {
    return std::ranges::find(adapter.disks, wwn, &Disk::wwn) != adapter.disks.end();
}

// A new serial number of the same series as the old one.
std::string NewSerial(const Adapter& adapter, const std::string& old, std::uint64_t& random) {
    constexpr unsigned kDrawn = 6;
    std::string serial;
    do {
        serial = DrawSerial(random, old.substr(0, 4), kDrawn);
    } while (IsTaken(adapter, serial));
    return serial;
}

std::uint64_t NewWorldWideName(const Adapter& adapter, std::uint64_t& random) {
    std::uint64_t wwn = 0;
    do {
        wwn = WorldWideNameOfNewDisk(adapter.id, static_cast<HX_U16>(Draw(random) >> 48));
    } while (IsTaken(adapter, wwn));
    return wwn;
}

void EndActivityOf(Adapter& adapter, Time now, HX_U16 disk) {
    const Activity* const activity = ActivityOf(adapter, Owner::kDisk, disk);
    if (activity != nullptr) Fail(adapter, now, activity->id);
}

std::array<HX_U32, 4> AddressAnd(Sectors lba, HX_U32 third, HX_U32 fourth) {
    return {static_cast<HX_U32>(lba >> 32), static_cast<HX_U32>(lba), third, fourth};
}

const Block* ContentAt(const Adapter& adapter, HX_U16 disk, Sectors lba) {
    const auto found = std::ranges::find_if(adapter.blocks, [&](const Block& block) {
        return block.disk == disk && block.virtual_disk != kNoVirtualDisk && !block.target &&
               block.start <= lba && lba - block.start < block.sectors;
    });
    return found == adapter.blocks.end() ? nullptr : &*found;
}

// Whether the host can read the virtual disk's blocks on the disk: then it meets the error at once.
// Otherwise the damage waits for a media patrol or a check.
bool IsRead(const Adapter& adapter, const Disk& disk, const VirtualDisk& virtual_disk) {
    const State state = StateOf(adapter, virtual_disk);
    return IsReady(disk) && state != State::kOffline && state != State::kForeign;
}

// Whether the other disks hold enough to restore the sector's content.
bool CanBeMadeAgain(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    const State state = StateOf(adapter, virtual_disk);
    return IsRedundant(virtual_disk.level) &&
           (state == State::kOptimal || state == State::kPartiallyOptimal);
}

bool IsKnownBad(const Adapter& adapter, HX_U16 disk, Sectors lba) {
    return std::ranges::any_of(adapter.remaps, [&](const Remap& remap) {
        return remap.disk == disk && remap.lba <= lba && lba - remap.lba < remap.sectors;
    });
}

}  // namespace

Outcome FailDisk(Adapter& adapter, Time now, HX_U16 disk) {
    Disk* const row = Find(adapter.disks, disk);
    if (row == nullptr) return NoSuchDisk(disk);
    if (!row->present) return NotThere(disk);
    if (row->failed) return HasFailed(disk);
    row->failed = true;
    Queue(adapter, now, EventKind::kDiskSetDown, disk);
    return {};
}

Outcome RemoveDisk(Adapter& adapter, Time now, HX_U16 disk) {
    Disk* const row = Find(adapter.disks, disk);
    if (row == nullptr) return NoSuchDisk(disk);
    if (!row->present) return NotThere(disk);
    row->present = false;
    row->locate_light = false;
    Queue(adapter, now, EventKind::kDiskOffline, disk);
    return {};
}

Outcome InsertDisk(Adapter& adapter, Time now, HX_U16 disk) {
    Disk* const row = Find(adapter.disks, disk);
    if (row == nullptr) return NoSuchDisk(disk);
    if (row->present) return Refused(disk, "is there already; remove it first.");
    row->present = true;
    // What has been set offline or given up is so wherever it is put.
    if (row->failed) {
        Queue(adapter, now, EventKind::kDiskSetDown, disk);
    } else if (!row->offline) {
        Queue(adapter, now, EventKind::kDiskOnline, disk);
    }
    return {};
}

Outcome ReplaceDisk(Adapter& adapter, Time now, HX_U16 disk, std::uint64_t& random, bool foreign,
                    Sectors sectors) {
    Disk* const row = Find(adapter.disks, disk);
    if (row == nullptr) return NoSuchDisk(disk);
    if (sectors != 0 && (sectors <= kMetadata || sectors > kMostSectors)) {
        return {"A disk has " + std::to_string(kMetadata + 1) + " to " +
                std::to_string(kMostSectors) + " sectors, not " + std::to_string(sectors) + '.'};
    }
    if (row->present && !row->failed) Queue(adapter, now, EventKind::kDiskOffline, disk);
    EndActivityOf(adapter, now, disk);
    DropContents(adapter, now, disk);
    std::erase_if(adapter.remaps, [&](const Remap& remap) { return remap.disk == disk; });

    Disk fresh;
    static_cast<Attachment&>(fresh) = *row;
    fresh.id = disk;
    fresh.enclosure = row->enclosure;
    fresh.slot = row->slot;
    fresh.model = row->model;
    fresh.firmware = row->firmware;
    fresh.serial = NewSerial(adapter, row->serial, random);
    fresh.wwn = NewWorldWideName(adapter, random);
    fresh.sectors = sectors != 0 ? sectors : row->sectors;
    fresh.sas = row->sas;
    fresh.speed = row->speed;
    fresh.foreign = foreign;
    *row = std::move(fresh);
    ResetDisk(adapter, disk);
    Queue(adapter, now, EventKind::kDiskOnline, disk);
    TellOfSmallHome(adapter, now, disk);
    return {};
}

Outcome TripSmart(Adapter& adapter, Time now, HX_U16 disk) {
    Disk* const row = Find(adapter.disks, disk);
    if (row == nullptr) return NoSuchDisk(disk);
    if (!row->present) return NotThere(disk);
    if (row->failed) return HasFailed(disk);
    if (row->smart_exceeded) {
        return Refused(disk, "is over its SMART threshold already; replace it.");
    }
    row->smart_exceeded = true;
    if (row->smart_on && adapter.config.PollSMARTStatus != 0) {
        Queue(adapter, now, EventKind::kSmartThresholdOver, disk);
    }
    return {};
}

Outcome DamageSector(Adapter& adapter, Time now, HX_U16 disk, Sectors lba) {
    const Disk* const row = Find(adapter.disks, disk);
    if (row == nullptr) return NoSuchDisk(disk);
    if (!row->present) return NotThere(disk);
    if (row->failed) return HasFailed(disk);
    if (lba >= row->sectors) {
        return Refused(disk, "ends before sector " + std::to_string(lba) + "; its last one is " +
                                 std::to_string(row->sectors - 1) + '.');
    }
    if (IsKnownBad(adapter, disk, lba)) {
        return Refused(
            disk, "has a damaged sector " + std::to_string(lba) + " already; take another one.");
    }
    const Block* const content = ContentAt(adapter, disk, lba);
    VirtualDisk* const virtual_disk =
        content == nullptr ? nullptr : Find(adapter.virtual_disks, content->virtual_disk);
    if (virtual_disk == nullptr || !IsRead(adapter, *row, *virtual_disk)) {
        SetRemap(adapter, {disk, lba, 1, kNotRemapped});
        return {};
    }
    Queue(adapter, now, EventKind::kDiskReadWriteError, disk);
    const bool reassigned = Reassign(adapter, now, disk, lba, 1);
    if (reassigned && CanBeMadeAgain(adapter, *virtual_disk)) {
        Queue(adapter, now, EventKind::kDiskErrorFixed, disk);
        return {};
    }
    // A consistency check will find this stripe.
    if (IsRedundant(virtual_disk->level)) ++virtual_disk->errors;
    Queue(adapter, now, EventKind::kInconsistentAddress, virtual_disk->id, AddressAnd(lba, 0, 0));
    return {};
}
}  // namespace hxsim
