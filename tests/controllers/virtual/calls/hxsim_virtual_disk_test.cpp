// Virtual disks on disks of their own: made, set, imported, moved and deleted.
#include "calls/hxsim_virtual_disk_change.h"
#include "calls/hxsim_virtual_disk_create.h"
#include "calls/hxsim_virtual_disk_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <string>

#include "calls/hxsim_activity_control.h"
#include "codes/activity.h"
#include "codes/state.h"
#include "codes/status.h"
#include "codes/virtual_disk.h"
#include "controllers/virtual/support/living_machine.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_disk_role.h"
#include "model/hxsim_home.h"
#include "model/hxsim_redundancy.h"
#include "model/hxsim_space.h"
#include "rules/hxsim_migration.h"
#include "rules/hxsim_settle.h"

namespace hxsim {
namespace {

using hxcodes::ActivityKind;
using hxcodes::ActivityState;
using hxcodes::CacheBit;
using hxcodes::ControlAction;
using hxcodes::Init;
using hxcodes::Rounding;
using hxcodes::State;
using hxcodes::Status;
using testing::ElementsAre;
using testing::IsEmpty;

class LivingVirtualDisk : public LivingMachine {
protected:
    /// Makes one that has to succeed and returns what was answered.
    Create_LD_Param Made(Create_LD_Param param) {
        EXPECT_EQ(HX_SUCCESS, CreateVirtualDisk(adapter(), kNow, param));
        Settle(adapter(), kNow);
        return param;
    }

    /// The refusal of one; nothing has changed, what was asked for included.
    int Refusal(Create_LD_Param param) {
        const Create_LD_Param asked = param;
        const std::string before = Everything();
        const HX_U8 status = CreateVirtualDisk(adapter(), kNow, param);
        EXPECT_EQ(before, Everything());
        EXPECT_EQ(0, std::memcmp(&asked, &param, sizeof param));
        return status;
    }

    Create_LD_Param MovedTo(HX_U16 id, HX_U8 level, const Ids& disks, uint64_t size = 0) {
        Create_LD_Param param = WantedOn(level, disks, size);
        param.LDID = id;
        return param;
    }

    int Move(const Create_LD_Param& asked) {
        Create_LD_Param param = asked;
        const HX_U8 status = StartMigration(adapter(), kNow, param);
        if (status == HX_SUCCESS) Settle(adapter(), kNow);
        return status;
    }

    int RefusedMove(Create_LD_Param param) {
        const std::string before = Everything();
        const HX_U8 status = StartMigration(adapter(), kNow, param);
        EXPECT_EQ(before, Everything());
        return status;
    }

