#include "nouns/quick_creation.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "codes/level.h"
#include "conditions/hxc_answers.h"
#include "hxraid.h"
#include "library_fields.h"
#include "model/adapters.h"
#include "model/disks.h"
#include "model/exit_code.h"
#include "model/virtual_disks.h"
#include "nouns/choose_disks.h"
#include "nouns/foresee.h"
#include "xml_rapi_quick_levels.h"

namespace vexorctl {

namespace {

constexpr std::uint64_t kNoVirtualDisk = 255;  // LDID of a free block
constexpr std::uint64_t kQuickStripeKib = 64;
constexpr std::uint64_t kQuickCache = 4;

struct Taken {
    std::vector<Disk> disks;
    std::vector<Disk> doubtful;  // taken unless they hold an operating system, which nobody tells
    bool is_known = true;
};

Taken DisksTaken(Controller& controller, const Address& adapter) {
    Taken taken;
    const std::size_t faults = controller.faults().size();
    const Exit exit = controller.exit();
    std::vector<Disk> disks = LoadDisks(controller);
    const auto blocks = controller.ReadList(adapter.adapter, kBlockList);
    taken.is_known = blocks.presence == Presence::kThere && controller.faults().size() == faults;
    controller.TakeBack(faults, exit);
    for (Disk& disk : disks) {
        if (disk.address.adapter != adapter.adapter) continue;
        const auto status = disk.raid[fields::HD_RAID_Status::Status];
        if (!status) taken.is_known = false;
        if ((status.value_or(kQuickNotFree) & kQuickNotFree) != 0) continue;
        const bool is_in_use = std::ranges::any_of(blocks.items, [&](const auto& block) {
            return block.record[fields::Block_Info::HDID] == disk.address.id &&
                   block.record[fields::Block_Info::LDID] != kNoVirtualDisk;
        });
        if (is_in_use) continue;
        (disk.boot_record.value_or(true) ? taken.doubtful : taken.disks).push_back(std::move(disk));
    }
    return taken;
}

std::optional<HX_U16> LevelsOffered(Controller& controller, const Address& address) {
    for (const Adapter& each : LoadAdapters(controller)) {
        if (each.address.adapter != address.adapter) continue;
        const auto mode = each.info[fields::Adapter_Info::LogicalDriverMode];
        if (mode) return static_cast<HX_U16>(*mode);
    }
    return std::nullopt;
}

void TellSize(Controller& controller, HX_U8 level, std::span<const Disk> disks, Change& change) {
    using Look = calls::HX_LD_GetMaxSize;
    const auto answer =
        controller.Ask(Request<Look>{{Look::AdapterID, disks.front().address.adapter},
                                     {Look::RaidMode, level},
                                     {Look::HDCount, disks.size()},
                                     {Look::RoundingScheme, 0},
                                     {Look::SubLDCount, 0},
                                     {Look::NumParityDisk, level == kQuickRaid60 ? 4 : 2},
                                     {Look::StripeBlockSize, kQuickStripeKib},
                                     {Look::CachePolicy, kQuickCache},
                                     {Look::InitializationOption, 0},
                                     {Look::HDIDs, Ids(disks)},
                                     {Look::Name, "NEW_VD"}});
    TellAnsweredSize(answer, answer[Look::Result::CreateLDParam][fields::Create_LD_Param::Size],
                     change);
}

}  // namespace

void TellQuickCreation(Controller& controller, const Address& adapter, bool redundant,
                       Change& change) {
    Taken taken = DisksTaken(controller, adapter);
    const auto offered = LevelsOffered(controller, adapter);
    if (!taken.is_known || !offered) {
        change.losses.emplace_back("which disks it takes, the level and the size are not known");
        return;
    }
    if (!taken.doubtful.empty()) {
        change.losses.push_back("certainly taken: " + (taken.disks.empty()
                                                           ? std::string("none")
                                                           : Addresses(taken.disks)));
        change.losses.push_back("taken unless they hold an operating system, which is not known: " +
                                Addresses(taken.doubtful) + ", with all their data");
        change.losses.emplace_back("so the level and the size are not known");
        return;
    }
    if (taken.disks.empty()) {
        change.refusals.push_back("no disk of " + adapter.Text() + " is free");
        return;
    }
    const std::size_t most = std::min<std::size_t>(taken.disks.size(), HX_MAX_HDS);
    auto count = static_cast<HX_U8>(most);
    const HX_U8 level = redundant && count >= 2 ? QuickLevel(*offered, count) : kQuickPlainLevel;
    taken.disks.resize(count);
    const hxcodes::LevelRow* const row = hxcodes::FindCode(hxcodes::kLevels, level);
    change.losses.push_back("level: RAID " + std::string(row->number));
    change.losses.push_back("disks: " + Addresses(taken.disks));
    TellSize(controller, level, taken.disks, change);
    change.alters = [level, ids = IdsOf(taken.disks)](hxconditions::Adapter& altered) {
        AddVirtualDisk(altered, "NEW_VD", level, 0, ids);
    };
}

}  // namespace vexorctl
