// The rows of the controller library's records, in the order in which they are written.
#pragma once

#include "hxraid.h"
#include "xml_rapi_flash.h"
#include "xml_rapi_rows.h"
#include "xml_rapi_user.h"

inline constexpr Record kVersion_Info{
    "struct Version_Info",
    Col("VerMajor", kU32, &Version_Info::VerMajor),
    Col("VerMinor", kU32, &Version_Info::VerMinor),
    Col("VerOEM", kU32, &Version_Info::VerOEM),
    Col("VerBuild", kU32, &Version_Info::VerBuild),
};

// The 16-bit version has the same type name; readers distinguish the two by the element name.
inline constexpr Record kVersion_Info_CIM{
    "struct Version_Info",
    Col("VerMajor", kU16, &Version_Info_CIM::MajorVersion),
    Col("VerMinor", kU16, &Version_Info_CIM::MinorVersion),
    Col("VerOEM", kU16, &Version_Info_CIM::RevisionNumber),
    Col("VerBuild", kU16, &Version_Info_CIM::BuildNumber),
};

// A BIOS image's version. Its identifiers are hexadecimal here, and decimal in an adapter's record.
inline constexpr Record kVersion_Info_BIOS{
    "struct VX_BIOS_Version",
    PartOf<VX_BIOS_Version>(),
    Nest<kVersion_Info_CIM>("BIOSVersion", &VX_BIOS_Version::VersionInfo),
    Hex("VenID", kU16, &VX_BIOS_Version::SubVenID),
    Hex("DevID", kU16, &VX_BIOS_Version::SubDevID),
};

// A user's name has no record element of its own.
inline constexpr Record kUserName_Value{
    "",
    PartOf<VX_GetUserName>(),
    Bare("UserName", &VX_GetUserName::UserName),
    Bare("DomainName", &VX_GetUserName::DomaimName),
};

// One array element per port, its number in its name. A port beyond the record's capacity has no
// address to write.
struct PortAddresses {
    using Of = Adapter_Info;
    static constexpr std::size_t kWidth = sizeof(Adapter_Info::PortSasAddress);
    static constexpr std::size_t kPorts = HX_MAX_PORTS;
    static_assert(kPorts <= 10, "a port's number is one digit");

    constexpr void Head(LiteralSink&, int) const {}
    constexpr void Tail(LiteralSink&, int) const {}
    template <int depth>
    constexpr std::size_t ValueBound() const {
        LiteralSink sink;
        Element(sink, depth, "0");
        return kPorts * (sink.length + 8 * 4) + kDigitSlack;
    }
    template <int depth>
    char* Put(char* at, const Adapter_Info& record) const {
        for (std::size_t port = 0; port < Ports(record); ++port) {
            const char digit = static_cast<char>('0' + port);
            at = PutLiteral(at, kStart<depth>);
            *at++ = digit;
            at = PutItems(PutLiteral(at, kItems<depth>), record.PortSasAddress[port]) - 1;
            at = PutLiteral(at, kEnd<depth>);
            *at++ = digit;
            *at++ = '>';
            *at++ = '\n';
        }
        return at;
    }
    void WriteExact(XMLWR_Doc* doc, const Adapter_Info& record) const {
        char name[] = "PortSasAddress0";
        for (std::size_t port = 0; port < Ports(record); ++port) {
            name[sizeof name - 2] = static_cast<char>('0' + port);
            WriteItemsExact(doc, name, kU8.name, record.PortSasAddress[port]);
        }
    }

private:
    static std::size_t Ports(const Adapter_Info& record) {
        return record.PortCount < kPorts ? record.PortCount : kPorts;
    }
    // A whole element without its items, for its size; the names end in the port's number.
    static constexpr void Element(LiteralSink& sink, int depth, std::string_view number) {
        ArrayHead(sink, depth, "PortSasAddress", kU8.name, 8);
        sink.Put(number);
        ArrayTail(sink, depth, "PortSasAddress");
        sink.Put(number);
    }
    template <int depth>
    static constexpr auto kStart = MakeLiteral([](LiteralSink& sink) {
        sink.Indent(depth);
        sink.Put("<PortSasAddress");
    });
    template <int depth>
    static constexpr auto kItems = MakeLiteral([](LiteralSink& sink) {
        sink.Put(" type=\"U8\" width=\"8\">\n");
        sink.Indent(depth + 1);
    });
    template <int depth>
    static constexpr auto kEnd = MakeLiteral([](LiteralSink& sink) {
        sink.Put("\n");
        sink.Indent(depth);
        sink.Put("</PortSasAddress");
    });
};

