// The bytes of every record that passes between the controller library and its callers. The numbers
// are the wire format: they are the same on 32 and on 64 bits, and they never change.
#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <span>

#include "hxraid.h"
#include "hxraid_c_test.h"

namespace {

struct Place {
    std::size_t offset;
    std::size_t bytes;

    bool operator==(const Place&) const = default;
};

void PrintTo(const Place& place, std::ostream* out) {
    *out << place.bytes << " bytes at " << place.offset;
}

template <class Record, class Field>
Place PlaceOf(Field Record::*field) {
    static const Record record{};
    return {static_cast<std::size_t>(reinterpret_cast<const char*>(&(record.*field)) -
                                     reinterpret_cast<const char*>(&record)),
            sizeof(Field)};
}

struct Row {
    const char* field;
    Place expected;
    Place actual;
};

// The fields stand where they are expected, and no byte of the record is left without a name.
template <class Record>
void ExpectLayout(std::size_t bytes, std::span<const Row> rows) {
    EXPECT_EQ(bytes, sizeof(Record));
    std::size_t end = 0;
    for (const Row& row : rows) {
        EXPECT_EQ(row.expected, row.actual) << row.field;
        EXPECT_EQ(end, row.actual.offset) << "unnamed bytes before " << row.field;
        end = row.actual.offset + row.actual.bytes;
    }
    EXPECT_EQ(bytes, end) << "unnamed bytes at the end";
}

TEST(HxraidScalars, HaveTheWidthsOfTheirNames) {
    EXPECT_EQ(1u, sizeof(HX_U8));
    EXPECT_EQ(2u, sizeof(HX_U16));
    EXPECT_EQ(4u, sizeof(HX_U32));
    EXPECT_EQ(4u, sizeof(HX_I32));
    EXPECT_EQ(8u, sizeof(HX_U64));
    EXPECT_EQ(1u, sizeof(HX_BOOLEAN));
}

TEST(HxraidScalars, SplitSixtyFourBitsWithTheLowHalfFirst) {
    HX_U64 number{};
    number.value = 0x1122334455667788;
    EXPECT_EQ(0x55667788u, number.half.low);
    EXPECT_EQ(0x11223344u, number.half.high);
}

TEST(HxraidLayout, Of_RequestHeader) {
    const Row rows[] = {
        {"version", {0, 1}, PlaceOf(&RequestHeader::version)},
        {"requestType", {1, 1}, PlaceOf(&RequestHeader::requestType)},
        {"startingIndexOrId", {2, 2}, PlaceOf(&RequestHeader::startingIndexOrId)},
        {"numRequested", {4, 2}, PlaceOf(&RequestHeader::numRequested)},
        {"numReturned", {6, 2}, PlaceOf(&RequestHeader::numReturned)},
        {"nextStartingIndex", {8, 2}, PlaceOf(&RequestHeader::nextStartingIndex)},
        {"reserved1", {10, 6}, PlaceOf(&RequestHeader::reserved1)},
    };
    ExpectLayout<RequestHeader>(16, rows);
}

TEST(HxraidLayout, Of_Version_Info) {
    const Row rows[] = {
        {"VerMajor", {0, 4}, PlaceOf(&Version_Info::VerMajor)},
        {"VerMinor", {4, 4}, PlaceOf(&Version_Info::VerMinor)},
        {"VerOEM", {8, 4}, PlaceOf(&Version_Info::VerOEM)},
        {"VerBuild", {12, 4}, PlaceOf(&Version_Info::VerBuild)},
    };
    ExpectLayout<Version_Info>(16, rows);
}

TEST(HxraidLayout, Of_Version_Info_CIM) {
    const Row rows[] = {
        {"MajorVersion", {0, 2}, PlaceOf(&Version_Info_CIM::MajorVersion)},
        {"MinorVersion", {2, 2}, PlaceOf(&Version_Info_CIM::MinorVersion)},
        {"RevisionNumber", {4, 2}, PlaceOf(&Version_Info_CIM::RevisionNumber)},
        {"BuildNumber", {6, 2}, PlaceOf(&Version_Info_CIM::BuildNumber)},
    };
    ExpectLayout<Version_Info_CIM>(8, rows);
}

TEST(HxraidLayout, Of_Link_Endpoint) {
    const Row rows[] = {
        {"DevID", {0, 2}, PlaceOf(&Link_Endpoint::DevID)},
        {"DevType", {2, 1}, PlaceOf(&Link_Endpoint::DevType)},
        {"PhyCnt", {3, 1}, PlaceOf(&Link_Endpoint::PhyCnt)},
        {"PhyID", {4, 8}, PlaceOf(&Link_Endpoint::PhyID)},
        {"SAS_Address", {12, 8}, PlaceOf(&Link_Endpoint::SAS_Address)},
        {"EnclosureID", {20, 2}, PlaceOf(&Link_Endpoint::EnclosureID)},
        {"Reserved", {22, 2}, PlaceOf(&Link_Endpoint::Reserved)},
    };
    ExpectLayout<Link_Endpoint>(24, rows);
}

TEST(HxraidLayout, Of_Link_Entity) {
    const Row rows[] = {
        {"Parent", {0, 24}, PlaceOf(&Link_Entity::Parent)},
        {"Self", {24, 24}, PlaceOf(&Link_Entity::Self)},
    };
    ExpectLayout<Link_Entity>(48, rows);
}

TEST(HxraidLayout, Of_Adapter_Info) {
    const Row rows[] = {
        {"DriverVersion", {0, 16}, PlaceOf(&Adapter_Info::DriverVersion)},
        {"BIOSVersion", {16, 8}, PlaceOf(&Adapter_Info::BIOSVersion)},
        {"FirmwareVersion", {24, 8}, PlaceOf(&Adapter_Info::FirmwareVersion)},
        {"BootLoaderVersion", {32, 8}, PlaceOf(&Adapter_Info::BootLoaderVersion)},
        {"SystemIOBusNumber", {40, 4}, PlaceOf(&Adapter_Info::SystemIOBusNumber)},
        {"SlotNumber", {44, 4}, PlaceOf(&Adapter_Info::SlotNumber)},
        {"InterruptLevel", {48, 4}, PlaceOf(&Adapter_Info::InterruptLevel)},
        {"InterruptVector", {52, 4}, PlaceOf(&Adapter_Info::InterruptVector)},
        {"VenID", {56, 2}, PlaceOf(&Adapter_Info::VenID)},
        {"SubVenID", {58, 2}, PlaceOf(&Adapter_Info::SubVenID)},
        {"DevID", {60, 2}, PlaceOf(&Adapter_Info::DevID)},
        {"SubDevID", {62, 2}, PlaceOf(&Adapter_Info::SubDevID)},
        {"RevisionID", {64, 1}, PlaceOf(&Adapter_Info::RevisionID)},
        {"MaxPDPerVD", {65, 1}, PlaceOf(&Adapter_Info::MaxPDPerVD)},
        {"StripeSizeSupported", {66, 2}, PlaceOf(&Adapter_Info::StripeSizeSupported)},
        {"AdvancedFeatures", {68, 4}, PlaceOf(&Adapter_Info::AdvancedFeatures)},
        {"MaxPDPerDG", {72, 1}, PlaceOf(&Adapter_Info::MaxPDPerDG)},
        {"MaxVDPerDG", {73, 1}, PlaceOf(&Adapter_Info::MaxVDPerDG)},
        {"MaxParityDisks", {74, 1}, PlaceOf(&Adapter_Info::MaxParityDisks)},
        {"PortCount", {75, 1}, PlaceOf(&Adapter_Info::PortCount)},
        {"PortSupportType", {76, 1}, PlaceOf(&Adapter_Info::PortSupportType)},
        {"Features", {77, 1}, PlaceOf(&Adapter_Info::Features)},
        {"AlarmSupport", {78, 1}, PlaceOf(&Adapter_Info::AlarmSupport)},
        {"MaxBlockPerPD", {79, 1}, PlaceOf(&Adapter_Info::MaxBlockPerPD)},
        {"MaxHD", {80, 1}, PlaceOf(&Adapter_Info::MaxHD)},
        {"Reserved1", {81, 1}, PlaceOf(&Adapter_Info::Reserved1)},
        {"MaxHD_Ext", {82, 2}, PlaceOf(&Adapter_Info::MaxHD_Ext)},
        {"MaxExpander", {84, 1}, PlaceOf(&Adapter_Info::MaxExpander)},
        {"MaxPM", {85, 1}, PlaceOf(&Adapter_Info::MaxPM)},
        {"MaxLogicalDrive", {86, 1}, PlaceOf(&Adapter_Info::MaxLogicalDrive)},
        {"Reserved2", {87, 1}, PlaceOf(&Adapter_Info::Reserved2)},
        {"LogicalDriverMode", {88, 2}, PlaceOf(&Adapter_Info::LogicalDriverMode)},
        {"DiskGroupSupport", {90, 1}, PlaceOf(&Adapter_Info::DiskGroupSupport)},
        {"WWN", {91, 8}, PlaceOf(&Adapter_Info::WWN)},
        {"Reserved3", {99, 1}, PlaceOf(&Adapter_Info::Reserved3)},
        {"MaxBufferSize", {100, 2}, PlaceOf(&Adapter_Info::MaxBufferSize)},
        {"SerialNo", {102, 20}, PlaceOf(&Adapter_Info::SerialNo)},
        {"PortSasAddress", {122, 64}, PlaceOf(&Adapter_Info::PortSasAddress)},
        {"img_health", {186, 1}, PlaceOf(&Adapter_Info::img_health)},
        {"autoload_img_health", {187, 1}, PlaceOf(&Adapter_Info::autoload_img_health)},
        {"boot_loader_img_health", {188, 1}, PlaceOf(&Adapter_Info::boot_loader_img_health)},
        {"firmware_img_health", {189, 1}, PlaceOf(&Adapter_Info::firmware_img_health)},
        {"boot_rom_img_health", {190, 1}, PlaceOf(&Adapter_Info::boot_rom_img_health)},
        {"hba_info_img_health", {191, 1}, PlaceOf(&Adapter_Info::hba_info_img_health)},
        {"Reserved4", {192, 64}, PlaceOf(&Adapter_Info::Reserved4)},
    };
    ExpectLayout<Adapter_Info>(256, rows);
}

TEST(HxraidLayout, Of_Adapter_Config_V2) {
    const Row rows[] = {
        {"AlarmOn", {0, 1}, PlaceOf(&Adapter_Config_V2::AlarmOn)},
        {"AutoRebuildOn", {1, 1}, PlaceOf(&Adapter_Config_V2::AutoRebuildOn)},
        {"BGARate", {2, 1}, PlaceOf(&Adapter_Config_V2::BGARate)},
        {"SyncRate", {3, 1}, PlaceOf(&Adapter_Config_V2::SyncRate)},
        {"InitRate", {4, 1}, PlaceOf(&Adapter_Config_V2::InitRate)},
        {"RebuildRate", {5, 1}, PlaceOf(&Adapter_Config_V2::RebuildRate)},
        {"MigrationRate", {6, 1}, PlaceOf(&Adapter_Config_V2::MigrationRate)},
        {"CopybackRate", {7, 1}, PlaceOf(&Adapter_Config_V2::CopybackRate)},
        {"PollSMARTStatus", {8, 1}, PlaceOf(&Adapter_Config_V2::PollSMARTStatus)},
        {"MediaPatrolRate", {9, 1}, PlaceOf(&Adapter_Config_V2::MediaPatrolRate)},
        {"CopyBack", {10, 1}, PlaceOf(&Adapter_Config_V2::CopyBack)},
        {"InterruptCoalescing", {11, 1}, PlaceOf(&Adapter_Config_V2::InterruptCoalescing)},
        {"ModuleConsolidate", {12, 1}, PlaceOf(&Adapter_Config_V2::ModuleConsolidate)},
        {"v_atapi_disable", {13, 1}, PlaceOf(&Adapter_Config_V2::v_atapi_disable)},
        {"port_phy_ctrl", {14, 8}, PlaceOf(&Adapter_Config_V2::port_phy_ctrl)},
        {"Reserved", {22, 10}, PlaceOf(&Adapter_Config_V2::Reserved)},
    };
    ExpectLayout<Adapter_Config_V2>(32, rows);
}

TEST(HxraidLayout, Of_HD_Info) {
    const Row rows[] = {
        {"Link", {0, 48}, PlaceOf(&HD_Info::Link)},
        {"AdapterID", {48, 1}, PlaceOf(&HD_Info::AdapterID)},
        {"Status", {49, 1}, PlaceOf(&HD_Info::Status)},
        {"HDType", {50, 1}, PlaceOf(&HD_Info::HDType)},
        {"PIOMode", {51, 1}, PlaceOf(&HD_Info::PIOMode)},
        {"MDMAMode", {52, 1}, PlaceOf(&HD_Info::MDMAMode)},
        {"UDMAMode", {53, 1}, PlaceOf(&HD_Info::UDMAMode)},
        {"ConnectionType", {54, 1}, PlaceOf(&HD_Info::ConnectionType)},
        {"DeviceType", {55, 1}, PlaceOf(&HD_Info::DeviceType)},
        {"FeatureSupport", {56, 4}, PlaceOf(&HD_Info::FeatureSupport)},
        {"CurrentPIOMode", {60, 1}, PlaceOf(&HD_Info::CurrentPIOMode)},
        {"CurrentMDMAMode", {61, 1}, PlaceOf(&HD_Info::CurrentMDMAMode)},
        {"CurrentUDMAMode", {62, 1}, PlaceOf(&HD_Info::CurrentUDMAMode)},
        {"Reserved1", {63, 1}, PlaceOf(&HD_Info::Reserved1)},
        {"Model", {64, 40}, PlaceOf(&HD_Info::Model)},
        {"SerialNo", {104, 20}, PlaceOf(&HD_Info::SerialNo)},
        {"FWVersion", {124, 8}, PlaceOf(&HD_Info::FWVersion)},
        {"WWN", {132, 8}, PlaceOf(&HD_Info::WWN)},
        {"Reserved2", {140, 4}, PlaceOf(&HD_Info::Reserved2)},
        {"Size", {144, 8}, PlaceOf(&HD_Info::Size)},
        {"ActivityLEDStatus", {152, 1}, PlaceOf(&HD_Info::ActivityLEDStatus)},
        {"LocateLEDStatus", {153, 1}, PlaceOf(&HD_Info::LocateLEDStatus)},
        {"ErrorLEDStatus", {154, 1}, PlaceOf(&HD_Info::ErrorLEDStatus)},
        {"Reserved3", {155, 93}, PlaceOf(&HD_Info::Reserved3)},
    };
    ExpectLayout<HD_Info>(248, rows);
}

TEST(HxraidLayout, Of_Exp_Info) {
    const Row rows[] = {
        {"Link", {0, 48}, PlaceOf(&Exp_Info::Link)},
        {"AdapterID", {48, 1}, PlaceOf(&Exp_Info::AdapterID)},
        {"Configuring", {49, 1}, PlaceOf(&Exp_Info::Configuring)},
        {"RouteTableConfigurable", {50, 1}, PlaceOf(&Exp_Info::RouteTableConfigurable)},
        {"PhyCount", {51, 1}, PlaceOf(&Exp_Info::PhyCount)},
        {"ExpChangeCount", {52, 2}, PlaceOf(&Exp_Info::ExpChangeCount)},
        {"MaxRouteIndexes", {54, 2}, PlaceOf(&Exp_Info::MaxRouteIndexes)},
        {"VendorID", {56, 9}, PlaceOf(&Exp_Info::VendorID)},
        {"ProductID", {65, 17}, PlaceOf(&Exp_Info::ProductID)},
        {"ProductRev", {82, 5}, PlaceOf(&Exp_Info::ProductRev)},
        {"ComponentVendorID", {87, 9}, PlaceOf(&Exp_Info::ComponentVendorID)},
        {"ComponentID", {96, 2}, PlaceOf(&Exp_Info::ComponentID)},
        {"ComponentRevisionID", {98, 1}, PlaceOf(&Exp_Info::ComponentRevisionID)},
        {"Reserved", {99, 33}, PlaceOf(&Exp_Info::Reserved)},
    };
    ExpectLayout<Exp_Info>(132, rows);
}

TEST(HxraidLayout, Of_PM_Info) {
    const Row rows[] = {
        {"Link", {0, 48}, PlaceOf(&PM_Info::Link)},
        {"AdapterID", {48, 1}, PlaceOf(&PM_Info::AdapterID)},
        {"ProductRevision", {49, 1}, PlaceOf(&PM_Info::ProductRevision)},
        {"PMSpecRevision", {50, 1}, PlaceOf(&PM_Info::PMSpecRevision)},
        {"NumberOfPorts", {51, 1}, PlaceOf(&PM_Info::NumberOfPorts)},
        {"VendorId", {52, 2}, PlaceOf(&PM_Info::VendorId)},
        {"DeviceId", {54, 2}, PlaceOf(&PM_Info::DeviceId)},
        {"Reserved", {56, 24}, PlaceOf(&PM_Info::Reserved)},
    };
    ExpectLayout<PM_Info>(80, rows);
}

TEST(HxraidLayout, Of_HD_FreeSpaceInfo) {
    const Row rows[] = {
        {"ID", {0, 2}, PlaceOf(&HD_FreeSpaceInfo::ID)},
        {"AdapterID", {2, 1}, PlaceOf(&HD_FreeSpaceInfo::AdapterID)},
        {"isFixed", {3, 1}, PlaceOf(&HD_FreeSpaceInfo::isFixed)},
        {"Reserved", {4, 4}, PlaceOf(&HD_FreeSpaceInfo::Reserved)},
        {"Size", {8, 8}, PlaceOf(&HD_FreeSpaceInfo::Size)},
    };
    ExpectLayout<HD_FreeSpaceInfo>(16, rows);
}

TEST(HxraidLayout, Of_HD_Config) {
    const Row rows[] = {
        {"WriteCacheOn", {0, 1}, PlaceOf(&HD_Config::WriteCacheOn)},
        {"SMARTOn", {1, 1}, PlaceOf(&HD_Config::SMARTOn)},
        {"Online", {2, 1}, PlaceOf(&HD_Config::Online)},
        {"DriveSpeed", {3, 1}, PlaceOf(&HD_Config::DriveSpeed)},
        {"HDID", {4, 2}, PlaceOf(&HD_Config::HDID)},
        {"Reserved", {6, 2}, PlaceOf(&HD_Config::Reserved)},
    };
    ExpectLayout<HD_Config>(8, rows);
}

TEST(HxraidLayout, Of_HD_BGA_Status) {
    const Row rows[] = {
        {"HDID", {0, 2}, PlaceOf(&HD_BGA_Status::HDID)},
        {"Percentage", {2, 2}, PlaceOf(&HD_BGA_Status::Percentage)},
        {"Bga", {4, 1}, PlaceOf(&HD_BGA_Status::Bga)},
        {"Status", {5, 1}, PlaceOf(&HD_BGA_Status::Status)},
        {"BgaStatus", {6, 1}, PlaceOf(&HD_BGA_Status::BgaStatus)},
        {"Reserved", {7, 57}, PlaceOf(&HD_BGA_Status::Reserved)},
    };
    ExpectLayout<HD_BGA_Status>(64, rows);
}

TEST(HxraidLayout, Of_HD_SMART_Status) {
    const Row rows[] = {
        {"SmartThresholdExceeded", {0, 1}, PlaceOf(&HD_SMART_Status::SmartThresholdExceeded)},
        {"Reserved1", {1, 1}, PlaceOf(&HD_SMART_Status::Reserved1)},
        {"HDID", {2, 2}, PlaceOf(&HD_SMART_Status::HDID)},
        {"Reserved2", {4, 4}, PlaceOf(&HD_SMART_Status::Reserved2)},
    };
    ExpectLayout<HD_SMART_Status>(8, rows);
}

TEST(HxraidLayout, Of_HD_RAID_Status) {
    const Row rows[] = {
        {"HDID", {0, 2}, PlaceOf(&HD_RAID_Status::HDID)},
        {"DGID", {2, 2}, PlaceOf(&HD_RAID_Status::DGID)},
        {"Status", {4, 1}, PlaceOf(&HD_RAID_Status::Status)},
        {"Reserved", {5, 3}, PlaceOf(&HD_RAID_Status::Reserved)},
    };
    ExpectLayout<HD_RAID_Status>(8, rows);
}

TEST(HxraidLayout, Of_HD_MBR_Info) {
    const Row rows[] = {
        {"HDCount", {0, 1}, PlaceOf(&HD_MBR_Info::HDCount)},
        {"Reserved", {1, 1}, PlaceOf(&HD_MBR_Info::Reserved)},
        {"HDIDs", {2, 256}, PlaceOf(&HD_MBR_Info::HDIDs)},
        {"hasMBR", {258, 128}, PlaceOf(&HD_MBR_Info::hasMBR)},
    };
    ExpectLayout<HD_MBR_Info>(386, rows);
}

TEST(HxraidLayout, Of_RCT_Record) {
    const Row rows[] = {
        {"lba", {0, 8}, PlaceOf(&RCT_Record::lba)},
        {"sec", {8, 4}, PlaceOf(&RCT_Record::sec)},
        {"flag", {12, 1}, PlaceOf(&RCT_Record::flag)},
        {"Reserved", {13, 3}, PlaceOf(&RCT_Record::Reserved)},
    };
    ExpectLayout<RCT_Record>(16, rows);
}

TEST(HxraidLayout, Of_Block_Info) {
    const Row rows[] = {
        {"ID", {0, 2}, PlaceOf(&Block_Info::ID)},
        {"HDID", {2, 2}, PlaceOf(&Block_Info::HDID)},
        {"Flags", {4, 2}, PlaceOf(&Block_Info::Flags)},
        {"LDID", {6, 2}, PlaceOf(&Block_Info::LDID)},
        {"Status", {8, 1}, PlaceOf(&Block_Info::Status)},
        {"Reserved", {9, 1}, PlaceOf(&Block_Info::Reserved)},
        {"BlockSize", {10, 2}, PlaceOf(&Block_Info::BlockSize)},
        {"ReservedSpaceForMigration", {12, 4}, PlaceOf(&Block_Info::ReservedSpaceForMigration)},
        {"StartLBA", {16, 8}, PlaceOf(&Block_Info::StartLBA)},
        {"Size", {24, 8}, PlaceOf(&Block_Info::Size)},
    };
    ExpectLayout<Block_Info>(32, rows);
}

TEST(HxraidLayout, Of_HD_Block_Info) {
    const Row rows[] = {
        {"ID", {0, 2}, PlaceOf(&HD_Block_Info::ID)},
        {"Type", {2, 1}, PlaceOf(&HD_Block_Info::Type)},
        {"Reserved1", {3, 1}, PlaceOf(&HD_Block_Info::Reserved1)},
        {"BlockIDs", {4, 32}, PlaceOf(&HD_Block_Info::BlockIDs)},
        {"Reserved2", {36, 4}, PlaceOf(&HD_Block_Info::Reserved2)},
    };
    ExpectLayout<HD_Block_Info>(40, rows);
}

TEST(HxraidLayout, Of_LD_Info) {
    const Row rows[] = {
        {"ID", {0, 2}, PlaceOf(&LD_Info::ID)},
        {"AdapterID", {2, 1}, PlaceOf(&LD_Info::AdapterID)},
        {"DGID", {3, 1}, PlaceOf(&LD_Info::DGID)},
        {"Status", {4, 1}, PlaceOf(&LD_Info::Status)},
        {"BGAStatus", {5, 1}, PlaceOf(&LD_Info::BGAStatus)},
        {"StripeBlockSize", {6, 2}, PlaceOf(&LD_Info::StripeBlockSize)},
        {"RaidMode", {8, 1}, PlaceOf(&LD_Info::RaidMode)},
        {"HDCount", {9, 1}, PlaceOf(&LD_Info::HDCount)},
        {"CacheMode", {10, 1}, PlaceOf(&LD_Info::CacheMode)},
        {"SectorCoefficient", {11, 1}, PlaceOf(&LD_Info::SectorCoefficient)},
        {"Reserved1", {12, 4}, PlaceOf(&LD_Info::Reserved1)},
        {"Size", {16, 8}, PlaceOf(&LD_Info::Size)},
        {"Name", {24, 16}, PlaceOf(&LD_Info::Name)},
        {"BlockIDs", {40, 256}, PlaceOf(&LD_Info::BlockIDs)},
        {"SubLDCount", {296, 1}, PlaceOf(&LD_Info::SubLDCount)},
        {"NumParityDisk", {297, 1}, PlaceOf(&LD_Info::NumParityDisk)},
        {"Reserved2", {298, 14}, PlaceOf(&LD_Info::Reserved2)},
    };
    ExpectLayout<LD_Info>(312, rows);
}

TEST(HxraidLayout, Of_LD_Status) {
    const Row rows[] = {
        {"Status", {0, 1}, PlaceOf(&LD_Status::Status)},
        {"Bga", {1, 1}, PlaceOf(&LD_Status::Bga)},
        {"BgaPercentage", {2, 2}, PlaceOf(&LD_Status::BgaPercentage)},
        {"BgaState", {4, 1}, PlaceOf(&LD_Status::BgaState)},
        {"Reserved", {5, 1}, PlaceOf(&LD_Status::Reserved)},
        {"LDID", {6, 2}, PlaceOf(&LD_Status::LDID)},
    };
    ExpectLayout<LD_Status>(8, rows);
}

TEST(HxraidLayout, Of_LD_Config) {
    const Row rows[] = {
        {"CacheMode", {0, 1}, PlaceOf(&LD_Config::CacheMode)},
        {"AutoRebuildOn", {1, 1}, PlaceOf(&LD_Config::AutoRebuildOn)},
        {"Status", {2, 1}, PlaceOf(&LD_Config::Status)},
        {"Reserved1", {3, 1}, PlaceOf(&LD_Config::Reserved1)},
        {"LDID", {4, 2}, PlaceOf(&LD_Config::LDID)},
        {"Name", {6, 16}, PlaceOf(&LD_Config::Name)},
        {"Reserved2", {22, 2}, PlaceOf(&LD_Config::Reserved2)},
    };
    ExpectLayout<LD_Config>(24, rows);
}

TEST(HxraidLayout, Of_Create_LD_Param) {
    const Row rows[] = {
        {"RaidMode", {0, 1}, PlaceOf(&Create_LD_Param::RaidMode)},
        {"HDCount", {1, 1}, PlaceOf(&Create_LD_Param::HDCount)},
        {"RoundingScheme", {2, 1}, PlaceOf(&Create_LD_Param::RoundingScheme)},
        {"SubLDCount", {3, 1}, PlaceOf(&Create_LD_Param::SubLDCount)},
        {"StripeBlockSize", {4, 2}, PlaceOf(&Create_LD_Param::StripeBlockSize)},
        {"NumParityDisk", {6, 1}, PlaceOf(&Create_LD_Param::NumParityDisk)},
        {"CachePolicy", {7, 1}, PlaceOf(&Create_LD_Param::CachePolicy)},
        {"InitializationOption", {8, 1}, PlaceOf(&Create_LD_Param::InitializationOption)},
        {"SectorCoefficient", {9, 1}, PlaceOf(&Create_LD_Param::SectorCoefficient)},
        {"LDID", {10, 2}, PlaceOf(&Create_LD_Param::LDID)},
        {"SpecifiedBlkSeq", {12, 1}, PlaceOf(&Create_LD_Param::SpecifiedBlkSeq)},
        {"Reserved2", {13, 2}, PlaceOf(&Create_LD_Param::Reserved2)},
        {"ReservedForApp", {15, 1}, PlaceOf(&Create_LD_Param::ReservedForApp)},
        {"HDIDs", {16, 256}, PlaceOf(&Create_LD_Param::HDIDs)},
        {"Name", {272, 16}, PlaceOf(&Create_LD_Param::Name)},
        {"Size", {288, 8}, PlaceOf(&Create_LD_Param::Size)},
        {"Reserved3", {296, 216}, PlaceOf(&Create_LD_Param::Reserved3)},
    };
    ExpectLayout<Create_LD_Param>(512, rows);
}

TEST(HxraidLayout, Of_DG_Info) {
    const Row rows[] = {
        {"DGID", {0, 2}, PlaceOf(&DG_Info::DGID)},
        {"Reserved1", {2, 2}, PlaceOf(&DG_Info::Reserved1)},
        {"Name", {4, 16}, PlaceOf(&DG_Info::Name)},
        {"RaidMode", {20, 1}, PlaceOf(&DG_Info::RaidMode)},
        {"SubVDCount", {21, 1}, PlaceOf(&DG_Info::SubVDCount)},
        {"NumParityDisk", {22, 1}, PlaceOf(&DG_Info::NumParityDisk)},
        {"AdapterID", {23, 1}, PlaceOf(&DG_Info::AdapterID)},
        {"Reserved2", {24, 2}, PlaceOf(&DG_Info::Reserved2)},
        {"StripeBlockSize", {26, 2}, PlaceOf(&DG_Info::StripeBlockSize)},
        {"BlockSize", {28, 4}, PlaceOf(&DG_Info::BlockSize)},
        {"TotalManagedSpace", {32, 8}, PlaceOf(&DG_Info::TotalManagedSpace)},
        {"RemainingManagedSpace", {40, 8}, PlaceOf(&DG_Info::RemainingManagedSpace)},
        {"SmallestAvailablePDSize", {48, 8}, PlaceOf(&DG_Info::SmallestAvailablePDSize)},
        {"Status", {56, 1}, PlaceOf(&DG_Info::Status)},
        {"Reserved3", {57, 2}, PlaceOf(&DG_Info::Reserved3)},
        {"PDCount", {59, 1}, PlaceOf(&DG_Info::PDCount)},
        {"PDIDs", {60, 256}, PlaceOf(&DG_Info::PDIDs)},
        {"Reserved4", {316, 3}, PlaceOf(&DG_Info::Reserved4)},
        {"VDSlotCount", {319, 1}, PlaceOf(&DG_Info::VDSlotCount)},
        {"VDSlotSize", {320, 256}, PlaceOf(&DG_Info::VDSlotSize)},
        {"VDIDs", {576, 64}, PlaceOf(&DG_Info::VDIDs)},
        {"SparePDCount", {640, 1}, PlaceOf(&DG_Info::SparePDCount)},
        {"Reserved5", {641, 1}, PlaceOf(&DG_Info::Reserved5)},
        {"SparePDIDs", {642, 16}, PlaceOf(&DG_Info::SparePDIDs)},
        {"BgaType", {658, 2}, PlaceOf(&DG_Info::BgaType)},
        {"BgaState", {660, 1}, PlaceOf(&DG_Info::BgaState)},
        {"Reserved6", {661, 27}, PlaceOf(&DG_Info::Reserved6)},
    };
    ExpectLayout<DG_Info>(688, rows);
}

TEST(HxraidLayout, Of_DG_Config) {
    const Row rows[] = {
        {"DGID", {0, 2}, PlaceOf(&DG_Config::DGID)},
        {"WriteCacheOn", {2, 1}, PlaceOf(&DG_Config::WriteCacheOn)},
        {"Name", {3, 16}, PlaceOf(&DG_Config::Name)},
        {"Reserved", {19, 13}, PlaceOf(&DG_Config::Reserved)},
    };
    ExpectLayout<DG_Config>(32, rows);
}

TEST(HxraidLayout, Of_CreateOrModify_DG_Param) {
    const Row rows[] = {
        {"DGID", {0, 2}, PlaceOf(&CreateOrModify_DG_Param::DGID)},
        {"Reserved1", {2, 2}, PlaceOf(&CreateOrModify_DG_Param::Reserved1)},
        {"Name", {4, 16}, PlaceOf(&CreateOrModify_DG_Param::Name)},
        {"RaidMode", {20, 1}, PlaceOf(&CreateOrModify_DG_Param::RaidMode)},
        {"SubVDCount", {21, 1}, PlaceOf(&CreateOrModify_DG_Param::SubVDCount)},
        {"NumParityDisk", {22, 1}, PlaceOf(&CreateOrModify_DG_Param::NumParityDisk)},
        {"Reserved2", {23, 7}, PlaceOf(&CreateOrModify_DG_Param::Reserved2)},
        {"StripeBlockSize", {30, 2}, PlaceOf(&CreateOrModify_DG_Param::StripeBlockSize)},
        {"Size", {32, 8}, PlaceOf(&CreateOrModify_DG_Param::Size)},
        {"BlockSize", {40, 4}, PlaceOf(&CreateOrModify_DG_Param::BlockSize)},
        {"InitializationOption", {44, 1}, PlaceOf(&CreateOrModify_DG_Param::InitializationOption)},
        {"Reserved3", {45, 2}, PlaceOf(&CreateOrModify_DG_Param::Reserved3)},
        {"PDCount", {47, 1}, PlaceOf(&CreateOrModify_DG_Param::PDCount)},
        {"PDIDs", {48, 256}, PlaceOf(&CreateOrModify_DG_Param::PDIDs)},
        {"Reserved4", {304, 128}, PlaceOf(&CreateOrModify_DG_Param::Reserved4)},
    };
    ExpectLayout<CreateOrModify_DG_Param>(432, rows);
}

TEST(HxraidLayout, Of_CreateOrModify_VD_Param) {
    const Row rows[] = {
        {"VDID", {0, 2}, PlaceOf(&CreateOrModify_VD_Param::VDID)},
        {"DGID", {2, 2}, PlaceOf(&CreateOrModify_VD_Param::DGID)},
        {"Name", {4, 16}, PlaceOf(&CreateOrModify_VD_Param::Name)},
        {"RaidMode", {20, 1}, PlaceOf(&CreateOrModify_VD_Param::RaidMode)},
        {"SubVDCount", {21, 1}, PlaceOf(&CreateOrModify_VD_Param::SubVDCount)},
        {"NumParityDisk", {22, 1}, PlaceOf(&CreateOrModify_VD_Param::NumParityDisk)},
        {"DGSlotNum", {23, 1}, PlaceOf(&CreateOrModify_VD_Param::DGSlotNum)},
        {"Reserved1", {24, 6}, PlaceOf(&CreateOrModify_VD_Param::Reserved1)},
        {"StripeBlockSize", {30, 2}, PlaceOf(&CreateOrModify_VD_Param::StripeBlockSize)},
        {"Size", {32, 8}, PlaceOf(&CreateOrModify_VD_Param::Size)},
        {"RoundingScheme", {40, 1}, PlaceOf(&CreateOrModify_VD_Param::RoundingScheme)},
        {"CachePolicy", {41, 1}, PlaceOf(&CreateOrModify_VD_Param::CachePolicy)},
        {"InitializationOption", {42, 1}, PlaceOf(&CreateOrModify_VD_Param::InitializationOption)},
        {"SectorCoefficient", {43, 1}, PlaceOf(&CreateOrModify_VD_Param::SectorCoefficient)},
        {"BlockSize", {44, 4}, PlaceOf(&CreateOrModify_VD_Param::BlockSize)},
        {"Reserved", {48, 256}, PlaceOf(&CreateOrModify_VD_Param::Reserved)},
    };
    ExpectLayout<CreateOrModify_VD_Param>(304, rows);
}

TEST(HxraidLayout, Of_LD_DG_Rebuild_Param) {
    const Row rows[] = {
        {"ID", {0, 2}, PlaceOf(&LD_DG_Rebuild_Param::ID)},
        {"RebuildType", {2, 1}, PlaceOf(&LD_DG_Rebuild_Param::RebuildType)},
        {"PDCount", {3, 1}, PlaceOf(&LD_DG_Rebuild_Param::PDCount)},
        {"PDIDs", {4, 256}, PlaceOf(&LD_DG_Rebuild_Param::PDIDs)},
    };
    ExpectLayout<LD_DG_Rebuild_Param>(260, rows);
}

TEST(HxraidLayout, Of_Enclosure_Info) {
    const Row rows[] = {
        {"Link", {0, 48}, PlaceOf(&Enclosure_Info::Link)},
        {"AdapterID", {48, 1}, PlaceOf(&Enclosure_Info::AdapterID)},
        {"Status", {49, 1}, PlaceOf(&Enclosure_Info::Status)},
        {"LogicalID", {50, 17}, PlaceOf(&Enclosure_Info::LogicalID)},
        {"VendorID", {67, 9}, PlaceOf(&Enclosure_Info::VendorID)},
        {"ProductID", {76, 17}, PlaceOf(&Enclosure_Info::ProductID)},
        {"RevisionLevel", {93, 5}, PlaceOf(&Enclosure_Info::RevisionLevel)},
        {"ExpanderCount", {98, 1}, PlaceOf(&Enclosure_Info::ExpanderCount)},
        {"Reserved1", {99, 1}, PlaceOf(&Enclosure_Info::Reserved1)},
        {"ExpanderIDs", {100, 16}, PlaceOf(&Enclosure_Info::ExpanderIDs)},
        {"Reserved2", {116, 36}, PlaceOf(&Enclosure_Info::Reserved2)},
    };
    ExpectLayout<Enclosure_Info>(152, rows);
}

TEST(HxraidLayout, Of_EncElementType_Info) {
    const Row rows[] = {
        {"EnclosureID", {0, 2}, PlaceOf(&EncElementType_Info::EnclosureID)},
        {"Status", {2, 1}, PlaceOf(&EncElementType_Info::Status)},
        {"ElementID", {3, 1}, PlaceOf(&EncElementType_Info::ElementID)},
        {"Type", {4, 1}, PlaceOf(&EncElementType_Info::Type)},
        {"Reserved", {5, 1}, PlaceOf(&EncElementType_Info::Reserved)},
        {"ElementData", {6, 10}, PlaceOf(&EncElementType_Info::ElementData)},
    };
    ExpectLayout<EncElementType_Info>(16, rows);
}

TEST(HxraidLayout, Of_EncElement_Config) {
    const Row rows[] = {
        {"EnclosureID", {0, 2}, PlaceOf(&EncElement_Config::EnclosureID)},
        {"Status", {2, 1}, PlaceOf(&EncElement_Config::Status)},
        {"ElementID", {3, 1}, PlaceOf(&EncElement_Config::ElementID)},
        {"Type", {4, 1}, PlaceOf(&EncElement_Config::Type)},
        {"highCriticalThreshold", {5, 1}, PlaceOf(&EncElement_Config::highCriticalThreshold)},
        {"highWarningThreshold", {6, 1}, PlaceOf(&EncElement_Config::highWarningThreshold)},
        {"lowCriticalThreshold", {7, 1}, PlaceOf(&EncElement_Config::lowCriticalThreshold)},
        {"lowWarningThreshold", {8, 1}, PlaceOf(&EncElement_Config::lowWarningThreshold)},
        {"Reserved", {9, 7}, PlaceOf(&EncElement_Config::Reserved)},
    };
    ExpectLayout<EncElement_Config>(16, rows);
}

TEST(HxraidLayout, Of_BBU_Info) {
    const Row rows[] = {
        {"status", {0, 4}, PlaceOf(&BBU_Info::status)},
        {"prev_status", {4, 4}, PlaceOf(&BBU_Info::prev_status)},
        {"voltage", {8, 2}, PlaceOf(&BBU_Info::voltage)},
        {"supportMaxCapacity", {10, 2}, PlaceOf(&BBU_Info::supportMaxCapacity)},
        {"supportMinCapacity", {12, 2}, PlaceOf(&BBU_Info::supportMinCapacity)},
        {"maxCapacity", {14, 2}, PlaceOf(&BBU_Info::maxCapacity)},
        {"curCapacity", {16, 2}, PlaceOf(&BBU_Info::curCapacity)},
        {"time_to_empty", {18, 2}, PlaceOf(&BBU_Info::time_to_empty)},
        {"time_to_full", {20, 2}, PlaceOf(&BBU_Info::time_to_full)},
        {"recharge_cycle", {22, 2}, PlaceOf(&BBU_Info::recharge_cycle)},
        {"featureSupport", {24, 2}, PlaceOf(&BBU_Info::featureSupport)},
        {"temperature", {26, 2}, PlaceOf(&BBU_Info::temperature)},
        {"volt_lowerbound", {28, 2}, PlaceOf(&BBU_Info::volt_lowerbound)},
        {"volt_upperbound", {30, 2}, PlaceOf(&BBU_Info::volt_upperbound)},
        {"temp_lowerbound", {32, 2}, PlaceOf(&BBU_Info::temp_lowerbound)},
        {"temp_upperbound", {34, 2}, PlaceOf(&BBU_Info::temp_upperbound)},
        {"percentage", {36, 1}, PlaceOf(&BBU_Info::percentage)},
        {"percent_to_charge", {37, 1}, PlaceOf(&BBU_Info::percent_to_charge)},
        {"flags", {38, 1}, PlaceOf(&BBU_Info::flags)},
        {"Reserved", {39, 25}, PlaceOf(&BBU_Info::Reserved)},
    };
    ExpectLayout<BBU_Info>(64, rows);
}

TEST(HxraidLayout, Of_Flash_Data) {
    const Row rows[] = {
        {"DataLength", {0, 4}, PlaceOf(&Flash_Data::DataLength)},
        {"PageNum", {4, 2}, PlaceOf(&Flash_Data::PageNum)},
        {"isLastPage", {6, 1}, PlaceOf(&Flash_Data::isLastPage)},
        {"Reserved1", {7, 1}, PlaceOf(&Flash_Data::Reserved1)},
        {"Reserved", {8, 4}, PlaceOf(&Flash_Data::Reserved)},
        {"Data", {12, 32768}, PlaceOf(&Flash_Data::Data)},
    };
    ExpectLayout<Flash_Data>(32780, rows);
}

TEST(HxraidLayout, Of_Event) {
    const Row rows[] = {
        {"Class", {0, 2}, PlaceOf(&Event::Class)},
        {"Code", {2, 2}, PlaceOf(&Event::Code)},
        {"TimeStamp", {4, 4}, PlaceOf(&Event::TimeStamp)},
        {"DeviceID", {8, 2}, PlaceOf(&Event::DeviceID)},
        {"Severity", {10, 1}, PlaceOf(&Event::Severity)},
        {"AdapterID", {11, 1}, PlaceOf(&Event::AdapterID)},
        {"SequenceNo", {12, 4}, PlaceOf(&Event::SequenceNo)},
        {"Params", {16, 16}, PlaceOf(&Event::Params)},
        {"SenseDataLength", {32, 1}, PlaceOf(&Event::SenseDataLength)},
        {"Reserved2", {33, 1}, PlaceOf(&Event::Reserved2)},
        {"SenseData", {34, 30}, PlaceOf(&Event::SenseData)},
    };
    ExpectLayout<Event>(64, rows);
}

TEST(HxraidLayout, Of_HD_Info_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&HD_Info_Request::header)},
        {"hdInfo", {16, 248}, PlaceOf(&HD_Info_Request::hdInfo)},
    };
    ExpectLayout<HD_Info_Request>(264, rows);
}

