// vexorctl adapter ...
#include <array>
#include <cstdio>
#include <utility>

#include "codes/named.h"
#include "common/address.h"
#include "model/adapters.h"
#include "model/ask_controller.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/result_tree.h"
#include "nouns/find_object.h"
#include "nouns/nouns.h"
#include "nouns/plan_and_act.h"
#include "output/cell.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"
#include "shell/present.h"

namespace vexorctl {

namespace {

// LogicalDriverMode and Features of Adapter_Info.
constexpr hxcodes::Named kLevelBits[] = {
    {0x0001, "raid0"}, {0x0002, "raid1"}, {0x0004, "raid10"}, {0x0008, "raid1e"},
    {0x0010, "raid5"}, {0x0020, "raid6"}, {0x0040, "raid50"}, {0x0100, "raid60"},
};
constexpr hxcodes::Named kRateBits[] = {
    {0x01, "rebuild"},   {0x02, "init"},         {0x04, "sync"},
    {0x08, "migration"}, {0x10, "media_patrol"}, {0x40, "copyback"},
};

std::string PciId(const Value& info, const char* vendor, const char* device) {
    char text[16];
    std::snprintf(text, sizeof(text), "%04X:%04X",
                  static_cast<unsigned>(info.Number(vendor) & 0xFFFF),
                  static_cast<unsigned>(info.Number(device) & 0xFFFF));
    return text;
}

// Those that are not well, by name.
Cell DamagedImages(const Value& info) {
    constexpr std::pair<const char*, const char*> kImages[] = {
        {"autoload_img_health", "autoload"}, {"boot_loader_img_health", "boot_loader"},
        {"firmware_img_health", "firmware"}, {"boot_rom_img_health", "boot_rom"},
        {"hba_info_img_health", "hba_info"},
    };
    std::vector<std::string> damaged;
    for (const auto& [field, name] : kImages) {
        if (info.Number(field) == 0) damaged.emplace_back(name);
    }
    return TextsCell(std::move(damaged));
}

using enum Kind;
using enum Place;

constexpr Column<Adapter> kColumns[] = {
    {{"address", "ADDRESS", kText, kTable, "Its address"},
     [](const Adapter& it) { return TextCell(it.address.Text()); }},
    {{"serial", "SERIAL", kText, kTable, "Its serial number"},
     [](const Adapter& it) { return TextAt(it.info, "SerialNo"); }},
    {{"firmware_version", "FIRMWARE", kText, kTable, "The version of its firmware"},
     [](const Adapter& it) { return VersionAt(it.info, "FirmwareVersion"); }},
    {{"bios_version", "BIOS", kText, kTable, "The version of its BIOS"},
     [](const Adapter& it) { return VersionAt(it.info, "BIOSVersion"); }},
    {{"ports", "PORTS", kNumber, kTable, "The number of its ports"},
     [](const Adapter& it) { return NumberAt(it.info, "PortCount"); }},
    {{"levels", "LEVELS", kBits, kTable, "The RAID levels it offers"},
     [](const Adapter& it) { return BitsAt(it.info, "LogicalDriverMode", kLevelBits); }},
    {{"flash_healthy", "FLASH OK", kBool, kTable, "Whether all images in its flash are whole"},
     [](const Adapter& it) { return NumberAt(it.info, "img_health"); }},
    {{"damaged_images", "DAMAGED IMAGES", kTexts, kWide, "The images in its flash that are not"},
     [](const Adapter& it) { return it.info.name.empty() ? Unknown() : DamagedImages(it.info); }},
    {{"wwn", "WWN", kText, kWide, "Its world wide name"},
     [](const Adapter& it) { return WwnAt(it.info, "WWN"); }},
    {{"driver_version", "DRIVER", kText, kWide, "The version of its driver"},
     [](const Adapter& it) { return VersionAt(it.info, "DriverVersion"); }},
    {{"boot_loader_version", "BOOT LOADER", kText, kWide, "The version of its boot loader"},
     [](const Adapter& it) { return VersionAt(it.info, "BootLoaderVersion"); }},
    {{"pci_bus", "PCI BUS", kNumber, kWide, "The PCI bus it is on"},
     [](const Adapter& it) { return NumberAt(it.info, "SystemIOBusNumber"); }},
    {{"pci_slot", "PCI SLOT", kNumber, kWide, "Its PCI slot"},
     [](const Adapter& it) { return NumberAt(it.info, "SlotNumber"); }},
    {{"pci_id", "PCI ID", kText, kWide, "Its PCI vendor and device, hexadecimal"},
     [](const Adapter& it) {
         return it.info.name.empty() ? Unknown() : TextCell(PciId(it.info, "VenID", "DevID"));
     }},
    {{"pci_subsystem_id", "PCI SUBSYSTEM", kText, kWide,
      "Its PCI subsystem vendor and device, hexadecimal"},
     [](const Adapter& it) {
         return it.info.name.empty() ? Unknown() : TextCell(PciId(it.info, "SubVenID", "SubDevID"));
     }},
    {{"pci_revision", "PCI REVISION", kNumber, kWide, "Its PCI revision"},
     [](const Adapter& it) { return NumberAt(it.info, "RevisionID"); }},
    {{"interrupt_level", "IRQ", kNumber, kWide, "Its interrupt level"},
     [](const Adapter& it) { return NumberAt(it.info, "InterruptLevel"); }},
    {{"interrupt_vector", "VECTOR", kNumber, kWide, "Its interrupt vector"},
     [](const Adapter& it) { return NumberAt(it.info, "InterruptVector"); }},
    {{"stripe_sizes_code", "STRIPE SIZES", kNumber, kWide,
      "The stripe sizes it offers, one bit each"},
     [](const Adapter& it) { return NumberAt(it.info, "StripeSizeSupported"); }},
    {{"rates", "RATES", kBits, kWide, "The rates that can be set"},
     [](const Adapter& it) { return BitsAt(it.info, "Features", kRateBits); }},
    {{"port_types_code", "PORT TYPES", kNumber, kWide, "What its ports take, as bits"},
     [](const Adapter& it) { return NumberAt(it.info, "PortSupportType"); }},
    {{"advanced_features_code", "ADVANCED", kNumber, kWide, "Further features, as bits"},
     [](const Adapter& it) { return NumberAt(it.info, "AdvancedFeatures"); }},
    {{"has_alarm", "ALARM", kBool, kWide, "Whether it has an alarm"},
     [](const Adapter& it) { return NumberAt(it.info, "AlarmSupport"); }},
    {{"has_disk_groups", "GROUPS", kBool, kWide, "Whether it offers disk groups"},
     [](const Adapter& it) { return NumberAt(it.info, "DiskGroupSupport"); }},
    {{"max_disks", "MAX DISKS", kNumber, kWide, "How many disks it can have"},
     [](const Adapter& it) { return NumberAt(it.info, "MaxHD_Ext"); }},
    {{"max_virtual_disks", "MAX VDS", kNumber, kWide, "How many virtual disks it can have"},
     [](const Adapter& it) { return NumberAt(it.info, "MaxLogicalDrive"); }},
    {{"max_disks_per_vd", "DISKS/VD", kNumber, kWide, "How many disks a virtual disk can have"},
     [](const Adapter& it) { return NumberAt(it.info, "MaxPDPerVD"); }},
    {{"max_disks_per_dg", "DISKS/DG", kNumber, kWide, "How many disks a disk group can have"},
     [](const Adapter& it) { return NumberAt(it.info, "MaxPDPerDG"); }},
    {{"max_vds_per_dg", "VDS/DG", kNumber, kWide, "How many virtual disks a disk group can have"},
     [](const Adapter& it) { return NumberAt(it.info, "MaxVDPerDG"); }},
    {{"max_parity_disks", "PARITY", kNumber, kWide, "How many parity disks it can keep"},
     [](const Adapter& it) { return NumberAt(it.info, "MaxParityDisks"); }},
    {{"max_blocks_per_disk", "BLOCKS/DISK", kNumber, kWide, "How many blocks a disk can have"},
     [](const Adapter& it) { return NumberAt(it.info, "MaxBlockPerPD"); }},
    {{"max_expanders", "EXPANDERS", kNumber, kWide, "How many expanders it can have"},
     [](const Adapter& it) { return NumberAt(it.info, "MaxExpander"); }},
    {{"max_port_multipliers", "MULTIPLIERS", kNumber, kWide,
      "How many port multipliers it can have"},
     [](const Adapter& it) { return NumberAt(it.info, "MaxPM"); }},
    {{"max_transfer_bytes", "TRANSFER", kBytes, kWide, "What one call can move; 0 no limit"},
     [](const Adapter& it) {
         return it.info.name.empty() ? Unknown()
                                     : NumberCell(1024 * it.info.Number("MaxBufferSize"));
     }},
    {{"alarm_on", "ALARM ON", kBool, kWide, "Setting: the alarm may sound"},
     [](const Adapter& it) { return NumberAt(it.config, "AlarmOn"); }},
    {{"auto_rebuild", "AUTO REBUILD", kBool, kWide, "Setting: spares are taken at once"},
     [](const Adapter& it) { return NumberAt(it.config, "AutoRebuildOn"); }},
    {{"copyback", "COPYBACK", kBool, kWide, "Setting: a replaced disk gets its data back"},
     [](const Adapter& it) { return NumberAt(it.config, "CopyBack"); }},
    {{"poll_smart", "POLL SMART", kBool, kWide, "Setting: disks are asked for their SMART state"},
     [](const Adapter& it) { return NumberAt(it.config, "PollSMARTStatus"); }},
    {{"background_rate_percent", "BGA RATE", kNumber, kWide,
      "Setting: the share of background activities"},
     [](const Adapter& it) { return NumberAt(it.config, "BGARate"); }},
    {{"check_rate_percent", "CHECK RATE", kNumber, kWide,
      "Setting: the share of consistency checks"},
     [](const Adapter& it) { return NumberAt(it.config, "SyncRate"); }},
    {{"init_rate_percent", "INIT RATE", kNumber, kWide, "Setting: the share of initialisations"},
     [](const Adapter& it) { return NumberAt(it.config, "InitRate"); }},
    {{"rebuild_rate_percent", "REBUILD RATE", kNumber, kWide, "Setting: the share of rebuilds"},
     [](const Adapter& it) { return NumberAt(it.config, "RebuildRate"); }},
    {{"migration_rate_percent", "MIGRATION RATE", kNumber, kWide,
      "Setting: the share of migrations"},
     [](const Adapter& it) { return NumberAt(it.config, "MigrationRate"); }},
    {{"copyback_rate_percent", "COPYBACK RATE", kNumber, kWide, "Setting: the share of copybacks"},
     [](const Adapter& it) { return NumberAt(it.config, "CopybackRate"); }},
    {{"media_patrol_rate_percent", "PATROL RATE", kNumber, kWide,
      "Setting: the share of media patrols"},
     [](const Adapter& it) { return NumberAt(it.config, "MediaPatrolRate"); }},
    {{"interrupt_coalescing", "COALESCING", kBool, kWide, "Setting: interrupts are gathered"},
     [](const Adapter& it) { return NumberAt(it.config, "InterruptCoalescing"); }},
    {{"module_consolidate", "CONSOLIDATE", kNumber, kWide,
      "Setting: module consolidation, a code of the controller"},
     [](const Adapter& it) { return NumberAt(it.config, "ModuleConsolidate"); }},
    {{"virtual_atapi_disabled", "ATAPI OFF", kBool, kWide,
      "Setting: the virtual ATAPI device is off"},
     [](const Adapter& it) { return NumberAt(it.config, "v_atapi_disable"); }},
    {{"port_phy_codes", "PORT PHYS", kNumbers, kWide,
      "Setting: per port, a code of the controller"},
     [](const Adapter& it) { return NumbersAt(it.config, "port_phy_ctrl", 8); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit ListAdapters(Invocation& invocation) {
    SelectAdapters(invocation);
    Report report;
    Tabulate(report, kColumns, LoadAdapters(invocation.controller()));
    return Show(invocation, std::move(report), invocation.row().verb == "show" ? "list" : "table");
}

// ---- Changes ----------------------------------------------------------------------------------

Exit MuteAdapter(Invocation& invocation) {
    const Address adapter = FindTarget(invocation, ObjectKind::kAdapter);
    return CarryOut(
        invocation,
        {.what = "Silence the alarm of " + adapter.Text(),
         .losses = {},
         .confirm = {},
         .commands = {{"HX_AdapterMute", {{"AdapterID", std::to_string(adapter.adapter)}}}},
         .address = adapter.Text(),
         .size_bytes = {}});
}

// A setting: its option, the element of the library's record, and whether it is a switch.
struct SettingRow {
    OptionRow option;
    std::string_view element;
};
constexpr std::string_view kOnOff = "on off";
constexpr SettingRow kSettings[] = {
    {{"--alarm", "ON", "The alarm may sound", kOnOff}, "AlarmOn"},
    {{"--auto-rebuild", "ON", "Spares are taken at once", kOnOff}, "AutoRebuildOn"},
    {{"--copyback", "ON", "A replaced disk gets its data back", kOnOff}, "CopyBack"},
    {{"--poll-smart", "ON", "Disks are asked for their SMART state", kOnOff}, "PollSMARTStatus"},
    {{"--interrupt-coalescing", "ON", "Interrupts are gathered", kOnOff}, "InterruptCoalescing"},
    {{"--virtual-atapi-disabled", "ON", "The virtual ATAPI device is off", kOnOff},
     "v_atapi_disable"},
    {{"--background-rate", "PERCENT", "The share of background activities"}, "BGARate"},
    {{"--check-rate", "PERCENT", "The share of consistency checks"}, "SyncRate"},
    {{"--init-rate", "PERCENT", "The share of initialisations"}, "InitRate"},
    {{"--rebuild-rate", "PERCENT", "The share of rebuilds"}, "RebuildRate"},
    {{"--migration-rate", "PERCENT", "The share of migrations"}, "MigrationRate"},
    {{"--copyback-rate", "PERCENT", "The share of copybacks"}, "CopybackRate"},
    {{"--media-patrol-rate", "PERCENT", "The share of media patrols"}, "MediaPatrolRate"},
};
constexpr auto kSettingOptions = [] {
    std::array<OptionRow, std::size(kSettings)> options{};
    for (std::size_t i = 0; i < options.size(); ++i) options[i] = kSettings[i].option;
    return options;
}();

// The library sets all of them at once: those that are not named stay as they are.
Exit SetAdapter(Invocation& invocation) {
    const Address address = FindTarget(invocation, ObjectKind::kAdapter);
    const std::vector<Adapter> adapters = LoadAdapters(invocation.controller());
    if (adapters.empty() || adapters.front().config.children.empty()) {
        throw Failure(Exit::kRefused, address.Text() + ": its settings cannot be read");
    }
    Fields fields{{"AdapterID", std::to_string(address.adapter)}};
    for (const Value& setting : adapters.front().config.children) {
        fields.emplace_back(setting.name, setting.text);
    }
    std::vector<std::string> changes;
    for (const SettingRow& setting : kSettings) {
        if (!invocation.Has(setting.option.name)) continue;
        const std::string value = setting.option.choices.empty()
                                      ? std::to_string(*invocation.Number(setting.option.name, 100))
                                      : SwitchOption(invocation, setting.option.name, 0);
        for (auto& [name, old] : fields) {
            if (name != setting.element) continue;
            changes.emplace_back(name).append(": ").append(old).append(" -> ").append(value);
            old = value;
        }
    }
    if (changes.empty()) throw UsageError("no setting was named");
    return CarryOut(invocation, {.what = "Set " + address.Text(),
                                 .losses = std::move(changes),
                                 .confirm = {},
                                 .commands = {{"HX_Adapter_SetConfig", std::move(fields)}},
                                 .address = address.Text(),
                                 .size_bytes = {}});
}

constexpr CommandRow kCommands[] = {
    {.noun = "adapter",
     .verb = "list",
     .summary = "List the adapters",
     .target = Target::kAdapter,
     .arity = Arity::kAny,
     .target_name = "ADAPTER",
     .functions = "HX_Adapter_GetCount HX_Adapter_GetInfo HX_Adapter_GetConfig",
     .examples = {"vexorctl adapter list", "vexorctl adapter list -o json"},
     .run = ListAdapters,
     .columns = Columns},
    {.noun = "adapter",
     .verb = "show",
     .summary = "Show all about adapters, with their settings",
     .target = Target::kAdapter,
     .arity = Arity::kAny,
     .target_name = "ADAPTER",
     .functions = "HX_Adapter_GetCount HX_Adapter_GetInfo HX_Adapter_GetConfig",
     .examples = {"vexorctl adapter show a0",
                  "vexorctl adapter show a0 --columns serial,rebuild_rate_percent"},
     .run = ListAdapters,
     .columns = Columns},
    {.noun = "adapter",
     .verb = "set",
     .summary = "Change settings of an adapter; those not named stay",
     .target = Target::kAdapter,
     .arity = Arity::kOne,
     .target_name = "ADAPTER",
     .options = kSettingOptions,
     .functions = "HX_Adapter_GetConfig HX_Adapter_SetConfig",
     .examples = {"vexorctl adapter set a0 --rebuild-rate 80 --dry-run",
                  "vexorctl adapter set a0 --alarm off --copyback on --dry-run"},
     .run = SetAdapter,
     .columns = ChangeColumns,
     .changes = true},
    {.noun = "adapter",
     .verb = "mute",
     .summary = "Silence the alarm that is sounding",
     .target = Target::kAdapter,
     .arity = Arity::kOne,
     .target_name = "ADAPTER",
     .functions = "HX_AdapterMute",
     .examples = {"vexorctl adapter mute a0", "vexorctl adapter mute a0 --dry-run"},
     .run = MuteAdapter,
     .columns = ChangeColumns,
     .changes = true},
};

}  // namespace

std::span<const CommandRow> AdapterCommands() { return kCommands; }

}  // namespace vexorctl
