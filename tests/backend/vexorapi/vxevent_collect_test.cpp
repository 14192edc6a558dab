// Collection of events from the controllers, the change counters, and the queries.
#include <errno.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <semaphore.h>

#include <string>
#include <vector>

#include "debug_log.h"
#include "vxevent_store.h"

// ---- The semaphore ------------------------------------------------------------------------------
// The platform's, replaced: the tests see what the store asks of it, and let a wait fail.

namespace {
std::vector<std::string> semaphore_calls;
bool wait_fails = false;
}  // namespace

extern "C" {
int sem_init(sem_t*, int shared, unsigned value) noexcept {
    semaphore_calls.push_back("init " + std::to_string(shared) + " " + std::to_string(value));
    return 0;
}
int sem_destroy(sem_t*) noexcept {
    semaphore_calls.push_back("destroy");
    return 0;
}
int sem_wait(sem_t*) {
    semaphore_calls.push_back("wait");
    if (wait_fails) errno = EINTR;
    return wait_fails ? -1 : 0;
}
int sem_post(sem_t*) noexcept {
    semaphore_calls.push_back("post");
    return 0;
}
}

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

class Collection : public EventStore {
protected:
    Collection() { semaphore_calls.clear(); }
    ~Collection() override { wait_fails = false; }
};

