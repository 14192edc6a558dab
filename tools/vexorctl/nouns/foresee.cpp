#include "nouns/foresee.h"

#include <algorithm>
#include <utility>

#include "codes/disk.h"
#include "codes/level.h"
#include "codes/state.h"
#include "conditions/hxc_redundancy.h"
#include "conditions/hxc_risk.h"
#include "model/health_answers.h"

namespace vexorctl {

namespace {

namespace hxc = hxconditions;
using hxcodes::DiskBit;

constexpr unsigned kNewId = 65535;  // of a virtual disk that is to be made

std::string TitleOf(const hxc::Risk& risk) {
    return risk.name.empty() ? risk.address : risk.address + " (" + risk.name + ")";
}

std::string FailuresText(const std::optional<unsigned>& survives) {
    if (!survives) return "an unknown number of failed disks";
    if (*survives == 0) return "no failed disk";
    return std::to_string(*survives) + (*survives == 1 ? " failed disk" : " failed disks");
}

std::string LevelText(unsigned level) {
    const hxcodes::LevelRow* const row = hxcodes::FindCode(hxcodes::kLevels, level);
    return row == nullptr ? "its level" : "RAID " + std::string(row->number);
}

// Whether more blocks are gone than the level makes up for, whatever becomes of the disks.
bool IsLostForGood(const hxc::VirtualDisk& virtual_disk) {
    return hxc::RedundancyOf(virtual_disk, {}).is_offline;
}

const hxc::VirtualDisk* Find(const hxc::Adapter& adapter, unsigned id) {
    const auto found = std::ranges::find(adapter.virtual_disks, id, &hxc::VirtualDisk::id);
    return found == adapter.virtual_disks.end() ? nullptr : &*found;
}

// How many of its members are there, whatever the redundancy.
std::size_t PresentIn(const hxc::VirtualDisk& virtual_disk, const std::vector<hxc::Disk>& disks) {
    return virtual_disk.members.size() - hxc::RedundancyOf(virtual_disk, disks).lost.size();
}

// What becomes of one virtual disk that is there now and afterwards.
class Comparison {
public:
    Comparison(const hxc::Risk& now, const hxc::Risk& then, const std::vector<hxc::Disk>& now_disks,
               const std::vector<hxc::Disk>& then_disks, Foreseen& foreseen)
        : now_(now),
          then_(then),
          now_disks_(now_disks),
          then_disks_(then_disks),
          foreseen_(foreseen) {}

    void Tell(const hxc::VirtualDisk& before, const hxc::VirtualDisk& after) {
        if (!IsLostForGood(before) && IsLostForGood(after)) {
            foreseen_.unusable.push_back(TitleOf(now_));
            Add("all data of " + TitleOf(now_) + " is lost: " + LevelText(after.level) +
                " does not survive the loss of so many of its disks");
        } else if (!now_.is_offline && then_.is_offline) {
            foreseen_.unusable.push_back(TitleOf(now_));
            Add(TitleOf(now_) + " goes offline, all of it: it survives " +
                FailuresText(now_.survives) + " now");
        } else if (now_.is_offline && then_.is_offline) {
            if (PresentIn(after, then_disks_) < PresentIn(before, now_disks_)) {
                Add(TitleOf(now_) + " is offline already and loses one more of its disks");
            }
        } else if (now_.is_offline && !then_.is_offline) {
            Add(TitleOf(now_) + " can be used again and survives " + FailuresText(then_.survives));
        } else if (now_.survives != then_.survives) {
            Add(TitleOf(now_) + " survives " + FailuresText(now_.survives) + " now, " +
                FailuresText(then_.survives) + " afterwards");
        } else if (before.level != after.level) {
            Add(TitleOf(now_) + " survives " + FailuresText(then_.survives) +
                ", now as afterwards");
        }
        TellOfSpare();
    }

private:
    void TellOfSpare() {
        if (!then_.is_redundant || then_.is_offline || now_.is_offline) return;
        if (then_.lost_count > now_.lost_count) {
            if (then_.spare) {
                Add(*then_.spare + " steps in for it, and " + TitleOf(now_) + " is rebuilt");
            } else if (!then_.no_spare.empty()) {
                Add("no spare steps in: " + then_.no_spare);
            }
            return;
        }
        if (now_.spare == then_.spare || now_.lost_count != then_.lost_count) return;
        // How much of a disk another layout takes is the controller's to say.
        if (!now_.needed_sectors || !then_.needed_sectors) return;
        const auto text = [](const hxc::Risk& risk) { return risk.spare.value_or("no spare"); };
        Add("for a lost disk of " + TitleOf(now_) + " steps in: " + text(now_) + " now, " +
            text(then_) + " afterwards");
    }

