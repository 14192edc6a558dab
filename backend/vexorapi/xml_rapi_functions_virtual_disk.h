// The functions of the virtual disks: the rows of each.
#pragma once

#include "xml_rapi_disk_group.h"
#include "xml_rapi_function.h"
#include "xml_rapi_quick_create.h"

// HX_LD_GetInfo
inline constexpr Function kHX_LD_GetInfo{
    "HX_LD_GetInfo",
    &XML_RA_FuncData::HX_LD_GetInfo,
    PagedParams<VX_LD_GetInfo>(),
    Pages<HX_LD_GetInfo, VX_LD_GetInfo>(),
    StatusOnly<VX_LD_GetInfo>(),
    Reply<kLD_Info_Reply, VX_LD_GetInfo>(),
};

// HX_LD_GetTargetLDInfo
inline constexpr Function kHX_LD_GetTargetLDInfo{
    "HX_LD_GetTargetLDInfo",
    &XML_RA_FuncData::HX_LD_GetTargetLDInfo,
    Params{
        Param("AdapterID", &VX_LD_GetTargetLDInfo::AdapterID),
        Param("LD_ID", &VX_LD_GetTargetLDInfo::LD_ID),
    },
    Call<HX_LD_GetTargetLDInfo>(&VX_LD_GetTargetLDInfo::AdapterID, &VX_LD_GetTargetLDInfo::LD_ID,
                                &VX_LD_GetTargetLDInfo::LDInfo),
    Result{
        Col("RetVal", kU8, &VX_LD_GetTargetLDInfo::RetVal),
        Nest<kLD_Info>("LDInfo", &VX_LD_GetTargetLDInfo::LDInfo),
    },
};

// HX_LD_Delete
inline constexpr Function kHX_LD_Delete{
    "HX_LD_Delete",
    &XML_RA_FuncData::HX_LD_Delete,
    Params{
        Param("AdapterID", &VX_LD_Delete::AdapterID),
        Param("LD_ID", &VX_LD_Delete::LD_ID),
        Param("deleteMBR", &VX_LD_Delete::deleteMBR),
    },
    Call<HX_LD_Delete>(&VX_LD_Delete::AdapterID, &VX_LD_Delete::LD_ID, &VX_LD_Delete::deleteMBR),
    StatusOnly<VX_LD_Delete>(),
};

// HX_LD_Create
inline constexpr Function kHX_LD_Create{
    "HX_LD_Create",
    &XML_RA_FuncData::HX_LD_Create,
    Params{
        Param("AdapterID", &VX_LD_Create::AdapterID),
        Within(&VX_LD_Create::CreateLDParam,
               Params{
                   Without(&Create_LD_Param::LDID, &Create_LD_Param::SpecifiedBlkSeq,
                           &Create_LD_Param::Reserved2, &Create_LD_Param::ReservedForApp,
                           &Create_LD_Param::Reserved3),
                   Param("RaidMode", &Create_LD_Param::RaidMode),
                   Param("HDCount", &Create_LD_Param::HDCount),
                   Param("RoundingScheme", &Create_LD_Param::RoundingScheme),
                   Param("SubLDCount", &Create_LD_Param::SubLDCount),
                   Param("NumParityDisk", &Create_LD_Param::NumParityDisk),
                   Param("StripeBlockSize", &Create_LD_Param::StripeBlockSize),
                   Param("CachePolicy", &Create_LD_Param::CachePolicy),
                   Param("InitializationOption", &Create_LD_Param::InitializationOption),
                   Param("SectorCoefficient", &Create_LD_Param::SectorCoefficient),
                   Param("HDIDs", &Create_LD_Param::HDIDs),
                   Param("Name", &Create_LD_Param::Name),
                   Param("Size", &Create_LD_Param::Size),
               }),
    },
    Call<HX_LD_Create>(&VX_LD_Create::AdapterID, &VX_LD_Create::CreateLDParam),
    StatusOnly<VX_LD_Create>(),
};

