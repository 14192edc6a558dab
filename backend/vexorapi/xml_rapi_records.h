// The writers of the controller library's records and of its paged replies.
#pragma once

#include "XMLWriter.h"
#include "hxraid.h"
#include "xml_rapi_flash.h"
#include "xml_rapi_user.h"

// Record writers: each writes `count` elements called `elmt`, one after the other, and returns 1.

int XML_RA_RequestHeader_Entity_Info(XMLWR_Doc* doc, const char* elmt, const RequestHeader* records,
                                     HX_U32 count);
int XML_RA_Link_Endpoint_Info(XMLWR_Doc* doc, const char* elmt, const Link_Endpoint* records,
                              HX_U32 count);
int XML_RA_Link_Entity_Info(XMLWR_Doc* doc, const char* elmt, const Link_Entity* records,
                            HX_U32 count);
int XML_RA_PM_Info(XMLWR_Doc* doc, const char* elmt, const PM_Info* records, HX_U32 count);
int XML_RA_HD_Config(XMLWR_Doc* doc, const char* elmt, const HD_Config* records, HX_U32 count);
int XML_RA_HD_SMART_Status(XMLWR_Doc* doc, const char* elmt, const HD_SMART_Status* records,
                           HX_U32 count);
int XML_RA_HD_RCT_Records(XMLWR_Doc* doc, const char* elmt, const RCT_Record* records,
                          HX_U32 count);
int XML_RA_HD_RAID_Status(XMLWR_Doc* doc, const char* elmt, const HD_RAID_Status* records,
                          HX_U32 count);
int XML_RA_Create_LD_Param(XMLWR_Doc* doc, const char* elmt, const Create_LD_Param* records,
                           HX_U32 count);
int XML_RA_LD_Status(XMLWR_Doc* doc, const char* elmt, const LD_Status* records, HX_U32 count);
int XML_RA_LD_Config(XMLWR_Doc* doc, const char* elmt, const LD_Config* records, HX_U32 count);
int XML_RA_Version_Info(XMLWR_Doc* doc, const char* elmt, const Version_Info* records,
                        HX_U32 count);
int XML_RA_Version_Info_CIM(XMLWR_Doc* doc, const char* elmt, const Version_Info_CIM* records,
                            HX_U32 count);
int XML_RA_Version_Info_BIOS(XMLWR_Doc* doc, const char* elmt, const VX_BIOS_Version* records,
                             HX_U32 count);
int XML_RA_Adapter_Info(XMLWR_Doc* doc, const char* elmt, const Adapter_Info* records,
                        HX_U32 count);
int XML_RA_DG_Config(XMLWR_Doc* doc, const char* elmt, const DG_Config* records, HX_U32 count);
int XML_RA_Adapter_Config_V2(XMLWR_Doc* doc, const char* elmt, const Adapter_Config_V2* records,
                             HX_U32 count);
int XML_RA_BBU_GetInfo(XMLWR_Doc* doc, const char* elmt, const BBU_Info* records, HX_U32 count);
int XML_RA_Enclosure_Info(XMLWR_Doc* doc, const char* elmt, const Enclosure_Info* records,
                          HX_U32 count);
int XML_RA_ENC_ElementInfo(XMLWR_Doc* doc, const char* elmt, const EncElementType_Info* records,
                           HX_U32 count);
int XML_RA_ENC_ElementConfig(XMLWR_Doc* doc, const char* elmt, const EncElement_Config* records,
                             HX_U32 count);
int XML_RA_HD_BGA_Status(XMLWR_Doc* doc, const char* elmt, const HD_BGA_Status* records,
                         HX_U32 count);
int XML_RA_HD_MBR_Info(XMLWR_Doc* doc, const char* elmt, const HD_MBR_Info* records, HX_U32 count);
int XML_RA_HD_FreeSpaceInfo(XMLWR_Doc* doc, const char* elmt, const HD_FreeSpaceInfo* records,
                            HX_U32 count);
int XML_RA_HD_Block_Info(XMLWR_Doc* doc, const char* elmt, const HD_Block_Info* records,
                         HX_U32 count);
int XML_RA_Exp_Info(XMLWR_Doc* doc, const char* elmt, const Exp_Info* records, HX_U32 count);
int XML_RA_Block_Info(XMLWR_Doc* doc, const char* elmt, const Block_Info* records, HX_U32 count);
int XML_RA_LD_Info(XMLWR_Doc* doc, const char* elmt, const LD_Info* records, HX_U32 count);
int XML_RA_DG_Info(XMLWR_Doc* doc, const char* elmt, const DG_Info* records, HX_U32 count);
int XML_RA_Create_DG_Param(XMLWR_Doc* doc, const char* elmt, const CreateOrModify_DG_Param* records,
                           HX_U32 count);
int XML_RA_DG_Size(XMLWR_Doc* doc, const char* elmt, const CreateOrModify_DG_Param* records,
                   HX_U32 count);

/// First completes ConnectionType and DeviceType in the caller's records from HDType where they are
/// 0.
int XML_RA_HD_Info(XMLWR_Doc* doc, const char* elmt, HD_Info* records, HX_U32 count);

/// Writes each user's scalars and closes the element `elmt`, which the caller has opened.
int XML_RA_UserName_Value(XMLWR_Doc* doc, const char* elmt, const VX_GetUserName* values,
                          HX_U32 count);
int XML_RA_UserGroup_Value(XMLWR_Doc* doc, const char* elmt, const UserGroup* values, HX_U32 count);

// Writers of paged replies: for each of `count` replies (a header, behind it the items that it
// counts) the header as "RequestHeader" and the items. `elmt` is not written. Each returns 1.

int XML_RA_PM_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies, HX_U32 count);
int XML_RA_HD_Config_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                             HX_U32 count);
int XML_RA_HD_Smart_Status_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                                   HX_U32 count);
int XML_RA_HD_RAID_Status_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                                  HX_U32 count);
int XML_RA_LD_Status_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                             HX_U32 count);
int XML_RA_LD_Config_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                             HX_U32 count);
int XML_RA_DG_Config_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                             HX_U32 count);
int XML_RA_HD_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies, HX_U32 count);
int XML_RA_HD_BGA_Status_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                                 HX_U32 count);
int XML_RA_HD_FreeSpaceInfo_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                                    HX_U32 count);
int XML_RA_HD_Block_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                                 HX_U32 count);
int XML_RA_Exp_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies, HX_U32 count);
int XML_RA_Block_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                              HX_U32 count);
int XML_RA_LD_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies, HX_U32 count);
int XML_RA_ENC_Enclosure_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies,
                                      HX_U32 count);
int XML_RA_DG_Info_Request(XMLWR_Doc* doc, const char* elmt, RequestHeader* replies, HX_U32 count);