    void Add(std::string effect) { foreseen_.effects.push_back(std::move(effect)); }

    const hxc::Risk& now_;
    const hxc::Risk& then_;
    const std::vector<hxc::Disk>& now_disks_;
    const std::vector<hxc::Disk>& then_disks_;
    Foreseen& foreseen_;
};

bool IsKnown(const hxc::Answers& answers) {
    return answers.machine.IsRead() && answers.adapters.size() == 1 &&
           answers.adapters.front().virtual_disks_query.IsRead() &&
           answers.adapters.front().disks_query.IsRead();
}

const hxc::Risk* FindRisk(const std::vector<hxc::Risk>& risks, unsigned id) {
    const auto found = std::ranges::find(risks, id, &hxc::Risk::id);
    return found == risks.end() ? nullptr : &*found;
}

}  // namespace

Foreseen Foresee(Controller& controller, unsigned adapter, const Alteration& alter) {
    const std::vector<unsigned> selected = controller.Selected();
    controller.Select({adapter});
    const hxc::Answers now = LoadArrays(controller);
    controller.Select(selected);
    Foreseen foreseen;
    if (!IsKnown(now)) {
        foreseen.effects.push_back("what becomes of the virtual disks of a" +
                                   std::to_string(adapter) +
                                   " is not known: they cannot all be read");
        return foreseen;
    }
    return Compare(now, alter);
}

Foreseen Compare(const hxc::Answers& now, const Alteration& alter) {
    Foreseen foreseen;
    hxc::Answers then = now;
    alter(then.adapters.front());
    const std::vector<hxc::Disk>& now_disks = now.adapters.front().disks;
    const std::vector<hxc::Disk>& then_disks = then.adapters.front().disks;
    const std::vector<hxc::Risk> risks_now = RisksOf(now, {});
    const std::vector<hxc::Risk> risks_then = RisksOf(then, {});
    for (const hxc::Risk& risk : risks_now) {
        const hxc::Risk* const after = FindRisk(risks_then, risk.id);
        if (after == nullptr) continue;
        Comparison(risk, *after, now_disks, then_disks, foreseen)
            .Tell(*Find(now.adapters.front(), risk.id), *Find(then.adapters.front(), risk.id));
    }
    for (const hxc::Risk& risk : risks_then) {
        if (FindRisk(risks_now, risk.id) != nullptr) continue;
        foreseen.effects.push_back(risk.name + " will survive " + FailuresText(risk.survives));
    }
    return foreseen;
}

void SwitchDisk(hxc::Adapter& adapter, unsigned disk, bool on) {
    const auto found = std::ranges::find(adapter.disks, disk, &hxc::Disk::id);
    if (found == adapter.disks.end()) return;
    constexpr unsigned kOff = hxcodes::NumberOf(DiskBit::kUnavailable);
    found->status = on ? found->status & ~kOff : found->status | kOff;
}

void EmptyDisk(hxc::Adapter& adapter, unsigned disk) {
    for (hxc::VirtualDisk& each : adapter.virtual_disks) {
        for (hxc::Member& member : each.members) {
            if (member.disk != disk) continue;
            member.disk.reset();
            member.state = hxcodes::NumberOf(hxcodes::State::kOffline);
        }
    }
    const auto found = std::ranges::find(adapter.disks, disk, &hxc::Disk::id);
    if (found == adapter.disks.end()) return;
    found->status = hxcodes::NumberOf(DiskBit::kOnline);
    found->group.reset();
}

void MakeSpare(hxc::Adapter& adapter, unsigned disk, std::optional<unsigned> group) {
    const auto found = std::ranges::find(adapter.disks, disk, &hxc::Disk::id);
    if (found == adapter.disks.end()) return;
    found->status |= hxcodes::NumberOf(group ? DiskBit::kGroupSpare : DiskBit::kGlobalSpare);
    found->group = group;
}

void MakeNoSpare(hxc::Adapter& adapter, unsigned disk) {
    const auto found = std::ranges::find(adapter.disks, disk, &hxc::Disk::id);
    if (found == adapter.disks.end()) return;
    constexpr unsigned kSpare = DiskBit::kGlobalSpare | DiskBit::kGroupSpare;
    found->status &= ~kSpare;
    found->group.reset();
}

void ImportDisks(hxc::Adapter& adapter, unsigned virtual_disk) {
    hxc::VirtualDisk* const found = FindIn(adapter, virtual_disk);
    if (found == nullptr) return;
    constexpr unsigned kForeign = hxcodes::NumberOf(DiskBit::kForeign);
    constexpr unsigned kOff = hxcodes::NumberOf(DiskBit::kUnavailable);
    found->state = hxcodes::NumberOf(hxcodes::State::kOptimal);
    for (hxc::Member& member : found->members) {
        const auto disk = std::ranges::find_if(adapter.disks, [&](const hxc::Disk& each) {
            return member.disk == each.id && (each.status & kForeign) != 0;
        });
        if (disk == adapter.disks.end()) continue;
        disk->status &= ~(kForeign | kOff);
        if (member.state == hxcodes::NumberOf(hxcodes::State::kForeign)) {
            member.state = hxcodes::NumberOf(hxcodes::State::kOptimal);
        }
    }
}

void LayOut(hxc::VirtualDisk& virtual_disk, unsigned level, unsigned legs,
            const std::vector<unsigned>& disks) {
    virtual_disk.level = level;
    virtual_disk.legs = legs;
    virtual_disk.members.clear();
    for (const unsigned disk : disks) {
        hxc::Member& member = virtual_disk.members.emplace_back();
        member.disk = disk;
        member.state = hxcodes::NumberOf(hxcodes::State::kOptimal);
    }
}

void Rebuild(hxc::VirtualDisk& virtual_disk, const std::vector<hxc::Disk>& disks,
             const std::vector<unsigned>& onto) {
    const std::vector<unsigned> lost = hxc::RedundancyOf(virtual_disk, disks).lost;
    for (std::size_t i = 0; i < lost.size() && i < onto.size(); ++i) {
        hxc::Member& member = virtual_disk.members[lost[i]];
        member.disk = onto[i];
        member.state = hxcodes::NumberOf(hxcodes::State::kOptimal);
    }
}

void AddVirtualDisk(hxc::Adapter& adapter, const std::string& title, unsigned level, unsigned legs,
                    const std::vector<unsigned>& disks) {
    hxc::VirtualDisk& virtual_disk = adapter.virtual_disks.emplace_back();
    virtual_disk.id = kNewId;
    virtual_disk.name = title;
    virtual_disk.state = hxcodes::NumberOf(hxcodes::State::kOptimal);
    LayOut(virtual_disk, level, legs, disks);
}

hxc::VirtualDisk* FindIn(hxc::Adapter& adapter, unsigned id) {
    const auto found = std::ranges::find(adapter.virtual_disks, id, &hxc::VirtualDisk::id);
    return found == adapter.virtual_disks.end() ? nullptr : &*found;
}

}  // namespace vexorctl
