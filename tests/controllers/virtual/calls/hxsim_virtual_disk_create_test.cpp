// Virtual disks on disks of their own: made.
#include "calls/hxsim_virtual_disk_create.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <string>
#include <utility>

#include "calls/hxsim_virtual_disk_change.h"
#include "controllers/virtual/support/array_test.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_codes.h"
#include "model/hxsim_disk_role.h"
#include "model/hxsim_home.h"
#include "model/hxsim_redundancy.h"
#include "model/hxsim_space.h"

namespace hxsim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using NewVirtualDisk = ArrayTest;

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

class SizeOfANewVirtualDisk : public NewVirtualDisk,
                              public testing::WithParamInterface<SizeCase> {};

TEST_P(SizeOfANewVirtualDisk, IsWhatWasSaidBefore) {
    Ids disks;
    for (HX_U16 id = 0; id < GetParam().disks; ++id) disks.push_back(id);
    Create_LD_Param param = WantedOn(GetParam().level, disks);
    param.SubLDCount = GetParam().legs;
    param.StripeBlockSize = GetParam().stripe_kib;
    Create_LD_Param sized = param;
    EXPECT_EQ(HX_SUCCESS, SizeVirtualDisk(adapter(), sized));
    EXPECT_EQ(GetParam().sectors, sized.Size.value);
    EXPECT_EQ(GetParam().sectors, Made(param).Size.value);
    EXPECT_EQ(GetParam().sectors, virtual_disk(0).size);
}

std::string SizeName(const testing::TestParamInfo<SizeCase>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Each, SizeOfANewVirtualDisk, testing::ValuesIn(kSizes), SizeName);

TEST_F(NewVirtualDisk, TakesNoMoreThanTheSizeThatIsAskedFor) {
    // 1000 sectors on two disks of data are 7.8 stripes: four stripes on each, 1024 sectors in all.
    const Create_LD_Param param = Made(WantedOn(0x05, {0, 1, 2}, 1000));
    EXPECT_EQ(1024u, param.Size.value);
    EXPECT_EQ("vd0.0 0+512, free 512+999488", BlocksOn(0));
    EXPECT_EQ("vd0.2 0+512, free 512+999488", BlocksOn(2));
}

TEST_F(NewVirtualDisk, CanHaveAllThatFitsAndNotASectorMore) {
    EXPECT_EQ(Status::kNoSpace, Refusal(WantedOn(0x00, {0, 1}, 1999873)));
    EXPECT_EQ(Status::kNoSpace, Refusal(WantedOn(0x01, {0, 1}, UINT64_MAX)));
    EXPECT_EQ(1999872u, Made(WantedOn(0x00, {0, 1}, 1999872)).Size.value);
}

TEST_F(NewVirtualDisk, IsRoundedDownToGibibytes) {
    // 5000000 sectors are 2.38 GiB; two of them are 4194304 sectors, 32768 stripes of 64 KiB.
    AddDisk(20, 5000000);
    Create_LD_Param param = WantedOn(0x00, {20});
    param.RoundingScheme = NumberOf(Rounding::kTo1GiB);
    EXPECT_EQ(4194304u, Made(param).Size.value);
    EXPECT_EQ("vd0.0 0+4194304, free 4194304+805696", BlocksOn(20));
}

TEST_F(NewVirtualDisk, RoundsWhatIsAskedForDownAsWell) {
    AddDisk(20, 5000000);
    Create_LD_Param param = WantedOn(0x00, {20}, 3000000);  // 1.43 GiB
    param.RoundingScheme = NumberOf(Rounding::kTo1GiB);
    EXPECT_EQ(2097152u, Made(param).Size.value);
}

TEST_F(NewVirtualDisk, OfLessThanItIsRoundedToIsRefused) {
    AddDisk(20, 5000000);
    Create_LD_Param param = WantedOn(0x00, {20}, 2000000);
    param.RoundingScheme = NumberOf(Rounding::kTo1GiB);
    EXPECT_EQ(Status::kBadValue, Refusal(param));
    param.Size.value = 0;
    param.RoundingScheme = NumberOf(Rounding::kTo10GiB);
    EXPECT_EQ(Status::kNoSpace, Refusal(param));
}

TEST_F(NewVirtualDisk, LiesWhereTheFirstRunIsLongEnough) {
    Made(WantedOn(0x00, {0}, 128000));
    Made(WantedOn(0x00, {0}, 256000));
    EXPECT_EQ(HX_SUCCESS, DeleteVirtualDisk(adapter(), kNow, 0, false));
    Made(WantedOn(0x00, {0}, 256000));
    EXPECT_EQ("free 0+128000, vd1.0 128000+256000, vd0.0 384000+256000, free 640000+360000",
              BlocksOn(0));
}

// ---- What is made ----

