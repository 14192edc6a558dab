#include "creation_steps.h"

#include <algorithm>
#include <cstring>

#include "code_names.h"
#include "codes/activity.h"
#include "codes/level.h"
#include "codes/virtual_disk.h"
#include "common/number.h"
#include "common/size.h"
#include "object_call.h"

namespace hxsimctl {

namespace {

// ---- Values of the calls' records ----

std::vector<HX_U16> DisksIn(const StepValues& values) {
    std::vector<HX_U16> disks;
    for (const std::string& part : values.List("disks")) {
        disks.push_back(
            static_cast<HX_U16>(vexortools::ParseNumber(part, 65535, "number of a disk")));
    }
    if (disks.size() > HX_MAX_HDS) {
        throw UsageError("so many disks fit into no call; name at most " +
                         std::to_string(HX_MAX_HDS));
    }
    return disks;
}

HX_U8 LevelIn(const StepValues& values) {
    if (!values.Has("raid")) throw UsageError("the level is missing; write raid=5");
    return NumberOf(ParseCode<hxcodes::Level>("raid" + values.Text("raid"), "RAID level"));
}

HX_U8 CacheIn(const StepValues& values) {
    HX_U8 cache = 0;
    for (const std::string& part : values.List("cache")) {
        cache |= ParseCode<hxcodes::CacheBit>(part, "cache mode");
    }
    return cache;
}

HX_U8 InitIn(const StepValues& values) {
    if (!values.Has("init")) return NumberOf(hxcodes::Init::kQuick);
    return NumberOf(ParseCode<hxcodes::Init>(values.Text("init"), "kind of initialisation"));
}

HX_U16 StripeIn(const StepValues& values) {
    constexpr HX_U16 kUsualStripe = 64;  // KiB
    return static_cast<HX_U16>(values.Number("stripe", 65535, kUsualStripe));
}

HX_U8 LegsIn(const StepValues& values) { return static_cast<HX_U8>(values.Number("legs", 255, 0)); }

template <std::size_t size>
void SetName(char (&field)[size], const StepValues& values) {
    const std::string name = values.Text("name");
    if (name.size() > size) {
        throw UsageError('"' + name + "\" is too long a name; " + std::to_string(size) +
                         " bytes fit");
    }
    std::memcpy(field, name.data(), name.size());
}

using vexortools::SizeOrShare;

SizeOrShare SizeIn(const StepValues& values) {
    return values.Has("size") ? vexortools::ParseSizeOrShare(values.Text("size")) : SizeOrShare{};
}

// A size in sectors. As in the calls, 0 means the largest possible; `largest` is called only for a
// percentage.
template <class Largest>
HX_U64 SectorsOf(const SizeOrShare& size, const Largest& largest) {
    HX_U64 sectors{};
    if (size.bytes) {
        sectors.value = *size.bytes / vexortools::kSectorBytes;
    } else if (size.percent != 100) {
        sectors.value = largest() / 100 * size.percent;
    }
    return sectors;
}

Create_LD_Param VirtualDiskParam(const StepValues& values) {
    Create_LD_Param param{};
    const std::vector<HX_U16> disks = DisksIn(values);
    param.RaidMode = LevelIn(values);
    param.HDCount = static_cast<HX_U8>(disks.size());
    std::ranges::copy(disks, param.HDIDs);
    param.SubLDCount = LegsIn(values);
    param.StripeBlockSize = StripeIn(values);
    param.CachePolicy = CacheIn(values);
    param.InitializationOption = InitIn(values);
    param.SectorCoefficient = 1;
    SetName(param.Name, values);
    return param;
}

CreateOrModify_DG_Param DiskGroupParam(const StepValues& values) {
    CreateOrModify_DG_Param param{};
    const std::vector<HX_U16> disks = DisksIn(values);
    param.DGID = HX_NEW_ID;
    SetName(param.Name, values);
    param.RaidMode = LevelIn(values);
    param.SubVDCount = LegsIn(values);
    param.StripeBlockSize = StripeIn(values);
    param.BlockSize = 512;
    param.InitializationOption = NumberOf(hxcodes::Init::kNone);
    param.PDCount = static_cast<HX_U8>(disks.size());
    std::ranges::copy(disks, param.PDIDs);
    return param;
}

CreateOrModify_VD_Param VirtualDiskOnGroupParam(const StepValues& values) {
    CreateOrModify_VD_Param param{};
    param.VDID = HX_NEW_ID;
    SetName(param.Name, values);
    param.DGSlotNum = static_cast<HX_U8>(values.Number("slot", 255, 0));
    param.CachePolicy = CacheIn(values);
    param.InitializationOption = InitIn(values);
    param.SectorCoefficient = 1;
    param.BlockSize = 512;
    return param;
}

// ---- create ----

Step CreateVirtualDisk(const Target& adapter, const Words& words) {
    const StepValues values(words, 3,
                            {"name", "raid", "disks", "size", "stripe", "legs", "init", "cache"});
    const Create_LD_Param param = VirtualDiskParam(values);
    const SizeOrShare size = SizeIn(values);
    return [adapter, param, size](Story& story) {
        const HX_U8 number = ObjectNow(story, adapter).adapter;
        Create_LD_Param complete = param;
        complete.Size = SectorsOf(size, [&] {
            Create_LD_Param asked = param;
            story.driver().Call("HX_LD_GetMaxSize",
                                [&] { return HX_LD_GetMaxSize(number, &asked); });
            return asked.Size.value;
        });
        story.driver().Call("HX_LD_Create", [&] { return HX_LD_Create(number, &complete); });
    };
}

std::uint64_t RoomOnGroup(Driver& driver, const Object& group) {
    DG_Info_Request request{};
    request.header.requestType = HX_REQUEST_BY_ID;
    request.header.startingIndexOrId = group.id;
    request.header.numRequested = 1;
    driver.Call("HX_DG_GetInfo", [&] { return HX_DG_GetInfo(group.adapter, &request); });
    return request.dgInfo[0].RemainingManagedSpace.value;
}

// The call must repeat level, legs and stripe size of the disk group.
Step CreateOnGroup(const Target& target, const Words& words) {
    const StepValues values(words, 3, {"name", "size", "slot", "init", "cache"});
    const CreateOrModify_VD_Param param = VirtualDiskOnGroupParam(values);
    const SizeOrShare size = SizeIn(values);
    return [target, param, size](Story& story) {
        Driver& driver = story.driver();
        const Object group = RequireObject(driver.Current(), target);
        const hxsim::DiskGroup& row =
            *hxsim::Find(AdapterAt(driver.Current(), group).disk_groups, group.id);
        CreateOrModify_VD_Param complete = param;
        complete.DGID = group.id;
        complete.RaidMode = NumberOf(row.level);
        complete.SubVDCount = row.legs;
        complete.StripeBlockSize = row.stripe_kib;
        complete.Size = SectorsOf(size, [&] { return RoomOnGroup(driver, group); });
        driver.Call("HX_CreateOrModify_VD",
                    [&] { return HX_CreateOrModify_VD(group.adapter, &complete); });
    };
}

Step CreateDiskGroup(const Target& adapter, const Words& words) {
    const StepValues values(words, 3, {"name", "raid", "disks", "stripe", "legs"});
    const CreateOrModify_DG_Param param = DiskGroupParam(values);
    return [adapter, param](Story& story) {
        const HX_U8 number = ObjectNow(story, adapter).adapter;
        CreateOrModify_DG_Param complete = param;
        story.driver().Call("HX_CreateOrModify_DG",
                            [&] { return HX_CreateOrModify_DG(number, &complete, 0); });
    };
}

// ---- Steps for both virtual disks and disk groups ----

// Whether a step is about a virtual disk or a disk group.
ObjectKind KindIn(const Words& words, const std::string& done) {
    if (words[1] == "vd") return ObjectKind::kVirtualDisk;
    if (words[1] == "dg") return ObjectKind::kDiskGroup;
    throw UsageError('"' + words[1] + "\" cannot be " + done + "; write " + words[0] + " vd or " +
                     words[0] + " dg");
}

// Calls the library with the parameters after setting the object's number in them.
template <class Param>
Step Migrate(const Target& target, const Param& param, HX_U16 Param::*id, const char* function,
             HX_U8 (*call)(HX_U8 adapter, Param* param)) {
    return [=](Story& story) {
        const Object object = ObjectNow(story, target);
        Param complete = param;
        complete.*id = object.id;
        story.driver().Call(function, [&] { return call(object.adapter, &complete); });
    };
}

}  // namespace

Step ParseCreate(const Words& words) {
    RequireWords(words, 3, "create vd a0 raid=5 disks=0,1,2, or create dg, or create vd a0/dg0");
    const bool of_virtual_disk = KindIn(words, "created") == ObjectKind::kVirtualDisk;
    if (of_virtual_disk) {
        const Target target = ParseTarget(words[2]);
        if (target.kind == ObjectKind::kDiskGroup) return CreateOnGroup(target, words);
        if (target.selector.form == vexortools::Selector::Form::kName) {
            return CreateOnGroup(ParseTarget(words[2], ObjectKind::kDiskGroup), words);
        }
        return CreateVirtualDisk(ParseTarget(words[2], ObjectKind::kAdapter), words);
    }
    return CreateDiskGroup(ParseTarget(words[2], ObjectKind::kAdapter), words);
}

Step ParseMigrate(const Words& words) {
    RequireWords(words, 4, "migrate vd a0/vd0 raid=6 disks=0,1,2,3");
    const StepValues values(words, 3, {"raid", "disks", "stripe", "legs"});
    const ObjectKind kind = KindIn(words, "migrated");
    const Target target = ParseTarget(words[2], kind);
    if (kind == ObjectKind::kVirtualDisk) {
        return Migrate(target, VirtualDiskParam(values), &Create_LD_Param::LDID,
                       "HX_LD_StartMigration", HX_LD_StartMigration);
    }
    return Migrate(target, DiskGroupParam(values), &CreateOrModify_DG_Param::DGID,
                   "HX_DG_StartMigration", HX_DG_StartMigration);
}

Step ParseDelete(const Words& words) {
    RequireWords(words, 3, "delete vd a0/vd0 or delete dg a0/dg0");
    constexpr ObjectCall kDeleteVirtualDisk = {
        "HX_LD_Delete", [](const Object& it) { return HX_LD_Delete(it.adapter, it.id, 0); }};
    constexpr ObjectCall kDeleteDiskGroup = {
        "HX_DG_Delete", [](const Object& it) { return HX_DG_Delete(it.adapter, it.id); }};
    const ObjectKind kind = KindIn(words, "deleted");
    return CallAbout(ParseTarget(words[2], kind),
                     kind == ObjectKind::kVirtualDisk ? kDeleteVirtualDisk : kDeleteDiskGroup);
}

}  // namespace hxsimctl
