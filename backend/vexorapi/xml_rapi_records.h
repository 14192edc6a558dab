// The rows of the controller library's records, in the order in which they are written.
#pragma once

#include "xml_rapi_rows.h"

inline constexpr auto kVersion_Info = MakeRecord<Version_Info>(
    "struct Version_Info", Col("VerMajor", kU32, &Version_Info::VerMajor),
    Col("VerMinor", kU32, &Version_Info::VerMinor), Col("VerOEM", kU32, &Version_Info::VerOEM),
    Col("VerBuild", kU32, &Version_Info::VerBuild));

// The 16-bit version goes under the same type name; readers tell the two apart by the element name.
inline constexpr auto kVersion_Info_CIM = MakeRecord<Version_Info_CIM>(
    "struct Version_Info", Col("VerMajor", kU16, &Version_Info_CIM::MajorVersion),
    Col("VerMinor", kU16, &Version_Info_CIM::MinorVersion),
    Col("VerOEM", kU16, &Version_Info_CIM::RevisionNumber),
    Col("VerBuild", kU16, &Version_Info_CIM::BuildNumber));

// One array element per port, its number in its name. A port beyond the record's capacity has no
// address to write.
struct PortAddresses {
    static constexpr std::size_t kPorts = HX_MAX_PORTS;
    static_assert(kPorts <= 10, "a port's number is one digit");

    constexpr void Head(LiteralSink&, int) const {}
    constexpr void Tail(LiteralSink&, int) const {}
    constexpr std::size_t ValueBound(int depth) const {
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
    template <int depth>
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
    // A whole element but its items, to be measured; `name` ends in the port's number.
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

inline constexpr auto kAdapter_Info = MakeRecord<Adapter_Info>(
    "struct Adapter_Info", Nest<kVersion_Info>("DriverVersion", &Adapter_Info::DriverVersion),
    Nest<kVersion_Info_CIM>("BIOSVersion", &Adapter_Info::BIOSVersion),
    Nest<kVersion_Info_CIM>("FirmwareVersion", &Adapter_Info::FirmwareVersion),
    Nest<kVersion_Info_CIM>("BootLoaderVersion", &Adapter_Info::BootLoaderVersion),
    Col("SystemIOBusNumber", kU32, &Adapter_Info::SystemIOBusNumber),
    Col("SlotNumber", kU32, &Adapter_Info::SlotNumber),
    Col("InterruptLevel", kU32, &Adapter_Info::InterruptLevel),
    Col("InterruptVector", kU32, &Adapter_Info::InterruptVector),
    Col("VenID", kU16, &Adapter_Info::VenID), Col("SubVenID", kU16, &Adapter_Info::SubVenID),
    Col("DevID", kU16, &Adapter_Info::DevID), Col("SubDevID", kU16, &Adapter_Info::SubDevID),
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
    Col("MaxHD", kU8, &Adapter_Info::MaxHD), Col("MaxHD_Ext", kU16, &Adapter_Info::MaxHD_Ext),
    Col("MaxExpander", kU8, &Adapter_Info::MaxExpander), Col("MaxPM", kU8, &Adapter_Info::MaxPM),
    Col("MaxLogicalDrive", kU8, &Adapter_Info::MaxLogicalDrive),
    Col("LogicalDriverMode", kU16, &Adapter_Info::LogicalDriverMode),
    Flag("DiskGroupSupport", kBOOL, &Adapter_Info::DiskGroupSupport),
    Col("WWN", kU8, &Adapter_Info::WWN), Col("MaxBufferSize", kU16, &Adapter_Info::MaxBufferSize),
    CData<DigitText>("SerialNo", &Adapter_Info::SerialNo), PortAddresses{},
    Col("img_health", kBOOL, &Adapter_Info::img_health),
    Col("autoload_img_health", kBOOL, &Adapter_Info::autoload_img_health),
    Col("boot_loader_img_health", kBOOL, &Adapter_Info::boot_loader_img_health),
    Col("firmware_img_health", kBOOL, &Adapter_Info::firmware_img_health),
    Col("boot_rom_img_health", kBOOL, &Adapter_Info::boot_rom_img_health),
    Col("hba_info_img_health", kBOOL, &Adapter_Info::hba_info_img_health));
