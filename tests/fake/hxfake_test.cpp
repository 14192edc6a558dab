// The scripted controller library itself: what it notes, what it answers, what Reset forgets.
#include "hxfake.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class HxFake : public testing::Test {
protected:
    void SetUp() override { hxfake::Reset(); }
    void TearDown() override { hxfake::Reset(); }
};

Event EventWithNumber(HX_U32 number) {
    Event event{};
    event.SequenceNo = number;
    return event;
}

LD_Status StatusOfVirtualDisk(HX_U16 id) {
    LD_Status status{};
    status.LDID = id;
    return status;
}

// A list request with room for several records, as a caller allocates it.
struct LdStatusPage {
    RequestHeader header;
    LD_Status items[8];
};

LdStatusPage PageFrom(HX_U16 start, HX_U16 wanted) {
    LdStatusPage page{};
    page.header.requestType = HX_REQUEST_BY_INDEX;
    page.header.startingIndexOrId = start;
    page.header.numRequested = wanted;
    return page;
}

HX_U8 GetStatus(LdStatusPage& page) {
    return HX_LD_GetStatus(0, reinterpret_cast<LD_Status_Request*>(&page));
}

// ---- Notes ----

using HxFakeNotes = HxFake;

TEST_F(HxFakeNotes, WritesNumbersInDecimal) {
    HX_LD_Delete(0, 5, 1);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_LD_Delete(0, 5, 1)"));
}

TEST_F(HxFakeNotes, WritesTheLargestNumbersWhole) {
    HX_PD_GetRCT(255, 65535, nullptr, 4294967295);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_PD_GetRCT(255, 65535, null, 4294967295)"));
}

TEST_F(HxFakeNotes, WritesACallWithoutArguments) {
    HX_API_Initialize();
    HX_API_Finalize();
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_API_Initialize()", "HX_API_Finalize()"));
}

TEST_F(HxFakeNotes, WritesARecordAsAnAddress) {
    Adapter_Info info{};
    HX_U8 count = 0;
    HX_Adapter_GetInfo(1, &count, &info);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_Adapter_GetInfo(1, &, &)"));
}

TEST_F(HxFakeNotes, WritesANullAddressAsNull) {
    HX_BBU_GetInfo(1, nullptr);
    HX_DG_GetInfo(1, nullptr);
    HX_DiskHasOS(1, 1, 1, nullptr);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_BBU_GetInfo(1, null)", "HX_DG_GetInfo(1, null)",
                                             "HX_DiskHasOS(1, 1, 1, null)"));
}

TEST_F(HxFakeNotes, WritesAListRequestAsItsHeaderCameIn) {
    hxfake::On<&HX_LD_GetStatus>().Once(0, hxfake::Page(9, {StatusOfVirtualDisk(7)}));
    LdStatusPage page = PageFrom(4, 8);
    GetStatus(page);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_LD_GetStatus(0, {1, 4, 8})"));
}

TEST_F(HxFakeNotes, WritesTheDisksOfTheOperatingSystemCheck) {
    const HX_U16 disks[] = {3, 512};
    HX_DiskHasOS(0, 1, 2, disks);
    HX_DiskHasOS(0, 1, 0, disks);
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_DiskHasOS(0, 1, 2, [3, 512])", "HX_DiskHasOS(0, 1, 0, [])"));
}

TEST_F(HxFakeNotes, KeepTheOrderOfTheCalls) {
    HX_LD_PauseAll(1);
    HX_AdapterMute(0);
    HX_LD_PauseAll(0);
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_LD_PauseAll(1)", "HX_AdapterMute(0)", "HX_LD_PauseAll(0)"));
}

TEST_F(HxFakeNotes, AreNotTakenWhileSwitchedOff) {
    hxfake::NoteCalls(false);
    HX_LD_PauseAll(1);
    hxfake::NoteCalls(true);
    HX_LD_PauseAll(2);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_LD_PauseAll(2)"));
}

TEST_F(HxFakeNotes, AreForgottenWhileTheScriptStays) {
    hxfake::On<&HX_LD_PauseAll>().Once(1).Once(2);
    HX_LD_PauseAll(1);
    hxfake::ForgetCalls();
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
    EXPECT_EQ(2, HX_LD_PauseAll(1));
}

