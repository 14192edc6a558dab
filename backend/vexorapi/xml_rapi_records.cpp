// The record writers, each one line over its record's rows, and the writers of paged replies.
#include "xml_rapi_records.h"

#include "xml_rapi_elements.h"
#include "xml_rapi_record_rows.h"
#include "xml_rapi_reply_rows.h"

int XML_RA_RequestHeader_Entity_Info(XMLWR_Doc* doc, const char* elmt, const RequestHeader* records,
                                     HX_U32 count) {
    return WriteRecords<kRequestHeader_Entity_Info>(doc, elmt, records, count);
}

int XML_RA_Link_Endpoint_Info(XMLWR_Doc* doc, const char* elmt, const Link_Endpoint* records,
                              HX_U32 count) {
    return WriteRecords<kLink_Endpoint_Info>(doc, elmt, records, count);
}

int XML_RA_Link_Entity_Info(XMLWR_Doc* doc, const char* elmt, const Link_Entity* records,
                            HX_U32 count) {
    return WriteRecords<kLink_Entity_Info>(doc, elmt, records, count);
}

int XML_RA_PM_Info(XMLWR_Doc* doc, const char* elmt, const PM_Info* records, HX_U32 count) {
    return WriteRecords<kPM_Info>(doc, elmt, records, count);
}

int XML_RA_HD_Config(XMLWR_Doc* doc, const char* elmt, const HD_Config* records, HX_U32 count) {
    return WriteRecords<kHD_Config>(doc, elmt, records, count);
}

int XML_RA_HD_SMART_Status(XMLWR_Doc* doc, const char* elmt, const HD_SMART_Status* records,
                           HX_U32 count) {
    return WriteRecords<kHD_SMART_Status>(doc, elmt, records, count);
}

int XML_RA_HD_RCT_Records(XMLWR_Doc* doc, const char* elmt, const RCT_Record* records,
                          HX_U32 count) {
    return WriteRecords<kHD_RCT_Records>(doc, elmt, records, count);
}

int XML_RA_HD_RAID_Status(XMLWR_Doc* doc, const char* elmt, const HD_RAID_Status* records,
                          HX_U32 count) {
    return WriteRecords<kHD_RAID_Status>(doc, elmt, records, count);
}

int XML_RA_Create_LD_Param(XMLWR_Doc* doc, const char* elmt, const Create_LD_Param* records,
                           HX_U32 count) {
    return WriteRecords<kCreate_LD_Param>(doc, elmt, records, count);
}

int XML_RA_LD_Status(XMLWR_Doc* doc, const char* elmt, const LD_Status* records, HX_U32 count) {
    return WriteRecords<kLD_Status>(doc, elmt, records, count);
}

int XML_RA_LD_Config(XMLWR_Doc* doc, const char* elmt, const LD_Config* records, HX_U32 count) {
    return WriteRecords<kLD_Config>(doc, elmt, records, count);
}

int XML_RA_Version_Info(XMLWR_Doc* doc, const char* elmt, const Version_Info* records,
                        HX_U32 count) {
    return WriteRecords<kVersion_Info>(doc, elmt, records, count);
}

int XML_RA_Version_Info_CIM(XMLWR_Doc* doc, const char* elmt, const Version_Info_CIM* records,
                            HX_U32 count) {
    return WriteRecords<kVersion_Info_CIM>(doc, elmt, records, count);
}

int XML_RA_Version_Info_BIOS(XMLWR_Doc* doc, const char* elmt, const VX_BIOS_Version* records,
                             HX_U32 count) {
    return WriteRecords<kVersion_Info_BIOS>(doc, elmt, records, count);
}

int XML_RA_Adapter_Info(XMLWR_Doc* doc, const char* elmt, const Adapter_Info* records,
                        HX_U32 count) {
    return WriteRecords<kAdapter_Info>(doc, elmt, records, count);
}

int XML_RA_DG_Config(XMLWR_Doc* doc, const char* elmt, const DG_Config* records, HX_U32 count) {
    return WriteRecords<kDG_Config>(doc, elmt, records, count);
}

