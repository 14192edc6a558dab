// The functions of the disk groups: the rows of each.
#pragma once

#include "xml_rapi_disk_group.h"
#include "xml_rapi_function.h"

/// A disk group's parameters except its number.
inline constexpr Params kDiskGroupParams{
    Without(&CreateOrModify_DG_Param::DGID, &CreateOrModify_DG_Param::Reserved1,
            &CreateOrModify_DG_Param::Reserved2, &CreateOrModify_DG_Param::Reserved3,
            &CreateOrModify_DG_Param::Reserved4),
    Param("Name", &CreateOrModify_DG_Param::Name),
    Param("RaidMode", &CreateOrModify_DG_Param::RaidMode),
    Param("SubVDCount", &CreateOrModify_DG_Param::SubVDCount),
    Param("NumParityDisk", &CreateOrModify_DG_Param::NumParityDisk),
    Param("StripeBlockSize", &CreateOrModify_DG_Param::StripeBlockSize),
    Param("Size", &CreateOrModify_DG_Param::Size),
    Param("BlockSize", &CreateOrModify_DG_Param::BlockSize),
    Param("InitializationOption", &CreateOrModify_DG_Param::InitializationOption),
    Param("PDCount", &CreateOrModify_DG_Param::PDCount),
    Param("PDIDs", &CreateOrModify_DG_Param::PDIDs),
};
inline constexpr Params kDiskGroupNumber{Param("DGID", &CreateOrModify_DG_Param::DGID)};

// HX_DG_Create
inline constexpr Function kHX_DG_Create{
    "HX_DG_Create",
    &XML_RA_FuncData::HX_DG_Create,
    Params{
        Param("AdapterID", &VX_DG_Create::AdapterID),
        Within(&VX_DG_Create::CreateOrModifyDGParam, kDiskGroupParams),
    },
    Call<HX_DG_Create>(&VX_DG_Create::AdapterID, &VX_DG_Create::CreateOrModifyDGParam),
    Result{
        Col("RetVal", kU8, &VX_DG_Create::RetVal),
        Nest<kCreate_DG_Param>("CreateOrModifyDGParam", &VX_DG_Create::CreateOrModifyDGParam),
    },
};

// HX_DG_GetSizeOnly
inline constexpr Function kHX_DG_GetSizeOnly{
    "HX_DG_GetSizeOnly",
    &XML_RA_FuncData::HX_DG_GetSizeOnly,
    Params{
        Param("AdapterID", &VX_DG_GetSizeOnly::AdapterID),
        Within(&VX_DG_GetSizeOnly::CreateOrModifyDGParam, kDiskGroupNumber),
        Within(&VX_DG_GetSizeOnly::CreateOrModifyDGParam, kDiskGroupParams),
    },
    Call<HX_DG_GetSizeOnly>(&VX_DG_GetSizeOnly::AdapterID,
                            &VX_DG_GetSizeOnly::CreateOrModifyDGParam),
    Result{
        Col("RetVal", kU8, &VX_DG_GetSizeOnly::RetVal),
        Nest<kDG_Size>("CreateOrModify_DG_Param", &VX_DG_GetSizeOnly::CreateOrModifyDGParam),
    },
};

// HX_DG_Modify
inline constexpr Function kHX_DG_Modify{
    "HX_DG_Modify",
    &XML_RA_FuncData::HX_DG_Modify,
    Params{
        Param("AdapterID", &VX_DG_Modify::AdapterID),
        Within(&VX_DG_Modify::CreateOrModifyDGParam, kDiskGroupNumber),
        Within(&VX_DG_Modify::CreateOrModifyDGParam, kDiskGroupParams),
    },
    Call<HX_DG_Modify>(&VX_DG_Modify::AdapterID, &VX_DG_Modify::CreateOrModifyDGParam),
    StatusOnly<VX_DG_Modify>(),
};

// HX_DG_GetInfo
inline constexpr Function kHX_DG_GetInfo{
    "HX_DG_GetInfo",
    &XML_RA_FuncData::HX_DG_GetInfo,
    PagedParams<VX_DG_GetInfo>(),
    Pages<HX_DG_GetInfo, VX_DG_GetInfo>(),
    StatusOnly<VX_DG_GetInfo>(),
    Reply<kDG_Info_Reply, VX_DG_GetInfo>(),
};

// HX_DG_Delete
inline constexpr Function kHX_DG_Delete{
    "HX_DG_Delete",
    &XML_RA_FuncData::HX_DG_Delete,
    Params{
        Param("AdapterID", &VX_DG_Delete::AdapterID),
        Param("DG_ID", &VX_DG_Delete::DG_ID),
    },
    Call<HX_DG_Delete>(&VX_DG_Delete::AdapterID, &VX_DG_Delete::DG_ID),
    StatusOnly<VX_DG_Delete>(),
};