    uint64_t MostAfterMove(Create_LD_Param param) {
        param.Size.value = 1;  // not looked at
        EXPECT_EQ(HX_SUCCESS, SizeMigration(adapter(), param));
        return param.Size.value;
    }
};

// ---- Sizes ----

struct SizeCase {
    const char* name;
    HX_U8 level;
    HX_U16 disks;
    HX_U8 legs;
    HX_U16 stripe_kib;
    uint64_t sectors;
};
void PrintTo(const SizeCase& each, std::ostream* out) { *out << each.name; }

// Of 1000000 sectors, 7812 stripes of 64 KiB make 999936, 31250 of 16 KiB make 1000000 and 1953 of
// 256 KiB make 999936.
const SizeCase kSizes[] = {
    {"Raid0OnOne", 0x00, 1, 0, 64, 999936},
    {"Raid0OnEight", 0x00, 8, 0, 64, 7999488},
    {"Raid0OfSmallStripes", 0x00, 1, 0, 16, 1000000},
    {"Raid0OfLargeStripes", 0x00, 1, 0, 256, 999936},
    {"Raid0OfUsualStripes", 0x00, 1, 0, 0, 999936},
    {"Raid1", 0x01, 2, 0, 64, 999936},
    {"Raid10OnFour", 0x10, 4, 0, 64, 1999872},
    {"Raid1eOnThree", 0x11, 3, 0, 64, 1499904},  // 11718 stripes
    {"Raid1eOnSeven", 0x11, 7, 0, 64, 3499776},
    {"Raid5OnThree", 0x05, 3, 0, 64, 1999872},
    {"Raid6OnThree", 0x06, 3, 0, 64, 999936},
    {"Raid6OnFive", 0x06, 5, 0, 64, 2999808},
    {"Raid50OnSix", 0x50, 6, 0, 64, 3999744},
    {"Raid60OnEight", 0x60, 8, 2, 64, 3999744},
};

class SizeOfLivingVirtualDisk : public LivingVirtualDisk,
                                public testing::WithParamInterface<SizeCase> {};

TEST_P(SizeOfLivingVirtualDisk, IsWhatWasSaidBefore) {
    Ids disks;
    for (HX_U16 id = 0; id < GetParam().disks; ++id) disks.push_back(id);
    Create_LD_Param param = WantedOn(GetParam().level, disks);
    param.SubLDCount = GetParam().legs;
    param.StripeBlockSize = GetParam().stripe_kib;
    Create_LD_Param sized = param;
    EXPECT_EQ(HX_SUCCESS, SizeVirtualDisk(adapter(), sized));
    EXPECT_EQ(GetParam().sectors, sized.Size.value);
    EXPECT_EQ(GetParam().sectors, Made(param).Size.value);
    EXPECT_EQ(GetParam().sectors, VirtualDiskOf(0).size);
}

std::string SizeName(const testing::TestParamInfo<SizeCase>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Each, SizeOfLivingVirtualDisk, testing::ValuesIn(kSizes), SizeName);

TEST_F(LivingVirtualDisk, TakesNoMoreThanTheSizeThatIsAskedFor) {
    // 1000 sectors on two disks of data are 7.8 stripes: four stripes on each, 1024 sectors in all.
    const Create_LD_Param param = Made(WantedOn(0x05, {0, 1, 2}, 1000));
    EXPECT_EQ(1024u, param.Size.value);
    EXPECT_EQ("vd0.0 0+512, free 512+999488", BlocksOn(0));
    EXPECT_EQ("vd0.2 0+512, free 512+999488", BlocksOn(2));
}

TEST_F(LivingVirtualDisk, CanHaveAllThatFitsAndNotASectorMore) {
    EXPECT_EQ(Status::kNoSpace, Refusal(WantedOn(0x00, {0, 1}, 1999873)));
    EXPECT_EQ(Status::kNoSpace, Refusal(WantedOn(0x01, {0, 1}, UINT64_MAX)));
    EXPECT_EQ(1999872u, Made(WantedOn(0x00, {0, 1}, 1999872)).Size.value);
}

TEST_F(LivingVirtualDisk, IsRoundedDownToGibibytes) {
    // 5000000 sectors are 2.38 GiB; two of them are 4194304 sectors, 32768 stripes of 64 KiB.
    AddDisk(20, 5000000);
    Create_LD_Param param = WantedOn(0x00, {20});
    param.RoundingScheme = Rounding::kTo1GiB;
    EXPECT_EQ(4194304u, Made(param).Size.value);
    EXPECT_EQ("vd0.0 0+4194304, free 4194304+805696", BlocksOn(20));
}

TEST_F(LivingVirtualDisk, RoundsWhatIsAskedForDownAsWell) {
    AddDisk(20, 5000000);
    Create_LD_Param param = WantedOn(0x00, {20}, 3000000);  // 1.43 GiB
    param.RoundingScheme = Rounding::kTo1GiB;
    EXPECT_EQ(2097152u, Made(param).Size.value);
}

TEST_F(LivingVirtualDisk, OfLessThanItIsRoundedToIsRefused) {
    AddDisk(20, 5000000);
    Create_LD_Param param = WantedOn(0x00, {20}, 2000000);
    param.RoundingScheme = Rounding::kTo1GiB;
    EXPECT_EQ(Status::kBadValue, Refusal(param));
    param.Size.value = 0;
    param.RoundingScheme = Rounding::kTo10GiB;
    EXPECT_EQ(Status::kNoSpace, Refusal(param));
}

TEST_F(LivingVirtualDisk, LiesWhereTheFirstRunIsLongEnough) {
    Made(WantedOn(0x00, {0}, 128000));
    Made(WantedOn(0x00, {0}, 256000));
    EXPECT_EQ(HX_SUCCESS, DeleteVirtualDisk(adapter(), kNow, 0, false));
    Made(WantedOn(0x00, {0}, 256000));
    EXPECT_EQ("free 0+128000, vd1.0 128000+256000, vd0.0 384000+256000, free 640000+360000",
              BlocksOn(0));
}

// ---- What is made ----

TEST_F(LivingVirtualDisk, HasWhatItWasMadeWith) {
    Create_LD_Param param = WantedOn(0x50, {7, 1, 2, 3, 4, 5}, 4096);
    std::memcpy(param.Name, "SIXTEEN LETTERS!", 16);
    param.CachePolicy = 0x05;
    param.SectorCoefficient = 8;
    param.StripeBlockSize = 128;
    EXPECT_EQ(0, Made(param).LDID);
    const VirtualDisk& made = VirtualDiskOf(0);
    EXPECT_EQ("SIXTEEN LETTERS!", made.name);
    EXPECT_EQ(0x50, made.level);
    EXPECT_EQ(2, made.legs);
    EXPECT_EQ(6, made.width);
    EXPECT_EQ(128, made.stripe_kib);
    EXPECT_EQ(0x05, made.cache);
    EXPECT_EQ(8, made.coefficient);
    EXPECT_EQ(kNoId, made.group);
    EXPECT_TRUE(made.auto_rebuild);
    EXPECT_FALSE(made.initialised);
    EXPECT_THAT(Serving(Owner::kVirtualDisk, 0), ElementsAre(7, 1, 2, 3, 4, 5));
    EXPECT_EQ("vd0.0 0+1024, free 1024+998976", BlocksOn(7));
}

TEST_F(LivingVirtualDisk, TellsThatItWasMade) {
    Made(WantedOn(0x00, {0}));
    EXPECT_THAT(Events(), ElementsAre("1/2 of 0"));
}

TEST_F(LivingVirtualDisk, HasTheFirstFreeNumber) {
    Made(WantedOn(0x00, {0}, 128));
    Made(WantedOn(0x00, {0}, 128));
    Made(WantedOn(0x00, {0}, 128));
    EXPECT_EQ(HX_SUCCESS, DeleteVirtualDisk(adapter(), kNow, 1, false));
    EXPECT_EQ(1, Made(WantedOn(0x00, {0}, 128)).LDID);
}

TEST_F(LivingVirtualDisk, IsInitialisedAsAskedFor) {
    const HX_U8 kinds[][2] = {{Init::kQuick, ActivityKind::kInitQuick},
                              {Init::kForeground, ActivityKind::kInitForeground},
                              {Init::kBackground, ActivityKind::kInitBackground}};
    for (const auto& [option, kind] : kinds) {
        Create_LD_Param param = WantedOn(0x05, {0, 1, 2}, 25600);
        param.InitializationOption = option;
        const HX_U16 id = Made(param).LDID;
        const Activity* const init = ActivityOf(adapter(), Owner::kVirtualDisk, id);
        ASSERT_NE(nullptr, init);
        EXPECT_EQ(kind, init->kind);
    }
    Finish();
    EXPECT_THAT(adapter().activities, IsEmpty());
    EXPECT_TRUE(VirtualDiskOf(0).initialised);
}

TEST_F(LivingVirtualDisk, CanBeMadeOnWhatAnotherLeaves) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    // 999488 sectors are 7808 stripes and 64 sectors.
    EXPECT_EQ(1998848u, Made(WantedOn(0x00, {0, 1})).Size.value);
    EXPECT_EQ("vd0.0 0+512, vd1.0 512+999424, free 999936+64", BlocksOn(0));
}

struct QuickCase {
    const char* name;
    HX_U16 disks;
    HX_U8 level;
    uint64_t sectors;
};
void PrintTo(const QuickCase& each, std::ostream* out) { *out << each.name; }

// What is asked for when somebody wants redundancy from all free disks, as many as there are.
const QuickCase kQuick[] = {
    {"TwoDisks", 2, 0x01, 999936},   {"ThreeDisks", 3, 0x06, 999936},
    {"FourDisks", 4, 0x10, 1999872}, {"FiveDisks", 5, 0x06, 2999808},
    {"SixDisks", 6, 0x60, 1999872},
};

class QuickLivingVirtualDisk : public LivingVirtualDisk,
                               public testing::WithParamInterface<QuickCase> {};

TEST_P(QuickLivingVirtualDisk, IsMade) {
    Ids disks;
    for (HX_U16 id = 0; id < GetParam().disks; ++id) disks.push_back(id);
    Create_LD_Param param = WantedOn(GetParam().level, disks);
    param.StripeBlockSize = 64;
    param.CachePolicy = CacheBit::kReadAhead;
    param.InitializationOption = Init::kQuick;
    param.NumParityDisk = GetParam().level == 0x60 ? 4 : 2;
    std::strcpy(param.Name, "NEW_VD");
    EXPECT_EQ(GetParam().sectors, Made(param).Size.value);
    Finish();
    EXPECT_TRUE(VirtualDiskOf(0).initialised);
}

std::string QuickName(const testing::TestParamInfo<QuickCase>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Of, QuickLivingVirtualDisk, testing::ValuesIn(kQuick), QuickName);

// ---- Records ----

TEST_F(LivingVirtualDisk, IsDescribed) {
    Create_LD_Param param = WantedOn(0x60, {0, 1, 2, 3, 4, 5}, 1024);
    param.CachePolicy = 0x05;
    std::memcpy(param.Name, "SIXTEEN LETTERS!", 16);
    Made(param);
    const LD_Info info = DescribeVirtualDisk(adapter(), VirtualDiskOf(0));
    EXPECT_EQ(0, info.ID);
    EXPECT_EQ(255, info.DGID);
    EXPECT_EQ(State::kOptimal, info.Status);
    EXPECT_EQ(0, info.BGAStatus);
    EXPECT_EQ(64, info.StripeBlockSize);
    EXPECT_EQ(0x60, info.RaidMode);
    EXPECT_EQ(6, info.HDCount);
    EXPECT_EQ(0x05, info.CacheMode);
    EXPECT_EQ(1, info.SectorCoefficient);
    EXPECT_EQ(1024u, info.Size.value);
    EXPECT_EQ(0, std::memcmp("SIXTEEN LETTERS!", info.Name, 16));
    EXPECT_THAT(Ids(info.BlockIDs, info.BlockIDs + 7), ElementsAre(0, 1, 2, 3, 4, 5, 0));
    EXPECT_EQ(2, info.SubLDCount);
    EXPECT_EQ(4, info.NumParityDisk);
}

TEST_F(LivingVirtualDisk, HasNoBlockWhereADiskIsLost) {
    adapter().config.AutoRebuildOn = 0;
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    ResetDisk(adapter(), 1);
    HomeOf(adapter(), Owner::kVirtualDisk, 0, 1)->disk = kNoId;
    Settle(adapter(), kNow);
    const LD_Info info = DescribeVirtualDisk(adapter(), VirtualDiskOf(0));
    EXPECT_THAT(Ids(info.BlockIDs, info.BlockIDs + 3), ElementsAre(0, 65535, 2));
    EXPECT_EQ(State::kDegraded, info.Status);
}

TEST_F(LivingVirtualDisk, TellsWhatItIsDoing) {
    Create_LD_Param param = WantedOn(0x00, {0}, 409600);
    param.InitializationOption = Init::kBackground;
    Made(param);  // 204800 sectors a second
    const LD_Status status = DescribeStatus(adapter(), VirtualDiskOf(0), kNow + 500);
    EXPECT_EQ(ActivityKind::kInitBackground, status.Bga);
    EXPECT_EQ(25, status.BgaPercentage);
    EXPECT_EQ(ActivityState::kRunning, status.BgaState);
    EXPECT_EQ(ActivityKind::kInitBackground,
              DescribeVirtualDisk(adapter(), VirtualDiskOf(0)).BGAStatus);
    Finish();
    const LD_Status idle = DescribeStatus(adapter(), VirtualDiskOf(0), kNow);
    EXPECT_EQ(0, idle.Bga);
    EXPECT_EQ(0, idle.BgaPercentage);
    EXPECT_EQ(0, idle.BgaState);
}

TEST_F(LivingVirtualDisk, ShowsThatWriteThroughIsForced) {
    Create_LD_Param param = WantedOn(0x00, {0}, 128);
    param.CachePolicy = 0x05;
    Made(param);
    param = WantedOn(0x00, {0}, 128);
    param.CachePolicy = 0x04;
    Made(param);
    Battery battery;
    battery.present = false;
    battery.info = {};
    adapter().batteries.push_back(battery);
    EXPECT_EQ(0x85, DescribeVirtualDisk(adapter(), VirtualDiskOf(0)).CacheMode);
    EXPECT_EQ(0x85, DescribeSettings(adapter(), VirtualDiskOf(0)).CacheMode);
    EXPECT_EQ(0x04, DescribeVirtualDisk(adapter(), VirtualDiskOf(1)).CacheMode);
}

// ---- What is not made ----

struct RefusedCase {
    const char* name;
    HX_U8 status;
    HX_U8 level;
    Ids disks;
    void (*spoil)(Create_LD_Param&, Adapter&) = [](Create_LD_Param&, Adapter&) {};
};
void PrintTo(const RefusedCase& each, std::ostream* out) { *out << each.name; }

Disk& DiskIn(Adapter& adapter, HX_U16 id) { return *Find(adapter.disks, id); }

const RefusedCase kRefused[] = {
    {"LevelThatIsNone", Status::kBadLevel, 0x07, {0, 1, 2}},
    {"LevelThatTheAdapterLacks",
     Status::kBadLevel,
     0x11,
     {0, 1, 2},
     [](auto&, auto& a) { a.info.LogicalDriverMode = 0x0177; }},
    {"StripeThatIsTooLarge",
     Status::kBadStripeSize,
     0x00,
     {0},
     [](auto& p, auto&) { p.StripeBlockSize = 512; }},
    {"StripeThatIsNoPowerOfTwo",
     Status::kBadStripeSize,
     0x00,
     {0},
     [](auto& p, auto&) { p.StripeBlockSize = 48; }},
    {"RoundingThatIsNone",
     Status::kBadRounding,
     0x00,
     {0},
     [](auto& p, auto&) { p.RoundingScheme = 3; }},
    {"NoDisks", Status::kBadDiskCount, 0x00, {}},
    {"EvenDisksOfRaid1e", Status::kBadDiskCount, 0x11, {0, 1, 2, 3}},
    {"MoreDisksThanTheRecordHolds",
     Status::kBadDiskCount,
     0x00,
     {0},
     [](auto& p, auto&) { p.HDCount = 129; }},
    {"MoreDisksThanTheAdapterJoins",
     Status::kBadDiskCount,
     0x00,
     {0, 1, 2},
     [](auto&, auto& a) { a.info.MaxPDPerVD = 2; }},
    {"MoreParityThanTheAdapterKeeps",
     Status::kBadDiskCount,
     0x60,
     {0, 1, 2, 3, 4, 5},
     [](auto&, auto& a) { a.info.MaxParityDisks = 3; }},
    {"DiskThatIsNotThere", Status::kNoDisk, 0x00, {0, 99}},
    {"DiskTwice", Status::kDiskRepeated, 0x00, {0, 1, 0}},
    {"FailedDisk",
     Status::kDiskNotReady,
     0x00,
     {0, 1},
     [](auto&, auto& a) { DiskIn(a, 1).failed = true; }},
    {"MissingDisk",
     Status::kDiskNotReady,
     0x00,
     {0, 1},
     [](auto&, auto& a) { DiskIn(a, 1).present = false; }},
    {"OfflineDisk",
     Status::kDiskNotReady,
     0x00,
     {0, 1},
     [](auto&, auto& a) { DiskIn(a, 1).offline = true; }},
    {"ForeignDisk",
     Status::kDiskNotReady,
     0x00,
     {0, 1},
     [](auto&, auto& a) { DiskIn(a, 1).foreign = true; }},
    {"Spare",
     Status::kDiskTaken,
     0x00,
     {0, 1},
     [](auto&, auto& a) { DiskIn(a, 1).spare = Spare::kGlobal; }},
    {"DiskWithASystem",
     Status::kHoldsSystem,
     0x00,
     {0, 1},
     [](auto&, auto& a) { DiskIn(a, 1).has_system = true; }},
    {"OneMoreThanTheAdapterHas",
     Status::kTooManyVirtualDisks,
     0x00,
     {0, 1},
     [](auto&, auto& a) { a.info.MaxLogicalDrive = 0; }},
    {"OneBlockMoreThanADiskHas",
     Status::kTooManyBlocks,
     0x00,
     {0},
     [](auto&, auto& a) { a.info.MaxBlockPerPD = 1; }},
    {"CacheThatIsNone", Status::kBadValue, 0x00, {0}, [](auto& p, auto&) { p.CachePolicy = 0x02; }},
    {"SectorsOfThree",
     Status::kBadValue,
     0x00,
     {0},
     [](auto& p, auto&) { p.SectorCoefficient = 3; }},
    {"SectorsOfSixteen",
     Status::kBadValue,
     0x00,
     {0},
     [](auto& p, auto&) { p.SectorCoefficient = 16; }},
    {"InitialisationThatIsNone",
     Status::kBadAction,
     0x00,
     {0},
     [](auto& p, auto&) { p.InitializationOption = 4; }},
};

class RefusedLivingVirtualDisk : public LivingVirtualDisk,
                                 public testing::WithParamInterface<RefusedCase> {
    void TearDown() override {}  // what was spoiled is no machine to go on with
};

TEST_P(RefusedLivingVirtualDisk, ChangesNothing) {
    Create_LD_Param param = WantedOn(GetParam().level, GetParam().disks);
    GetParam().spoil(param, adapter());
    EXPECT_EQ(int{GetParam().status}, Refusal(param));
}

std::string RefusedName(const testing::TestParamInfo<RefusedCase>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Each, RefusedLivingVirtualDisk, testing::ValuesIn(kRefused), RefusedName);

TEST_F(LivingVirtualDisk, IsNotMadeOfLessThanAStripe) {
    Made(WantedOn(0x00, {0}));  // 64 sectors are left
    EXPECT_EQ(Status::kNoSpace, Refusal(WantedOn(0x00, {0})));
    EXPECT_EQ(Status::kNoSpace, Refusal(WantedOn(0x00, {0, 1})));
}

TEST_F(LivingVirtualDisk, IsNotMadeOnDisksOfADiskGroup) {
    adapter().disk_groups.push_back({});
    adapter().disk_groups[0].level = 0x01;
    adapter().disk_groups[0].width = 2;
    adapter().homes = {{Owner::kDiskGroup, 0, 0, 3, 3}, {Owner::kDiskGroup, 0, 1, 4, 4}};
    EXPECT_EQ(Status::kDiskTaken, Refusal(WantedOn(0x00, {2, 3})));
}

// ---- Settings ----

LD_Config Settings(const char* name, HX_U8 cache, HX_BOOLEAN rebuild) {
    LD_Config config{};
    std::strncpy(config.Name, name, sizeof config.Name);
    config.CacheMode = cache;
    config.AutoRebuildOn = rebuild;
    return config;
}

TEST_F(LivingVirtualDisk, IsSet) {
    Made(WantedOn(0x00, {0}));
    adapter().events.clear();
    EXPECT_EQ(HX_SUCCESS, SetVirtualDisk(adapter(), kNow, 0, Settings("OTHER", 0x05, 0)));
    EXPECT_EQ("OTHER", VirtualDiskOf(0).name);
    EXPECT_EQ(0x05, VirtualDiskOf(0).cache);
    EXPECT_FALSE(VirtualDiskOf(0).auto_rebuild);
    EXPECT_THAT(Events(), ElementsAre("1/6 of 0"));
}

TEST_F(LivingVirtualDisk, TellsNothingOfACacheThatStaysAsItIs) {
    Made(WantedOn(0x00, {0}));
    adapter().events.clear();
    EXPECT_EQ(HX_SUCCESS, SetVirtualDisk(adapter(), kNow, 0, Settings("OTHER", 0x80, 1)));
    EXPECT_EQ(0x00, VirtualDiskOf(0).cache);
    EXPECT_THAT(Events(), IsEmpty());
}

TEST_F(LivingVirtualDisk, IsNotSetToWhatIsNone) {
    Made(WantedOn(0x00, {0}));
    const std::string before = Everything();
    EXPECT_EQ(Status::kNoVirtualDisk, SetVirtualDisk(adapter(), kNow, 1, Settings("X", 0, 1)));
    EXPECT_EQ(Status::kBadValue, SetVirtualDisk(adapter(), kNow, 0, Settings("X", 0x10, 1)));
    EXPECT_EQ(before, Everything());
}

// ---- The end ----

TEST_F(LivingVirtualDisk, LeavesItsDisksFreeWhenItIsDeleted) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    DiskOf(0).has_mbr = DiskOf(3).has_mbr = true;
    adapter().events.clear();
    EXPECT_EQ(HX_SUCCESS, DeleteVirtualDisk(adapter(), kNow, 0, false));
    EXPECT_THAT(adapter().virtual_disks, IsEmpty());
    EXPECT_THAT(adapter().homes, IsEmpty());
    EXPECT_EQ("free 0+1000000", BlocksOn(0));
    EXPECT_TRUE(DiskOf(0).has_mbr);
    EXPECT_THAT(Events(), ElementsAre("1/3 of 0"));
}

