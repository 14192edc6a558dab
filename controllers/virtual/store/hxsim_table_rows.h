// The tables of the state file, row by row: the names of tables and columns, and the members of the
// machine that they store. Reading, comparing and writing follow from these rows.
//
// A new member of a machine's row needs a column here, which the compiler demands, and a step in
// kUpgradeSteps (hxsim_upgrade.h).
#pragma once

#include <cstddef>
#include <tuple>
#include <vector>

#include "library/column.h"
#include "model/hxsim_machine.h"
#include "model/hxsim_member_count.h"

namespace hxsim {

using hxlibrary::Col;

/// A table with a row for each entry of a list. Its first `keys` columns are the key, and the list
/// ascends by it; a table without a key has at most one row.
template <std::size_t keys, class Holder, class Entry, class... Columns>
struct Table {
    static constexpr std::size_t kKeys = keys;
    using Row = Entry;
    const char* name;
    std::vector<Entry> Holder::*list;
    std::tuple<Columns...> columns;
};

/// The number of a row's members that are lists, each stored in its own table.
template <class Row>
inline constexpr std::size_t kLists = 0;
template <>
inline constexpr std::size_t kLists<Adapter> = 14;

template <std::size_t keys, class Holder, class Entry, class... Columns>
constexpr Table<keys, Holder, Entry, Columns...> Rows(const char* name,
                                                      std::vector<Entry> Holder::*list,
                                                      std::tuple<Columns...> columns) {
    static_assert(sizeof...(Columns) + kLists<Entry> == RowMembers<Entry>(),
                  "every member of the row has one column");
    return {name, list, columns};
}

/// The columns of the machine itself and of its clock, each in a table of one row.
inline constexpr std::tuple kMachineColumns{
    Col("seed", &Machine::seed),
    Col("random", &Machine::random),
    Col("topology", &Machine::topology),
};
inline constexpr std::tuple kClockColumns{
    Col("start", &Clock::start),
    Col("real", &Clock::real),
    Col("speed", &Clock::speed),
};

/// The tables of the machine's lists.
inline constexpr std::tuple kMachineTables{
    Rows<1>("adapter", &Machine::adapters,
            std::tuple{
                Col("id", &Adapter::id),
                Col("info", &Adapter::info),      // an Adapter_Info as it is in memory
                Col("config", &Adapter::config),  // an Adapter_Config_V2
                Col("alarm", &Adapter::alarm),
                Col("muted", &Adapter::muted),
                Col("next_event", &Adapter::next_event),
            }),
    Rows<1>("injection", &Machine::injections,
            std::tuple{
                Col("id", &Injection::id),
                Col("call", &Injection::call),
                Col("code", &Injection::code),
                Col("times", &Injection::times),
                Col("let_through", &Injection::after),
                Col("on_adapter", &Injection::adapter),
                Col("hostile", &Injection::hostile),
            }),
};

/// The tables of each adapter's lists; their first column is the adapter's number.
inline constexpr std::tuple kAdapterTables{
    Rows<1>("disk", &Adapter::disks,
            std::tuple{
                Col("id", &Disk::id),
                Col("parent", &Disk::parent),
                Col("parent_id", &Disk::parent_id),
                Col("phy", &Disk::phy),
                Col("phys", &Disk::phys),
                Col("enclosure", &Disk::enclosure),
                Col("slot", &Disk::slot),
                Col("model", &Disk::model),
                Col("firmware", &Disk::firmware),
                Col("serial", &Disk::serial),
                Col("wwn", &Disk::wwn),
                Col("sectors", &Disk::sectors),
                Col("sas", &Disk::sas),
                Col("speed", &Disk::speed),
                Col("present", &Disk::present),
                Col("failed", &Disk::failed),
                Col("offline", &Disk::offline),
                Col("is_foreign", &Disk::foreign),
                Col("spare", &Disk::spare),
                Col("spare_group", &Disk::spare_group),
                Col("spare_before", &Disk::spare_before),
                Col("spare_group_before", &Disk::spare_group_before),
                Col("smart_on", &Disk::smart_on),
                Col("smart_exceeded", &Disk::smart_exceeded),
                Col("write_cache", &Disk::write_cache),
                Col("has_mbr", &Disk::has_mbr),
                Col("has_system", &Disk::has_system),
                Col("locate_light", &Disk::locate_light),
            }),
    Rows<1>("block", &Adapter::blocks,
            std::tuple{
                Col("id", &Block::id),
                Col("disk", &Block::disk),
                Col("virtual_disk", &Block::virtual_disk),
                Col("position", &Block::position),
                Col("target", &Block::target),
                Col("state", &Block::state),
                Col("start", &Block::start),
                Col("sectors", &Block::sectors),
            }),
    Rows<1>("virtual_disk", &Adapter::virtual_disks,
            std::tuple{
                Col("id", &VirtualDisk::id),
                Col("name", &VirtualDisk::name),
                Col("disk_group", &VirtualDisk::group),
                Col("slot", &VirtualDisk::slot),
                Col("level", &VirtualDisk::level),
                Col("legs", &VirtualDisk::legs),
                Col("width", &VirtualDisk::width),
                Col("stripe_kib", &VirtualDisk::stripe_kib),
                Col("cache", &VirtualDisk::cache),
                Col("coefficient", &VirtualDisk::coefficient),
                Col("size", &VirtualDisk::size),
                Col("auto_rebuild", &VirtualDisk::auto_rebuild),
                Col("is_foreign", &VirtualDisk::foreign),
                Col("initialised", &VirtualDisk::initialised),
                Col("errors", &VirtualDisk::errors),
                Col("state", &VirtualDisk::state),
            }),
    Rows<1>("disk_group", &Adapter::disk_groups,
            std::tuple{
                Col("id", &DiskGroup::id),
                Col("name", &DiskGroup::name),
                Col("level", &DiskGroup::level),
                Col("legs", &DiskGroup::legs),
                Col("width", &DiskGroup::width),
                Col("stripe_kib", &DiskGroup::stripe_kib),
                Col("write_cache", &DiskGroup::write_cache),
                Col("state", &DiskGroup::state),
            }),
    Rows<3>("home", &Adapter::homes,
            std::tuple{
                Col("kind", &Home::of),
                Col("owner", &Home::owner),
                Col("position", &Home::position),
                Col("disk", &Home::disk),
                Col("home", &Home::home),
            }),
    Rows<1>("activity", &Adapter::activities,
            std::tuple{
                Col("id", &Activity::id),
                Col("kind", &Activity::kind),
                Col("state", &Activity::state),
                Col("owner_kind", &Activity::of),
                Col("owner", &Activity::owner),
                Col("total", &Activity::total),
                Col("done", &Activity::done),
                Col("since", &Activity::since),
                Col("speed", &Activity::speed),
                Col("announced", &Activity::announced),
                Col("found", &Activity::found),
                Col("level", &Activity::level),
                Col("legs", &Activity::legs),
                Col("width", &Activity::width),
                Col("stripe_kib", &Activity::stripe_kib),
                Col("size", &Activity::size),
            }),
    Rows<2>("remap", &Adapter::remaps,
            std::tuple{
                Col("disk", &Remap::disk),
                Col("lba", &Remap::lba),
                Col("sectors", &Remap::sectors),
                Col("reason", &Remap::reason),
            }),
    Rows<1>("expander", &Adapter::expanders,
            std::tuple{
                Col("id", &Expander::id),
                Col("parent", &Expander::parent),
                Col("parent_id", &Expander::parent_id),
                Col("phy", &Expander::phy),
                Col("phys", &Expander::phys),
                Col("enclosure", &Expander::enclosure),
                Col("phy_count", &Expander::phy_count),
                Col("route_indexes", &Expander::route_indexes),
                Col("changes", &Expander::changes),
                Col("vendor", &Expander::vendor),
                Col("product", &Expander::product),
                Col("revision", &Expander::revision),
                Col("component_vendor", &Expander::component_vendor),
                Col("component", &Expander::component),
                Col("component_revision", &Expander::component_revision),
            }),
    Rows<1>("port_multiplier", &Adapter::port_multipliers,
            std::tuple{
                Col("id", &PortMultiplier::id),
                Col("parent", &PortMultiplier::parent),
                Col("parent_id", &PortMultiplier::parent_id),
                Col("phy", &PortMultiplier::phy),
                Col("phys", &PortMultiplier::phys),
                Col("ports", &PortMultiplier::ports),
                Col("revision", &PortMultiplier::revision),
                Col("standards", &PortMultiplier::standards),
                Col("vendor", &PortMultiplier::vendor),
                Col("device", &PortMultiplier::device),
            }),
    Rows<1>("enclosure", &Adapter::enclosures,
            std::tuple{
                Col("id", &Enclosure::id),
                Col("parent", &Enclosure::parent),
                Col("parent_id", &Enclosure::parent_id),
                Col("phy", &Enclosure::phy),
                Col("phys", &Enclosure::phys),
                Col("vendor", &Enclosure::vendor),
                Col("product", &Enclosure::product),
                Col("revision", &Enclosure::revision),
            }),
    Rows<2>("element", &Adapter::elements,
            std::tuple{
                Col("enclosure", &Element::enclosure),
                Col("number", &Element::number),
                Col("type", &Element::type),
                Col("status", &Element::status),
                Col("reading", &Element::reading),
                Col("nominal", &Element::nominal),
                Col("speed_code", &Element::speed_code),
                Col("muted", &Element::muted),
                Col("high_critical", &Element::high_critical),
                Col("high_warning", &Element::high_warning),
                Col("low_critical", &Element::low_critical),
                Col("low_warning", &Element::low_warning),
            }),
    Rows<0>("battery", &Adapter::batteries,
            std::tuple{
                Col("info", &Battery::info),  // a BBU_Info
                Col("phase", &Battery::phase),
                Col("since", &Battery::since),
                Col("charge_at_since", &Battery::charge_at_since),
                Col("switched_on", &Battery::switched_on),
                Col("present", &Battery::present),
            }),
    Rows<1>("flash_image", &Adapter::images,
            std::tuple{
                Col("type", &FlashImage::type),
                Col("erased", &FlashImage::erased),
                Col("healthy", &FlashImage::healthy),
                Col("written", &FlashImage::written),
                Col("data", &FlashImage::data),
            }),  // null: nothing
    Rows<1>("event", &Adapter::events,
            std::tuple{
                Col("number", &QueuedEvent::number),
                Col("event", &QueuedEvent::event),
            }),  // an Event
};

static_assert(std::tuple_size_v<decltype(kClockColumns)> == MemberCount<Clock>(),
              "every member of the clock has one column");
static_assert(std::tuple_size_v<decltype(kMachineColumns)> + 1 +
                      std::tuple_size_v<decltype(kMachineTables)> ==
                  MemberCount<Machine>(),
              "every member of the machine has a column, or a table; the clock has its own");
static_assert(std::tuple_size_v<decltype(kAdapterTables)> == kLists<Adapter>,
              "every list of an adapter has a table");

// Whether a number in a file is a value of an enumeration; codes must be in their table.
template <hxcodes::CodeEnum Code>
constexpr bool IsValue(Code, std::uint64_t number) {
    return ToCode<Code>(number).has_value();
}
constexpr bool IsValue(RemapReason, std::uint64_t number) {
    return number == kNotRemapped || ToCode<RemapReason>(number).has_value();
}
constexpr bool IsValue(Spare, std::uint64_t number) { return number <= NumberOf(Spare::kGroup); }
constexpr bool IsValue(Owner, std::uint64_t number) { return number <= NumberOf(Owner::kDisk); }
constexpr bool IsValue(BatteryPhase, std::uint64_t number) {
    return number <= NumberOf(BatteryPhase::kRelearnCharging);
}

}  // namespace hxsim
