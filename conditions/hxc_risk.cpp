// Computes risks and their sentences.
#include "conditions/hxc_risk.h"

#include <algorithm>
#include <cmath>

#include "codes/activity.h"
#include "codes/level.h"
#include "codes/state.h"
#include "conditions/hxc_find_arrays.h"
#include "conditions/hxc_object.h"
#include "conditions/hxc_redundancy.h"
#include "conditions/hxc_spares.h"
#include "conditions/hxc_text.h"
#include "conditions/hxc_things.h"

namespace hxconditions {

namespace {

std::string DiskAddress(const Adapter& adapter, unsigned id) {
    return AddressOf(adapter.number, Kind::kDisk, id);
}

std::vector<std::string> DisksAt(const Adapter& adapter, const VirtualDisk& virtual_disk,
                                 const std::vector<unsigned>& positions) {
    std::vector<std::string> disks;
    for (const unsigned each : positions) {
        const auto& disk = virtual_disk.members[each].disk;
        if (disk) disks.push_back(DiskAddress(adapter, *disk));
    }
    return disks;
}

// The reason why each existing spare cannot step in.
std::string WhyNone(const Adapter& adapter, const VirtualDisk& virtual_disk, std::uint64_t needed) {
    std::vector<std::string> reasons;
    for (const Disk& disk : adapter.disks) {
        if (!IsSpare(disk)) continue;
        const std::string address = DiskAddress(adapter, disk.id);
        switch (FitOf(disk, virtual_disk, needed)) {
            case SpareFit::kBroken:
                reasons.push_back(address + " is broken");
                break;
            case SpareFit::kOtherGroup:
                reasons.push_back(address + " serves another disk group");
                break;
            case SpareFit::kTooSmall:
                reasons.push_back(address + " is too small (" + SizeText(RoomOf(disk)) + " < " +
                                  SizeText(needed) + ")");
                break;
            case SpareFit::kMember:
            case SpareFit::kFits:
                reasons.push_back(address + " is a member already");
                break;
        }
    }
    return reasons.empty() ? "there is none" : Listed(reasons);
}

void FindSpare(Risk& risk, const Adapter& adapter, const VirtualDisk& virtual_disk,
               const std::vector<unsigned>& lost) {
    if (!risk.is_redundant || !risk.needed_sectors) return;
    if (!adapter.disks_query.IsRead()) {
        risk.no_spare = "the disks could not be read";
        return;
    }
    const std::uint64_t needed = *risk.needed_sectors;
    const Disk* const spare = SpareFor(adapter, virtual_disk, needed);
    if (spare == nullptr) {
        risk.no_spare = WhyNone(adapter, virtual_disk, needed);
    } else if (adapter.auto_rebuild == false || virtual_disk.auto_rebuild == false) {
        risk.no_spare = DiskAddress(adapter, spare->id) + " fits, but automatic rebuild is off";
    } else {
        risk.spare = DiskAddress(adapter, spare->id);
    }
    if (risk.spare) return;
    const Disk* const free = FreeDiskFor(adapter, virtual_disk, lost, needed);
    if (free != nullptr) risk.free = DiskAddress(adapter, free->id);
}

void FindShared(Risk& risk, const Adapter& adapter, const VirtualDisk& virtual_disk) {
    if (!risk.survives) return;
    const auto add = [&](std::optional<unsigned> Disk::*place, auto name) {
        std::map<unsigned, std::vector<std::string>> disks;
        for (const Member& member : virtual_disk.members) {
            const Disk* const disk = FindDisk(adapter, member.disk);
            if (disk == nullptr || !(disk->*place)) continue;
            disks[*(disk->*place)].push_back(DiskAddress(adapter, disk->id));
        }
        for (auto& each : disks) {
            if (each.second.size() < 2 || each.second.size() <= *risk.survives) continue;
            risk.shared.push_back({name(each.first), std::move(each.second)});
        }
    };
    add(&Disk::enclosure,
        [&](unsigned id) { return AddressOf(adapter.number, Kind::kEnclosure, id); });
    add(&Disk::expander, [&](unsigned id) {
        return "expander " + std::to_string(id) + " of " + AddressOf(adapter.number);
    });
}

void FindWeak(Risk& risk, const Adapter& adapter, const VirtualDisk& virtual_disk) {
    for (const Member& member : virtual_disk.members) {
        const Disk* const disk = FindDisk(adapter, member.disk);
        if (disk == nullptr) continue;
        const unsigned remapped = disk->remapped.value_or(0);
        if (disk->smart_alarm != true && remapped == 0) continue;
        risk.weak.push_back({DiskAddress(adapter, disk->id), disk->smart_alarm == true, remapped});
    }
}

// ---- Sentences ----

std::string SurvivalText(const Risk& risk, const VirtualDisk& virtual_disk) {
    if (risk.is_offline) return "is offline: more disks are lost than it survives";
    if (!risk.survives) return "survives an unknown number of failed disks";
    if (!risk.is_redundant) {
        const hxcodes::LevelRow* const level =
            hxcodes::FindCode(hxcodes::kLevels, virtual_disk.level);
        return "is " + (level == nullptr ? "of a level" : std::string(level->name)) +
               " and survives no failed disk";
    }
    if (*risk.survives == 0) {
        if (risk.needed.empty() || risk.may_fail.empty()) return "survives no further failed disk";
        return "survives no failure of " + Alternatives(risk.needed) + ", while " +
               Alternatives(risk.may_fail) + " may still fail";
    }
    const std::string number = std::to_string(*risk.survives);
    const std::string more = risk.lost_count > 0 ? " more failed disk" : " failed disk";
    return "survives " + number + more + (*risk.survives == 1 ? "" : "s");
}

std::string MendingText(const Risk& risk) {
    if (!risk.is_redundant || risk.is_offline) return "";
    const bool now = risk.lost_count > 0;
    if (risk.is_rebuilding) {
        return "; its rebuild is at " +
               (risk.percent ? std::to_string(*risk.percent) + " %" : std::string("?"));
    }
    if (!risk.spare) {
        if (risk.no_spare.empty()) return "";
        std::string text =
            std::string("; no spare ") + (now ? "steps" : "would step") + " in: " + risk.no_spare;
        if (risk.free) text += "; " + *risk.free + " is free and would suffice";
        return text;
    }
    return "; " + *risk.spare + (now ? " is the spare for it" : " would step in");
}

std::string ExposureText(const Risk& risk) {
    if (!risk.is_redundant || risk.is_offline || !risk.needed_sectors) return "";
    const std::string size = SizeText(*risk.needed_sectors);
    if (!risk.exposure_s) {
        return "; how long the rebuild of " + size + " takes is not known: none was measured";
    }
    return "; its rebuild of " + size + " takes about " + DurationText(*risk.exposure_s);
}

std::string SentenceOf(const Risk& risk, const VirtualDisk& virtual_disk) {
    Object object;
    object.address = risk.address;
    object.name = risk.name;
    std::string text = TitleOf(object) + " " + SurvivalText(risk, virtual_disk) +
                       MendingText(risk) + ExposureText(risk);
    for (const WeakMember& each : risk.weak) {
        if (each.announces_failure) text += "; " + each.disk + " announces its failure";
        if (each.remapped != 0) {
            text +=
                "; " + each.disk + " has remapped sectors (" + std::to_string(each.remapped) + ")";
        }
    }
    for (const SharedPlace& each : risk.shared) {
        text += "; " + each.place + " takes " + std::to_string(each.disks.size()) +
                " of its disks along";
    }
    return text;
}

Risk RiskOf(const Adapter& adapter, const VirtualDisk& virtual_disk, const RebuildRates& rates) {
    const Redundancy redundancy = RedundancyOf(virtual_disk, adapter.disks);
    Risk risk;
    risk.adapter = adapter.number;
    risk.id = virtual_disk.id;
    risk.address = AddressOf(adapter.number, Kind::kVirtualDisk, virtual_disk.id);
    risk.name = Harmless(virtual_disk.name);
    risk.is_redundant = IsRedundant(virtual_disk.level);
    risk.is_offline = redundancy.is_offline || virtual_disk.state == hxcodes::State::kOffline;
    risk.survives = SurvivesOf(adapter, virtual_disk);
    risk.lost = DisksAt(adapter, virtual_disk, redundancy.lost);
    risk.lost_count = redundancy.lost.size();
    risk.needed = DisksAt(adapter, virtual_disk, redundancy.needed);
    risk.may_fail = DisksAt(adapter, virtual_disk, redundancy.spare_positions);
    const Activity* const activity = ActivityOf(adapter, virtual_disk);
    risk.is_rebuilding = activity != nullptr && activity->kind == hxcodes::ActivityKind::kRebuild &&
                         activity->state == hxcodes::ActivityState::kRunning;
    if (risk.is_rebuilding) risk.percent = activity->percent;
    risk.needed_sectors = NeededForAny(adapter, virtual_disk, redundancy.lost);
    FindSpare(risk, adapter, virtual_disk, redundancy.lost);
    const auto rate = rates.find(adapter.number);
    if (risk.needed_sectors && rate != rates.end() && rate->second > 0) {
        const double seconds = static_cast<double>(*risk.needed_sectors) / rate->second;
        risk.exposure_s = static_cast<std::int64_t>(std::ceil(seconds));
    }
    FindShared(risk, adapter, virtual_disk);
    FindWeak(risk, adapter, virtual_disk);
    risk.sentence = SentenceOf(risk, virtual_disk);
    return risk;
}

}  // namespace

std::vector<Risk> RisksOf(const Answers& answers, const RebuildRates& rates) {
    std::vector<Risk> risks;
    for (const Adapter& adapter : answers.adapters) {
        for (const VirtualDisk& each : adapter.virtual_disks) {
            risks.push_back(RiskOf(adapter, each, rates));
        }
    }
    std::ranges::sort(risks, {}, [](const Risk& it) { return std::pair(it.adapter, it.id); });
    return risks;
}

bool IsAtRisk(const Risk& risk) { return risk.is_offline || risk.survives == 0U; }

}  // namespace hxconditions