TEST_F(LivingVirtualDisk, TakesTheMasterBootRecordsWithIt) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    DiskOf(0).has_mbr = DiskOf(3).has_mbr = true;
    EXPECT_EQ(HX_SUCCESS, DeleteVirtualDisk(adapter(), kNow, 0, true));
    EXPECT_FALSE(DiskOf(0).has_mbr);
    EXPECT_TRUE(DiskOf(3).has_mbr);
}

TEST_F(LivingVirtualDisk, AbortsWhatGoesOnWhenItIsDeleted) {
    Create_LD_Param param = WantedOn(0x05, {0, 1, 2});
    param.InitializationOption = Init::kForeground;
    Made(param);
    adapter().events.clear();
    EXPECT_EQ(HX_SUCCESS, DeleteVirtualDisk(adapter(), kNow, 0, false));
    EXPECT_THAT(adapter().activities, IsEmpty());
    EXPECT_THAT(Events(), ElementsAre("1/64 of 0", "1/3 of 0"));
}

TEST_F(LivingVirtualDisk, ThatIsNotThereIsNotDeleted) {
    EXPECT_EQ(Status::kNoVirtualDisk, DeleteVirtualDisk(adapter(), kNow, 0, false));
}

TEST_F(LivingVirtualDisk, GivesASpareThatSteppedInBack) {
    DiskOf(7).spare = Spare::kGlobal;
    Made(WantedOn(0x05, {0, 1, 2}, 102400));
    DiskOf(1).failed = true;
    Finish();
    ASSERT_THAT(Serving(Owner::kVirtualDisk, 0), ElementsAre(0, 7, 2));
    EXPECT_EQ(HX_SUCCESS, DeleteVirtualDisk(adapter(), kNow, 0, false));
    EXPECT_EQ(Spare::kGlobal, DiskOf(7).spare);
    EXPECT_EQ("free 0+1000000", BlocksOn(7));
}