inline constexpr Record kAdapter_Info{
    "struct Adapter_Info",
    Without(&Adapter_Info::Reserved1, &Adapter_Info::Reserved2, &Adapter_Info::Reserved3,
            &Adapter_Info::Reserved4),
    Nest<kVersion_Info>("DriverVersion", &Adapter_Info::DriverVersion),
    Nest<kVersion_Info_CIM>("BIOSVersion", &Adapter_Info::BIOSVersion),
    Nest<kVersion_Info_CIM>("FirmwareVersion", &Adapter_Info::FirmwareVersion),
    Nest<kVersion_Info_CIM>("BootLoaderVersion", &Adapter_Info::BootLoaderVersion),
    Col("SystemIOBusNumber", kU32, &Adapter_Info::SystemIOBusNumber),
    Col("SlotNumber", kU32, &Adapter_Info::SlotNumber),
    Col("InterruptLevel", kU32, &Adapter_Info::InterruptLevel),
    Col("InterruptVector", kU32, &Adapter_Info::InterruptVector),
    Col("VenID", kU16, &Adapter_Info::VenID),
    Col("SubVenID", kU16, &Adapter_Info::SubVenID),
    Col("DevID", kU16, &Adapter_Info::DevID),
    Col("SubDevID", kU16, &Adapter_Info::SubDevID),
    Col("RevisionID", kU8, &Adapter_Info::RevisionID),
    Col("MaxPDPerVD", kU8, &Adapter_Info::MaxPDPerVD),
    Col("StripeSizeSupported", kU16, &Adapter_Info::StripeSizeSupported),
    Col("AdvancedFeatures", kU32, &Adapter_Info::AdvancedFeatures),
    Col("MaxPDPerDG", kU8, &Adapter_Info::MaxPDPerDG),
    Col("MaxVDPerDG", kU8, &Adapter_Info::MaxVDPerDG),
    Col("MaxParityDisks", kU8, &Adapter_Info::MaxParityDisks),
    Col("PortCount", kU8, &Adapter_Info::PortCount),
    Col("PortSupportType", kU8, &Adapter_Info::PortSupportType),
    Col("Features", kU8, &Adapter_Info::Features),
    Col("AlarmSupport", kBOOL, &Adapter_Info::AlarmSupport),
    Col("MaxBlockPerPD", kU8, &Adapter_Info::MaxBlockPerPD),
    Col("MaxHD", kU8, &Adapter_Info::MaxHD),
    Col("MaxHD_Ext", kU16, &Adapter_Info::MaxHD_Ext),
    Col("MaxExpander", kU8, &Adapter_Info::MaxExpander),
    Col("MaxPM", kU8, &Adapter_Info::MaxPM),
    Col("MaxLogicalDrive", kU8, &Adapter_Info::MaxLogicalDrive),
    Col("LogicalDriverMode", kU16, &Adapter_Info::LogicalDriverMode),
    Flag("DiskGroupSupport", kBOOL, &Adapter_Info::DiskGroupSupport),
    Col("WWN", kU8, &Adapter_Info::WWN),
    Col("MaxBufferSize", kU16, &Adapter_Info::MaxBufferSize),
    CData<DigitText>("SerialNo", &Adapter_Info::SerialNo),
    PortAddresses{},
    Col("img_health", kBOOL, &Adapter_Info::img_health),
    Col("autoload_img_health", kBOOL, &Adapter_Info::autoload_img_health),
    Col("boot_loader_img_health", kBOOL, &Adapter_Info::boot_loader_img_health),
    Col("firmware_img_health", kBOOL, &Adapter_Info::firmware_img_health),
    Col("boot_rom_img_health", kBOOL, &Adapter_Info::boot_rom_img_health),
    Col("hba_info_img_health", kBOOL, &Adapter_Info::hba_info_img_health),
};

