#include "nouns/vd_change.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "codes/level.h"
#include "codes/named.h"
#include "common/address.h"
#include "common/size.h"
#include "conditions/hxc_answers.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/disks.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/group_room.h"
#include "model/object_name.h"
#include "model/virtual_disks.h"
#include "nouns/choose_disks.h"
#include "nouns/creation_options.h"
#include "nouns/find_object.h"
#include "nouns/foresee.h"
#include "nouns/plan_and_act.h"
#include "nouns/vd_plan.h"
#include "output/cell_text.h"
#include "shell/invocation.h"

namespace vexorctl::vd_noun {

namespace {

namespace hxc = hxconditions;
using fields::LD_Config;
using fields::LD_Info;

// What the virtual disk lies on, as plans say it.
std::string DisksText(const VirtualDisk& disk) {
    if (!disk.disks) return "not known";
    return Joined(AddressTexts(disk.address.adapter, ObjectKind::kDisk, *disk.disks), ", ");
}

// The cache mode of an existing virtual disk: that of --cache, else the present one without the bit
// that cannot be set. Bits without a name are kept.
std::uint64_t CacheOrKept(Invocation& invocation, const VirtualDisk& disk) {
    Controller& controller = invocation.controller();
    if (const std::string* const cache = invocation.Get("--cache")) {
        return CacheOption(controller, *cache);
    }
    const auto* const forced =
        hxcodes::FindName(controller.codes().table().cache_bits, "forced_write_through");
    const std::uint64_t mode = Kept(disk.config, LD_Config::CacheMode, disk.address);
    return forced == nullptr ? mode : mode & ~std::uint64_t{forced->code};
}

template <class Field>
std::string NameOrKept(Invocation& invocation, const VirtualDisk& disk, const auto& record,
                       Field field) {
    const auto name = NameOption(invocation, NameMarkup::kCData);
    return name ? *name : Kept(record, field, disk.address);
}

std::string CacheText(Invocation& invocation, std::uint64_t bits) {
    std::string text;
    for (const hxcodes::Named& row : invocation.controller().codes().table().cache_bits) {
        if ((bits & row.code) != 0) text.append(text.empty() ? "" : ",").append(row.name);
    }
    return text.empty() ? "none" : text;
}

// What it is now and what it will be, of each setting that was named.
void TellSettings(Invocation& invocation, const VirtualDisk& disk, Change& change) {
    const auto tell = [&](std::string_view what, const std::string& now, const std::string& then) {
        change.losses.emplace_back(what).append(": ").append(now).append(" -> ").append(then);
    };
    if (const std::string* const name = invocation.Get("--name")) {
        tell("name", Shown(disk.info[LD_Info::Name]), *name);
    }
    if (const std::string* const cache = invocation.Get("--cache")) {
        const auto now = disk.config[LD_Config::CacheMode];
        tell("cache", now ? CacheText(invocation, *now) : "?",
             CacheText(invocation, CacheOption(invocation.controller(), *cache)));
    }
    if (const std::string* const automatic = invocation.Get("--auto-rebuild")) {
        const auto now = disk.config[LD_Config::AutoRebuildOn];
        tell("automatic rebuild", !now ? "?" : *now != 0 ? "on" : "off", *automatic);
    }
}

// The parameters that the request for a migration shares with the question for the resulting size.
template <class Function>
Request<Function> MigrationRequest(const VirtualDisk& disk, const hxcodes::LevelRow& level,
                                   std::span<const Disk> disks) {
    auto request = RequestFor(disk.address, Function::LDID);
    request.Add({Function::RaidMode, hxcodes::NumberOf(level.code)});
    request.Add({Function::HDCount, disks.size()});
    request.Add({Function::HDIDs, Ids(disks)});
    return request;
}

// What the virtual disk can grow to. Its group may have more left: that lies elsewhere.
std::optional<std::uint64_t> MostOf(Invocation& invocation, const VirtualDisk& disk,
                                    const Striping& striping) {
    const auto runs = LoadRuns(invocation.controller(), disk.address.adapter);
    if (!runs) return std::nullopt;
    return MostInPlace(*runs, disk.address.id, striping);
}

// The size that is asked for, and what results from it.
std::uint64_t SectorsToModify(Invocation& invocation, const VirtualDisk& disk, std::uint64_t before,
                              Change& change) {
    const SizeWish wish = SizeOption(invocation);
    const auto code = disk.info[LD_Info::RaidMode];
    const hxcodes::LevelRow* const level =
        code ? hxcodes::FindCode(hxcodes::kLevels, *code) : nullptr;
    const auto count = disk.info[LD_Info::HDCount];
    std::optional<std::uint64_t> most;
    Striping striping{level, static_cast<unsigned>(count.value_or(0)),
                      static_cast<unsigned>(disk.info[LD_Info::SubLDCount].value_or(0)),
                      disk.info[LD_Info::StripeBlockSize].value_or(0)};
    if (level != nullptr && count) most = MostOf(invocation, disk, striping);
    if (!most && !wish.sectors) {
        throw Failure(Exit::kRefused, disk.address.Text() +
                                          ": what is possible is not known; say a size. Nothing "
                                          "was done");
    }
    // A group that is not known to have room is asked for what was typed.
    const std::uint64_t sectors =
        wish.Of(most.value_or(UINT64_MAX),
                " (what is free behind it on its disks counts, not all that "
                "its disk group has left)");
    if (sectors == most || sectors <= before) {
        TellSize(change, sectors, sectors);
    } else if (most) {
        TellSize(change, SectorsResulting(invocation, striping, sectors), sectors);
    } else {
        change.losses.emplace_back("the resulting size is not known");
    }
    return sectors;
}

// The parameters that both functions for modifying a virtual disk take. What was not named is sent
// back as it is.
template <class Function>
Request<Function> ModificationRequest(Invocation& invocation, const VirtualDisk& disk,
                                      std::uint64_t sectors) {
    const auto kept = [&](auto field) { return Kept(disk.info, field, disk.address); };
    return {{Function::AdapterID, disk.address.adapter},
            {Function::VDID, disk.address.id},
            {Function::DGID, kept(LD_Info::DGID)},
            {Function::Name, NameOrKept(invocation, disk, disk.info, LD_Info::Name)},
            {Function::RaidMode, kept(LD_Info::RaidMode)},
            {Function::SubVDCount, kept(LD_Info::SubLDCount)},
            {Function::NumParityDisk, kept(LD_Info::NumParityDisk)},
            {Function::StripeBlockSize, kept(LD_Info::StripeBlockSize)},
            {Function::Size, sectors}};
}

}  // namespace

Exit DeleteVirtualDisk(Invocation& invocation) {
    using Function = calls::HX_LD_Delete;
    const VirtualDisk disk = FindVirtualDisk(invocation);
    auto request = RequestFor(disk.address, Function::LD_ID);
    request.Add({Function::deleteMBR, invocation.Has("--keep-boot-record") ? 0 : 1});
    Change change = ChangeOf(disk, "Delete", std::move(request));
    change.losses = {"all data on it will be lost", "its disks: " + DisksText(disk)};
    change.confirm = ConfirmName(disk);
    if (StateOf(invocation, disk) == kForeignState) {
        change.refusals.emplace_back("it is foreign; see vexorctl vd import and disk wipe");
    }
    return CarryOut(invocation, change);
}

Exit ImportVirtualDisk(Invocation& invocation) {
    const VirtualDisk disk = FindVirtualDisk(invocation);
    Change change = ChangeOf(disk, "Import", RequestFor(disk.address, calls::HX_LD_Import::LD_ID));
    const std::string_view state = StateOf(invocation, disk);
    if (!state.empty() && state != kForeignState) {
        change.refusals.push_back("it is " + std::string(state) + " and not foreign");
    }
    change.alters = [id = disk.address.id](hxc::Adapter& adapter) { ImportDisks(adapter, id); };
    return CarryOut(invocation, change);
}

// The library sets all settings at once, so those that were not named are sent back as they are.
Exit SetVirtualDisk(Invocation& invocation) {
    using Function = calls::HX_LD_SetConfig;
    const VirtualDisk disk = FindVirtualDisk(invocation);
    if (!invocation.Has("--name") && !invocation.Has("--cache") &&
        !invocation.Has("--auto-rebuild")) {
        throw UsageError("no setting was named");
    }
    const auto auto_rebuild = SwitchOption(invocation, "--auto-rebuild");
    auto request = RequestFor(disk.address, Function::LD_ID);
    request.Add({Function::CacheMode, CacheOrKept(invocation, disk)});
    request.Add(
        {Function::AutoRebuildOn,
         auto_rebuild ? *auto_rebuild : Kept(disk.config, LD_Config::AutoRebuildOn, disk.address)});
    request.Add({Function::Status, Kept(disk.config, LD_Config::Status, disk.address)});
    request.Add({Function::LDID, disk.address.id});
    request.Add({Function::Name, NameOrKept(invocation, disk, disk.config, LD_Config::Name)});
    Change change = ChangeOf(disk, "Set", std::move(request));
    TellSettings(invocation, disk, change);
    if (auto_rebuild) {
        change.alters = [id = disk.address.id, auto_rebuild](hxc::Adapter& adapter) {
            if (hxc::VirtualDisk* const found = FindIn(adapter, id)) {
                found->auto_rebuild = *auto_rebuild != 0;
            }
        };
    }
    return CarryOut(invocation, change);
}

Exit MigrateVirtualDisk(Invocation& invocation) {
    using Look = calls::HX_LD_GetMigratedLdSize;
    const VirtualDisk disk = FindVirtualDisk(invocation);
    const hxcodes::LevelRow& level = LevelOption(invocation);
    std::vector<std::string> typed = SplitList(invocation.Get("--to", ""));
    if (typed.empty()) typed = KnownDisks(disk.address, disk.disks);
    const std::vector<Disk> disks = NamedDisks(invocation, typed);
    const auto answer = invocation.controller().Ask(MigrationRequest<Look>(disk, level, disks));
    const auto size = answer[Look::Result::CreateLDParam][fields::Create_LD_Param::Size];
    if (answer.exit != Exit::kDone || !size) {
        throw Refused(invocation, disk.address.adapter, disk.address.Text(), {Look::kName}, answer);
    }
    Change change = ChangeOf(disk, "Migrate",
                             MigrationRequest<calls::HX_LD_StartMigration>(disk, level, disks));
    change.what += " to RAID " + std::string(level.number) + " on";
    change.confirm = ConfirmName(disk);
    // The controller answers with what it could be at most; the command names no size, which leaves
    // it as large as it is.
    const std::uint64_t kept = Kept(disk.info, LD_Info::Size, disk.address);
    change.size_bytes = kSectorBytes * kept;
    if (*size < kept) {
        change.refusals.push_back("no more than " + SectorsText(*size) + " would fit, and it has " +
                                  SectorsText(kept));
    }
    change.starts_task = true;
    AddDisks(change, disks, ConfirmName(disk));
    const bool same_level = disk.info[LD_Info::RaidMode] == hxcodes::NumberOf(level.code);
    const auto legs =
        same_level ? static_cast<unsigned>(disk.info[LD_Info::SubLDCount].value_or(0)) : 0U;
    change.alters = [&, legs](hxc::Adapter& altered) {
        hxc::VirtualDisk* const found = FindIn(altered, disk.address.id);
        if (found != nullptr) LayOut(*found, hxcodes::NumberOf(level.code), legs, IdsOf(disks));
    };
    return CarryOut(invocation, change);
}

// Of a virtual disk on a disk group.
Exit ModifyVirtualDisk(Invocation& invocation) {
    using Function = calls::HX_LD_Modify_OnDG;
    using Plain = calls::HX_CreateOrModify_VD;
    const VirtualDisk disk = FindVirtualDisk(invocation);
    if (!invocation.Has("--size") && !invocation.Has("--name") && !invocation.Has("--cache")) {
        throw UsageError("no change was named");
    }
    const bool plain = invocation.Has("--plain");
    if (plain && invocation.Has("--cache")) throw UsageError("--plain knows no --cache");
    if (disk.info[LD_Info::DGID] == kNoDiskGroup) {
        throw Failure(Exit::kRefused, disk.address.Text() +
                                          ": it lies on no disk group; see "
                                          "vexorctl vd migrate and vd set");
    }
    const std::uint64_t before = Kept(disk.info, LD_Info::Size, disk.address);
    Change change = ChangeOf(disk, "Modify", {});
    const std::uint64_t sectors =
        invocation.Has("--size") ? SectorsToModify(invocation, disk, before, change) : before;
    if (plain) {
        change.losses.emplace_back("its cache will be off");
        change.commands = {ModificationRequest<Plain>(invocation, disk, sectors)};
    } else {
        auto request = ModificationRequest<Function>(invocation, disk, sectors);
        request.Add({Function::CachePolicy, CacheOrKept(invocation, disk)});
        request.Add({Function::SectorCoefficient,
                     Kept(disk.info, LD_Info::SectorCoefficient, disk.address)});
        change.commands = {std::move(request)};
    }
    if (sectors < before) {
        change.losses.emplace_back("what lies behind its new end will be lost");
        change.confirm = ConfirmName(disk);
        if (invocation.controller().codes().AreOurs()) {
            change.refusals.push_back("it has " + SectorsText(before) +
                                      ", and this controller makes none smaller");
        }
    }
    if (!invocation.Has("--size")) change.size_bytes = kSectorBytes * before;
    return CarryOut(invocation, change);
}

}  // namespace vexorctl::vd_noun
