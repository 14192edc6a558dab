// Taking events, as a caller does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "hxraid.h"

namespace hxsim {
namespace {

class EventFetch : public testing::Test {
protected:
    void SetUp() override { HX_API_Initialize(); }
    void TearDown() override { HX_API_Finalize(); }

    HX_U8 count = 77;
    std::array<Event, 50> events{};
};

TEST_F(EventFetch, GivesEachEventOnce) {
    ASSERT_EQ(0, HX_EVT_GetEvent(0, 2, &count, events.data()));
    EXPECT_EQ(2, count);
    EXPECT_EQ(0, events[0].Class);
    EXPECT_EQ(9, events[0].Code);
    EXPECT_EQ(1u, events[0].SequenceNo);
    ASSERT_EQ(0, HX_EVT_GetEvent(0, 2, &count, events.data()));
    EXPECT_EQ(3u, events[0].SequenceNo);
}

TEST_F(EventFetch, SaysWhenThereIsNoneAnyMore) {
    int calls = 0;
    do {
        ASSERT_EQ(0, HX_EVT_GetEvent(0, 50, &count, events.data()));
    } while (count != 0 && ++calls < 20);
    EXPECT_EQ(0, count);
}

TEST_F(EventFetch, GivesNoneWhenNoneIsAskedFor) {
    ASSERT_EQ(0, HX_EVT_GetEvent(0, 0, &count, events.data()));
    EXPECT_EQ(0, count);
}

TEST_F(EventFetch, IsRefusedWithoutAnAddressOrAnAdapter) {
    EXPECT_EQ(203, HX_EVT_GetEvent(0, 50, nullptr, events.data()));
    EXPECT_EQ(203, HX_EVT_GetEvent(0, 50, &count, nullptr));
    EXPECT_EQ(201, HX_EVT_GetEvent(9, 50, &count, events.data()));
    EXPECT_EQ(77, count);
}

}  // namespace
}  // namespace hxsim