TEST(HxraidLayout, Of_Exp_Info_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&Exp_Info_Request::header)},
        {"expInfo", {16, 132}, PlaceOf(&Exp_Info_Request::expInfo)},
    };
    ExpectLayout<Exp_Info_Request>(148, rows);
}

TEST(HxraidLayout, Of_PM_Info_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&PM_Info_Request::header)},
        {"pmInfo", {16, 80}, PlaceOf(&PM_Info_Request::pmInfo)},
    };
    ExpectLayout<PM_Info_Request>(96, rows);
}

TEST(HxraidLayout, Of_HD_FreeSpaceInfo_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&HD_FreeSpaceInfo_Request::header)},
        {"hdFreeSpaceInfo", {16, 16}, PlaceOf(&HD_FreeSpaceInfo_Request::hdFreeSpaceInfo)},
    };
    ExpectLayout<HD_FreeSpaceInfo_Request>(32, rows);
}

TEST(HxraidLayout, Of_HD_Config_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&HD_Config_Request::header)},
        {"hdConfig", {16, 8}, PlaceOf(&HD_Config_Request::hdConfig)},
    };
    ExpectLayout<HD_Config_Request>(24, rows);
}

TEST(HxraidLayout, Of_HD_BGA_Status_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&HD_BGA_Status_Request::header)},
        {"hdBgaStatus", {16, 64}, PlaceOf(&HD_BGA_Status_Request::hdBgaStatus)},
    };
    ExpectLayout<HD_BGA_Status_Request>(80, rows);
}