// HX_LD_QuickCreate: one virtual disk over all free disks.
inline constexpr Function kHX_LD_QuickCreate{
    "HX_LD_QuickCreate",
    &XML_RA_FuncData::HX_LD_QuickCreate,
    Params{
        Param("AdapterID", &VX_LD_QuickCreate::AdapterID),
        Param("Type", &VX_LD_QuickCreate::Type),
    },
    Call<HX_LD_QuickCreate>(&VX_LD_QuickCreate::AdapterID, &VX_LD_QuickCreate::Type),
    StatusOnly<VX_LD_QuickCreate>(),
};

// HX_LD_GetMaxSize
inline constexpr Function kHX_LD_GetMaxSize{
    "HX_LD_GetMaxSize",
    &XML_RA_FuncData::HX_LD_GetMaxSize,
    Params{
        Param("AdapterID", &VX_LD_GetMaxSize::AdapterID),
        Within(&VX_LD_GetMaxSize::CreateLDParam,
               Params{
                   Without(&Create_LD_Param::SectorCoefficient, &Create_LD_Param::LDID,
                           &Create_LD_Param::SpecifiedBlkSeq, &Create_LD_Param::Reserved2,
                           &Create_LD_Param::ReservedForApp, &Create_LD_Param::Reserved3),
                   Param("RaidMode", &Create_LD_Param::RaidMode),
                   Param("HDCount", &Create_LD_Param::HDCount),
                   Param("RoundingScheme", &Create_LD_Param::RoundingScheme),
                   Param("SubLDCount", &Create_LD_Param::SubLDCount),
                   Param("NumParityDisk", &Create_LD_Param::NumParityDisk),
                   Param("StripeBlockSize", &Create_LD_Param::StripeBlockSize),
                   Param("CachePolicy", &Create_LD_Param::CachePolicy),
                   Param("InitializationOption", &Create_LD_Param::InitializationOption),
                   Param("HDIDs", &Create_LD_Param::HDIDs),
                   Param("Name", &Create_LD_Param::Name),
                   Param("Size", &Create_LD_Param::Size),
               }),
    },
    Call<HX_LD_GetMaxSize>(&VX_LD_GetMaxSize::AdapterID, &VX_LD_GetMaxSize::CreateLDParam),
    Result{
        Col("RetVal", kU8, &VX_LD_GetMaxSize::RetVal),
        Nest<kCreate_LD_Param>("CreateLDParam", &VX_LD_GetMaxSize::CreateLDParam),
    },
};

// HX_LD_PauseAll
inline constexpr Function kHX_LD_PauseAll{
    "HX_LD_PauseAll",
    &XML_RA_FuncData::HX_LD_PauseAll,
    Params{
        Param("AdapterID", &VX_LD_PauseAll::AdapterID),
    },
    Call<HX_LD_PauseAll>(&VX_LD_PauseAll::AdapterID),
    StatusOnly<VX_LD_PauseAll>(),
};

// HX_LD_GetStatus
inline constexpr Function kHX_LD_GetStatus{
    "HX_LD_GetStatus",
    &XML_RA_FuncData::HX_LD_GetStatus,
    PagedParams<VX_LD_GetStatus>(),
    Pages<HX_LD_GetStatus, VX_LD_GetStatus>(),
    StatusOnly<VX_LD_GetStatus>(),
    Reply<kLD_Status_Reply, VX_LD_GetStatus>(),
};

// HX_LD_GetConfig
inline constexpr Function kHX_LD_GetConfig{
    "HX_LD_GetConfig",
    &XML_RA_FuncData::HX_LD_GetConfig,
    PagedParams<VX_LD_GetConfig>(),
    Pages<HX_LD_GetConfig, VX_LD_GetConfig>(),
    StatusOnly<VX_LD_GetConfig>(),
    Reply<kLD_Config_Reply, VX_LD_GetConfig>(),
};