// Links, disks, expanders and port multipliers ----------------------------------------------------

inline constexpr Record kRequestHeader_Entity_Info{
    "struct RequestHeader",
    Without(&RequestHeader::reserved1),
    Col("version", kU8, &RequestHeader::version),
    Col("requestType", kU8, &RequestHeader::requestType),
    Col("startingIndexOrId", kU16, &RequestHeader::startingIndexOrId),
    Col("numRequested", kU16, &RequestHeader::numRequested),
    Col("numReturned", kU16, &RequestHeader::numReturned),
    Col("nextStartingIndex", kU16, &RequestHeader::nextStartingIndex),
};

inline constexpr Record kLink_Endpoint_Info{
    "struct Link_Endpoint",
    Without(&Link_Endpoint::Reserved),
    Col("DevID", kU16, &Link_Endpoint::DevID),
    Col("DevType", kU8, &Link_Endpoint::DevType),
    Col("PhyCnt", kU8, &Link_Endpoint::PhyCnt),
    Col("PhyID", kU8, &Link_Endpoint::PhyID),
    Col("SAS_Address", kU8, &Link_Endpoint::SAS_Address),
    Col("EnclosureID", kU16, &Link_Endpoint::EnclosureID),
};

inline constexpr Record kLink_Entity_Info{
    "struct Link_Entity",
    Nest<kLink_Endpoint_Info>("Parent", &Link_Entity::Parent),
    Nest<kLink_Endpoint_Info>("Self", &Link_Entity::Self),
};

inline constexpr Record kPM_Info{
    "struct PM_Info",
    Without(&PM_Info::Reserved),
    Nest<kLink_Entity_Info>("Link", &PM_Info::Link),
    Col("AdapterID", kU8, &PM_Info::AdapterID),
    Col("ProductRevision", kU8, &PM_Info::ProductRevision),
    Col("PMSpecRevision", kU8, &PM_Info::PMSpecRevision),
    Col("NumberOfPorts", kU8, &PM_Info::NumberOfPorts),
    Col("VendorId", kU16, &PM_Info::VendorId),
    Col("DeviceId", kU16, &PM_Info::DeviceId),
};

// Whether the disk can be used for virtual disks: the SCSI peripheral device type 0 is a disk.
inline constexpr auto kCanLogicalUsed = [](const HD_Info& disk) {
    return disk.DeviceType == 0 ? 1 : 0;
};

inline constexpr Record kHD_Info{
    "struct HD_Info",
    Without(&HD_Info::Reserved1, &HD_Info::Reserved2, &HD_Info::Reserved3),
    Nest<kLink_Entity_Info>("Link", &HD_Info::Link),
    Col("AdapterID", kU8, &HD_Info::AdapterID),
    Col("Status", kU8, &HD_Info::Status),
    Col("HDType", kU8, &HD_Info::HDType),
    Col("PIOMode", kU8, &HD_Info::PIOMode),
    Col("MDMAMode", kU8, &HD_Info::MDMAMode),
    Col("UDMAMode", kU8, &HD_Info::UDMAMode),
    Col("ConnectionType", kU8, &HD_Info::ConnectionType),
    Col("DeviceType", kU8, &HD_Info::DeviceType),
    Computed<HD_Info>("CanLogicalUsed", kCanLogicalUsed),
    Col("FeatureSupport", kU32, &HD_Info::FeatureSupport),
    Col("CurrentPIOMode", kU8, &HD_Info::CurrentPIOMode),
    Col("CurrentMDMAMode", kU8, &HD_Info::CurrentMDMAMode),
    Col("CurrentUDMAMode", kU8, &HD_Info::CurrentUDMAMode),
    CData<ModelText>("Model", &HD_Info::Model),
    CData<TrimmedText>("SerialNo", &HD_Info::SerialNo),
    CData<TrimmedText>("FWVersion", &HD_Info::FWVersion),
    Col("WWN", kU8, &HD_Info::WWN),
    Col("Size", kU64, &HD_Info::Size),
    Col("ActivityLEDStatus", kU8, &HD_Info::ActivityLEDStatus),
    Col("LocateLEDStatus", kU8, &HD_Info::LocateLEDStatus),
    Col("ErrorLEDStatus", kU8, &HD_Info::ErrorLEDStatus),
};