// ---- Answers ----

using HxFakeAnswers = HxFake;

TEST_F(HxFakeAnswers, SucceedAndWriteNothingUnlessScripted) {
    BBU_Info info;
    std::memset(&info, 0xA5, sizeof info);
    EXPECT_EQ(0, HX_BBU_GetInfo(0, &info));
    EXPECT_EQ(0xA5A5, info.voltage);
    EXPECT_EQ(0, HX_Adapter_GetCount());
    EXPECT_EQ(nullptr, HX_API_Version());
}

TEST_F(HxFakeAnswers, ArePlayedOnceEachInOrder) {
    hxfake::On<&HX_LD_Delete>().Once(7).Once(0).Once(255);
    EXPECT_EQ(7, HX_LD_Delete(0, 1, 0));
    EXPECT_EQ(0, HX_LD_Delete(0, 1, 0));
    EXPECT_EQ(255, HX_LD_Delete(0, 1, 0));
    EXPECT_EQ(0, HX_LD_Delete(0, 1, 0));
}

TEST_F(HxFakeAnswers, FallBackToTheLastingOneWhenNoneIsQueued) {
    hxfake::On<&HX_Adapter_GetCount>().Always(3).Once(2);
    EXPECT_EQ(2, HX_Adapter_GetCount());
    EXPECT_EQ(3, HX_Adapter_GetCount());
    EXPECT_EQ(3, HX_Adapter_GetCount());
}

TEST_F(HxFakeAnswers, BelongToOneFunctionOnly) {
    hxfake::On<&HX_LD_GetMaxSize>().Always(9);
    EXPECT_EQ(0, HX_LD_Create(0, nullptr));
    EXPECT_EQ(9, HX_LD_GetMaxSize(0, nullptr));
}

TEST_F(HxFakeAnswers, CanBeWorkedOutFromTheArguments) {
    hxfake::On<&HX_AdapterMute>().Always([](HX_U8 adapter) -> HX_U8 { return adapter == 1; });
    EXPECT_EQ(0, HX_AdapterMute(0));
    EXPECT_EQ(1, HX_AdapterMute(1));
}

TEST_F(HxFakeAnswers, OfTheVersionAreTexts) {
    hxfake::On<&HX_API_Version>().Once("4.0.0.21");
    EXPECT_STREQ("4.0.0.21", HX_API_Version());
}

TEST_F(HxFakeAnswers, OfAFunctionWithoutResultAreItsDeeds) {
    int closed = 0;
    hxfake::On<&HX_API_Finalize>().Once([&] { ++closed; });
    HX_API_Finalize();
    HX_API_Finalize();
    EXPECT_EQ(1, closed);
}

TEST_F(HxFakeAnswers, MayScriptTheirOwnSuccessor) {
    hxfake::On<&HX_AdapterMute>().Once(1, [](HX_U8) { hxfake::On<&HX_AdapterMute>().Once(2); });
    EXPECT_EQ(1, HX_AdapterMute(0));
    EXPECT_EQ(2, HX_AdapterMute(0));
}

TEST_F(HxFakeAnswers, ThatWereNotPlayedAreCounted) {
    hxfake::On<&HX_LD_Delete>().Once(7).Once(8);
    hxfake::On<&HX_LD_Import>().Once(9).Always(1);
    HX_LD_Delete(0, 1, 0);
    EXPECT_EQ(2u, hxfake::AnswersLeft());
}

// ---- Hooks ----

using HxFakeHook = HxFake;

TEST_F(HxFakeHook, SeesTheRecordThatWasSent) {
    HX_U64 size{};
    hxfake::On<&HX_LD_Create>().Inspect([&](HX_U8, Create_LD_Param* param) { size = param->Size; });
    Create_LD_Param param{};
    param.Size.value = 0x123456789ABCDEF0;
    HX_LD_Create(0, &param);
    EXPECT_EQ(0x123456789ABCDEF0u, size.value);
}

