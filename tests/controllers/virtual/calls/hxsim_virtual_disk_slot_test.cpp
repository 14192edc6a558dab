// Virtual disks in the slots of disk groups: made and changed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <string>

#include "calls/hxsim_activity_control.h"
#include "calls/hxsim_disk_group_record.h"
#include "calls/hxsim_virtual_disk_change.h"
#include "calls/hxsim_virtual_disk_create.h"
#include "controllers/virtual/support/array_test.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_codes.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_migration.h"

namespace hxsim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using SlotOfADiskGroup = SlotTest;

TEST_F(SlotOfADiskGroup, HoldVirtualDisksOfTheGroupsLevel) {
    CreateOrModify_VD_Param param = InSlot(0, 0x05, 3, 1000);
    std::memcpy(param.Name, "SIXTEEN LETTERS!", 16);
    param.CachePolicy = 0x05;
    param.SectorCoefficient = 4;
    param.InitializationOption = NumberOf(Init::kBackground);
    EXPECT_EQ(1024u, Made(param).Size.value);  // eight stripes of 128 sectors
    const VirtualDisk& made = virtual_disk(0);
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

TEST_F(SlotOfADiskGroup, GetWhatRemains) {
    Made(InSlot(0, 0x05, 0, 1024));
    // 999488 sectors of each disk are left, 7808 stripes of 128.
    EXPECT_EQ(1998848u, DescribedGroup().RemainingManagedSpace.value);
    EXPECT_EQ(1998848u, Made(InSlot(0, 0x05, 1)).Size.value);
    EXPECT_EQ(0u, DescribedGroup().RemainingManagedSpace.value);
    EXPECT_EQ(Status::kNoSpace, Refusal(InSlot(0, 0x05, 2)));
}

TEST_F(SlotOfADiskGroup, HaveStripesOfTheirOwn) {
    CreateOrModify_VD_Param param = InSlot(0, 0x05, 0, 1024);
    param.StripeBlockSize = 256;
    Made(param);
    EXPECT_EQ(256, virtual_disk(0).stripe_kib);
    EXPECT_EQ("vd0.0 0+512, free 512+999488", BlocksOn(0));
}

TEST_F(SlotOfADiskGroup, AreFilledWhereARunIsLongEnough) {
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
    Status status;
    void (*change)(CreateOrModify_VD_Param&, Adapter&);
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

class RefusedSlot : public SlotOfADiskGroup, public testing::WithParamInterface<RefusedSlotCase> {
    void TearDown() override {}  // what was changeed is no machine to go on with
};

TEST_P(RefusedSlot, ChangesNothing) {
    Made(InSlot(0, 0x05, 0, 1024));
    CreateOrModify_VD_Param param = InSlot(0, 0x05, 1, 1024);
    GetParam().change(param, adapter());
    EXPECT_EQ(GetParam().status, Refusal(param));
}

std::string SlotName(const testing::TestParamInfo<RefusedSlotCase>& info) {
    return info.param.name;
}
INSTANTIATE_TEST_SUITE_P(Each, RefusedSlot, testing::ValuesIn(kRefusedSlots), SlotName);

CreateOrModify_VD_Param Change(HX_U16 id, uint64_t size) {
    CreateOrModify_VD_Param param = InSlot(0, 0, 0, size);
    param.VDID = id;
    return param;
}

TEST_F(SlotOfADiskGroup, RenameTheirVirtualDisksAndSetTheirCaches) {
    Made(InSlot(0, 0x05, 4, 1024));
    adapter().events.clear();
    CreateOrModify_VD_Param param = Change(0, 0);
    std::strcpy(param.Name, "OTHER");
    param.CachePolicy = 0x01;
    EXPECT_EQ(1024u, Made(param).Size.value);
    EXPECT_EQ("OTHER", virtual_disk(0).name);
    EXPECT_EQ(0x01, virtual_disk(0).cache);
    EXPECT_EQ(4, virtual_disk(0).slot);
    EXPECT_THAT(Events(), ElementsAre("1/6 of 0"));
}

TEST_F(SlotOfADiskGroup, LetTheirVirtualDisksGrowIntoWhatFollows) {
    Made(InSlot(0, 0x05, 0, 1024));
    EXPECT_EQ(2048u, Made(Change(0, 2000)).Size.value);
    EXPECT_EQ(2048u, virtual_disk(0).size);
    EXPECT_EQ("vd0.2 0+1024, free 1024+998976", BlocksOn(2));
}

TEST_F(SlotOfADiskGroup, DoNotLetThemGrowOverOthers) {
    Made(InSlot(0, 0x05, 0, 1024));
    Made(InSlot(0, 0x05, 1, 1024));
    EXPECT_EQ(Status::kNoSpace, Refusal(Change(0, 1025)));
    EXPECT_EQ(Status::kTooSmall, Refusal(Change(1, 1023)));
    CreateOrModify_VD_Param cache = Change(0, 0);
    cache.CachePolicy = 0x02;
    EXPECT_EQ(Status::kBadValue, Refusal(cache));
}

TEST_F(SlotOfADiskGroup, DoNotLetThemGrowWhileSomethingGoesOn) {
    CreateOrModify_VD_Param param = InSlot(0, 0x05, 0, 1024);
    param.InitializationOption = NumberOf(Init::kBackground);
    Made(param);
    EXPECT_EQ(Status::kBusy, Refusal(Change(0, 2048)));
}

TEST_F(SlotOfADiskGroup, DoNotChangeVirtualDisksOfOthers) {
    Create_LD_Param alone = WantedOn(0x00, {5}, 128);
    EXPECT_EQ(HX_SUCCESS, CreateVirtualDisk(adapter(), kNow, alone));
    EXPECT_EQ(Status::kNoVirtualDisk, Refusal(Change(alone.LDID, 0)));
}

TEST_F(SlotOfADiskGroup, DoNotMoveTheirVirtualDisksAlone) {
    Made(InSlot(0, 0x05, 0, 1024));
    Create_LD_Param param = WantedOn(0x00, {5, 6});
    param.LDID = 0;
    EXPECT_EQ(Status::kOnDiskGroup, StartMigration(adapter(), kNow, param));
    EXPECT_EQ(Status::kOnDiskGroup, SizeMigration(adapter(), param));
}

TEST_F(SlotOfADiskGroup, TakeNothingNewWhileTheGroupIsRebuilt) {
    Made(InSlot(0, 0x05, 0, 1024));
    disk(7).spare = Spare::kGlobal;
    disk(1).failed = true;
    Settle(adapter(), kNow);
    EXPECT_EQ(Status::kBusy, Refusal(InSlot(0, 0x05, 1, 1024)));
    Finish();
    Made(InSlot(0, 0x05, 1, 1024));
    EXPECT_EQ("vd0.1 0+512, vd1.1 512+512, free 1024+998976", BlocksOn(7));
}

}  // namespace
}  // namespace hxsim
