// Blocks cut out of free runs, resized and given back.
#include "model/hxsim_space.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "controllers/virtual/support/test_machine.h"
#include "model/hxsim_codes.h"

namespace hxsim {
namespace {

// A disk of 1000 sectors for a virtual disk that is only a number: the machine is not looked at as
// a whole.
class SpaceOfADisk : public MachineTest {
protected:
    SpaceOfADisk() : MachineTest(0) { AddDisk(0, 1000); }
    void TearDown() override {}
};

TEST_F(SpaceOfADisk, IsOneFreeBlockAtFirst) {
    EXPECT_EQ("free 0+1000", BlocksOn(0));
    EXPECT_EQ(1000u, FreeSectors(adapter(), 0));
    EXPECT_FALSE(CarriesBlocks(adapter(), 0));
}

TEST_F(SpaceOfADisk, IsCutFromTheFront) {
    const Block block = Cut(adapter(), 0, 0, 300, 7, 2);
    EXPECT_EQ("vd7.2 0+300, free 300+700", BlocksOn(0));
    EXPECT_EQ(0, block.id);
    EXPECT_TRUE(CarriesBlocks(adapter(), 0));
}

TEST_F(SpaceOfADisk, IsCutOutOfTheMiddle) {
    Cut(adapter(), 0, 200, 300, 7, 0);
    EXPECT_EQ("free 0+200, vd7.0 200+300, free 500+500", BlocksOn(0));
}

TEST_F(SpaceOfADisk, IsCutFromTheEnd) {
    Cut(adapter(), 0, 700, 300, 7, 0);
    EXPECT_EQ("free 0+700, vd7.0 700+300", BlocksOn(0));
}

TEST_F(SpaceOfADisk, CanBeTakenWhole) {
    Cut(adapter(), 0, 0, 1000, 7, 0);
    EXPECT_EQ("vd7.0 0+1000", BlocksOn(0));
    EXPECT_EQ(nullptr, LongestFree(adapter(), 0));
    EXPECT_EQ(0u, FreeSectors(adapter(), 0));
}

TEST_F(SpaceOfADisk, IsNotCutWhereItIsTaken) {
    Cut(adapter(), 0, 0, 300, 7, 0);
    EXPECT_THROW(Cut(adapter(), 0, 299, 10, 8, 0), std::logic_error);
    EXPECT_THROW(Cut(adapter(), 0, 300, 701, 8, 0), std::logic_error);
    EXPECT_THROW(Cut(adapter(), 0, 300, 0, 8, 0), std::logic_error);
    EXPECT_EQ("vd7.0 0+300, free 300+700", BlocksOn(0));
}

TEST_F(SpaceOfADisk, GivenBackJoinsItsNeighboursOnBothSides) {
    const HX_U16 block = Cut(adapter(), 0, 200, 300, 7, 0).id;
    Release(adapter(), block);
    EXPECT_EQ("free 0+1000", BlocksOn(0));
    EXPECT_EQ(1u, adapter().blocks.size());
    EXPECT_EQ(0, adapter().blocks[0].id);
}

TEST_F(SpaceOfADisk, GivenBackBetweenTwoOthersStaysAlone) {
    Cut(adapter(), 0, 0, 100, 7, 0);
    const HX_U16 middle = Cut(adapter(), 0, 100, 100, 7, 1).id;
    Cut(adapter(), 0, 200, 800, 7, 2);
    Release(adapter(), middle);
    EXPECT_EQ("vd7.0 0+100, free 100+100, vd7.2 200+800", BlocksOn(0));
}

TEST_F(SpaceOfADisk, OfOneVirtualDiskIsGivenBackWithItsTargets) {
    Cut(adapter(), 0, 0, 100, 7, 0);
    Cut(adapter(), 0, 100, 100, 8, 0);
    Cut(adapter(), 0, 200, 100, 7, 1).target = true;
    ReleaseAll(adapter(), 7);
    EXPECT_EQ("free 0+100, vd8.0 100+100, free 200+800", BlocksOn(0));
}

TEST_F(SpaceOfADisk, OfNoVirtualDiskIsNotGivenBack) {
    Cut(adapter(), 0, 0, 100, 7, 0);
    ReleaseAll(adapter(), kNoVirtualDisk);
    EXPECT_EQ("vd7.0 0+100, free 100+900", BlocksOn(0));
}

TEST_F(SpaceOfADisk, ForgetsEverythingWhenTheDiskIsReset) {
    AddDisk(1, 500);
    Cut(adapter(), 0, 0, 100, 7, 0);
    Cut(adapter(), 1, 0, 100, 7, 1);
    ResetDisk(adapter(), 0);
    EXPECT_EQ("free 0+1000", BlocksOn(0));
    EXPECT_EQ("vd7.1 0+100, free 100+400", BlocksOn(1));
}

TEST_F(SpaceOfADisk, IsFoundAtTheFirstPlaceThatIsLongEnough) {
    Cut(adapter(), 0, 100, 100, 7, 0);
    EXPECT_EQ(0u, FirstFree(adapter(), 0, 100)->start);
    EXPECT_EQ(200u, FirstFree(adapter(), 0, 101)->start);
    EXPECT_EQ(nullptr, FirstFree(adapter(), 0, 801));
    EXPECT_EQ(200u, LongestFree(adapter(), 0)->start);
}

TEST_F(SpaceOfADisk, TellsTargetsFromBlocksThatServe) {
    Cut(adapter(), 0, 0, 100, 7, 0);
    EXPECT_EQ(nullptr, BlockOf(adapter(), 7, 0, true));
    Cut(adapter(), 0, 100, 100, 7, 0).target = true;
    EXPECT_EQ(0u, BlockOf(adapter(), 7, 0)->start);
    EXPECT_EQ(100u, BlockOf(adapter(), 7, 0, true)->start);
    EXPECT_EQ(nullptr, BlockOf(adapter(), 7, 1));
}

TEST_F(SpaceOfADisk, GrowsABlockIntoWhatFollows) {
    const HX_U16 block = Cut(adapter(), 0, 0, 100, 7, 3).id;
    Resize(adapter(), block, 400);
    EXPECT_EQ("vd7.3 0+400, free 400+600", BlocksOn(0));
    Resize(adapter(), block, 1000);
    EXPECT_EQ("vd7.3 0+1000", BlocksOn(0));
}

TEST_F(SpaceOfADisk, ShrinksABlockAndFreesItsEnd) {
    const HX_U16 block = Cut(adapter(), 0, 0, 400, 7, 3).id;
    Cut(adapter(), 0, 400, 600, 8, 0);
    Resize(adapter(), block, 100);
    EXPECT_EQ("vd7.3 0+100, free 100+300, vd8.0 400+600", BlocksOn(0));
}

TEST_F(SpaceOfADisk, EndsWithAsManyBlocksAsTheAdapterAllows) {
    adapter().info.MaxBlockPerPD = 2;
    EXPECT_FALSE(IsFullOfBlocks(adapter(), 0));
    EXPECT_EQ(Status::kTooManyBlocks, CheckCut(adapter(), 0, 100, 100));  // three
    EXPECT_EQ(HX_SUCCESS, CheckCut(adapter(), 0, 0, 100));
    Cut(adapter(), 0, 0, 100, 7, 0);
    EXPECT_TRUE(IsFullOfBlocks(adapter(), 0));
    EXPECT_EQ(Status::kTooManyBlocks, CheckCut(adapter(), 0, 100, 100));
    EXPECT_EQ(HX_SUCCESS, CheckCut(adapter(), 0, 100, 900));  // takes the last free block whole
    EXPECT_EQ(Status::kNoSpace, CheckCut(adapter(), 0, 50, 100));
}

}  // namespace
}  // namespace hxsim