int XML_RA_Adapter_Config_V2(XMLWR_Doc* doc, const char* elmt, const Adapter_Config_V2* records,
                             HX_U32 count) {
    return WriteRecords<kAdapter_Config_V2>(doc, elmt, records, count);
}

int XML_RA_BBU_GetInfo(XMLWR_Doc* doc, const char* elmt, const BBU_Info* records, HX_U32 count) {
    return WriteRecords<kBBU_GetInfo>(doc, elmt, records, count);
}

int XML_RA_Enclosure_Info(XMLWR_Doc* doc, const char* elmt, const Enclosure_Info* records,
                          HX_U32 count) {
    return WriteRecords<kEnclosure_Info>(doc, elmt, records, count);
}

int XML_RA_ENC_ElementInfo(XMLWR_Doc* doc, const char* elmt, const EncElementType_Info* records,
                           HX_U32 count) {
    return WriteRecords<kENC_ElementInfo>(doc, elmt, records, count);
}

int XML_RA_ENC_ElementConfig(XMLWR_Doc* doc, const char* elmt, const EncElement_Config* records,
                             HX_U32 count) {
    return WriteRecords<kENC_ElementConfig>(doc, elmt, records, count);
}

int XML_RA_HD_BGA_Status(XMLWR_Doc* doc, const char* elmt, const HD_BGA_Status* records,
                         HX_U32 count) {
    return WriteRecords<kHD_BGA_Status>(doc, elmt, records, count);
}

int XML_RA_HD_MBR_Info(XMLWR_Doc* doc, const char* elmt, const HD_MBR_Info* records, HX_U32 count) {
    return WriteRecords<kHD_MBR_Info>(doc, elmt, records, count);
}

int XML_RA_HD_FreeSpaceInfo(XMLWR_Doc* doc, const char* elmt, const HD_FreeSpaceInfo* records,
                            HX_U32 count) {
    return WriteRecords<kHD_FreeSpaceInfo>(doc, elmt, records, count);
}

int XML_RA_HD_Block_Info(XMLWR_Doc* doc, const char* elmt, const HD_Block_Info* records,
                         HX_U32 count) {
    return WriteRecords<kHD_Block_Info>(doc, elmt, records, count);
}

int XML_RA_Exp_Info(XMLWR_Doc* doc, const char* elmt, const Exp_Info* records, HX_U32 count) {
    return WriteRecords<kExp_Info>(doc, elmt, records, count);
}

int XML_RA_Block_Info(XMLWR_Doc* doc, const char* elmt, const Block_Info* records, HX_U32 count) {
    return WriteRecords<kBlock_Info>(doc, elmt, records, count);
}

int XML_RA_LD_Info(XMLWR_Doc* doc, const char* elmt, const LD_Info* records, HX_U32 count) {
    return WriteRecords<kLD_Info>(doc, elmt, records, count);
}

int XML_RA_DG_Info(XMLWR_Doc* doc, const char* elmt, const DG_Info* records, HX_U32 count) {
    return WriteRecords<kDG_Info>(doc, elmt, records, count);
}

int XML_RA_Create_DG_Param(XMLWR_Doc* doc, const char* elmt, const CreateOrModify_DG_Param* records,
                           HX_U32 count) {
    return WriteRecords<kCreate_DG_Param>(doc, elmt, records, count);
}

int XML_RA_DG_Size(XMLWR_Doc* doc, const char* elmt, const CreateOrModify_DG_Param* records,
                   HX_U32 count) {
    return WriteRecords<kDG_Size>(doc, elmt, records, count);
}

// The ConnectionType and DeviceType of a disk for which the controller sets only HDType.
struct TypeBits {
    HX_U8 hd_type;
    HX_U8 value;
};
constexpr TypeBits kConnectionTypes[] = {{0x01, 0x05}, {0x02, 0x09}, {0x04, 0x06}};
// SCSI peripheral device types: 1 is a tape, 13 an enclosure, 5 an optical drive.
constexpr TypeBits kDeviceTypes[] = {{0x10, 1}, {0x20, 13}, {0x08, 5}};

template <std::size_t n>
void CompleteType(HX_U8& type, HX_U8 hd_type, const TypeBits (&rows)[n]) {
    if (type != 0) return;
    for (const TypeBits& row : rows) {
        if ((hd_type & row.hd_type) == 0) continue;
        type = row.value;
        return;
    }
}

