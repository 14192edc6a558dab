// Processes of their own on one event store, for as long as SOAK_SECONDS says, or for some seconds:
// scripts/soak MINUTES.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "hxfake.h"
#include "numbered_event.h"
#include "support/child_process.h"
#include "support/temporary_root.h"
#include "vxevent.h"

namespace {

constexpr char kEventFile[] = "/opt/kestrel/raid/db/vx_hx_raid.ev";
constexpr unsigned kReaders = 4;

std::chrono::seconds Duration() {
    const char* const asked = std::getenv("SOAK_SECONDS");
    return std::chrono::seconds(asked == nullptr ? 3 : std::atoi(asked));
}

// What the processes tell each other.
struct Board {
    std::atomic<bool> stop;
    std::atomic<HX_U32> delivered;  // events up to this number have left the controller
    std::atomic<HX_U32> check_ins, kills, flips;
    std::atomic<HX_U32> resets;  // counted before and behind each
    std::atomic<HX_U32> reads, events, torn, never_delivered, left_open;
};

class Soak : public testing::Test {
protected:
    Soak() {
        std::filesystem::create_directories(root_.Path("/opt/kestrel/raid/db"));
        root_.Write("/vexorapi.ini",
                    "<c><EventLogConfig type=\"config\" MaxNumOfEvent=\"200\"/></c>");
        hxfake::Reset();
        hxfake::NoteCalls(false);
        DeliverBatches(shared_->delivered, batch_);
    }
    ~Soak() override { hxfake::Reset(); }

    static pid_t Start(const std::function<void()>& work) {
        return Fork([&] {
            VX_EvInit();
            work();
        });
    }

    void CheckInForEver() {
        std::mt19937 random(static_cast<unsigned>(getpid()));
        while (!shared_->stop) {
            batch_ = static_cast<HX_U8>(1 + random() % 50);
            VX_EvFile_CheckIn(1);
            ++shared_->check_ins;
        }
    }

    // Reads pages anywhere. `damaged`: the bytes are not the writer's, only the numbers are looked
    // at.
    void ReadForEver(unsigned seed, bool damaged) {
        std::mt19937 random(seed);
        std::vector<Event> events(301);
        while (!shared_->stop) {
            HX_U32 n = 1 + static_cast<HX_U32>(random()) % 300;
            HX_U32 s = random() % 2 == 0 ? kNewestEvents : 0;
            HX_U32 e = kNewestEvents;
            const HX_U32 wanted = n;
            const HX_U32 resets = shared_->resets;
            std::memset(static_cast<void*>(events.data()), 0xEE, events.size() * sizeof(Event));
            const Event untouched = events[300];
            VX_EvGet(&n, &s, &e, events.data());
            const HX_U32 delivered = shared_->delivered;
            ++shared_->reads;
            if (std::memcmp(&events[wanted], &untouched, sizeof untouched) != 0) ++shared_->torn;
            // A store that cannot be read leaves what was asked.
            const bool unread = n == wanted && e == kNewestEvents;
            // A store that is reset and filled past the numbers of before, all while one page is
            // read, looks like one that has only grown.
            const bool is_reset = resets % 2 != 0 || shared_->resets != resets;
            for (HX_U32 i = 0; i < n && i < wanted && !unread && !damaged; ++i) {
                if (!IsWhole(events[i])) {
                    if (!is_reset) ++shared_->torn;
                } else if (events[i].SequenceNo > delivered) {
                    ++shared_->never_delivered;
                }
            }
            shared_->events += unread ? 0 : n;
            HX_U32 first = 0;
            HX_U32 count = 0;
            VX_EvGetInfo(&first, &count);
            if (g_VX_EventExt.fileEv != -1) ++shared_->left_open;
        }
    }

    void Print(const char* name) const {
        std::printf(
            "%s: %u check-ins, %u events delivered, %u kills, %u resets, %u bits flipped; %u reads "
            "of "
            "%u events: %u torn, %u never delivered, %u left open\n",
            name, shared_->check_ins.load(), shared_->delivered.load(), shared_->kills.load(),
            shared_->resets.load() / 2, shared_->flips.load(), shared_->reads.load(),
            shared_->events.load(), shared_->torn.load(), shared_->never_delivered.load(),
            shared_->left_open.load());
    }

