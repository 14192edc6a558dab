// vexorctl adapter ...
#include <array>
#include <cstdio>
#include <utility>

#include "codes/code_table.h"
#include "common/address.h"
#include "conditions/hxc_answers.h"
#include "library_fields.h"
#include "model/adapters.h"
#include "model/ask_controller.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/health_answers.h"
#include "model/library_functions.h"
#include "model/library_record.h"
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

namespace vexorctl::adapter_noun {

namespace {

using fields::Adapter_Config_V2;
using fields::Adapter_Info;
using hxcodes::CodeTable;

Cell PciCell(const Record<Adapter_Info>& info, NumberField<Adapter_Info> vendor,
             NumberField<Adapter_Info> device) {
    const auto vendor_id = info[vendor];
    const auto device_id = info[device];
    if (!vendor_id || !device_id) return Unknown();
    char text[16];
    std::snprintf(text, sizeof(text), "%04X:%04X", static_cast<unsigned>(*vendor_id & 0xFFFF),
                  static_cast<unsigned>(*device_id & 0xFFFF));
    return TextCell(text);
}

Cell VersionCell(const Record<Adapter_Info>& info,
                 RecordField<Adapter_Info, fields::Version_Info> version) {
    return TextCell(VersionText(info[version]));
}

// The names of the damaged images; unknown when the health of one is unknown.
Cell DamagedImages(const Record<Adapter_Info>& info) {
    constexpr std::pair<NumberField<Adapter_Info>, const char*> kImages[] = {
        {Adapter_Info::autoload_img_health, "autoload"},
        {Adapter_Info::boot_loader_img_health, "boot_loader"},
        {Adapter_Info::firmware_img_health, "firmware"},
        {Adapter_Info::boot_rom_img_health, "boot_rom"},
        {Adapter_Info::hba_info_img_health, "hba_info"},
    };
    std::vector<std::string> damaged;
    for (const auto& [field, name] : kImages) {
        const auto health = info[field];
        if (!health) return Unknown();
        if (*health == 0) damaged.emplace_back(name);
    }
    return TextsCell(std::move(damaged));
}

// Bit n stands for 2^n KiB.
Cell StripesCell(const Record<Adapter_Info>& info) {
    return IfOffered(info, [&] {
        const auto bits = info[Adapter_Info::StripeSizeSupported];
        if (!bits) return Unknown();
        std::vector<std::uint64_t> sizes;
        for (std::uint64_t bit = 1; bit != 0 && bit <= *bits; bit <<= 1) {
            if ((*bits & bit) != 0) sizes.push_back(bit * 1024);
        }
        return NumbersCell(std::move(sizes));
    });
}

using enum Kind;
using enum Place;

constexpr Column<Adapter> kColumns[] = {
    {{"address", "ADDRESS", kAddress, kTable, "Its address"},
     [](const Adapter& it) { return TextCell(it.address.Text()); }},
    {{"serial", "SERIAL", kText, kTable, "Its serial number"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::SerialNo); }},
    {{"firmware_version", "FIRMWARE", kText, kTable, "The version of its firmware"},
     [](const Adapter& it) { return VersionCell(it.info, Adapter_Info::FirmwareVersion); }},
    {{"bios_version", "BIOS", kText, kTable, "The version of its BIOS"},
     [](const Adapter& it) { return VersionCell(it.info, Adapter_Info::BIOSVersion); }},
    {{"ports", "PORTS", kNumber, kTable, "The number of its ports"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::PortCount); }},
    {{"levels", "LEVELS", kBits, kWide, "The RAID levels it offers", &CodeTable::level_bits},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::LogicalDriverMode); }},
    {OneOf(HealthWords, {"health", "HEALTH", kWord, kTable,
                         "How well it is itself, by check's conditions of adapters"}),
     [](const Adapter& it) {
         const auto health = HealthOf(it);
         return health ? TextCell(std::string(*health)) : Unknown();
     }},
    {{"flash_healthy", "FLASH OK", kBool, kTable, "Whether all images in its flash are whole"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::img_health); }},
    {{"damaged_images", "DAMAGED IMAGES", kTexts, kWide, "The images in its flash that are not"},
     [](const Adapter& it) { return DamagedImages(it.info); }},
    {{"wwn", "WWN", kHex, kWide, "Its world wide name"},
     [](const Adapter& it) { return HexAt(it.info, Adapter_Info::WWN); }},
    {{"driver_version", "DRIVER", kText, kWide, "The version of its driver"},
     [](const Adapter& it) { return VersionCell(it.info, Adapter_Info::DriverVersion); }},
    {{"boot_loader_version", "BOOT LOADER", kText, kWide, "The version of its boot loader"},
     [](const Adapter& it) { return VersionCell(it.info, Adapter_Info::BootLoaderVersion); }},
    {{"pci_bus", "PCI BUS", kNumber, kWide, "The PCI bus it is on"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::SystemIOBusNumber); }},
    {{"pci_slot", "PCI SLOT", kNumber, kWide, "Its PCI slot"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::SlotNumber); }},
    {{"pci_id", "PCI ID", kText, kWide, "Its PCI vendor and device, hexadecimal"},
     [](const Adapter& it) { return PciCell(it.info, Adapter_Info::VenID, Adapter_Info::DevID); }},
    {{"pci_subsystem_id", "PCI SUBSYSTEM", kText, kWide,
      "Its PCI subsystem vendor and device, hexadecimal"},
     [](const Adapter& it) {
         return PciCell(it.info, Adapter_Info::SubVenID, Adapter_Info::SubDevID);
     }},
    {{"pci_revision", "PCI REVISION", kNumber, kWide, "Its PCI revision"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::RevisionID); }},
    {{"interrupt_level", "IRQ", kNumber, kWide, "Its interrupt level"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::InterruptLevel); }},
    {{"interrupt_vector", "VECTOR", kNumber, kWide, "Its interrupt vector"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::InterruptVector); }},
    {{"stripe_sizes", "STRIPES", kSizes, kWide, "The stripe sizes it offers"},
     [](const Adapter& it) { return StripesCell(it.info); }},
    {{"stripe_sizes_code", "STRIPE SIZES", kNumber, kWide,
      "The stripe sizes it offers, one bit each"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::StripeSizeSupported); }},
    {{"rates", "RATES", kBits, kWide, "The rates that can be set", &CodeTable::rate_bits},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::Features); }},
    {{"port_types_code", "PORT TYPES", kNumber, kWide, "What its ports take, as bits"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::PortSupportType); }},
    {{"advanced_features_code", "ADVANCED", kNumber, kWide, "Further features, as bits"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::AdvancedFeatures); }},
    {{"has_alarm", "ALARM", kBool, kWide, "Whether it has an alarm"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::AlarmSupport); }},
    {{"has_disk_groups", "GROUPS", kBool, kWide, "Whether it offers disk groups"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::DiskGroupSupport); }},
    {{"max_disks", "MAX DISKS", kNumber, kWide, "How many disks it can have"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::MaxHD_Ext); }},
    {{"max_virtual_disks", "MAX VDS", kNumber, kWide, "How many virtual disks it can have"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::MaxLogicalDrive); }},
    {{"max_disks_per_vd", "DISKS/VD", kNumber, kWide, "How many disks a virtual disk can have"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::MaxPDPerVD); }},
    {{"max_disks_per_dg", "DISKS/DG", kNumber, kWide, "How many disks a disk group can have"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::MaxPDPerDG); }},
    {{"max_vds_per_dg", "VDS/DG", kNumber, kWide, "How many virtual disks a disk group can have"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::MaxVDPerDG); }},
    {{"max_parity_disks", "PARITY", kNumber, kWide, "How many parity disks it can keep"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::MaxParityDisks); }},
    {{"max_blocks_per_disk", "BLOCKS/DISK", kNumber, kWide, "How many blocks a disk can have"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::MaxBlockPerPD); }},
    {{"max_expanders", "EXPANDERS", kNumber, kWide, "How many expanders it can have"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::MaxExpander); }},
    {{"max_port_multipliers", "MULTIPLIERS", kNumber, kWide,
      "How many port multipliers it can have"},
     [](const Adapter& it) { return FieldCell(it.info, Adapter_Info::MaxPM); }},
    {{"max_transfer_bytes", "TRANSFER", kBytes, kWide, "What one call can move; 0 no limit"},
     [](const Adapter& it) { return ScaledAt(it.info, Adapter_Info::MaxBufferSize, 1024); }},
    {{"alarm_on", "ALARM ON", kBool, kWide, "Setting: the alarm may sound"},
     [](const Adapter& it) { return FieldCell(it.config, Adapter_Config_V2::AlarmOn); }},
    {{"auto_rebuild", "AUTO REBUILD", kBool, kWide, "Setting: spares are taken at once"},
     [](const Adapter& it) { return FieldCell(it.config, Adapter_Config_V2::AutoRebuildOn); }},
    {{"copyback", "COPYBACK", kBool, kWide, "Setting: a replaced disk gets its data back"},
     [](const Adapter& it) { return FieldCell(it.config, Adapter_Config_V2::CopyBack); }},
    {{"poll_smart", "POLL SMART", kBool, kWide, "Setting: disks are asked for their SMART state"},
     [](const Adapter& it) { return FieldCell(it.config, Adapter_Config_V2::PollSMARTStatus); }},
    {{"background_rate_percent", "BGA RATE", kNumber, kWide,
      "Setting: the share of background activities"},
     [](const Adapter& it) { return FieldCell(it.config, Adapter_Config_V2::BGARate); }},
    {{"check_rate_percent", "CHECK RATE", kNumber, kWide,
      "Setting: the share of consistency checks"},
     [](const Adapter& it) { return FieldCell(it.config, Adapter_Config_V2::SyncRate); }},
    {{"init_rate_percent", "INIT RATE", kNumber, kWide, "Setting: the share of initialisations"},
     [](const Adapter& it) { return FieldCell(it.config, Adapter_Config_V2::InitRate); }},
    {{"rebuild_rate_percent", "REBUILD RATE", kNumber, kWide, "Setting: the share of rebuilds"},
     [](const Adapter& it) { return FieldCell(it.config, Adapter_Config_V2::RebuildRate); }},
    {{"migration_rate_percent", "MIGRATION RATE", kNumber, kWide,
      "Setting: the share of migrations"},
     [](const Adapter& it) { return FieldCell(it.config, Adapter_Config_V2::MigrationRate); }},
    {{"copyback_rate_percent", "COPYBACK RATE", kNumber, kWide, "Setting: the share of copybacks"},
     [](const Adapter& it) { return FieldCell(it.config, Adapter_Config_V2::CopybackRate); }},
    {{"media_patrol_rate_percent", "PATROL RATE", kNumber, kWide,
      "Setting: the share of media patrols"},
     [](const Adapter& it) { return FieldCell(it.config, Adapter_Config_V2::MediaPatrolRate); }},
    {{"interrupt_coalescing", "COALESCING", kBool, kWide, "Setting: interrupts are gathered"},
     [](const Adapter& it) {
         return FieldCell(it.config, Adapter_Config_V2::InterruptCoalescing);
     }},
    {{"module_consolidate", "CONSOLIDATE", kNumber, kWide,
      "Setting: module consolidation, a code of the controller"},
     [](const Adapter& it) { return FieldCell(it.config, Adapter_Config_V2::ModuleConsolidate); }},
    {{"virtual_atapi_disabled", "ATAPI OFF", kBool, kWide,
      "Setting: the virtual ATAPI device is off"},
     [](const Adapter& it) { return FieldCell(it.config, Adapter_Config_V2::v_atapi_disable); }},
    {{"port_phy_codes", "PORT PHYS", kNumbers, kWide,
      "Setting: per port, a code of the controller"},
     [](const Adapter& it) { return FieldCell(it.config, Adapter_Config_V2::port_phy_ctrl); }},
};

