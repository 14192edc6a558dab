// A check-in with a library and a controller that answer as the test says.
#include "service/hxs_collector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "service/scripted_source.h"

namespace {

using hxservice::CheckIn;
using hxservice::Collector;
using testing::ElementsAre;
using testing::IsEmpty;

class CheckInTest : public testing::Test {
protected:
    ScriptedSource source_;
    KeptLog log_;
    Collector collector_{source_, log_, std::nullopt};
};

TEST_F(CheckInTest, TellsEachNewEventOnce) {
    source_.queue = {"a0/pd5 has failed"};
    EXPECT_EQ(collector_.Collect(), CheckIn::kDone);
    source_.queue = {"a0/vd0 is degraded", "a0/pd5 was removed"};
    EXPECT_EQ(collector_.Collect(), CheckIn::kDone);
    EXPECT_EQ(collector_.Collect(), CheckIn::kDone);
    EXPECT_THAT(log_.lines, ElementsAre("1 adapter", "event 0 [info] a0/pd5 has failed",
                                        "event 1 [info] a0/vd0 is degraded",
                                        "event 2 [info] a0/pd5 was removed"));
}

TEST_F(CheckInTest, TellsNothingThatWasStoredBeforeTheServiceStarted) {
    source_.store[0] = "old";
    source_.next = 1;
    source_.queue = {"new"};
    collector_.Collect();
    EXPECT_THAT(log_.lines, ElementsAre("1 adapter", "event 1 [info] new"));
}

TEST_F(CheckInTest, TakesNothingWhileTheStoreCannotBeWritten) {
    source_.queue = {"a0/pd5 has failed"};
    source_.closed = "/db: the event store's folder: No such file or directory";
    EXPECT_EQ(collector_.Collect(), CheckIn::kStoreClosed);
    EXPECT_EQ(collector_.Collect(), CheckIn::kStoreClosed);
    EXPECT_THAT(source_.check_ins, IsEmpty());
    EXPECT_THAT(log_.lines,
                ElementsAre("1 adapter",
                            "/db: the event store's folder: No such file or directory. No event "
                            "is taken from a controller until it can be written"));
    source_.closed.clear();
    EXPECT_EQ(collector_.Collect(), CheckIn::kDone);
    log_.lines.erase(log_.lines.begin(), log_.lines.begin() + 2);
    EXPECT_THAT(log_.lines, ElementsAre("the event store can be written again",
                                        "event 0 [info] a0/pd5 has failed"));
}

TEST_F(CheckInTest, TellsAnotherReasonWhyTheStoreIsClosed) {
    source_.closed = "no folder";
    collector_.Collect();
    source_.closed = "no room";
    collector_.Collect();
    EXPECT_THAT(log_.lines,
                ElementsAre("1 adapter",
                            "no folder. No event is taken from a controller until it can be "
                            "written",
                            "no room. No event is taken from a controller until it can be "
                            "written"));
}

TEST_F(CheckInTest, TakesNothingWhileTheStoreCannotBeRead) {
    source_.queue = {"a0/pd5 has failed"};
    source_.unreadable = "the event store is damaged";
    EXPECT_EQ(collector_.Collect(), CheckIn::kStoreClosed);
    EXPECT_THAT(source_.check_ins, IsEmpty());
    source_.unreadable.clear();
    collector_.Collect();
    EXPECT_THAT(log_.lines, ElementsAre("1 adapter", "the event store is damaged",
                                        "event 0 [info] a0/pd5 has failed",
                                        "the event store can be read again"));
}

TEST_F(CheckInTest, TakesNothingWhileTheStoreIsDamaged) {
    source_.queue = {"a0/pd5 has failed"};
    source_.look.state = hxconditions::Store::State::kDamaged;
    source_.look.reason = "it has 0 bytes, and its head 112";
    EXPECT_EQ(collector_.Collect(), CheckIn::kStoreClosed);
    EXPECT_THAT(source_.check_ins, IsEmpty());
    EXPECT_EQ(collector_.Store().state, hxconditions::Store::State::kDamaged);
    source_.look = ScriptedSource::GoodStore();
    EXPECT_EQ(collector_.Collect(), CheckIn::kDone);
    EXPECT_EQ(collector_.Store().state, hxconditions::Store::State::kGood);
}

TEST_F(CheckInTest, TellsATroubleOfTheControllerOnceAndItsEnd) {
    source_.trouble = "the controller could not be opened: hxsim.db is damaged";
    EXPECT_EQ(collector_.Collect(), CheckIn::kUnreachable);
    EXPECT_EQ(collector_.Collect(), CheckIn::kUnreachable);
    source_.trouble.clear();
    EXPECT_EQ(collector_.Collect(), CheckIn::kDone);
    EXPECT_THAT(log_.lines, ElementsAre("the controller could not be opened: hxsim.db is damaged",
                                        "1 adapter", "the controller answers again"));
}

TEST_F(CheckInTest, WaitsForAnAdapterThatIsNotThereYet) {
    source_.adapters = 0;
    EXPECT_EQ(collector_.Collect(), CheckIn::kUnreachable);
    EXPECT_THAT(source_.check_ins, IsEmpty());
    source_.adapters = 2;
    EXPECT_EQ(collector_.Collect(), CheckIn::kDone);
    EXPECT_THAT(source_.check_ins, ElementsAre(2));
    EXPECT_THAT(log_.lines,
                ElementsAre("there is no adapter", "2 adapters", "the controller answers again"));
}

TEST_F(CheckInTest, AsksNoMoreAdaptersThanTheLibraryTakes) {
    source_.adapters = 5;
    collector_.Collect();
    EXPECT_THAT(source_.check_ins, ElementsAre(4));
    EXPECT_THAT(log_.lines,
                ElementsAre("5 adapters", "events of the first 4 adapters alone can be collected"));
}

TEST_F(CheckInTest, TellsHowManyEventsWereOverwrittenBeforeTheyCouldBeTold) {
    source_.capacity = 3;
    collector_.Collect();
    source_.queue = {"zero", "one", "two", "three", "four"};
    collector_.Collect();
    EXPECT_THAT(log_.lines,
                ElementsAre("1 adapter",
                            "2 events were overwritten in the event store before this log could "
                            "tell them",
                            "event 2 [info] two", "event 3 [info] three", "event 4 [info] four"));
}

TEST_F(CheckInTest, TellsAllOfALargeBatch) {
    collector_.Collect();
    for (int number = 0; number < 1000; ++number) source_.queue.push_back(std::to_string(number));
    collector_.Collect();
    ASSERT_EQ(log_.lines.size(), 1001U);
    EXPECT_EQ(log_.lines.back(), "event 999 [info] 999");
}

TEST_F(CheckInTest, TellsThatTheStoreWasResetAndWhatIsNewInIt) {
    source_.queue = {"one", "two"};
    collector_.Collect();
    source_.ResetStore();
    source_.queue = {"three"};
    collector_.Collect();
    log_.lines.erase(log_.lines.begin(), log_.lines.begin() + 3);
    EXPECT_THAT(log_.lines,
                ElementsAre("the event store was reset: it ended at event 2 and ends at event 0",
                            "event 0 [info] three"));
}

TEST_F(CheckInTest, GoesOnWhereAnEarlierProcessEnded) {
    source_.store = {{0, "zero"}, {1, "one"}, {2, "two"}};
    source_.next = 3;
    Collector again(source_, log_, 1);
    again.Collect();
    EXPECT_THAT(log_.lines, ElementsAre("1 adapter", "event 1 [info] one", "event 2 [info] two"));
    EXPECT_EQ(again.Place(), 3U);
}

TEST_F(CheckInTest, HandsOutItsNewsOnce) {
    source_.queue = {"one", "two"};
    collector_.Collect();
    EXPECT_EQ(collector_.TakeNews().events.size(), 2U);
    EXPECT_EQ(collector_.TakeNews().events.size(), 0U);
}

TEST_F(CheckInTest, CountsTheEventsThatAreLost) {
    source_.capacity = 3;
    collector_.Collect();
    source_.queue = {"zero", "one", "two", "three", "four"};
    collector_.Collect();
    const hxservice::News gap = collector_.TakeNews();
    EXPECT_EQ(gap.lost, 2U);
    EXPECT_FALSE(gap.was_reset);
    source_.ResetStore();
    collector_.Collect();
    const hxservice::News reset = collector_.TakeNews();
    EXPECT_EQ(reset.lost, 0U);
    EXPECT_TRUE(reset.was_reset);
}

TEST_F(CheckInTest, TellsTheStateOfTheStore) {
    using State = hxconditions::Store::State;
    source_.closed = "/db/vx_hx_raid.ev: cannot write the event store: Is a directory";
    collector_.Collect();
    EXPECT_EQ(collector_.Store().state, State::kNotWritable);
    EXPECT_EQ(collector_.Store().path, "/db/vx_hx_raid.ev");
    EXPECT_EQ(collector_.Store().reason, "cannot write the event store: Is a directory");
    source_.closed.clear();
    source_.unreadable = "it is damaged";
    collector_.Collect();
    EXPECT_EQ(collector_.Store().state, State::kUnreadable);
    EXPECT_EQ(collector_.Store().path, "/db/vx_hx_raid.ev");
    EXPECT_EQ(collector_.Store().reason, "it is damaged");
    source_.unreadable.clear();
    collector_.Collect();
    EXPECT_EQ(collector_.Store().state, State::kGood);
}

}  // namespace
