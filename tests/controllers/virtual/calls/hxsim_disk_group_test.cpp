// Disk groups and the virtual disks in their slots: made, changed, moved and deleted.
#include "calls/hxsim_disk_group_change.h"
#include "calls/hxsim_disk_group_create.h"
#include "calls/hxsim_disk_group_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <string>

#include "calls/hxsim_activity_control.h"
#include "calls/hxsim_virtual_disk_change.h"
#include "calls/hxsim_virtual_disk_create.h"
#include "codes/activity.h"
#include "codes/state.h"
#include "codes/status.h"
#include "controllers/virtual/support/living_machine.h"
#include "model/hxsim_activity_row.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_activity_end.h"
#include "rules/hxsim_migration.h"

namespace hxsim {
namespace {

using hxcodes::ActivityKind;
using hxcodes::ActivityState;
using hxcodes::ControlAction;
using hxcodes::Init;
using hxcodes::State;
using hxcodes::Status;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr uint64_t kUntouched = 0xA5A5A5A5A5A5A5A5;

class LivingDiskGroup : public LivingMachine {
protected:
    CreateOrModify_DG_Param Made(CreateOrModify_DG_Param param) {
        EXPECT_EQ(HX_SUCCESS, CreateOrModifyDiskGroup(adapter(), kNow, param));
        Settle(adapter(), kNow);
        return param;
    }

    CreateOrModify_VD_Param Made(CreateOrModify_VD_Param param) {
        EXPECT_EQ(HX_SUCCESS, CreateOrModifyOnGroup(adapter(), kNow, param));
        Settle(adapter(), kNow);
        return param;
    }

    int Refusal(CreateOrModify_DG_Param param) {
        const CreateOrModify_DG_Param asked = param;
        const std::string before = Everything();
        const HX_U8 status = CreateOrModifyDiskGroup(adapter(), kNow, param);
        EXPECT_EQ(before, Everything());
        EXPECT_EQ(0, std::memcmp(&asked, &param, sizeof param));
        return status;
    }

    int Refusal(CreateOrModify_VD_Param param) {
        const CreateOrModify_VD_Param asked = param;
        const std::string before = Everything();
        const HX_U8 status = CreateOrModifyOnGroup(adapter(), kNow, param);
        EXPECT_EQ(before, Everything());
        EXPECT_EQ(0, std::memcmp(&asked, &param, sizeof param));
        return status;
    }

    int Move(CreateOrModify_DG_Param param) {
        const HX_U8 status = StartGroupMigration(adapter(), kNow, param);
        if (status == HX_SUCCESS) Settle(adapter(), kNow);
        return status;
    }

    int RefusedMove(CreateOrModify_DG_Param param) {
        const std::string before = Everything();
        param.Size.value = kUntouched;
        const HX_U8 status = StartGroupMigration(adapter(), kNow, param);
        EXPECT_EQ(before, Everything());
        EXPECT_EQ(kUntouched, param.Size.value);
        return status;
    }

    uint64_t SizeOnly(CreateOrModify_DG_Param param) {
        param.Size.value = kUntouched;
        const std::string before = Everything();
        EXPECT_EQ(HX_SUCCESS, SizeDiskGroup(adapter(), param));
        EXPECT_EQ(before, Everything());
        return param.Size.value;
    }

