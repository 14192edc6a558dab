// Lists of disk groups.
#include "calls/hxsim_disk_group_record.h"  // IWYU pragma: keep (List finds its Describe)
#include "calls/hxsim_list_page.h"
#include "hxraid.h"

HX_U8 HX_DG_GetInfo(HX_U8 AdapterID, DG_Info_Request* request) {
    return hxsim::List(__func__, AdapterID, request, &DG_Info_Request::dgInfo,
                       &hxsim::Adapter::disk_groups, hxcodes::Status::kNoDiskGroup);
}

HX_U8 HX_DG_GetConfig(HX_U8 AdapterID, DG_Config_Request* request) {
    return hxsim::List(__func__, AdapterID, request, &DG_Config_Request::dgConfig,
                       &hxsim::Adapter::disk_groups, hxcodes::Status::kNoDiskGroup);
}