TEST(HxraidLayout, Of_HD_SMART_Status_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&HD_SMART_Status_Request::header)},
        {"hdSmartStatus", {16, 8}, PlaceOf(&HD_SMART_Status_Request::hdSmartStatus)},
    };
    ExpectLayout<HD_SMART_Status_Request>(24, rows);
}

TEST(HxraidLayout, Of_HD_RAID_Status_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&HD_RAID_Status_Request::header)},
        {"hdRaidStatus", {16, 8}, PlaceOf(&HD_RAID_Status_Request::hdRaidStatus)},
    };
    ExpectLayout<HD_RAID_Status_Request>(24, rows);
}

TEST(HxraidLayout, Of_Info_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&Info_Request::header)},
        {"blockInfo", {16, 32}, PlaceOf(&Info_Request::blockInfo)},
    };
    ExpectLayout<Info_Request>(48, rows);
}

TEST(HxraidLayout, Of_HD_Block_Info_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&HD_Block_Info_Request::header)},
        {"hdBlockInfo", {16, 40}, PlaceOf(&HD_Block_Info_Request::hdBlockInfo)},
    };
    ExpectLayout<HD_Block_Info_Request>(56, rows);
}

TEST(HxraidLayout, Of_LD_Info_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&LD_Info_Request::header)},
        {"ldInfo", {16, 312}, PlaceOf(&LD_Info_Request::ldInfo)},
    };
    ExpectLayout<LD_Info_Request>(328, rows);
}