    DG_Info Info() { return DescribeDiskGroup(adapter(), GroupOfId(0)); }
};

// ---- Made ----

TEST_F(LivingDiskGroup, HasWhatItWasMadeWith) {
    CreateOrModify_DG_Param param = GroupOn(HX_NEW_ID, 0x50, {5, 0, 1, 2, 3, 4});
    std::memcpy(param.Name, "SIXTEEN LETTERS!", 16);
    param.StripeBlockSize = 128;
    const CreateOrModify_DG_Param made = Made(param);
    EXPECT_EQ(0, made.DGID);
    EXPECT_EQ(3999744u, made.Size.value);  // four times 3906 stripes of 256 sectors
    EXPECT_EQ("SIXTEEN LETTERS!", GroupOfId(0).name);
    EXPECT_EQ(0x50, GroupOfId(0).level);
    EXPECT_EQ(2, GroupOfId(0).legs);
    EXPECT_EQ(6, GroupOfId(0).width);
    EXPECT_EQ(128, GroupOfId(0).stripe_kib);
    EXPECT_THAT(Serving(Owner::kDiskGroup, 0), ElementsAre(5, 0, 1, 2, 3, 4));
    EXPECT_EQ("free 0+1000000", BlocksOn(5));
    EXPECT_THAT(Events(), ElementsAre("13/0 of 0"));
}

TEST_F(LivingDiskGroup, HasTheSizeThatWasSaidBefore) {
    EXPECT_EQ(1999872u, SizeOnly(GroupOn(HX_NEW_ID, 0x05, {0, 1, 2})));
    EXPECT_EQ(1999872u, Made(GroupOn(HX_NEW_ID, 0x05, {0, 1, 2})).Size.value);
    EXPECT_EQ(1999872u, Info().TotalManagedSpace.value);
}

TEST_F(LivingDiskGroup, HasAsMuchOfEachDiskAsTheSmallestGives) {
    AddDisk(20, 500000);  // 3906 stripes of 128 sectors
    EXPECT_EQ(999936u, Made(GroupOn(HX_NEW_ID, 0x05, {0, 1, 20})).Size.value);
    EXPECT_EQ(500000u, Info().SmallestAvailablePDSize.value);
}

TEST_F(LivingDiskGroup, TakesTheWriteCachesOfItsDisksAway) {
    DiskOf(1).write_cache = true;
    Made(GroupOn(HX_NEW_ID, 0x05, {0, 1, 2}));
    EXPECT_FALSE(DiskOf(1).write_cache);
    EXPECT_THAT(Events(), ElementsAre("13/0 of 0", "2/16 of 1"));
}

struct RefusedCase {
    const char* name;
    HX_U8 status;
    HX_U8 level;
    Ids disks;
    void (*spoil)(CreateOrModify_DG_Param&, Adapter&) = [](CreateOrModify_DG_Param&, Adapter&) {};
};
void PrintTo(const RefusedCase& each, std::ostream* out) { *out << each.name; }

Disk& DiskIn(Adapter& adapter, HX_U16 id) { return *Find(adapter.disks, id); }

const RefusedCase kRefused[] = {
    {"NoDiskGroupsAtAll",
     Status::kNotSupported,
     0x05,
     {0, 1, 2},
     [](auto&, auto& a) { a.info.DiskGroupSupport = 0; }},
    {"GroupThatIsNotThere",
     Status::kNoDiskGroup,
     0x05,
     {0, 1, 2},
     [](auto& p, auto&) { p.DGID = 7; }},
    {"SectorsOf4096Bytes",
     Status::kBadSectorSize,
     0x05,
     {0, 1, 2},
     [](auto& p, auto&) { p.BlockSize = 4096; }},
    {"LevelThatIsNone", Status::kBadLevel, 0x07, {0, 1, 2}},
    {"StripeThatIsNotOffered",
     Status::kBadStripeSize,
     0x05,
     {0, 1, 2},
     [](auto& p, auto&) { p.StripeBlockSize = 8; }},
    {"TooFewDisks", Status::kBadDiskCount, 0x05, {0, 1}},
    {"MoreDisksThanTheRecordHolds",
     Status::kBadDiskCount,
     0x00,
     {0},
     [](auto& p, auto&) { p.PDCount = 129; }},
    {"MoreDisksThanTheAdapterJoins",
     Status::kBadDiskCount,
     0x05,
     {0, 1, 2},
     [](auto&, auto& a) { a.info.MaxPDPerDG = 2; }},
    {"DiskThatIsNotThere", Status::kNoDisk, 0x05, {0, 1, 99}},
    {"DiskTwice", Status::kDiskRepeated, 0x05, {0, 1, 1}},
    {"FailedDisk",
     Status::kDiskNotReady,
     0x05,
     {0, 1, 2},
     [](auto&, auto& a) { DiskIn(a, 2).failed = true; }},
    {"SpareForAll",
     Status::kDiskTaken,
     0x05,
     {0, 1, 2},
     [](auto&, auto& a) { DiskIn(a, 2).spare = Spare::kGlobal; }},
    {"DiskWithASystem",
     Status::kHoldsSystem,
     0x05,
     {0, 1, 2},
     [](auto&, auto& a) { DiskIn(a, 2).has_system = true; }},
    {"InitialisationThatIsNone",
     Status::kBadAction,
     0x05,
     {0, 1, 2},
     [](auto& p, auto&) { p.InitializationOption = 4; }},
    {"MoreSpaceThanThereIs",
     Status::kNoSpace,
     0x05,
     {0, 1, 2},
     [](auto& p, auto&) { p.Size.value = 1999873; }},
};

class RefusedLivingDiskGroup : public LivingDiskGroup,
                               public testing::WithParamInterface<RefusedCase> {
    void TearDown() override {}  // what was spoiled is no machine to go on with
};

TEST_P(RefusedLivingDiskGroup, ChangesNothing) {
    CreateOrModify_DG_Param param = GroupOn(HX_NEW_ID, GetParam().level, GetParam().disks);
    GetParam().spoil(param, adapter());
    EXPECT_EQ(int{GetParam().status}, Refusal(param));
}

std::string RefusedName(const testing::TestParamInfo<RefusedCase>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Each, RefusedLivingDiskGroup, testing::ValuesIn(kRefused), RefusedName);

TEST_F(LivingDiskGroup, IsNotMadeOfDisksThatOthersHave) {
    Made(GroupOn(HX_NEW_ID, 0x01, {0, 1}));
    Create_LD_Param alone = WantedOn(0x00, {2}, 128);
    EXPECT_EQ(HX_SUCCESS, CreateVirtualDisk(adapter(), kNow, alone));
    EXPECT_EQ(Status::kDiskTaken, Refusal(GroupOn(HX_NEW_ID, 0x01, {1, 3})));
    EXPECT_EQ(Status::kDiskTaken, Refusal(GroupOn(HX_NEW_ID, 0x01, {2, 3})));
}

TEST(LivingDiskGroups, EndWithTheThirtySecond) {
    struct ManyDisks : LivingDiskGroup {
        ManyDisks() {
            for (HX_U16 id = 8; id < 40; ++id) AddDisk(id, kUsable);
        }
        void TestBody() override {
            for (HX_U16 id = 0; id < 32; ++id) Made(GroupOn(HX_NEW_ID, 0x00, {id}));
            EXPECT_EQ(Status::kTooManyDiskGroups, Refusal(GroupOn(HX_NEW_ID, 0x00, {32})));
            TearDown();
        }
    };
    ManyDisks().TestBody();
}

// ---- Settings ----

TEST_F(LivingDiskGroup, IsSetWithItsDisks) {
    Made(GroupOn(HX_NEW_ID, 0x01, {0, 1}));
    adapter().events.clear();
    DG_Config config{};
    config.WriteCacheOn = 1;
    std::strcpy(config.Name, "OTHER");
    EXPECT_EQ(HX_SUCCESS, SetDiskGroup(adapter(), kNow, 0, config));
    EXPECT_EQ("OTHER", GroupOfId(0).name);
    EXPECT_TRUE(GroupOfId(0).write_cache);
    EXPECT_TRUE(DiskOf(1).write_cache);
    EXPECT_FALSE(DiskOf(2).write_cache);
    EXPECT_THAT(Events(), ElementsAre("2/16 of 0", "2/16 of 1"));
    EXPECT_EQ(Status::kNoDiskGroup, SetDiskGroup(adapter(), kNow, 1, config));
}

TEST_F(LivingDiskGroup, IsRenamed) {
    Made(GroupOn(HX_NEW_ID, 0x05, {0, 1, 2}));
    CreateOrModify_DG_Param param = GroupOn(0, 0x05, {2, 0, 1});
    std::strcpy(param.Name, "OTHER");
    EXPECT_EQ(1999872u, Made(param).Size.value);
    EXPECT_EQ("OTHER", GroupOfId(0).name);
    EXPECT_THAT(Serving(Owner::kDiskGroup, 0), ElementsAre(0, 1, 2));
    EXPECT_THAT(adapter().activities, IsEmpty());
    Made(GroupOn(0, 0x00, {}));  // nothing is named, and nothing changes
    EXPECT_EQ("OTHER", GroupOfId(0).name);
    EXPECT_EQ(0x05, GroupOfId(0).level);
}

// ---- Virtual disks in slots ----

class LivingSlots : public LivingDiskGroup {
protected:
    void SetUp() override { Made(GroupOn(HX_NEW_ID, 0x05, {0, 1, 2})); }
};

TEST_F(LivingSlots, HoldVirtualDisksOfTheGroupsLevel) {
    CreateOrModify_VD_Param param = InSlot(0, 0x05, 3, 1000);
    std::memcpy(param.Name, "SIXTEEN LETTERS!", 16);
    param.CachePolicy = 0x05;
    param.SectorCoefficient = 4;
    param.InitializationOption = Init::kBackground;
    EXPECT_EQ(1024u, Made(param).Size.value);  // eight stripes of 128 sectors
    const VirtualDisk& made = VirtualDiskOf(0);
    EXPECT_EQ("SIXTEEN LETTERS!", made.name);
    EXPECT_EQ(0, made.group);
    EXPECT_EQ(3, made.slot);
    EXPECT_EQ(0x05, made.level);
    EXPECT_EQ(3, made.width);
    EXPECT_EQ(0x05, made.cache);
    EXPECT_EQ(4, made.coefficient);
    EXPECT_EQ("vd0.1 0+512, free 512+999488", BlocksOn(1));
    EXPECT_EQ(ActivityKind::kInitBackground, ActivityOf(adapter(), Owner::kVirtualDisk, 0)->kind);
    EXPECT_THAT(Serving(Owner::kVirtualDisk, 0), IsEmpty());  // its homes are the group's
}

TEST_F(LivingSlots, AreListedWithTheirSizes) {
    Made(InSlot(0, 0x05, 31, 1024));
    Made(InSlot(0, 0x05, 0, 2048));
    const DG_Info info = Info();
    EXPECT_EQ(2, info.VDSlotCount);
    EXPECT_EQ(2048u, info.VDSlotSize[0].value);
    EXPECT_EQ(0u, info.VDSlotSize[1].value);
    EXPECT_EQ(1024u, info.VDSlotSize[31].value);
    EXPECT_EQ(1, info.VDIDs[0]);
    EXPECT_THAT(Ids(info.VDIDs + 1, info.VDIDs + 31), Each(65535));
    EXPECT_EQ(0, info.VDIDs[31]);
}

TEST_F(LivingSlots, GetWhatRemains) {
    Made(InSlot(0, 0x05, 0, 1024));
    // 999488 sectors of each disk are left, 7808 stripes of 128.
    EXPECT_EQ(1998848u, Info().RemainingManagedSpace.value);
    EXPECT_EQ(1998848u, Made(InSlot(0, 0x05, 1)).Size.value);
    EXPECT_EQ(0u, Info().RemainingManagedSpace.value);
    EXPECT_EQ(Status::kNoSpace, Refusal(InSlot(0, 0x05, 2)));
}

TEST_F(LivingSlots, HaveStripesOfTheirOwn) {
    CreateOrModify_VD_Param param = InSlot(0, 0x05, 0, 1024);
    param.StripeBlockSize = 256;
    Made(param);
    EXPECT_EQ(256, VirtualDiskOf(0).stripe_kib);
    EXPECT_EQ("vd0.0 0+512, free 512+999488", BlocksOn(0));
}

TEST_F(LivingSlots, AreFilledWhereARunIsLongEnough) {
    Made(InSlot(0, 0x05, 0, 1024));
    Made(InSlot(0, 0x05, 1, 1024));
    EXPECT_EQ(HX_SUCCESS, DeleteVirtualDisk(adapter(), kNow, 0, false));
    Made(InSlot(0, 0x05, 2, 1280));
    Made(InSlot(0, 0x05, 0, 512));
    EXPECT_EQ("vd2.0 0+256, free 256+256, vd1.0 512+512, vd0.0 1024+640, free 1664+998336",
              BlocksOn(0));
}

struct RefusedSlotCase {
    const char* name;
    HX_U8 status;
    void (*spoil)(CreateOrModify_VD_Param&, Adapter&);
};
void PrintTo(const RefusedSlotCase& each, std::ostream* out) { *out << each.name; }

const RefusedSlotCase kRefusedSlots[] = {
    {"NoDiskGroupsAtAll", Status::kNotSupported,
     [](auto&, auto& a) { a.info.DiskGroupSupport = 0; }},
    {"GroupThatIsNotThere", Status::kNoDiskGroup, [](auto& p, auto&) { p.DGID = 7; }},
    {"VirtualDiskThatIsNotThere", Status::kNoVirtualDisk, [](auto& p, auto&) { p.VDID = 7; }},
    {"AnotherLevel", Status::kBadLevel, [](auto& p, auto&) { p.RaidMode = 0x00; }},
    {"OtherLegs", Status::kBadDiskCount, [](auto& p, auto&) { p.SubVDCount = 2; }},
    {"SectorsOf4096Bytes", Status::kBadSectorSize, [](auto& p, auto&) { p.BlockSize = 4096; }},
    {"StripeThatIsNotOffered", Status::kBadStripeSize,
     [](auto& p, auto&) { p.StripeBlockSize = 512; }},
    {"RoundingThatIsNone", Status::kBadRounding, [](auto& p, auto&) { p.RoundingScheme = 3; }},
    {"SlotThatIsNone", Status::kBadSlot, [](auto& p, auto&) { p.DGSlotNum = 32; }},
    {"SlotThatTheAdapterLacks", Status::kBadSlot, [](auto&, auto& a) { a.info.MaxVDPerDG = 1; }},
    {"SlotThatIsTaken", Status::kSlotTaken, [](auto& p, auto&) { p.DGSlotNum = 0; }},
    {"MoreThanRemains", Status::kNoSpace, [](auto& p, auto&) { p.Size.value = 1998849; }},
    {"OneMoreThanTheAdapterHas", Status::kTooManyVirtualDisks,
     [](auto&, auto& a) { a.info.MaxLogicalDrive = 1; }},
    {"OneBlockMoreThanADiskHas", Status::kTooManyBlocks,
     [](auto&, auto& a) { a.info.MaxBlockPerPD = 2; }},
    {"CacheThatIsNone", Status::kBadValue, [](auto& p, auto&) { p.CachePolicy = 0x02; }},
    {"InitialisationThatIsNone", Status::kBadAction,
     [](auto& p, auto&) { p.InitializationOption = 4; }},
    {"DiskThatIsLost", Status::kWrongState, [](auto&, auto& a) { DiskIn(a, 2).failed = true; }},
};

class RefusedLivingSlot : public LivingSlots, public testing::WithParamInterface<RefusedSlotCase> {
    void TearDown() override {}  // what was spoiled is no machine to go on with
};

TEST_P(RefusedLivingSlot, ChangesNothing) {
    Made(InSlot(0, 0x05, 0, 1024));
    CreateOrModify_VD_Param param = InSlot(0, 0x05, 1, 1024);
    GetParam().spoil(param, adapter());
    EXPECT_EQ(int{GetParam().status}, Refusal(param));
}

std::string SlotName(const testing::TestParamInfo<RefusedSlotCase>& info) {
    return info.param.name;
}
INSTANTIATE_TEST_SUITE_P(Each, RefusedLivingSlot, testing::ValuesIn(kRefusedSlots), SlotName);

CreateOrModify_VD_Param Change(HX_U16 id, uint64_t size) {
    CreateOrModify_VD_Param param = InSlot(0, 0, 0, size);
    param.VDID = id;
    return param;
}

TEST_F(LivingSlots, RenameTheirVirtualDisksAndSetTheirCaches) {
    Made(InSlot(0, 0x05, 4, 1024));
    adapter().events.clear();
    CreateOrModify_VD_Param param = Change(0, 0);
    std::strcpy(param.Name, "OTHER");
    param.CachePolicy = 0x01;
    EXPECT_EQ(1024u, Made(param).Size.value);
    EXPECT_EQ("OTHER", VirtualDiskOf(0).name);
    EXPECT_EQ(0x01, VirtualDiskOf(0).cache);
    EXPECT_EQ(4, VirtualDiskOf(0).slot);
    EXPECT_THAT(Events(), ElementsAre("1/6 of 0"));
}

TEST_F(LivingSlots, LetTheirVirtualDisksGrowIntoWhatFollows) {
    Made(InSlot(0, 0x05, 0, 1024));
    EXPECT_EQ(2048u, Made(Change(0, 2000)).Size.value);
    EXPECT_EQ(2048u, VirtualDiskOf(0).size);
    EXPECT_EQ("vd0.2 0+1024, free 1024+998976", BlocksOn(2));
}

TEST_F(LivingSlots, DoNotLetThemGrowOverOthers) {
    Made(InSlot(0, 0x05, 0, 1024));
    Made(InSlot(0, 0x05, 1, 1024));
    EXPECT_EQ(Status::kNoSpace, Refusal(Change(0, 1025)));
    EXPECT_EQ(Status::kTooSmall, Refusal(Change(1, 1023)));
    CreateOrModify_VD_Param cache = Change(0, 0);
    cache.CachePolicy = 0x02;
    EXPECT_EQ(Status::kBadValue, Refusal(cache));
}

TEST_F(LivingSlots, DoNotLetThemGrowWhileSomethingGoesOn) {
    CreateOrModify_VD_Param param = InSlot(0, 0x05, 0, 1024);
    param.InitializationOption = Init::kBackground;
    Made(param);
    EXPECT_EQ(Status::kBusy, Refusal(Change(0, 2048)));
}

TEST_F(LivingSlots, DoNotChangeVirtualDisksOfOthers) {
    Create_LD_Param alone = WantedOn(0x00, {5}, 128);
    EXPECT_EQ(HX_SUCCESS, CreateVirtualDisk(adapter(), kNow, alone));
    EXPECT_EQ(Status::kNoVirtualDisk, Refusal(Change(alone.LDID, 0)));
}

TEST_F(LivingSlots, DoNotMoveTheirVirtualDisksAlone) {
    Made(InSlot(0, 0x05, 0, 1024));
    Create_LD_Param param = WantedOn(0x00, {5, 6});
    param.LDID = 0;
    EXPECT_EQ(Status::kOnDiskGroup, StartMigration(adapter(), kNow, param));
    EXPECT_EQ(Status::kOnDiskGroup, SizeMigration(adapter(), param));
}

TEST_F(LivingSlots, TakeNothingNewWhileTheGroupIsRebuilt) {
    Made(InSlot(0, 0x05, 0, 1024));
    DiskOf(7).spare = Spare::kGlobal;
    DiskOf(1).failed = true;
    Settle(adapter(), kNow);
    EXPECT_EQ(Status::kBusy, Refusal(InSlot(0, 0x05, 1, 1024)));
    Finish();
    Made(InSlot(0, 0x05, 1, 1024));
    EXPECT_EQ("vd0.1 0+512, vd1.1 512+512, free 1024+998976", BlocksOn(7));
}

// ---- Migration ----

class LivingMove : public LivingSlots {
protected:
    void SetUp() override {
        LivingSlots::SetUp();
        Made(InSlot(0, 0x05, 0, 1024));
        Made(InSlot(0, 0x05, 1, 1536));
        adapter().events.clear();
    }
};

TEST_F(LivingMove, GrowsTheGroupByADiskInPlace) {
    // 8 and 12 stripes on three disks of data instead of two: 3 and 4 on each.
    EXPECT_EQ(2999808u, SizeOnly(GroupOn(0, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ(2999808u, Made(GroupOn(0, 0x05, {0, 1, 2, 3})).Size.value);
    EXPECT_EQ("vd0.0 0+512, vd1.0 512+768, free 1280+998720", BlocksOn(0));
    EXPECT_EQ("target0.3 0+384, free 384+128, target1.3 512+512, free 1024+998976", BlocksOn(3));
    EXPECT_EQ(ActivityKind::kMigration, Info().BgaType);
    EXPECT_EQ(ActivityState::kRunning, Info().BgaState);
    Finish();
    EXPECT_EQ("vd0.0 0+384, free 384+128, vd1.0 512+512, free 1024+998976", BlocksOn(0));
    EXPECT_EQ("vd0.3 0+384, free 384+128, vd1.3 512+512, free 1024+998976", BlocksOn(3));
    EXPECT_EQ(4, GroupOfId(0).width);
    EXPECT_EQ(4, VirtualDiskOf(1).width);
    EXPECT_EQ(1536u, VirtualDiskOf(1).size);
    EXPECT_THAT(Serving(Owner::kDiskGroup, 0), ElementsAre(0, 1, 2, 3));
    EXPECT_EQ(0, Info().BgaType);
}

TEST_F(LivingMove, TakesTheGroupToAnotherLevelBesideItself) {
    // 8 and 12 stripes on one disk of data: the blocks find place behind those that are there.
    EXPECT_EQ(HX_SUCCESS, Move(GroupOn(0, 0x06, {0, 1, 2})));
    EXPECT_EQ(
        "vd0.0 0+512, vd1.0 512+768, target0.0 1280+1024, target1.0 2304+1536, free 3840+996160",
        BlocksOn(0));
    Finish();
    EXPECT_EQ("free 0+1280, vd0.2 1280+1024, vd1.2 2304+1536, free 3840+996160", BlocksOn(2));
    EXPECT_EQ(0x06, GroupOfId(0).level);
    EXPECT_EQ(0x06, VirtualDiskOf(0).level);
}

TEST_F(LivingMove, ReturnsToWhatItWasWhenItIsAborted) {
    const std::string before = BlocksOn(0);
    EXPECT_EQ(HX_SUCCESS, Move(GroupOn(0, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ(HX_SUCCESS, Control(adapter(), kNow, Owner::kDiskGroup, 0, ControlAction::kAbort));
    EXPECT_EQ(before, BlocksOn(0));
    EXPECT_EQ("free 0+1000000", BlocksOn(3));
    EXPECT_THAT(Serving(Owner::kDiskGroup, 0), ElementsAre(0, 1, 2));
    EXPECT_EQ(3, GroupOfId(0).width);
}

TEST_F(LivingMove, KeepsOthersOffItsNewDisks) {
    EXPECT_EQ(HX_SUCCESS, Move(GroupOn(0, 0x05, {0, 1, 2, 3})));
    Create_LD_Param alone = WantedOn(0x00, {3}, 128);
    EXPECT_EQ(Status::kDiskTaken, CreateVirtualDisk(adapter(), kNow, alone));
    EXPECT_EQ(Status::kDiskTaken, Refusal(GroupOn(HX_NEW_ID, 0x01, {3, 4})));
}

TEST_F(LivingMove, LeavesAloneWhatLiesOnTheGroup) {
    EXPECT_EQ(HX_SUCCESS, Move(GroupOn(0, 0x05, {0, 1, 2, 3})));
    const std::string before = Everything();
    EXPECT_EQ(Status::kBusy, DeleteVirtualDisk(adapter(), kNow, 0, false));
    EXPECT_EQ(before, Everything());
    EXPECT_EQ(Status::kBusy, Refusal(InSlot(0, 0x05, 2, 1024)));
    EXPECT_EQ(Status::kBusy, RefusedMove(GroupOn(0, 0x05, {0, 1, 2, 3, 4})));
}

TEST_F(LivingMove, OfAnEmptyGroupIsDoneAtOnce) {
    Made(GroupOn(HX_NEW_ID, 0x01, {4, 5}));
    EXPECT_EQ(HX_SUCCESS, Move(GroupOn(1, 0x05, {4, 5, 6})));
    EXPECT_EQ(0x05, GroupOfId(1).level);
    EXPECT_THAT(Serving(Owner::kDiskGroup, 1), ElementsAre(4, 5, 6));
    EXPECT_THAT(adapter().activities, IsEmpty());
}

TEST_F(LivingMove, IsRefusedWhereItCannotBe) {
    DiskOf(4).spare = Spare::kGroup;
    DiskOf(4).spare_group = 0;
    AddDisk(20, 700);  // too small even for the first virtual disk
    EXPECT_EQ(Status::kNoDiskGroup, RefusedMove(GroupOn(9, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ(Status::kNoChange, RefusedMove(GroupOn(0, 0x05, {2, 1, 0})));
    EXPECT_EQ(Status::kBadLevel, RefusedMove(GroupOn(0, 0x07, {0, 1, 2})));
    EXPECT_EQ(Status::kBadDiskCount, RefusedMove(GroupOn(0, 0x05, {0, 1})));
    EXPECT_EQ(Status::kDiskTaken, RefusedMove(GroupOn(0, 0x05, {0, 1, 2, 4})));
    EXPECT_EQ(Status::kTooSmall, RefusedMove(GroupOn(0, 0x05, {0, 1, 20})));
    CreateOrModify_DG_Param sectors = GroupOn(0, 0x05, {0, 1, 2, 3});
    sectors.BlockSize = 4096;
    EXPECT_EQ(Status::kBadSectorSize, RefusedMove(sectors));
}

TEST_F(LivingMove, IsRefusedWhereSomethingIsLostOrGoesOn) {
    Activity check;
    check.kind = ActivityKind::kCheck;
    check.owner = 0;
    check.total = 512;
    const HX_U16 id = Start(adapter(), kNow, check).id;
    EXPECT_EQ(Status::kBusy, RefusedMove(GroupOn(0, 0x05, {0, 1, 2, 3})));
    Abort(adapter(), kNow, id);
    DiskOf(1).failed = true;
    Settle(adapter(), kNow);
    EXPECT_EQ(Status::kWrongState, RefusedMove(GroupOn(0, 0x05, {0, 1, 2, 3})));
}

TEST_F(LivingMove, IsRefusedWhereBlocksFindNoPlace) {
    // Its blocks of 498176 sectors become blocks of 996224, and about 500000 are free.
    Made(InSlot(0, 0x05, 2, 996224));
    EXPECT_EQ(Status::kNoSpace, RefusedMove(GroupOn(0, 0x06, {0, 1, 2})));
}

TEST_F(LivingMove, IsRefusedWhereTooManyBlocksAre) {
    adapter().info.MaxBlockPerPD = 4;  // two virtual disks, two ends to come, and what is free
    EXPECT_EQ(Status::kTooManyBlocks, RefusedMove(GroupOn(0, 0x05, {0, 1, 2, 3})));
    adapter().info.MaxBlockPerPD = 5;
    EXPECT_EQ(HX_SUCCESS, Move(GroupOn(0, 0x05, {0, 1, 2, 3})));
    Finish();
}

// ---- The end ----

TEST_F(LivingMove, EndsWithTheGroup) {
    DiskOf(4).spare = Spare::kGroup;
    DiskOf(4).spare_group = 0;
    EXPECT_EQ(HX_SUCCESS, Move(GroupOn(0, 0x05, {0, 1, 2, 3})));
    adapter().events.clear();
    EXPECT_EQ(HX_SUCCESS, DeleteDiskGroup(adapter(), kNow, 0));
    EXPECT_THAT(adapter().disk_groups, IsEmpty());
    EXPECT_THAT(adapter().virtual_disks, IsEmpty());
    EXPECT_THAT(adapter().homes, IsEmpty());
    EXPECT_THAT(adapter().activities, IsEmpty());
    EXPECT_EQ("free 0+1000000", BlocksOn(0));
    EXPECT_EQ("free 0+1000000", BlocksOn(3));
    EXPECT_EQ(Spare::kNone, DiskOf(4).spare);
    EXPECT_THAT(Events(), ElementsAre("1/84 of 0", "1/84 of 1", "1/3 of 0", "1/3 of 1", "2/10 of 4",
                                      "13/1 of 0"));
    EXPECT_EQ(Status::kNoDiskGroup, DeleteDiskGroup(adapter(), kNow, 0));
}

// ---- Records ----

TEST_F(LivingSlots, AreDescribedWithTheirGroup) {
    DiskOf(6).spare = DiskOf(4).spare = Spare::kGroup;
    DiskOf(6).spare_group = DiskOf(4).spare_group = 0;
    const DG_Info info = Info();
    EXPECT_EQ(0, info.DGID);
    EXPECT_EQ(0x05, info.RaidMode);
    EXPECT_EQ(0, info.SubVDCount);
    EXPECT_EQ(1, info.NumParityDisk);
    EXPECT_EQ(64, info.StripeBlockSize);
    EXPECT_EQ(512u, info.BlockSize);
    EXPECT_EQ(State::kOptimal, info.Status);
    EXPECT_EQ(3, info.PDCount);
    EXPECT_THAT(Ids(info.PDIDs, info.PDIDs + 4), ElementsAre(0, 1, 2, 0));
    EXPECT_EQ(2, info.SparePDCount);
    EXPECT_THAT(info.SparePDIDs, ElementsAre(4, 6, 0, 0, 0, 0, 0, 0));
}

}  // namespace
}  // namespace hxsim
