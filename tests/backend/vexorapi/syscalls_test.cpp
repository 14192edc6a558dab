// What a request costs the kernel.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>

#include <algorithm>
#include <string>
#include <vector>

#include "debug_log.h"
#include "hxfake.h"
#include "support/child_process.h"
#include "support/request.h"
#include "support/temporary_root.h"
#include "vxevent_store.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kGetCount[] = "<HX_Adapter_GetCount type=\"function\"></HX_Adapter_GetCount>";

class SystemCalls : public testing::Test {
protected:
    SystemCalls() {
        hxfake::Reset();
        hxfake::NoteCalls(false);
    }
    ~SystemCalls() override { hxfake::Reset(); }

    void SetUp() override {
        if (kSanitized) GTEST_SKIP() << "a sanitizer makes system calls of its own";
        // The first requests teach the allocator its sizes and find the process its hash salt.
        for (int i = 0; i < 3; ++i) ASSERT_EQ(1, vexorApi(kGetCount, result, sizeof result));
    }

    // Of `requests` requests, one after the other.
    std::vector<long> Of(int requests) {
        return SystemCallsOf([&] {
            for (int i = 0; i < requests; ++i) vexorApi(kGetCount, result, sizeof result);
        });
    }

    TemporaryRoot root;
    char result[4096];
};

// The log is opened once for the parse and once for the executor's line, however long the command
// is: opening it for every message would make a command of 1 MiB last for seconds.
TEST_F(SystemCalls, OfALoggedRequestOpenTheLogTwice) {
    const DebugLog log(root);
    std::string command = "<HX_Adapter_GetCount type=\"function\">";
    for (int i = 0; i < 300; ++i) command += "<a/>";
    command += "</HX_Adapter_GetCount>";
    ASSERT_EQ(1, vexorApi(command.c_str(), result, sizeof result));
    const std::size_t logged = log.Text().size();
    EXPECT_GT(logged, 300u * 50);
    const std::vector<long> calls =
        SystemCallsOf([&] { vexorApi(command.c_str(), result, sizeof result); });
    EXPECT_EQ(2, std::ranges::count(calls, SYS_openat2));
    EXPECT_EQ(2 * logged, log.Text().size());
}

#if defined(__x86_64__)

TEST_F(SystemCalls, OfARequestAreOneLookForTheConfigurationFile) {
    EXPECT_THAT(Of(1), ElementsAre(SYS_access));
}

TEST_F(SystemCalls, OfThreeRequestsAreThreeLooks) {
    EXPECT_THAT(Of(3), ElementsAre(SYS_access, SYS_access, SYS_access));
}

#elif defined(__i386__)

// Half a megabyte is more than the 32-bit allocator ever keeps: the document is mapped each time.
TEST_F(SystemCalls, OfARequestAreOneLookForTheConfigurationFileAndTheDocument) {
    EXPECT_THAT(Of(1), ElementsAre(SYS_mmap2, SYS_access, SYS_munmap));
}

#endif

// ---- The event store ----------------------------------------------------------------------------

// What is opened for writing is looked at when it is open, with the call that lets its times be
// left out.
constexpr long kLook = SYS_statx;

class EventStoreCalls : public EventStore {
protected:
    EventStoreCalls() { hxfake::NoteCalls(false); }

    void SetUp() override {
        if (kSanitized) GTEST_SKIP() << "a sanitizer makes system calls of its own";
        SetCapacity(100);
        CheckIn(DiskEvents(1, 50));  // both files are there, and the configuration has been read
    }
    // The controller delivers them to the child that is traced.
    static std::vector<long> OfCheckIn(HX_U32 first, HX_U32 count) {
        hxfake::QueueEvents(0, DiskEvents(first, count));
        return SystemCallsOf([] { VX_EvFile_CheckIn(1); });
    }
};

TEST_F(EventStoreCalls, OfACheckInWithoutEventsAreNone) {
    EXPECT_THAT(SystemCallsOf([] { VX_EvFile_CheckIn(4); }), IsEmpty());
}

TEST_F(EventStoreCalls, OfACheckInAreOneReadOfEachFileAndOneWriteOfSlotsHeadAndNumbers) {
    EXPECT_THAT(OfCheckIn(51, 50),
                ElementsAre(SYS_openat2, kLook, SYS_pread64, SYS_openat2, kLook, SYS_pread64,
                            SYS_pwrite64, SYS_pwrite64, SYS_pwrite64, SYS_close, SYS_close));
}

// Entries about to be overwritten leave the header first.
TEST_F(EventStoreCalls, OfACheckInIntoAFullRingAreOneWriteMore) {
    CheckIn(DiskEvents(51, 60));  // nine slots on from where the ring begins
    EXPECT_THAT(OfCheckIn(111, 50), ElementsAre(SYS_openat2, kLook, SYS_pread64, SYS_openat2, kLook,
                                                SYS_pread64, SYS_pwrite64, SYS_pwrite64,
                                                SYS_pwrite64, SYS_pwrite64, SYS_close, SYS_close));
}

TEST_F(EventStoreCalls, OfAPageAreOneReadOfTheHeadOneOfTheSlotsAndOneOfTheHeadAgain) {
    EXPECT_THAT(SystemCallsOf([] { Get(50, 0, 0); }),
                ElementsAre(SYS_openat, SYS_pread64, SYS_pread64, SYS_pread64, SYS_close));
}

TEST_F(EventStoreCalls, OfTheExtentTheInfoAndTheCountersAreOneReadEach) {
    EXPECT_THAT(SystemCallsOf([] { Get(0, 0, 0); }),
                ElementsAre(SYS_openat, SYS_pread64, SYS_close));
    EXPECT_THAT(SystemCallsOf([] {
                    HX_U32 first;
                    HX_U32 count;
                    VX_EvGetInfo(&first, &count);
                }),
                ElementsAre(SYS_openat, SYS_pread64, SYS_close));
    EXPECT_THAT(SystemCallsOf([] { Counters(); }), ElementsAre(SYS_openat, SYS_pread64, SYS_close));
}

}  // namespace
