// The functions of the physical disks and their blocks: the rows of each.
#pragma once

#include "xml_rapi_function.h"
#include "xml_rapi_remap_table.h"

// HX_PD_GetHDInfo: the extended call first, the plain one where an adapter does not support it.
inline constexpr Function kHX_PD_GetHDInfo{
    "HX_PD_GetHDInfo",
    &XML_RA_FuncData::HX_PD_GetHDInfo,
    PagedParams<VX_PD_GetHDInfo>(),
    PagesBy<VX_PD_GetHDInfo>([](HX_U8 adapter, RequestHeader* header) {
        auto* const request = reinterpret_cast<HD_Info_Request*>(header);
        const HX_U8 status = HX_PD_GetHDInfo_Ext(adapter, request);
        return status == HX_SUCCESS ? status : HX_PD_GetHDInfo(adapter, request);
    }),
    StatusOnly<VX_PD_GetHDInfo>(),
    Reply<kHD_Info_Reply, VX_PD_GetHDInfo>(),
};

// HX_PD_GetHDInfo_Ext
inline constexpr Function kHX_PD_GetHDInfo_Ext{
    "HX_PD_GetHDInfo_Ext",
    &XML_RA_FuncData::HX_PD_GetHDInfo_Ext,
    PagedParams<VX_PD_GetHDInfo_Ext>(),
    Pages<HX_PD_GetHDInfo_Ext, VX_PD_GetHDInfo_Ext>(),
    StatusOnly<VX_PD_GetHDInfo_Ext>(),
    Reply<kHD_Info_Reply, VX_PD_GetHDInfo_Ext>(),
};

// HX_PD_GetExpanderInfo
inline constexpr Function kHX_PD_GetExpanderInfo{
    "HX_PD_GetExpanderInfo",
    &XML_RA_FuncData::HX_PD_GetExpanderInfo,
    PagedParams<VX_PD_GetExpanderInfo>(),
    Pages<HX_PD_GetExpanderInfo, VX_PD_GetExpanderInfo>(),
    StatusOnly<VX_PD_GetExpanderInfo>(),
    Reply<kExp_Info_Reply, VX_PD_GetExpanderInfo>(),
};

// HX_PD_GetPMInfo
inline constexpr Function kHX_PD_GetPMInfo{
    "HX_PD_GetPMInfo",
    &XML_RA_FuncData::HX_PD_GetPMInfo,
    PagedParams<VX_PD_GetPMInfo>(),
    Pages<HX_PD_GetPMInfo, VX_PD_GetPMInfo>(),
    StatusOnly<VX_PD_GetPMInfo>(),
    Reply<kPM_Info_Reply, VX_PD_GetPMInfo>(),
};

// HX_PD_GetFreeSpaceInfo
inline constexpr Function kHX_PD_GetFreeSpaceInfo{
    "HX_PD_GetFreeSpaceInfo",
    &XML_RA_FuncData::HX_PD_GetFreeSpaceInfo,
    PagedParams<VX_PD_GetFreeSpaceInfo>(),
    Pages<HX_PD_GetFreeSpaceInfo, VX_PD_GetFreeSpaceInfo>(),
    StatusOnly<VX_PD_GetFreeSpaceInfo>(),
    Reply<kHD_FreeSpaceInfo_Reply, VX_PD_GetFreeSpaceInfo>(),
};

// HX_PD_GetConfig
inline constexpr Function kHX_PD_GetConfig{
    "HX_PD_GetConfig",
    &XML_RA_FuncData::HX_PD_GetConfig,
    PagedParams<VX_PD_GetConfig>(),
    Pages<HX_PD_GetConfig, VX_PD_GetConfig>(),
    StatusOnly<VX_PD_GetConfig>(),
    Reply<kHD_Config_Reply, VX_PD_GetConfig>(),
};