int XML_RA_HD_Info(XMLWR_Doc* doc, const char* elmt, HD_Info* records, HX_U32 count) {
    for (HX_U32 i = 0; i < count; ++i) {
        CompleteType(records[i].ConnectionType, records[i].HDType, kConnectionTypes);
        CompleteType(records[i].DeviceType, records[i].HDType, kDeviceTypes);
    }
    return WriteRecords<kHD_Info>(doc, elmt, records, count);
}

int XML_RA_UserName_Value(XMLWR_Doc* doc, const char* elmt, const VX_GetUserName* values,
                          HX_U32 count) {
    for (HX_U32 i = 0; i < count; ++i) {
        WriteRowsExact<kUserName_Value>(doc, values[i]);
        XMLWR_ElmtEnd(doc, 0, elmt);
    }
    return 1;
}

int XML_RA_UserGroup_Value(XMLWR_Doc* doc, const char* elmt, const UserGroup* values,
                           HX_U32 count) {
    for (HX_U32 i = 0; i < count; ++i) {
        const char* const name = values[i] == AdminUser   ? "Administrator"
                                 : values[i] == ValidUser ? "ValidUser"
                                                          : "UnknownUser";
        XML_RA_ElmtNonArrayData(doc, "UserGroup", "string", "%s", name);
        XMLWR_ElmtEnd(doc, 0, elmt);
    }
    return 1;
}

int XML_RA_PM_Info_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies, HX_U32 count) {
    return WriteReplies<kPM_Info_Reply>(doc, replies, count);
}

int XML_RA_HD_Config_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies, HX_U32 count) {
    return WriteReplies<kHD_Config_Reply>(doc, replies, count);
}

int XML_RA_HD_Smart_Status_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies,
                                   HX_U32 count) {
    return WriteReplies<kHD_Smart_Status_Reply>(doc, replies, count);
}

int XML_RA_HD_RAID_Status_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies,
                                  HX_U32 count) {
    return WriteReplies<kHD_RAID_Status_Reply>(doc, replies, count);
}

int XML_RA_LD_Status_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies, HX_U32 count) {
    return WriteReplies<kLD_Status_Reply>(doc, replies, count);
}

int XML_RA_LD_Config_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies, HX_U32 count) {
    return WriteReplies<kLD_Config_Reply>(doc, replies, count);
}

int XML_RA_DG_Config_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies, HX_U32 count) {
    return WriteReplies<kDG_Config_Reply>(doc, replies, count);
}

int XML_RA_HD_Info_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies, HX_U32 count) {
    return WriteReplies<kHD_Info_Reply>(doc, replies, count);
}

int XML_RA_HD_BGA_Status_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies,
                                 HX_U32 count) {
    return WriteReplies<kHD_BGA_Status_Reply>(doc, replies, count);
}

int XML_RA_HD_FreeSpaceInfo_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies,
                                    HX_U32 count) {
    return WriteReplies<kHD_FreeSpaceInfo_Reply>(doc, replies, count);
}

int XML_RA_HD_Block_Info_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies,
                                 HX_U32 count) {
    return WriteReplies<kHD_Block_Info_Reply>(doc, replies, count);
}

int XML_RA_Exp_Info_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies, HX_U32 count) {
    return WriteReplies<kExp_Info_Reply>(doc, replies, count);
}

int XML_RA_Block_Info_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies, HX_U32 count) {
    return WriteReplies<kBlock_Info_Reply>(doc, replies, count);
}

int XML_RA_LD_Info_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies, HX_U32 count) {
    return WriteReplies<kLD_Info_Reply>(doc, replies, count);
}

int XML_RA_ENC_Enclosure_Info_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies,
                                      HX_U32 count) {
    return WriteReplies<kENC_Enclosure_Info_Reply>(doc, replies, count);
}

int XML_RA_DG_Info_Request(XMLWR_Doc* doc, const char*, RequestHeader* replies, HX_U32 count) {
    return WriteReplies<kDG_Info_Reply>(doc, replies, count);
}
