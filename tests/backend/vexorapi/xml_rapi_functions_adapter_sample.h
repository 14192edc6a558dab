// One adapter whose every field has a value of its own, and the element that it is written as.
#pragma once

#include <cstring>
#include <string>

#include "hxraid.h"

inline Adapter_Info DistinctAdapter() {
    Adapter_Info info{};
    info.DriverVersion = {4294967295, 2, 30, 400};
    info.BIOSVersion = {65535, 6, 70, 800};
    info.FirmwareVersion = {9, 10, 110, 1200};
    info.BootLoaderVersion = {13, 14, 150, 1600};
    info.SystemIOBusNumber = 17;
    info.SlotNumber = 4294967294;
    info.InterruptLevel = 19;
    info.InterruptVector = 1000000000;
    info.VenID = 4660;
    info.SubVenID = 65534;
    info.DevID = 23;
    info.SubDevID = 10000;
    info.RevisionID = 254;
    info.MaxPDPerVD = 26;
    info.StripeSizeSupported = 27000;
    info.AdvancedFeatures = 2147483648;
    info.MaxPDPerDG = 29;
    info.MaxVDPerDG = 30;
    info.MaxParityDisks = 31;
    info.PortCount = 3;
    info.PortSupportType = 33;
    info.Features = 127;
    info.AlarmSupport = 1;
    info.MaxBlockPerPD = 36;
    info.MaxHD = 255;
    info.Reserved1 = 201;
    info.MaxHD_Ext = 380;
    info.MaxExpander = 39;
    info.MaxPM = 40;
    info.MaxLogicalDrive = 41;
    info.Reserved2 = 202;
    info.LogicalDriverMode = 4200;
    info.DiskGroupSupport = 7;
    const HX_U8 wwn[8] = {80, 0, 1, 2, 255, 100, 99, 9};
    std::memcpy(info.WWN, wwn, sizeof wwn);
    info.Reserved3 = 203;
    info.MaxBufferSize = 44000;
    std::memcpy(info.SerialNo, "SN 12345", 8);
    for (int port = 0; port < 8; ++port) {
        for (int byte = 0; byte < 8; ++byte) {
            info.PortSasAddress[port][byte] = static_cast<HX_U8>(port * 10 + byte);
        }
    }
    info.autoload_img_health = 1;
    info.firmware_img_health = 1;
    info.hba_info_img_health = 2;
    std::memset(info.Reserved4, 204, sizeof info.Reserved4);
    return info;
}

// The element in its parts, indented as below a function element; a test replaces the part that it
// is about.

inline const char kAdapterOpen[] =
    "  <AdapterInfo type=\"struct Adapter_Info\">\n"
    "    <DriverVersion type=\"struct Version_Info\">\n"
    "      <VerMajor type=\"U32\">4294967295</VerMajor>\n"
    "      <VerMinor type=\"U32\">2</VerMinor>\n"
    "      <VerOEM type=\"U32\">30</VerOEM>\n"
    "      <VerBuild type=\"U32\">400</VerBuild>\n"
    "    </DriverVersion>\n"
    "    <BIOSVersion type=\"struct Version_Info\">\n"
    "      <VerMajor type=\"U16\">65535</VerMajor>\n"
    "      <VerMinor type=\"U16\">6</VerMinor>\n"
    "      <VerOEM type=\"U16\">70</VerOEM>\n"
    "      <VerBuild type=\"U16\">800</VerBuild>\n"
    "    </BIOSVersion>\n"
    "    <FirmwareVersion type=\"struct Version_Info\">\n"
    "      <VerMajor type=\"U16\">9</VerMajor>\n"
    "      <VerMinor type=\"U16\">10</VerMinor>\n"
    "      <VerOEM type=\"U16\">110</VerOEM>\n"
    "      <VerBuild type=\"U16\">1200</VerBuild>\n"
    "    </FirmwareVersion>\n"
    "    <BootLoaderVersion type=\"struct Version_Info\">\n"
    "      <VerMajor type=\"U16\">13</VerMajor>\n"
    "      <VerMinor type=\"U16\">14</VerMinor>\n"
    "      <VerOEM type=\"U16\">150</VerOEM>\n"
    "      <VerBuild type=\"U16\">1600</VerBuild>\n"
    "    </BootLoaderVersion>\n"
    "    <SystemIOBusNumber type=\"U32\">17</SystemIOBusNumber>\n"
    "    <SlotNumber type=\"U32\">4294967294</SlotNumber>\n"
    "    <InterruptLevel type=\"U32\">19</InterruptLevel>\n"
    "    <InterruptVector type=\"U32\">1000000000</InterruptVector>\n"
    "    <VenID type=\"U16\">4660</VenID>\n"
    "    <SubVenID type=\"U16\">65534</SubVenID>\n"
    "    <DevID type=\"U16\">23</DevID>\n"
    "    <SubDevID type=\"U16\">10000</SubDevID>\n"
    "    <RevisionID type=\"U8\">254</RevisionID>\n"
    "    <MaxPDPerVD type=\"U8\">26</MaxPDPerVD>\n"
    "    <StripeSizeSupported type=\"U16\">27000</StripeSizeSupported>\n"
    "    <AdvancedFeatures type=\"U32\">2147483648</AdvancedFeatures>\n"
    "    <MaxPDPerDG type=\"U8\">29</MaxPDPerDG>\n"
    "    <MaxVDPerDG type=\"U8\">30</MaxVDPerDG>\n"
    "    <MaxParityDisks type=\"U8\">31</MaxParityDisks>\n";
