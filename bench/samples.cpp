// The commands and records that the benches work on.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "bench.h"
#include "hxfake.h"

namespace bench {

std::string LongCommand(std::size_t bytes) {
    // Short elements without attributes, as commands have them: little for the parser to do, so
    // that what the library adds shows. Every one of them is a parameter of the function.
    constexpr std::string_view kParameters =
        "  <AdapterID>0</AdapterID>\n"
        "  <AlarmOn>1</AlarmOn>\n"
        "  <AutoRebuildOn>1</AutoRebuildOn>\n"
        "  <BGARate>60</BGARate>\n"
        "  <PollSMARTStatus>1</PollSMARTStatus>\n"
        "  <MediaPatrolRate>40</MediaPatrolRate>\n"
        "  <CopyBack>1</CopyBack>\n"
        "  <SyncRate>60</SyncRate>\n"
        "  <InitRate>60</InitRate>\n"
        "  <RebuildRate>80</RebuildRate>\n"
        "  <MigrationRate>60</MigrationRate>\n"
        "  <CopybackRate>60</CopybackRate>\n"
        "  <InterruptCoalescing>1</InterruptCoalescing>\n"
        "  <ModuleConsolidate>0</ModuleConsolidate>\n"
        "  <v_atapi_disable>0</v_atapi_disable>\n"
        "  <port_phy_ctrl>3 3 3 3 3 3 3 3</port_phy_ctrl>\n";
    constexpr std::string_view kEnd = "</HX_Adapter_SetConfig>\n";
    std::string command = "<HX_Adapter_SetConfig type=\"function\">\n";
    while (command.size() + kEnd.size() < bytes) command += kParameters;
    return command += kEnd;
}

std::string DiskListCommand(unsigned disks) {
    return "<HX_PD_GetHDInfo type=\"function\">\n"
           "  <AdapterID>0</AdapterID>\n"
           "  <requestType>1</requestType>\n"
           "  <startingIndexOrId>0</startingIndexOrId>\n"
           "  <numRequested>" +
           std::to_string(disks) +
           "</numRequested>\n"
           "</HX_PD_GetHDInfo>\n";
}

Adapter_Info SampleAdapter() {
    Adapter_Info info{};
    info.DriverVersion = {4, 1, 0, 1208};
    info.BIOSVersion = {3, 1, 0, 27};
    info.FirmwareVersion = {4, 1, 0, 1350};
    info.BootLoaderVersion = {2, 1, 0, 9};
    info.SystemIOBusNumber = 3;
    info.SlotNumber = 1;
    info.InterruptLevel = 16;
    info.InterruptVector = 48;
    info.VenID = 64192;
    info.SubVenID = 64192;
    info.DevID = 2056;
    info.SubDevID = 1;
    info.RevisionID = 2;
    info.MaxPDPerVD = 32;
    info.StripeSizeSupported = 496;
    info.MaxPDPerDG = 32;
    info.MaxVDPerDG = 32;
    info.MaxParityDisks = 4;
    info.PortCount = HX_MAX_PORTS;
    info.PortSupportType = 3;
    info.Features = 95;
    info.AlarmSupport = 1;
    info.MaxBlockPerPD = 16;
    info.MaxHD = 128;
    info.MaxHD_Ext = 128;
    info.MaxExpander = 8;
    info.MaxPM = 8;
    info.MaxLogicalDrive = 32;
    info.LogicalDriverMode = 375;
    info.DiskGroupSupport = 1;
    info.MaxBufferSize = 64;
    std::memcpy(info.SerialNo, "VC08-24100001", 13);
    constexpr HX_U8 kWideName[] = {80, 164, 133, 128, 0, 0, 0, 0};
    std::memcpy(info.WWN, kWideName, sizeof info.WWN);
    HX_U8 port = 0;
    for (auto& address : info.PortSasAddress) {
        std::memcpy(address, kWideName, sizeof address);
        address[7] = ++port;
    }
    info.img_health = 1;
    info.autoload_img_health = 1;
    info.boot_loader_img_health = 1;
    info.firmware_img_health = 1;
    info.boot_rom_img_health = 1;
    info.hba_info_img_health = 1;
    return info;
}

std::vector<HD_Info> SampleDisks(unsigned count) {
    std::vector<HD_Info> disks(count);
    for (unsigned i = 0; i < count; ++i) {
        HD_Info& disk = disks[i];
        const HX_U8 wide_name[] = {
            80, 164, 133, 128, 1, 0, static_cast<HX_U8>(i / 24), static_cast<HX_U8>(i)};
        disk.Link.Parent.DevID = 1;
        disk.Link.Parent.DevType = 3;
        disk.Link.Parent.PhyCnt = 1;
        disk.Link.Parent.PhyID[0] = static_cast<HX_U8>(i % 24);
        std::memcpy(disk.Link.Parent.SAS_Address, wide_name, sizeof wide_name);
        disk.Link.Parent.EnclosureID = 1;
        disk.Link.Self.DevID = static_cast<HX_U16>(i);
        disk.Link.Self.DevType = 1;
        disk.Link.Self.PhyCnt = 1;
        std::memcpy(disk.Link.Self.SAS_Address, wide_name, sizeof wide_name);
        disk.Link.Self.EnclosureID = 1;
        disk.Status = 1;
        disk.HDType = 1;
        disk.PIOMode = 4;
        disk.MDMAMode = 2;
        disk.UDMAMode = 6;
        disk.FeatureSupport = 1311;
        disk.CurrentPIOMode = 4;
        disk.CurrentMDMAMode = 2;
        disk.CurrentUDMAMode = 6;
        // Texts are padded with blanks, as disks tell them.
        char text[sizeof disk.Model + 1];
        std::snprintf(text, sizeof text, "%-40s", "KESTREL KR8000-NM0055");
        std::memcpy(disk.Model, text, sizeof disk.Model);
        std::snprintf(text, sizeof text, "%20u", 41500100 + i);
        std::memcpy(disk.SerialNo, text, sizeof disk.SerialNo);
        std::memcpy(disk.FWVersion, "KN04    ", sizeof disk.FWVersion);
        std::memcpy(disk.WWN, wide_name, sizeof wide_name);
        disk.Size.value = 15628053168;
    }
    return disks;
}

std::vector<DG_Info> SampleDiskGroups(unsigned count) {
    std::vector<DG_Info> groups(count);
    for (unsigned i = 0; i < count; ++i) {
        DG_Info& group = groups[i];
        group.DGID = static_cast<HX_U16>(i);
        std::snprintf(group.Name, sizeof group.Name, "DG %u", i);
        group.RaidMode = 5;
        group.SubVDCount = 1;
        group.StripeBlockSize = 64;
        group.BlockSize = 512;
        group.TotalManagedSpace.value = 109396372176;
        group.RemainingManagedSpace.value = 15628053168;
        group.SmallestAvailablePDSize.value = 15628053168;
        group.PDCount = 8;
        for (unsigned k = 0; k < 8; ++k) group.PDIDs[k] = static_cast<HX_U16>(8 * i + k);
        group.VDSlotCount = 2;
        group.VDSlotSize[0].value = 62512212672;
        group.VDSlotSize[1].value = 31256106336;
        std::fill(std::begin(group.VDIDs), std::end(group.VDIDs), HX_U16{65535});
        group.VDIDs[0] = static_cast<HX_U16>(2 * i);
        group.VDIDs[1] = static_cast<HX_U16>(2 * i + 1);
        group.SparePDCount = 1;
        group.SparePDIDs[0] = static_cast<HX_U16>(1000 + i);
    }
    return groups;
}

void PrepareController() {
    hxfake::NoteCalls(false);
    hxfake::On<&HX_Adapter_GetCount>().Always(2);
    hxfake::On<&HX_Adapter_GetInfo>().Always(0, hxfake::Records({SampleAdapter()}));
    hxfake::On<&HX_PD_GetHDInfo_Ext>().Always([](HX_U8, HD_Info_Request* request) -> HX_U8 {
        static const std::vector<HD_Info> disks = SampleDisks(400);
        RequestHeader& header = request->header;
        const std::size_t start = std::min<std::size_t>(header.startingIndexOrId, disks.size());
        const std::size_t count = std::min<std::size_t>(header.numRequested, disks.size() - start);
        header.numReturned = static_cast<HX_U16>(count);
        header.nextStartingIndex =
            start + count == disks.size() ? HX_LIST_COMPLETE : static_cast<HX_U16>(start + count);
        std::memcpy(request->hdInfo, disks.data() + start, count * sizeof(HD_Info));
        return HX_SUCCESS;
    });
}

void RequireSame(const char* what, std::string_view ours, std::string_view theirs) {
    if (ours == theirs && !ours.empty()) return;
    std::fprintf(stderr,
                 "%s: the yardstick writes another text (%zu bytes) than the library (%zu)\n", what,
                 theirs.size(), ours.size());
    std::exit(EXIT_FAILURE);
}

}  // namespace bench
