// The members of the machine's rows that a topology sets, and why it does not set the others.
//
// Every member of a row is a column, which is read by its name, or stands in the list of others
// with the reason: read in another way, or not set by topologies. The compiler counts both lists.
#pragma once

#include <cstddef>
#include <tuple>
#include <type_traits>

#include "hxraid.h"
#include "library/column.h"
#include "model/hxsim_machine.h"
#include "model/hxsim_member_count.h"

namespace hxsim {

using hxlibrary::Col;

/// A member that is read in another way, or that no topology sets.
template <class Class, class Value>
struct OtherMember {
    Value Class::*field;
    const char* how;
};
template <class Class, class Value>
constexpr OtherMember<Class, Value> Other(Value Class::*field, const char* how) {
    return {field, how};
}

/// The number of values that a member counts for: an array counts one for each element.
template <class Value>
consteval std::size_t ValuesOf() {
    if constexpr (std::is_array_v<Value>) {
        return std::extent_v<Value> * ValuesOf<std::remove_extent_t<Value>>();
    } else {
        return 1;
    }
}
template <class>
struct MemberOf;
template <class Class, class Value>
struct MemberOf<hxlibrary::Column<Class, Value>> {
    using Type = Value;
};
template <class Class, class Value>
struct MemberOf<OtherMember<Class, Value>> {
    using Type = Value;
};
template <class... Members>
consteval std::size_t ValuesOf(const std::tuple<Members...>*) {
    return (ValuesOf<typename MemberOf<Members>::Type>() + ...);
}
template <class Row, class... Lists>
consteval bool AllMembersAreIn() {
    return (ValuesOf(static_cast<const Lists*>(nullptr)) + ...) == RowMembers<Row>();
}

// ---- Adapters ----

inline constexpr std::tuple kInfoColumns{
    Col("DriverVersion", &Adapter_Info::DriverVersion),
    Col("BIOSVersion", &Adapter_Info::BIOSVersion),
    Col("FirmwareVersion", &Adapter_Info::FirmwareVersion),
    Col("BootLoaderVersion", &Adapter_Info::BootLoaderVersion),
    Col("SystemIOBusNumber", &Adapter_Info::SystemIOBusNumber),
    Col("SlotNumber", &Adapter_Info::SlotNumber),
    Col("InterruptLevel", &Adapter_Info::InterruptLevel),
    Col("InterruptVector", &Adapter_Info::InterruptVector),
    Col("VenID", &Adapter_Info::VenID),
    Col("SubVenID", &Adapter_Info::SubVenID),
    Col("DevID", &Adapter_Info::DevID),
    Col("SubDevID", &Adapter_Info::SubDevID),
    Col("RevisionID", &Adapter_Info::RevisionID),
    Col("MaxPDPerVD", &Adapter_Info::MaxPDPerVD),
    Col("StripeSizeSupported", &Adapter_Info::StripeSizeSupported),
    Col("AdvancedFeatures", &Adapter_Info::AdvancedFeatures),
    Col("MaxPDPerDG", &Adapter_Info::MaxPDPerDG),
    Col("MaxVDPerDG", &Adapter_Info::MaxVDPerDG),
    Col("MaxParityDisks", &Adapter_Info::MaxParityDisks),
    Col("PortCount", &Adapter_Info::PortCount),
    Col("PortSupportType", &Adapter_Info::PortSupportType),
    Col("Features", &Adapter_Info::Features),
    Col("AlarmSupport", &Adapter_Info::AlarmSupport),
    Col("MaxBlockPerPD", &Adapter_Info::MaxBlockPerPD),
    Col("MaxHD", &Adapter_Info::MaxHD),
    Col("MaxHD_Ext", &Adapter_Info::MaxHD_Ext),
    Col("MaxExpander", &Adapter_Info::MaxExpander),
    Col("MaxPM", &Adapter_Info::MaxPM),
    Col("MaxLogicalDrive", &Adapter_Info::MaxLogicalDrive),
    Col("LogicalDriverMode", &Adapter_Info::LogicalDriverMode),
    Col("DiskGroupSupport", &Adapter_Info::DiskGroupSupport),
    Col("MaxBufferSize", &Adapter_Info::MaxBufferSize),
};
inline constexpr std::tuple kInfoOthers{
    Other(&Adapter_Info::SerialNo, "read: member serial of the adapter"),
    Other(&Adapter_Info::WWN, "follows from the adapter's number"),
    Other(&Adapter_Info::PortSasAddress, "follows from the adapter's number"),
    Other(&Adapter_Info::img_health, "new images are sound"),
    Other(&Adapter_Info::autoload_img_health, "new images are sound"),
    Other(&Adapter_Info::boot_loader_img_health, "new images are sound"),
    Other(&Adapter_Info::firmware_img_health, "new images are sound"),
    Other(&Adapter_Info::boot_rom_img_health, "new images are sound"),
    Other(&Adapter_Info::hba_info_img_health, "new images are sound"),
    Other(&Adapter_Info::Reserved1, "reserved"),
    Other(&Adapter_Info::Reserved2, "reserved"),
    Other(&Adapter_Info::Reserved3, "reserved"),
    Other(&Adapter_Info::Reserved4, "reserved"),
};
static_assert(AllMembersAreIn<Adapter_Info, decltype(kInfoColumns), decltype(kInfoOthers)>());

inline constexpr std::tuple kConfigColumns{
    Col("AlarmOn", &Adapter_Config_V2::AlarmOn),
    Col("AutoRebuildOn", &Adapter_Config_V2::AutoRebuildOn),
    Col("BGARate", &Adapter_Config_V2::BGARate),
    Col("SyncRate", &Adapter_Config_V2::SyncRate),
    Col("InitRate", &Adapter_Config_V2::InitRate),
    Col("RebuildRate", &Adapter_Config_V2::RebuildRate),
    Col("MigrationRate", &Adapter_Config_V2::MigrationRate),
    Col("CopybackRate", &Adapter_Config_V2::CopybackRate),
    Col("PollSMARTStatus", &Adapter_Config_V2::PollSMARTStatus),
    Col("MediaPatrolRate", &Adapter_Config_V2::MediaPatrolRate),
    Col("CopyBack", &Adapter_Config_V2::CopyBack),
    Col("InterruptCoalescing", &Adapter_Config_V2::InterruptCoalescing),
    Col("ModuleConsolidate", &Adapter_Config_V2::ModuleConsolidate),
    Col("v_atapi_disable", &Adapter_Config_V2::v_atapi_disable),
};
inline constexpr std::tuple kConfigOthers{
    Other(&Adapter_Config_V2::port_phy_ctrl, "the virtual ports have no such control"),
    Other(&Adapter_Config_V2::Reserved, "reserved"),
};
static_assert(
    AllMembersAreIn<Adapter_Config_V2, decltype(kConfigColumns), decltype(kConfigOthers)>());

// ---- Devices ----

inline constexpr std::tuple kExpanderColumns{
    Col("id", &Expander::id),
    Col("enclosure", &Expander::enclosure),
    Col("phys", &Expander::phy_count),
    Col("route_indexes", &Expander::route_indexes),
    Col("changes", &Expander::changes),
    Col("vendor", &Expander::vendor),
    Col("product", &Expander::product),
    Col("revision", &Expander::revision),
    Col("component_vendor", &Expander::component_vendor),
    Col("component", &Expander::component),
    Col("component_revision", &Expander::component_revision),
};
inline constexpr std::tuple kAttachmentOthers{
    Other(&Attachment::parent, "read: member at"),
    Other(&Attachment::parent_id, "read: member at"),
    Other(&Attachment::phy, "read: member at"),
    Other(&Attachment::phys, "read: member at"),
};
static_assert(AllMembersAreIn<Attachment, decltype(kAttachmentOthers)>());
static_assert(AllMembersAreIn<Expander, decltype(kExpanderColumns), decltype(kAttachmentOthers)>());

inline constexpr std::tuple kPortMultiplierColumns{
    Col("id", &PortMultiplier::id),
    Col("ports", &PortMultiplier::ports),
    Col("revision", &PortMultiplier::revision),
    Col("standards", &PortMultiplier::standards),
    Col("vendor", &PortMultiplier::vendor),
    Col("device", &PortMultiplier::device),
};
static_assert(AllMembersAreIn<PortMultiplier, decltype(kPortMultiplierColumns),
                              decltype(kAttachmentOthers)>());

inline constexpr std::tuple kEnclosureColumns{
    Col("id", &Enclosure::id),
    Col("vendor", &Enclosure::vendor),
    Col("product", &Enclosure::product),
    Col("revision", &Enclosure::revision),
};
static_assert(
    AllMembersAreIn<Enclosure, decltype(kEnclosureColumns), decltype(kAttachmentOthers)>());

inline constexpr std::tuple kThresholdColumns{
    Col("high_critical", &Element::high_critical),
    Col("high_warning", &Element::high_warning),
    Col("low_critical", &Element::low_critical),
    Col("low_warning", &Element::low_warning),
};
inline constexpr std::tuple kElementOthers{
    Other(&Element::enclosure, "the enclosure that it stands in"),
    Other(&Element::number, "its place in the enclosure's list"),
    Other(&Element::type, "read: member type"),
    Other(&Element::reading, "read: rpm, celsius or centivolts"),
    Other(&Element::nominal, "read: of fans and voltages"),
    Other(&Element::speed_code, "read: of fans"),
    Other(&Element::status, "a new element is well"),
    Other(&Element::muted, "a new alarm is not muted"),
};
static_assert(AllMembersAreIn<Element, decltype(kThresholdColumns), decltype(kElementOthers)>());

// ---- Disks ----

inline constexpr std::tuple kDiskColumns{
    Col("enclosure", &Disk::enclosure),     Col("slot", &Disk::slot),
    Col("write_cache", &Disk::write_cache), Col("has_mbr", &Disk::has_mbr),
    Col("has_system", &Disk::has_system),   Col("foreign", &Disk::foreign),
};
inline constexpr std::tuple kDiskOthers{
    Other(&Disk::id, "read: member id"),
    Other(&Disk::model, "read: member model"),
    Other(&Disk::firmware, "read: of the model"),
    Other(&Disk::sectors, "read: of the model"),
    Other(&Disk::sas, "read: of the model"),
    Other(&Disk::speed, "read: of the model"),
    Other(&Disk::serial, "read: member serial, or drawn"),
    Other(&Disk::wwn, "read: member wwn, or from its place"),
    Other(&Disk::spare, "read: global_spare and group_spare"),
    Other(&Disk::spare_group, "read: group_spare"),
    Other(&Disk::spare_before, "no spare has stepped in yet"),
    Other(&Disk::spare_group_before, "no spare has stepped in yet"),
    Other(&Disk::present, "a place without a disk is no place in a topology"),
    Other(&Disk::failed, "an incident (hxsimctl fail) does it"),
    Other(&Disk::offline, "a caller does it"),
    Other(&Disk::smart_on, "a caller sets it"),
    Other(&Disk::smart_exceeded, "an incident (hxsimctl smart) does it"),
    Other(&Disk::locate_light, "a caller sets it"),
};
static_assert(AllMembersAreIn<Disk, decltype(kDiskColumns), decltype(kDiskOthers),
                              decltype(kAttachmentOthers)>());

inline constexpr std::tuple kRemapOthers{
    Other(&Remap::disk, "the disk that it stands in"),
    Other(&Remap::lba, "read: member lba"),
    Other(&Remap::sectors, "read: member sectors"),
    Other(&Remap::reason, "read: member reason"),
};
static_assert(AllMembersAreIn<Remap, decltype(kRemapOthers)>());

// ---- Disk groups and virtual disks ----

inline constexpr std::tuple kDiskGroupColumns{
    Col("id", &DiskGroup::id),
    Col("name", &DiskGroup::name),
    Col("write_cache", &DiskGroup::write_cache),
};
inline constexpr std::tuple kDiskGroupOthers{
    Other(&DiskGroup::level, "read: member level"),
    Other(&DiskGroup::legs, "read: member legs"),
    Other(&DiskGroup::stripe_kib, "read: member stripe_kib"),
    Other(&DiskGroup::width, "follows from the disks"),
    Other(&DiskGroup::state, "follows from the disks"),
};
static_assert(
    AllMembersAreIn<DiskGroup, decltype(kDiskGroupColumns), decltype(kDiskGroupOthers)>());

inline constexpr std::tuple kVirtualDiskColumns{
    Col("id", &VirtualDisk::id),
    Col("name", &VirtualDisk::name),
    Col("foreign", &VirtualDisk::foreign),
    Col("auto_rebuild", &VirtualDisk::auto_rebuild),
    Col("initialised", &VirtualDisk::initialised),
};
inline constexpr std::tuple kVirtualDiskOthers{
    Other(&VirtualDisk::group, "read: member disk_group"),
    Other(&VirtualDisk::slot, "read: member slot"),
    Other(&VirtualDisk::level, "read: member level, or of the disk group"),
    Other(&VirtualDisk::legs, "read: member legs, or of the disk group"),
    Other(&VirtualDisk::stripe_kib, "read: member stripe_kib, or of the disk group"),
    Other(&VirtualDisk::cache, "read: member cache"),
    Other(&VirtualDisk::size, "read: gib or block_sectors"),
    Other(&VirtualDisk::width, "follows from the disks"),
    Other(&VirtualDisk::state, "follows from the disks"),
    Other(&VirtualDisk::coefficient, "hosts of a new machine see sectors of 512 bytes"),
    Other(&VirtualDisk::errors, "redundancy of a new machine agrees"),
};
static_assert(
    AllMembersAreIn<VirtualDisk, decltype(kVirtualDiskColumns), decltype(kVirtualDiskOthers)>());

// ---- Battery and flash ----

inline constexpr std::tuple kBatteryColumns{
    Col("voltage", &BBU_Info::voltage),
    Col("supportMaxCapacity", &BBU_Info::supportMaxCapacity),
    Col("supportMinCapacity", &BBU_Info::supportMinCapacity),
    Col("maxCapacity", &BBU_Info::maxCapacity),
    Col("curCapacity", &BBU_Info::curCapacity),
    Col("recharge_cycle", &BBU_Info::recharge_cycle),
    Col("temperature", &BBU_Info::temperature),
    Col("volt_lowerbound", &BBU_Info::volt_lowerbound),
    Col("volt_upperbound", &BBU_Info::volt_upperbound),
    Col("temp_lowerbound", &BBU_Info::temp_lowerbound),
    Col("temp_upperbound", &BBU_Info::temp_upperbound),
    Col("percent_to_charge", &BBU_Info::percent_to_charge),
};
inline constexpr std::tuple kBatteryInfoOthers{
    Other(&BBU_Info::status, "a new battery is there and safe"),
    Other(&BBU_Info::prev_status, "a new battery has been charged"),
    Other(&BBU_Info::percentage, "follows from the charge"),
    Other(&BBU_Info::time_to_empty, "a new battery is idle"),
    Other(&BBU_Info::time_to_full, "a new battery is idle"),
    Other(&BBU_Info::featureSupport, "every battery has every feature"),
    Other(&BBU_Info::flags, "the virtual battery has none"),
    Other(&BBU_Info::Reserved, "reserved"),
};
static_assert(AllMembersAreIn<BBU_Info, decltype(kBatteryColumns), decltype(kBatteryInfoOthers)>());

inline constexpr std::tuple kBatteryOthers{
    Other(&Battery::info, "read: member battery"),
    Other(&Battery::phase, "a new battery is idle"),
    Other(&Battery::since, "the start of the clock"),
    Other(&Battery::charge_at_since, "follows from the charge"),
    Other(&Battery::switched_on, "a caller switches it"),
    Other(&Battery::present, "a text without a battery leaves it out"),
};
static_assert(AllMembersAreIn<Battery, decltype(kBatteryOthers)>());

inline constexpr std::tuple kImageOthers{
    Other(&FlashImage::type, "read: member images"),
    Other(&FlashImage::erased, "new images are sound"),
    Other(&FlashImage::healthy, "new images are sound"),
    Other(&FlashImage::written, "new images are sound"),
    Other(&FlashImage::data, "follows from the adapter until somebody writes another one"),
};
static_assert(AllMembersAreIn<FlashImage, decltype(kImageOthers)>());

}  // namespace hxsim
