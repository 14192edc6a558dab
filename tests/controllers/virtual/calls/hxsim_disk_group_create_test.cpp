// Disk groups: made, and changed in name, level and disks.
#include "calls/hxsim_disk_group_create.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <ostream>
#include <string>

#include "calls/hxsim_disk_group_record.h"
#include "calls/hxsim_virtual_disk_create.h"
#include "controllers/virtual/support/array_test.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NewDiskGroup : public ArrayTest {
protected:
    DG_Info Info() { return TestMachine::DescribedGroup(); }
};

TEST_F(NewDiskGroup, HasWhatItWasMadeWith) {
    CreateOrModify_DG_Param param = GroupOn(HX_NEW_ID, 0x50, {5, 0, 1, 2, 3, 4});
    std::memcpy(param.Name, "SIXTEEN LETTERS!", 16);
    param.StripeBlockSize = 128;
    const CreateOrModify_DG_Param made = Made(param);
    EXPECT_EQ(0, made.DGID);
    EXPECT_EQ(3999744u, made.Size.value);  // four times 3906 stripes of 256 sectors
    EXPECT_EQ("SIXTEEN LETTERS!", disk_group(0).name);
    EXPECT_EQ(0x50, disk_group(0).level);
    EXPECT_EQ(2, disk_group(0).legs);
    EXPECT_EQ(6, disk_group(0).width);
    EXPECT_EQ(128, disk_group(0).stripe_kib);
    EXPECT_THAT(Serving(Owner::kDiskGroup, 0), ElementsAre(5, 0, 1, 2, 3, 4));
    EXPECT_EQ("free 0+1000000", BlocksOn(5));
    EXPECT_THAT(Events(), ElementsAre("13/0 of 0"));
}

TEST_F(NewDiskGroup, HasTheSizeThatWasSaidBefore) {
    EXPECT_EQ(1999872u, SizeOnly(GroupOn(HX_NEW_ID, 0x05, {0, 1, 2})));
    EXPECT_EQ(1999872u, Made(GroupOn(HX_NEW_ID, 0x05, {0, 1, 2})).Size.value);
    EXPECT_EQ(1999872u, Info().TotalManagedSpace.value);
}

TEST_F(NewDiskGroup, HasAsMuchOfEachDiskAsTheSmallestGives) {
    AddDisk(20, 500000);  // 3906 stripes of 128 sectors
    EXPECT_EQ(999936u, Made(GroupOn(HX_NEW_ID, 0x05, {0, 1, 20})).Size.value);
    EXPECT_EQ(500000u, Info().SmallestAvailablePDSize.value);
}

TEST_F(NewDiskGroup, TakesTheWriteCachesOfItsDisksAway) {
    disk(1).write_cache = true;
    Made(GroupOn(HX_NEW_ID, 0x05, {0, 1, 2}));
    EXPECT_FALSE(disk(1).write_cache);
    EXPECT_THAT(Events(), ElementsAre("13/0 of 0", "2/16 of 1"));
}

struct RefusedGroupCase {
    const char* name;
    Status status;
    HX_U8 level;
    Ids disks;
    void (*change)(CreateOrModify_DG_Param&, Adapter&) = [](CreateOrModify_DG_Param&, Adapter&) {};
};
void PrintTo(const RefusedGroupCase& each, std::ostream* out) { *out << each.name; }

const RefusedGroupCase kRefusedGroups[] = {
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

class RefusedDiskGroup : public NewDiskGroup, public testing::WithParamInterface<RefusedGroupCase> {
    void TearDown() override {}  // what was changeed is no machine to go on with
};

TEST_P(RefusedDiskGroup, ChangesNothing) {
    CreateOrModify_DG_Param param = GroupOn(HX_NEW_ID, GetParam().level, GetParam().disks);
    GetParam().change(param, adapter());
    EXPECT_EQ(GetParam().status, Refusal(param));
}

std::string RefusedGroupName(const testing::TestParamInfo<RefusedGroupCase>& info) {
    return info.param.name;
}
INSTANTIATE_TEST_SUITE_P(Each, RefusedDiskGroup, testing::ValuesIn(kRefusedGroups),
                         RefusedGroupName);

TEST_F(NewDiskGroup, IsNotMadeOfDisksThatOthersHave) {
    Made(GroupOn(HX_NEW_ID, 0x01, {0, 1}));
    Create_LD_Param alone = WantedOn(0x00, {2}, 128);
    EXPECT_EQ(HX_SUCCESS, CreateVirtualDisk(adapter(), kNow, alone));
    EXPECT_EQ(Status::kDiskTaken, Refusal(GroupOn(HX_NEW_ID, 0x01, {1, 3})));
    EXPECT_EQ(Status::kDiskTaken, Refusal(GroupOn(HX_NEW_ID, 0x01, {2, 3})));
}

class ManyDiskGroups : public ArrayTest {
protected:
    ManyDiskGroups() : ArrayTest(40) {}
};

TEST_F(ManyDiskGroups, EndWithTheThirtySecond) {
    for (HX_U16 id = 0; id < 32; ++id) Made(GroupOn(HX_NEW_ID, 0x00, {id}));
    EXPECT_EQ(Status::kTooManyDiskGroups, Refusal(GroupOn(HX_NEW_ID, 0x00, {32})));
}

TEST_F(NewDiskGroup, IsRenamed) {
    Made(GroupOn(HX_NEW_ID, 0x05, {0, 1, 2}));
    CreateOrModify_DG_Param param = GroupOn(0, 0x05, {2, 0, 1});
    std::strcpy(param.Name, "OTHER");
    EXPECT_EQ(1999872u, Made(param).Size.value);
    EXPECT_EQ("OTHER", disk_group(0).name);
    EXPECT_THAT(Serving(Owner::kDiskGroup, 0), ElementsAre(0, 1, 2));
    EXPECT_THAT(adapter().activities, IsEmpty());
    Made(GroupOn(0, 0x00, {}));  // nothing is named, and nothing changes
    EXPECT_EQ("OTHER", disk_group(0).name);
    EXPECT_EQ(0x05, disk_group(0).level);
}

}  // namespace
}  // namespace hxsim