inline constexpr Record kHD_Config{
    "struct HD_Config",
    Without(&HD_Config::Reserved),
    Col("WriteCacheOn", kBOOL, &HD_Config::WriteCacheOn),
    Col("SMARTOn", kBOOL, &HD_Config::SMARTOn),
    Col("Online", kBOOL, &HD_Config::Online),
    Col("DriveSpeed", kU8, &HD_Config::DriveSpeed),
    Col("HDID", kU16, &HD_Config::HDID),
};

inline constexpr Record kHD_SMART_Status{
    "struct HD_SMART_Status",
    Without(&HD_SMART_Status::Reserved1, &HD_SMART_Status::Reserved2),
    Col("SmartThresholdExceeded", kBOOL, &HD_SMART_Status::SmartThresholdExceeded),
    Col("HDID", kU16, &HD_SMART_Status::HDID),
};

inline constexpr Record kHD_RCT_Records{
    "struct RCT_Record",
    Without(&RCT_Record::Reserved),
    Col("lba", kU64, &RCT_Record::lba),
    Col("sec", kU32, &RCT_Record::sec),
    Col("flag", kU8, &RCT_Record::flag),
};

inline constexpr Record kHD_RAID_Status{
    "struct HD_RAID_Status",
    Without(&HD_RAID_Status::Reserved),
    Col("HDID", kU16, &HD_RAID_Status::HDID),
    Col("LDID", kU16, &HD_RAID_Status::DGID),
    Col("Status", kU8, &HD_RAID_Status::Status),
};

inline constexpr Record kHD_BGA_Status{
    "struct HD_BGA_Status",
    Without(&HD_BGA_Status::Reserved),
    Col("HDID", kU16, &HD_BGA_Status::HDID),
    Col("Percentage", kU16, &HD_BGA_Status::Percentage),
    Col("Bga", kU8, &HD_BGA_Status::Bga),
    Col("Status", kU8, &HD_BGA_Status::Status),
    Col("BgaStatus", kU8, &HD_BGA_Status::BgaStatus),
};

inline constexpr Record kHD_MBR_Info{
    "struct HD_MBR_Info",
    Without(&HD_MBR_Info::Reserved),
    Col("HDCount", kU8, &HD_MBR_Info::HDCount),
    Col("HDIDs", kU16, &HD_MBR_Info::HDIDs),
    Col("hasMBR", kBOOL, &HD_MBR_Info::hasMBR),
};

inline constexpr Record kHD_FreeSpaceInfo{
    "struct HD_FreeSpaceInfo",
    Without(&HD_FreeSpaceInfo::Reserved),
    Col("ID", kU16, &HD_FreeSpaceInfo::ID),
    Col("AdapterID", kU8, &HD_FreeSpaceInfo::AdapterID),
    Col("isFixed", kBOOL, &HD_FreeSpaceInfo::isFixed),
    Col("Size", kU64, &HD_FreeSpaceInfo::Size),
};

