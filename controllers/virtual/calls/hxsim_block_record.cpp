// Fills the records of blocks.
#include "calls/hxsim_block_record.h"

#include <algorithm>
#include <iterator>

#include "model/hxsim_record_bytes.h"

namespace hxsim {
namespace {

State StateOn(const Disk& disk, const Block& block) {
    if (disk.foreign) return State::kForeign;
    return IsReady(disk) ? block.state : State::kOffline;
}

HX_U16 FlagsOf(const DiskRole& role, const Block& block) {
    HX_U16 flags = 0;
    if (block.virtual_disk != kNoVirtualDisk) flags |= BlockBit::kUsed;
    if (role.of_group) flags |= BlockBit::kOfGroup;
    if (block.target) flags |= BlockBit::kTarget;
    return flags;
}

}  // namespace

void Describe(const Disk& disk, const DiskRole& role, const Block& block, Block_Info& info) {
    info.ID = block.id;
    info.HDID = block.disk;
    info.Flags = FlagsOf(role, block);
    info.LDID = block.virtual_disk;
    info.Status = NumberOf(StateOn(disk, block));
    info.BlockSize = 512;
    info.ReservedSpaceForMigration = 0;  // a migration allocates its own blocks
    info.StartLBA.value = block.start;
    info.Size.value = block.sectors;
    SetZero(info.Reserved);
}

BlocksByDisk::BlocksByDisk(const Adapter& adapter) : ids_(adapter.disks.size()) {
    for (const Block& block : adapter.blocks) {
        const Disk* const disk = Find(adapter.disks, block.disk);
        if (disk == nullptr) continue;
        std::vector<HX_U16>& ids = ids_[static_cast<std::size_t>(disk - adapter.disks.data())];
        if (ids.size() < std::size(HD_Block_Info{}.BlockIDs)) ids.push_back(block.id);
    }
}

void Describe(const Disk& disk, const std::vector<HX_U16>& blocks, HD_Block_Info& record) {
    record.ID = disk.id;
    record.Type = NumberOf(Device::kDisk);
    std::ranges::fill(record.BlockIDs, kNoId);
    std::ranges::copy(blocks, record.BlockIDs);
    SetZero(record.Reserved1, record.Reserved2);
}

}  // namespace hxsim