TEST_F(NewVirtualDisk, HasWhatItWasMadeWith) {
    Create_LD_Param param = WantedOn(0x50, {7, 1, 2, 3, 4, 5}, 4096);
    std::memcpy(param.Name, "SIXTEEN LETTERS!", 16);
    param.CachePolicy = 0x05;
    param.SectorCoefficient = 8;
    param.StripeBlockSize = 128;
    EXPECT_EQ(0, Made(param).LDID);
    const VirtualDisk& made = virtual_disk(0);
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

TEST_F(NewVirtualDisk, TellsThatItWasMade) {
    Made(WantedOn(0x00, {0}));
    EXPECT_THAT(Events(), ElementsAre("1/2 of 0"));
}

TEST_F(NewVirtualDisk, HasTheFirstFreeNumber) {
    Made(WantedOn(0x00, {0}, 128));
    Made(WantedOn(0x00, {0}, 128));
    Made(WantedOn(0x00, {0}, 128));
    EXPECT_EQ(HX_SUCCESS, DeleteVirtualDisk(adapter(), kNow, 1, false));
    EXPECT_EQ(1, Made(WantedOn(0x00, {0}, 128)).LDID);
}

TEST_F(NewVirtualDisk, IsInitialisedAsAskedFor) {
    const std::pair<Init, ActivityKind> kinds[] = {
        {Init::kQuick, ActivityKind::kInitQuick},
        {Init::kForeground, ActivityKind::kInitForeground},
        {Init::kBackground, ActivityKind::kInitBackground}};
    for (const auto& [option, kind] : kinds) {
        Create_LD_Param param = WantedOn(0x05, {0, 1, 2}, 25600);
        param.InitializationOption = NumberOf(option);
        const HX_U16 id = Made(param).LDID;
        const Activity* const init = ActivityOf(adapter(), Owner::kVirtualDisk, id);
        ASSERT_NE(nullptr, init);
        EXPECT_EQ(kind, init->kind);
    }
    Finish();
    EXPECT_THAT(adapter().activities, IsEmpty());
    EXPECT_TRUE(virtual_disk(0).initialised);
}

TEST_F(NewVirtualDisk, CanBeMadeOnWhatAnotherLeaves) {
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

class QuickVirtualDisk : public NewVirtualDisk, public testing::WithParamInterface<QuickCase> {};

TEST_P(QuickVirtualDisk, IsMade) {
    Ids disks;
    for (HX_U16 id = 0; id < GetParam().disks; ++id) disks.push_back(id);
    Create_LD_Param param = WantedOn(GetParam().level, disks);
    param.StripeBlockSize = 64;
    param.CachePolicy = NumberOf(CacheBit::kReadAhead);
    param.InitializationOption = NumberOf(Init::kQuick);
    param.NumParityDisk = GetParam().level == 0x60 ? 4 : 2;
    std::strcpy(param.Name, "NEW_VD");
    EXPECT_EQ(GetParam().sectors, Made(param).Size.value);
    Finish();
    EXPECT_TRUE(virtual_disk(0).initialised);
}

std::string QuickName(const testing::TestParamInfo<QuickCase>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Of, QuickVirtualDisk, testing::ValuesIn(kQuick), QuickName);

// ---- What is not made ----

struct RefusedVirtualDiskCase {
    const char* name;
    Status status;
    HX_U8 level;
    Ids disks;
    void (*change)(Create_LD_Param&, Adapter&) = [](Create_LD_Param&, Adapter&) {};
};
void PrintTo(const RefusedVirtualDiskCase& each, std::ostream* out) { *out << each.name; }

const RefusedVirtualDiskCase kRefusedVirtualDisks[] = {
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

class RefusedVirtualDisk : public NewVirtualDisk,
                           public testing::WithParamInterface<RefusedVirtualDiskCase> {
    void TearDown() override {}  // what was changeed is no machine to go on with
};

TEST_P(RefusedVirtualDisk, ChangesNothing) {
    Create_LD_Param param = WantedOn(GetParam().level, GetParam().disks);
    GetParam().change(param, adapter());
    EXPECT_EQ(GetParam().status, Refusal(param));
}

std::string RefusedVirtualDiskName(const testing::TestParamInfo<RefusedVirtualDiskCase>& info) {
    return info.param.name;
}
INSTANTIATE_TEST_SUITE_P(Each, RefusedVirtualDisk, testing::ValuesIn(kRefusedVirtualDisks),
                         RefusedVirtualDiskName);

TEST_F(NewVirtualDisk, IsNotMadeOfLessThanAStripe) {
    Made(WantedOn(0x00, {0}));  // 64 sectors are left
    EXPECT_EQ(Status::kNoSpace, Refusal(WantedOn(0x00, {0})));
    EXPECT_EQ(Status::kNoSpace, Refusal(WantedOn(0x00, {0, 1})));
}

TEST_F(NewVirtualDisk, IsNotMadeOnDisksOfADiskGroup) {
    adapter().disk_groups.push_back({});
    adapter().disk_groups[0].level = Level::kRaid1;
    adapter().disk_groups[0].width = 2;
    adapter().homes = {{Owner::kDiskGroup, 0, 0, 3, 3}, {Owner::kDiskGroup, 0, 1, 4, 4}};
    EXPECT_EQ(Status::kDiskTaken, Refusal(WantedOn(0x00, {2, 3})));
}

}  // namespace
}  // namespace hxsim