TEST_F(HxFakeHook, RunsBeforeTheAnswerWrites) {
    HX_U16 seen = 0;
    hxfake::On<&HX_CreateOrModify_DG>()
        .Inspect([&](HX_U8, CreateOrModify_DG_Param* param, HX_U8) { seen = param->DGID; })
        .Once(0, [](HX_U8, CreateOrModify_DG_Param* param, HX_U8) { param->DGID = 4; });
    CreateOrModify_DG_Param param{};
    param.DGID = HX_NEW_ID;
    HX_CreateOrModify_DG(0, &param, 0);
    EXPECT_EQ(65535, seen);
    EXPECT_EQ(4, param.DGID);
}

TEST_F(HxFakeHook, IsCalledAndCountedAlsoWhileNotesAreOff) {
    int hooked = 0;
    hxfake::NoteCalls(false);
    hxfake::On<&HX_AdapterMute>().Inspect([&](HX_U8) { ++hooked; });
    HX_AdapterMute(0);
    HX_AdapterMute(0);
    EXPECT_EQ(2, hooked);
    EXPECT_EQ(2u, hxfake::On<&HX_AdapterMute>().CallCount());
}

// ---- Writers ----

using HxFakeWriter = HxFake;

TEST_F(HxFakeWriter, FillsTheRecord) {
    BBU_Info battery{};
    battery.voltage = 11100;
    hxfake::On<&HX_BBU_GetInfo>().Once(0, hxfake::Fill(battery));
    BBU_Info info{};
    HX_BBU_GetInfo(0, &info);
    EXPECT_EQ(11100, info.voltage);
}

TEST_F(HxFakeWriter, FillsANumber) {
    hxfake::On<&HX_PD_RCT_GetCount>().Once(0, hxfake::Fill(HX_U32{1000}));
    HX_U32 count = 0;
    HX_PD_RCT_GetCount(0, 3, &count);
    EXPECT_EQ(1000u, count);
}

TEST_F(HxFakeWriter, WritesRecordsAndTheirNumber) {
    EncElement_Config first{};
    EncElement_Config second{};
    first.ElementID = 1;
    second.ElementID = 2;
    hxfake::On<&HX_ENC_GetElementConfig>().Once(0, hxfake::Records({first, second}));
    EncElement_Config elements[3] = {};
    HX_U8 count = 0;
    HX_ENC_GetElementConfig(0, 0, elements, &count);
    EXPECT_EQ(2, count);
    EXPECT_EQ(1, elements[0].ElementID);
    EXPECT_EQ(2, elements[1].ElementID);
    EXPECT_EQ(0, elements[2].ElementID);
}

TEST_F(HxFakeWriter, CanClaimMoreRecordsThanItWrites) {
    hxfake::On<&HX_Adapter_GetInfo>().Once(0, hxfake::Records({Adapter_Info{}}, 255));
    Adapter_Info info{};
    HX_U8 count = 0;
    HX_Adapter_GetInfo(0, &count, &info);
    EXPECT_EQ(255, count);
}

TEST_F(HxFakeWriter, WritesAPageBehindTheHeader) {
    hxfake::On<&HX_LD_GetStatus>().Once(
        0, hxfake::Page(12, {StatusOfVirtualDisk(10), StatusOfVirtualDisk(11)}));
    LdStatusPage page = PageFrom(10, 8);
    GetStatus(page);
    EXPECT_EQ(2, page.header.numReturned);
    EXPECT_EQ(12, page.header.nextStartingIndex);
    EXPECT_EQ(8, page.header.numRequested);
    EXPECT_EQ(10, page.items[0].LDID);
    EXPECT_EQ(11, page.items[1].LDID);
}

TEST_F(HxFakeWriter, CanClaimAFullerPageThanItWrites) {
    hxfake::On<&HX_LD_GetStatus>().Once(0, hxfake::Page(9, {StatusOfVirtualDisk(1)}, 60000));
    LdStatusPage page = PageFrom(0, 8);
    GetStatus(page);
    EXPECT_EQ(60000, page.header.numReturned);
    EXPECT_EQ(0, page.items[1].LDID);
}

