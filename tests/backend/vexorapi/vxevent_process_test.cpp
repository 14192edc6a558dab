// The store shared by processes: readers beside a writer, and writers that are killed.
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "numbered_event.h"
#include "support/child_process.h"
#include "vxevent_store.h"

namespace {

using Clock = std::chrono::steady_clock;

struct ReaderReport {
    HX_U32 reads, events, torn, wrong, out_of_order, never_delivered, unreadable;
    HX_U32 longest_us;
};

// What the processes tell each other.
struct Board {
    std::atomic<HX_U32> delivered;  // serial numbers 1 to this have left the controller
    std::atomic<bool> stop;
    std::atomic<HX_U32> check_ins;
    std::atomic<HX_U32> resets;  // counted before and behind each
    ReaderReport readers[4];
    std::atomic<bool> has_seen_events[4];  // so has this reader
};

class Processes : public EventStore {
protected:
    Processes() {
        hxfake::NoteCalls(false);
        DeliverBatches(shared_->delivered, batch_);
    }

    void CheckInBatch(HX_U8 batch) {
        batch_ = batch;
        VX_EvFile_CheckIn(1);
    }

    // Runs `work` in a process of its own, which initialises the store as any process does.
    template <class Work>
    static pid_t Start(Work work) {
        return Fork([&] {
            VX_EvInit();
            work();
        });
    }

    const Shared<Board> shared_;
    HX_U8 batch_ = 0;
};

// Nothing is expected to take that long: a test that waits in vain ends then.
constexpr std::chrono::seconds kPatience{120};

// Whether the child ends by itself; it is killed if it does not.
bool Ends(pid_t child) {
    const auto deadline = Clock::now() + kPatience;
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (Clock::now() > deadline) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return false;
        }
        usleep(10000);
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// ---- Readers beside a writer --------------------------------------------------------------------

constexpr std::chrono::seconds kDuration{2};

// Asks for a page somewhere in the store, or for the newest events.
void ReadOnce(const Board& shared, std::mt19937& random, ReaderReport& report) {
    HX_U32 n = 0;
    HX_U32 s = 0;
    HX_U32 e = 0;
    const HX_U32 resets = shared.resets;
    VX_EvGet(&n, &s, &e, nullptr);
    const HX_U32 wanted = 1 + static_cast<HX_U32>(random()) % 2000;
    std::vector<Event> events(wanted);
    if (random() % 3 == 0) {
        s = e = kNewestEvents;
    } else if (random() % 2 == 0) {
        s += static_cast<HX_U32>(random()) % (n + 1);
    }
    n = wanted;
    const HX_U32 asked = s;
    // A store that cannot be read leaves all three as they were asked.
    e = kNewestEvents;
    VX_EvGet(&n, &s, &e, events.data());
    // Whatever has been read had been delivered before.
    const HX_U32 delivered = shared.delivered;
    ++report.reads;
    if (n == wanted && s == asked && e == kNewestEvents) {
        ++report.unreadable;
        return;
    }
    events.resize(n);
    // Numbers start again at a reset. A store that is reset and filled past the numbers of before,
    // all while one page is read, looks like one that has only grown.
    const bool is_reset = resets % 2 != 0 || shared.resets != resets;
    HX_U32 last = 0;
    for (HX_U32 i = 0; i < n; ++i) {
        const Event& event = events[i];
        if (!IsWhole(event)) {
            report.torn += !is_reset;
        } else {
            // The store numbers from 0 what the controller numbers from 1.
            if (event.SequenceNo != s + i + 1) ++report.wrong;
            if (event.SequenceNo <= last && !is_reset) ++report.out_of_order;
            if (event.SequenceNo == 0 || event.SequenceNo > delivered) ++report.never_delivered;
            last = event.SequenceNo;
        }
    }
    VX_HX_ChangeCounters counters;
    VX_EvGetChangeCounters(&counters);
    VX_EvGetInfo(&s, &e);
    report.events += n;
}

class ReadersBesideAWriter : public Processes, public testing::WithParamInterface<HX_U32> {
protected:
    // Runs `write` over and over in one process and readers in four others, until the writer has
    // gone round the ring and each reader has seen something, and adds up what the readers have
    // seen.
    template <class Write>
    ReaderReport Run(Write write) {
        const pid_t writer = Start([&] {
            std::mt19937 random(1);
            while (!shared_->stop) {
                write(random);
                ++shared_->check_ins;
            }
        });
        pid_t readers[4];
        for (unsigned i = 0; i < 4; ++i) {
            readers[i] = Start([this, i] {
                std::mt19937 random(i);
                ReaderReport& report = shared_->readers[i];
                while (!shared_->stop) {
                    const auto before = Clock::now();
                    ReadOnce(*shared_, random, report);
                    if (report.events > 0) shared_->has_seen_events[i] = true;
                    const auto took = std::chrono::duration_cast<std::chrono::microseconds>(
                        Clock::now() - before);
                    report.longest_us =
                        std::max(report.longest_us, static_cast<HX_U32>(took.count()));
                }
            });
        }
        const auto deadline = Clock::now() + kPatience;
        do {
            std::this_thread::sleep_for(kDuration);
        } while (!HasSeenEnough() && Clock::now() < deadline);
        shared_->stop = true;
        EXPECT_TRUE(Ends(writer));
        for (const pid_t reader : readers) EXPECT_TRUE(Ends(reader));
        ReaderReport sum{};
        EXPECT_TRUE(HasSeenEnough());
        for (const ReaderReport& report : shared_->readers) {
            sum.reads += report.reads;
            sum.events += report.events;
            sum.torn += report.torn;
            sum.wrong += report.wrong;
            sum.out_of_order += report.out_of_order;
            sum.never_delivered += report.never_delivered;
            sum.unreadable += report.unreadable;
            sum.longest_us = std::max(sum.longest_us, report.longest_us);
        }
        std::printf(
            "readers: %u reads of %u events, longest %u us: %u torn, %u of another number, "
            "%u out of order, %u never delivered, %u reads without a store\n",
            sum.reads, sum.events, sum.longest_us, sum.torn, sum.wrong, sum.out_of_order,
            sum.never_delivered, sum.unreadable);
        std::printf("writer: %u check-ins, %u events\n", shared_->check_ins.load(),
                    shared_->delivered.load());
        return sum;
    }

private:
    bool HasSeenEnough() const {
        return GetParam() / 25 < shared_->check_ins &&  // of 25 events on average
               std::ranges::all_of(shared_->has_seen_events, [](bool has) { return has; });
    }
};

TEST_P(ReadersBesideAWriter, SeeWholeEventsInOrderAndUnderTheirNumbers) {
    SetCapacity(GetParam());
    CheckInBatch(50);
    const ReaderReport seen =
        Run([this](std::mt19937& random) { CheckInBatch(static_cast<HX_U8>(1 + random() % 50)); });
    EXPECT_EQ(0u, seen.torn);
    EXPECT_EQ(0u, seen.wrong);
    EXPECT_EQ(0u, seen.out_of_order);
    EXPECT_EQ(0u, seen.never_delivered);
    EXPECT_EQ(0u, seen.unreadable);
}

// Rings that the writer goes round once in forty check-ins, in two, and more than once in each.
INSTANTIATE_TEST_SUITE_P(Ring, ReadersBesideAWriter, testing::Values(2000, 64, 20),
                         testing::PrintToStringParamName());

// A reset starts again at number 0, so the numbers tell nothing here.
TEST_P(ReadersBesideAWriter, SeeWholeEventsInOrderBesideResets) {
    SetCapacity(GetParam());
    CheckInBatch(50);
    const ReaderReport seen = Run([this](std::mt19937& random) {
        if (random() % 8 == 0) {
            ++shared_->resets;
            VX_EvFile_Reset();
            ++shared_->resets;
        }
        CheckInBatch(static_cast<HX_U8>(1 + random() % 50));
    });
    EXPECT_EQ(0u, seen.torn);
    EXPECT_EQ(0u, seen.out_of_order);
    EXPECT_EQ(0u, seen.never_delivered);
    EXPECT_EQ(0u, seen.unreadable);
}

// ---- Writers that are killed -------------------------------------------------------------------

// A sanitized process is costly to fork.
constexpr int kKills = kSanitized ? 200 : 2000;
constexpr HX_U32 kKilledCapacity = 60;

class KilledWriter : public Processes {
protected:
    // The store as a killed writer has left it.
    void ExpectUsable() {
        const std::string file = root_.Read(kEventFile);
        if (file.size() < 52) return;  // the next check-in makes it anew
        ASSERT_EQ(std::string("Ombra Event File v0.1") + std::string(11, '\0'), file.substr(0, 32));
        const VX_EvLogHeader header = StoredHeader();
        ASSERT_EQ(kKilledCapacity, header.Capacity);
        ASSERT_LE(header.NumOfEvent, kKilledCapacity);
        ASSERT_LE(header.Start, kKilledCapacity);
        ASSERT_LE(header.End, kKilledCapacity);
        ASSERT_EQ(header.End, (header.Start + header.NumOfEvent) % (kKilledCapacity + 1));
        HX_U32 last = 0;
        for (const Event& event : Get(100, 0, 0).events) {
            ASSERT_TRUE(IsWhole(event)) << "a torn event behind " << last;
            ASSERT_GT(event.SequenceNo, last);
            ASSERT_LE(event.SequenceNo, shared_->delivered);
            last = event.SequenceNo;
        }
    }