inline constexpr Record kHD_Block_Info{
    "struct HD_Block_Info",
    Without(&HD_Block_Info::Reserved1, &HD_Block_Info::Reserved2),
    Col("ID", kU16, &HD_Block_Info::ID),
    Col("Type", kU8, &HD_Block_Info::Type),
    Col("BlockIDs", kU16, &HD_Block_Info::BlockIDs),
};

inline constexpr Record kExp_Info{
    "struct Exp_Info",
    Without(&Exp_Info::Reserved),
    Nest<kLink_Entity_Info>("Link", &Exp_Info::Link),
    Col("AdapterID", kU8, &Exp_Info::AdapterID),
    Col("Configuring", kBOOL, &Exp_Info::Configuring),
    Col("RouteTableConfigurable", kBOOL, &Exp_Info::RouteTableConfigurable),
    Col("PhyCount", kU8, &Exp_Info::PhyCount),
    Col("ExpChangeCount", kU16, &Exp_Info::ExpChangeCount),
    Col("MaxRouteIndexes", kU16, &Exp_Info::MaxRouteIndexes),
    CData("VendorID", &Exp_Info::VendorID),
    CData("ProductID", &Exp_Info::ProductID),
    CData("ProductRev", &Exp_Info::ProductRev),
    CData("ComponentVendorID", &Exp_Info::ComponentVendorID),
    Col("ComponentID", kHX_U16, &Exp_Info::ComponentID),
    Col("ComponentRevisionID", kHX_U8, &Exp_Info::ComponentRevisionID),
};

inline constexpr Record kBlock_Info{
    "struct Block_Info",
    Without(&Block_Info::Reserved, &Block_Info::BlockSize, &Block_Info::ReservedSpaceForMigration),
    Col("ID", kU16, &Block_Info::ID),
    Col("HDID", kU16, &Block_Info::HDID),
    Col("Flags", kU16, &Block_Info::Flags),
    Col("LDID", kU16, &Block_Info::LDID),
    Col("Status", kU8, &Block_Info::Status),
    Col("StartLBA", kU64, &Block_Info::StartLBA),
    Col("Size", kU64, &Block_Info::Size),
};

// Enclosures -------------------------------------------------------------------------------------

inline constexpr Record kEnclosure_Info{
    "struct Enclosure_Info",
    Without(&Enclosure_Info::Reserved1, &Enclosure_Info::Reserved2),
    Nest<kLink_Entity_Info>("Link", &Enclosure_Info::Link),
    Col("AdapterID", kU8, &Enclosure_Info::AdapterID),
    Col("Status", kU8, &Enclosure_Info::Status),
    CData("LogicalID", &Enclosure_Info::LogicalID),
    CData("VendorID", &Enclosure_Info::VendorID),
    CData("ProductID", &Enclosure_Info::ProductID),
    CData("RevisionLevel", &Enclosure_Info::RevisionLevel),
    Col("ExpanderCount", kU8, &Enclosure_Info::ExpanderCount),
    Col("ExpanderIDs", kU16, &Enclosure_Info::ExpanderIDs),
};