// HX_LD_SetConfig
inline constexpr Function kHX_LD_SetConfig{
    "HX_LD_SetConfig",
    &XML_RA_FuncData::HX_LD_SetConfig,
    Params{
        Param("AdapterID", &VX_LD_SetConfig::AdapterID),
        Param("LD_ID", &VX_LD_SetConfig::LD_ID),
        Within(&VX_LD_SetConfig::LDConfig,
               Params{
                   Without(&LD_Config::Reserved1, &LD_Config::Reserved2),
                   Param("CacheMode", &LD_Config::CacheMode),
                   Param("AutoRebuildOn", &LD_Config::AutoRebuildOn),
                   Param("Status", &LD_Config::Status),
                   Param("LDID", &LD_Config::LDID),
                   Param("Name", &LD_Config::Name),
               }),
    },
    Call<HX_LD_SetConfig>(&VX_LD_SetConfig::AdapterID, &VX_LD_SetConfig::LD_ID,
                          &VX_LD_SetConfig::LDConfig),
    StatusOnly<VX_LD_SetConfig>(),
};

// HX_LD_StartRebuild
inline constexpr Function kHX_LD_StartRebuild{
    "HX_LD_StartRebuild",
    &XML_RA_FuncData::HX_LD_StartRebuild,
    Params{
        Param("AdapterID", &VX_LD_StartRebuild::AdapterID),
        Param("LD_ID", &VX_LD_StartRebuild::LD_ID),
        Param("Rebuild_HD_ID", &VX_LD_StartRebuild::Rebuild_HD_ID),
    },
    Call<HX_LD_StartRebuild>(&VX_LD_StartRebuild::AdapterID, &VX_LD_StartRebuild::LD_ID,
                             &VX_LD_StartRebuild::Rebuild_HD_ID),
    StatusOnly<VX_LD_StartRebuild>(),
};

// HX_LD_StartConsistencyCheck
inline constexpr Function kHX_LD_StartConsistencyCheck{
    "HX_LD_StartConsistencyCheck",
    &XML_RA_FuncData::HX_LD_StartConsistencyCheck,
    Params{
        Param("AdapterID", &VX_LD_StartConsistencyCheck::AdapterID),
        Param("LD_ID", &VX_LD_StartConsistencyCheck::LD_ID),
        Param("Type", &VX_LD_StartConsistencyCheck::Type),
    },
    Call<HX_LD_StartConsistencyCheck>(&VX_LD_StartConsistencyCheck::AdapterID,
                                      &VX_LD_StartConsistencyCheck::LD_ID,
                                      &VX_LD_StartConsistencyCheck::Type),
    StatusOnly<VX_LD_StartConsistencyCheck>(),
};

// HX_LD_StartINIT
inline constexpr Function kHX_LD_StartINIT{
    "HX_LD_StartINIT",
    &XML_RA_FuncData::HX_LD_StartINIT,
    Params{
        Param("AdapterID", &VX_LD_StartINIT::AdapterID),
        Param("LD_ID", &VX_LD_StartINIT::LD_ID),
        Param("Init_Type", &VX_LD_StartINIT::Init_Type),
    },
    Call<HX_LD_StartINIT>(&VX_LD_StartINIT::AdapterID, &VX_LD_StartINIT::LD_ID,
                          &VX_LD_StartINIT::Init_Type),
    StatusOnly<VX_LD_StartINIT>(),
};

/// The parameters of a migration: the new level and disks of a virtual disk.
inline constexpr Params kMigrationParams{
    Param("LDID", &Create_LD_Param::LDID),
    Param("RaidMode", &Create_LD_Param::RaidMode),
    Param("HDCount", &Create_LD_Param::HDCount),
    Param("HDIDs", &Create_LD_Param::HDIDs),
};

// HX_LD_StartMigration
inline constexpr Function kHX_LD_StartMigration{
    "HX_LD_StartMigration",
    &XML_RA_FuncData::HX_LD_StartMigration,
    Params{
        Param("AdapterID", &VX_LD_StartMigration::AdapterID),
        Within(&VX_LD_StartMigration::CreateLDParam, kMigrationParams),
    },
    Call<HX_LD_StartMigration>(&VX_LD_StartMigration::AdapterID,
                               &VX_LD_StartMigration::CreateLDParam),
    StatusOnly<VX_LD_StartMigration>(),
};

