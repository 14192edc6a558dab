// Migrations of virtual disks and disk groups to another level or to other disks.
#include "rules/hxsim_migration.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <span>
#include <utility>
#include <vector>

#include "model/hxsim_activity_row.h"
#include "model/hxsim_home.h"
#include "model/hxsim_migration_row.h"
#include "model/hxsim_plan.h"
#include "model/hxsim_redundancy.h"
#include "model/hxsim_space.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_disk_write_cache.h"

namespace hxsim {
namespace {

constexpr Sectors kNoLimit = std::numeric_limits<Sectors>::max();

// ---- Positions ----

// The disks in the order of their new positions. Unless the caller insists on an order, a disk
// keeps its position, so that its block can stay.
std::vector<HX_U16> Arrange(std::span<const HX_U16> wanted, std::span<const HX_U16> old,
                            bool as_given) {
    std::vector<HX_U16> order(wanted.begin(), wanted.end());
    if (as_given) return order;
    const auto stays = [&](std::size_t position) {
        return position < old.size() && std::ranges::count(wanted, old[position]) != 0;
    };
    auto next = wanted.begin();
    for (std::size_t position = 0; position < order.size(); ++position) {
        if (stays(position)) {
            order[position] = old[position];
            continue;
        }
        const auto is_placed = [&](HX_U16 disk) {
            const auto at = std::ranges::find(old, disk) - old.begin();
            const auto place = static_cast<std::size_t>(at);
            return place < old.size() && place < order.size();
        };
        while (is_placed(*next)) ++next;
        order[position] = *next++;
    }
    return order;
}

bool IsKept(const Layout& layout, std::span<const HX_U16> old, std::size_t position) {
    return position < old.size() && layout.disks[position] == old[position];
}

Activity MigrationTo(const Layout& layout, Owner of, HX_U16 owner, Sectors size) {
    Activity migration;
    migration.kind = ActivityKind::kMigration;
    migration.of = of;
    migration.owner = owner;
    migration.level = layout.level;
    migration.legs = layout.legs;
    migration.width = layout.Width();
    migration.stripe_kib = layout.stripe_kib;
    migration.size = size;
    return migration;
}

void CutTarget(Adapter& adapter, HX_U16 disk, Sectors start, Sectors sectors, HX_U16 virtual_disk,
               std::size_t position) {
    Cut(adapter, disk, start, sectors, virtual_disk, static_cast<HX_U8>(position)).target = true;
}

// ---- Virtual disks without a disk group ----

// A virtual disk's migration before it starts.
struct Move {
    Layout layout;
    std::vector<HX_U16> old;  // its present disks, by position
    Sectors old_block = 0;
    Sectors block = 0;
    Sectors size = 0;
};

Status CheckMovable(const Adapter& adapter, const VirtualDisk* virtual_disk) {
    if (virtual_disk == nullptr) return Status::kNoVirtualDisk;
    if (virtual_disk->foreign) return Status::kWrongState;
    if (virtual_disk->group != kNoId) return Status::kOnDiskGroup;
    if (IsBusy(adapter, *virtual_disk)) return Status::kBusy;
    if (StateOf(adapter, *virtual_disk) != State::kOptimal) return Status::kWrongState;
    return Status::kSuccess;
}

// The largest size that each block can have: that of the blocks that stay, or more where every disk
// has that much free besides.
Sectors LongestBlock(const Adapter& adapter, const Move& move) {
    Sectors on_all = kNoLimit;
    Sectors on_others = kNoLimit;
    for (std::size_t i = 0; i < move.layout.disks.size(); ++i) {
        const Block* const longest = LongestFree(adapter, move.layout.disks[i]);
        const Sectors free = longest == nullptr ? 0 : longest->sectors;
        on_all = std::min(on_all, free);
        if (!IsKept(move.layout, move.old, i)) on_others = std::min(on_others, free);
    }
    return on_all > move.old_block ? on_all : std::min(move.old_block, on_others);
}

Status CheckRoom(const Adapter& adapter, const Move& move) {
    for (std::size_t i = 0; i < move.layout.disks.size(); ++i) {
        const HX_U16 disk = move.layout.disks[i];
        if (IsKept(move.layout, move.old, i) && move.block <= move.old_block) {
            const bool tail = move.block < move.old_block;
            if (tail && !HasRoomFor(adapter, disk, 1)) return Status::kTooManyBlocks;
            continue;
        }
        const Sectors start = FirstFree(adapter, disk, move.block)->start;
        const Status status = CheckCut(adapter, disk, start, move.block);
        if (status != Status::kSuccess) return status;
    }
    return Status::kSuccess;
}

bool IsAsItWas(const VirtualDisk& virtual_disk, const Move& move) {
    return move.layout.level == virtual_disk.level && move.layout.legs == virtual_disk.legs &&
           move.layout.stripe_kib == virtual_disk.stripe_kib && move.layout.disks == move.old &&
           move.size == virtual_disk.size;
}

Status LayOut(const Adapter& adapter, const VirtualDisk& virtual_disk, const Create_LD_Param& param,
              Move& move) {
    if (param.HDCount > HX_MAX_HDS) return Status::kBadDiskCount;
    Wish wish{ToCode<Level>(param.RaidMode), param.SubLDCount, param.StripeBlockSize,
              std::span(param.HDIDs, param.HDCount), adapter.info.MaxPDPerVD};
    // A value that the caller leaves out stays unchanged.
    if (wish.stripe_kib == 0) wish.stripe_kib = virtual_disk.stripe_kib;
    if (wish.legs == 0 && wish.level == virtual_disk.level) wish.legs = virtual_disk.legs;
    if (const Status status = MakeLayout(adapter, wish, move.layout); status != Status::kSuccess) {
        return status;
    }
    move.old = DisksOf(adapter, Owner::kVirtualDisk, virtual_disk.id);
    move.old_block = BlockOf(adapter, virtual_disk.id, 0)->sectors;
    for (const HX_U16 disk : move.layout.disks) {
        if (std::ranges::count(move.old, disk) != 0) continue;
        const Status status = CheckSharedDisk(adapter, disk);
        if (status != Status::kSuccess) return status;
    }
    move.layout.disks = Arrange(move.layout.disks, move.old, param.SpecifiedBlkSeq != 0);
    return Status::kSuccess;
}

// The size that a caller wants; not given when the caller asks for the largest that fits. Not a
// std::optional: compilers read the value of an empty optional before they test it, which memory
// checkers report.
struct WantedSize {
    bool is_given = false;
    Sectors sectors = 0;
};

Status PlanMove(const Adapter& adapter, const Create_LD_Param& param, WantedSize wanted,
                Move& move) {
    const VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, param.LDID);
    Status status = CheckMovable(adapter, virtual_disk);
    if (status == Status::kSuccess) status = LayOut(adapter, *virtual_disk, param, move);
    if (status != Status::kSuccess) return status;

