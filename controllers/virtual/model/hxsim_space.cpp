// The space on the disks: allocates blocks from free runs and releases them.
#include "model/hxsim_space.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <vector>

#include "model/hxsim_migration_row.h"

namespace hxsim {
namespace {

bool IsFreeOn(const Block& block, HX_U16 disk) {
    return block.disk == disk && block.virtual_disk == kNoVirtualDisk;
}

template <class AnyAdapter>
auto FreeBlockWith(AnyAdapter& adapter, HX_U16 disk, Sectors start, Sectors sectors) {
    const auto found = std::ranges::find_if(adapter.blocks, [&](const Block& block) {
        return IsFreeOn(block, disk) && block.start <= start &&
               start + sectors <= block.start + block.sectors;
    });
    return found == adapter.blocks.end() ? nullptr : &*found;
}

void AddFree(Adapter& adapter, HX_U16 disk, Sectors start, Sectors sectors) {
    if (sectors == 0) return;
    Block block;
    block.id = FreeId(adapter.blocks);
    block.disk = disk;
    block.start = start;
    block.sectors = sectors;
    Insert(adapter.blocks, block);
}

// Frees the block: it keeps only its ID, disk and sectors.
void MakeFree(Block& block) {
    Block free;
    free.id = block.id;
    free.disk = block.disk;
    free.start = block.start;
    free.sectors = block.sectors;
    block = free;
}

// Joins adjacent free blocks of a disk; the lower ID stays.
void JoinFree(Adapter& adapter, HX_U16 disk) {
    std::vector<Block*> free;
    for (Block& block : adapter.blocks) {
        if (IsFreeOn(block, disk)) free.push_back(&block);
    }
    std::ranges::sort(free, {}, &Block::start);
    Block* last = nullptr;
    for (Block* const block : free) {
        if (last == nullptr || last->start + last->sectors != block->start) {
            last = block;
            continue;
        }
        Block* const kept = last->id < block->id ? last : block;
        Block* const gone = kept == last ? block : last;
        kept->start = last->start;
        kept->sectors = last->sectors + block->sectors;
        gone->sectors = 0;
        last = kept;
    }
    std::erase_if(adapter.blocks, [](const Block& block) { return block.sectors == 0; });
}

template <class AnyAdapter>
auto FindBlock(AnyAdapter& adapter, HX_U16 virtual_disk, HX_U8 position, bool target) {
    const auto found = std::ranges::find_if(adapter.blocks, [&](const Block& block) {
        return block.virtual_disk == virtual_disk && block.position == position &&
               block.target == target;
    });
    return found == adapter.blocks.end() ? nullptr : &*found;
}

// Free blocks that running migrations will add to the disk: the tails of blocks that stay and
// become shorter.
unsigned TailsToCome(const Adapter& adapter, HX_U16 disk) {
    unsigned tails = 0;
    for (const Activity& migration : adapter.activities) {
        if (migration.kind != ActivityKind::kMigration) continue;
        for (const Block& block : adapter.blocks) {
            if (block.disk != disk || block.target || block.position >= migration.width) continue;
            const VirtualDisk* const owner = Find(adapter.virtual_disks, block.virtual_disk);
            if (owner == nullptr || !Moves(migration, *owner)) continue;
            const bool stays = BlockOf(adapter, owner->id, block.position, true) == nullptr;
            if (stays && block.sectors > BlockAfter(migration, *owner)) ++tails;
        }
    }
    return tails;
}

}  // namespace

Sectors FreeSectors(const Adapter& adapter, HX_U16 disk) {
    Sectors free = 0;
    for (const Block& block : adapter.blocks) {
        if (IsFreeOn(block, disk)) free += block.sectors;
    }
    return free;
}

const Block* LongestFree(const Adapter& adapter, HX_U16 disk) {
    const Block* longest = nullptr;
    for (const Block& block : adapter.blocks) {
        if (!IsFreeOn(block, disk)) continue;
        if (longest == nullptr || block.sectors > longest->sectors ||
            (block.sectors == longest->sectors && block.start < longest->start)) {
            longest = &block;
        }
    }
    return longest;
}

const Block* FirstFree(const Adapter& adapter, HX_U16 disk, Sectors sectors) {
    const Block* first = nullptr;
    for (const Block& block : adapter.blocks) {
        if (!IsFreeOn(block, disk) || block.sectors < sectors) continue;
        if (first == nullptr || block.start < first->start) first = &block;
    }
    return first;
}

bool IsFullOfBlocks(const Adapter& adapter, HX_U16 disk) { return !HasRoomFor(adapter, disk, 1); }

bool HasRoomFor(const Adapter& adapter, HX_U16 disk, unsigned more) {
    const auto count = std::ranges::count(adapter.blocks, disk, &Block::disk);
    const auto all = static_cast<std::size_t>(count) + TailsToCome(adapter, disk) + more;
    return all <= adapter.info.MaxBlockPerPD;
}

Status CheckCut(const Adapter& adapter, HX_U16 disk, Sectors start, Sectors sectors) {
    const Block* const free = FreeBlockWith(adapter, disk, start, sectors);
    if (free == nullptr) return Status::kNoSpace;
    const bool before = free->start != start;
    const bool behind = free->start + free->sectors != start + sectors;
    const unsigned left = (before ? 1U : 0U) + (behind ? 1U : 0U);
    if (left != 0 && !HasRoomFor(adapter, disk, left)) return Status::kTooManyBlocks;
    return Status::kSuccess;
}

void Resize(Adapter& adapter, HX_U16 block, Sectors sectors) {
    Block& found = *Find(adapter.blocks, block);
    if (sectors > found.sectors) {
        const Sectors more = sectors - found.sectors;
        const HX_U16 tail =
            Cut(adapter, found.disk, found.start + found.sectors, more, found.virtual_disk, 0).id;
        std::erase_if(adapter.blocks, [&](const Block& each) { return each.id == tail; });
        Find(adapter.blocks, block)->sectors = sectors;
    } else if (sectors < found.sectors) {
        const HX_U16 disk = found.disk;
        const Sectors end = found.start + sectors;
        const Sectors less = found.sectors - sectors;
        found.sectors = sectors;
        AddFree(adapter, disk, end, less);
        JoinFree(adapter, disk);
    }
}

Block& Cut(Adapter& adapter, HX_U16 disk, Sectors start, Sectors sectors, HX_U16 virtual_disk,
           HX_U8 position) {
    Block* const free = FreeBlockWith(adapter, disk, start, sectors);
    // The caller must have found the space before; the exception undoes a call that has not.
    if (free == nullptr || sectors == 0) throw std::logic_error("cut where nothing is free");
    const HX_U16 id = free->id;
    const Sectors before = free->start;
    const Sectors end = free->start + free->sectors;
    free->virtual_disk = virtual_disk;
    free->position = position;
    free->start = start;
    free->sectors = sectors;
    AddFree(adapter, disk, before, start - before);
    AddFree(adapter, disk, start + sectors, end - start - sectors);
    return *Find(adapter.blocks, id);
}

void Release(Adapter& adapter, HX_U16 block) {
    Block* const found = Find(adapter.blocks, block);
    if (found == nullptr) return;
    const HX_U16 disk = found->disk;
    MakeFree(*found);
    JoinFree(adapter, disk);
}

void ReleaseAll(Adapter& adapter, HX_U16 virtual_disk) {
    if (virtual_disk == kNoVirtualDisk) return;
    std::vector<HX_U16> disks;
    for (Block& block : adapter.blocks) {
        if (block.virtual_disk != virtual_disk) continue;
        disks.push_back(block.disk);
        MakeFree(block);
    }
    for (const HX_U16 disk : disks) JoinFree(adapter, disk);
}

void ResetDisk(Adapter& adapter, HX_U16 disk) {
    std::erase_if(adapter.blocks, [&](const Block& block) { return block.disk == disk; });
    if (const Disk* const found = Find(adapter.disks, disk)) {
        AddFree(adapter, disk, 0, UsableSectors(*found));
    }
}

Block* BlockOf(Adapter& adapter, HX_U16 virtual_disk, HX_U8 position, bool target) {
    return FindBlock(adapter, virtual_disk, position, target);
}

const Block* BlockOf(const Adapter& adapter, HX_U16 virtual_disk, HX_U8 position, bool target) {
    return FindBlock(adapter, virtual_disk, position, target);
}

const Block* AnyBlockOf(const Adapter& adapter, HX_U16 virtual_disk) {
    const auto found = std::ranges::find_if(adapter.blocks, [&](const Block& block) {
        return block.virtual_disk == virtual_disk && !block.target;
    });
    return found == adapter.blocks.end() ? nullptr : &*found;
}

bool CarriesBlocks(const Adapter& adapter, HX_U16 disk) {
    return std::ranges::any_of(adapter.blocks, [&](const Block& block) {
        return block.disk == disk && block.virtual_disk != kNoVirtualDisk;
    });
}

}  // namespace hxsim