// HX_LD_GetMigratedLdSize
inline constexpr Function kHX_LD_GetMigratedLdSize{
    "HX_LD_GetMigratedLdSize",
    &XML_RA_FuncData::HX_LD_GetMigratedLdSize,
    Params{
        Param("AdapterID", &VX_LD_GetMigratedLdSize::AdapterID),
        Within(&VX_LD_GetMigratedLdSize::CreateLDParam, kMigrationParams),
    },
    Call<HX_LD_GetMigratedLdSize>(&VX_LD_GetMigratedLdSize::AdapterID,
                                  &VX_LD_GetMigratedLdSize::CreateLDParam),
    Result{
        Col("RetVal", kU8, &VX_LD_GetMigratedLdSize::RetVal),
        Nest<kCreate_LD_Param>("CreateLDParam", &VX_LD_GetMigratedLdSize::CreateLDParam),
    },
};

// HX_LD_BGAControl
inline constexpr Function kHX_LD_BGAControl{
    "HX_LD_BGAControl",
    &XML_RA_FuncData::HX_LD_BGAControl,
    Params{
        Param("AdapterID", &VX_LD_BGAControl::AdapterID),
        Param("LD_ID", &VX_LD_BGAControl::LD_ID),
        Param("Actions", &VX_LD_BGAControl::Actions),
    },
    Call<HX_LD_BGAControl>(&VX_LD_BGAControl::AdapterID, &VX_LD_BGAControl::LD_ID,
                           &VX_LD_BGAControl::Actions),
    StatusOnly<VX_LD_BGAControl>(),
};

// HX_LD_Import
inline constexpr Function kHX_LD_Import{
    "HX_LD_Import",
    &XML_RA_FuncData::HX_LD_Import,
    Params{
        Param("AdapterID", &VX_LD_Import::AdapterID),
        Param("LD_ID", &VX_LD_Import::LD_ID),
    },
    Call<HX_LD_Import>(&VX_LD_Import::AdapterID, &VX_LD_Import::LD_ID),
    StatusOnly<VX_LD_Import>(),
};

// HX_LD_Create_OnDG
inline constexpr Function kHX_LD_Create_OnDG{
    "HX_LD_Create_OnDG",
    &XML_RA_FuncData::HX_LD_Create_OnDG,
    Params{
        Param("AdapterID", &VX_LD_Create_OnDG::AdapterID),
        Within(&VX_LD_Create_OnDG::CreateOrModifyVDParam,
               Params{
                   Without(&::CreateOrModify_VD_Param::VDID, &::CreateOrModify_VD_Param::RaidMode,
                           &::CreateOrModify_VD_Param::SubVDCount,
                           &::CreateOrModify_VD_Param::NumParityDisk,
                           &::CreateOrModify_VD_Param::Reserved1,
                           &::CreateOrModify_VD_Param::BlockSize,
                           &::CreateOrModify_VD_Param::Reserved),
                   Param("DGID", &::CreateOrModify_VD_Param::DGID),
                   Param("Name", &::CreateOrModify_VD_Param::Name),
                   Param("StripeBlockSize", &::CreateOrModify_VD_Param::StripeBlockSize),
                   Param("Size", &::CreateOrModify_VD_Param::Size),
                   Param("RoundingScheme", &::CreateOrModify_VD_Param::RoundingScheme),
                   Param("CachePolicy", &::CreateOrModify_VD_Param::CachePolicy),
                   Param("DGSlotNum", &::CreateOrModify_VD_Param::DGSlotNum),
                   Param("InitializationOption", &::CreateOrModify_VD_Param::InitializationOption),
                   Param("SectorCoefficient", &::CreateOrModify_VD_Param::SectorCoefficient),
               }),
    },
    Call<HX_LD_Create_OnDG>(&VX_LD_Create_OnDG::AdapterID,
                            &VX_LD_Create_OnDG::CreateOrModifyVDParam),
    StatusOnly<VX_LD_Create_OnDG>(),
};

