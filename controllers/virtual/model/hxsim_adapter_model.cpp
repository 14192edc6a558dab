// The models of adapters, value by value.
#include "model/hxsim_adapter_model.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>

#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

// RAID levels, as bits of LogicalDriverMode.
constexpr HX_U16 BitsOf(std::initializer_list<Level> levels) {
    HX_U16 bits = 0;
    for (const Level level : levels) bits = static_cast<HX_U16>(bits | RowOf(level).mode);
    return bits;
}

// Rates that can be set, as bits of Features.
constexpr HX_U8 BitsOf(std::initializer_list<Rate> rates) {
    HX_U8 bits = 0;
    for (const Rate rate : rates) bits = static_cast<HX_U8>(bits | RowOf(rate).feature);
    return bits;
}

// StripeSizeSupported has bit n for 2^n KiB, PortSupportType bit 0 for SAS and bit 1 for SATA: the
// interface leaves both to the maker.

// The common part of all models: the driver, the maker, ports of both kinds and healthy images.
constexpr Adapter_Info AnyModel() {
    Adapter_Info model{};
    model.DriverVersion = {4, 1, 0, 1208};
    model.VenID = 0xFAC0;
    model.SubVenID = 0xFAC0;
    model.PortSupportType = 0x03;
    model.img_health = 1;
    model.autoload_img_health = 1;
    model.boot_loader_img_health = 1;
    model.firmware_img_health = 1;
    model.boot_rom_img_health = 1;
    model.hba_info_img_health = 1;
    return model;
}

// The larger model: expanders, disk groups, every level, a battery.
constexpr Adapter_Info LargeModel() {
    Adapter_Info model = AnyModel();
    model.BIOSVersion = {3, 1, 0, 27};
    model.FirmwareVersion = {4, 1, 0, 1350};
    model.BootLoaderVersion = {2, 1, 0, 9};
    model.SystemIOBusNumber = 3;
    model.SlotNumber = 1;
    model.InterruptLevel = 16;
    model.InterruptVector = 48;
    model.DevID = 0x0808;
    model.SubDevID = 0x0001;
    model.RevisionID = 2;
    model.MaxPDPerVD = 32;
    model.StripeSizeSupported = 0x01F0;
    model.MaxPDPerDG = 32;
    model.MaxVDPerDG = 32;
    model.MaxParityDisks = 4;
    model.PortCount = 8;
    model.Features = BitsOf({Rate::kRebuild, Rate::kInit, Rate::kSync, Rate::kMigration,
                             Rate::kMediaPatrol, Rate::kCopyback});
    model.AlarmSupport = 1;
    model.MaxBlockPerPD = 16;
    model.MaxHD = 128;
    model.MaxHD_Ext = 128;
    model.MaxExpander = 8;
    model.MaxPM = 8;
    model.MaxLogicalDrive = 32;
    model.LogicalDriverMode =
        BitsOf({Level::kRaid0, Level::kRaid1, Level::kRaid10, Level::kRaid1E, Level::kRaid5,
                Level::kRaid6, Level::kRaid50, Level::kRaid60});
    model.DiskGroupSupport = 1;
    model.MaxBufferSize = 64;
    return model;
}

// The smaller model: no expanders, no disk groups, no alarm, fewer levels and rates.
constexpr Adapter_Info SmallModel() {
    Adapter_Info model = AnyModel();
    model.BIOSVersion = {3, 0, 1, 14};
    model.FirmwareVersion = {3, 2, 0, 977};
    model.BootLoaderVersion = {2, 0, 0, 6};
    model.SystemIOBusNumber = 4;
    model.SlotNumber = 2;
    model.InterruptLevel = 17;
    model.InterruptVector = 49;
    model.DevID = 0x0404;
    model.SubDevID = 0x0002;
    model.RevisionID = 1;
    model.MaxPDPerVD = 8;
    model.StripeSizeSupported = 0x0070;
    model.MaxParityDisks = 1;
    model.PortCount = 4;
    model.Features = BitsOf({Rate::kRebuild, Rate::kInit, Rate::kSync, Rate::kMediaPatrol});
    model.MaxBlockPerPD = 4;
    model.MaxHD = 8;
    model.MaxHD_Ext = 8;
    model.MaxPM = 4;
    model.MaxLogicalDrive = 8;
    model.LogicalDriverMode = BitsOf({Level::kRaid0, Level::kRaid1, Level::kRaid10, Level::kRaid5});
    model.MaxBufferSize = 16;
    return model;
}

// The factory settings. A rate that cannot be set on the model is fixed at this value.
constexpr Adapter_Config_V2 LargeSettings() {
    Adapter_Config_V2 settings{};
    settings.AlarmOn = 1;
    settings.AutoRebuildOn = 1;
    settings.BGARate = 50;
    settings.SyncRate = 30;
    settings.InitRate = 50;
    settings.RebuildRate = 70;
    settings.MigrationRate = 50;
    settings.CopybackRate = 40;
    settings.PollSMARTStatus = 1;
    settings.MediaPatrolRate = 20;
    settings.CopyBack = 1;
    settings.InterruptCoalescing = 1;
    return settings;
}

constexpr Adapter_Config_V2 SmallSettings() {
    Adapter_Config_V2 settings{};
    settings.AutoRebuildOn = 1;
    settings.BGARate = 30;
    settings.SyncRate = 20;
    settings.InitRate = 30;
    settings.RebuildRate = 50;
    settings.MigrationRate = 30;
    settings.CopybackRate = 30;
    settings.PollSMARTStatus = 1;
    settings.MediaPatrolRate = 10;
    settings.v_atapi_disable = 1;
    return settings;
}

constexpr AdapterModel kModels[] = {
    {"large", LargeModel(), LargeSettings()},
    {"small", SmallModel(), SmallSettings()},
};
static_assert(std::ranges::all_of(kModels,
                                  [](const AdapterModel& model) {
                                      return model.info.PortCount <= HX_MAX_PORTS;
                                  }),
              "every port has its SAS address");

}  // namespace

const AdapterModel* FindAdapterModel(std::string_view name) {
    const auto* const found = std::ranges::find(kModels, name, &AdapterModel::name);
    return found == std::end(kModels) ? nullptr : found;
}

}  // namespace hxsim