// HX_LD_DG_StartRebuild
inline constexpr Function kHX_LD_DG_StartRebuild{
    "HX_LD_DG_StartRebuild",
    &XML_RA_FuncData::HX_LD_DG_StartRebuild,
    Params{
        Param("AdapterID", &VX_LD_DG_StartRebuild::AdapterID),
        Within(&VX_LD_DG_StartRebuild::RebuildParam,
               Params{
                   Without<LD_DG_Rebuild_Param>(),
                   Param("ID", &LD_DG_Rebuild_Param::ID),
                   Param("RebuildType", &LD_DG_Rebuild_Param::RebuildType),
                   Param("PDCount", &LD_DG_Rebuild_Param::PDCount),
                   Param("PDIDs", &LD_DG_Rebuild_Param::PDIDs),
               }),
    },
    Call<HX_LD_DG_StartRebuild>(&VX_LD_DG_StartRebuild::AdapterID,
                                &VX_LD_DG_StartRebuild::RebuildParam),
    StatusOnly<VX_LD_DG_StartRebuild>(),
};

// HX_DG_StartMigration: block and stripe size are the group's own, whatever the command says.
inline constexpr Function kHX_DG_StartMigration{
    "HX_DG_StartMigration",
    &XML_RA_FuncData::HX_DG_StartMigration,
    Params{
        Param("AdapterID", &VX_DG_StartMigration::AdapterID),
        Within(&VX_DG_StartMigration::MigrateDG,
               Params{
                   Param("DGID", &CreateOrModify_DG_Param::DGID),
                   Param("RaidMode", &CreateOrModify_DG_Param::RaidMode),
                   Param("NumParityDisk", &CreateOrModify_DG_Param::NumParityDisk),
                   Param("PDCount", &CreateOrModify_DG_Param::PDCount),
                   Param("PDIDs", &CreateOrModify_DG_Param::PDIDs),
               }),
    },
    [](VX_DG_StartMigration& record) {
        HX_DG_Set_DefaultValue(record.AdapterID, &record.MigrateDG);
        record.RetVal = HX_DG_StartMigration(record.AdapterID, &record.MigrateDG);
        return true;
    },
    StatusOnly<VX_DG_StartMigration>(),
};

// HX_DG_BGAControl
inline constexpr Function kHX_DG_BGAControl{
    "HX_DG_BGAControl",
    &XML_RA_FuncData::HX_DG_BGAControl,
    Params{
        Param("AdapterID", &VX_DG_BGAControl::AdapterID),
        Param("DG_ID", &VX_DG_BGAControl::DG_ID),
        Param("Actions", &VX_DG_BGAControl::Actions),
    },
    Call<HX_DG_BGAControl>(&VX_DG_BGAControl::AdapterID, &VX_DG_BGAControl::DG_ID,
                           &VX_DG_BGAControl::Actions),
    StatusOnly<VX_DG_BGAControl>(),
};

// HX_DG_GetConfig
inline constexpr Function kHX_DG_GetConfig{
    "HX_DG_GetConfig",
    &XML_RA_FuncData::HX_DG_GetConfig,
    PagedParams<VX_DG_GetConfig>(),
    Pages<HX_DG_GetConfig, VX_DG_GetConfig>(),
    StatusOnly<VX_DG_GetConfig>(),
    Reply<kDG_Config_Reply, VX_DG_GetConfig>(),
};

// HX_DG_SetConfig: a group that does not exist is refused here, with 1.
inline constexpr Function kHX_DG_SetConfig{
    "HX_DG_SetConfig",
    &XML_RA_FuncData::HX_DG_SetConfig,
    Params{
        Param("AdapterID", &VX_DG_SetConfig::AdapterID),
        Param("DG_ID", &VX_DG_SetConfig::DG_ID),
        Within(&VX_DG_SetConfig::Config,
               Params{
                   Without(&DG_Config::Reserved),
                   Param("DGID", &DG_Config::DGID),
                   Param("WriteCacheOn", &DG_Config::WriteCacheOn),
                   Param("Name", &DG_Config::Name),
               }),
    },
    [](VX_DG_SetConfig& record) {
        DG_Config_Request found{};
        setRequestHeader(&found.header, HX_REQUEST_BY_ID, record.DG_ID, 1);
        if (HX_DG_GetConfig(record.AdapterID, &found) != HX_SUCCESS) {
            record.RetVal = 1;
        } else {
            record.RetVal = HX_DG_SetConfig(record.AdapterID, record.DG_ID, &record.Config);
        }
        return true;
    },
    StatusOnly<VX_DG_SetConfig>(),
};
