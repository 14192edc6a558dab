// The blocks that the disks are cut into.
#include <algorithm>
#include <iterator>
#include <optional>
#include <vector>

#include "calls/hxsim_disk_list.h"
#include "calls/hxsim_list_page.h"
#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {
namespace {

State StateOn(const Disk& disk, const Block& block) {
    if (disk.foreign) return State::kForeign;
    return IsReady(disk) ? block.state : State::kOffline;
}

void DescribeBlock(const Disk& disk, const DiskRole& role, const Block& block, Block_Info& info) {
    info.ID = block.id;
    info.HDID = block.disk;
    if (block.virtual_disk != kNoVirtualDisk) info.Flags |= BlockBit::kUsed;
    if (role.of_group) info.Flags |= BlockBit::kOfGroup;
    if (block.target) info.Flags |= BlockBit::kTarget;
    info.LDID = block.virtual_disk;
    info.Status = NumberOf(StateOn(disk, block));
    info.BlockSize = 512;
    info.StartLBA.value = block.start;
    info.Size.value = block.sectors;
}

// The blocks of every disk, in the order of the disks, found in one pass.
std::vector<HD_Block_Info> BlocksByDisk(const Adapter& adapter) {
    std::vector<HD_Block_Info> all;
    for (const Disk& disk : adapter.disks) {
        HD_Block_Info& blocks = all.emplace_back();
        blocks.ID = disk.id;
        blocks.Type = NumberOf(Device::kDisk);
        std::ranges::fill(blocks.BlockIDs, kNoId);
    }
    std::vector<std::size_t> listed(all.size());
    for (const Block& block : adapter.blocks) {
        const Disk* const disk = Find(adapter.disks, block.disk);
        if (disk == nullptr) continue;
        const auto place = static_cast<std::size_t>(disk - adapter.disks.data());
        if (listed[place] == std::size(all[place].BlockIDs)) continue;
        all[place].BlockIDs[listed[place]++] = block.id;
    }
    return all;
}

}  // namespace
}  // namespace hxsim

HX_U8 HX_BLK_GetInfo(HX_U8 AdapterID, Info_Request* request) {
    std::optional<hxsim::DiskRoles> roles;
    const auto is_listed = [&](const hxsim::Adapter& adapter, const hxsim::Block& block) {
        if (!roles) roles.emplace(adapter);
        const hxsim::Disk* const disk = hxsim::Find(adapter.disks, block.disk);
        return disk != nullptr && hxsim::IsListed(*disk, roles->Of(*disk));
    };
    const auto describe = [&](const hxsim::Adapter& adapter, const hxsim::Block& block, hxsim::Time,
                              Block_Info& info) {
        const hxsim::Disk& disk = *hxsim::Find(adapter.disks, block.disk);
        hxsim::DescribeBlock(disk, roles->Of(disk), block, info);
    };
    return hxsim::List(__func__, AdapterID, request, &Info_Request::blockInfo,
                       &hxsim::Adapter::blocks, hxcodes::Status::kNoBlock, is_listed, describe);
}

HX_U8 HX_BLK_GetHDBlock(HX_U8 AdapterID, HD_Block_Info_Request* request) {
    std::optional<std::vector<HD_Block_Info>> blocks;
    const auto describe = [&](const hxsim::Adapter& adapter, const hxsim::Disk& disk,
                              const hxsim::DiskRole&, hxsim::Time, HD_Block_Info& record) {
        if (!blocks) blocks = hxsim::BlocksByDisk(adapter);
        record = (*blocks)[static_cast<std::size_t>(&disk - adapter.disks.data())];
    };
    return hxsim::ListDisks(__func__, AdapterID, request, &HD_Block_Info_Request::hdBlockInfo,
                            describe);
}