// ---- Import ----

class LivingForeign : public LivingVirtualDisk {
protected:
    void SetUp() override {
        Made(WantedOn(0x01, {4, 5}));
        VirtualDiskOf(0).foreign = DiskOf(4).foreign = DiskOf(5).foreign = true;
        Settle(adapter(), kNow);
        adapter().events.clear();
    }
};

TEST_F(LivingForeign, IsTakenOverWithItsDisks) {
    EXPECT_EQ(State::kForeign, StateOf(adapter(), VirtualDiskOf(0)));
    EXPECT_EQ(HX_SUCCESS, ImportVirtualDisk(adapter(), kNow, 0));
    EXPECT_FALSE(VirtualDiskOf(0).foreign);
    EXPECT_FALSE(DiskOf(4).foreign);
    EXPECT_FALSE(DiskOf(5).foreign);
    EXPECT_EQ(State::kOptimal, StateOf(adapter(), VirtualDiskOf(0)));
    EXPECT_THAT(Events(), ElementsAre("1/9 of 0"));
}

TEST_F(LivingForeign, IsNotTakenOverTwice) {
    EXPECT_EQ(HX_SUCCESS, ImportVirtualDisk(adapter(), kNow, 0));
    EXPECT_EQ(Status::kNotForeign, ImportVirtualDisk(adapter(), kNow, 0));
    EXPECT_EQ(Status::kNoVirtualDisk, ImportVirtualDisk(adapter(), kNow, 1));
}

