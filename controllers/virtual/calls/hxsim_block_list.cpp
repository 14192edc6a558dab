// The calls that list the blocks on the disks.
#include <cstddef>
#include <optional>

#include "calls/hxsim_block_record.h"
#include "calls/hxsim_disk_list.h"
#include "calls/hxsim_list_page.h"
#include "hxraid.h"
#include "model/hxsim_machine.h"

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
        hxsim::Describe(disk, roles->Of(disk), block, info);
    };
    return hxsim::List(__func__, AdapterID, request, &Info_Request::blockInfo,
                       &hxsim::Adapter::blocks, hxcodes::Status::kNoBlock, is_listed, describe);
}

HX_U8 HX_BLK_GetHDBlock(HX_U8 AdapterID, HD_Block_Info_Request* request) {
    std::optional<hxsim::BlocksByDisk> blocks;
    const auto describe = [&](const hxsim::Adapter& adapter, const hxsim::Disk& disk,
                              const hxsim::DiskRole&, hxsim::Time, HD_Block_Info& record) {
        if (!blocks) blocks.emplace(adapter);
        const auto place = static_cast<std::size_t>(&disk - adapter.disks.data());
        hxsim::Describe(disk, blocks->At(place), record);
    };
    return hxsim::ListDisks(__func__, AdapterID, request, &HD_Block_Info_Request::hdBlockInfo,
                            describe);
}
