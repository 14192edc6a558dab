// The events with which a new machine starts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <string>
#include <tuple>
#include <vector>

#include "controllers/virtual/support/list_calls.h"
#include "hxraid.h"

namespace {

using testing::Each;
using testing::ElementsAre;

// One call for at most `max` events, with room for one more, which stays as it is.
std::vector<Event> Take(HX_U8 adapter, HX_U8 max) {
    std::vector<Event> events(max + 1u);
    std::memset(events.data(), 0xA5, events.size() * sizeof(Event));
    HX_U8 count = 0xA5;
    EXPECT_EQ(0, HX_EVT_GetEvent(adapter, max, &count, events.data()));
    EXPECT_LE(count, max);
    EXPECT_EQ(0xA5A5, events.back().Class);
    events.resize(std::min(count, max));
    return events;
}

struct Taken {
    std::vector<Event> events;
    std::vector<std::size_t> calls;  // how many events each call gave
    std::time_t before;
};

Taken TakeAll(HX_U8 adapter, HX_U8 max) {
    Taken taken{{}, {}, std::time(nullptr)};
    HX_API_Initialize();
    taken.calls.push_back(Take(adapter, 0).size());
    for (auto page = Take(adapter, max); !page.empty(); page = Take(adapter, max)) {
        taken.calls.push_back(page.size());
        taken.events.insert(taken.events.end(), page.begin(), page.end());
    }
    HX_API_Finalize();
    return taken;
}

class SimulatorEvents : public SimulatorTest {
protected:
    // All events are taken before a test opens a machine of its own: one that is open already would
    // be older than `before`.
    static void SetUpTestSuite() { From(0); }

    // Adapter 0 hands its events over in calls for 5, adapter 1 in one for 50; before that comes a
    // call for none.
    static const Taken& From(HX_U8 adapter) {
        static const Taken taken[] = {TakeAll(0, 5), TakeAll(1, 50)};
        return taken[adapter];
    }
    static const std::vector<Event>& Of(HX_U8 adapter) { return From(adapter).events; }
};

using What = std::tuple<int, int, int>;  // class, code, device

std::vector<What> WhatHappened(const std::vector<Event>& events) {
    std::vector<What> what;
    for (const Event& event : events) what.emplace_back(event.Class, event.Code, event.DeviceID);
    return what;
}

TEST_F(SimulatorEvents, OfAdapterZeroTellWhatHasBeenFound) {
    const std::vector<What> expected = {
        {0, 9, 0},                                                              // the adapter
        {4, 0, 0},                                                              // the expander
        {2, 1, 0},  {2, 1, 1},  {2, 1, 2},  {2, 1, 3},  {2, 1, 4},  {2, 1, 5},  // the disks
        {2, 1, 6},  {2, 1, 7},  {2, 1, 8},  {2, 1, 9},  {2, 1, 10}, {2, 1, 11},
        {2, 1, 12}, {2, 1, 13}, {2, 1, 14}, {2, 1, 16}, {9, 0, 0},  // the battery
        {13, 0, 0},                                                 // the disk group
        {1, 2, 0},  {1, 2, 2}                                       // the virtual disks
    };
    EXPECT_EQ(expected, WhatHappened(Of(0)));
}

TEST_F(SimulatorEvents, OfAdapterOneTellWhatHasBeenFound) {
    const std::vector<What> expected = {{0, 9, 1}, {2, 1, 0}, {2, 1, 1}, {2, 1, 2}, {2, 1, 3},
                                        {2, 1, 4}, {2, 1, 5}, {2, 1, 6}, {2, 1, 7}, {1, 2, 0}};
    EXPECT_EQ(expected, WhatHappened(Of(1)));
}

TEST_F(SimulatorEvents, AreNumberedFromOneOn) {
    for (const HX_U8 adapter : {HX_U8{0}, HX_U8{1}}) {
        HX_U32 number = 0;
        for (const Event& event : Of(adapter)) EXPECT_EQ(++number, event.SequenceNo);
    }
}

TEST_F(SimulatorEvents, AreInformationAboutTheirAdapter) {
    for (const HX_U8 adapter : {HX_U8{0}, HX_U8{1}}) {
        for (const Event& event : Of(adapter)) {
            EXPECT_EQ(2, event.Severity);
            EXPECT_EQ(adapter, event.AdapterID);
        }
    }
}

TEST_F(SimulatorEvents, HaveTheTimeAtWhichTheyWereTaken) {
    for (const Event& event : Of(0)) {
        EXPECT_GE(event.TimeStamp, From(0).before);
        EXPECT_LE(event.TimeStamp, std::time(nullptr));
    }
}

TEST_F(SimulatorEvents, NameTheAdapterBySerialNumber) {
    for (const HX_U8 adapter : {HX_U8{0}, HX_U8{1}}) {
        const Event& found = Of(adapter).front();
        EXPECT_EQ(13, found.SenseDataLength);
        EXPECT_STREQ(adapter == 0 ? "VC08-24100001" : "VC04-24100002",
                     reinterpret_cast<const char*>(found.SenseData));
    }
}

TEST_F(SimulatorEvents, HaveNothingElseToSay) {
    for (const Event& event : Of(0)) {
        EXPECT_THAT(event.Params, Each(0));
        EXPECT_EQ(0, event.Reserved2);
        EXPECT_EQ(event.Class == 0 ? 13 : 0, event.SenseDataLength);
    }
}

TEST_F(SimulatorEvents, ComeOnce) {
    ASSERT_THAT(Take(1, 50), testing::SizeIs(10));
    EXPECT_THAT(Take(1, 50), testing::IsEmpty());
}

TEST(SimulatorEventsOfAStateFile, DoNotComeAgainAfterTheLibraryWasClosed) {
    const StateFile state;
    HX_API_Initialize();
    ASSERT_THAT(Take(1, 50), testing::SizeIs(10));
    HX_API_Finalize();
    HX_API_Initialize();
    EXPECT_THAT(Take(1, 50), testing::IsEmpty());
    HX_API_Finalize();
}

TEST_F(SimulatorEvents, ComeAsManyToACallAsItAsksFor) {
    EXPECT_THAT(From(0).calls, ElementsAre(0, 5, 5, 5, 5, 2));
    EXPECT_THAT(From(1).calls, ElementsAre(0, 10));
}

TEST_F(SimulatorEvents, NeedAnAddressForThemselvesAndOneForTheirCount) {
    Event event{};
    HX_U8 count = 7;
    EXPECT_EQ(203, HX_EVT_GetEvent(0, 1, nullptr, &event));
    EXPECT_EQ(203, HX_EVT_GetEvent(0, 1, &count, nullptr));
    EXPECT_EQ(7, count);
}

}  // namespace