TEST_F(LivingForeign, IsNotSetMovedOrDeletedBefore) {
    const std::string before = Everything();
    EXPECT_EQ(Status::kWrongState, SetVirtualDisk(adapter(), kNow, 0, Settings("X", 0, 1)));
    EXPECT_EQ(Status::kWrongState, DeleteVirtualDisk(adapter(), kNow, 0, false));
    EXPECT_EQ(Status::kWrongState, RefusedMove(MovedTo(0, 0x00, {4, 5})));
    EXPECT_EQ(before, Everything());
}

// ---- Migration ----

TEST_F(LivingVirtualDisk, MovesToRaid6WithOneDiskMoreInPlace) {
    // Two disks of data before and after: the blocks stay, and the new disk gets one like them.
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x06, {0, 1, 2, 3})));
    EXPECT_EQ("vd0.0 0+512, free 512+999488", BlocksOn(0));
    EXPECT_EQ("target0.3 0+512, free 512+999488", BlocksOn(3));
    EXPECT_EQ(0x05, VirtualDiskOf(0).level);
    Finish();
    EXPECT_EQ(0x06, VirtualDiskOf(0).level);
    EXPECT_EQ(4, VirtualDiskOf(0).width);
    EXPECT_EQ(1024u, VirtualDiskOf(0).size);
    EXPECT_EQ("vd0.3 0+512, free 512+999488", BlocksOn(3));
    EXPECT_THAT(Serving(Owner::kVirtualDisk, 0), ElementsAre(0, 1, 2, 3));
}