inline const char kAdapterPortCount[] = "    <PortCount type=\"U8\">3</PortCount>\n";
inline const char kAdapterLimits[] =
    "    <PortSupportType type=\"U8\">33</PortSupportType>\n"
    "    <Features type=\"U8\">127</Features>\n"
    "    <AlarmSupport type=\"BOOL\">1</AlarmSupport>\n"
    "    <MaxBlockPerPD type=\"U8\">36</MaxBlockPerPD>\n"
    "    <MaxHD type=\"U8\">255</MaxHD>\n"
    "    <MaxHD_Ext type=\"U16\">380</MaxHD_Ext>\n"
    "    <MaxExpander type=\"U8\">39</MaxExpander>\n"
    "    <MaxPM type=\"U8\">40</MaxPM>\n"
    "    <MaxLogicalDrive type=\"U8\">41</MaxLogicalDrive>\n"
    "    <LogicalDriverMode type=\"U16\">4200</LogicalDriverMode>\n"
    "    <DiskGroupSupport type=\"BOOL\">1</DiskGroupSupport>\n"
    "    <WWN type=\"U8\" width=\"8\">\n"
    "      80 0 1 2 255 100 99 9\n"
    "    </WWN>\n"
    "    <MaxBufferSize type=\"U16\">44000</MaxBufferSize>\n";
inline const char kAdapterSerialNo[] =
    "    <SerialNo type=\"string\"><![CDATA[SN 12345]]></SerialNo>\n";
inline const char kAdapterPorts[] =
    "    <PortSasAddress0 type=\"U8\" width=\"8\">\n"
    "      0 1 2 3 4 5 6 7\n"
    "    </PortSasAddress0>\n"
    "    <PortSasAddress1 type=\"U8\" width=\"8\">\n"
    "      10 11 12 13 14 15 16 17\n"
    "    </PortSasAddress1>\n"
    "    <PortSasAddress2 type=\"U8\" width=\"8\">\n"
    "      20 21 22 23 24 25 26 27\n"
    "    </PortSasAddress2>\n";
inline const char kAdapterOtherPorts[] =
    "    <PortSasAddress3 type=\"U8\" width=\"8\">\n"
    "      30 31 32 33 34 35 36 37\n"
    "    </PortSasAddress3>\n"
    "    <PortSasAddress4 type=\"U8\" width=\"8\">\n"
    "      40 41 42 43 44 45 46 47\n"
    "    </PortSasAddress4>\n"
    "    <PortSasAddress5 type=\"U8\" width=\"8\">\n"
    "      50 51 52 53 54 55 56 57\n"
    "    </PortSasAddress5>\n"
    "    <PortSasAddress6 type=\"U8\" width=\"8\">\n"
    "      60 61 62 63 64 65 66 67\n"
    "    </PortSasAddress6>\n"
    "    <PortSasAddress7 type=\"U8\" width=\"8\">\n"
    "      70 71 72 73 74 75 76 77\n"
    "    </PortSasAddress7>\n";
inline const char kAdapterClose[] =
    "    <img_health type=\"BOOL\">0</img_health>\n"
    "    <autoload_img_health type=\"BOOL\">1</autoload_img_health>\n"
    "    <boot_loader_img_health type=\"BOOL\">0</boot_loader_img_health>\n"
    "    <firmware_img_health type=\"BOOL\">1</firmware_img_health>\n"
    "    <boot_rom_img_health type=\"BOOL\">0</boot_rom_img_health>\n"
    "    <hba_info_img_health type=\"BOOL\">2</hba_info_img_health>\n"
    "  </AdapterInfo>\n";

inline const std::string kDistinctAdapterElement = std::string(kAdapterOpen) + kAdapterPortCount +
                                                   kAdapterLimits + kAdapterSerialNo +
                                                   kAdapterPorts + kAdapterClose;