    // Ends the processes, each of which must end by itself and without a signal.
    void Stop(const std::vector<pid_t>& processes) {
        shared_->stop = true;
        for (const pid_t process : processes) {
            int status = 0;
            ASSERT_EQ(process, waitpid(process, &status, 0));
            EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
        }
    }

    void ExpectNothingWrong() const {
        EXPECT_LT(0u, shared_->events);
        EXPECT_EQ(0u, shared_->torn);
        EXPECT_EQ(0u, shared_->never_delivered);
        EXPECT_EQ(0u, shared_->left_open);
    }

    const TemporaryRoot root_;
    const Shared<Board> shared_;
    HX_U8 batch_ = 0;
};

TEST_F(Soak, OfReadersBesideCheckInsThatAreKilledAndResets) {
    std::vector<pid_t> processes;
    for (unsigned reader = 0; reader < kReaders; ++reader) {
        processes.push_back(Start([this, reader] { ReadForEver(reader, false); }));
    }
    std::mt19937 random(7);
    const auto end = std::chrono::steady_clock::now() + Duration();
    // Longer when the machine is so busy that nothing was read yet.
    while (std::chrono::steady_clock::now() < end || shared_->events == 0) {
        const pid_t writer = Start([this] { CheckInForEver(); });
        const timespec pause{0, 1'000'000 + static_cast<long>(random() % 30'000'000)};
        nanosleep(&pause, nullptr);
        ASSERT_EQ(0, kill(writer, SIGKILL));
        ASSERT_EQ(writer, waitpid(writer, nullptr, 0));
        ++shared_->kills;
        if (random() % 4 == 0) {
            ++shared_->resets;
            const pid_t resetter = Start([] { VX_EvFile_Reset(); });
            ASSERT_EQ(resetter, waitpid(resetter, nullptr, 0));
            ++shared_->resets;
        }
    }
    Stop(processes);
    Print("soak");
    ExpectNothingWrong();
    // Whatever the last kill left: the next check-in goes on.
    VX_EvInit();
    batch_ = 3;
    VX_EvFile_CheckIn(1);
    HX_U32 n = 1;
    HX_U32 s = kNewestEvents;
    HX_U32 e = kNewestEvents;
    Event newest{};
    VX_EvGet(&n, &s, &e, &newest);
    EXPECT_EQ(1u, n);
    EXPECT_EQ(shared_->delivered.load(), newest.SequenceNo);
    VX_EvShutdown();
}

TEST_F(Soak, OfReadersAndACheckInWhileBitsAreFlipped) {
    std::vector<pid_t> processes;
    for (unsigned reader = 0; reader < kReaders; ++reader) {
        processes.push_back(Start([this, reader] { ReadForEver(reader, true); }));
    }
    processes.push_back(Start([this] { CheckInForEver(); }));
    processes.push_back(Start([this] {
        std::mt19937 random(11);
        while (!shared_->stop) {
            // Mostly in the header; at times a store is put right again, or all would be foreign.
            std::fstream file(root_.Path(kEventFile),
                              std::ios::in | std::ios::out | std::ios::binary);
            const std::streamoff at = random() % 2 == 0
                                          ? static_cast<std::streamoff>(random() % 52)
                                          : static_cast<std::streamoff>(random() % 40000);
            file.seekg(at);
            char byte = 0;
            if (file.get(byte)) {
                file.seekp(at);
                file.put(static_cast<char>(byte ^ (1 << random() % 8)));
                ++shared_->flips;
            }
            file.close();
            if (random() % 16 == 0) {
                std::error_code ignored;
                std::filesystem::remove(root_.Path(kEventFile), ignored);
            }
            usleep(200);
        }
    }));
    do {
        std::this_thread::sleep_for(Duration());
    } while (shared_->flips == 0 || shared_->reads == 0);
    Stop(processes);
    Print("bit flips");
    EXPECT_LT(0u, shared_->flips);
    EXPECT_EQ(0u, shared_->torn) << "a reader's room was left";
    EXPECT_EQ(0u, shared_->left_open);
}

}  // namespace
