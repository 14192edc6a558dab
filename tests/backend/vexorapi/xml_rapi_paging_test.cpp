// Page sizes and the headers of list requests.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>

#include "hxfake.h"
#include "xml_rapi_paging.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

// A header in which every field differs from what any of the functions would store.
RequestHeader FilledHeader() {
    return {.version = 9,
            .requestType = 8,
            .startingIndexOrId = 700,
            .numRequested = 600,
            .numReturned = 500,
            .nextStartingIndex = 400,
            .reserved1 = {1, 2, 3, 4, 5, 6}};
}

// ---- setRequestHeader ----

TEST(SetRequestHeader, StoresTheThreeValues) {
    RequestHeader header = FilledHeader();
    setRequestHeader(&header, 2, 65535, 512);
    EXPECT_EQ(header.requestType, 2);
    EXPECT_EQ(header.startingIndexOrId, 65535);
    EXPECT_EQ(header.numRequested, 512);
}

TEST(SetRequestHeader, ZeroesEverythingElse) {
    RequestHeader header = FilledHeader();
    setRequestHeader(&header, 2, 65535, 512);
    EXPECT_EQ(header.version, 0);
    EXPECT_EQ(header.numReturned, 0);
    EXPECT_EQ(header.nextStartingIndex, 0);
    EXPECT_THAT(header.reserved1, Each(0));
}

// ---- ResetRequestHeader ----

TEST(ResetRequestHeader, GoesBackToTheFirstEntry) {
    RequestHeader header = FilledHeader();
    ResetRequestHeader(&header);
    EXPECT_EQ(header.startingIndexOrId, 0);
    EXPECT_EQ(header.nextStartingIndex, 0);
}

TEST(ResetRequestHeader, KeepsTheOtherFields) {
    RequestHeader header = FilledHeader();
    ResetRequestHeader(&header);
    EXPECT_EQ(header.version, 9);
    EXPECT_EQ(header.requestType, 8);
    EXPECT_EQ(header.numRequested, 600);
    EXPECT_EQ(header.numReturned, 500);
    EXPECT_THAT(header.reserved1, ElementsAre(1, 2, 3, 4, 5, 6));
}

// ---- AdjustRequestNum ----

HX_U16 Adjusted(HX_U16 wanted, HX_U16 adapter, HX_U16 interface_limit) {
    RequestHeader header{};
    header.numRequested = wanted;
    AdjustRequestNum(&header, adapter, interface_limit);
    return header.numRequested;
}

TEST(AdjustRequestNum, TakesTheSmallestOfTheThree) {
    EXPECT_EQ(Adjusted(1000, 200, 128), 128);
    EXPECT_EQ(Adjusted(50, 200, 128), 50);
    EXPECT_EQ(Adjusted(300, 100, 128), 100);
    EXPECT_EQ(Adjusted(150, 200, 128), 128);
}

TEST(AdjustRequestNum, KeepsARequestForNothing) { EXPECT_EQ(Adjusted(0, 200, 128), 0); }

TEST(AdjustRequestNum, AsksNothingOfAnAdapterThatMovesNothing) {
    EXPECT_EQ(Adjusted(50, 0, 128), 0);
}

TEST(AdjustRequestNum, ComparesUpToTheLargestNumbers) {
    EXPECT_EQ(Adjusted(65535, 65535, 65535), 65535);
    EXPECT_EQ(Adjusted(65535, 32768, 65535), 32768);
}

TEST(AdjustRequestNum, ChangesNumRequestedAlone) {
    RequestHeader header = FilledHeader();
    AdjustRequestNum(&header, 5, 128);
    RequestHeader expected = FilledHeader();
    expected.numRequested = 5;
    EXPECT_EQ(std::memcmp(&header, &expected, sizeof header), 0);
}

// ---- ResetnumRequestOfRequestHead ----

struct Progress {
    HX_U16 wanted;
    HX_U16 received;
};

HX_U16 NextPage(Progress progress, HX_U16 adapter, HX_U16 interface_limit) {
    RequestHeader header{};
    header.numRequested = 777;
    header.nextStartingIndex = progress.received;
    ResetnumRequestOfRequestHead(&header, adapter, progress.wanted, progress.received,
                                 interface_limit);
    return header.numRequested;
}

TEST(ResetnumRequest, LeavesACompleteListAsItIs) {
    for (const HX_U16 received : std::initializer_list<HX_U16>{0, 128, 65535}) {
        RequestHeader header = FilledHeader();
        header.nextStartingIndex = 65535;
        ResetnumRequestOfRequestHead(&header, 1, 300, received, 2);
        EXPECT_EQ(header.numRequested, 600);
    }
}