// Every group is written whatever the element's type; a reader uses the group of that type. The
// groups overlap, so their widths add up to more than the record.
inline constexpr Record kENC_ElementInfo{
    "struct EncElementType_Info",
    PartOf<EncElementType_Info>(),
    Col("EnclosureID", kU16, &EncElementType_Info::EnclosureID),
    Col("Status", kU8, &EncElementType_Info::Status),
    Col("ElementID", kU8, &EncElementType_Info::ElementID),
    Col("Type", kU8, &EncElementType_Info::Type),
    Col("TempWarn", kU16, &EncElementType_Info::TempWarn),
    Col("HotSwap", kU8, &EncElementType_Info::HotSwap),
    Col("DCOverCurrent", kU8, &EncElementType_Info::DCOverCurrent),
    Col("DCOverVoltage", kU8, &EncElementType_Info::DCOverVoltage),
    Col("DCUnderVoltage", kU8, &EncElementType_Info::DCUnderVoltage),
    Col("CurSpeedcode", kU16, &EncElementType_Info::CurSpeedcode),
    Col("CurSpeed", kU16, &EncElementType_Info::CurSpeed),
    Col("OTFailure", kU8, &EncElementType_Info::OTFailure),
    Col("OTWarning", kU8, &EncElementType_Info::OTWarning),
    Col("UTFailure", kU8, &EncElementType_Info::UTFailure),
    Col("UTWarning", kU8, &EncElementType_Info::UTWarning),
    Col("Temperature", kU8, &EncElementType_Info::Temperature),
    Col("Unlocked", kU8, &EncElementType_Info::Unlocked),
    Col("Mute", kU8, &EncElementType_Info::Mute),
    Col("Remind", kU8, &EncElementType_Info::Remind),
    Col("Character1", kU8, &EncElementType_Info::Character1),
    Col("Mode", kU8, &EncElementType_Info::Mode),
    Col("WarnOver", kU8, &EncElementType_Info::WarnOver),
    Col("WarnUnder", kU8, &EncElementType_Info::WarnUnder),
    Col("CritOver", kU8, &EncElementType_Info::CritOver),
    Col("CritUnder", kU8, &EncElementType_Info::CritUnder),
    Col("Voltage", kU16, &EncElementType_Info::Voltage),
};

inline constexpr Record kENC_ElementConfig{
    "struct EncElement_Config",
    Without(&EncElement_Config::Reserved),
    Col("EnclosureID", kU16, &EncElement_Config::EnclosureID),
    Col("Status", kU8, &EncElement_Config::Status),
    Col("ElementID", kU8, &EncElement_Config::ElementID),
    Col("Type", kU8, &EncElement_Config::Type),
    Col("highCriticalThreshold", kU8, &EncElement_Config::highCriticalThreshold),
    Col("highWarningThreshold", kU8, &EncElement_Config::highWarningThreshold),
    Col("lowCriticalThreshold", kU8, &EncElement_Config::lowCriticalThreshold),
    Col("lowWarningThreshold", kU8, &EncElement_Config::lowWarningThreshold),
};

// Virtual disks ----------------------------------------------------------------------------------

inline constexpr Record kCreate_LD_Param{
    "struct Create_LD_Param",
    Without(&Create_LD_Param::LDID, &Create_LD_Param::SpecifiedBlkSeq, &Create_LD_Param::Reserved2,
            &Create_LD_Param::ReservedForApp, &Create_LD_Param::Reserved3),
    Col("RaidMode", kU8, &Create_LD_Param::RaidMode),
    Col("HDCount", kU8, &Create_LD_Param::HDCount),
    Col("RoundingScheme", kU8, &Create_LD_Param::RoundingScheme),
    Col("SubLDCount", kU8, &Create_LD_Param::SubLDCount),
    Col("StripeBlockSize", kU16, &Create_LD_Param::StripeBlockSize),
    Col("NumParityDisk", kU8, &Create_LD_Param::NumParityDisk),
    Col("CachePolicy", kU8, &Create_LD_Param::CachePolicy),
    Col("InitializationOption", kU8, &Create_LD_Param::InitializationOption),
    Col("SectorCoefficient", kU8, &Create_LD_Param::SectorCoefficient),
    Col("HDIDs", kU16, &Create_LD_Param::HDIDs),
    CData("Name", &Create_LD_Param::Name),
    Col("Size", kU64, &Create_LD_Param::Size),
};

inline constexpr Record kLD_Status{
    "struct LD_Status",
    Without(&LD_Status::Reserved),
    Col("Status", kU8, &LD_Status::Status),
    Col("Bga", kU8, &LD_Status::Bga),
    Col("BgaPercentage", kU16, &LD_Status::BgaPercentage),
    Col("BgaState", kU8, &LD_Status::BgaState),
    Col("LDID", kU16, &LD_Status::LDID),
};