    const Sectors longest = LongestBlock(adapter, move);
    if (move.layout.Data(longest) < virtual_disk->size) return Status::kTooSmall;
    if (wanted.sectors != 0 && wanted.sectors < virtual_disk->size) return Status::kTooSmall;
    const bool stays = wanted.is_given && wanted.sectors <= virtual_disk->size;
    const Sectors more = stays ? 0 : wanted.sectors;
    Sectors chosen = 0;
    status = ChooseSize(move.layout, longest, more, param.RoundingScheme, chosen);
    // Rounding never shrinks the present size.
    if (status == Status::kBadRounding || (status != Status::kSuccess && more != 0)) return status;
    move.size = stays ? virtual_disk->size : std::max(chosen, virtual_disk->size);
    move.block = move.layout.Block(move.size);
    if (wanted.is_given && IsAsItWas(*virtual_disk, move)) return Status::kNoChange;
    return CheckRoom(adapter, move);
}

// Makes the disks that serve the positions their homes: a spare that had stepped in stays there.
void SettleDown(Adapter& adapter, Owner of, HX_U16 owner) {
    for (Home& home : adapter.homes) {
        if (home.of != of || home.owner != owner) continue;
        home.home = home.disk;
        if (Disk* const disk = Find(adapter.disks, home.disk)) {
            disk->spare_before = Spare::kNone;
            disk->spare_group_before = kNoId;
        }
    }
}

// ---- Disk groups ----

Status CheckMovable(const Adapter& adapter, const DiskGroup& group) {
    if (IsBusy(adapter, group)) return Status::kBusy;
    if (StateOf(adapter, group) != State::kOptimal) return Status::kWrongState;
    return Status::kSuccess;
}

Status LayOut(const Adapter& adapter, const DiskGroup& group, const CreateOrModify_DG_Param& param,
              Layout& layout) {
    if (param.BlockSize != 0 && param.BlockSize != kSectorSize) return Status::kBadSectorSize;
    if (param.PDCount > HX_MAX_HDS) return Status::kBadDiskCount;
    Wish wish{ToCode<Level>(param.RaidMode), param.SubVDCount, param.StripeBlockSize,
              std::span(param.PDIDs, param.PDCount), adapter.info.MaxPDPerDG};
    if (wish.stripe_kib == 0) wish.stripe_kib = group.stripe_kib;
    if (wish.legs == 0 && wish.level == group.level) wish.legs = group.legs;
    if (const Status status = MakeLayout(adapter, wish, layout); status != Status::kSuccess)
        return status;
    const std::vector<HX_U16> old = DisksOf(adapter, Owner::kDiskGroup, group.id);
    for (const HX_U16 disk : layout.disks) {
        if (std::ranges::count(old, disk) != 0) continue;
        if (const Status status = CheckWholeDisk(adapter, disk); status != Status::kSuccess)
            return status;
    }
    layout.disks = Arrange(layout.disks, old, false);
    return Status::kSuccess;
}

Sectors SizeOfMembers(const Adapter& adapter, const DiskGroup& group) {
    Sectors size = 0;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (each.group == group.id) size += each.size;
    }
    return size;
}

