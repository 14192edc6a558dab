// The inventory, which each look updates and the next one is compared with.
#include "conditions/hxc_memory.h"

#include <algorithm>
#include <utility>

#include "codes/activity.h"
#include "codes/battery.h"
#include "codes/disk.h"
#include "codes/enclosure.h"
#include "conditions/hxc_find_arrays.h"
#include "conditions/hxc_redundancy.h"

namespace hxconditions {

namespace {

using hxcodes::ActivityKind;
using hxcodes::ActivityState;
using hxcodes::BatteryBit;
using hxcodes::DiskBit;
using hxcodes::ElementStatus;

constexpr Ticks kRebuildStands = 30 * 60;
constexpr Ticks kActivityStands = 60 * 60;
constexpr Ticks kWaitsTooLong = 60 * 60;
constexpr Ticks kDay = 86400;
constexpr Ticks kCheckIsDue = 35 * kDay;
constexpr unsigned kManyRemaps = 20;
constexpr std::int64_t kClocksAgree = 120;

bool IsPresent(const Adapter& adapter) {
    return adapter.battery && (adapter.battery->status & BatteryBit::kPresent) != 0;
}

bool IsRelearning(const Adapter& adapter) {
    return IsPresent(adapter) && (adapter.battery->status & BatteryBit::kRelearning) != 0;
}

bool IsUnused(const Disk& disk) {
    constexpr unsigned kAnything = DiskBit::kConfigured | DiskBit::kGlobalSpare |
                                   DiskBit::kGroupSpare | DiskBit::kUnavailable | DiskBit::kFailed |
                                   DiskBit::kForeign;
    return (disk.status & kAnything) == 0;
}

// Whether an object is still listed, or another one has taken its address.
enum class Place { kListed, kTaken, kEmpty };
Place PlaceOf(const Things& things, const Object& object) {
    bool taken = false;
    for (const Object& each : things.All()) {
        if (each.kind != object.kind) continue;
        if (each.identity == object.identity) return Place::kListed;
        taken = taken || each.address == object.address;
    }
    return taken ? Place::kTaken : Place::kEmpty;
}

void FindGone(std::vector<Finding>& findings, const Memory& memory, const Answers& answers,
              const Things& things) {
    for (const auto& [identity, seen] : memory.virtual_disks) {
        if (!things.IsRead(seen.object, Source::kVirtualDisks)) continue;
        if (PlaceOf(things, seen.object) != Place::kEmpty) continue;
        findings.push_back(FindingOf(Code::kVdGone, seen.object));
    }
    for (const auto& [identity, seen] : memory.enclosures) {
        if (!things.IsRead(seen.object, Source::kEnclosures)) continue;
        if (PlaceOf(things, seen.object) != Place::kEmpty) continue;
        Finding& gone = findings.emplace_back(FindingOf(Code::kEncGone, seen.object));
        gone.values["n"] = std::to_string(seen.disks);
        gone.links.push_back(identity);
    }
    for (const auto& [identity, seen] : memory.free_disks) {
        const Object& object = seen.object;
        if (!things.IsRead(object, Source::kDisks)) continue;
        if (PlaceOf(things, object) != Place::kEmpty) continue;
        Finding& gone = findings.emplace_back(FindingOf(Code::kDiskMissing, object));
        gone.values["id"] = object.serial.empty() ? "" : " (" + object.serial + ")";
        gone.values["role"] = "; it was free";
        if (!seen.enclosure.empty()) gone.values["enclosure"] = seen.enclosure;
    }
    if (!answers.machine.IsRead() || answers.adapters.size() >= memory.adapters.size()) return;
    for (const auto& [identity, seen] : memory.adapters) {
        if (things.FindAdapter(identity) != nullptr) continue;
        Finding& gone = findings.emplace_back(FindingOf(Code::kAdapterGone, seen.object));
        gone.values["serial"] =
            seen.object.serial.empty() ? seen.object.address : seen.object.serial;
        gone.values["n"] = std::to_string(seen.virtual_disks);
    }
}

// A disk that stands where a lost member stood: the controller itself tells nothing of a lost
// position.
void FindSmallReplacements(std::vector<Finding>& findings, const Memory& memory,
                           const Things& things, const Adapter& adapter) {
    for (const VirtualDisk& each : adapter.virtual_disks) {
        const auto seen = memory.virtual_disks.find(things.Of(adapter, each).identity);
        if (seen == memory.virtual_disks.end()) continue;
        const std::vector<Object>& members = seen->second.members;
        for (const unsigned position : RedundancyOf(each, adapter.disks).lost) {
            if (position >= members.size() || each.members[position].disk) continue;
            const Object& before = members[position];
            const Disk* const disk = FindDisk(adapter, before.id);
            if (before.address.empty() || disk == nullptr) continue;
            if (things.Of(adapter, *disk).identity == before.identity) continue;
            if (auto finding = TooSmallFor(things, adapter, each, position, *disk)) {
                findings.push_back(std::move(*finding));
            }
        }
    }
}

void RememberMembers(SeenVirtualDisk& seen, const Things& things, const Adapter& adapter,
                     const VirtualDisk& virtual_disk) {
    seen.members.resize(virtual_disk.members.size());
    const std::vector<unsigned> lost = RedundancyOf(virtual_disk, adapter.disks).lost;
    for (unsigned i = 0; i < virtual_disk.members.size(); ++i) {
        const Disk* const disk = FindDisk(adapter, virtual_disk.members[i].disk);
        if (disk == nullptr || std::ranges::find(lost, i) != lost.end()) continue;
        const Object member = things.Of(adapter, *disk);
        if (member.is_known) seen.members[i] = member;
    }
}

void FindStanding(std::vector<Finding>& findings, const Memory& memory, const Things& things,
                  const Adapter& adapter, Ticks now) {
    for (const VirtualDisk& each : adapter.virtual_disks) {
        const Object object = things.Of(adapter, each);
        const auto seen = memory.progress.find(object.identity);
        if (seen == memory.progress.end() || !RememberedMovement(memory, now).Stands(object)) {
            continue;
        }
        const bool rebuild = seen->second.activity.kind == ActivityKind::kRebuild;
        const Code code = rebuild ? Code::kRebuildStalled : Code::kActivityStalled;
        Finding& finding = findings.emplace_back(FindingOf(code, object));
        finding.values["activity"] = ActivityText(seen->second.activity.kind);
        finding.values["percent"] = PercentText(seen->second.activity.percent);
        finding.values["for"] = " for " + DurationText(now - seen->second.moved);
        finding.up = Damping{};  // it has been standing still long enough already
    }
    for (const VirtualDisk& each : adapter.virtual_disks) {
        const Object object = things.Of(adapter, each);
        const auto seen = memory.virtual_disks.find(object.identity);
        if (seen == memory.virtual_disks.end() || !IsRedundant(each.level)) continue;
        if (now - seen->second.checked < kCheckIsDue) continue;
        Finding& finding = findings.emplace_back(FindingOf(Code::kVdCheckOverdue, object));
        finding.values["when"] = "at least " + DurationText(now - seen->second.checked) + " ago";
    }
}

std::string LinkText(const SeenLink& link) {
    std::string text;
    if (link.phys) text = std::to_string(*link.phys) + (*link.phys == 1 ? " phy" : " phys");
    if (link.speed) {
        text += (text.empty() ? "speed " : " at speed ") + std::to_string(*link.speed);
    }
    return text;
}

bool IsLower(const std::optional<unsigned>& now, const std::optional<unsigned>& before) {
    return now && before && *now < *before;
}

void FindLinks(std::vector<Finding>& findings, const Memory& memory, const Things& things,
               const Adapter& adapter) {
    constexpr unsigned kAway = DiskBit::kUnavailable | DiskBit::kFailed;
    for (const Disk& disk : adapter.disks) {
        const Object object = things.Of(adapter, disk);
        const auto seen = memory.links.find(object.identity);
        if (seen == memory.links.end() || (disk.status & kAway) != 0) continue;
        if (!IsLower(disk.phys, seen->second.phys) && !IsLower(disk.speed, seen->second.speed)) {
            continue;
        }
        Finding& finding = findings.emplace_back(FindingOf(Code::kLinkReduced, object));
        finding.values["link"] = LinkText({disk.phys, disk.speed});
        finding.values["before"] = LinkText(seen->second);
    }
}

void FindRemaps(std::vector<Finding>& findings, const Memory& memory, const Things& things,
                const Adapter& adapter, Ticks now) {
    for (const Disk& disk : adapter.disks) {
        const Object object = things.Of(adapter, disk);
        const auto seen = memory.remaps.find(object.identity);
        if (!disk.remapped || seen == memory.remaps.end()) continue;
        for (const SeenRemaps& each : seen->second) {
            if (now - each.at > kDay || *disk.remapped < each.count + kManyRemaps) continue;
            Finding& finding = findings.emplace_back(FindingOf(Code::kDiskMediaErrors, object));
            finding.values["id"] = DiskIdText(object, disk);
            finding.values["n"] = std::to_string(*disk.remapped - each.count);
            break;
        }
    }
}

void FindBatteryAndElements(std::vector<Finding>& findings, const Memory& memory,
                            const Things& things, const Adapter& adapter, Ticks now) {
    const Object battery = things.BatteryOf(adapter);
    const bool told = adapter.battery_query.result == Query::Result::kNone || adapter.battery;
    if (told && !IsPresent(adapter) && memory.batteries.contains(battery.identity)) {
        findings.push_back(FindingOf(Code::kBatteryRemoved, battery));
    }
    const auto relearn = memory.relearns.find(battery.identity);
    if (relearn != memory.relearns.end() && IsRelearning(adapter) &&
        now - relearn->second >= kDay) {
        findings.push_back(FindingOf(Code::kBatteryRelearnOverdue, battery));
    }
    for (const Enclosure& enclosure : adapter.enclosures) {
        for (const Element& element : enclosure.elements) {
            const Object object = things.Of(adapter, enclosure, element);
            if (element.status != ElementStatus::kNotInstalled) continue;
            if (!memory.elements.contains(object.identity)) continue;
            Finding& finding = findings.emplace_back(FindingOf(Code::kEncElementRemoved, object));
            finding.values["type"] = ElementTypeText(element.type);
            finding.values["enclosure"] = AddressOf(adapter.number, Kind::kEnclosure, enclosure.id);
            finding.links.push_back(things.Of(adapter, enclosure).identity);
        }
    }
    const auto difference = memory.clock_differences.find(battery.adapter_identity);
    if (difference != memory.clock_differences.end() && difference->second > kClocksAgree) {
        findings.emplace_back(FindingOf(Code::kClockDiffers, things.Of(adapter)))
            .values["difference"] = DurationText(difference->second);
    }
}

void RememberDisks(Memory& memory, const Things& things, const Adapter& adapter, Ticks now) {
    for (const Disk& disk : adapter.disks) {
        const Object object = things.Of(adapter, disk);
        if (!object.is_known) continue;
        if (IsUnused(disk)) {
            memory.free_disks[object.identity] = {
                object,
                disk.enclosure ? AddressOf(adapter.number, Kind::kEnclosure, *disk.enclosure) : ""};
        } else {
            memory.free_disks.erase(object.identity);
        }
        SeenLink& link = memory.links[object.identity];
        link.phys = std::max(link.phys, disk.phys);
        link.speed = std::max(link.speed, disk.speed);
        if (!disk.remapped) continue;
        constexpr Ticks kApart = 3600;
        auto& remaps = memory.remaps[object.identity];
        std::erase_if(remaps, [&](const SeenRemaps& each) { return now - each.at > kDay; });
        if (remaps.empty() || now - remaps.back().at >= kApart) {
            remaps.push_back({now, *disk.remapped});
        }
    }
    if (!adapter.disks_query.IsRead()) return;
    std::erase_if(memory.free_disks, [&](const auto& each) {
        return PlaceOf(things, each.second.object) == Place::kTaken;
    });
}

void RememberAdapter(Memory& memory, const Things& things, const Adapter& adapter, Ticks now) {
    const Object object = things.Of(adapter);
    if (adapter.info.IsRead()) {
        memory.numbers[adapter.number] = object.identity;
        SeenAdapter& seen = memory.adapters[object.identity];
        seen.object = object;
        if (adapter.virtual_disks_query.IsRead()) seen.virtual_disks = adapter.virtual_disks.size();
    }
    for (const VirtualDisk& each : adapter.virtual_disks) {
        const Object virtual_disk = things.Of(adapter, each);
        const auto [seen, is_new] = memory.virtual_disks.try_emplace(virtual_disk.identity);
        seen->second.object = virtual_disk;
        if (is_new) seen->second.checked = now;
        if (adapter.disks_query.IsRead()) {
            RememberMembers(seen->second, things, adapter, each);
        }
    }
    if (IsPresent(adapter)) {
        const Object battery = things.BatteryOf(adapter);
        memory.batteries[battery.identity] = battery;
        if (IsRelearning(adapter)) {
            memory.relearns.try_emplace(battery.identity, now);
        } else {
            memory.relearns.erase(battery.identity);
        }
    }
    for (const Enclosure& enclosure : adapter.enclosures) {
        const Object seen = things.Of(adapter, enclosure);
        if (seen.is_known) {
            const auto inside = std::ranges::count_if(adapter.disks, [&](const Disk& disk) {
                return disk.enclosure && *disk.enclosure == enclosure.id;
            });
            memory.enclosures[seen.identity] = {seen, static_cast<std::size_t>(inside)};
        }
        for (const Element& element : enclosure.elements) {
            if (element.status == ElementStatus::kNotInstalled ||
                element.status == ElementStatus::kUnsupported) {
                continue;
            }
            const Object installed = things.Of(adapter, enclosure, element);
            memory.elements[installed.identity] = installed;
        }
    }
    RememberDisks(memory, things, adapter, now);
}

// A new adapter at the number of a missing one has replaced that; a known adapter at this number
// has only been renumbered.
void ForgetExchanged(Memory& memory, const Things& things, const Adapter& adapter) {
    const std::string identity = things.Of(adapter).identity;
    if (!adapter.info.IsRead() || memory.adapters.contains(identity)) return;
    std::erase_if(memory.adapters, [&](const auto& each) {
        return each.second.object.adapter == adapter.number &&
               things.FindAdapter(each.first) == nullptr;
    });
}

}  // namespace

bool RememberedMovement::Stands(const Object& object) const {
    const auto seen = memory_.progress.find(object.identity);
    if (seen == memory_.progress.end()) return false;
    const Activity& activity = seen->second.activity;
    const Ticks stood = now_ - seen->second.moved;
    if (activity.state == ActivityState::kAutoPaused) return stood >= kWaitsTooLong;
    if (activity.state != ActivityState::kRunning || !activity.percent) return false;
    return stood >= (activity.kind == ActivityKind::kRebuild ? kRebuildStands : kActivityStands);
}

void RememberProgress(Memory& memory, const Answers& answers, const Things& things, Ticks now) {
    for (const Adapter& adapter : answers.adapters) {
        for (const VirtualDisk& each : adapter.virtual_disks) {
            if (!each.activity) continue;
            const std::string identity = things.Of(adapter, each).identity;
            if (each.activity->kind == ActivityKind::kNone) {
                memory.progress.erase(identity);
                continue;
            }
            const auto [seen, is_new] = memory.progress.try_emplace(identity);
            Activity& last = seen->second.activity;
            const bool same = !is_new && last.kind == each.activity->kind &&
                              last.state == each.activity->state &&
                              last.percent == each.activity->percent;
            if (!same) seen->second.moved = now;
            last = *each.activity;
        }
    }
}

std::vector<Finding> FindFromMemory(const Memory& memory, const Answers& answers,
                                    const Things& things, Ticks now) {
    std::vector<Finding> findings;
    FindGone(findings, memory, answers, things);
    for (const Adapter& adapter : answers.adapters) {
        FindStanding(findings, memory, things, adapter, now);
        FindSmallReplacements(findings, memory, things, adapter);
        FindLinks(findings, memory, things, adapter);
        FindRemaps(findings, memory, things, adapter, now);
        FindBatteryAndElements(findings, memory, things, adapter, now);
    }
    return findings;
}

void Remember(Memory& memory, const Answers& answers, const Things& things, Ticks now) {
    for (const Adapter& adapter : answers.adapters) {
        ForgetExchanged(memory, things, adapter);
        RememberAdapter(memory, things, adapter, now);
    }
    std::erase_if(memory.virtual_disks, [&](const auto& each) {
        return PlaceOf(things, each.second.object) == Place::kTaken;
    });
    std::erase_if(memory.enclosures, [&](const auto& each) {
        return PlaceOf(things, each.second.object) == Place::kTaken;
    });
}

}  // namespace hxconditions