inline constexpr Record kLD_Config{
    "struct LD_Config",
    Without(&LD_Config::Reserved1, &LD_Config::Reserved2),
    Col("CacheMode", kU8, &LD_Config::CacheMode),
    Col("AutoRebuildOn", kBOOL, &LD_Config::AutoRebuildOn),
    Col("Status", kU8, &LD_Config::Status),
    Col("LDID", kU16, &LD_Config::LDID),
    CData("Name", &LD_Config::Name),
};

inline constexpr Record kLD_Info{
    "struct LD_Info",
    Without(&LD_Info::Reserved1, &LD_Info::Reserved2),
    Col("ID", kU16, &LD_Info::ID),
    Col("AdapterID", kU8, &LD_Info::AdapterID),
    Col("DGID", kU8, &LD_Info::DGID),
    Col("Status", kU8, &LD_Info::Status),
    Col("BGAStatus", kU8, &LD_Info::BGAStatus),
    Col("StripeBlockSize", kU16, &LD_Info::StripeBlockSize),
    Col("RaidMode", kU8, &LD_Info::RaidMode),
    Col("HDCount", kU8, &LD_Info::HDCount),
    Col("CacheMode", kU8, &LD_Info::CacheMode),
    Col("SectorCoefficient", kU8, &LD_Info::SectorCoefficient),
    Col("Size", kU64, &LD_Info::Size),
    CData("Name", &LD_Info::Name),
    Col("BlockIDs", kU16, &LD_Info::BlockIDs),
    Col("SubLDCount", kU8, &LD_Info::SubLDCount),
    Col("NumParityDisk", kU8, &LD_Info::NumParityDisk),
};

// Disk groups ------------------------------------------------------------------------------------

// The name is written bare here, and in CDATA everywhere else.
inline constexpr Record kDG_Config{
    "struct DG_Config",
    Without(&DG_Config::Reserved),
    Col("DGID", kHX_U16, &DG_Config::DGID),
    Col("WriteCacheOn", kHX_BOOLEAN, &DG_Config::WriteCacheOn),
    Bare("Name", &DG_Config::Name),
};

inline constexpr Record kDG_Info{
    "struct DG_Info",
    Without(&DG_Info::Reserved1, &DG_Info::Reserved2, &DG_Info::Reserved3, &DG_Info::Reserved4,
            &DG_Info::Reserved5, &DG_Info::Reserved6),
    Col("DGID", kHX_U16, &DG_Info::DGID),
    CData("Name", &DG_Info::Name),
    Col("RaidMode", kHX_U8, &DG_Info::RaidMode),
    Col("SubVDCount", kHX_U8, &DG_Info::SubVDCount),
    Col("NumParityDisk", kHX_U8, &DG_Info::NumParityDisk),
    Col("AdapterID", kHX_U8, &DG_Info::AdapterID),
    Col("StripeBlockSize", kHX_U16, &DG_Info::StripeBlockSize),
    Col("BlockSize", kHX_U32, &DG_Info::BlockSize),
    Col("TotalManagedSpace", kU64, &DG_Info::TotalManagedSpace),
    Col("RemainingManagedSpace", kU64, &DG_Info::RemainingManagedSpace),
    Col("SmallestAvailablePDSize", kU64, &DG_Info::SmallestAvailablePDSize),
    Col("Status", kHX_U8, &DG_Info::Status),
    Col("PDCount", kHX_U8, &DG_Info::PDCount),
    Col("PDIDs", kHX_U16, &DG_Info::PDIDs),
    Col("VDSlotCount", kHX_U8, &DG_Info::VDSlotCount),
    // The one array whose last item is followed by a blank.
    ColWithLastBlank("VDSlotSize", kU64, &DG_Info::VDSlotSize),
    Col("VDIDs", kHX_U16, &DG_Info::VDIDs),
    Col("SparePDCount", kHX_U8, &DG_Info::SparePDCount),
    Col("SparePDIDs", kHX_U16, &DG_Info::SparePDIDs),
    Col("BgaType", kHX_U16, &DG_Info::BgaType),
    Col("BgaState", kHX_U8, &DG_Info::BgaState),
};

