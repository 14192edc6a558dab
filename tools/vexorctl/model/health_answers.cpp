#include "model/health_answers.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <map>
#include <set>
#include <span>
#include <utility>

#include "codes/activity.h"
#include "codes/battery.h"
#include "codes/device.h"
#include "codes/disk.h"
#include "codes/enclosure.h"
#include "codes/named.h"
#include "codes/state.h"
#include "codes/virtual_disk.h"
#include "conditions/hxc_look.h"
#include "conditions/hxc_overview.h"
#include "conditions/hxc_rows.h"
#include "library_fields.h"
#include "model/adapters.h"
#include "model/batteries.h"
#include "model/disk_groups.h"
#include "model/disks.h"
#include "model/enclosures.h"
#include "model/failure.h"
#include "model/virtual_disks.h"

namespace vexorctl {

namespace {

namespace hxc = hxconditions;
using hxc::Query;
using Number = std::optional<std::uint64_t>;
using CodeNames = std::span<const hxcodes::Named> hxcodes::CodeTable::*;

constexpr unsigned kNoMeaning = 0xFFFF;  // a code that nobody knows

std::optional<unsigned> Small(const Number& number) {
    return number ? std::optional(static_cast<unsigned>(*number)) : std::nullopt;
}
std::optional<int> Signed(const Number& number) {
    return number ? std::optional(static_cast<int>(*number)) : std::nullopt;
}
std::optional<bool> Flag(const Number& number) {
    return number ? std::optional(*number != 0) : std::nullopt;
}

// The codes of the controller as ours: what is called alike means the same.
class Meaning {
public:
    explicit Meaning(const hxcodes::CodeTable& codes) : codes_(codes) {}