// Cuts the targets of one virtual disk of the group: on the new disks at its present start sector,
// or, when that does not fit, on all disks at another one.
Status CutTargets(Adapter& adapter, const Layout& layout, std::span<const HX_U16> old,
                  const VirtualDisk& virtual_disk) {
    Layout own = layout;
    own.stripe_kib = virtual_disk.stripe_kib;
    const Sectors sectors = own.Block(virtual_disk.size);
    const Block& first = *BlockOf(adapter, virtual_disk.id, 0);
    Sectors start = first.start;
    bool in_place = sectors <= first.sectors;
    for (std::size_t i = 0; in_place && i < own.disks.size(); ++i) {
        if (IsKept(own, old, i)) continue;
        in_place = CheckCut(adapter, own.disks[i], start, sectors) != Status::kNoSpace;
    }
    if (!in_place) {
        const std::vector<Run> runs = CommonFree(adapter, own.disks);
        const auto run =
            std::ranges::find_if(runs, [&](const Run& each) { return each.sectors >= sectors; });
        if (run == runs.end()) return Status::kNoSpace;
        start = run->start;
    }
    for (std::size_t i = 0; i < own.disks.size(); ++i) {
        if (in_place && IsKept(own, old, i)) continue;
        const Status status = CheckCut(adapter, own.disks[i], start, sectors);
        if (status != Status::kSuccess) return status;
        CutTarget(adapter, own.disks[i], start, sectors, virtual_disk.id, i);
    }
    return Status::kSuccess;
}

void TakeForm(Adapter& adapter, DiskGroup& group, const Layout& layout) {
    group.level = layout.level;
    group.legs = layout.legs;
    group.width = layout.Width();
    group.stripe_kib = layout.stripe_kib;
    SetHomes(adapter, Owner::kDiskGroup, group.id, layout.disks);
}

