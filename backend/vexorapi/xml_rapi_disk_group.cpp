// Disk groups and the virtual disks on them.
#include "xml_rapi_disk_group.h"

#include "xml_rapi_paging.h"

namespace {

// HX_CreateOrModify_DG's third argument.
constexpr HX_U8 kDoIt = 0;
constexpr HX_U8 kSizeOnly = 1;

// The disk group of that number; zeroes where the controller fails without writing.
DG_Info ReadDiskGroup(HX_U8 AdapterID, HX_U16 DGID) {
    DG_Info_Request request{};
    setRequestHeader(&request.header, HX_REQUEST_BY_ID, DGID, 1);
    // The code is ignored: the controller itself refuses a group that cannot be read.
    static_cast<void>(HX_DG_GetInfo(AdapterID, &request));
    return request.dgInfo[0];
}

}  // namespace

HX_U8 HX_DG_Create(HX_U8 AdapterID, CreateOrModify_DG_Param* pParam) {
    pParam->DGID = HX_NEW_ID;
    return HX_CreateOrModify_DG(AdapterID, pParam, kDoIt);
}

HX_U8 HX_DG_GetSizeOnly(HX_U8 AdapterID, CreateOrModify_DG_Param* pParam) {
    return HX_CreateOrModify_DG(AdapterID, pParam, kSizeOnly);
}

HX_U8 HX_DG_Modify(HX_U8 AdapterID, CreateOrModify_DG_Param* pParam) {
    return HX_CreateOrModify_DG(AdapterID, pParam, kDoIt);
}

HX_U8 HX_LD_Create_OnDG(HX_U8 AdapterID, CreateOrModify_VD_Param* pParam) {
    const DG_Info group = ReadDiskGroup(AdapterID, pParam->DGID);
    pParam->VDID = HX_NEW_ID;
    pParam->RaidMode = group.RaidMode;
    pParam->NumParityDisk = group.NumParityDisk;
    pParam->BlockSize = group.BlockSize;
    pParam->SubVDCount = group.SubVDCount;
    if (pParam->StripeBlockSize == 0) pParam->StripeBlockSize = group.StripeBlockSize;
    return HX_CreateOrModify_VD(AdapterID, pParam);
}

HX_U8 HX_LD_Modify_OnDG(HX_U8 AdapterID, CreateOrModify_VD_Param* pParam) {
    return HX_CreateOrModify_VD(AdapterID, pParam);
}

void HX_DG_Set_DefaultValue(HX_U8 AdapterID, CreateOrModify_DG_Param* pParam) {
    const DG_Info group = ReadDiskGroup(AdapterID, pParam->DGID);
    pParam->BlockSize = group.BlockSize;
    pParam->StripeBlockSize = group.StripeBlockSize;
}
