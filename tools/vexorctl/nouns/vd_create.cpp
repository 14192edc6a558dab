#include "nouns/vd_create.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "codes/code_table.h"
#include "codes/level.h"
#include "codes/named.h"
#include "common/address.h"
#include "conditions/hxc_answers.h"
#include "hxraid.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/disk_groups.h"
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
#include "nouns/look_again.h"
#include "nouns/plan_and_act.h"
#include "nouns/quick_creation.h"
#include "nouns/vd_plan.h"
#include "output/cell_text.h"
#include "output/streams.h"
#include "shell/invocation.h"

namespace vexorctl::vd_noun {

namespace {

namespace hxc = hxconditions;
using hxcodes::CodeTable;

// The cache mode of a new virtual disk: that of --cache, else read-ahead, or 0 where the
// controller's codes are unknown.
std::uint64_t NewCache(Invocation& invocation) {
    Controller& controller = invocation.controller();
    if (const std::string* const cache = invocation.Get("--cache")) {
        return CacheOption(controller, *cache);
    }
    return controller.codes().AreKnown() ? CacheOption(controller, "read_ahead") : 0;
}

// The first slot of the group that no virtual disk has.
std::uint64_t SlotOption(const Invocation& invocation, const DiskGroup& group) {
    if (const auto slot = invocation.Number("--slot", 255)) return *slot;
    const auto slots = Kept(group.info, fields::DG_Info::VDIDs, group.address);
    const auto empty = std::ranges::find(slots, std::uint64_t{HX_NEW_ID});
    return empty == slots.end() ? 0 : static_cast<std::uint64_t>(empty - slots.begin());
}

// 0 leaves the choice to the controller.
std::uint64_t CodeOrNone(Invocation& invocation, std::string_view option, CodeNames names) {
    return invocation.Has(option) ? CodeOption(invocation, option, names) : 0;
}

// How virtual disks on the group lie, with a stripe size of their own or with the group's.
std::optional<Striping> StripingOn(const DiskGroup& group,
                                   std::optional<std::uint64_t> stripe_kib) {
    using fields::DG_Info;
    const auto code = group.info[DG_Info::RaidMode];
    const auto disks = DisksOf(group.info.view());
    const auto legs = group.info[DG_Info::SubVDCount];
    if (!stripe_kib) stripe_kib = group.info[DG_Info::StripeBlockSize];
    const hxcodes::LevelRow* const level =
        code ? hxcodes::FindCode(hxcodes::kLevels, *code) : nullptr;
    if (level == nullptr || !disks || !legs || !stripe_kib) return std::nullopt;
    return Striping{level, static_cast<unsigned>(disks->size()), static_cast<unsigned>(*legs),
                    *stripe_kib};
}

// A virtual disk on a group has the group's level and disks.
Alteration AddOn(const DiskGroup& group, const std::string& title) {
    const auto level = group.info[fields::DG_Info::RaidMode];
    const auto disks = DisksOf(group.info.view());
    if (!level || !disks) return nullptr;
    const auto legs = static_cast<unsigned>(group.info[fields::DG_Info::SubVDCount].value_or(0));
    return [=, code = static_cast<unsigned>(*level),
            ids = std::vector<unsigned>(disks->begin(), disks->end())](hxc::Adapter& adapter) {
        AddVirtualDisk(adapter, title, code, legs, ids);
    };
}

Exit CreateOnGroup(Invocation& invocation, const std::string& typed) {
    using Function = calls::HX_LD_Create_OnDG;
    using fields::DG_Info;
    const Address address = FindObject(invocation, ObjectKind::kDiskGroup, typed);
    const std::vector<DiskGroup> groups = LoadDiskGroups(invocation.controller());
    std::string others;
    for (const DiskGroup& group : groups) {
        if (group.address == address) continue;
        others += "; free on " + group.address.Text() + ": " +
                  SectorsText(group.info[DG_Info::RemainingManagedSpace]);
    }
    const DiskGroup owner = TakeObject(groups, address);
    const std::uint64_t sectors =
        SizeOption(invocation)
            .Of(Kept(owner.info, DG_Info::RemainingManagedSpace, address), others);
    const std::string name = NameOption(invocation, NameMarkup::kCData).value_or("NEW_VD");
    const Request<Function> request{
        {Function::AdapterID, address.adapter},
        {Function::DGID, address.id},
        {Function::Name, name},
        {Function::StripeBlockSize, StripeOption(invocation).value_or(0)},
        {Function::Size, sectors},
        {Function::RoundingScheme, 0},
        {Function::CachePolicy, NewCache(invocation)},
        {Function::DGSlotNum, SlotOption(invocation, owner)},
        {Function::InitializationOption, CodeOrNone(invocation, "--init", &CodeTable::inits)},
        {Function::SectorCoefficient, 1}};
    Change change{.what = "Create a virtual disk called " + name + " on " + address.Text(),
                  .commands = {request},
                  .starts_task = true,
                  .created = &AddressesOf<&LoadVirtualDisks>,
                  .alters = AddOn(owner, name)};
    const auto striping = StripingOn(owner, StripeOption(invocation));
    const bool is_most = sectors == owner.info[DG_Info::RemainingManagedSpace];
    TellSize(change,
             is_most    ? sectors
             : striping ? SectorsResulting(invocation, *striping, sectors)
                        : std::nullopt,
             sectors);
    return CarryOut(invocation, change);
}

// The parameters that the request for a new virtual disk shares with the question for its size.
template <class Function>
Request<Function> CreationRequest(Invocation& invocation, const hxcodes::LevelRow& level,
                                  std::span<const Disk> disks, const std::string& name) {
    return {{Function::AdapterID, disks.front().address.adapter},
            {Function::RaidMode, hxcodes::NumberOf(level.code)},
            {Function::HDCount, disks.size()},
            {Function::RoundingScheme, CodeOrNone(invocation, "--round", &CodeTable::roundings)},
            {Function::SubLDCount, invocation.Number("--legs", 255).value_or(0)},
            {Function::NumParityDisk, hxcodes::ParityDisks(level, 0)},
            {Function::StripeBlockSize, StripeOption(invocation).value_or(64)},
            {Function::CachePolicy, NewCache(invocation)},
            {Function::InitializationOption, CodeOrNone(invocation, "--init", &CodeTable::inits)},
            {Function::HDIDs, Ids(disks)},
            {Function::Name, name}};
}

Exit CreateOnDisks(Invocation& invocation) {
    using Look = calls::HX_LD_GetMaxSize;
    using Function = calls::HX_LD_Create;
    const hxcodes::LevelRow& level = LevelOption(invocation);
    const auto count = invocation.Number("--disks", 128);
    if (invocation.targets().empty() && !count) {
        throw UsageError("no disks: name them, or say --disks and how many");
    }
    if (!invocation.targets().empty() && count) {
        throw UsageError("either name the disks or say how many with --disks");
    }
    const SizeWish size = SizeOption(invocation);
    const std::string name = NameOption(invocation, NameMarkup::kCData).value_or("NEW_VD");
    Controller& controller = invocation.controller();
    const auto ask = [&](std::span<const Disk> disks) {
        return controller.Ask(CreationRequest<Look>(invocation, level, disks, name));
    };
    const auto room_of = [](const AnswerTo<Look>& answer) {
        return answer[Look::Result::CreateLDParam][fields::Create_LD_Param::Size];
    };
    const auto room = [&](std::span<const Disk> disks) -> std::optional<std::uint64_t> {
        const auto most = ask(disks);
        return most.exit == Exit::kDone ? room_of(most) : std::nullopt;
    };
    const std::vector<Disk> disks =
        count ? PickDisks(invocation, static_cast<std::size_t>(*count), size, room)
              : NamedDisks(invocation, invocation.targets());
    // After --disks 0, or when the disks were unplugged since they were looked up.
    if (disks.empty()) throw UsageError("no disks: a virtual disk needs one at least");
    const unsigned adapter = disks.front().address.adapter;
    const auto most = ask(disks);
    const auto most_sectors = room_of(most);
    if (most.exit != Exit::kDone || !most_sectors) {
        throw Refused(invocation, adapter, SubjectOf(invocation, level, disks), {Look::kName},
                      most);
    }
    const bool too_large = size.sectors.value_or(0) > *most_sectors;
    const std::uint64_t sectors =
        size.Of(*most_sectors, too_large ? Alternatives(invocation, adapter) : std::string());
    auto request = CreationRequest<Function>(invocation, level, disks, name);
    request.Add({Function::SectorCoefficient, 1});
    request.Add({Function::Size, sectors});
    Change change{.what = "Create a RAID " + std::string(level.number) + " virtual disk called " +
                          name + " on",
                  .commands = {std::move(request)},
                  .starts_task = true,
                  .created = &AddressesOf<&LoadVirtualDisks>};
    AddDisks(change, disks, name);
    const auto legs = static_cast<unsigned>(invocation.Number("--legs", 255).value_or(0));
    const Striping striping{&level, static_cast<unsigned>(disks.size()), legs,
                            StripeOption(invocation).value_or(64)};
    // The most is what the controller itself has said.
    TellSize(change,
             sectors == *most_sectors ? sectors : SectorsResulting(invocation, striping, sectors),
             sectors);
    change.alters = [&, legs](hxc::Adapter& altered) {
        AddVirtualDisk(altered, name, hxcodes::NumberOf(level.code), legs, IdsOf(disks));
    };
    return CarryOut(invocation, change);
}

}  // namespace

// Disks that were picked and that somebody else has taken since are no reason to give up: others
// may do. Disks that were named are.
Exit CreateVirtualDisk(Invocation& invocation) {
    if (const std::string* const group = invocation.Get("--dg")) {
        return CreateOnGroup(invocation, *group);
    }
    const bool is_fixed = !invocation.targets().empty() || invocation.review() != nullptr;
    if (is_fixed) return CreateOnDisks(invocation);
    constexpr int kPicks = 16;
    std::optional<Outdated> lost;
    for (int pick = 0; pick < kPicks; ++pick) {
        try {
            return CreateOnDisks(invocation);
        } catch (const Outdated& outdated) {
            ReportFailure("", std::string(outdated.what()) + "; picking again");
            lost = outdated;
            invocation.controller().RememberSightings();
        } catch (const Failure& failure) {
            if (!lost) throw;
            throw Outdated(lost->exit, std::string(lost->what()) + "; then " + failure.what());
        }
    }
    throw *lost;
}

Exit QuickCreate(Invocation& invocation) {
    using Function = calls::HX_LD_QuickCreate;
    const unsigned adapter = FindAdapter(invocation);
    const bool redundant = !invocation.Has("--plain");
    Change change{.what = "Create one virtual disk over all free disks of a" +
                          std::to_string(adapter) +
                          (redundant ? ", with redundancy" : ", without redundancy"),
                  .losses = {"all free disks of the adapter are taken"},
                  .confirm = "a" + std::to_string(adapter),
                  .commands = {Request<Function>{{Function::AdapterID, adapter},
                                                 {Function::Type, redundant ? 1 : 0}}},
                  .starts_task = true,
                  .created = &AddressesOf<&LoadVirtualDisks>,
                  .takes_every_disk = true};
    TellQuickCreation(invocation.controller(), {.adapter = adapter}, redundant, change);
    return CarryOut(invocation, change);
}

}  // namespace vexorctl::vd_noun
