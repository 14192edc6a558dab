// Functions that this adapter does not support, each with its refusal.
#include <vector>

#include "calls/hxmd_list_page.h"
#include "calls/hxmd_session.h"
#include "codes/status.h"
#include "hxraid.h"

namespace hxmd {
namespace {

// There is no battery; an adapter that does not exist is refused first.
HX_U8 NoBattery(HX_U8 adapter) {
    const HX_U8 status = Check(adapter);
    return status != HX_SUCCESS ? status : hxcodes::NumberOf(hxcodes::Status::kNoBattery);
}

// Users of an array divide its space themselves, so there are no disk groups.
template <class Request, class Record>
HX_U8 NoDiskGroups(HX_U8 adapter, Request* request, Record (Request::*list)[1]) {
    return List(
        adapter, request, list, [](const View&) { return std::vector<Record>(); }, &Record::DGID,
        hxcodes::NumberOf(hxcodes::Status::kNoDiskGroup));
}

}  // namespace
}  // namespace hxmd

// ---- Disk groups ----

HX_U8 HX_DG_GetInfo(HX_U8 AdapterID, DG_Info_Request* request) {
    return hxmd::NoDiskGroups(AdapterID, request, &DG_Info_Request::dgInfo);
}

HX_U8 HX_DG_GetConfig(HX_U8 AdapterID, DG_Config_Request* request) {
    return hxmd::NoDiskGroups(AdapterID, request, &DG_Config_Request::dgConfig);
}

// ---- Battery ----

HX_U8 HX_BBU_GetInfo(HX_U8 AdapterID, BBU_Info* /*info*/) { return hxmd::NoBattery(AdapterID); }

HX_U8 HX_BBU_SetThreshold(HX_U8 AdapterID, HX_U8 /*kind*/, HX_U16 /*lower*/, HX_U16 /*upper*/) {
    return hxmd::NoBattery(AdapterID);
}

HX_U8 HX_BBU_ChangePower(HX_U8 AdapterID, HX_U8 /*action*/) { return hxmd::NoBattery(AdapterID); }

HX_U8 HX_BBU_SetStatus(HX_U8 AdapterID, HX_BOOLEAN /*status*/) {
    return hxmd::NoBattery(AdapterID);
}

// ---- Changes ----

HX_U8 HX_LocateArrayDevice(HX_U8 AdapterID, HX_U8 /*deviceType*/, HX_U16 /*deviceId*/,
                           HX_U8 /*ledStatus*/) {
    return hxmd::RefuseChange(AdapterID);
}

HX_U8 HX_PD_SetConfig(HX_U8 AdapterID, HX_U16 /*HD_ID*/, HD_Config* /*config*/) {
    return hxmd::RefuseChange(AdapterID);
}

HX_U8 HX_PD_WipeHDMDD(HX_U8 AdapterID, HX_U16 /*HD_ID*/, HX_U8 /*Force*/) {
    return hxmd::RefuseChange(AdapterID);
}

HX_U8 HX_PD_FreeHD2GlobalSpare(HX_U8 AdapterID, HX_U16 /*HD_ID*/) {
    return hxmd::RefuseChange(AdapterID);
}

HX_U8 HX_LD_SetConfig(HX_U8 AdapterID, HX_U16 /*LD_ID*/, LD_Config* /*config*/) {
    return hxmd::RefuseChange(AdapterID);
}

HX_U8 HX_LD_Import(HX_U8 AdapterID, HX_U16 /*LD_ID*/) { return hxmd::RefuseChange(AdapterID); }

HX_U8 HX_LD_StartMigration(HX_U8 AdapterID, Create_LD_Param* /*param*/) {
    return hxmd::RefuseChange(AdapterID);
}

// ---- Functions without a counterpart in MD ----

HX_U8 HX_AdapterMute(HX_U8 AdapterID) { return hxmd::NotSupported(AdapterID); }

HX_U8 HX_PD_RCT_GetCount(HX_U8 AdapterID, HX_U16 /*HD_ID*/, HX_U32* /*count*/) {
    return hxmd::NotSupported(AdapterID);
}

HX_U8 HX_PD_GetRCT(HX_U8 AdapterID, HX_U16 /*HD_ID*/, RCT_Record* /*records*/, HX_U32 /*count*/) {
    return hxmd::NotSupported(AdapterID);
}

HX_U8 HX_PD_StartMediaPatrol(HX_U8 AdapterID, HX_U16 /*HD_ID*/) {
    return hxmd::NotSupported(AdapterID);
}

HX_U8 HX_PD_HDMPCheck(HX_U8 AdapterID, HX_U16 /*HD_ID*/) { return hxmd::NotSupported(AdapterID); }

HX_U8 HX_PD_StartDataScrub(HX_U8 AdapterID, HX_U16 /*HD_ID*/) {
    return hxmd::NotSupported(AdapterID);
}

HX_U8 HX_PD_BGAControl(HX_U8 AdapterID, HX_U16 /*HD_ID*/, HX_U8 /*Action*/) {
    return hxmd::NotSupported(AdapterID);
}

HX_U8 HX_LD_StartINIT(HX_U8 AdapterID, HX_U16 /*LD_ID*/, HX_U8 /*Init_Type*/) {
    return hxmd::NotSupported(AdapterID);
}

HX_U8 HX_LD_GetMigratedLdSize(HX_U8 AdapterID, Create_LD_Param* /*param*/) {
    return hxmd::NotSupported(AdapterID);
}

HX_U8 HX_DG_SetConfig(HX_U8 AdapterID, HX_U16 /*DG_ID*/, DG_Config* /*config*/) {
    return hxmd::NotSupported(AdapterID);
}

HX_U8 HX_CreateOrModify_DG(HX_U8 AdapterID, CreateOrModify_DG_Param* /*param*/,
                           HX_U8 /*sizeOnly*/) {
    return hxmd::NotSupported(AdapterID);
}

HX_U8 HX_CreateOrModify_VD(HX_U8 AdapterID, CreateOrModify_VD_Param* /*param*/) {
    return hxmd::NotSupported(AdapterID);
}

HX_U8 HX_DG_Delete(HX_U8 AdapterID, HX_U16 /*DG_ID*/) { return hxmd::NotSupported(AdapterID); }

HX_U8 HX_DG_StartMigration(HX_U8 AdapterID, CreateOrModify_DG_Param* /*param*/) {
    return hxmd::NotSupported(AdapterID);
}

HX_U8 HX_DG_BGAControl(HX_U8 AdapterID, HX_U16 /*DG_ID*/, HX_U8 /*Actions*/) {
    return hxmd::NotSupported(AdapterID);
}

HX_U8 HX_Flash_Erase(HX_U8 AdapterID, HX_U8 /*Page*/) { return hxmd::NotSupported(AdapterID); }

HX_U8 HX_Flash_Bin(HX_U8 AdapterID, HX_U8 /*Actions*/, HX_U8 /*Type*/, Flash_Data* /*piece*/) {
    return hxmd::NotSupported(AdapterID);
}
