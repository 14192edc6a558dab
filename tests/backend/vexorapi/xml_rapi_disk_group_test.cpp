// Disk groups, and virtual disks on them.
#include "xml_rapi_disk_group.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <optional>

#include "hxfake.h"
#include "scripted_controller.h"

namespace {

using testing::Each;
using testing::ElementsAre;

// ---- Disk groups ----

// A parameter in which no field is 0.
CreateOrModify_DG_Param FilledGroupParam() {
    CreateOrModify_DG_Param param;
    std::memset(&param, 0x11, sizeof param);
    return param;
}

// Keeps what the controller was given.
class GroupCall {
public:
    GroupCall() {
        hxfake::On<&HX_CreateOrModify_DG>().Inspect(
            [this](HX_U8, const CreateOrModify_DG_Param* param, HX_U8 size_only) {
                given = *param;
                size_only_given = size_only;
            });
    }
    std::optional<CreateOrModify_DG_Param> given;
    int size_only_given = -1;
};

// The parameter as it was filled, but for DGID.
void ExpectFilledWithDGID(const std::optional<CreateOrModify_DG_Param>& param, HX_U16 DGID) {
    ASSERT_TRUE(param.has_value());
    CreateOrModify_DG_Param expected = FilledGroupParam();
    expected.DGID = DGID;
    EXPECT_EQ(param->DGID, DGID);
    EXPECT_EQ(std::memcmp(&*param, &expected, sizeof expected), 0);
}

using DG = ScriptedController;

TEST_F(DG, CreateAsksForANewGroup) {
    const GroupCall call;
    CreateOrModify_DG_Param param = FilledGroupParam();
    EXPECT_EQ(HX_DG_Create(2, &param), 0);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_CreateOrModify_DG(2, &, 0)"));
    ExpectFilledWithDGID(call.given, 65535);
}

TEST_F(DG, CreateReturnsTheControllersCodeAndAnswer) {
    CreateOrModify_DG_Param answer = FilledGroupParam();
    answer.DGID = 5;
    hxfake::On<&HX_CreateOrModify_DG>().Once(42, hxfake::Fill(answer));
    CreateOrModify_DG_Param param{};
    EXPECT_EQ(HX_DG_Create(2, &param), 42);
    EXPECT_EQ(param.DGID, 5);
}

TEST_F(DG, GetSizeOnlyAsksForTheSizeOfTheCallersGroup) {
    const GroupCall call;
    CreateOrModify_DG_Param param = FilledGroupParam();
    param.DGID = 7;
    EXPECT_EQ(HX_DG_GetSizeOnly(1, &param), 0);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_CreateOrModify_DG(1, &, 1)"));
    ExpectFilledWithDGID(call.given, 7);
}

TEST_F(DG, GetSizeOnlyReturnsTheControllersCodeAndAnswer) {
    CreateOrModify_DG_Param answer{};
    answer.Size.value = 0x123456789A;
    hxfake::On<&HX_CreateOrModify_DG>().Once(9, hxfake::Fill(answer));
    CreateOrModify_DG_Param param{};
    EXPECT_EQ(HX_DG_GetSizeOnly(1, &param), 9);
    EXPECT_EQ(param.Size.value, 0x123456789AU);
}

TEST_F(DG, ModifyChangesTheCallersGroup) {
    const GroupCall call;
    CreateOrModify_DG_Param param = FilledGroupParam();
    param.DGID = 7;
    hxfake::On<&HX_CreateOrModify_DG>().Once(3);
    EXPECT_EQ(HX_DG_Modify(1, &param), 3);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_CreateOrModify_DG(1, &, 0)"));
    ExpectFilledWithDGID(call.given, 7);
}

// ---- Virtual disks on disk groups ----

DG_Info Group() {
    DG_Info group{};
    group.DGID = 4;
    group.RaidMode = 0x50;
    group.SubVDCount = 2;
    group.NumParityDisk = 3;
    group.StripeBlockSize = 128;
    group.BlockSize = 4096;
    std::strcpy(group.Name, "GROUP");
    return group;
}

CreateOrModify_VD_Param FilledDiskParam() {
    CreateOrModify_VD_Param param;
    std::memset(&param, 0x11, sizeof param);
    param.DGID = 4;
    return param;
}

class OnGroup : public ScriptedController {
protected:
    void SetUp() override {
        ScriptedController::SetUp();
        hxfake::On<&HX_CreateOrModify_VD>().Inspect(
            [this](HX_U8, const CreateOrModify_VD_Param* param) { given_ = *param; });
    }
    CreateOrModify_VD_Param given_{};
};

TEST_F(OnGroup, CreateReadsTheGroupThenMakesTheDisk) {
    CreateOrModify_VD_Param param = FilledDiskParam();
    HX_LD_Create_OnDG(2, &param);
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_DG_GetInfo(2, {2, 4, 1})", "HX_CreateOrModify_VD(2, &)"));
}

TEST_F(OnGroup, CreateTakesTheGroupsShapeAndKeepsTheRest) {
    hxfake::On<&HX_DG_GetInfo>().Once(0, hxfake::Page(65535, {Group()}));
    CreateOrModify_VD_Param param = FilledDiskParam();
    EXPECT_EQ(HX_LD_Create_OnDG(2, &param), 0);
    CreateOrModify_VD_Param expected = FilledDiskParam();
    expected.VDID = 65535;
    expected.RaidMode = 0x50;
    expected.NumParityDisk = 3;
    expected.BlockSize = 4096;
    expected.SubVDCount = 2;
    EXPECT_EQ(std::memcmp(&given_, &expected, sizeof expected), 0);
    EXPECT_EQ(given_.StripeBlockSize, 0x1111);
}

TEST_F(OnGroup, CreateTakesTheGroupsStripeSizeWhenThereIsNoOther) {
    hxfake::On<&HX_DG_GetInfo>().Once(0, hxfake::Page(65535, {Group()}));
    CreateOrModify_VD_Param param = FilledDiskParam();
    param.StripeBlockSize = 0;
    HX_LD_Create_OnDG(2, &param);
    EXPECT_EQ(given_.StripeBlockSize, 128);
}

TEST_F(OnGroup, CreateReturnsTheControllersCode) {
    hxfake::On<&HX_CreateOrModify_VD>().Once(77);
    CreateOrModify_VD_Param param = FilledDiskParam();
    EXPECT_EQ(HX_LD_Create_OnDG(2, &param), 77);
}

TEST_F(OnGroup, CreateDoesNotLookAtTheCodeOfTheReading) {
    hxfake::On<&HX_DG_GetInfo>().Once(9, hxfake::Page(65535, {Group()}));
    CreateOrModify_VD_Param param = FilledDiskParam();
    EXPECT_EQ(HX_LD_Create_OnDG(2, &param), 0);
    EXPECT_EQ(given_.RaidMode, 0x50);
}

TEST_F(OnGroup, CreateOnAGroupThatCannotBeReadSendsZeroes) {
    hxfake::On<&HX_DG_GetInfo>().Once(9);
    CreateOrModify_VD_Param param = FilledDiskParam();
    HX_LD_Create_OnDG(2, &param);
    EXPECT_EQ(given_.VDID, 65535);
    EXPECT_EQ(given_.RaidMode, 0);
    EXPECT_EQ(given_.NumParityDisk, 0);
    EXPECT_EQ(given_.BlockSize, 0U);
    EXPECT_EQ(given_.SubVDCount, 0);
    EXPECT_EQ(given_.StripeBlockSize, 0x1111);
}

TEST_F(OnGroup, ModifyPassesTheParameterAsItStands) {
    hxfake::On<&HX_CreateOrModify_VD>().Once(6);
    CreateOrModify_VD_Param param = FilledDiskParam();
    EXPECT_EQ(HX_LD_Modify_OnDG(3, &param), 6);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_CreateOrModify_VD(3, &)"));
    const CreateOrModify_VD_Param expected = FilledDiskParam();
    EXPECT_EQ(std::memcmp(&given_, &expected, sizeof expected), 0);
}

using DefaultValue = ScriptedController;

TEST_F(DefaultValue, OverwritesSectorAndStripeSizeAndNothingElse) {
    hxfake::On<&HX_DG_GetInfo>().Once(0, hxfake::Page(65535, {Group()}));
    CreateOrModify_DG_Param param = FilledGroupParam();
    param.DGID = 4;
    HX_DG_Set_DefaultValue(1, &param);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_DG_GetInfo(1, {2, 4, 1})"));
    CreateOrModify_DG_Param expected = FilledGroupParam();
    expected.DGID = 4;
    expected.BlockSize = 4096;
    expected.StripeBlockSize = 128;
    EXPECT_EQ(std::memcmp(&param, &expected, sizeof expected), 0);
}

TEST_F(DefaultValue, OfAGroupThatCannotBeReadIsZero) {
    hxfake::On<&HX_DG_GetInfo>().Once(9);
    CreateOrModify_DG_Param param = FilledGroupParam();
    HX_DG_Set_DefaultValue(1, &param);
    EXPECT_EQ(param.BlockSize, 0U);
    EXPECT_EQ(param.StripeBlockSize, 0);
}

TEST_F(DefaultValue, DoesNotLookAtTheCode) {
    hxfake::On<&HX_DG_GetInfo>().Once(9, hxfake::Page(65535, {Group()}));
    CreateOrModify_DG_Param param = FilledGroupParam();
    HX_DG_Set_DefaultValue(1, &param);
    EXPECT_EQ(param.BlockSize, 4096U);
}

TEST_F(DefaultValue, HandsTheControllerAZeroedRecord) {
    DG_Info_Request given;
    std::memset(&given, 1, sizeof given);
    hxfake::On<&HX_DG_GetInfo>().Inspect(
        [&](HX_U8, const DG_Info_Request* request) { given = *request; });
    CreateOrModify_DG_Param param = FilledGroupParam();
    HX_DG_Set_DefaultValue(1, &param);
    EXPECT_TRUE(IsZero(given.dgInfo));
    EXPECT_EQ(given.header.version, 0);
    EXPECT_EQ(given.header.numReturned, 0);
    EXPECT_EQ(given.header.nextStartingIndex, 0);
    EXPECT_THAT(given.header.reserved1, Each(0));
}

}  // namespace