// HX_PD_GetSmartStatus
inline constexpr Function kHX_PD_GetSmartStatus{
    "HX_PD_GetSmartStatus",
    &XML_RA_FuncData::HX_PD_GetSmartStatus,
    PagedParams<VX_PD_GetSmartStatus>(),
    Pages<HX_PD_GetSmartStatus, VX_PD_GetSmartStatus>(),
    StatusOnly<VX_PD_GetSmartStatus>(),
    Reply<kHD_Smart_Status_Reply, VX_PD_GetSmartStatus>(),
};

// HX_PD_GetHDRaidStatus
inline constexpr Function kHX_PD_GetHDRaidStatus{
    "HX_PD_GetHDRaidStatus",
    &XML_RA_FuncData::HX_PD_GetHDRaidStatus,
    PagedParams<VX_PD_GetHDRaidStatus>(),
    Pages<HX_PD_GetHDRaidStatus, VX_PD_GetHDRaidStatus>(),
    StatusOnly<VX_PD_GetHDRaidStatus>(),
    Reply<kHD_RAID_Status_Reply, VX_PD_GetHDRaidStatus>(),
};

// HX_PD_GetSpareInfo
inline constexpr Function kHX_PD_GetSpareInfo{
    "HX_PD_GetSpareInfo",
    &XML_RA_FuncData::HX_PD_GetSpareInfo,
    PagedParams<VX_PD_GetSpareInfo>(),
    Pages<HX_PD_GetSpareInfo, VX_PD_GetSpareInfo>(),
    StatusOnly<VX_PD_GetSpareInfo>(),
    Reply<kHD_RAID_Status_Reply, VX_PD_GetSpareInfo>(),
};

// HX_PD_GetBGAStatus
inline constexpr Function kHX_PD_GetBGAStatus{
    "HX_PD_GetBGAStatus",
    &XML_RA_FuncData::HX_PD_GetBGAStatus,
    PagedParams<VX_PD_GetBGAStatus>(),
    Pages<HX_PD_GetBGAStatus, VX_PD_GetBGAStatus>(),
    StatusOnly<VX_PD_GetBGAStatus>(),
    Reply<kHD_BGA_Status_Reply, VX_PD_GetBGAStatus>(),
};

// HX_PD_GetRCT: a window of the disk's remap table. Writes as many records as were requested.
inline constexpr Function kHX_PD_GetRCT{
    "HX_PD_GetRCT",
    &XML_RA_FuncData::HX_PD_GetRCT,
    Params{
        Param("AdapterID", &VX_PD_GetRCT::AdapterID),
        Param("HD_ID", &VX_PD_GetRCT::HD_ID),
        Param("n", &VX_PD_GetRCT::n),
        Param("s", &VX_PD_GetRCT::s),
        Param("e", &VX_PD_GetRCT::e),
    },
    ReadRemapTable,
    Result{
        Col("RetVal", kU8, &VX_PD_GetRCT::RetVal),
        Col("HD_ID", kU16, &VX_PD_GetRCT::HD_ID),
        Col("Count", kU32, &VX_PD_GetRCT::Count),
        Col("n", kU32, &VX_PD_GetRCT::n),
        Col("s", kU32, &VX_PD_GetRCT::s),
        Col("e", kU32, &VX_PD_GetRCT::e),
    },
    Records<kHD_RCT_Records, XML_RA_HD_RCT_Records>("Record", &VX_PD_GetRCT::record,
                                                    &VX_PD_GetRCT::n),
};

// HX_PD_SetConfig
inline constexpr Function kHX_PD_SetConfig{
    "HX_PD_SetConfig",
    &XML_RA_FuncData::HX_PD_SetConfig,
    Params{
        Param("AdapterID", &VX_PD_SetConfig::AdapterID),
        Param("HD_ID", &VX_PD_SetConfig::HD_ID),
        Within(&VX_PD_SetConfig::Config,
               Params{
                   Without(&HD_Config::Reserved),
                   Param("WriteCacheOn", &HD_Config::WriteCacheOn),
                   Param("SMARTOn", &HD_Config::SMARTOn),
                   Param("Online", &HD_Config::Online),
                   Param("DriveSpeed", &HD_Config::DriveSpeed),
                   Param("HDID", &HD_Config::HDID),
               }),
    },
    Call<HX_PD_SetConfig>(&VX_PD_SetConfig::AdapterID, &VX_PD_SetConfig::HD_ID,
                          &VX_PD_SetConfig::Config),
    StatusOnly<VX_PD_SetConfig>(),
};