std::vector<ColumnInfo> Columns() { return InfoOf(kColumns); }

Exit ListAdapters(Invocation& invocation) {
    SelectAdapters(invocation);
    return Show(invocation, Tabulated(invocation, kColumns, LoadAdapters(invocation.controller())));
}

// ---- Changes ----------------------------------------------------------------------------------

Exit MuteAdapter(Invocation& invocation) {
    using Mute = calls::HX_AdapterMute;
    const Address adapter = FindTarget(invocation, ObjectKind::kAdapter);
    return CarryOut(invocation, {.what = "Silence the alarm of " + adapter.Text(),
                                 .commands = {Request<Mute>{{Mute::AdapterID, adapter.adapter}}},
                                 .address = adapter.Text()});
}

// A setting: its option, and the parameter that sets it.
using SetConfig = calls::HX_Adapter_SetConfig;
struct SettingRow {
    OptionRow option;
    Parameter<SetConfig> parameter;
};
constexpr std::string_view kOnOff = "on off";
constexpr SettingRow kSettings[] = {
    {{"--alarm", "ON", "The alarm may sound", kOnOff}, SetConfig::AlarmOn},
    {{"--auto-rebuild", "ON", "Spares are taken at once", kOnOff}, SetConfig::AutoRebuildOn},
    {{"--copyback", "ON", "A replaced disk gets its data back", kOnOff}, SetConfig::CopyBack},
    {{"--poll-smart", "ON", "Disks are asked for their SMART state", kOnOff},
     SetConfig::PollSMARTStatus},
    {{"--interrupt-coalescing", "ON", "Interrupts are gathered", kOnOff},
     SetConfig::InterruptCoalescing},
    {{"--virtual-atapi-disabled", "ON", "The virtual ATAPI device is off", kOnOff},
     SetConfig::v_atapi_disable},
    {{"--background-rate", "PERCENT", "The share of background activities"}, SetConfig::BGARate},
    {{"--check-rate", "PERCENT", "The share of consistency checks"}, SetConfig::SyncRate},
    {{"--init-rate", "PERCENT", "The share of initialisations"}, SetConfig::InitRate},
    {{"--rebuild-rate", "PERCENT", "The share of rebuilds"}, SetConfig::RebuildRate},
    {{"--migration-rate", "PERCENT", "The share of migrations"}, SetConfig::MigrationRate},
    {{"--copyback-rate", "PERCENT", "The share of copybacks"}, SetConfig::CopybackRate},
    {{"--media-patrol-rate", "PERCENT", "The share of media patrols"}, SetConfig::MediaPatrolRate},
};
constexpr auto kSettingOptions = [] {
    std::array<OptionRow, std::size(kSettings)> options{};
    for (std::size_t i = 0; i < options.size(); ++i) options[i] = kSettings[i].option;
    return options;
}();

