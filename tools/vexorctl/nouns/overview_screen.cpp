// The sections of the screen are tables of their own columns, narrow enough for 80 columns.
#include "nouns/overview_screen.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "codes/device.h"
#include "common/terminal_text.h"
#include "conditions/hxc_check.h"
#include "conditions/hxc_redundancy.h"
#include "conditions/hxc_spares.h"
#include "library_fields.h"
#include "output/address_ranges.h"
#include "output/cell.h"
#include "output/record_cells.h"
#include "output/report.h"
#include "output/wrapped_text.h"
#include "output/write_table.h"

namespace vexorctl {

namespace {

namespace hxc = hxconditions;
using hxcodes::CodeTable;
using vexortools::Printable;
using enum Kind;
using enum Place;

const hxc::Adapter* AdapterOf(const MachineLook& look, const Address& address) {
    const auto found =
        std::ranges::find(look.answers.adapters, address.adapter, &hxc::Adapter::number);
    return found == look.answers.adapters.end() ? nullptr : &*found;
}

template <class Record, std::size_t n>
std::string Section(const Column<Record> (&columns)[n], const std::vector<Record>& records,
                    const CodeTable& codes, const Style& style) {
    if (records.empty()) return "";
    Report report;
    Tabulate(report, columns, records, codes);
    KeepColumns(report, ColumnsThatFit(report, style));
    std::string out = "\n";
    WriteTable(report, style, true, out);
    return out;
}

// ---- Adapters ----

struct AdapterLine {
    const Adapter* record;
    const hxc::Adapter* health;
};

std::string BatteryText(const hxc::Adapter& adapter) {
    if (adapter.battery_query.result == hxc::Query::Result::kNone ||
        adapter.battery_query.result == hxc::Query::Result::kUnsupported) {
        return "none";
    }
    if (!adapter.battery || !adapter.battery->percent) return "?";
    return std::to_string(*adapter.battery->percent) + "%";
}

std::optional<std::uint64_t> CountOf(const hxc::Query& query, std::size_t count) {
    return query.IsRead() ? std::optional<std::uint64_t>(count) : std::nullopt;
}

constexpr Column<AdapterLine> kAdapterColumns[] = {
    {{"address", "ADAPTER", kText, kTable, ""},
     [](const AdapterLine& it) { return TextCell(it.record->address.Text()); }},
    {{"serial", "SERIAL", kText, kTable, ""},
     [](const AdapterLine& it) {
         return FieldCell(it.record->info, fields::Adapter_Info::SerialNo);
     }},
    {{"firmware_version", "FIRMWARE", kText, kTable, ""},
     [](const AdapterLine& it) {
         return TextCell(VersionText(it.record->info[fields::Adapter_Info::FirmwareVersion]));
     }},
    {{"virtual_disks", "VDS", kNumber, kTable, ""},
     [](const AdapterLine& it) {
         return NumberCell(
             CountOf(it.health->virtual_disks_query, it.health->virtual_disks.size()));
     }},
    {{"disks", "DISKS", kNumber, kTable, ""},
     [](const AdapterLine& it) {
         return NumberCell(CountOf(it.health->disks_query, it.health->disks.size()));
     }},
    {{"spares", "SPARES", kNumber, kTable, ""},
     [](const AdapterLine& it) {
         const auto spares = std::ranges::count_if(it.health->disks, hxc::IsReadySpare);
         return NumberCell(CountOf(it.health->disks_query, static_cast<std::size_t>(spares)));
     }},
    {{"battery", "BATTERY", kText, kTable, ""},
     [](const AdapterLine& it) { return TextCell(BatteryText(*it.health)); }},
    {{"flash_healthy", "FLASH OK", kBool, kTable, ""},
     [](const AdapterLine& it) {
         return FieldCell(it.record->info, fields::Adapter_Info::img_health);
     }},
};

std::string Adapters(const MachineLook& look, const CodeTable& codes, const Style& style) {
    std::vector<AdapterLine> lines;
    for (const Adapter& each : look.adapters) {
        if (const hxc::Adapter* const health = AdapterOf(look, each.address)) {
            lines.push_back({&each, health});
        }
    }
    return Section(kAdapterColumns, lines, codes, style);
}

// ---- Enclosures ----

// How its elements are, those that are not ok first and by their numbers: "el0 critical, 11 ok".
// Null where they were not read.
std::optional<std::string> ElementsText(const MachineLook& look, const Enclosure& enclosure,
                                        const CodeTable& codes) {
    const hxc::Adapter* const adapter = AdapterOf(look, enclosure.address);
    if (adapter == nullptr || !adapter->enclosures_query.IsRead()) return std::nullopt;
    constexpr std::size_t kMostNamed = 3;
    std::map<std::string, std::vector<std::string>> by_state;
    for (const Element& each : look.elements) {
        const bool is_its = each.address.adapter == enclosure.address.adapter &&
                            each.address.id == enclosure.address.id;
        if (!is_its) continue;
        const auto state = each.info[fields::EncElementType_Info::Status];
        const std::string name(state ? hxcodes::NameOf(codes.element_states, *state) : "?");
        by_state[name.empty() ? "state " + std::to_string(*state) : name].push_back(
            "el" + std::to_string(each.address.element));
    }
    std::string text;
    const auto append = [&](const std::string& what) { text += (text.empty() ? "" : ", ") + what; };
    for (const auto& [state, elements] : by_state) {
        if (state == "ok") continue;
        append((elements.size() <= kMostNamed ? Joined(elements, ",")
                                              : std::to_string(elements.size())) +
               " " + state);
    }
    if (const auto ok = by_state.find("ok"); ok != by_state.end()) {
        append(std::to_string(ok->second.size()) + " ok");
    }
    return text.empty() ? "none" : text;
}

struct EnclosureLine {
    const Enclosure* record;
    std::optional<std::string> elements;
};

constexpr Column<EnclosureLine> kEnclosureColumns[] = {
    {{"address", "ENCLOSURE", kText, kTable, ""},
     [](const EnclosureLine& it) { return TextCell(it.record->address.Text()); }},
    {{"product", "PRODUCT", kText, kTable, ""},
     [](const EnclosureLine& it) {
         return FieldCell(it.record->info, fields::Enclosure_Info::ProductID);
     }},
    {{"state", "STATE", kCode, kTable, "", &CodeTable::element_states},
     [](const EnclosureLine& it) {
         return FieldCell(it.record->info, fields::Enclosure_Info::Status);
     }},
    {{"elements", "ELEMENTS", kText, kTable, ""},
     [](const EnclosureLine& it) { return TextCell(it.elements); }},
};

// ---- Bays ----

// Disks of one place that stand beside each other and are alike.
struct BayLine {
    Address place;  // the enclosure, or the adapter
    // What the phys are of: several expanders and port multipliers count theirs from 0.
    std::optional<std::uint64_t> parent_type, parent;
    std::string parent_name;  // of a port multiplier
    std::optional<std::uint64_t> first_phy, last_phy;
    std::vector<std::string> disks;
    std::string state;
    std::optional<std::uint64_t> sectors;
};

constexpr std::uint64_t kNoEnclosure = 65535;

BayLine BayOf(const Disk& disk, const CodeTable& codes) {
    using fields::Link_Endpoint;
    const auto link = disk.info[fields::HD_Info::Link];
    const auto enclosure = link[fields::Link_Entity::Self][Link_Endpoint::EnclosureID];
    const auto parent = link[fields::Link_Entity::Parent];
    const auto phys = parent[Link_Endpoint::PhyID];
    BayLine bay;
    bay.parent_type = parent[Link_Endpoint::DevType];
    bay.parent = parent[Link_Endpoint::DevID];
    const bool multiplied = bay.parent_type && bay.parent &&
                            hxcodes::NameOf(codes.devices, *bay.parent_type) ==
                                hxcodes::NameOf(hxcodes::Device::kPortMultiplier);
    if (multiplied) bay.parent_name = " multiplier " + std::to_string(*bay.parent);
    bay.place = {.adapter = disk.address.adapter};
    if (enclosure && *enclosure != kNoEnclosure) {
        bay.place.kind = ObjectKind::kEnclosure;
        bay.place.id = static_cast<unsigned>(*enclosure);
    }
    if (phys && !phys->empty()) bay.first_phy = bay.last_phy = phys->front();
    bay.disks.push_back(disk.address.Text());
    bay.state = disk.state.value_or("?");
    bay.sectors = disk.info[fields::HD_Info::Size];
    return bay;
}

bool GoesOn(const BayLine& line, const BayLine& next) {
    const bool beside = line.last_phy && next.first_phy && *line.last_phy + 1 == *next.first_phy;
    return beside && line.place == next.place && line.parent_type == next.parent_type &&
           line.parent == next.parent && line.state == next.state && line.sectors == next.sectors;
}

std::vector<BayLine> Bays(const MachineLook& look, const CodeTable& codes) {
    std::vector<BayLine> lines;
    for (const Disk& disk : look.disks) lines.push_back(BayOf(disk, codes));
    std::ranges::stable_sort(lines, {}, [](const BayLine& it) {
        return std::tuple(it.place.adapter, it.place.kind != ObjectKind::kAdapter, it.place.id,
                          it.parent_type, it.parent, it.first_phy);
    });
    std::vector<BayLine> merged;
    for (BayLine& each : lines) {
        if (merged.empty() || !GoesOn(merged.back(), each)) {
            merged.push_back(std::move(each));
            continue;
        }
        merged.back().last_phy = each.last_phy;
        merged.back().disks.push_back(std::move(each.disks.front()));
    }
    return merged;
}

std::optional<std::string> PhysText(const BayLine& line) {
    if (!line.first_phy) return std::nullopt;
    const std::string first = std::to_string(*line.first_phy);
    return line.first_phy == line.last_phy ? first : first + "-" + std::to_string(*line.last_phy);
}

constexpr Column<BayLine> kBayColumns[] = {
    {{"place", "BAYS OF", kText, kTable, ""},
     [](const BayLine& it) { return TextCell(it.place.Text() + it.parent_name); }},
    {{"phys", "PHY", kText, kTable, ""}, [](const BayLine& it) { return TextCell(PhysText(it)); }},
    {{"disks", "DISKS", kText, kTable, ""},
     [](const BayLine& it) { return TextCell(AddressRanges(it.disks)); }},
    {{"size_bytes", "SIZE", kBytes, kTable, ""},
     [](const BayLine& it) { return SectorsCell(it.sectors); }},
    {{"state", "STATE", kText, kTable, ""}, [](const BayLine& it) { return TextCell(it.state); }},
};

// ---- Virtual disks ----

struct VirtualDiskLine {
    const VirtualDisk* record;
    std::optional<unsigned> survives;
};

std::optional<unsigned> SurvivesOf(const MachineLook& look, const VirtualDisk& disk) {
    const hxc::Adapter* const adapter = AdapterOf(look, disk.address);
    if (adapter == nullptr) return std::nullopt;
    const auto found =
        std::ranges::find(adapter->virtual_disks, disk.address.id, &hxc::VirtualDisk::id);
    if (found == adapter->virtual_disks.end()) return std::nullopt;
    return hxc::SurvivesOf(*adapter, *found);
}

std::optional<std::string> DisksText(const VirtualDisk& disk) {
    if (!disk.disks) return std::nullopt;
    std::vector<std::string> disks;
    for (const std::uint64_t id : *disk.disks) {
        disks.push_back(Address{.adapter = disk.address.adapter,
                                .kind = ObjectKind::kDisk,
                                .id = static_cast<unsigned>(id)}
                            .Text());
    }
    return AddressRanges(disks);
}

constexpr Column<VirtualDiskLine> kVirtualDiskColumns[] = {
    {{"address", "VD", kText, kTable, ""},
     [](const VirtualDiskLine& it) { return TextCell(it.record->address.Text()); }},
    {{"name", "NAME", kText, kTable, ""},
     [](const VirtualDiskLine& it) { return FieldCell(it.record->info, fields::LD_Info::Name); }},
    {{"state", "STATE", kCode, kTable, "", &CodeTable::states},
     [](const VirtualDiskLine& it) { return FieldCell(it.record->info, fields::LD_Info::Status); }},
    {{"level", "LEVEL", kCode, kTable, "", &CodeTable::levels},
     [](const VirtualDiskLine& it) {
         return FieldCell(it.record->info, fields::LD_Info::RaidMode);
     }},
    {{"survives", "SURVIVES", kNumber, kTable, ""},
     [](const VirtualDiskLine& it) { return NumberCell(it.survives); }},
    {{"size_bytes", "SIZE", kBytes, kTable, ""},
     [](const VirtualDiskLine& it) { return SectorsAt(it.record->info, fields::LD_Info::Size); }},
    {{"disks", "DISKS", kText, kTable, ""},
     [](const VirtualDiskLine& it) { return TextCell(DisksText(*it.record)); }},
};

// ---- Activities ----

struct ActivityLine {
    Address address;
    std::optional<std::string> name;
    std::optional<std::uint64_t> kind, state, percent;
};

bool IsActivity(const std::optional<std::uint64_t>& kind) { return kind && *kind != 0; }

std::vector<ActivityLine> Activities(const MachineLook& look) {
    std::vector<ActivityLine> lines;
    for (const VirtualDisk& each : look.virtual_disks) {
        using fields::LD_Status;
        const auto kind = each.status[LD_Status::Bga];
        if (!IsActivity(kind)) continue;
        lines.push_back({each.address, each.info[fields::LD_Info::Name], kind,
                         each.status[LD_Status::BgaState], each.status[LD_Status::BgaPercentage]});
    }
    for (const DiskGroup& each : look.groups) {
        using fields::DG_Info;
        const auto kind = each.info[DG_Info::BgaType];
        if (!IsActivity(kind)) continue;
        lines.push_back({each.address, each.info[DG_Info::Name], kind, each.info[DG_Info::BgaState],
                         each.percent});
    }
    for (const Disk& each : look.disks) {
        using fields::HD_BGA_Status;
        const hxc::Adapter* const adapter = AdapterOf(look, each.address);
        const hxc::Disk* const disk =
            adapter == nullptr ? nullptr : hxc::FindDisk(*adapter, each.address.id);
        const bool own = disk != nullptr && disk->activity;
        if (!own) continue;
        lines.push_back({each.address, "", each.activity[HD_BGA_Status::Bga],
                         each.activity[HD_BGA_Status::BgaStatus],
                         each.activity[HD_BGA_Status::Percentage]});
    }
    return lines;
}

constexpr Column<ActivityLine> kActivityColumns[] = {
    {{"address", "ACTIVITY ON", kText, kTable, ""},
     [](const ActivityLine& it) { return TextCell(it.address.Text()); }},
    {{"name", "NAME", kText, kTable, ""}, [](const ActivityLine& it) { return TextCell(it.name); }},
    {{"activity", "ACTIVITY", kCode, kTable, "", &CodeTable::activities},
     [](const ActivityLine& it) { return NumberCell(it.kind); }},
    {{"state", "STATE", kCode, kTable, "", &CodeTable::activity_states},
     [](const ActivityLine& it) { return NumberCell(it.state); }},
    {{"progress_ratio", "PROGRESS", kRatio, kTable, ""},
     [](const ActivityLine& it) { return PercentCell(it.percent); }},
};

// ---- What needs attention ----

std::string NextStep(const hxc::Condition& head) {
    if (head.command.empty()) return head.next_step;
    std::string text;
    for (const std::string& word : head.command) text += (text.empty() ? "" : " ") + word;
    return head.otherwise.empty() ? text : text + ", or " + head.otherwise;
}

std::string Attention(const hxc::Overview& overview, std::size_t width) {
    constexpr std::size_t kMost = 8;
    std::string out;
    std::size_t shown = 0;
    std::size_t left = 0;
    for (const hxc::Condition& head : overview.heads) {
        if (head.level == hxc::Level::kInfo) continue;
        if (shown == kMost) {
            ++left;
            continue;
        }
        ++shown;
        const std::string level = "[" + std::string(hxc::NameOf(head.level)) + "] ";
        out += Wrapped(level, Printable(head.sentence), width);
        out += Wrapped(std::string(level.size(), ' ') + "-> ", Printable(NextStep(head)), width);
    }
    if (out.empty()) return "";
    if (left > 0) out += "and " + std::to_string(left) + " more: vexorctl check\n";
    return "\nNeeds attention:\n" + out;
}

}  // namespace

std::string OverviewScreen(const MachineLook& look, const hxc::Overview& overview,
                           const CodeTable& codes, const Style& style) {
    std::string out =
        Wrapped("", Printable(hxc::FirstLine(overview, hxc::CountsOf(look.answers))), style.width);
    out += Adapters(look, codes, style);
    std::vector<EnclosureLine> enclosures;
    for (const Enclosure& each : look.enclosures) {
        enclosures.push_back({&each, ElementsText(look, each, codes)});
    }
    out += Section(kEnclosureColumns, enclosures, codes, style);
    out += Section(kBayColumns, Bays(look, codes), codes, style);
    std::vector<VirtualDiskLine> virtual_disks;
    for (const VirtualDisk& each : look.virtual_disks) {
        virtual_disks.push_back({&each, SurvivesOf(look, each)});
    }
    out += Section(kVirtualDiskColumns, virtual_disks, codes, style);
    out += Section(kActivityColumns, Activities(look), codes, style);
    return out + Attention(overview, style.width);
}

}  // namespace vexorctl