// The result of creating a disk group is its number, the result of sizing one is its size.
inline constexpr Record kCreate_DG_Param{
    "struct CreateOrModify_DG_Param",
    PartOf<CreateOrModify_DG_Param>(),
    Col("DGID", kHX_U16, &CreateOrModify_DG_Param::DGID),
};

inline constexpr Record kDG_Size{
    "struct CreateOrModify_DG_Param",
    PartOf<CreateOrModify_DG_Param>(),
    Col("Size", kU64, &CreateOrModify_DG_Param::Size),
};

// Adapter settings, battery ----------------------------------------------------------------------

inline constexpr Record kAdapter_Config_V2{
    "struct Adapter_Config_V2",
    Without(&Adapter_Config_V2::Reserved),
    Col("AlarmOn", kBOOL, &Adapter_Config_V2::AlarmOn),
    Col("AutoRebuildOn", kBOOL, &Adapter_Config_V2::AutoRebuildOn),
    Col("BGARate", kU8, &Adapter_Config_V2::BGARate),
    Col("SyncRate", kU8, &Adapter_Config_V2::SyncRate),
    Col("InitRate", kU8, &Adapter_Config_V2::InitRate),
    Col("RebuildRate", kU8, &Adapter_Config_V2::RebuildRate),
    Col("MigrationRate", kU8, &Adapter_Config_V2::MigrationRate),
    Col("CopybackRate", kU8, &Adapter_Config_V2::CopybackRate),
    Col("PollSMARTStatus", kU8, &Adapter_Config_V2::PollSMARTStatus),
    Col("MediaPatrolRate", kU8, &Adapter_Config_V2::MediaPatrolRate),
    Col("CopyBack", kU8, &Adapter_Config_V2::CopyBack),
    Col("InterruptCoalescing", kU8, &Adapter_Config_V2::InterruptCoalescing),
    Col("ModuleConsolidate", kU8, &Adapter_Config_V2::ModuleConsolidate),
    Col("v_atapi_disable", kBOOL, &Adapter_Config_V2::v_atapi_disable),
    Col("port_phy_ctrl", kU8, &Adapter_Config_V2::port_phy_ctrl),
};

inline constexpr Record kBBU_GetInfo{
    "struct BBU_Info",
    Without(&BBU_Info::Reserved),
    Col("status", kU32, &BBU_Info::status),
    Col("prev_status", kU32, &BBU_Info::prev_status),
    Col("voltage", kU16, &BBU_Info::voltage),
    Col("supportMaxCapacity", kU16, &BBU_Info::supportMaxCapacity),
    Col("supportMinCapacity", kU16, &BBU_Info::supportMinCapacity),
    Col("maxCapacity", kU16, &BBU_Info::maxCapacity),
    Col("curCapacity", kU16, &BBU_Info::curCapacity),
    Col("time_to_empty", kU16, &BBU_Info::time_to_empty),
    Col("time_to_full", kU16, &BBU_Info::time_to_full),
    Col("recharge_cycle", kU16, &BBU_Info::recharge_cycle),
    Col("featureSupport", kU16, &BBU_Info::featureSupport),
    Col("temperature", kU16, &BBU_Info::temperature),
    Col("volt_lowerbound", kU16, &BBU_Info::volt_lowerbound),
    Col("volt_upperbound", kU16, &BBU_Info::volt_upperbound),
    Col("temp_lowerbound", kU16, &BBU_Info::temp_lowerbound),
    Col("temp_upperbound", kU16, &BBU_Info::temp_upperbound),
    Col("percentage", kU8, &BBU_Info::percentage),
    Col("percent_to_charge", kU8, &BBU_Info::percent_to_charge),
    Col("flags", kU8, &BBU_Info::flags),
};