bool operator==(const VX_HX_ChangeCounters& a, const VX_HX_ChangeCounters& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

std::vector<Event> EventsOfClass(int event_class, HX_U32 first, HX_U32 count) {
    std::vector<Event> events;
    for (HX_U32 i = 0; i < count; ++i) events.push_back(MakeEvent(event_class, 0, first + i));
    return events;
}

// ---- The life of the store --------------------------------------------------------------------

TEST_F(Collection, SemaphoreIsSharedAndFiveWide) {
    VX_EvInit();
    VX_EvShutdown();
    EXPECT_THAT(semaphore_calls, ElementsAre("init 1 5", "destroy"));
}

TEST_F(Collection, InitForgetsWhatWasInMemory) {
    CheckIn(DiskEvents(1, 3));
    VX_EvInit();
    EXPECT_EQ(0u, g_VX_EventExt.EvLogHeader.NumOfEvent);
    EXPECT_EQ(0u, g_VX_EventExt.HXChangeCounters.Whatever_Change);
    EXPECT_EQ(0u, g_VX_EventExt.EvSeqNo.SequenceNo[0]);
    EXPECT_EQ(0u, g_VX_EventExt.Flags);
    EXPECT_EQ(0, g_VX_EventExt.Sem_RWFile);
    EXPECT_STREQ("", g_VX_EventExt.Filename);
}

TEST_F(Collection, EveryOperationButTheCountersWaitsAndPosts) {
    const auto calls_of = [](auto operation) {
        semaphore_calls.clear();
        operation();
        return semaphore_calls;
    };
    HX_U32 n = 0;
    HX_U32 s = 0;
    HX_U32 e = 0;
    VX_HX_ChangeCounters counters;
    EXPECT_THAT(calls_of([] { VX_EvFile_CheckIn(1); }), ElementsAre("wait", "post"));
    EXPECT_THAT(calls_of([&] { VX_EvGet(&n, &s, &e, nullptr); }), ElementsAre("wait", "post"));
    EXPECT_THAT(calls_of([&] { VX_EvGetInfo(&s, &n); }), ElementsAre("wait", "post"));
    EXPECT_THAT(calls_of([] { VX_EvFile_Reset(); }), ElementsAre("wait", "post"));
    EXPECT_THAT(calls_of([&] { VX_EvGetChangeCounters(&counters); }), IsEmpty());
}

TEST_F(Collection, AFailedWaitSkipsTheOperationAndPostsAllTheSame) {
    CheckIn(DiskEvents(1, 2));
    const std::string file = root_.Read(kEventFile);
    hxfake::QueueEvents(0, DiskEvents(3, 1));
    hxfake::ForgetCalls();
    semaphore_calls.clear();
    wait_fails = true;

    VX_EvFile_CheckIn(1);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
    HX_U32 n = 2;
    HX_U32 s = 7;
    HX_U32 e = 8;
    Event events[2];
    EXPECT_EQ(0, VX_EvGet(&n, &s, &e, events));
    EXPECT_THAT((std::vector<HX_U32>{n, s, e}), ElementsAre(2, 7, 8));
    VX_EvGetInfo(&s, &e);
    EXPECT_EQ(7u, s);
    VX_EvFile_Reset();
    EXPECT_EQ(file, root_.Read(kEventFile));
    EXPECT_THAT(semaphore_calls,
                ElementsAre("wait", "post", "wait", "post", "wait", "post", "wait", "post"));
}

TEST_F(Collection, AFailedWaitDeliversEventsOfZeros) {
    CheckIn(DiskEvents(1, 2));
    wait_fails = true;
    EXPECT_THAT(Get(2, 0, 0).events, Each(testing::Truly(IsZero)));
}

TEST_F(Collection, WithoutAStoreNothingBlocksAndNothingHappens) {
    VX_EvShutdown();
    semaphore_calls.clear();
    hxfake::QueueEvents(0, DiskEvents(1, 1));
    VX_EvFile_CheckIn(1);
    HX_U32 n = 1;
    HX_U32 s = 2;
    HX_U32 e = 3;
    Event event;
    EXPECT_EQ(0, VX_EvGet(&n, &s, &e, &event));
    VX_EvGetInfo(&s, &e);
    VX_EvFile_Reset();
    VX_EvShutdown();
    EXPECT_THAT((std::vector<HX_U32>{n, s, e}), ElementsAre(1, 2, 3));
    EXPECT_FALSE(root_.Exists(kEventFile));
    EXPECT_THAT(semaphore_calls, IsEmpty());
}

// ---- Counting -----------------------------------------------------------------------------------

TEST_F(Collection, CountsEveryClassInItsCounter) {
    HX_U32 VX_HX_ChangeCounters::*const counters[] = {
        &VX_HX_ChangeCounters::Adapter_Change,  &VX_HX_ChangeCounters::LD_Change,
        &VX_HX_ChangeCounters::HD_Change,       &VX_HX_ChangeCounters::PM_Change,
        &VX_HX_ChangeCounters::Expander_Change, &VX_HX_ChangeCounters::MDD_Change,
        &VX_HX_ChangeCounters::BSL_Change,      &VX_HX_ChangeCounters::SAS_Change,
        &VX_HX_ChangeCounters::ENCL_Change,     &VX_HX_ChangeCounters::BAT_Change,
        &VX_HX_ChangeCounters::FLASH_Change,    &VX_HX_ChangeCounters::CACHE_Change,
        &VX_HX_ChangeCounters::MISC_Change,     &VX_HX_ChangeCounters::ARRAY_Change,
    };
    for (int event_class = 0; event_class < 14; ++event_class) {
        VX_HX_ChangeCounters expected{};
        expected.Whatever_Change = 2;
        expected.*counters[event_class] = 2;
        g_VX_EventExt.HXChangeCounters = {};
        VX_EvFilter(EventsOfClass(event_class, 1, 2).data(), 2);
        EXPECT_TRUE(g_VX_EventExt.HXChangeCounters == expected) << event_class;
    }
}

TEST_F(Collection, CountsOtherClassesOnlyAsEvents) {
    VX_HX_ChangeCounters expected{};
    expected.Whatever_Change = 3;
    for (const int event_class : {14, 255, 65535}) {
        VX_EvFilter(EventsOfClass(event_class, 1, 1).data(), 1);
    }
    EXPECT_TRUE(g_VX_EventExt.HXChangeCounters == expected);
}

TEST_F(Collection, CountersWrapSilently) {
    g_VX_EventExt.HXChangeCounters.Whatever_Change = 0xFFFFFFFF;
    g_VX_EventExt.HXChangeCounters.ENCL_Change = 0xFFFFFFFF;
    VX_EvFilter(EventsOfClass(8, 1, 1).data(), 1);
    EXPECT_EQ(0u, g_VX_EventExt.HXChangeCounters.Whatever_Change);
    EXPECT_EQ(0u, g_VX_EventExt.HXChangeCounters.ENCL_Change);
}

TEST_F(Collection, FirstCheckInCountsTheEventsAndWhatLiesBehindThem) {
    CheckIn(EventsOfClass(9, 1, 3));
    const VX_HX_ChangeCounters counters = Counters();
    EXPECT_EQ(6u, counters.Whatever_Change);
    EXPECT_EQ(3u, counters.BAT_Change);
    EXPECT_EQ(3u, counters.Adapter_Change);  // three zeros behind them, of class 0
}

TEST_F(Collection, LaterCheckInLosesTheFirstCountToTheLoadedCounters) {
    CheckIn(EventsOfClass(9, 1, 3));
    CheckIn(EventsOfClass(10, 4, 2));
    const VX_HX_ChangeCounters counters = Counters();
    EXPECT_EQ(8u, counters.Whatever_Change);
    EXPECT_EQ(0u, counters.FLASH_Change);
    // Behind the two events lie the last of the three before, and a zero.
    EXPECT_EQ(4u, counters.BAT_Change);
    EXPECT_EQ(4u, counters.Adapter_Change);
}

TEST_F(Collection, LaterAdapterOfTheSameCheckInIsCountedTwice) {
    CheckIn(EventsOfClass(9, 1, 1));
    hxfake::QueueEvents(0, EventsOfClass(10, 2, 1));
    hxfake::QueueEvents(1, EventsOfClass(11, 3, 1));
    VX_EvFile_CheckIn(2);
    const VX_HX_ChangeCounters counters = Counters();
    EXPECT_EQ(2u + 1 + 2, counters.Whatever_Change);
    EXPECT_EQ(0u, counters.FLASH_Change);
    EXPECT_EQ(1u, counters.CACHE_Change);
}

TEST_F(Collection, SecondCountReachesEventsOfEarlierPolls) {
    CheckIn(EventsOfClass(9, 1, 50));
    CheckIn(EventsOfClass(10, 51, 20));
    const VX_HX_ChangeCounters counters = Counters();
    EXPECT_EQ(100u + 20, counters.Whatever_Change);
    EXPECT_EQ(50u + 20, counters.BAT_Change);
}

TEST_F(Collection, SecondCountOfTheLargestPollStaysInsideTheBuffer) {
    hxfake::On<&HX_EVT_GetEvent>().Once(0, hxfake::Records(EventsOfClass(9, 1, 255)));
    VX_EvFile_CheckIn(1);
    const VX_HX_ChangeCounters counters = Counters();
    EXPECT_EQ(510u, counters.Whatever_Change);
    EXPECT_EQ(255u, counters.BAT_Change);
    EXPECT_EQ(255u, counters.Adapter_Change);
    EXPECT_EQ(255u, StoredHeader().NumOfEvent);
}

// ---- Check-in -----------------------------------------------------------------------------------

TEST_F(Collection, AsksEachAdapterForFiftyEvents) {
    VX_EvFile_CheckIn(2);
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_EVT_GetEvent(0, 50, &, &)", "HX_EVT_GetEvent(1, 50, &, &)"));
}

TEST_F(Collection, AsksFourAdaptersAtMost) {
    VX_EvFile_CheckIn(255);
    EXPECT_THAT(hxfake::Calls(),
                ElementsAre("HX_EVT_GetEvent(0, 50, &, &)", "HX_EVT_GetEvent(1, 50, &, &)",
                            "HX_EVT_GetEvent(2, 50, &, &)", "HX_EVT_GetEvent(3, 50, &, &)"));
}

TEST_F(Collection, AsksNobodyForNoAdapters) {
    VX_EvFile_CheckIn(0);
    EXPECT_THAT(hxfake::Calls(), IsEmpty());
}

TEST_F(Collection, WithoutEventsTouchesNoFile) {
    VX_EvFile_CheckIn(4);
    EXPECT_FALSE(root_.Exists(kEventFile));
    EXPECT_FALSE(root_.Exists(kSeqNoFile));
    CheckIn(DiskEvents(1, 1));
    const auto before = std::filesystem::last_write_time(root_.Path(kEventFile));
    VX_EvFile_CheckIn(4);
    EXPECT_EQ(before, std::filesystem::last_write_time(root_.Path(kEventFile)));
}

TEST_F(Collection, AsksUntilNothingIsLeft) {
    CheckIn(DiskEvents(1, 120));
    EXPECT_EQ(4u, hxfake::Calls().size());  // 50, 50, 20, 0
    EXPECT_EQ(Range(1, 120), Numbers(Get(200, 0, 0).events));
}

TEST_F(Collection, EventsOf256EndTheRoundsLikeNone) {
    hxfake::On<&HX_EVT_GetEvent>()
        .Once(0, hxfake::Records(DiskEvents(1, 200)))
        .Once(0, hxfake::Records(DiskEvents(1, 56)))
        .Once(0, hxfake::Records(DiskEvents(500, 1)));
    VX_EvFile_CheckIn(2);
    EXPECT_EQ(2u, hxfake::Calls().size());
    EXPECT_EQ(256u, StoredHeader().NumOfEvent);
}

TEST_F(Collection, IgnoresTheControllersStatus) {
    hxfake::On<&HX_EVT_GetEvent>().Once(77, hxfake::Records(DiskEvents(1, 2)));
    VX_EvFile_CheckIn(1);
    EXPECT_EQ(2u, StoredHeader().NumOfEvent);
}

TEST_F(Collection, OfAControllerThatNeverRunsDryEnds) {
    SetCapacity(10);
    hxfake::NoteCalls(false);
    hxfake::On<&HX_EVT_GetEvent>().Always(0, hxfake::Records({MakeEvent(5, 0, 0)}));
    VX_EvFile_CheckIn(1);
    EXPECT_EQ(65536u, hxfake::On<&HX_EVT_GetEvent>().CallCount());
    EXPECT_EQ(65536u - 10, StoredHeader().SeqStart);
}

TEST_F(Collection, OfDuplicatesAloneGoesOnAsking) {
    CheckIn(DiskEvents(1, 10));
    hxfake::ForgetCalls();
    CheckIn(DiskEvents(1, 10));
    EXPECT_EQ(2u, hxfake::Calls().size());
    EXPECT_EQ(10u, StoredHeader().NumOfEvent);
}

TEST_F(Collection, EndsAtOnceWhenTheStoreCannotBeMade) {
    std::filesystem::remove(root_.Path("/opt/kestrel/raid/db"));
    hxfake::QueueEvents(0, DiskEvents(1, 1));
    hxfake::QueueEvents(1, DiskEvents(1, 1));
    VX_EvFile_CheckIn(2);
    EXPECT_THAT(hxfake::Calls(), ElementsAre("HX_EVT_GetEvent(0, 50, &, &)"));
    EXPECT_THAT(semaphore_calls, ElementsAre("wait", "post"));
    std::filesystem::create_directory(root_.Path("/opt/kestrel/raid/db"));
    VX_EvFile_CheckIn(2);  // what was taken from the first queue is lost
    EXPECT_EQ(1u, StoredHeader().NumOfEvent);
}

TEST_F(Collection, EndsAtOnceWhenTheSequenceNumbersCannotBeKept) {
    std::filesystem::create_directory(root_.Path(kSeqNoFile));
    const auto before = OpenDescriptors();
    CheckIn(DiskEvents(1, 1));
    EXPECT_EQ(before, OpenDescriptors());
    EXPECT_EQ(112u, root_.Read(kEventFile).size());
    EXPECT_EQ(0u, StoredHeader().NumOfEvent);
}

TEST_F(Collection, LeavesNoFileOpen) {
    const auto before = OpenDescriptors();
    CheckIn(DiskEvents(1, 60));
    Get(10, 0, 0);
    Counters();
    VX_EvFile_Reset();
    EXPECT_EQ(before, OpenDescriptors());
}

// ---- Queries ------------------------------------------------------------------------------------

TEST_F(Collection, AskedForNoEventsTellsTheExtent) {
    SetCapacity(50);
    CheckIn(DiskEvents(1, 70));
    const Page page = Get(0, 33, 44);
    EXPECT_THAT((std::vector<HX_U32>{page.n, page.s, page.e}), ElementsAre(50, 20, 69));
}

TEST_F(Collection, EmptyStoreTellsItsExtentWhateverIsAsked) {
    CheckIn(DiskEvents(1, 1));
    VX_EvFile_Reset();
    const Page page = Get(10, 5, 6);
    EXPECT_THAT((std::vector<HX_U32>{page.n, page.s, page.e}), ElementsAre(0, 0, 0));
}

TEST_F(Collection, EmptyStoreThatHasForgottenStartsAndEndsAtItsOldest) {
    WriteHeader(0, 5, 0, 0, 77);
    const Page page = Get(0, 0, 0);
    EXPECT_THAT((std::vector<HX_U32>{page.n, page.s, page.e}), ElementsAre(0, 77, 77));
}

TEST_F(Collection, NewestTwentyOfAHundred) {
    CheckIn(DiskEvents(1000, 100));
    const Page page = Get(20, kNewestEvents, 0xFFFFFFFF);
    EXPECT_THAT((std::vector<HX_U32>{page.n, page.s, page.e}), ElementsAre(20, 80, 99));
    EXPECT_EQ(Range(1080, 20), Numbers(page.events));
}

TEST_F(Collection, NewestUpToAGivenOne) {
    CheckIn(DiskEvents(1000, 100));
    const Page page = Get(20, kNewestEvents, 49);
    EXPECT_THAT((std::vector<HX_U32>{page.n, page.s, page.e}), ElementsAre(20, 30, 49));
    EXPECT_EQ(Range(1030, 20), Numbers(page.events));
}

TEST_F(Collection, NewestMoreThanThereAreBeforeAGivenOneFindsNone) {
    CheckIn(DiskEvents(1000, 100));
    // 3 - 20 + 1 wraps to 4294967280, which no event has.
    const Page page = Get(20, kNewestEvents, 3);
    EXPECT_THAT((std::vector<HX_U32>{page.n, page.s, page.e}), ElementsAre(0, 4294967280u, 3));
}

TEST_F(Collection, MoreThanThereAreDeliversAll) {
    CheckIn(DiskEvents(1000, 5));
    const Page page = Get(20, kNewestEvents, 0xFFFFFFFF);
    EXPECT_THAT((std::vector<HX_U32>{page.n, page.s, page.e}), ElementsAre(5, 0, 4));
    EXPECT_EQ(Range(1000, 5), Numbers(page.events));
}

TEST_F(Collection, PageFromTheMiddleTellsItsLast) {
    CheckIn(DiskEvents(1000, 100));
    const Page page = Get(10, 40, 0);
    EXPECT_THAT((std::vector<HX_U32>{page.n, page.s, page.e}), ElementsAre(10, 40, 49));
    EXPECT_EQ(Range(1040, 10), Numbers(page.events));
}

TEST_F(Collection, PageOverTheNewestIsCut) {
    CheckIn(DiskEvents(1000, 100));
    const Page page = Get(10, 95, 0);
    EXPECT_THAT((std::vector<HX_U32>{page.n, page.s, page.e}), ElementsAre(5, 95, 99));
    EXPECT_EQ(Range(1095, 5), Numbers(page.events));
}

TEST_F(Collection, PageOfWhichOnlyTheFirstAreReadTellsTheSameNumbers) {
    CheckIn(DiskEvents(1000, 100));
    HX_U32 n = 10;
    HX_U32 s = kNewestEvents;
    HX_U32 e = 49;
    Event events[3];
    std::memset(events, 0xEE, sizeof events);
    EXPECT_EQ(0, VX_EvGetFirst(&n, &s, &e, events, 2));
    EXPECT_THAT((std::vector<HX_U32>{n, s, e}), ElementsAre(10, 40, 49));
    EXPECT_EQ(1040u, events[0].SequenceNo);
    EXPECT_EQ(1041u, events[1].SequenceNo);
    EXPECT_EQ(0xEEEEEEEEu, events[2].SequenceNo);
}

TEST_F(Collection, PageBelowTheOldestStartsThere) {
    SetCapacity(50);
    CheckIn(DiskEvents(1000, 70));
    const Page page = Get(3, 0, 0);
    EXPECT_THAT((std::vector<HX_U32>{page.n, page.s, page.e}), ElementsAre(3, 20, 22));
    EXPECT_EQ(Range(1020, 3), Numbers(page.events));
}

TEST_F(Collection, PagePastTheNewestFindsNoneAndKeepsTheNumbers) {
    CheckIn(DiskEvents(1000, 100));
    const Page page = Get(10, 100, 555);
    EXPECT_THAT((std::vector<HX_U32>{page.n, page.s, page.e}), ElementsAre(0, 100, 555));
}

TEST_F(Collection, QueryOfAMissingStoreChangesNothingAndDeliversZeros) {
    const Page page = Get(2, 3, 4);
    EXPECT_THAT((std::vector<HX_U32>{page.n, page.s, page.e}), ElementsAre(2, 3, 4));
    EXPECT_THAT(page.events, Each(testing::Truly(IsZero)));
    EXPECT_FALSE(root_.Exists(kEventFile));
}

TEST_F(Collection, QueryOfAMissingStoreFillsNoMoreThanItsRoom) {
    HX_U32 n = 10;
    HX_U32 s = 0;
    HX_U32 e = 0;
    Event events[3];
    std::memset(events, 0xEE, sizeof events);
    EXPECT_EQ(0, VX_EvGetFirst(&n, &s, &e, events, 2));
    EXPECT_EQ(10u, n);
    EXPECT_TRUE(IsZero(events[1]));
    EXPECT_EQ(0xEEEEEEEEu, events[2].SequenceNo);
}

TEST_F(Collection, QueryOfAMissingStoreIsToldInTheDebugLog) {
    const DebugLog log(root_);
    Get(2, 3, 4);
    EXPECT_TRUE(log.Text().ends_with("EventDbg: vxevent 868\n")) << log.Text();
}

TEST_F(Collection, QueryOfAStoreIsNot) {
    CheckIn(DiskEvents(1, 1));
    const DebugLog log(root_);
    Get(1, 0, 0);
    EXPECT_EQ("", log.Text());
}

TEST_F(Collection, InfoTellsOldestAndNumber) {
    SetCapacity(50);
    CheckIn(DiskEvents(1, 70));
    HX_U32 first = 1;
    HX_U32 count = 1;
    VX_EvGetInfo(&first, &count);
    EXPECT_EQ(20u, first);
    EXPECT_EQ(50u, count);
}

TEST_F(Collection, InfoOfAMissingStoreIsZero) {
    HX_U32 first = 1;
    HX_U32 count = 1;
    VX_EvGetInfo(&first, &count);
    EXPECT_EQ(0u, first);
    EXPECT_EQ(0u, count);
}

TEST_F(Collection, CountersOfAMissingStoreAreThoseInMemory) {
    g_VX_EventExt.HXChangeCounters.SAS_Change = 9;
    EXPECT_EQ(9u, Counters().SAS_Change);
}

TEST_F(Collection, CountersAreReadAfresh) {
    CheckIn(EventsOfClass(9, 1, 1));
    std::string file = root_.Read(kEventFile);
    file[52 + 36] = 99;
    root_.Write(kEventFile, file);
    EXPECT_EQ(99u, Counters().BAT_Change);
}

// ---- Reset --------------------------------------------------------------------------------------

TEST_F(Collection, ResetEmptiesTheFileAndKeepsItsCounters) {
    SetCapacity(2);
    CheckIn(EventsOfClass(9, 1, 5));
    SetCapacity(3);
    VX_EvFile_Reset();
    const std::string file = root_.Read(kEventFile);
    EXPECT_EQ(112u, file.size());
    const VX_EvLogHeader header = StoredHeader();
    EXPECT_EQ(0u, header.NumOfEvent);
    EXPECT_EQ(3u, header.Capacity);
    EXPECT_EQ(0u, header.SeqStart);
    EXPECT_EQ(10u, Counters().Whatever_Change);
}

TEST_F(Collection, ResetClearsCountersAndNumbersInMemoryOnly) {
    CheckIn(DiskEvents(5, 2));
    VX_EvFile_Reset();
    EXPECT_TRUE(g_VX_EventExt.HXChangeCounters == VX_HX_ChangeCounters{});
    EXPECT_THAT(g_VX_EventExt.EvSeqNo.SequenceNo, Each(0u));
    EXPECT_EQ(std::string("\x06") + std::string(95, '\0'), root_.Read(kSeqNoFile));
    // Both come back from disk with the next check-in: old numbers are still duplicates.
    CheckIn(DiskEvents(5, 3));
    EXPECT_THAT(Numbers(Get(10, 0, 0).events), ElementsAre(7));
    EXPECT_EQ(4u + 3, Counters().Whatever_Change);
}

TEST_F(Collection, ResetLeavesAMissingStoreAlone) {
    g_VX_EventExt.HXChangeCounters.SAS_Change = 9;
    VX_EvFile_Reset();
    EXPECT_FALSE(root_.Exists(kEventFile));
    EXPECT_EQ(0u, g_VX_EventExt.HXChangeCounters.SAS_Change);
}

TEST_F(Collection, ResetLeavesAForeignFileAlone) {
    root_.Write(kEventFile, std::string(200, 'x'));
    VX_EvFile_Reset();
    EXPECT_EQ(std::string(200, 'x'), root_.Read(kEventFile));
}

TEST_F(Collection, AfterAResetSequenceNumbersStartAgain) {
    CheckIn(DiskEvents(1, 10));
    VX_EvFile_Reset();
    CheckIn(DiskEvents(11, 1));
    const Page page = Get(5, 0, 0);
    EXPECT_THAT((std::vector<HX_U32>{page.n, page.s, page.e}), ElementsAre(1, 0, 0));
}

}  // namespace
