// Finds numbers by key and gives new ones.
#include "rules/hxmd_identity.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>

namespace hxmd {
namespace {

// The lowest number below `limit` that no row has.
template <class Rows>
std::optional<HX_U16> FreeNumber(const Rows& rows, HX_U16 limit) {
    std::vector<char> taken(limit);
    for (const auto& row : rows) {
        if (row.id < limit) taken[row.id] = 1;
    }
    for (HX_U16 number = 0; number < limit; ++number) {
        if (taken[number] == 0) return number;
    }
    return std::nullopt;
}

// The row of a key, added if `numbering` permits; null when there is none.
template <class Row>
Row* RowOfKey(std::vector<Row>& rows, const std::string& key, Numbering numbering) {
    const auto found = std::ranges::find(rows, key, &Row::key);
    if (found != rows.end()) return &*found;
    if (numbering == Numbering::kKnownOnly) return nullptr;
    const auto id = FreeNumber(rows, kNoId);
    if (!id) return nullptr;
    Row& row = rows.emplace_back();
    row.id = *id;
    row.key = key;
    return &row;
}

template <class Objects>
void KeepNumbered(Objects& objects) {
    std::erase_if(objects, [](const auto& each) { return each.id == kNoId; });
    std::ranges::sort(objects, {}, [](const auto& each) { return each.id; });
}

std::string ModelOf(const Disk& disk) {
    if (!disk.model) return "";
    return disk.vendor ? *disk.vendor + " " + *disk.model : *disk.model;
}

void IdentifyDisks(Machine& machine, Kept& kept, Numbering numbering) {
    for (Disk& disk : machine.disks) {
        KeptDisk* const row = RowOfKey(kept.known_disks, disk.key, numbering);
        if (row == nullptr) continue;
        disk.id = row->id;
        row->model = ModelOf(disk);
        row->serial = disk.serial.value_or("");
        row->sectors = disk.sectors.value_or(0);
    }
    KeepNumbered(machine.disks);
}

// ---- Arrays ----

KeptArray* RowOfArray(Kept& kept, const std::string& uuid, Numbering numbering) {
    std::vector<KeptArray>& rows = kept.known_arrays;
    const auto found = std::ranges::find(rows, uuid, &KeptArray::uuid);
    if (found != rows.end()) return &*found;
    if (numbering == Numbering::kKnownOnly) return nullptr;
    if (const auto id = FreeNumber(rows, kMostArrays)) {
        KeptArray& row = rows.emplace_back();
        row.id = *id;
        row.uuid = uuid;
        return &row;
    }
    // All numbers are in use: reuse that of the array that has been missing longest.
    KeptArray* oldest = nullptr;
    for (KeptArray& row : rows) {
        if (row.left != 0 && (oldest == nullptr || row.left < oldest->left)) oldest = &row;
    }
    if (oldest == nullptr) return nullptr;
    std::erase_if(kept.known_blocks,
                  [&](const KeptBlock& block) { return block.array == oldest->id; });
    std::erase_if(kept.arrays, [&](const SeenArray& seen) { return seen.id == oldest->id; });
    std::erase_if(kept.slots, [&](const SeenSlot& seen) { return seen.array == oldest->id; });
    const HX_U16 id = oldest->id;
    *oldest = KeptArray{};
    oldest->id = id;
    oldest->uuid = uuid;
    return oldest;
}

std::optional<SyncAction> PauseOf(const Kept& kept, HX_U16 array, const std::string& boot_id) {
    for (const KeptPause& pause : kept.pauses) {
        if (pause.array != array || pause.boot_id != boot_id) continue;
        return static_cast<SyncAction>(pause.action);
    }
    return std::nullopt;
}

void IdentifyArrays(Machine& machine, Kept& kept, Numbering numbering, std::int64_t now) {
    std::vector<HX_U16> there;
    for (Array& array : machine.arrays) {
        if (!array.uuid) continue;  // nothing identifies it
        KeptArray* const row = RowOfArray(kept, *array.uuid, numbering);
        if (row == nullptr || std::ranges::count(there, row->id) != 0) continue;
        there.push_back(row->id);
        array.id = row->id;
        row->title = array.title;
        row->left = 0;
        array.paused = PauseOf(kept, row->id, machine.boot_id);
        if (array.level) row->level = static_cast<HX_U16>(*array.level);
        if (array.disks) {
            row->places = static_cast<HX_U16>(std::min<std::uint64_t>(array.disks->now, kNoId));
        }
    }
    for (KeptArray& row : kept.known_arrays) {
        if (row.left == 0 && std::ranges::count(there, row.id) == 0) row.left = now;
    }
    KeepNumbered(machine.arrays);
}

// ---- Blocks ----

HX_U16 SlotOf(const Member& member) {
    return static_cast<HX_U16>(std::min<std::uint64_t>(member.slot.value_or(kNoId), kNoId));
}

void IdentifyPresent(Member& member, const Array& array, const Machine& machine, Kept& kept,
                     Numbering numbering) {
    const auto disk = std::ranges::find(machine.disks, member.device, &Disk::key);
    if (member.device.empty() || disk == machine.disks.end()) return;
    member.disk = disk->id;
    if (!member.slot) return;
    std::vector<KeptBlock>& rows = kept.known_blocks;
    auto row = std::ranges::find_if(rows, [&](const KeptBlock& each) {
        return each.disk == disk->id && each.array == array.id && each.start == member.start;
    });
    if (row == rows.end()) {
        const auto id = FreeNumber(rows, kNoId);
        if (!id || numbering == Numbering::kKnownOnly) return;
        rows.push_back({.id = *id, .disk = disk->id, .array = array.id, .start = member.start});
        row = rows.end() - 1;
    }
    row->slot = SlotOf(member);
    member.block = row->id;
}

// Forgets the block of a place's former member once another member holds its content.
void ForgetReplaced(const Array& array, std::vector<KeptBlock>& rows) {
    for (const Member& member : array.members) {
        if (member.block == kNoId || !member.state || !member.state->in_sync) continue;
        std::erase_if(rows, [&](const KeptBlock& row) {
            const bool in_use = std::ranges::any_of(
                array.members, [&](const Member& each) { return each.block == row.id; });
            return row.array == array.id && row.slot == SlotOf(member) && !in_use;
        });
    }
}

const KeptBlock* BlockOfSlot(const Kept& kept, HX_U16 array, HX_U16 slot) {
    const auto row = std::ranges::find_if(kept.known_blocks, [&](const KeptBlock& each) {
        return each.array == array && each.slot == slot;
    });
    return row == kept.known_blocks.end() ? nullptr : &*row;
}

void AddMissing(Machine& machine, const Kept& kept, HX_U16 disk) {
    if (std::ranges::find(machine.disks, disk, &Disk::id) != machine.disks.end()) return;
    const auto row = std::ranges::find(kept.known_disks, disk, &KeptDisk::id);
    if (row == kept.known_disks.end()) return;
    Disk& missing = machine.disks.emplace_back();
    missing.present = false;
    missing.id = row->id;
    missing.key = row->key;
    missing.model = row->model;
    missing.serial = row->serial;
    missing.sectors = row->sectors;
}

// Finds the disks of missing members by the places that they had.
void IdentifyMissing(Machine& machine, Array& array, const Kept& kept) {
    const auto places = static_cast<std::size_t>(
        array.disks ? std::min<std::uint64_t>(array.disks->now, kNoId) : 0);
    std::vector<char> taken(places);
    for (Member& member : array.members) {
        if (!member.slot) continue;
        if (member.present && *member.slot < places)
            taken[static_cast<std::size_t>(*member.slot)] = 1;
        if (member.present) continue;
        if (const KeptBlock* const row = BlockOfSlot(kept, array.id, SlotOf(member))) {
            member.block = row->id;
            member.disk = row->disk;
            member.start = row->start;
        }
    }
    for (std::size_t slot = 0; slot < places; ++slot) {
        if (taken[slot] != 0) continue;
        const KeptBlock* const row = BlockOfSlot(kept, array.id, static_cast<HX_U16>(slot));
        if (row != nullptr) AddMissing(machine, kept, row->disk);
    }
}

}  // namespace

void Identify(Machine& machine, Kept& kept, Numbering numbering, std::int64_t now) {
    IdentifyDisks(machine, kept, numbering);
    IdentifyArrays(machine, kept, numbering, now);
    for (Enclosure& enclosure : machine.enclosures) {
        const auto* const row = RowOfKey(kept.known_enclosures, enclosure.key, numbering);
        if (row != nullptr) enclosure.id = row->id;
    }
    KeepNumbered(machine.enclosures);
    for (Array& array : machine.arrays) {
        for (Member& member : array.members) {
            if (member.present) IdentifyPresent(member, array, machine, kept, numbering);
        }
        if (numbering == Numbering::kNewToo) ForgetReplaced(array, kept.known_blocks);
    }
    for (Array& array : machine.arrays) IdentifyMissing(machine, array, kept);
    KeepNumbered(machine.disks);
}

}  // namespace hxmd
