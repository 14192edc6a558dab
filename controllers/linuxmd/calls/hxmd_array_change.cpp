// Creation and deletion of arrays.
#include <algorithm>
#include <cctype>
#include <cstring>
#include <ctime>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "calls/hxmd_place.h"
#include "calls/hxmd_session.h"
#include "codes/activity.h"
#include "codes/level.h"
#include "codes/status.h"
#include "codes/stripes.h"
#include "codes/virtual_disk.h"
#include "hxraid.h"
#include "library/trouble.h"
#include "rules/hxmd_changes.h"
#include "rules/hxmd_space.h"
#include "sysfs/hxmd_look.h"
#include "sysfs/hxmd_system.h"
#include "system/hxmd_device.h"
#include "system/hxmd_run.h"

namespace hxmd {
namespace {

using hxcodes::Init;
using hxcodes::Level;
using hxcodes::LevelRow;
using hxcodes::NumberOf;
using hxcodes::Rounding;
using hxcodes::Status;

constexpr std::uint64_t kGibibyte = std::uint64_t{1} << 21;  // sectors

// ---- The plan ----

/// What an array is going to be.
struct Plan {
    const LevelRow* level = nullptr;
    std::vector<const Disk*> disks;
    std::uint64_t chunk = 0;      // sectors
    std::uint64_t offset = 0;     // of the content on a member, sectors
    std::uint64_t component = 0;  // sectors of content on each member
    std::uint64_t size = 0;       // of the array, sectors
};

// MD's RAID 6 wants two disks for content, and its RAID 0 is no array with one.
bool CanBeMade(const LevelRow& level, unsigned disks) {
    if (level.code == Level::kRaid6 && disks < 4) return false;
    if (level.code == Level::kRaid0 && disks < 2) return false;
    return !level.legs && hxcodes::CanBeMade(level, disks, 0);
}

const LevelRow* LevelRowOf(HX_U8 code) {
    const auto* const row = std::ranges::find(
        hxcodes::kLevels, code, [](const LevelRow& each) { return NumberOf(each.code); });
    return row == std::end(hxcodes::kLevels) || row->legs ? nullptr : row;
}

bool IsStripe(HX_U16 kib) { return kib >= 4 && kib <= 4096 && (kib & (kib - 1)) == 0; }

bool IsGlobalSpare(const View& view, const Disk& disk) {
    return std::ranges::find(view.kept.spares, disk.id, &KeptSpare::disk) != view.kept.spares.end();
}

StatusCode FindDisks(const View& view, const Create_LD_Param& param, Plan& plan) {
    if (param.HDCount == 0 || param.HDCount > HX_MAX_HDS) return Status::kBadCount;
    for (const HX_U16 id : std::span(param.HDIDs, param.HDCount)) {
        const auto disk = std::ranges::find(view.machine.disks, id, &Disk::id);
        if (disk == view.machine.disks.end()) return Status::kNoDisk;
        if (std::ranges::find(plan.disks, &*disk) != plan.disks.end()) {
            return Status::kDiskRepeated;
        }
        if (IsGlobalSpare(view, *disk)) return Status::kDiskTaken;
        plan.disks.push_back(&*disk);
    }
    return Status::kSuccess;
}

std::uint64_t Rounded(std::uint64_t sectors, HX_U8 scheme) {
    std::uint64_t unit = 1;
    if (scheme == NumberOf(Rounding::kTo1GiB)) unit = kGibibyte;
    if (scheme == NumberOf(Rounding::kTo10GiB)) unit = 10 * kGibibyte;
    return sectors / unit * unit;
}

// The sizes, from the least gap of all disks.
StatusCode Size(const Create_LD_Param& param, Plan& plan) {
    std::uint64_t least = UINT64_MAX;
    plan.offset = 0;
    for (const Disk* const disk : plan.disks) {
        const Gap gap = LargestGap(*disk);
        least = std::min(least, gap.sectors);
        plan.offset = std::max(plan.offset, DataOffset(gap));
    }
    if (least <= plan.offset) return Status::kNoSpace;
    const auto disks = static_cast<unsigned>(plan.disks.size());
    const std::uint64_t block = (least - plan.offset) / plan.chunk * plan.chunk;
    const auto most = hxcodes::DataSectors(*plan.level, disks, 0, plan.chunk, block);
    plan.size = Rounded(param.Size.value == 0 ? most : param.Size.value, param.RoundingScheme);
    if (plan.size == 0 || plan.size > most) return Status::kNoSpace;
    plan.component = hxcodes::BlockSectors(*plan.level, disks, 0, plan.chunk, plan.size);
    return Status::kSuccess;
}

StatusCode MakePlan(const View& view, const Create_LD_Param& param, Plan& plan) {
    plan.level = LevelRowOf(param.RaidMode);
    if (plan.level == nullptr) return Status::kBadLevel;
    const bool striped = plan.level->code != Level::kRaid1;
    if (striped && !IsStripe(param.StripeBlockSize)) return Status::kBadStripeSize;
    if (!hxcodes::ToCode<Rounding>(param.RoundingScheme)) return Status::kBadRounding;
    if (param.SectorCoefficient > 1) return Status::kBadSectorSize;
    // A mirror has no stripes; its size is in whole 64 KiB.
    plan.chunk = striped ? std::uint64_t{param.StripeBlockSize} * 2 : 128;
    if (const auto refusal = FindDisks(view, param, plan); refusal != Status::kSuccess) {
        return refusal;
    }
    if (!CanBeMade(*plan.level, param.HDCount)) return Status::kBadDiskCount;
    return Size(param, plan);
}

HX_U8 GetMaxSize(const View& view, Create_LD_Param* param) {
    if (param == nullptr) return NumberOf(Status::kNullAddress);
    Plan plan;
    Create_LD_Param most = *param;
    most.Size.value = 0;
    if (const auto refusal = MakePlan(view, most, plan); refusal != Status::kSuccess) {
        return NumberOf(refusal);
    }
    param->Size.value = plan.size;
    return HX_SUCCESS;
}

// ---- Creation ----

// MD's name of the level, and its layout.
std::vector<std::string> LevelWords(const LevelRow& level) {
    switch (level.code) {
        case Level::kRaid10:
        case Level::kRaid1E:
            return {"--level=10", "--layout=n2"};
        // Otherwise mdadm would make it degraded and rebuild its last disk.
        case Level::kRaid5:
            return {"--level=5", "--force"};
        default:
            return {"--level=" + std::string(level.number)};
    }
}

// The name as a file name: of letters, digits and "._-", no number alone, which mdadm would take
// for a device's.
std::string FileName(const Create_LD_Param& param) {
    const std::string_view text(param.Name, strnlen(param.Name, sizeof param.Name));
    std::string name;
    for (const char each : text) {
        const auto byte = static_cast<unsigned char>(each);
        const bool plain = byte < 0x80 && (std::isalnum(byte) != 0 || each == '.' || each == '-');
        name += plain ? each : '_';
    }
    const bool digits = name.find_first_not_of("0123456789") == std::string::npos;
    const bool begins = !name.empty() && std::isalnum(static_cast<unsigned char>(name[0])) != 0;
    return digits || !begins ? "vd" + name : name;
}

StatusCode CheckInitialisation(const Plan& plan, HX_U8 option) {
    const auto init = hxcodes::ToCode<Init>(option);
    if (!init) return Status::kBadValue;
    switch (*init) {
        case Init::kForeground:
            return Status::kNotSupported;
        case Init::kNone:
            // Parity that nobody has calculated would give wrong content after a loss.
            return plan.level->leg_parity == 0 ? Status::kSuccess : Status::kBadValue;
        case Init::kQuick:
        case Init::kBackground:
            break;
    }
    return Status::kSuccess;
}

std::vector<std::string> CreationWords(const Plan& plan, const Create_LD_Param& param,
                                       const std::string& name, std::span<const Place> places) {
    const bool redundant = hxcodes::RedundancyOf(*plan.level) != 0;
    const std::string home = LineOf("/proc/sys/kernel", "hostname");
    std::vector<std::string> words{"--create", DevicePath("md/" + name), "--run", "--metadata=1.2"};
    if (!home.empty()) words.push_back("--homehost=" + home);
    words.push_back("--name=" + name);
    for (std::string& word : LevelWords(*plan.level)) words.push_back(std::move(word));
    words.push_back("--raid-devices=" + std::to_string(plan.disks.size()));
    if (plan.level->code != Level::kRaid1) {
        words.push_back("--chunk=" + std::to_string(plan.chunk / 2) + "K");
    }
    if (redundant) words.push_back("--size=" + std::to_string(plan.component / 2) + "K");
    words.push_back("--data-offset=" + std::to_string(plan.offset / 2) + "K");
    constexpr std::uint64_t kLarge = 100 * kGibibyte;
    if (redundant)
        words.emplace_back(plan.component < kLarge ? "--bitmap=none" : "--bitmap=internal");
    if (redundant && param.InitializationOption == NumberOf(Init::kNone)) {
        words.emplace_back("--assume-clean");
    }
    for (const Place& place : places) words.push_back(DevicePath(place.partition));
    return words;
}

const Array* ArrayOn(const View& view, const std::string& partition) {
    const auto found = std::ranges::find_if(view.machine.arrays, [&](const Array& array) {
        return std::ranges::find(array.members, partition, &Member::name) != array.members.end();
    });
    return found == view.machine.arrays.end() ? nullptr : &*found;
}

StatusCode MakePlaces(const View& view, const Plan& plan, std::vector<Place>& places) {
    for (const Disk* const disk : plan.disks) {
        Place place;
        const auto refusal = MakePlace(view.machine, *disk, plan.offset + plan.component, place);
        if (refusal != Status::kSuccess) return refusal;
        places.push_back(std::move(place));
    }
    return Status::kSuccess;
}

// What mdadm says does not count; what the kernel shows does.
StatusCode RunCreation(const std::vector<std::string>& words, const std::string& first,
                       Create_LD_Param& param) {
    const Ran ran = RunMdadm(words);
    const View after = LookAgain();
    const Array* const array = ArrayOn(after, first);
    if (array == nullptr || array->id == kNoId) {
        hxlibrary::NoteTrouble(ran.message.c_str());
        return Status::kToolFailed;
    }
    param.LDID = array->id;
    return Status::kSuccess;
}

StatusCode Create(const View& view, Create_LD_Param* param) {
    if (param == nullptr) return Status::kNullAddress;
    Plan plan;
    if (const auto refusal = MakePlan(view, *param, plan); refusal != Status::kSuccess) {
        return refusal;
    }
    const auto init = CheckInitialisation(plan, param->InitializationOption);
    if (init != Status::kSuccess) return init;
    const std::string name = FileName(*param);
    if (std::ranges::find(view.machine.arrays, name, &Array::title) != view.machine.arrays.end()) {
        return Status::kBadValue;
    }
    // All disks are proved free before the first one is changed.
    for (const Disk* const disk : plan.disks) {
        FreeDisk free;
        const auto refusal = ProveFree(view.machine, *disk, Purpose::kLook, free);
        if (refusal != Status::kSuccess) return refusal;
    }
    std::vector<Place> places;
    auto status = MakePlaces(view, plan, places);
    if (status == Status::kSuccess) {
        const auto words = CreationWords(plan, *param, name, places);
        status = RunCreation(words, places.front().partition, *param);
    }
    if (status != Status::kSuccess) std::ranges::for_each(places, UndoPlace);
    return status;
}

// ---- Deletion ----

const Disk* DiskOf(const View& view, const Member& member) {
    const auto found = std::ranges::find(view.machine.disks, member.disk, &Disk::id);
    return found == view.machine.disks.end() || !found->present ? nullptr : &*found;
}

// Whether anything uses the array or one of its partitions.
StatusCode CheckUnused(const Array& array) {
    if (FindSystem().names.contains(array.name)) return Status::kHoldsSystem;
    if (array.held || FindUsed().names.contains(array.name)) return Status::kHeld;
    const bool stands = array.state == ArrayState::kInactive;
    const Descriptor device =
        OpenDevice(array.name, array.device_number, array.sectors, Access::kReadAlone);
    return device.IsOpen() || stands ? Status::kSuccess : Status::kHeld;
}

StatusCode EraseTable(const Array& array) {
    constexpr std::uint64_t kTable = 34 * kSectorBytes;
    const Descriptor device =
        OpenDevice(array.name, array.device_number, array.sectors, Access::kWriteAlone);
    const std::uint64_t bytes = array.sectors.value_or(0) * kSectorBytes;
    if (!device.IsOpen() || bytes < 2 * kTable) return Status::kWrongState;
    const bool erased = WriteZeros(device, 0, kTable) && WriteZeros(device, bytes - kTable, kTable);
    return erased ? Status::kSuccess : Status::kToolFailed;
}

// The superblock, and the partition that was for nothing else. A whole disk has only the former.
bool Free(const View& view, const Member& member) {
    const Disk* const disk = DiskOf(view, member);
    if (disk == nullptr) return true;  // it is not there, or not a disk of ours
    const Ran ran = RunMdadm({"--zero-superblock", DevicePath(member.name)});
    if (ran.outcome != Outcome::kSucceeded) hxlibrary::NoteTrouble(ran.message.c_str());
    if (ran.outcome == Outcome::kFailed || ran.outcome == Outcome::kTimedOut) return false;
    if (disk->name != member.name) static_cast<void>(RemovePartition(*disk, member.name));
    return true;
}

StatusCode Delete(const View& view, HX_U16 id, HX_U8 erase_table) {
    const auto array = std::ranges::find(view.machine.arrays, id, &Array::id);
    if (array == view.machine.arrays.end()) return Status::kNoVirtualDisk;
    if (const auto refusal = CheckUnused(*array); refusal != Status::kSuccess) return refusal;
    if (erase_table == 1) {
        if (const auto refusal = EraseTable(*array); refusal != Status::kSuccess) return refusal;
    }
    const Ran ran = RunMdadm({"--stop", DevicePath(array->name)});
    const auto after = Look();
    if (!after ||
        std::ranges::find(after->arrays, array->uuid, &Array::uuid) != after->arrays.end()) {
        hxlibrary::NoteTrouble(ran.message.c_str());
        return Status::kToolFailed;
    }
    Save([&](Kept& kept) { QueueDeletion(kept, id, std::time(nullptr)); });
    bool freed = true;
    for (const Member& member : array->members) freed = Free(view, member) && freed;
    return freed ? Status::kSuccess : Status::kToolFailed;
}

}  // namespace
}  // namespace hxmd

HX_U8 HX_LD_Create(HX_U8 AdapterID, Create_LD_Param* param) {
    return hxmd::OnChange(AdapterID, [&](const hxmd::View& view) {
        return hxcodes::NumberOf(hxmd::Create(view, param));
    });
}

HX_U8 HX_LD_GetMaxSize(HX_U8 AdapterID, Create_LD_Param* param) {
    return hxmd::OnView(AdapterID,
                        [&](const hxmd::View& view) { return hxmd::GetMaxSize(view, param); });
}

HX_U8 HX_LD_Delete(HX_U8 AdapterID, HX_U16 LD_ID, HX_U8 deleteMBR) {
    return hxmd::OnChange(AdapterID, [&](const hxmd::View& view) {
        return hxcodes::NumberOf(hxmd::Delete(view, LD_ID, deleteMBR));
    });
}