// HX_LD_Modify_OnDG
inline constexpr Function kHX_LD_Modify_OnDG{
    "HX_LD_Modify_OnDG",
    &XML_RA_FuncData::HX_LD_Modify_OnDG,
    Params{
        Param("AdapterID", &VX_LD_Modify_OnDG::AdapterID),
        Within(&VX_LD_Modify_OnDG::CreateOrModifyVDParam,
               Params{
                   Without(&::CreateOrModify_VD_Param::DGSlotNum,
                           &::CreateOrModify_VD_Param::Reserved1,
                           &::CreateOrModify_VD_Param::Reserved),
                   Param("VDID", &::CreateOrModify_VD_Param::VDID),
                   Param("DGID", &::CreateOrModify_VD_Param::DGID),
                   Param("Name", &::CreateOrModify_VD_Param::Name),
                   Param("RaidMode", &::CreateOrModify_VD_Param::RaidMode),
                   Param("SubVDCount", &::CreateOrModify_VD_Param::SubVDCount),
                   Param("NumParityDisk", &::CreateOrModify_VD_Param::NumParityDisk),
                   Param("StripeBlockSize", &::CreateOrModify_VD_Param::StripeBlockSize),
                   Param("Size", &::CreateOrModify_VD_Param::Size),
                   Param("RoundingScheme", &::CreateOrModify_VD_Param::RoundingScheme),
                   Param("CachePolicy", &::CreateOrModify_VD_Param::CachePolicy),
                   Param("InitializationOption", &::CreateOrModify_VD_Param::InitializationOption),
                   Param("SectorCoefficient", &::CreateOrModify_VD_Param::SectorCoefficient),
                   Param("BlockSize", &::CreateOrModify_VD_Param::BlockSize),
               }),
    },
    Call<HX_LD_Modify_OnDG>(&VX_LD_Modify_OnDG::AdapterID,
                            &VX_LD_Modify_OnDG::CreateOrModifyVDParam),
    StatusOnly<VX_LD_Modify_OnDG>(),
};

// HX_CreateOrModify_VD
inline constexpr Function kHX_CreateOrModify_VD{
    "HX_CreateOrModify_VD",
    &XML_RA_FuncData::HX_CreateOrModify_VD,
    Params{
        Param("AdapterID", &VX_CreateOrModify_VD::AdapterID),
        Within(&VX_CreateOrModify_VD::CreateOrModify_VD_Param,
               Params{
                   Without(&::CreateOrModify_VD_Param::DGSlotNum,
                           &::CreateOrModify_VD_Param::Reserved1,
                           &::CreateOrModify_VD_Param::RoundingScheme,
                           &::CreateOrModify_VD_Param::CachePolicy,
                           &::CreateOrModify_VD_Param::SectorCoefficient,
                           &::CreateOrModify_VD_Param::Reserved),
                   Param("VDID", &::CreateOrModify_VD_Param::VDID),
                   Param("DGID", &::CreateOrModify_VD_Param::DGID),
                   Param("Name", &::CreateOrModify_VD_Param::Name),
                   Param("RaidMode", &::CreateOrModify_VD_Param::RaidMode),
                   Param("SubVDCount", &::CreateOrModify_VD_Param::SubVDCount),
                   Param("NumParityDisk", &::CreateOrModify_VD_Param::NumParityDisk),
                   Param("StripeBlockSize", &::CreateOrModify_VD_Param::StripeBlockSize),
                   Param("Size", &::CreateOrModify_VD_Param::Size),
                   Param("BlockSize", &::CreateOrModify_VD_Param::BlockSize),
                   Param("InitializationOption", &::CreateOrModify_VD_Param::InitializationOption),
               }),
    },
    Call<HX_CreateOrModify_VD>(&VX_CreateOrModify_VD::AdapterID,
                               &VX_CreateOrModify_VD::CreateOrModify_VD_Param),
    StatusOnly<VX_CreateOrModify_VD>(),
};