TEST(HxraidLayout, Of_LD_Status_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&LD_Status_Request::header)},
        {"ldStatus", {16, 8}, PlaceOf(&LD_Status_Request::ldStatus)},
    };
    ExpectLayout<LD_Status_Request>(24, rows);
}

TEST(HxraidLayout, Of_LD_Config_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&LD_Config_Request::header)},
        {"ldConfig", {16, 24}, PlaceOf(&LD_Config_Request::ldConfig)},
    };
    ExpectLayout<LD_Config_Request>(40, rows);
}

TEST(HxraidLayout, Of_DG_Info_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&DG_Info_Request::header)},
        {"dgInfo", {16, 688}, PlaceOf(&DG_Info_Request::dgInfo)},
    };
    ExpectLayout<DG_Info_Request>(704, rows);
}

TEST(HxraidLayout, Of_DG_Config_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&DG_Config_Request::header)},
        {"dgConfig", {16, 32}, PlaceOf(&DG_Config_Request::dgConfig)},
    };
    ExpectLayout<DG_Config_Request>(48, rows);
}

TEST(HxraidLayout, Of_Enclosure_Info_Request) {
    const Row rows[] = {
        {"header", {0, 16}, PlaceOf(&Enclosure_Info_Request::header)},
        {"enclosureInfo", {16, 152}, PlaceOf(&Enclosure_Info_Request::enclosureInfo)},
    };
    ExpectLayout<Enclosure_Info_Request>(168, rows);
}

