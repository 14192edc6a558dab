// The blocks that the disks are cut into.
#include "hxraid.h"
#include "hxraid_codes.h"
#include "hxsim_disk.h"
#include "hxsim_machine.h"
#include "hxsim_page.h"

namespace hxsim {
namespace {

void DescribeBlock(HX_U8 adapter, const Block& block, Block_Info& info) {
    const Disk& disk = *Find(adapter, kDisks, block.disk);
    info.ID = block.id;
    info.HDID = block.disk;
    if (block.virtual_disk != kNoVirtualDisk) info.Flags |= HXSIM_BLOCK_USED;
    if (PartOf(adapter, disk).group != nullptr) info.Flags |= HXSIM_BLOCK_OF_GROUP;
    info.LDID = block.virtual_disk;
    info.Status = HXSIM_STATE_OPTIMAL;
    info.BlockSize = 512;
    info.StartLBA.value = block.start;
    info.Size.value = block.sectors;
}

void DescribeBlocksOf(HX_U8 adapter, const Disk& disk, HD_Block_Info& blocks) {
    blocks.ID = disk.id;
    blocks.Type = HXSIM_DEVICE_DISK;
    std::ranges::fill(blocks.BlockIDs, kNoId);
    HX_U16* id = blocks.BlockIDs;
    for (const Block& block : MachineOf(adapter).blocks) {
        if (block.disk == disk.id) *id++ = block.id;
    }
}

}  // namespace
}  // namespace hxsim

HX_U8 HX_BLK_GetInfo(HX_U8 AdapterID, Info_Request* request) {
    return hxsim::List(AdapterID, request, &Info_Request::blockInfo, hxsim::kBlocks,
                       hxsim::DescribeBlock);
}

HX_U8 HX_BLK_GetHDBlock(HX_U8 AdapterID, HD_Block_Info_Request* request) {
    return hxsim::List(AdapterID, request, &HD_Block_Info_Request::hdBlockInfo, hxsim::kDisks,
                       hxsim::DescribeBlocksOf);
}