TEST(ResetnumRequest, AsksForWhatIsMissing) {
    EXPECT_EQ(NextPage({.wanted = 300, .received = 250}, 500, 128), 50);
}

TEST(ResetnumRequest, AsksForNoMoreThanTheInterfaceMoves) {
    EXPECT_EQ(NextPage({.wanted = 300, .received = 128}, 500, 128), 128);
}

TEST(ResetnumRequest, AsksForNoMoreThanTheAdapterMoves) {
    EXPECT_EQ(NextPage({.wanted = 300, .received = 128}, 100, 128), 100);
    EXPECT_EQ(NextPage({.wanted = 300, .received = 128}, 150, 128), 128);
}

TEST(ResetnumRequest, AsksForExactlyWhatIsMissingAtEachLimit) {
    EXPECT_EQ(NextPage({.wanted = 300, .received = 172}, 128, 200), 128);
    EXPECT_EQ(NextPage({.wanted = 300, .received = 172}, 200, 128), 128);
}

TEST(ResetnumRequest, AsksForNothingWhenAllHasCome) {
    EXPECT_EQ(NextPage({.wanted = 300, .received = 300}, 500, 128), 0);
}

TEST(ResetnumRequest, AsksForNothingWhenMoreThanWantedHasCome) {
    EXPECT_EQ(NextPage({.wanted = 300, .received = 301}, 500, 128), 0);
    EXPECT_EQ(NextPage({.wanted = 0, .received = 65534}, 65535, 65535), 0);
}

TEST(ResetnumRequest, CountsWhatIsMissingBeyondSixteenBitsOfSign) {
    EXPECT_EQ(NextPage({.wanted = 65535, .received = 1}, 65535, 65535), 65534);
}

TEST(ResetnumRequest, ChangesNumRequestedAlone) {
    RequestHeader header = FilledHeader();
    ResetnumRequestOfRequestHead(&header, 500, 300, 250, 128);
    RequestHeader expected = FilledHeader();
    expected.numRequested = 50;
    EXPECT_EQ(std::memcmp(&header, &expected, sizeof header), 0);
}

// ---- Get_Adapter_MaxBuffersize ----

class MaxBuffersize : public testing::Test {
protected:
    void SetUp() override { hxfake::Reset(); }
    void TearDown() override { hxfake::Reset(); }
};

Adapter_Info AdapterThatMoves(HX_U16 kib) {
    Adapter_Info info{};
    info.MaxBufferSize = kib;
    return info;
}

TEST_F(MaxBuffersize, IsWhatTheAdapterSays) {
    hxfake::On<&HX_Adapter_GetInfo>().Once(0, hxfake::Fill(AdapterThatMoves(64)));
    EXPECT_EQ(Get_Adapter_MaxBuffersize(3), 64);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_Adapter_GetInfo(3, &, &)"));
}

TEST_F(MaxBuffersize, OfAllAdaptersIsZeroAndNobodyIsAsked) {
    EXPECT_EQ(Get_Adapter_MaxBuffersize(255), 0);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(MaxBuffersize, OfTheLastAdapterIsAskedFor) {
    hxfake::On<&HX_Adapter_GetInfo>().Once(0, hxfake::Fill(AdapterThatMoves(65535)));
    EXPECT_EQ(Get_Adapter_MaxBuffersize(254), 65535);
}

TEST_F(MaxBuffersize, DoesNotLookAtTheCode) {
    hxfake::On<&HX_Adapter_GetInfo>().Once(7, hxfake::Fill(AdapterThatMoves(64)));
    EXPECT_EQ(Get_Adapter_MaxBuffersize(0), 64);
}

TEST_F(MaxBuffersize, IsZeroWhenTheAdapterFailsWithoutWriting) {
    hxfake::On<&HX_Adapter_GetInfo>().Once(7);
    EXPECT_EQ(Get_Adapter_MaxBuffersize(0), 0);
}

TEST_F(MaxBuffersize, HandsTheControllerZeroedRecords) {
    HX_U8 count = 1;
    Adapter_Info info;
    std::memset(&info, 1, sizeof info);
    hxfake::On<&HX_Adapter_GetInfo>().Inspect([&](HX_U8, HX_U8* number, Adapter_Info* record) {
        count = *number;
        info = *record;
    });
    Get_Adapter_MaxBuffersize(0);
    const Adapter_Info zero{};
    EXPECT_EQ(count, 0);
    EXPECT_EQ(std::memcmp(&info, &zero, sizeof info), 0);
}

}  // namespace