// Starts the migration. On refusal `adapter` may be half changed: the caller discards it.
Status MoveGroup(Adapter& adapter, Time now, CreateOrModify_DG_Param& param) {
    DiskGroup* const group = Find(adapter.disk_groups, param.DGID);
    if (group == nullptr) return Status::kNoDiskGroup;
    Status status = CheckMovable(adapter, *group);
    Layout layout;
    if (status == Status::kSuccess) status = LayOut(adapter, *group, param, layout);
    if (status != Status::kSuccess) return status;
    const Sectors space = ManagedSpace(adapter, layout);
    if (space == 0) return Status::kNoSpace;
    if (space < SizeOfMembers(adapter, *group)) return Status::kTooSmall;

    const std::vector<HX_U16> old = DisksOf(adapter, Owner::kDiskGroup, group->id);
    std::vector<VirtualDisk> members;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (each.group == group->id) members.push_back(each);
    }
    for (const HX_U16 disk : layout.disks) SetWriteCache(adapter, now, disk, group->write_cache);
    if (members.empty()) {
        param.Size.value = space;
        TakeForm(adapter, *group, layout);
        return Status::kSuccess;
    }
    // In order of their start sectors, so that as many as possible keep their places.
    std::ranges::sort(members, {},
                      [&](const VirtualDisk& each) { return BlockOf(adapter, each.id, 0)->start; });
    Activity migration = MigrationTo(layout, Owner::kDiskGroup, group->id, space);
    for (const VirtualDisk& each : members) {
        migration.total +=
            std::max(BlockOf(adapter, each.id, 0)->sectors, BlockAfter(migration, each));
        status = CutTargets(adapter, layout, old, each);
        if (status != Status::kSuccess) return status;
    }
    SettleDown(adapter, Owner::kDiskGroup, group->id);
    Start(adapter, now, migration);
    const bool room = std::ranges::all_of(
        layout.disks, [&](HX_U16 disk) { return HasRoomFor(adapter, disk, 0); });
    if (!room) return Status::kTooManyBlocks;
    param.Size.value = space;
    return Status::kSuccess;
}

bool IsAsItWas(const Adapter& adapter, const CreateOrModify_DG_Param& param) {
    const DiskGroup* const group = Find(adapter.disk_groups, param.DGID);
    Layout layout;
    if (group == nullptr || LayOut(adapter, *group, param, layout) != Status::kSuccess)
        return false;
    return layout.level == group->level && layout.legs == group->legs &&
           layout.stripe_kib == group->stripe_kib &&
           layout.disks == DisksOf(adapter, Owner::kDiskGroup, group->id);
}

// ---- Ends ----

// Replaces the old blocks of a virtual disk by its targets and frees the sectors left over.
void TakePlaces(Adapter& adapter, VirtualDisk& virtual_disk, const Activity& migration) {
    const Sectors sectors = BlockAfter(migration, virtual_disk);
    std::vector<HX_U16> gone;
    std::vector<HX_U16> kept;
    for (Block& block : adapter.blocks) {
        if (block.virtual_disk != virtual_disk.id || block.target) continue;
        const bool stays = block.position < migration.width && block.sectors >= sectors &&
                           BlockOf(adapter, virtual_disk.id, block.position, true) == nullptr;
        (stays ? kept : gone).push_back(block.id);
    }
    for (const HX_U16 block : gone) Release(adapter, block);
    for (const HX_U16 block : kept) Resize(adapter, block, sectors);
    for (Block& block : adapter.blocks) {
        if (block.virtual_disk == virtual_disk.id) block.target = false;
    }
    virtual_disk.level = migration.level;
    virtual_disk.legs = migration.legs;
    virtual_disk.width = migration.width;
    if (migration.of != Owner::kVirtualDisk) return;
    virtual_disk.stripe_kib = migration.stripe_kib;
    virtual_disk.size = migration.size;
}

