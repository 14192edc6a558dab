#include "nouns/disk_change.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "codes/code_table.h"
#include "common/address.h"
#include "common/duration.h"
#include "conditions/hxc_answers.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/disks.h"
#include "model/failure.h"
#include "model/library_record.h"
#include "nouns/disk_show.h"
#include "nouns/disk_targets.h"
#include "nouns/find_object.h"
#include "nouns/foresee.h"
#include "nouns/plan_and_act.h"
#include "output/cell.h"
#include "output/cell_text.h"
#include "shell/interrupt.h"
#include "shell/option_value.h"
#include "shell/present.h"

namespace vexorctl::disk_noun {

namespace {

namespace hxc = hxconditions;
using fields::HD_Config;
using fields::HD_Info;
using fields::Link_Endpoint;
using hxcodes::CodeTable;

// The disk as plans show it to a person.
std::string DiskInPlan(const Disk& disk) {
    return disk.address.Text() + " (" + Shown(disk.info[HD_Info::Model]) + ", serial " +
           Shown(disk.info[HD_Info::SerialNo]) + ", " + SectorsText(disk.info[HD_Info::Size]) +
           ", " + Shown(disk.state) + ")";
}

Disk FindDisk(Invocation& invocation) {
    const Address address = FindTarget(invocation, ObjectKind::kDisk);
    return TakeObject(LoadDisks(invocation.controller()), address);
}

// A change of the disk by one command. Callers add losses and a question where they need them.
Change ChangeOf(const Disk& disk, const std::string& what, Command command) {
    return {.what = what + " " + DiskInPlan(disk),
            .commands = {std::move(command)},
            .address = disk.address.Text()};
}

// The disks that are to be found: those that the target means, or that in the slot of an enclosure.
std::vector<Disk> DisksToLocate(Invocation& invocation) {
    Controller& controller = invocation.controller();
    const std::string& target = invocation.targets().front();
    const auto slot = invocation.Number("--slot", 65535);
    const Selector selector = ParseSelector(target);
    if (!slot && selector.form == Selector::Form::kAddress &&
        selector.address.kind == ObjectKind::kEnclosure) {
        throw UsageError(target + " is the address of an enclosure; say with --slot which disk");
    }
    IsMeant meant = DisksMeantBy(invocation, target);
    if (!meant) meant = DisksNamedBy(invocation, target);
    controller.Select(controller.Adapters());
    std::vector<Disk> disks = LoadDisks(controller);
    std::erase_if(disks, [&](const Disk& disk) {
        if (!meant(disk)) return true;
        const auto phys = ParentOf(disk)[Link_Endpoint::PhyID];
        return slot && (!phys || phys->empty() || phys->front() != *slot);
    });
    if (disks.empty()) {
        throw Failure(Exit::kNoObject,
                      target + (slot ? ": no disk is in slot " + std::to_string(*slot) +
                                           ", and only a disk has a light"
                                     : ": there is no disk to be located"));
    }
    return disks;
}

Request<calls::HX_LocateArrayDevice> LightOf(const Disk& disk, std::uint64_t device, bool on) {
    using Function = calls::HX_LocateArrayDevice;
    return {{Function::AdapterID, disk.address.adapter},
            {Function::deviceType, device},
            {Function::deviceId, disk.address.id},
            {Function::ledStatus, on ? 1 : 0}};
}

// Only where it is known is anything said of what will be refused.
bool IsKnownNotToBe(const Disk& disk, std::string_view state) {
    return disk.state && *disk.state != state;
}

constexpr std::string_view kOnlineName = "online";  // what --state takes
constexpr std::string_view kFreeName = "free";
constexpr std::string_view kOfflineState = "offline";

// What a change of the disk's state does, and whether the controller takes it.
void AddState(Change& change, const Disk& disk, const std::string& state) {
    const unsigned id = disk.address.id;
    const bool is_off = disk.state == kOfflineState;
    if (state == kFreeName) {
        change.alters = [id](hxc::Adapter& adapter) { EmptyDisk(adapter, id); };
        if (disk.state == kConfiguredState) {
            change.refusals.emplace_back("it serves a virtual disk or a disk group");
        }
        return;
    }
    const bool on = state == kOnlineName;
    change.alters = [id, on](hxc::Adapter& adapter) { SwitchDisk(adapter, id, on); };
    if (disk.state && on != is_off) {
        change.refusals.push_back("it is " +
                                  (on ? *disk.state + " and not offline" : "offline already"));
    }
}

}  // namespace

Exit LocateDisk(Invocation& invocation) {
    const bool off = invocation.Has("--off");
    const std::string* const time = invocation.Get("--for");
    if (off && time != nullptr) throw UsageError("--off and --for exclude each other");
    const Duration duration =
        time == nullptr ? Duration() : ReadOption("--for", *time, ParseDuration);
    if (duration > std::chrono::days(1)) throw UsageError("--for is at most 1d");
    const std::vector<Disk> disks = DisksToLocate(invocation);
    const std::uint64_t device = CodeNamed(invocation.controller(), &CodeTable::devices, "disk");
    std::vector<std::string> addresses;
    Change change;
    for (const Disk& disk : disks) {
        addresses.push_back(disk.address.Text());
        change.commands.push_back(LightOf(disk, device, !off));
    }
    const std::string& target = invocation.targets().front();
    const Selector selector = ParseSelector(target);
    change.address = disks.size() == 1 ? addresses.front()
                     : selector.form == Selector::Form::kAddress
                         ? selector.address.Text()
                         : FindObject(invocation, ObjectKind::kVirtualDisk, target).Text();
    change.what = "Switch the locate light of " + Joined(addresses, ", ") + (off ? " off" : " on");
    const Exit exit = CarryOut(invocation, change);
    if (time == nullptr || exit != Exit::kDone || invocation.Has("--dry-run")) return exit;
    WatchForInterrupts();
    SleepMilliseconds(static_cast<unsigned>(duration.count()));
    Controller& controller = invocation.controller();
    for (const Disk& disk : disks) {
        const auto answer = controller.Ask(LightOf(disk, device, false));
        if (answer.exit != Exit::kDone) {
            controller.NoteAnswer(disk.address.Text(), calls::HX_LocateArrayDevice::kName, answer);
        }
    }
    ReportFaults(controller.faults());
    return Interrupted() ? Exit::kInterrupted : controller.exit();
}

Exit SpareDisk(Invocation& invocation) {
    using OfAdapter = calls::HX_PD_FreeHD2GlobalSpare;
    using OfGroup = calls::HX_PD_FreeHD2DGSpare;
    const std::string* const group = invocation.Get("--dg");
    const Disk disk = FindDisk(invocation);
    const auto carry_out = [&](Change change, std::optional<unsigned> of) {
        change.alters = [id = disk.address.id, of](hxc::Adapter& adapter) {
            MakeSpare(adapter, id, of);
        };
        if (IsKnownNotToBe(disk, kFreeState)) {
            change.refusals.push_back("it is " + *disk.state +
                                      ", and a spare is made of a free disk");
        }
        return CarryOut(invocation, change);
    };
    if (group == nullptr) {
        return carry_out(
            ChangeOf(disk, "Make a spare of", RequestFor(disk.address, OfAdapter::HD_ID)), {});
    }
    const Address owner = FindObject(invocation, ObjectKind::kDiskGroup, *group);
    if (owner.adapter != disk.address.adapter) {
        throw UsageError(owner.Text() + " and " + disk.address.Text() + " are on two adapters");
    }
    auto request = RequestFor(disk.address, OfGroup::HD_ID);
    request.Add({OfGroup::DG_ID, owner.id});
    return carry_out(ChangeOf(disk, "Make a spare of " + owner.Text() + " of", std::move(request)),
                     owner.id);
}

Exit UnspareDisk(Invocation& invocation) {
    const Disk disk = FindDisk(invocation);
    Change change = ChangeOf(disk, "Make a spare no more of",
                             RequestFor(disk.address, calls::HX_PD_Spare2FreeHD::HD_ID));
    change.alters = [id = disk.address.id](hxc::Adapter& adapter) { MakeNoSpare(adapter, id); };
    if (disk.state && !disk.state->ends_with(kSpareEnding)) {
        change.refusals.push_back("it is " + *disk.state + " and no spare");
    }
    return CarryOut(invocation, change);
}

Exit WipeDisk(Invocation& invocation) {
    using Function = calls::HX_PD_WipeHDMDD;
    const Disk disk = FindDisk(invocation);
    auto request = RequestFor(disk.address, Function::HD_ID);
    request.Add({Function::Force, invocation.Has("--force") ? 1 : 0});
    Change change = ChangeOf(disk, "Wipe the configuration off", std::move(request));
    const Cell owner = OwnerCell(disk);
    if (!owner.text.empty()) {
        change.losses.push_back("what it holds of " + owner.text + " will be lost");
        if (!invocation.Has("--force")) {
            change.refusals.push_back("it carries blocks of " + owner.text +
                                      "; --force wipes it all the same");
        }
    } else if (owner.state == Cell::State::kUnknown) {
        change.losses.emplace_back("which virtual disk it serves is not known");
    }
    change.alters = [id = disk.address.id](hxc::Adapter& adapter) { EmptyDisk(adapter, id); };
    if (!disk.boot_record)
        change.losses.emplace_back("whether it holds a boot record is not known");
    if (disk.boot_record.value_or(false)) change.losses.emplace_back("it holds a boot record");
    change.losses.emplace_back("what the disk knows of virtual disks and spares will be lost");
    change.confirm = disk.address.Text();
    return CarryOut(invocation, change);
}

// Its state and its settings are two calls; only what was named is sent.
Exit SetDisk(Invocation& invocation) {
    using SetStatus = calls::HX_PD_SetHDStatus;
    using SetConfig = calls::HX_PD_SetConfig;
    const Disk disk = FindDisk(invocation);
    Change change = ChangeOf(disk, "Set", {});
    change.commands.clear();
    if (const std::string* const state = invocation.Get("--state")) {
        auto request = RequestFor(disk.address, SetStatus::HD_ID);
        request.Add(
            {SetStatus::Action, CodeOption(invocation, "--state", &CodeTable::disk_actions)});
        change.commands.push_back(std::move(request));
        change.losses.push_back("state: " + Shown(disk.state) + " -> " + *state);
        if (*state != kOnlineName) change.confirm = disk.address.Text();
        change.needs_force = true;
        AddState(change, disk, *state);
    }
    const auto write_cache = SwitchOption(invocation, "--write-cache");
    const auto smart = SwitchOption(invocation, "--smart");
    if (write_cache || smart) {
        const auto kept = [&](auto field) { return Kept(disk.config, field, disk.address); };
        auto request = RequestFor(disk.address, SetConfig::HD_ID);
        request.Add(
            {SetConfig::WriteCacheOn, write_cache ? *write_cache : kept(HD_Config::WriteCacheOn)});
        request.Add({SetConfig::SMARTOn, smart ? *smart : kept(HD_Config::SMARTOn)});
        request.Add({SetConfig::Online, kept(HD_Config::Online)});
        request.Add({SetConfig::DriveSpeed, kept(HD_Config::DriveSpeed)});
        request.Add({SetConfig::HDID, disk.address.id});
        change.commands.push_back(std::move(request));
    }
    if (change.commands.empty()) throw UsageError("no setting was named");
    return CarryOut(invocation, change);
}

}  // namespace vexorctl::disk_noun
