// The queue of events.
#include "rules/hxsim_event_queue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>

namespace hxsim {
namespace {

class EventQueue : public testing::Test {
protected:
    // Queues so many events, with the devices from 1 on.
    void Fill(unsigned count) {
        for (unsigned i = 1; i <= count; ++i) {
            Queue(adapter, i * 1000, EventKind::kDiskOnline, static_cast<HX_U16>(i));
        }
    }

    Adapter adapter{};
    std::array<Event, 255> taken{};
};

TEST_F(EventQueue, SayWhatHappenedToWhomAndWhen) {
    adapter.id = 3;
    adapter.next_event = 77;
    Queue(adapter, 1234567, EventKind::kRemapAdded, 9, {1, 2, 3, 4});
    ASSERT_EQ(1, Take(adapter, 50, taken.data()));
    const Event& event = taken[0];
    EXPECT_EQ(2, event.Class);
    EXPECT_EQ(37, event.Code);
    EXPECT_EQ(1234u, event.TimeStamp);
    EXPECT_EQ(9, event.DeviceID);
    EXPECT_EQ(2, event.Severity);
    EXPECT_EQ(3, event.AdapterID);
    EXPECT_EQ(77u, event.SequenceNo);
    EXPECT_EQ(1u, event.Params[0]);
    EXPECT_EQ(4u, event.Params[3]);
    EXPECT_EQ(0, event.SenseDataLength);
    EXPECT_EQ(78u, adapter.next_event);
}

TEST_F(EventQueue, CarryATextCutToItsField) {
    Queue(adapter, 0, EventKind::kAdapterFound, 0, {}, "abc");
    Queue(adapter, 0, EventKind::kAdapterFound, 0, {}, "0123456789012345678901234567890123456789");
    ASSERT_EQ(2, Take(adapter, 50, taken.data()));
    EXPECT_EQ(3, taken[0].SenseDataLength);
    EXPECT_STREQ("abc", reinterpret_cast<const char*>(taken[0].SenseData));
    EXPECT_EQ(30, taken[1].SenseDataLength);
    EXPECT_EQ(0, std::memcmp("012345678901234567890123456789", taken[1].SenseData, 30));
}

TEST_F(EventQueue, AreTakenOnceAndTheOldestFirst) {
    Fill(5);
    ASSERT_EQ(2, Take(adapter, 2, taken.data()));
    EXPECT_EQ(1, taken[0].DeviceID);
    EXPECT_EQ(2, taken[1].DeviceID);
    ASSERT_EQ(3, Take(adapter, 50, taken.data()));
    EXPECT_EQ(3, taken[0].DeviceID);
    EXPECT_EQ(0, Take(adapter, 50, taken.data()));
}

TEST_F(EventQueue, NoneIsTakenWhenNoneIsAskedFor) {
    Fill(1);
    EXPECT_EQ(0, Take(adapter, 0, taken.data()));
    EXPECT_EQ(1u, adapter.events.size());
}

TEST_F(EventQueue, FillTheQueueWithoutALoss) {
    Fill(512);
    EXPECT_EQ(512u, adapter.events.size());
    EXPECT_EQ(1u, adapter.events.front().number);
    EXPECT_EQ(1, adapter.events.front().event.Code);
}

TEST_F(EventQueue, OneTooManyLosesTheOldestAndSaysSo) {
    Fill(513);
    EXPECT_EQ(512u, adapter.events.size());
    const Event& told = adapter.events.front().event;
    EXPECT_EQ(0, told.Class);
    EXPECT_EQ(65535, told.Code);
    EXPECT_EQ(2u, told.Params[2]);  // the oldest, and the one whose place this one has
    EXPECT_EQ(2u, told.SequenceNo);
    EXPECT_EQ(3u, adapter.events[1].event.SequenceNo);
    EXPECT_EQ(513u, adapter.events.back().event.SequenceNo);
}

TEST_F(EventQueue, ThousandTooManyAreToldOfInOneRow) {
    Fill(1512);
    EXPECT_EQ(512u, adapter.events.size());
    EXPECT_EQ(1001u, adapter.events[0].event.Params[2]);
    EXPECT_EQ(1001u, adapter.events[0].event.SequenceNo);
    EXPECT_EQ(1512u, adapter.events[0].event.TimeStamp);
    EXPECT_EQ(1u, adapter.events[1].event.Code);
    EXPECT_EQ(1002u, adapter.events[1].event.SequenceNo);
}

TEST_F(EventQueue, LostAfterTheTellingWasTakenAreCountedAnew) {
    Fill(513);
    Take(adapter, 1, taken.data());
    EXPECT_EQ(511u, adapter.events.size());
    Fill(2);
    EXPECT_EQ(512u, adapter.events.size());
    EXPECT_EQ(65535, adapter.events[0].event.Code);
    EXPECT_EQ(2u, adapter.events[0].event.Params[2]);
}

TEST_F(EventQueue, FromBeforeTheEpochHaveTheTimeZero) {
    Queue(adapter, -5000, EventKind::kDiskOnline, 0);
    EXPECT_EQ(0u, adapter.events[0].event.TimeStamp);
}

}  // namespace
}  // namespace hxsim
