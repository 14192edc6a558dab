#include "reference_writer.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace reference {
namespace {

constexpr std::uint16_t kClosesAtOnce = 1;
constexpr std::uint16_t kOnThisLine = 2;
constexpr std::uint16_t kLineGoesOn = 4;

// The longest text that a buffer of `size` characters holds in front of its NUL.
std::uint16_t Kept(int formatted, std::size_t size) {
    if (formatted < 0) return 0;
    const auto length = static_cast<std::size_t>(formatted);
    return static_cast<std::uint16_t>(length < size ? length : size - 1);
}

}  // namespace

int Init(XMLWR_Doc* doc) {
    if (doc == nullptr) return 0;
    std::memset(doc, 0, sizeof *doc);
    doc->Depth = 0;
    doc->CurPos = 0;
    return 1;
}

int Sprintf(XMLWR_Doc* doc, char*, const char* fmt, ...) {
    char text[1024];
    va_list args;
    va_start(args, fmt);
    const int formatted = std::vsnprintf(text, sizeof text, fmt, args);
    va_end(args);
    return MemCpy(doc, text, Kept(formatted, sizeof text));
}

int MemCpy(XMLWR_Doc* doc, const char* buf, std::uint16_t length) {
    if (doc->CurPos + length > 524287) return 0;
    std::memcpy(&doc->Buf[doc->CurPos], buf, length);
    return length;
}

void AddCurPos(XMLWR_Doc* doc, int pos) {
    if (pos == -1) return;
    doc->CurPos += static_cast<std::uint32_t>(pos);
}

void PrintTabs(XMLWR_Doc* doc) {
    for (int i = 0; i < doc->Depth; i++) {
        AddCurPos(doc, Sprintf(doc, &doc->Buf[doc->CurPos], "  "));
    }
}

void PrintNewLine(XMLWR_Doc* doc) { AddCurPos(doc, Sprintf(doc, &doc->Buf[doc->CurPos], "\n")); }

int ElmtStartPrintf(XMLWR_Doc* doc, std::uint16_t flags, const char* name, const char* fmt, ...) {
    PrintTabs(doc);
    AddCurPos(doc, Sprintf(doc, &doc->Buf[doc->CurPos], "<%s", name));
    char attributes[512];
    va_list args;
    va_start(args, fmt);
    std::vsnprintf(attributes, sizeof attributes, fmt, args);
    va_end(args);
    AddCurPos(doc, Sprintf(doc, &doc->Buf[doc->CurPos], "%s", attributes));
    AddCurPos(doc, Sprintf(doc, &doc->Buf[doc->CurPos], ">"));
    doc->Depth++;
    if ((flags & kClosesAtOnce) != 0) {
        ElmtEnd(doc, kOnThisLine, name);
    } else if ((flags & kLineGoesOn) == 0) {
        AddCurPos(doc, Sprintf(doc, &doc->Buf[doc->CurPos], "\n"));
    }
    return 1;
}

int ElmtCharData(XMLWR_Doc* doc, std::uint16_t flags, const char* fmt, ...) {
    if ((flags & kOnThisLine) == 0) PrintTabs(doc);
    char text[512];
    va_list args;
    va_start(args, fmt);
    std::vsnprintf(text, sizeof text, fmt, args);
    va_end(args);
    AddCurPos(doc, Sprintf(doc, &doc->Buf[doc->CurPos], "%s", text));
    if ((flags & kLineGoesOn) == 0) {
        AddCurPos(doc, Sprintf(doc, &doc->Buf[doc->CurPos], "\n"));
    }
    return 1;
}

int ElmtEnd(XMLWR_Doc* doc, std::uint16_t flags, const char* name) {
    doc->Depth--;
    if (doc->Depth < 0) return 0;
    if ((flags & kOnThisLine) == 0) PrintTabs(doc);
    AddCurPos(doc, Sprintf(doc, &doc->Buf[doc->CurPos], "</%s>\n", name));
    return 1;
}

int ElmtNonArrayData(XMLWR_Doc* doc, const char* name, const char* type, const char* fmt, ...) {
    char value[512];
    va_list args;
    va_start(args, fmt);
    std::vsnprintf(value, sizeof value, fmt, args);
    va_end(args);
    ElmtStartPrintf(doc, kLineGoesOn, name, " %s=\"%s\"", "type", type);
    ElmtCharData(doc, kOnThisLine | kLineGoesOn, "%s", value);
    ElmtEnd(doc, kOnThisLine, name);
    return 1;
}

int ElmtStartArrayData(XMLWR_Doc* doc, const char* name, const char* type, int width) {
    return ElmtStartPrintf(doc, 0, name, " %s=\"%s\" %s=\"%d\"", "type", type, "width", width);
}

namespace {

void StartRecord(XMLWR_Doc* doc, const char* name, const char* type) {
    ElmtStartPrintf(doc, 0, name, " %s=\"%s\"", "type", type);
}

void Number(XMLWR_Doc* doc, const char* name, const char* type, unsigned value) {
    ElmtNonArrayData(doc, name, type, "%u", value);
}

void EightBytes(XMLWR_Doc* doc, const char* name, const std::uint8_t* bytes) {
    ElmtStartArrayData(doc, name, "U8", 8);
    PrintTabs(doc);
    for (int i = 0; i < 8; i++) {
        if (i < 7) {
            ElmtCharData(doc, kOnThisLine | kLineGoesOn, "%u ", bytes[i]);
        } else {
            ElmtCharData(doc, kOnThisLine | kLineGoesOn, "%u", bytes[i]);
        }
    }
    PrintNewLine(doc);
    ElmtEnd(doc, 0, name);
}

// Both kinds of version stand under one name, with numbers of their own width.
void Version(XMLWR_Doc* doc, const char* name, const char* type,
             const std::array<unsigned, 4>& numbers) {
    StartRecord(doc, name, "struct Version_Info");
    Number(doc, "VerMajor", type, numbers[0]);
    Number(doc, "VerMinor", type, numbers[1]);
    Number(doc, "VerOEM", type, numbers[2]);
    Number(doc, "VerBuild", type, numbers[3]);
    ElmtEnd(doc, 0, name);
}

}  // namespace