// ---- A whole list ----

// What is asked for, and the page that comes.
struct ListCase {
    const char* name;
    HX_U16 start;
    HX_U16 wanted;
    HX_U16 next;
    std::vector<HX_U16> ids;
};
void PrintTo(const ListCase& each, std::ostream* out) { *out << each.name; }

const ListCase kLists[] = {
    {"IsCutAtThePageLimit", 0, 8, 3, {20, 21, 22}},
    {"IsCutAtTheNumberAskedFor", 1, 2, 3, {21, 22}},
    {"IsCompleteWithTheLastRecord", 3, 2, 65535, {23, 24}},
    {"IsEmptyBeyondItsEnd", 6, 8, 65535, {}},
};

class HxFakeList : public HxFake, public testing::WithParamInterface<ListCase> {
protected:
    void SetUp() override {
        HxFake::SetUp();
        hxfake::On<&HX_LD_GetStatus>().Always(hxfake::List(
            std::vector{StatusOfVirtualDisk(20), StatusOfVirtualDisk(21), StatusOfVirtualDisk(22),
                        StatusOfVirtualDisk(23), StatusOfVirtualDisk(24)},
            3));
    }
};

TEST_P(HxFakeList, ComesInPages) {
    const ListCase& list = GetParam();
    LdStatusPage page = PageFrom(list.start, list.wanted);
    EXPECT_EQ(0, GetStatus(page));
    EXPECT_EQ(list.ids.size(), page.header.numReturned);
    EXPECT_EQ(list.next, page.header.nextStartingIndex);
    for (std::size_t i = 0; i < std::size(page.items); ++i) {
        EXPECT_EQ(i < list.ids.size() ? list.ids[i] : 0, page.items[i].LDID) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Pages, HxFakeList, testing::ValuesIn(kLists),
                         [](const auto& each) { return std::string(each.param.name); });

// ---- Events ----

using HxFakeEvents = HxFake;

TEST_F(HxFakeEvents, AreHandedOutOldestFirstAndOnce) {
    hxfake::QueueEvents(0, {EventWithNumber(1), EventWithNumber(2)});
    hxfake::QueueEvents(0, {EventWithNumber(3)});
    Event events[50] = {};
    HX_U8 count = 0;
    EXPECT_EQ(0, HX_EVT_GetEvent(0, 2, &count, events));
    EXPECT_EQ(2, count);
    EXPECT_EQ(1u, events[0].SequenceNo);
    EXPECT_EQ(2u, events[1].SequenceNo);
    HX_EVT_GetEvent(0, 50, &count, events);
    EXPECT_EQ(1, count);
    EXPECT_EQ(3u, events[0].SequenceNo);
    HX_EVT_GetEvent(0, 50, &count, events);
    EXPECT_EQ(0, count);
}

TEST_F(HxFakeEvents, StayWithTheirAdapter) {
    hxfake::QueueEvents(1, {EventWithNumber(1)});
    Event event{};
    HX_U8 count = 9;
    HX_EVT_GetEvent(0, 1, &count, &event);
    EXPECT_EQ(0, count);
    HX_EVT_GetEvent(1, 1, &count, &event);
    EXPECT_EQ(1, count);
}

// ---- Reset ----

TEST_F(HxFake, ForgetsEverythingOnReset) {
    hxfake::On<&HX_AdapterMute>().Once(1).Always(2).Inspect([](HX_U8) { FAIL(); });
    hxfake::QueueEvents(0, {EventWithNumber(1)});
    hxfake::NoteCalls(false);
    hxfake::Reset();

    EXPECT_EQ(0, HX_AdapterMute(0));
    EXPECT_EQ(1u, hxfake::On<&HX_AdapterMute>().CallCount());
    EXPECT_EQ(0u, hxfake::AnswersLeft());
    hxfake::QueueEvents(0, {});
    Event event{};
    HX_U8 count = 9;
    HX_EVT_GetEvent(0, 1, &count, &event);
    EXPECT_EQ(0, count);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_AdapterMute(0)", "HX_EVT_GetEvent(0, 1, &, &)"));
}

}  // namespace