// HX_PD_WipeHDMDD
inline constexpr Function kHX_PD_WipeHDMDD{
    "HX_PD_WipeHDMDD",
    &XML_RA_FuncData::HX_PD_WipeHDMDD,
    Params{
        Param("AdapterID", &VX_PD_WipeHDMDD::AdapterID),
        Param("HD_ID", &VX_PD_WipeHDMDD::HD_ID),
        Param("Force", &VX_PD_WipeHDMDD::Force),
    },
    Call<HX_PD_WipeHDMDD>(&VX_PD_WipeHDMDD::AdapterID, &VX_PD_WipeHDMDD::HD_ID,
                          &VX_PD_WipeHDMDD::Force),
    StatusOnly<VX_PD_WipeHDMDD>(),
};

// HX_PD_SetHDStatus
inline constexpr Function kHX_PD_SetHDStatus{
    "HX_PD_SetHDStatus",
    &XML_RA_FuncData::HX_PD_SetHDStatus,
    Params{
        Param("AdapterID", &VX_PD_SetHDStatus::AdapterID),
        Param("HD_ID", &VX_PD_SetHDStatus::HD_ID),
        Param("Action", &VX_PD_SetHDStatus::Action),
    },
    Call<HX_PD_SetHDStatus>(&VX_PD_SetHDStatus::AdapterID, &VX_PD_SetHDStatus::HD_ID,
                            &VX_PD_SetHDStatus::Action),
    StatusOnly<VX_PD_SetHDStatus>(),
};

// HX_PD_FreeHD2GlobalSpare
inline constexpr Function kHX_PD_FreeHD2GlobalSpare{
    "HX_PD_FreeHD2GlobalSpare",
    &XML_RA_FuncData::HX_PD_FreeHD2GlobalSpare,
    Params{
        Param("AdapterID", &VX_PD_FreeHD2GlobalSpare::AdapterID),
        Param("HD_ID", &VX_PD_FreeHD2GlobalSpare::HD_ID),
    },
    Call<HX_PD_FreeHD2GlobalSpare>(&VX_PD_FreeHD2GlobalSpare::AdapterID,
                                   &VX_PD_FreeHD2GlobalSpare::HD_ID),
    StatusOnly<VX_PD_FreeHD2GlobalSpare>(),
};

// HX_PD_FreeHD2DGSpare
inline constexpr Function kHX_PD_FreeHD2DGSpare{
    "HX_PD_FreeHD2DGSpare",
    &XML_RA_FuncData::HX_PD_FreeHD2DGSpare,
    Params{
        Param("AdapterID", &VX_PD_FreeHD2DGSpare::AdapterID),
        Param("HD_ID", &VX_PD_FreeHD2DGSpare::HD_ID),
        Param("DG_ID", &VX_PD_FreeHD2DGSpare::DG_ID),
    },
    Call<HX_PD_FreeHD2DGSpare>(&VX_PD_FreeHD2DGSpare::AdapterID, &VX_PD_FreeHD2DGSpare::HD_ID,
                               &VX_PD_FreeHD2DGSpare::DG_ID),
    StatusOnly<VX_PD_FreeHD2DGSpare>(),
};

// HX_PD_Spare2FreeHD
inline constexpr Function kHX_PD_Spare2FreeHD{
    "HX_PD_Spare2FreeHD",
    &XML_RA_FuncData::HX_PD_Spare2FreeHD,
    Params{
        Param("AdapterID", &VX_PD_Spare2FreeHD::AdapterID),
        Param("HD_ID", &VX_PD_Spare2FreeHD::HD_ID),
    },
    Call<HX_PD_Spare2FreeHD>(&VX_PD_Spare2FreeHD::AdapterID, &VX_PD_Spare2FreeHD::HD_ID),
    StatusOnly<VX_PD_Spare2FreeHD>(),
};

