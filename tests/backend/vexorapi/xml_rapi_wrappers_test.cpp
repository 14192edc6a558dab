// Functions that the controller library has under another name.
#include "xml_rapi_wrappers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hxfake.h"
#include "scripted_controller.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using OtherName = ScriptedController;

TEST_F(OtherName, SettingABatterysCapacityAsksNobody) {
    EXPECT_EQ(HX_BBU_SetMaxCapacity(1, 1000), 0);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(OtherName, LearningABatterysCapacityIsAPowerAction) {
    hxfake::On<&HX_BBU_ChangePower>().Once(8);
    EXPECT_EQ(HX_BBU_ActRelearn(3), 8);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_BBU_ChangePower(3, 0)"));
}

TEST_F(OtherName, TheListOfSparesIsTheListOfWhatDisksAreUsedFor) {
    const HD_RAID_Status disk{.HDID = 5, .DGID = 0, .Status = 0x20, .Reserved = {}};
    hxfake::On<&HX_PD_GetHDRaidStatus>().Once(8, hxfake::Page(HX_LIST_COMPLETE, {disk}));
    HD_RAID_Status_Request request{};
    request.header = {0, 1, 6, 1, 0, 0, {}};
    EXPECT_EQ(HX_PD_GetSpareInfo(3, &request), 8);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_PD_GetHDRaidStatus(3, {1, 6, 1})"));
    EXPECT_EQ(request.hdRaidStatus[0].HDID, 5);
}

TEST_F(OtherName, ADataScrubBeginsWithDiskAndAdapterZero) {
    VX_PD_StartDataScrub record{.HD_ID = 5, .AdapterID = 6, .RetVal = 7};
    HX_PD_StartDataScrub_Init(&record);
    EXPECT_EQ(record.HD_ID, 0);
    EXPECT_EQ(record.AdapterID, 0);
    EXPECT_EQ(record.RetVal, 7);
}

}  // namespace
