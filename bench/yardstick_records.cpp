// The literal record writers. Their document writer is the reference of the tests.
#include <cstdio>
#include <cstring>

#include "reference_writer.h"
#include "yardsticks.h"

namespace {

using reference::ElmtCharData;
using reference::ElmtEnd;
using reference::ElmtNonArrayData;

constexpr std::uint16_t kInline = 2 | 4;

void StartRecord(XMLWR_Doc* doc, const char* name, const char* type) {
    reference::ElmtStartPrintf(doc, 0, name, " %s=\"%s\"", "type", type);
}

void Number(XMLWR_Doc* doc, const char* name, const char* type, unsigned value) {
    ElmtNonArrayData(doc, name, type, "%u", value);
}

void LongNumber(XMLWR_Doc* doc, const char* name, HX_U64 value) {
    ElmtNonArrayData(doc, name, "U64", "%llu", static_cast<unsigned long long>(value.value));
}

template <class T, std::size_t n>
void Array(XMLWR_Doc* doc, const char* name, const char* type, const T (&items)[n]) {
    reference::ElmtStartArrayData(doc, name, type, static_cast<int>(n));
    reference::PrintTabs(doc);
    for (std::size_t i = 0; i + 1 < n; ++i) {
        ElmtCharData(doc, kInline, "%u ", static_cast<unsigned>(items[i]));
    }
    ElmtCharData(doc, kInline, "%u", static_cast<unsigned>(items[n - 1]));
    reference::PrintNewLine(doc);
    ElmtEnd(doc, 0, name);
}

void Text(XMLWR_Doc* doc, const char* name, const char* text) {
    ElmtNonArrayData(doc, name, "string", "<![CDATA[%s]]>", text);
}

// A text field without its trailing blanks, the maker's name before a blank left out on request.
template <std::size_t n>
void DiskText(XMLWR_Doc* doc, const char* name, const char (&field)[n], bool without_maker) {
    char text[n + 1] = {};
    for (std::size_t i = 0; i < n && field[i] != '\0'; ++i) text[i] = field[i];
    for (std::size_t i = std::strlen(text); i > 0 && text[i - 1] == ' '; --i) text[i - 1] = '\0';
    const char* const blank = std::strchr(text, ' ');
    Text(doc, name, without_maker && blank != nullptr ? blank + 1 : text);
}

void Endpoint(XMLWR_Doc* doc, const char* name, const Link_Endpoint& end) {
    StartRecord(doc, name, "struct Link_Endpoint");
    Number(doc, "DevID", "U16", end.DevID);
    Number(doc, "DevType", "U8", end.DevType);
    Number(doc, "PhyCnt", "U8", end.PhyCnt);
    Array(doc, "PhyID", "U8", end.PhyID);
    Array(doc, "SAS_Address", "U8", end.SAS_Address);
    Number(doc, "EnclosureID", "U16", end.EnclosureID);
    ElmtEnd(doc, 0, name);
}

}  // namespace

