// The contents of each paged reply: the rows of its items, their writer, and the name of their
// elements.
#pragma once

#include "xml_rapi_record_rows.h"
#include "xml_rapi_records.h"

/// The contents of a paged reply: the rows of an item, the writers of items and of whole replies,
/// and the items' element name.
template <const auto& kItem, auto item_writer, auto reply_writer>
struct PagedReply {
    using Item = RecordType<kItem>;
    static constexpr const auto& kRows = kItem;
    static constexpr auto WriteItems = item_writer;
    static constexpr auto WriteReply = reply_writer;

    const char* name;
};

inline constexpr PagedReply<kPM_Info, XML_RA_PM_Info, XML_RA_PM_Info_Request> kPM_Info_Reply{
    "PM_Info"};
inline constexpr PagedReply<kHD_Config, XML_RA_HD_Config, XML_RA_HD_Config_Request>
    kHD_Config_Reply{"Config"};
inline constexpr PagedReply<kHD_SMART_Status, XML_RA_HD_SMART_Status,
                            XML_RA_HD_Smart_Status_Request>
    kHD_Smart_Status_Reply{"HD_SMART_Status"};
inline constexpr PagedReply<kHD_RAID_Status, XML_RA_HD_RAID_Status, XML_RA_HD_RAID_Status_Request>
    kHD_RAID_Status_Reply{"Status"};
inline constexpr PagedReply<kLD_Status, XML_RA_LD_Status, XML_RA_LD_Status_Request>
    kLD_Status_Reply{"Status"};
inline constexpr PagedReply<kLD_Config, XML_RA_LD_Config, XML_RA_LD_Config_Request>
    kLD_Config_Reply{"LDConfig"};
inline constexpr PagedReply<kDG_Config, XML_RA_DG_Config, XML_RA_DG_Config_Request>
    kDG_Config_Reply{"DG_Config"};
inline constexpr PagedReply<kHD_Info, XML_RA_HD_Info, XML_RA_HD_Info_Request> kHD_Info_Reply{
    "HD_Info"};
inline constexpr PagedReply<kHD_BGA_Status, XML_RA_HD_BGA_Status, XML_RA_HD_BGA_Status_Request>
    kHD_BGA_Status_Reply{"HD_BGA_Status"};
// Free space is listed under the same element name as disks.
inline constexpr PagedReply<kHD_FreeSpaceInfo, XML_RA_HD_FreeSpaceInfo,
                            XML_RA_HD_FreeSpaceInfo_Request>
    kHD_FreeSpaceInfo_Reply{"HD_Info"};
inline constexpr PagedReply<kHD_Block_Info, XML_RA_HD_Block_Info, XML_RA_HD_Block_Info_Request>
    kHD_Block_Info_Reply{"Info"};
inline constexpr PagedReply<kExp_Info, XML_RA_Exp_Info, XML_RA_Exp_Info_Request> kExp_Info_Reply{
    "ExpanderInfo"};
inline constexpr PagedReply<kBlock_Info, XML_RA_Block_Info, XML_RA_Block_Info_Request>
    kBlock_Info_Reply{"blockInfo"};
inline constexpr PagedReply<kLD_Info, XML_RA_LD_Info, XML_RA_LD_Info_Request> kLD_Info_Reply{
    "LDInfo"};
inline constexpr PagedReply<kEnclosure_Info, XML_RA_Enclosure_Info,
                            XML_RA_ENC_Enclosure_Info_Request>
    kENC_Enclosure_Info_Reply{"Enclosure_Info"};
inline constexpr PagedReply<kDG_Info, XML_RA_DG_Info, XML_RA_DG_Info_Request> kDG_Info_Reply{
    "DG_Info"};

/// Writes each of `count` replies: its header, and as many items as the header counts. The next
/// reply begins behind them. Returns 1.
template <const auto& kReply>
int WriteReplies(XMLWR_Doc* doc, RequestHeader* replies, HX_U32 count) {
    using Item = typename std::remove_cvref_t<decltype(kReply)>::Item;
    for (HX_U32 i = 0; i < count; ++i) {
        auto* const items = reinterpret_cast<Item*>(replies + 1);
        XML_RA_RequestHeader_Entity_Info(doc, "RequestHeader", replies, 1);
        kReply.WriteItems(doc, kReply.name, items, replies->numReturned);
        replies = reinterpret_cast<RequestHeader*>(items + replies->numReturned);
    }
    return 1;
}