TEST_F(LivingVirtualDisk, GivesTheEndsOfItsBlocksBackWhenMoreDisksHoldItsData) {
    // 1536 sectors on two disks of data are 768 each, on three 512.
    Made(WantedOn(0x05, {0, 1, 2}, 1536));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ("vd0.1 0+768, free 768+999232", BlocksOn(1));
    EXPECT_EQ("target0.3 0+512, free 512+999488", BlocksOn(3));
    Finish();
    EXPECT_EQ("vd0.1 0+512, free 512+999488", BlocksOn(1));
    EXPECT_EQ("vd0.3 0+512, free 512+999488", BlocksOn(3));
}

TEST_F(LivingVirtualDisk, MovesBesideItselfWhenItNeedsLargerBlocks) {
    // RAID 5 to RAID 6 on the same disks: one disk of data instead of two.
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x06, {0, 1, 2})));
    EXPECT_EQ("vd0.0 0+512, target0.0 512+1024, free 1536+998464", BlocksOn(0));
    Finish();
    EXPECT_EQ("free 0+512, vd0.0 512+1024, free 1536+998464", BlocksOn(0));
    EXPECT_EQ(1024u, VirtualDiskOf(0).size);
}

TEST_F(LivingVirtualDisk, LeavesDisksThatItHasNoMore) {
    Made(WantedOn(0x01, {0, 1}, 1024));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x00, {1})));
    Finish();
    EXPECT_EQ("free 0+1000000", BlocksOn(0));
    EXPECT_EQ("free 0+1024, vd0.0 1024+1024, free 2048+997952", BlocksOn(1));
    EXPECT_THAT(Serving(Owner::kVirtualDisk, 0), ElementsAre(1));
}