// The library sets all of them at once: those that are not named stay as they are. A setting that
// the adapter did not tell would become 0, so nothing is sent then.
Request<SetConfig> RequestToKeep(const Adapter& adapter) {
    const auto fail = [&](const std::string& what) {
        throw Failure(Exit::kRefused,
                      adapter.address.Text() + ": " + what + " cannot be read; nothing was done");
    };
    if (!adapter.config.IsThere()) fail("its settings");
    Request<SetConfig> request{{SetConfig::AdapterID, adapter.address.adapter}};
    for (const Value& setting : adapter.config.value().children) {
        request.Add({Parameter<SetConfig>{setting.name}, setting.text});
    }
    for (const FieldRow& parameter : FindFunction(SetConfig::kName)->fields) {
        const bool is_told = std::ranges::any_of(
            request.values, [&](const auto& value) { return value.first == parameter.name; });
        if (!is_told) fail("its setting " + std::string(parameter.name));
    }
    return request;
}

Exit SetAdapter(Invocation& invocation) {
    const Address address = FindTarget(invocation, ObjectKind::kAdapter);
    const Adapter adapter = TakeObject(LoadAdapters(invocation.controller()), address);
    Request<SetConfig> request = RequestToKeep(adapter);
    std::vector<std::string> changes;
    for (const SettingRow& setting : kSettings) {
        if (!invocation.Has(setting.option.name)) continue;
        const std::uint64_t value = setting.option.choices.empty()
                                        ? *invocation.Number(setting.option.name, 100)
                                        : *SwitchOption(invocation, setting.option.name);
        for (auto& [name, old] : request.values) {
            if (name != setting.parameter.name) continue;
            const std::string now = std::to_string(value);
            changes.emplace_back(name).append(": ").append(old).append(" -> ").append(now);
            old = now;
        }
    }
    if (changes.empty()) throw UsageError("no setting was named");
    Change change{.what = "Set " + address.Text(),
                  .losses = std::move(changes),
                  .commands = {std::move(request)},
                  .address = address.Text()};
    if (const auto auto_rebuild = SwitchOption(invocation, "--auto-rebuild")) {
        change.alters = [auto_rebuild](hxconditions::Adapter& altered) {
            altered.auto_rebuild = *auto_rebuild != 0;
        };
    }
    return CarryOut(invocation, change);
}

