// Conditions of virtual disks, disk groups, their rebuilds and their spares.
#include "conditions/hxc_find_arrays.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "codes/activity.h"
#include "codes/battery.h"
#include "codes/disk.h"
#include "codes/state.h"
#include "codes/virtual_disk.h"
#include "conditions/hxc_redundancy.h"
#include "conditions/hxc_spares.h"
#include "conditions/hxc_text.h"

namespace hxconditions {

namespace {

using hxcodes::ActivityKind;
using hxcodes::ActivityState;
using hxcodes::BatteryBit;
using hxcodes::CacheBit;
using hxcodes::DiskBit;

constexpr unsigned kBroken = DiskBit::kUnavailable | DiskBit::kFailed;

// The findings and intermediate results for one virtual disk.
struct Lookup {
    std::vector<Finding>& findings;
    const Things& things;
    const Adapter& adapter;
    const VirtualDisk& virtual_disk;
    Object object;
    Redundancy redundancy;
    const Activity* activity = nullptr;  // the virtual disk's own or its disk group's
    const Disk* spare = nullptr;         // a spare that fits
    const Disk* free = nullptr;          // a free disk that would fit

    Finding& Add(Code code) { return findings.emplace_back(FindingOf(code, object)); }
};

void FindFittingDisks(Lookup& look) {
    const std::vector<unsigned>& lost = look.redundancy.lost;
    const std::uint64_t needed = NeededBy(look.adapter, look.virtual_disk, lost);
    look.spare = SpareFor(look.adapter, look.virtual_disk, needed);
    look.free = FreeDiskFor(look.adapter, look.virtual_disk, lost, needed);
}

void AddActivity(Values& values, const Activity* activity) {
    values["percent"] = activity == nullptr ? "?" : PercentText(activity->percent);
    values["left"].clear();
    if (activity != nullptr && activity->seconds_left) {
        values["left"] =
            ", " + DurationText(static_cast<std::int64_t>(*activity->seconds_left)) + " left";
    }
}

std::vector<std::string> AddressesAt(const Lookup& look, const std::vector<unsigned>& positions) {
    std::vector<std::string> addresses;
    for (const unsigned each : positions) {
        const auto& disk = look.virtual_disk.members[each].disk;
        if (disk) addresses.push_back(AddressOf(look.adapter.number, Kind::kDisk, *disk));
    }
    return addresses;
}

// The exact redundancy that is left: with pairs and legs, only the failure of certain disks loses
// data.
std::string RedundancyText(const Lookup& look) {
    const std::vector<std::string> needed = AddressesAt(look, look.redundancy.needed);
    const std::vector<std::string> others = AddressesAt(look, look.redundancy.spare_positions);
    if (needed.empty() || others.empty()) return "has no redundancy left";
    return "survives no failure of " + Alternatives(needed) + ", while " + Alternatives(others) +
           " may still fail";
}

void AddMembers(const Lookup& look, Finding& finding) {
    std::vector<std::string> addresses;
    for (std::size_t i = 0; i < look.virtual_disk.members.size(); ++i) {
        const auto& id = look.virtual_disk.members[i].disk;
        const Disk* const disk = FindDisk(look.adapter, id);
        LostMember member;
        if (disk != nullptr) {
            member.identity = look.things.Of(look.adapter, *disk).identity;
            finding.links.push_back(member.identity);
        }
        if (id) member.address = AddressOf(look.adapter.number, Kind::kDisk, *id);
        if (std::ranges::find(look.redundancy.lost, i) == look.redundancy.lost.end()) continue;
        if (!member.address.empty()) addresses.push_back(member.address);
        finding.lost.push_back(member);
    }
    for (const Disk& disk : look.adapter.disks) {
        if (!IsSpare(disk) || !Reaches(disk, look.virtual_disk)) continue;
        finding.links.push_back(look.things.Of(look.adapter, disk).identity);
    }
    if (const DiskGroup* const group = FindGroup(look.adapter, look.virtual_disk.group)) {
        finding.links.push_back(look.things.Of(look.adapter, *group).identity);
    }
    finding.links.push_back(look.object.identity);
    finding.links.push_back(look.object.adapter_identity);
    finding.count = finding.lost.size();
    const std::size_t unnamed = finding.lost.size() - addresses.size();
    finding.values["lost"] = addresses.empty() ? "" : addresses.front();
    if (unnamed == 1) addresses.emplace_back("a disk");
    if (unnamed > 1) addresses.push_back(std::to_string(unnamed) + " disks");
    finding.values["members"] = addresses.empty() ? "a disk" : Listed(addresses);
}

// The condition for its state; none while all is well.
std::optional<Code> StateCodeOf(const VirtualDisk& virtual_disk, const Redundancy& redundancy,
                                bool rebuild_moves) {
    const unsigned state = virtual_disk.state;
    if (state == hxcodes::State::kOffline) return Code::kVdOffline;
    if (state == hxcodes::State::kForeign) return Code::kVdForeign;
    if (!hxcodes::ToCode<hxcodes::State>(state)) return Code::kVdStateUnknown;
    if (state == hxcodes::State::kDegraded && virtual_disk.is_unsynchronised)
        return Code::kVdDirtyDegraded;
    const bool lost = !redundancy.lost.empty();
    if (state == hxcodes::State::kOptimal && !lost) return std::nullopt;
    if (redundancy.is_offline) return Code::kVdOffline;
    const bool none_left = redundancy.survives && lost ? *redundancy.survives == 0
                                                       : state == hxcodes::State::kDegraded;
    if (none_left) return rebuild_moves ? Code::kVdRebuildingUnprotected : Code::kVdNoRedundancy;
    return rebuild_moves ? Code::kVdRebuilding : Code::kVdRedundancyReduced;
}

bool Rebuilds(const Activity* activity) {
    return activity != nullptr && activity->kind == ActivityKind::kRebuild &&
           activity->state == ActivityState::kRunning;
}

std::string StateText(const VirtualDisk& virtual_disk) {
    return virtual_disk.state_text.empty() ? std::to_string(virtual_disk.state)
                                           : Harmless(virtual_disk.state_text);
}

void FindState(Lookup& look, const Movement* movement) {
    const bool moves =
        Rebuilds(look.activity) && (movement == nullptr || !movement->Stands(look.object));
    const auto code = StateCodeOf(look.virtual_disk, look.redundancy, moves);
    if (!code) return;
    Finding& finding = look.Add(*code);
    AddMembers(look, finding);
    AddActivity(finding.values, look.activity);
    finding.values["redundancy"] = RedundancyText(look);
    finding.values["n"] = *code == Code::kVdStateUnknown ? StateText(look.virtual_disk)
                          : look.redundancy.survives     ? std::to_string(*look.redundancy.survives)
                                                         : "?";
}

bool IsRebuild(const Activity& activity) {
    return activity.kind == ActivityKind::kRebuild || activity.kind == ActivityKind::kCopyback;
}

// The disk of a member whose rebuild is needed but not running.
const Disk* AbandonedTarget(const Lookup& look) {
    if (look.virtual_disk.state == hxcodes::State::kOptimal) return nullptr;
    if (look.activity != nullptr && IsRebuild(*look.activity)) return nullptr;
    const DiskGroup* const group = FindGroup(look.adapter, look.virtual_disk.group);
    if (group != nullptr && group->activity && IsRebuild(*group->activity)) return nullptr;
    for (const Member& member : look.virtual_disk.members) {
        const Disk* const disk = FindDisk(look.adapter, member.disk);
        if (disk != nullptr && (disk->status & DiskBit::kRebuilding) != 0) return disk;
    }
    return nullptr;
}

void FindSpareNone(Lookup& look) {
    Finding& none = look.Add(Code::kSpareNone);
    none.values["fits"].clear();
    none.values["rebuild"] = "Put a disk in that is large enough";
    if (look.free == nullptr) return;
    const std::string free = AddressOf(look.adapter.number, Kind::kDisk, look.free->id);
    none.values["free"] = free;
    none.values["fits"] = ": " + free + " (free, " + SizeText(look.free->sectors) + ") would fit";
    none.values["rebuild"] = "Rebuild onto " + free;
}

void FindHindrances(Lookup& look) {
    if (look.redundancy.lost.empty() || !IsRedundant(look.virtual_disk.level)) return;
    const Activity* const activity = look.activity;
    const bool rebuilds = activity != nullptr && activity->kind == ActivityKind::kRebuild;
    if (rebuilds) {
        if (activity->state != ActivityState::kPaused) return;
        AddActivity(look.Add(Code::kRebuildPaused).values, activity);
        return;
    }
    if (const Disk* const target = AbandonedTarget(look)) {
        Finding& aborted = look.Add(Code::kRebuildAborted);
        aborted.values["target"] = AddressOf(look.adapter.number, Kind::kDisk, target->id);
        return;
    }
    // Ask for a disk only where one is missing or has failed; other positions just wait for their
    // rebuild.
    const bool offline =
        look.virtual_disk.state == hxcodes::State::kOffline || look.redundancy.is_offline;
    if (offline || look.adapter.disks.empty()) return;
    if (look.spare == nullptr) {
        FindSpareNone(look);
        return;
    }
    const bool off = look.virtual_disk.auto_rebuild == false || look.adapter.auto_rebuild == false;
    if (!off) return;
    Finding& finding = look.Add(Code::kAutoRebuildOff);
    finding.values["s"] = AddressOf(look.adapter.number, Kind::kDisk, look.spare->id);
    finding.values["adapter"] = AddressOf(look.adapter.number);
}

void FindActivity(Lookup& look) {
    const auto& activity = look.virtual_disk.activity;
    if (!activity || activity->kind == ActivityKind::kNone ||
        activity->kind == ActivityKind::kRebuild) {
        return;
    }
    const bool paused = activity->state == ActivityState::kPaused;
    Finding& finding = look.Add(paused ? Code::kActivityPaused : Code::kActivityRunning);
    finding.values["activity"] = ActivityText(activity->kind);
    AddActivity(finding.values, &*activity);
}

void FindCache(Lookup& look) {
    const auto& cache = look.virtual_disk.cache;
    if (!cache || (*cache & CacheBit::kWriteBack) == 0) return;
    if ((*cache & CacheBit::kForcedWriteThrough) != 0) {
        Finding& forced = look.Add(Code::kCacheForcedWriteThrough);
        forced.values["adapter"] = AddressOf(look.adapter.number);
        return;
    }
    if (look.adapter.is_linux_raid) return;
    const bool none = look.adapter.battery_query.result == Query::Result::kNone;
    const bool unsafe =
        look.adapter.battery && (look.adapter.battery->status & BatteryBit::kSafeForWriteBack) == 0;
    if (none || unsafe) look.Add(Code::kCacheUnprotected);
}

}  // namespace

std::string Alternatives(const std::vector<std::string>& items) {
    std::string text = Listed(items);
    const std::size_t last = text.rfind(" and ");
    if (last != std::string::npos && text.find(" more", last) == std::string::npos) {
        text.replace(last, std::string_view(" and ").size(), " or ");
    }
    return text;
}

const Activity* ActivityOf(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    const auto& own = virtual_disk.activity;
    if (own && own->kind != ActivityKind::kNone) return &*own;
    const DiskGroup* const group = FindGroup(adapter, virtual_disk.group);
    const bool of_group =
        group != nullptr && group->activity && !own && group->activity->kind != ActivityKind::kNone;
    return of_group ? &*group->activity : nullptr;
}

std::optional<Code> StateCodeOf(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    return StateCodeOf(virtual_disk, RedundancyOf(virtual_disk, adapter.disks),
                       Rebuilds(ActivityOf(adapter, virtual_disk)));
}

void FindVirtualDisks(std::vector<Finding>& findings, const Things& things, const Adapter& adapter,
                      const Movement* movement) {
    for (const VirtualDisk& each : adapter.virtual_disks) {
        Lookup look{.findings = findings,
                    .things = things,
                    .adapter = adapter,
                    .virtual_disk = each,
                    .object = things.Of(adapter, each),
                    .redundancy = RedundancyOf(each, adapter.disks),
                    .activity = ActivityOf(adapter, each)};
        FindFittingDisks(look);
        FindState(look, movement);
        if (each.state != hxcodes::State::kForeign) FindHindrances(look);
        FindActivity(look);
        FindCache(look);
    }
}

void FindDiskGroups(std::vector<Finding>& findings, const Things& things, const Adapter& adapter) {
    for (const DiskGroup& group : adapter.groups) {
        const bool offline = group.state == hxcodes::State::kOffline;
        if (!offline && group.state != hxcodes::State::kDegraded &&
            group.state != hxcodes::State::kPartiallyOptimal) {
            continue;
        }
        const Code code = offline ? Code::kDgOffline : Code::kDgDegraded;
        Finding& finding = findings.emplace_back(FindingOf(code, things.Of(adapter, group)));
        finding.values["lost"].clear();
        std::vector<std::string> lost;
        for (const unsigned id : group.disks) {
            const Disk* const disk = FindDisk(adapter, id);
            if (disk != nullptr && (disk->status & kBroken) == 0) continue;
            LostMember member;
            member.address = AddressOf(adapter.number, Kind::kDisk, id);
            if (disk != nullptr) member.identity = things.Of(adapter, *disk).identity;
            if (finding.lost.empty()) finding.values["lost"] = member.address;
            lost.push_back(member.address);
            finding.links.push_back(member.identity);
            finding.lost.push_back(std::move(member));
        }
        finding.count = finding.lost.size();
        finding.values["c"] = lost.empty() ? "a disk whose place another one takes" : Listed(lost);
        if (lost.empty()) finding.values[kNextStep] = "Wait for the rebuild";
        const bool in_use = std::ranges::any_of(
            adapter.virtual_disks, [&](const VirtualDisk& it) { return it.group == group.id; });
        finding.values["unused"] = in_use ? "" : "; no virtual disk lies on it";
    }
}

void FindSpares(std::vector<Finding>& findings, const Things& things, const Adapter& adapter) {
    bool has_global = false;
    for (const Disk& disk : adapter.disks) {
        if (!IsReadySpare(disk) || disk.sectors == 0) continue;  // 0: unknown
        has_global = has_global || (disk.status & DiskBit::kGlobalSpare) != 0;
        std::vector<std::string> too_large;
        std::uint64_t least = 0;
        bool fits = false;
        for (const VirtualDisk& each : adapter.virtual_disks) {
            if (!IsRedundant(each.level) || !Reaches(disk, each)) continue;
            const Redundancy redundancy = RedundancyOf(each, adapter.disks);
            const std::uint64_t needed = NeededBy(adapter, each, redundancy.lost);
            if (needed == 0 || RoomOf(disk) >= needed) {
                fits = true;
                continue;
            }
            least = least == 0 ? needed : std::min(least, needed);
            too_large.push_back(AddressOf(adapter.number, Kind::kVirtualDisk, each.id));
        }
        if (fits || too_large.empty()) continue;
        Finding& finding =
            findings.emplace_back(FindingOf(Code::kSpareTooSmall, things.Of(adapter, disk)));
        finding.values["list"] = Listed(too_large);
        finding.values["size"] = SizeText(RoomOf(disk));
        finding.values["needed"] = SizeText(least);
    }
    constexpr std::int64_t kLongestWithoutCollection = 300;
    if (adapter.is_linux_raid && has_global &&
        adapter.spares_collected_ago_s.value_or(0) > kLongestWithoutCollection) {
        findings.push_back(FindingOf(Code::kSpareCollectorStopped, things.Of(adapter)));
    }
}

std::optional<Finding> TooSmallFor(const Things& things, const Adapter& adapter,
                                   const VirtualDisk& virtual_disk, unsigned position,
                                   const Disk& disk) {
    const std::uint64_t needed = NeededBy(adapter, virtual_disk, {position});
    if (!IsFree(disk) || RoomOf(disk) >= needed) return std::nullopt;
    Finding finding = FindingOf(Code::kReplacementTooSmall, things.Of(adapter, disk));
    const Object array = things.Of(adapter, virtual_disk);
    finding.values["id"] = DiskIdText(finding.object, disk);
    finding.values["vd"] = TitleOf(array);
    finding.values["size"] = SizeText(RoomOf(disk));
    finding.values["needed"] = SizeText(needed);
    finding.links.push_back(array.identity);
    return finding;
}

void FindReplacements(std::vector<Finding>& findings, const Things& things,
                      const Adapter& adapter) {
    for (const VirtualDisk& each : adapter.virtual_disks) {
        for (const unsigned position : RedundancyOf(each, adapter.disks).lost) {
            const Disk* const disk = FindDisk(adapter, each.members[position].disk);
            if (disk == nullptr) continue;
            if (auto finding = TooSmallFor(things, adapter, each, position, *disk)) {
                findings.push_back(std::move(*finding));
            }
        }
    }
}

}  // namespace hxconditions