TEST_F(LivingVirtualDisk, KeepsTheDisksInTheirPlacesUnlessTheOrderCounts) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x05, {3, 2, 1, 0})));
    Finish();
    EXPECT_THAT(Serving(Owner::kVirtualDisk, 0), ElementsAre(0, 1, 2, 3));
    Create_LD_Param param = MovedTo(0, 0x05, {3, 2, 1, 0});
    param.SpecifiedBlkSeq = 1;
    EXPECT_EQ(HX_SUCCESS, Move(param));
    Finish();
    EXPECT_THAT(Serving(Owner::kVirtualDisk, 0), ElementsAre(3, 2, 1, 0));
}

TEST_F(LivingVirtualDisk, GrowsByMigrationAsFarAsWasSaidBefore) {
    // Two of three blocks stay: 512 sectors each, so three disks of data hold 1536.
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    Made(WantedOn(0x00, {0}));  // takes what else there is on disk 0
    const Create_LD_Param wider = MovedTo(0, 0x05, {0, 1, 2, 3});
    EXPECT_EQ(1536u, MostAfterMove(wider));
    EXPECT_EQ(Status::kNoSpace, RefusedMove(MovedTo(0, 0x05, {0, 1, 2, 3}, 1537)));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x05, {0, 1, 2, 3}, 1536)));
    Finish();
    EXPECT_EQ(1536u, VirtualDiskOf(0).size);
}

TEST_F(LivingVirtualDisk, CanHaveAllThatIsFreeBesideItByMigration) {
    // 999488 sectors are free beside it: 7808 stripes, 999424 sectors, on three disks of data.
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    EXPECT_EQ(2998272u, MostAfterMove(MovedTo(0, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x05, {0, 1, 2, 3}, 2998272)));
    Finish();
    EXPECT_EQ("free 0+512, vd0.0 512+999424, free 999936+64", BlocksOn(0));
}

TEST_F(LivingVirtualDisk, KeepsItsStripesUnlessItIsGivenOthers) {
    Create_LD_Param made = WantedOn(0x05, {0, 1, 2}, 1024);
    made.StripeBlockSize = 32;
    Made(made);
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x06, {0, 1, 2, 3})));
    Finish();
    EXPECT_EQ(32, VirtualDiskOf(0).stripe_kib);
    Create_LD_Param moved = MovedTo(0, 0x06, {0, 1, 2, 3});
    moved.StripeBlockSize = 16;
    EXPECT_EQ(HX_SUCCESS, Move(moved));
    Finish();
    EXPECT_EQ(16, VirtualDiskOf(0).stripe_kib);
}

TEST_F(LivingVirtualDisk, ReturnsToWhatItWasWhenAMigrationIsAborted) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    adapter().events.clear();
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x06, {0, 1, 2, 3})));
    EXPECT_EQ(HX_SUCCESS, Control(adapter(), kNow, Owner::kVirtualDisk, 0, ControlAction::kAbort));
    EXPECT_EQ("free 0+1000000", BlocksOn(3));
    EXPECT_EQ("vd0.0 0+512, free 512+999488", BlocksOn(0));
    EXPECT_EQ(0x05, VirtualDiskOf(0).level);
    EXPECT_THAT(Events(), ElementsAre("1/80 of 0", "1/84 of 0"));
}

TEST_F(LivingVirtualDisk, IsDeletedWithItsMigration) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x06, {0, 1, 2, 3})));
    EXPECT_EQ(HX_SUCCESS, DeleteVirtualDisk(adapter(), kNow, 0, false));
    EXPECT_EQ("free 0+1000000", BlocksOn(0));
    EXPECT_EQ("free 0+1000000", BlocksOn(3));
}