    /// Null for a code that has no name, or one that none of ours has.
    template <class Ours>
    std::optional<unsigned> Of(CodeNames names, const Ours& ours, const Number& code) const {
        if (!code) return std::nullopt;
        const auto* const row = hxcodes::FindName(ours, hxcodes::NameOf(codes_.*names, *code));
        if (row == nullptr) return std::nullopt;
        return static_cast<unsigned>(hxcodes::NumberOf(row->code));
    }
    /// Null when one of the bits has none.
    template <class Ours>
    std::optional<unsigned> OfBits(CodeNames names, const Ours& ours, const Number& bits) const {
        if (!bits) return std::nullopt;
        unsigned found = 0;
        for (std::uint64_t bit = 1; bit != 0 && bit <= *bits; bit <<= 1) {
            if ((*bits & bit) == 0) continue;
            const auto one = Of(names, ours, bit);
            if (!one) return std::nullopt;
            found |= *one;
        }
        return found;
    }
    std::string TextOf(CodeNames names, const Number& code) const {
        if (!code) return "?";
        const std::string_view name = hxcodes::NameOf(codes_.*names, *code);
        return name.empty() ? std::to_string(*code) : std::string(name);
    }

private:
    const hxcodes::CodeTable& codes_;
};

using Codes = hxcodes::CodeTable;

// ---- What could not be read ----

struct FunctionQuery {
    std::string_view function;
    Query hxc::Adapter::*query;
};
constexpr FunctionQuery kQueries[] = {
    {calls::HX_Adapter_GetInfo::kName, &hxc::Adapter::info},
    {calls::HX_Adapter_GetConfig::kName, &hxc::Adapter::settings},
    {calls::HX_PD_GetConfig::kName, &hxc::Adapter::settings},
    {calls::HX_PD_GetMBRInfo::kName, &hxc::Adapter::settings},
    {calls::HX_LD_GetConfig::kName, &hxc::Adapter::settings},
    {calls::HX_DG_GetConfig::kName, &hxc::Adapter::settings},
    {calls::HX_LD_GetInfo::kName, &hxc::Adapter::virtual_disks_query},
    {calls::HX_LD_GetStatus::kName, &hxc::Adapter::virtual_disks_query},
    {calls::HX_BLK_GetInfo::kName, &hxc::Adapter::virtual_disks_query},
    {calls::HX_PD_GetHDInfo_Ext::kName, &hxc::Adapter::disks_query},
    {calls::HX_PD_GetHDRaidStatus::kName, &hxc::Adapter::disks_query},
    {calls::HX_PD_GetBGAStatus::kName, &hxc::Adapter::disks_query},
    {calls::HX_PD_GetFreeSpaceInfo::kName, &hxc::Adapter::disks_query},
    {calls::HX_PD_GetSmartStatus::kName, &hxc::Adapter::smart},
    {calls::HX_DG_GetInfo::kName, &hxc::Adapter::groups_query},
    {calls::HX_ENC_GetEnclosureInfo::kName, &hxc::Adapter::enclosures_query},
    {calls::HX_ENC_GetElementInfo::kName, &hxc::Adapter::enclosures_query},
    {calls::HX_ENC_GetElementConfig::kName, &hxc::Adapter::enclosures_query},
    {calls::HX_BBU_GetInfo::kName, &hxc::Adapter::battery_query},
};

void Fail(Query& query, Query::Result result, const Fault& fault) {
    // The first reason is told; but a refusal explains what is missing in the answers.
    const bool explains =
        query.result == Query::Result::kImplausible && result == Query::Result::kFailed;
    if (query.Failed() && !explains) return;
    query.result = result;
    query.call = fault.function;
    query.code = static_cast<unsigned>(fault.code);
    query.name = fault.name;
    query.what = fault.message;
}

// Seen to be there, and to make no sense.
void Doubt(Query& query, std::string_view function, const std::string& what) {
    Fail(query, Query::Result::kImplausible, {.function = std::string(function), .message = what});
}

hxc::Adapter* AdapterAt(hxc::Answers& answers, std::string_view address) {
    unsigned number = 0;
    if (!address.starts_with('a')) return nullptr;
    std::from_chars(address.data() + 1, address.data() + address.size(), number);
    const auto found = std::ranges::find(answers.adapters, number, &hxc::Adapter::number);
    return found == answers.adapters.end() ? nullptr : &*found;
}

void TakeFaults(hxc::Answers& answers, Controller& controller) {
    for (const Fault& fault : controller.faults()) {
        hxc::Adapter* const adapter = AdapterAt(answers, fault.address);
        if (adapter == nullptr) {
            answers.machine.result = Query::Result::kFailed;
            answers.reason = fault.message;
            continue;
        }
        const auto* const row =
            std::ranges::find(kQueries, fault.function, &FunctionQuery::function);
        if (row == std::end(kQueries)) continue;
        // A refusal has a code; without one the answer itself was at fault.
        Fail(adapter->*(row->query),
             fault.code != 0 ? Query::Result::kFailed : Query::Result::kImplausible, fault);
    }
}

// ---- What was read ----

void TakeAdapters(const std::vector<Adapter>& adapters, hxc::Answers& answers) {
    using fields::Adapter_Config_V2;
    using fields::Adapter_Info;
    for (const Adapter& each : adapters) {
        hxc::Adapter& adapter = *AdapterAt(answers, each.address.Text());
        adapter.serial = each.info[Adapter_Info::SerialNo].value_or("");
        hxc::Flash& flash = adapter.flash;
        flash.all = Flag(each.info[Adapter_Info::img_health]);
        flash.autoload = Flag(each.info[Adapter_Info::autoload_img_health]);
        flash.boot_loader = Flag(each.info[Adapter_Info::boot_loader_img_health]);
        flash.firmware = Flag(each.info[Adapter_Info::firmware_img_health]);
        flash.bios = Flag(each.info[Adapter_Info::boot_rom_img_health]);
        flash.hba_info = Flag(each.info[Adapter_Info::hba_info_img_health]);
        if (!flash.all || !flash.autoload || !flash.boot_loader || !flash.firmware || !flash.bios ||
            !flash.hba_info) {
            Doubt(adapter.info, calls::HX_Adapter_GetInfo::kName,
                  "the state of its flash is not known");
        }
        adapter.auto_rebuild = Flag(each.config[Adapter_Config_V2::AutoRebuildOn]);
        adapter.poll_smart = Flag(each.config[Adapter_Config_V2::PollSMARTStatus]);
        const bool asked = each.config.presence() != Presence::kNotOffered;
        if (asked && (!adapter.auto_rebuild || !adapter.poll_smart)) {
            Doubt(adapter.settings, calls::HX_Adapter_GetConfig::kName,
                  "one of its settings is not known");
        }
    }
}

void TakeSmart(const Disk& disk, hxc::Adapter& adapter, hxc::Disk& taken) {
    taken.smart_alarm = Flag(disk.smart[fields::HD_SMART_Status::SmartThresholdExceeded]);
    // A missing disk cannot be asked.
    const bool asked =
        disk.smart.presence() != Presence::kNotOffered && disk.state != kMissingState;
    if (asked && !taken.smart_alarm) {
        Doubt(adapter.smart, calls::HX_PD_GetSmartStatus::kName,
              disk.address.Text() + ": its SMART state is not known");
    }
}

std::optional<hxc::Activity> ActivityOf(const Meaning& meaning, const Number& kind,
                                        const Number& state, const Number& percent) {
    const auto is = meaning.Of(&Codes::activities, hxcodes::kActivityNames, kind);
    if (!is) return std::nullopt;
    hxc::Activity activity;
    activity.kind = *is;
    activity.state = meaning.Of(&Codes::activity_states, hxcodes::kActivityStateNames, state)
                         .value_or(kNoMeaning);
    activity.percent = Small(percent);
    return activity;
}

// Stands for no enclosure.
constexpr std::uint64_t kNoEnclosure = 65535;

// Where the disk is, and how it is linked. The interface has no number of a slot: the phy of the
// device above tells one bay of an enclosure from the others.
void TakePlace(const Disk& disk, const Meaning& meaning, hxc::Disk& taken) {
    using fields::Link_Endpoint;
    const auto link = disk.info[fields::HD_Info::Link];
    const auto parent = link[fields::Link_Entity::Parent];
    const auto phys = parent[Link_Endpoint::PhyID];
    taken.phys = Small(parent[Link_Endpoint::PhyCnt]);
    if (phys && !phys->empty() && taken.phys.value_or(0) != 0) {
        taken.bay = "phy " + std::to_string(phys->front());
    }
    const Number enclosure = link[fields::Link_Entity::Self][Link_Endpoint::EnclosureID];
    if (enclosure && *enclosure != kNoEnclosure) {
        taken.enclosure = Small(enclosure);
        taken.bay.insert(0, "enc" + std::to_string(*enclosure) + (taken.bay.empty() ? "" : " "));
    }
    const auto device =
        meaning.Of(&Codes::devices, hxcodes::kDeviceNames, parent[Link_Endpoint::DevType]);
    if (device == NumberOf(hxcodes::Device::kExpander)) {
        taken.expander = Small(parent[Link_Endpoint::DevID]);
    }
    taken.speed = meaning.Of(&Codes::link_speeds, hxcodes::kLinkSpeedNames,
                             disk.config[fields::HD_Config::DriveSpeed]);
    const auto wwn = disk.info[fields::HD_Info::WWN];
    for (const std::uint64_t byte : wwn.value_or(std::vector<std::uint64_t>())) {
        constexpr std::string_view kDigits = "0123456789ABCDEF";
        taken.wwn += kDigits[(byte >> 4) & 0xF];
        taken.wwn += kDigits[byte & 0xF];
    }
}

// Media patrols and data scrubs. A disk that takes part in an activity of its virtual disk tells
// that one as well.
std::optional<hxc::Activity> OwnActivityOf(const Disk& disk, const Meaning& meaning) {
    using fields::HD_BGA_Status;
    const auto activity = ActivityOf(meaning, disk.activity[HD_BGA_Status::Bga],
                                     disk.activity[HD_BGA_Status::BgaStatus],
                                     disk.activity[HD_BGA_Status::Percentage]);
    if (!activity) return std::nullopt;
    const auto* const row = hxcodes::FindCode(hxcodes::kActivities, activity->kind);
    const bool is_own = row != nullptr && row->runs_on == hxcodes::RunsOn::kDisk;
    return is_own ? activity : std::nullopt;
}

void TakeDisks(const std::vector<Disk>& disks, const Meaning& meaning, hxc::Answers& answers) {
    for (const Disk& each : disks) {
        hxc::Adapter& adapter = *AdapterAt(answers, each.address.Text());
        hxc::Disk& disk = adapter.disks.emplace_back();
        disk.id = each.address.id;
        disk.serial = each.info[fields::HD_Info::SerialNo].value_or("");
        const Number status = each.info[fields::HD_Info::Status];
        const auto bits = meaning.OfBits(&Codes::disk_bits, hxcodes::kDiskBits, status);
        if (!bits) {
            Doubt(adapter.disks_query, calls::HX_PD_GetHDInfo_Ext::kName,
                  each.address.Text() + (status ? ": what its state " + std::to_string(*status) +
                                                      " means is not known"
                                                : ": its state is not known"));
        }
        disk.status = bits.value_or(0);
        disk.sectors = each.info[fields::HD_Info::Size].value_or(0);
        if (disk.sectors == 0) {
            Doubt(adapter.disks_query, calls::HX_PD_GetHDInfo_Ext::kName,
                  each.address.Text() + ": its size is not known");
        }
        disk.free_sectors = each.free_space[fields::HD_FreeSpaceInfo::Size];
        if (each.group.presence == Presence::kThere) disk.group = each.group.group;
        TakePlace(each, meaning, disk);
        disk.smart_on = Flag(each.config[fields::HD_Config::SMARTOn]);
        disk.is_online = Flag(each.config[fields::HD_Config::Online]);
        disk.activity = OwnActivityOf(each, meaning);
        TakeSmart(each, adapter, disk);
    }
}

using Blocks = std::map<std::uint64_t, Record<fields::Block_Info>>;

void TakeMembers(const VirtualDisk& each, const Meaning& meaning, const Blocks& blocks,
                 hxc::Adapter& adapter, hxc::VirtualDisk& taken) {
    using fields::LD_Info;
    const auto ids = FirstNumbers(each.info[LD_Info::BlockIDs], each.info[LD_Info::HDCount]);
    if (!ids) {
        Doubt(adapter.virtual_disks_query, calls::HX_LD_GetInfo::kName,
              each.address.Text() + ": which blocks it has is not known");
        return;
    }
    for (const std::uint64_t id : *ids) {
        hxc::Member& member = taken.members.emplace_back();
        const auto block = blocks.find(id);
        if (block == blocks.end()) continue;  // nothing is left of it
        const bool told =
            block->second[fields::Block_Info::HDID] && block->second[fields::Block_Info::Status];
        if (!told) {
            Doubt(adapter.virtual_disks_query, calls::HX_BLK_GetInfo::kName,
                  each.address.Text() + ": the state of a block is not known");
            taken.members.clear();
            return;
        }
        member.disk = Small(block->second[fields::Block_Info::HDID]);
        member.state = meaning.Of(&Codes::states, hxcodes::kStateNames,
                                  block->second[fields::Block_Info::Status]);
        member.sectors = block->second[fields::Block_Info::Size].value_or(0);
    }
}

void TakeVirtualDisks(Controller& controller, const std::vector<VirtualDisk>& disks,
                      const Meaning& meaning, hxc::Answers& answers) {
    using fields::LD_Info;
    using fields::LD_Status;
    std::map<unsigned, Blocks> blocks;
    std::set<unsigned> are_unread;  // a block that was not read is not one that is lost
    for (const hxc::Adapter& adapter : answers.adapters) {
        auto list = controller.ReadList(adapter.number, kBlockList);
        if (list.presence == Presence::kUnknown) are_unread.insert(adapter.number);
        for (auto& [id, block] : list.items) {
            blocks[adapter.number].insert_or_assign(id, std::move(block));
        }
    }
    for (const VirtualDisk& each : disks) {
        hxc::Adapter& adapter = *AdapterAt(answers, each.address.Text());
        hxc::VirtualDisk& disk = adapter.virtual_disks.emplace_back();
        disk.id = each.address.id;
        disk.name = each.info[LD_Info::Name].value_or("");
        disk.sectors = each.info[LD_Info::Size].value_or(0);
        disk.level = Small(each.info[LD_Info::RaidMode]).value_or(kNoMeaning);
        disk.legs = Small(each.info[LD_Info::SubLDCount]).value_or(0);
        const Number state = each.info[LD_Info::Status];
        if (!state) {
            Doubt(adapter.virtual_disks_query, calls::HX_LD_GetInfo::kName,
                  each.address.Text() + ": its state is not known");
        }
        disk.state = meaning.Of(&Codes::states, hxcodes::kStateNames, state).value_or(kNoMeaning);
        disk.state_text = meaning.TextOf(&Codes::states, state);
        disk.cache =
            meaning.OfBits(&Codes::cache_bits, hxcodes::kCacheBits, each.info[LD_Info::CacheMode]);
        const Number group = each.info[LD_Info::DGID];
        if (!group) {
            Doubt(adapter.virtual_disks_query, calls::HX_LD_GetInfo::kName,
                  each.address.Text() + ": its disk group is not known");
        } else if (*group != kNoDiskGroup) {
            disk.group = Small(group);
        }
        if (!disk.cache) {
            Doubt(adapter.virtual_disks_query, calls::HX_LD_GetInfo::kName,
                  each.address.Text() + ": its cache mode is not known");
        }
        const bool asked = each.status.presence() != Presence::kNotOffered;
        if (asked && (!each.status[LD_Status::Bga] || !each.status[LD_Status::BgaState])) {
            Doubt(adapter.virtual_disks_query, calls::HX_LD_GetStatus::kName,
                  each.address.Text() + ": what it does is not known");
        }
        disk.activity =
            ActivityOf(meaning, each.status[LD_Status::Bga], each.status[LD_Status::BgaState],
                       each.status[LD_Status::BgaPercentage]);
        disk.auto_rebuild = Flag(each.config[fields::LD_Config::AutoRebuildOn]);
        if (are_unread.contains(adapter.number)) continue;
        TakeMembers(each, meaning, blocks[adapter.number], adapter, disk);
    }
}

void TakeDiskGroups(const std::vector<DiskGroup>& groups, const Meaning& meaning,
                    hxc::Answers& answers) {
    using fields::DG_Info;
    for (const DiskGroup& each : groups) {
        hxc::Adapter& adapter = *AdapterAt(answers, each.address.Text());
        hxc::DiskGroup& group = adapter.groups.emplace_back();
        group.id = each.address.id;
        group.name = each.info[DG_Info::Name].value_or("");
        group.sectors = each.info[DG_Info::TotalManagedSpace].value_or(0);
        const Number state = each.info[DG_Info::Status];
        const auto is = meaning.Of(&Codes::states, hxcodes::kStateNames, state);
        if (!is) {
            Doubt(adapter.groups_query, calls::HX_DG_GetInfo::kName,
                  each.address.Text() + ": its state is not known");
        }
        group.state = is.value_or(kNoMeaning);
        for (const std::uint64_t id :
             DisksOf(each.info.view()).value_or(std::vector<std::uint64_t>())) {
            group.disks.push_back(static_cast<unsigned>(id));
        }
        for (const std::uint64_t id :
             SparesOf(each.info.view()).value_or(std::vector<std::uint64_t>())) {
            group.spares.push_back(static_cast<unsigned>(id));
        }
        group.activity = ActivityOf(meaning, each.info[DG_Info::BgaType],
                                    each.info[DG_Info::BgaState], std::nullopt);
    }
}

// An adapter says that it has no battery, or that it knows nothing of any.
Query::Result AbsenceOfBattery(Controller& controller, unsigned adapter) {
    using Info = calls::HX_BBU_GetInfo;
    const auto answer = controller.Ask(Request<Info>{{Info::AdapterID, adapter}});
    const bool none = controller.codes().NameOfRefusal(answer.status) == "no_battery";
    const bool absent = controller.codes().IsAbsence(answer.status);
    if (none) return Query::Result::kNone;
    return absent ? Query::Result::kUnsupported : Query::Result::kRead;
}

void TakeBatteries(Controller& controller, const std::vector<Battery>& batteries,
                   const Meaning& meaning, hxc::Answers& answers) {
    using fields::BBU_Info;
    for (hxc::Adapter& adapter : answers.adapters) {
        adapter.battery_query.result = AbsenceOfBattery(controller, adapter.number);
    }
    for (const Battery& each : batteries) {
        hxc::Adapter& adapter = *AdapterAt(answers, each.address.Text());
        const Number status = each.info[BBU_Info::status];
        const auto bits = meaning.OfBits(&Codes::battery_bits, hxcodes::kBatteryBits, status);
        if (!bits) {
            Doubt(adapter.battery_query, calls::HX_BBU_GetInfo::kName,
                  status ? "what the battery's state " + std::to_string(*status) +
                               " means is not known"
                         : "the battery's state is not known");
            continue;
        }
        hxc::Battery& battery = adapter.battery.emplace();
        battery.status = *bits;
        battery.percent = Small(each.info[BBU_Info::percentage]);
        battery.percent_to_charge = Small(each.info[BBU_Info::percent_to_charge]);
        battery.celsius = Signed(each.info[BBU_Info::temperature]);
        battery.low_celsius = Signed(each.info[BBU_Info::temp_lowerbound]);
        battery.high_celsius = Signed(each.info[BBU_Info::temp_upperbound]);
        battery.millivolts = Small(each.info[BBU_Info::voltage]);
        battery.low_millivolts = Small(each.info[BBU_Info::volt_lowerbound]);
        battery.high_millivolts = Small(each.info[BBU_Info::volt_upperbound]);
        battery.capacity_mah = Small(each.info[BBU_Info::maxCapacity]);
        battery.new_mah = Small(each.info[BBU_Info::supportMaxCapacity]);
        battery.cycles = Small(each.info[BBU_Info::recharge_cycle]);
        constexpr std::uint64_t kNotCharging = 65535;
        const Number to_full = each.info[BBU_Info::time_to_full];
        if (to_full && *to_full != kNotCharging) battery.minutes_to_full = Small(to_full);
    }
}

// SES sends degrees Celsius plus 20, and 0 for none; volts in tens of millivolts.
std::optional<int> CelsiusOf(const Number& sent) {
    constexpr int kOffset = 20;
    if (!sent || *sent == 0) return std::nullopt;
    return static_cast<int>(*sent) - kOffset;
}

void TakeReadings(const Element& each, hxc::Element& element) {
    using fields::EncElement_Config;
    using fields::EncElementType_Info;
    using hxcodes::ElementType;
    constexpr int kTens = 10;
    if (element.type == ElementType::kTemperature) {
        element.reading = CelsiusOf(each.info[EncElementType_Info::Temperature]);
        element.low_critical = CelsiusOf(each.config[EncElement_Config::lowCriticalThreshold]);
        element.low_warning = CelsiusOf(each.config[EncElement_Config::lowWarningThreshold]);
        element.high_warning = CelsiusOf(each.config[EncElement_Config::highWarningThreshold]);
        element.high_critical = CelsiusOf(each.config[EncElement_Config::highCriticalThreshold]);
    }
    if (element.type == ElementType::kFan) {
        element.reading = Signed(each.info[EncElementType_Info::CurSpeed]);
    }
    if (element.type == ElementType::kVoltage) {
        const auto tens = Signed(each.info[EncElementType_Info::Voltage]);
        if (tens) element.reading = *tens * kTens;
    }
}

void TakeEnclosures(const std::vector<Enclosure>& enclosures, const std::vector<Element>& elements,
                    const Meaning& meaning, hxc::Answers& answers) {
    for (const Enclosure& each : enclosures) {
        hxc::Enclosure& enclosure =
            AdapterAt(answers, each.address.Text())->enclosures.emplace_back();
        enclosure.id = each.address.id;
        enclosure.logical_id = each.info[fields::Enclosure_Info::LogicalID].value_or("");
    }
    for (const Element& each : elements) {
        hxc::Adapter& adapter = *AdapterAt(answers, each.address.Text());
        const auto enclosure =
            std::ranges::find(adapter.enclosures, each.address.id, &hxc::Enclosure::id);
        hxc::Element& element = enclosure->elements.emplace_back();
        element.id = each.address.element;
        const Number status = each.info[fields::EncElementType_Info::Status];
        if (!status) {
            Doubt(adapter.enclosures_query, calls::HX_ENC_GetElementInfo::kName,
                  each.address.Text() + ": its state is not known");
        }
        element.status = meaning.Of(&Codes::element_states, hxcodes::kElementStatusNames, status)
                             .value_or(kNoMeaning);
        element.type = Small(each.info[fields::EncElementType_Info::Type]).value_or(kNoMeaning);
        TakeReadings(each, element);
    }
}

// Of adapters of which everything counts as read until a fault says otherwise.
hxc::Answers BegunAnswers(const std::vector<unsigned>& adapters) {
    hxc::Answers answers;
    answers.machine.result = Query::Result::kRead;
    for (const unsigned number : adapters) {
        hxc::Adapter& adapter = answers.adapters.emplace_back();
        adapter.number = number;
        for (const FunctionQuery& each : kQueries) {
            (adapter.*each.query).result = Query::Result::kRead;
        }
    }
    return answers;
}

// Adapters, disks, virtual disks and disk groups.
void LookAtArrays(Controller& controller, const Meaning& meaning, MachineLook& look) {
    hxc::Answers& answers = look.answers;
    answers = BegunAnswers(controller.Selected());
    look.adapters = LoadAdapters(controller);
    TakeAdapters(look.adapters, answers);
    look.disks = LoadDisks(controller);
    TakeDisks(look.disks, meaning, answers);
    look.virtual_disks = LoadVirtualDisks(controller);
    TakeVirtualDisks(controller, look.virtual_disks, meaning, answers);
    look.groups = LoadDiskGroups(controller);
    TakeDiskGroups(look.groups, meaning, answers);
}

// The faults that this look adds are told by its queries alone.
hxc::Answers AnswersFrom(Controller& controller, const auto& disks, const auto& virtual_disks) {
    hxc::Answers answers = BegunAnswers(controller.Selected());
    const Meaning meaning(controller.codes().table());
    const std::size_t faults = controller.faults().size();
    const Exit exit = controller.exit();
    TakeDisks(disks(), meaning, answers);
    TakeVirtualDisks(controller, virtual_disks(), meaning, answers);
    TakeFaults(answers, controller);
    controller.TakeBack(faults, exit);
    return answers;
}

}  // namespace

hxc::Answers AnswersFor(Controller& controller, const std::vector<VirtualDisk>& virtual_disks) {
    return AnswersFrom(
        controller, [&] { return LoadDiskRecords(controller); }, [&] { return virtual_disks; });
}

hxc::Answers AnswersFor(Controller& controller, const std::vector<Disk>& disks) {
    return AnswersFrom(
        controller, [&] { return disks; }, [&] { return LoadVirtualDisks(controller); });
}

hxc::Answers AnswersFor(Controller& controller, const std::vector<Battery>& batteries) {
    hxc::Answers answers = BegunAnswers(controller.Selected());
    TakeBatteries(controller, batteries, Meaning(controller.codes().table()), answers);
    TakeFaults(answers, controller);
    return answers;
}

hxc::Answers AnswersFor(Controller& controller, const std::vector<Enclosure>& enclosures,
                        const std::vector<Element>& elements) {
    hxc::Answers answers = BegunAnswers(controller.Selected());
    TakeEnclosures(enclosures, elements, Meaning(controller.codes().table()), answers);
    TakeFaults(answers, controller);
    return answers;
}

const hxc::Adapter* AdapterIn(const hxc::Answers& answers, unsigned number) {
    const auto found = std::ranges::find(answers.adapters, number, &hxc::Adapter::number);
    return found == answers.adapters.end() ? nullptr : &*found;
}

const hxc::VirtualDisk* VirtualDiskIn(const hxc::Answers& answers, const Address& address) {
    const hxc::Adapter* const adapter = AdapterIn(answers, address.adapter);
    if (adapter == nullptr) return nullptr;
    const auto found = std::ranges::find(adapter->virtual_disks, address.id, &hxc::VirtualDisk::id);
    return found == adapter->virtual_disks.end() ? nullptr : &*found;
}

std::optional<std::string_view> HealthOf(const Adapter& adapter) {
    hxc::Answers answers = BegunAnswers({adapter.address.adapter});
    TakeAdapters({adapter}, answers);
    std::optional<hxc::Level> worst;
    for (const hxc::Condition& each : hxc::LookOnce(answers, {}, {}).heads) {
        if (each.object.kind != hxc::Kind::kAdapter) continue;
        if (!worst || each.level < *worst) worst = each.level;
    }
    const bool is_seen = worst != hxc::Level::kUnknown && worst != hxc::Level::kMinorUnknown;
    return is_seen ? std::optional(hxc::OverallNameOf(worst)) : std::nullopt;
}

std::vector<std::string_view> HealthWords() {
    return {hxc::OverallNameOf({}), hxc::OverallNameOf(hxc::Level::kWarning),
            hxc::OverallNameOf(hxc::Level::kCritical)};
}

hxc::Answers UnreachableHealth(Exit exit, const std::string& reason) {
    hxc::Answers answers;
    const bool denied = exit == Exit::kNotPermitted;
    answers.machine.result = denied ? Query::Result::kDenied : Query::Result::kFailed;
    answers.reason = reason;
    return answers;
}

hxc::Answers LoadArrays(Controller& controller) {
    const std::size_t faults = controller.faults().size();
    const Exit exit = controller.exit();
    MachineLook look;
    LookAtArrays(controller, Meaning(controller.codes().table()), look);
    TakeFaults(look.answers, controller);
    controller.TakeBack(faults, exit);
    return std::move(look.answers);
}

MachineLook LookAtMachine(Controller& controller) {
    MachineLook look;
    hxc::Answers& answers = look.answers;
    controller.AcceptAbsences();
    const Meaning meaning(controller.codes().table());
    LookAtArrays(controller, meaning, look);
    look.batteries = LoadBatteries(controller);
    TakeBatteries(controller, look.batteries, meaning, answers);
    look.enclosures = LoadEnclosures(controller);
    look.elements = LoadElements(controller, look.enclosures);
    TakeEnclosures(look.enclosures, look.elements, meaning, answers);
    TakeFaults(answers, controller);
    return look;
}

void TakeRemapped(Controller& controller, hxc::Answers& answers) {
    using Function = calls::HX_PD_GetRCT;
    for (hxc::Adapter& adapter : answers.adapters) {
        for (hxc::Disk& disk : adapter.disks) {
            const auto answer =
                controller.Ask(Request<Function>{{Function::AdapterID, adapter.number},
                                                 {Function::HD_ID, disk.id},
                                                 {Function::n, 1},
                                                 {Function::s, 0},
                                                 {Function::e, 0}});
            if (answer.exit == Exit::kDone) disk.remapped = Small(answer[Function::Result::Count]);
        }
    }
}

MachineLook LoadMachine(Controller& controller) {
    MachineLook look;
    try {
        look = LookAtMachine(controller);
    } catch (const Failure& failure) {
        look.answers = UnreachableHealth(failure.exit, failure.what());
    } catch (const Unavailable& failure) {
        const std::string subject = failure.subject.empty() ? "" : failure.subject + ": ";
        look.answers = UnreachableHealth(Exit::kUnavailable, subject + failure.what());
    }
    return look;
}

hxc::Answers LoadHealth(Controller& controller) { return LoadMachine(controller).answers; }

}  // namespace vexorctl