TEST(HxraidLayout, OfAnElementDependsOnItsType) {
    using Element = EncElementType_Info;
    // HX_ELEMENT_POWER_SUPPLY
    EXPECT_EQ((Place{6, 2}), PlaceOf(&Element::TempWarn));
    EXPECT_EQ((Place{8, 1}), PlaceOf(&Element::HotSwap));
    EXPECT_EQ((Place{9, 1}), PlaceOf(&Element::DCOverCurrent));
    EXPECT_EQ((Place{10, 1}), PlaceOf(&Element::DCOverVoltage));
    EXPECT_EQ((Place{11, 1}), PlaceOf(&Element::DCUnderVoltage));
    // HX_ELEMENT_FAN
    EXPECT_EQ((Place{6, 2}), PlaceOf(&Element::CurSpeedcode));
    EXPECT_EQ((Place{8, 2}), PlaceOf(&Element::CurSpeed));
    // HX_ELEMENT_TEMPERATURE
    EXPECT_EQ((Place{6, 1}), PlaceOf(&Element::OTFailure));
    EXPECT_EQ((Place{7, 1}), PlaceOf(&Element::OTWarning));
    EXPECT_EQ((Place{8, 1}), PlaceOf(&Element::UTFailure));
    EXPECT_EQ((Place{9, 1}), PlaceOf(&Element::UTWarning));
    EXPECT_EQ((Place{10, 1}), PlaceOf(&Element::Temperature));
    // HX_ELEMENT_DOOR
    EXPECT_EQ((Place{6, 1}), PlaceOf(&Element::Unlocked));
    // HX_ELEMENT_ALARM
    EXPECT_EQ((Place{6, 1}), PlaceOf(&Element::Mute));
    EXPECT_EQ((Place{7, 1}), PlaceOf(&Element::Remind));
    EXPECT_EQ((Place{8, 1}), PlaceOf(&Element::Character1));
    EXPECT_EQ((Place{9, 1}), PlaceOf(&Element::Mode));
    // HX_ELEMENT_VOLTAGE
    EXPECT_EQ((Place{6, 1}), PlaceOf(&Element::WarnOver));
    EXPECT_EQ((Place{7, 1}), PlaceOf(&Element::WarnUnder));
    EXPECT_EQ((Place{8, 1}), PlaceOf(&Element::CritOver));
    EXPECT_EQ((Place{9, 1}), PlaceOf(&Element::CritUnder));
    EXPECT_EQ((Place{10, 2}), PlaceOf(&Element::Voltage));
}

TEST(HxraidInC, HasTheSameRecordsAsInCpp) {
    EXPECT_EQ(51u, hxraid_c_size_count);
    for (std::size_t i = 0; i < hxraid_c_size_count; ++i) {
        EXPECT_EQ(hxraid_c_sizes[i].expected, hxraid_c_sizes[i].actual) << hxraid_c_sizes[i].record;
    }
}

TEST(HxraidInC, ReachesTheOverlaidFieldsByTheirNames) {
    EncElementType_Info element{};
    hxraid_c_set_voltage(&element, 1234);
    EXPECT_EQ(1234, element.Voltage);
}

}  // namespace