// Sets the Home rows after a migration. A position that is served by the same disk as before keeps
// its home: that disk may be a spare that has stepped in.
void FindHomes(Adapter& adapter, const Activity& migration) {
    std::vector<HX_U16> disks(migration.width, kNoId);
    for (const Block& block : adapter.blocks) {
        const VirtualDisk* const owner = Find(adapter.virtual_disks, block.virtual_disk);
        if (owner != nullptr && Moves(migration, *owner)) disks[block.position] = block.disk;
    }
    std::vector<Home> before;
    for (const Home& home : adapter.homes) {
        if (home.of == migration.of && home.owner == migration.owner) before.push_back(home);
    }
    SetHomes(adapter, migration.of, migration.owner, disks);
    for (const Home& old : before) {
        Home* const home = HomeOf(adapter, old.of, old.owner, old.position);
        if (home != nullptr && (home->disk == old.disk || home->disk == kNoId)) {
            home->home = old.home;
        }
    }
}

}  // namespace

Status StartMigration(Adapter& adapter, Time now, Create_LD_Param& param) {
    Move move;
    const Status status = PlanMove(adapter, param, {true, param.Size.value}, move);
    if (status != Status::kSuccess) return status;
    for (std::size_t i = 0; i < move.layout.disks.size(); ++i) {
        if (IsKept(move.layout, move.old, i) && move.block <= move.old_block) continue;
        const HX_U16 disk = move.layout.disks[i];
        const Sectors start = FirstFree(adapter, disk, move.block)->start;
        CutTarget(adapter, disk, start, move.block, param.LDID, i);
    }
    SettleDown(adapter, Owner::kVirtualDisk, param.LDID);
    Activity migration = MigrationTo(move.layout, Owner::kVirtualDisk, param.LDID, move.size);
    migration.total = std::max(move.old_block, move.block);
    Start(adapter, now, migration);
    param.Size.value = move.size;
    return Status::kSuccess;
}

Status SizeMigration(const Adapter& adapter, Create_LD_Param& param) {
    Move move;
    const Status status = PlanMove(adapter, param, {}, move);
    if (status == Status::kSuccess) param.Size.value = move.size;
    return status;
}

Status StartGroupMigration(Adapter& adapter, Time now, CreateOrModify_DG_Param& param) {
    if (IsAsItWas(adapter, param)) return Status::kNoChange;
    Adapter moved = adapter;
    const Status status = MoveGroup(moved, now, param);
    if (status == Status::kSuccess) adapter = std::move(moved);
    return status;
}

Status SizeGroupMigration(const Adapter& adapter, CreateOrModify_DG_Param& param) {
    Adapter moved = adapter;
    return MoveGroup(moved, 0, param);
}

void CompleteMigration(Adapter& adapter, const Activity& migration) {
    for (VirtualDisk& each : adapter.virtual_disks) {
        if (Moves(migration, each)) TakePlaces(adapter, each, migration);
    }
    if (migration.of == Owner::kVirtualDisk) {
        FindHomes(adapter, migration);
        return;
    }
    DiskGroup* const group = Find(adapter.disk_groups, migration.owner);
    if (group == nullptr) return;
    FindHomes(adapter, migration);
    group->level = migration.level;
    group->legs = migration.legs;
    group->width = migration.width;
    group->stripe_kib = migration.stripe_kib;
}

void AbandonMigration(Adapter& adapter, const Activity& migration) {
    std::vector<HX_U16> targets;
    for (const Block& block : adapter.blocks) {
        const VirtualDisk* const owner = Find(adapter.virtual_disks, block.virtual_disk);
        if (block.target && owner != nullptr && Moves(migration, *owner)) {
            targets.push_back(block.id);
        }
    }
    for (const HX_U16 block : targets) Release(adapter, block);
}

}  // namespace hxsim