int RecordVersionInfo(XMLWR_Doc* doc, const char* name, const Version_Info* records,
                      unsigned count) {
    for (unsigned i = 0; i < count; i++) {
        const Version_Info& version = records[i];
        Version(doc, name, "U32",
                {version.VerMajor, version.VerMinor, version.VerOEM, version.VerBuild});
    }
    return 1;
}

int RecordVersionInfoCim(XMLWR_Doc* doc, const char* name, const Version_Info_CIM* records,
                         unsigned count) {
    for (unsigned i = 0; i < count; i++) {
        const Version_Info_CIM& version = records[i];
        Version(doc, name, "U16",
                {version.MajorVersion, version.MinorVersion, version.RevisionNumber,
                 version.BuildNumber});
    }
    return 1;
}

int RecordAdapterInfo(XMLWR_Doc* doc, const char* name, const Adapter_Info* records,
                      unsigned count) {
    for (unsigned i = 0; i < count; i++) {
        const Adapter_Info& info = records[i];
        StartRecord(doc, name, "struct Adapter_Info");
        RecordVersionInfo(doc, "DriverVersion", &info.DriverVersion, 1);
        RecordVersionInfoCim(doc, "BIOSVersion", &info.BIOSVersion, 1);
        RecordVersionInfoCim(doc, "FirmwareVersion", &info.FirmwareVersion, 1);
        RecordVersionInfoCim(doc, "BootLoaderVersion", &info.BootLoaderVersion, 1);
        Number(doc, "SystemIOBusNumber", "U32", info.SystemIOBusNumber);
        Number(doc, "SlotNumber", "U32", info.SlotNumber);
        Number(doc, "InterruptLevel", "U32", info.InterruptLevel);
        Number(doc, "InterruptVector", "U32", info.InterruptVector);
        Number(doc, "VenID", "U16", info.VenID);
        Number(doc, "SubVenID", "U16", info.SubVenID);
        Number(doc, "DevID", "U16", info.DevID);
        Number(doc, "SubDevID", "U16", info.SubDevID);
        Number(doc, "RevisionID", "U8", info.RevisionID);
        Number(doc, "MaxPDPerVD", "U8", info.MaxPDPerVD);
        Number(doc, "StripeSizeSupported", "U16", info.StripeSizeSupported);
        Number(doc, "AdvancedFeatures", "U32", info.AdvancedFeatures);
        Number(doc, "MaxPDPerDG", "U8", info.MaxPDPerDG);
        Number(doc, "MaxVDPerDG", "U8", info.MaxVDPerDG);
        Number(doc, "MaxParityDisks", "U8", info.MaxParityDisks);
        Number(doc, "PortCount", "U8", info.PortCount);
        Number(doc, "PortSupportType", "U8", info.PortSupportType);
        Number(doc, "Features", "U8", info.Features);
        Number(doc, "AlarmSupport", "BOOL", info.AlarmSupport);
        Number(doc, "MaxBlockPerPD", "U8", info.MaxBlockPerPD);
        Number(doc, "MaxHD", "U8", info.MaxHD);
        Number(doc, "MaxHD_Ext", "U16", info.MaxHD_Ext);
        Number(doc, "MaxExpander", "U8", info.MaxExpander);
        Number(doc, "MaxPM", "U8", info.MaxPM);
        Number(doc, "MaxLogicalDrive", "U8", info.MaxLogicalDrive);
        Number(doc, "LogicalDriverMode", "U16", info.LogicalDriverMode);
        Number(doc, "DiskGroupSupport", "BOOL", info.DiskGroupSupport != 0 ? 1 : 0);
        EightBytes(doc, "WWN", info.WWN);
        Number(doc, "MaxBufferSize", "U16", info.MaxBufferSize);
        char serial[21] = {};
        if (info.SerialNo[0] != '0') std::memcpy(serial, info.SerialNo, 20);
        ElmtNonArrayData(doc, "SerialNo", "string", "<![CDATA[%s]]>", serial);
        for (int port = 0; port < info.PortCount && port < 8; port++) {
            char port_name[32];
            std::snprintf(port_name, sizeof port_name, "PortSasAddress%d", port);
            EightBytes(doc, port_name, info.PortSasAddress[port]);
        }
        Number(doc, "img_health", "BOOL", info.img_health);
        Number(doc, "autoload_img_health", "BOOL", info.autoload_img_health);
        Number(doc, "boot_loader_img_health", "BOOL", info.boot_loader_img_health);
        Number(doc, "firmware_img_health", "BOOL", info.firmware_img_health);
        Number(doc, "boot_rom_img_health", "BOOL", info.boot_rom_img_health);
        Number(doc, "hba_info_img_health", "BOOL", info.hba_info_img_health);
        ElmtEnd(doc, 0, name);
    }
    return 1;
}

}  // namespace reference