int yardstick::LiteralHdInfo(XMLWR_Doc* doc, const char* element, HD_Info* records,
                             unsigned count) {
    for (unsigned i = 0; i < count; ++i) {
        HD_Info& disk = records[i];
        if (disk.ConnectionType == 0) {
            if ((disk.HDType & 1) != 0) {
                disk.ConnectionType = 1 << 2 | 1;
            } else if ((disk.HDType & 2) != 0) {
                disk.ConnectionType = 1 << 3 | 1;
            } else if ((disk.HDType & 4) != 0) {
                disk.ConnectionType = 1 << 2 | 1 << 1;
            }
        }
        if (disk.DeviceType == 0) {
            if ((disk.HDType & 16) != 0) {
                disk.DeviceType = 1;
            } else if ((disk.HDType & 32) != 0) {
                disk.DeviceType = 13;
            } else if ((disk.HDType & 8) != 0) {
                disk.DeviceType = 5;
            }
        }
        StartRecord(doc, element, "struct HD_Info");
        StartRecord(doc, "Link", "struct Link_Entity");
        Endpoint(doc, "Parent", disk.Link.Parent);
        Endpoint(doc, "Self", disk.Link.Self);
        ElmtEnd(doc, 0, "Link");
        Number(doc, "AdapterID", "U8", disk.AdapterID);
        Number(doc, "Status", "U8", disk.Status);
        Number(doc, "HDType", "U8", disk.HDType);
        Number(doc, "PIOMode", "U8", disk.PIOMode);
        Number(doc, "MDMAMode", "U8", disk.MDMAMode);
        Number(doc, "UDMAMode", "U8", disk.UDMAMode);
        Number(doc, "ConnectionType", "U8", disk.ConnectionType);
        Number(doc, "DeviceType", "U8", disk.DeviceType);
        Number(doc, "CanLogicalUsed", "U8", disk.DeviceType == 0 ? 1 : 0);
        Number(doc, "FeatureSupport", "U32", disk.FeatureSupport);
        Number(doc, "CurrentPIOMode", "U8", disk.CurrentPIOMode);
        Number(doc, "CurrentMDMAMode", "U8", disk.CurrentMDMAMode);
        Number(doc, "CurrentUDMAMode", "U8", disk.CurrentUDMAMode);
        DiskText(doc, "Model", disk.Model, true);
        DiskText(doc, "SerialNo", disk.SerialNo, false);
        DiskText(doc, "FWVersion", disk.FWVersion, false);
        Array(doc, "WWN", "U8", disk.WWN);
        LongNumber(doc, "Size", disk.Size);
        Number(doc, "ActivityLEDStatus", "U8", disk.ActivityLEDStatus);
        Number(doc, "LocateLEDStatus", "U8", disk.LocateLEDStatus);
        Number(doc, "ErrorLEDStatus", "U8", disk.ErrorLEDStatus);
        ElmtEnd(doc, 0, element);
    }
    return 1;
}

int yardstick::LiteralDgInfo(XMLWR_Doc* doc, const char* element, const DG_Info* records,
                             unsigned count) {
    for (unsigned i = 0; i < count; ++i) {
        const DG_Info& group = records[i];
        StartRecord(doc, element, "struct DG_Info");
        Number(doc, "DGID", "HX_U16", group.DGID);
        char name[sizeof group.Name + 1] = {};
        std::memcpy(name, group.Name, sizeof group.Name);
        Text(doc, "Name", name);
        Number(doc, "RaidMode", "HX_U8", group.RaidMode);
        Number(doc, "SubVDCount", "HX_U8", group.SubVDCount);
        Number(doc, "NumParityDisk", "HX_U8", group.NumParityDisk);
        Number(doc, "AdapterID", "HX_U8", group.AdapterID);
        Number(doc, "StripeBlockSize", "HX_U16", group.StripeBlockSize);
        Number(doc, "BlockSize", "HX_U32", group.BlockSize);
        LongNumber(doc, "TotalManagedSpace", group.TotalManagedSpace);
        LongNumber(doc, "RemainingManagedSpace", group.RemainingManagedSpace);
        LongNumber(doc, "SmallestAvailablePDSize", group.SmallestAvailablePDSize);
        Number(doc, "Status", "HX_U8", group.Status);
        Number(doc, "PDCount", "HX_U8", group.PDCount);
        Array(doc, "PDIDs", "HX_U16", group.PDIDs);
        Number(doc, "VDSlotCount", "HX_U8", group.VDSlotCount);
        reference::ElmtStartArrayData(doc, "VDSlotSize", "U64", HX_MAX_VD_SLOTS);
        reference::PrintTabs(doc);
        for (const HX_U64& size : group.VDSlotSize) {
            ElmtCharData(doc, kInline, "%llu ", static_cast<unsigned long long>(size.value));
        }
        reference::PrintNewLine(doc);
        ElmtEnd(doc, 0, "VDSlotSize");
        Array(doc, "VDIDs", "HX_U16", group.VDIDs);
        Number(doc, "SparePDCount", "HX_U8", group.SparePDCount);
        Array(doc, "SparePDIDs", "HX_U16", group.SparePDIDs);
        Number(doc, "BgaType", "HX_U16", group.BgaType);
        Number(doc, "BgaState", "HX_U8", group.BgaState);
        ElmtEnd(doc, 0, element);
    }
    return 1;
}