    void ExpectNextCheckInWorks() {
        CheckInBatch(1);
        const HX_U32 serial = shared_->delivered;
        const Page page = Get(1, kNewestEvents, kNewestEvents);
        ASSERT_EQ(1u, page.n);
        ASSERT_EQ(serial, page.events[0].SequenceNo);
        ASSERT_TRUE(IsWhole(page.events[0]));
    }
};

TEST_F(KilledWriter, LeavesAStoreThatTheNextOneUses) {
    SetCapacity(kKilledCapacity);
    std::mt19937 random(9);
    int short_files = 0;
    for (int round = 0; round < kKills; ++round) {
        SCOPED_TRACE("kill " + std::to_string(round));
        const bool from_nothing = random() % 4 == 0;
        if (from_nothing) {
            std::filesystem::remove(root_.Path(kEventFile));
            std::filesystem::remove(root_.Path(kSeqNoFile));
        }
        shared_->check_ins = 0;
        const pid_t writer = Start([this, from_nothing] {
            for (;;) {
                // Files are made anew over and over, so that kills hit that as well.
                if (from_nothing) VX_EvFile_Reset();
                CheckInBatch(50);
                ++shared_->check_ins;
            }
        });
        // Not before it has begun; then at any moment of the next few check-ins.
        while (shared_->check_ins == 0) sched_yield();
        const timespec pause{0, static_cast<long>(random() % 300000)};
        nanosleep(&pause, nullptr);
        ASSERT_EQ(0, kill(writer, SIGKILL));
        ASSERT_EQ(writer, waitpid(writer, nullptr, 0));
        VX_EvInit();
        if (root_.Read(kEventFile).size() < 52) ++short_files;
        ASSERT_NO_FATAL_FAILURE(ExpectUsable());
        ASSERT_NO_FATAL_FAILURE(ExpectNextCheckInWorks());
    }
    std::printf("%d kills, %d of them before the header of a new file\n", kKills, short_files);
}

}  // namespace
