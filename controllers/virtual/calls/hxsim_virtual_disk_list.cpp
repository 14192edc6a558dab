// The calls that list virtual disks and their status.
#include "calls/hxsim_list_page.h"
#include "calls/hxsim_session.h"
#include "calls/hxsim_virtual_disk_record.h"
#include "hxraid.h"
#include "incidents/hxsim_hostile_answer.h"

HX_U8 HX_LD_GetInfo(HX_U8 AdapterID, LD_Info_Request* request) {
    hxsim::BlocksByPosition blocks;
    const auto describe = [&](const hxsim::Adapter& adapter, const hxsim::VirtualDisk& virtual_disk,
                              hxsim::Time, LD_Info& info) {
        hxsim::Describe(adapter, virtual_disk, blocks, info);
    };
    return hxsim::List(__func__, AdapterID, request, &LD_Info_Request::ldInfo,
                       &hxsim::Adapter::virtual_disks, hxcodes::Status::kNoVirtualDisk, describe);
}

HX_U8 HX_LD_GetStatus(HX_U8 AdapterID, LD_Status_Request* request) {
    return hxsim::List(__func__, AdapterID, request, &LD_Status_Request::ldStatus,
                       &hxsim::Adapter::virtual_disks, hxcodes::Status::kNoVirtualDisk);
}

HX_U8 HX_LD_GetConfig(HX_U8 AdapterID, LD_Config_Request* request) {
    return hxsim::List(__func__, AdapterID, request, &LD_Config_Request::ldConfig,
                       &hxsim::Adapter::virtual_disks, hxcodes::Status::kNoVirtualDisk);
}

HX_U8 HX_LD_GetTargetLDInfo(HX_U8 AdapterID, HX_U16 LD_ID, LD_Info* info) {
    return hxsim::Look(
        __func__, AdapterID, [&](const hxsim::Adapter& adapter, hxsim::Time) -> hxcodes::Status {
            if (info == nullptr) return hxcodes::Status::kNullAddress;
            const auto* const virtual_disk = hxsim::Find(adapter.virtual_disks, LD_ID);
            if (virtual_disk == nullptr) return hxcodes::Status::kNoVirtualDisk;
            hxsim::BlocksByPosition blocks;
            hxsim::Describe(adapter, *virtual_disk, blocks, *info);
            if (hxsim::IsHostile()) hxsim::MakeRecordHostile(info, sizeof *info);
            return hxcodes::Status::kSuccess;
        });
}