TEST_F(LivingVirtualDisk, KeepsABlockFreeForTheEndThatAMigrationWillGiveBack) {
    // Four blocks: two virtual disks, what is free, and the end to come.
    adapter().info.MaxBlockPerPD = 4;
    Made(WantedOn(0x05, {0, 1, 2}, 1536));
    Made(WantedOn(0x00, {0}, 128));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ(Status::kTooManyBlocks, Refusal(WantedOn(0x00, {0}, 128)));
    Finish();
    EXPECT_EQ("vd0.0 0+512, free 512+256, vd1.0 768+128, free 896+999104", BlocksOn(0));
}

TEST_F(LivingVirtualDisk, DoesNotMoveWhereTooManyBlocksAre) {
    adapter().info.MaxBlockPerPD = 3;
    Made(WantedOn(0x05, {0, 1, 2}, 1536));
    Made(WantedOn(0x00, {0}, 128));
    EXPECT_EQ(Status::kTooManyBlocks, RefusedMove(MovedTo(0, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ(Status::kTooManyBlocks, RefusedMove(MovedTo(0, 0x06, {0, 1, 2})));
}

TEST_F(LivingVirtualDisk, LosesNothingWhenItsTargetIsLost) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    EXPECT_EQ(HX_SUCCESS, Move(MovedTo(0, 0x06, {0, 1, 2, 3})));
    const Activity migration = *ActivityOf(adapter(), Owner::kVirtualDisk, 0);
    ResetDisk(adapter(), 3);
    adapter().activities.clear();
    CompleteMigration(adapter(), migration);
    EXPECT_THAT(Serving(Owner::kVirtualDisk, 0), ElementsAre(0, 1, 2, kNoId));
    Settle(adapter(), kNow);
    EXPECT_EQ(State::kPartiallyOptimal, VirtualDiskOf(0).state);
}

TEST_F(LivingVirtualDisk, DoesNotMoveToWhatItIs) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    EXPECT_EQ(Status::kNoChange, RefusedMove(MovedTo(0, 0x05, {2, 1, 0})));
    EXPECT_EQ(Status::kNoChange, RefusedMove(MovedTo(0, 0x05, {0, 1, 2}, 1024)));
}

TEST_F(LivingVirtualDisk, DoesNotShrinkByMigration) {
    Made(WantedOn(0x00, {0, 1}));
    EXPECT_EQ(Status::kTooSmall, RefusedMove(MovedTo(0, 0x01, {0, 1})));
    EXPECT_EQ(Status::kTooSmall, RefusedMove(MovedTo(0, 0x00, {0, 1, 2}, 1024)));
    Create_LD_Param sized = MovedTo(0, 0x01, {0, 1});
    EXPECT_EQ(Status::kTooSmall, SizeMigration(adapter(), sized));
}

TEST_F(LivingVirtualDisk, ThatIsNotThereDoesNotMove) {
    EXPECT_EQ(Status::kNoVirtualDisk, RefusedMove(MovedTo(0, 0x05, {0, 1, 2})));
}

TEST_F(LivingVirtualDisk, DoesNotMoveWhileSomethingGoesOn) {
    Create_LD_Param param = WantedOn(0x05, {0, 1, 2}, 1024);
    param.InitializationOption = Init::kBackground;
    Made(param);
    EXPECT_EQ(Status::kBusy, RefusedMove(MovedTo(0, 0x06, {0, 1, 2, 3})));
}

TEST_F(LivingVirtualDisk, DoesNotMoveWhileItIsDegraded) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    DiskOf(1).failed = true;
    Settle(adapter(), kNow);
    EXPECT_EQ(Status::kWrongState, RefusedMove(MovedTo(0, 0x06, {0, 1, 2, 3})));
}

TEST_F(LivingVirtualDisk, DoesNotMoveToDisksThatItMayNotHave) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    DiskOf(3).spare = Spare::kGlobal;
    DiskOf(4).has_system = true;
    DiskOf(5).offline = true;
    EXPECT_EQ(Status::kDiskTaken, RefusedMove(MovedTo(0, 0x05, {0, 1, 2, 3})));
    EXPECT_EQ(Status::kHoldsSystem, RefusedMove(MovedTo(0, 0x05, {0, 1, 2, 4})));
    EXPECT_EQ(Status::kDiskNotReady, RefusedMove(MovedTo(0, 0x05, {0, 1, 2, 5})));
    EXPECT_EQ(Status::kNoDisk, RefusedMove(MovedTo(0, 0x05, {0, 1, 2, 77})));
    EXPECT_EQ(Status::kDiskRepeated, RefusedMove(MovedTo(0, 0x05, {0, 1, 2, 2})));
    EXPECT_EQ(Status::kBadDiskCount, RefusedMove(MovedTo(0, 0x05, {0, 1})));
    EXPECT_EQ(Status::kBadLevel, RefusedMove(MovedTo(0, 0x07, {0, 1, 2})));
}

TEST_F(LivingVirtualDisk, MovesAtNoOtherRoundingThanThereIs) {
    Made(WantedOn(0x05, {0, 1, 2}, 1024));
    Create_LD_Param param = MovedTo(0, 0x06, {0, 1, 2, 3});
    param.RoundingScheme = 3;
    EXPECT_EQ(Status::kBadRounding, RefusedMove(param));
}

}  // namespace
}  // namespace hxsim