constexpr CommandRow kCommands[] = {
    {.noun = "adapter",
     .verb = "list",
     .summary = "List the adapters",
     .target = Target::kAdapter,
     .arity = Arity::kAny,
     .target_name = "ADAPTER",
     .functions = kNamesOf<calls::HX_Adapter_GetCount, calls::HX_Adapter_GetInfo,
                           calls::HX_Adapter_GetConfig>,
     .examples = {"vexorctl adapter list", "vexorctl adapter list -o json"},
     .run = ListAdapters,
     .columns = Columns},
    {.noun = "adapter",
     .verb = "show",
     .summary = "Show all about adapters, with their settings",
     .target = Target::kAdapter,
     .arity = Arity::kAny,
     .target_name = "ADAPTER",
     .functions = kNamesOf<calls::HX_Adapter_GetCount, calls::HX_Adapter_GetInfo,
                           calls::HX_Adapter_GetConfig>,
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
     .functions = kNamesOf<calls::HX_Adapter_GetConfig, calls::HX_Adapter_SetConfig>,
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
     .functions = kNamesOf<calls::HX_AdapterMute>,
     .examples = {"vexorctl adapter mute a0", "vexorctl adapter mute a0 --dry-run"},
     .run = MuteAdapter,
     .columns = ChangeColumns,
     .changes = true},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::adapter_noun