// HX_PD_GetMBRInfo
inline constexpr Function kHX_PD_GetMBRInfo{
    "HX_PD_GetMBRInfo",
    &XML_RA_FuncData::HX_PD_GetMBRInfo,
    Params{
        Within(&VX_PD_GetMBRInfo::MBRInfo,
               Params{
                   Param("HDCount", &HD_MBR_Info::HDCount),
               }),
        Param("AdapterID", &VX_PD_GetMBRInfo::AdapterID),
        Within(&VX_PD_GetMBRInfo::MBRInfo,
               Params{
                   Param("HDIDs", &HD_MBR_Info::HDIDs),
               }),
    },
    Call<HX_PD_GetMBRInfo>(&VX_PD_GetMBRInfo::AdapterID, &VX_PD_GetMBRInfo::MBRInfo),
    Result{
        Col("RetVal", kU8, &VX_PD_GetMBRInfo::RetVal),
        Nest<kHD_MBR_Info>("MBRInfo", &VX_PD_GetMBRInfo::MBRInfo),
    },
};

// HX_PD_StartDataScrub
inline constexpr Function kHX_PD_StartDataScrub{
    "HX_PD_StartDataScrub",
    &XML_RA_FuncData::HX_PD_StartDataScrub,
    Params{
        Param("AdapterID", &VX_PD_StartDataScrub::AdapterID),
        Param("HD_ID", &VX_PD_StartDataScrub::HD_ID),
    },
    Call<HX_PD_StartDataScrub>(&VX_PD_StartDataScrub::AdapterID, &VX_PD_StartDataScrub::HD_ID),
    StatusOnly<VX_PD_StartDataScrub>(),
};

// HX_PD_StartMediaPatrol
inline constexpr Function kHX_PD_StartMediaPatrol{
    "HX_PD_StartMediaPatrol",
    &XML_RA_FuncData::HX_PD_StartMediaPatrol,
    Params{
        Param("AdapterID", &VX_PD_StartMediaPatrol::AdapterID),
        Param("HD_ID", &VX_PD_StartMediaPatrol::HD_ID),
    },
    Call<HX_PD_StartMediaPatrol>(&VX_PD_StartMediaPatrol::AdapterID,
                                 &VX_PD_StartMediaPatrol::HD_ID),
    StatusOnly<VX_PD_StartMediaPatrol>(),
};

// HX_PD_BGAControl
inline constexpr Function kHX_PD_BGAControl{
    "HX_PD_BGAControl",
    &XML_RA_FuncData::HX_PD_BGAControl,
    Params{
        Param("AdapterID", &VX_PD_BGAControl::AdapterID),
        Param("HD_ID", &VX_PD_BGAControl::HD_ID),
        Param("Action", &VX_PD_BGAControl::Action),
    },
    Call<HX_PD_BGAControl>(&VX_PD_BGAControl::AdapterID, &VX_PD_BGAControl::HD_ID,
                           &VX_PD_BGAControl::Action),
    StatusOnly<VX_PD_BGAControl>(),
};

// HX_BLK_GetInfo
inline constexpr Function kHX_BLK_GetInfo{
    "HX_BLK_GetInfo",
    &XML_RA_FuncData::HX_BLK_GetInfo,
    PagedParams<VX_BLK_GetInfo>(),
    Pages<HX_BLK_GetInfo, VX_BLK_GetInfo>(),
    StatusOnly<VX_BLK_GetInfo>(),
    Reply<kBlock_Info_Reply, VX_BLK_GetInfo>(),
};

// HX_BLK_GetHDBlock: only 512 bytes are cleared before each page, whatever its size.
inline constexpr Function kHX_BLK_GetHDBlock{
    "HX_BLK_GetHDBlock",
    &XML_RA_FuncData::HX_BLK_GetHDBlock,
    PagedParams<VX_BLK_GetHDBlock>(),
    Pages<HX_BLK_GetHDBlock, VX_BLK_GetHDBlock>(512),
    StatusOnly<VX_BLK_GetHDBlock>(),
    Reply<kHD_Block_Info_Reply, VX_BLK_GetHDBlock>(),
};
