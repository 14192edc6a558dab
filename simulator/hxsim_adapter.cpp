// What the virtual adapters are: an invented model each, and an identity that follows from the
// adapter's number.
#include "hxsim_adapter.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "hxsim_codes.h"
#include "hxsim_library.h"

namespace hxsim {
namespace {

// RAID levels, as bits of LogicalDriverMode.
constexpr HX_U16 kRaid0 = 0x0001, kRaid1 = 0x0002, kRaid10 = 0x0004, kRaid5 = 0x0010,
                 kRaid6 = 0x0020, kRaid50 = 0x0040, kRaid60 = 0x0100;

// Rates that can be set, as bits of Features.
constexpr HX_U8 kRebuildRate = 0x01, kInitRate = 0x02, kSyncRate = 0x04, kMigrationRate = 0x08,
                kMediaPatrolRate = 0x10, kCopybackRate = 0x40;

// The models. What belongs to the single adapter (WWN, SerialNo, PortSasAddress) is left out.
// StripeSizeSupported has bit n for 2^n KiB, PortSupportType bit 0 for SAS and bit 1 for SATA: the
// interface leaves both to the maker.

// The larger one: expanders, disk groups, every level, a battery.
constexpr Adapter_Info LargeModel() {
    Adapter_Info model{};
    model.DriverVersion = {4, 1, 0, 1208};
    model.BIOSVersion = {3, 1, 0, 27};
    model.FirmwareVersion = {4, 1, 0, 1350};
    model.BootLoaderVersion = {2, 1, 0, 9};
    model.SystemIOBusNumber = 3;
    model.SlotNumber = 1;
    model.InterruptLevel = 16;
    model.InterruptVector = 48;
    model.VenID = 0xFAC0;
    model.SubVenID = 0xFAC0;
    model.DevID = 0x0808;
    model.SubDevID = 0x0001;
    model.RevisionID = 2;
    model.MaxPDPerVD = 32;
    model.StripeSizeSupported = 0x01F0;
    model.MaxPDPerDG = 32;
    model.MaxVDPerDG = 32;
    model.MaxParityDisks = 4;
    model.PortCount = 8;
    model.PortSupportType = 0x03;
    model.Features =
        kRebuildRate | kInitRate | kSyncRate | kMigrationRate | kMediaPatrolRate | kCopybackRate;
    model.AlarmSupport = 1;
    model.MaxBlockPerPD = 16;
    model.MaxHD = 128;
    model.MaxHD_Ext = 128;
    model.MaxExpander = 8;
    model.MaxPM = 8;
    model.MaxLogicalDrive = 32;
    model.LogicalDriverMode = kRaid0 | kRaid1 | kRaid10 | kRaid5 | kRaid6 | kRaid50 | kRaid60;
    model.DiskGroupSupport = 1;
    model.MaxBufferSize = 64;
    model.img_health = 1;
    model.autoload_img_health = 1;
    model.boot_loader_img_health = 1;
    model.firmware_img_health = 1;
    model.boot_rom_img_health = 1;
    model.hba_info_img_health = 1;
    return model;
}

// The smaller one: direct ports only, no disk groups, no alarm, fewer levels and rates.
constexpr Adapter_Info SmallModel() {
    Adapter_Info model{};
    model.DriverVersion = {4, 1, 0, 1208};
    model.BIOSVersion = {3, 0, 1, 14};
    model.FirmwareVersion = {3, 2, 0, 977};
    model.BootLoaderVersion = {2, 0, 0, 6};
    model.SystemIOBusNumber = 4;
    model.SlotNumber = 2;
    model.InterruptLevel = 17;
    model.InterruptVector = 49;
    model.VenID = 0xFAC0;
    model.SubVenID = 0xFAC0;
    model.DevID = 0x0404;
    model.SubDevID = 0x0002;
    model.RevisionID = 1;
    model.MaxPDPerVD = 8;
    model.StripeSizeSupported = 0x0070;
    model.MaxParityDisks = 1;
    model.PortCount = 4;
    model.PortSupportType = 0x03;
    model.Features = kRebuildRate | kInitRate | kSyncRate | kMediaPatrolRate;
    model.MaxBlockPerPD = 4;
    model.MaxHD = 8;
    model.MaxHD_Ext = 8;
    model.MaxPM = 4;
    model.MaxLogicalDrive = 8;
    model.LogicalDriverMode = kRaid0 | kRaid1 | kRaid10 | kRaid5;
    model.MaxBufferSize = 16;
    model.img_health = 1;
    model.autoload_img_health = 1;
    model.boot_loader_img_health = 1;
    model.firmware_img_health = 1;
    model.boot_rom_img_health = 1;
    model.hba_info_img_health = 1;
    return model;
}

constexpr Adapter_Info kModels[] = {LargeModel(), SmallModel()};  // by adapter
static_assert(std::size(kModels) == kAdapterCount, "every adapter has a model");
static_assert(std::ranges::all_of(kModels,
                                  [](const Adapter_Info& model) {
                                      return model.PortCount <= HX_MAX_PORTS;
                                  }),
              "every port has its SAS address");

// A world wide name in the form NAA 5: 4 bits 5, 24 bits company, 36 bits of the company's own. The
// company has the bit set that marks an identifier as locally administered, so that no maker's
// device has the same name. The company's own bits are the adapter's number and the port's.
constexpr std::uint64_t kCompany = 0x0A4858;

void SetWorldWideName(HX_U8 (&name)[8], unsigned adapter, unsigned port) {
    const std::uint64_t number =
        std::uint64_t{5} << 60 | kCompany << 36 | std::uint64_t{adapter} << 8 | port;
    for (unsigned byte = 0; byte < sizeof name; ++byte) {
        name[byte] = static_cast<HX_U8>(number >> (56 - 8 * byte));
    }
}

void Describe(HX_U8 adapter, Adapter_Info& info) {
    info = kModels[adapter];
    SetWorldWideName(info.WWN, adapter, 0);
    for (unsigned port = 0; port < info.PortCount; ++port) {
        SetWorldWideName(info.PortSasAddress[port], adapter, port + 1);
    }
    // A serial number that began with "0" would count as none.
    char serial[sizeof info.SerialNo + 1];
    std::snprintf(serial, sizeof serial, "VC%02X-%08u", info.DevID >> 8, 24100001U + adapter);
    std::memcpy(info.SerialNo, serial, std::min(sizeof info.SerialNo, std::strlen(serial)));
}

}  // namespace
}  // namespace hxsim

HX_U8 HX_Adapter_GetInfo(HX_U8 AdapterID, HX_U8* count, Adapter_Info* info) {
    if (const HX_U8 status = hxsim::CheckAdapter(AdapterID); status != HX_SUCCESS) return status;
    if (count == nullptr || info == nullptr) return HXSIM_NULL_ADDRESS;
    hxsim::Describe(AdapterID, *info);
    *count = 1;
    return HX_SUCCESS;
}
