// Queries during which the store changes. Every read of the store's files passes through the test,
// which can do behind it what another process would do.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/types.h>
#include <unistd.h>

#include <cstddef>
#include <functional>
#include <vector>

#include "vxevent_store.h"

namespace {

// Called behind each read with its number, from 1 upward, and what was read.
std::function<void(int, void*)> after_read;
int reads = 0;

ssize_t Told(ssize_t result, void* bytes) {
    ++reads;
    if (after_read) after_read(reads, bytes);
    return result;
}

}  // namespace

// The forms in which one call is linked: with 64-bit offsets on 32 bits, and checked ones in an
// optimised build.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
ssize_t __real_pread(int, void*, size_t, off_t);
ssize_t __real_pread64(int, void*, size_t, off_t);
ssize_t __real___pread_chk(int, void*, size_t, off_t, size_t);
ssize_t __real___pread64_chk(int, void*, size_t, off_t, size_t);

ssize_t __wrap_pread(int file, void* bytes, size_t size, off_t offset) {
    return Told(__real_pread(file, bytes, size, offset), bytes);
}
ssize_t __wrap_pread64(int file, void* bytes, size_t size, off_t offset) {
    return Told(__real_pread64(file, bytes, size, offset), bytes);
}
ssize_t __wrap___pread_chk(int file, void* bytes, size_t size, off_t offset, size_t room) {
    return Told(__real___pread_chk(file, bytes, size, offset, room), bytes);
}
ssize_t __wrap___pread64_chk(int file, void* bytes, size_t size, off_t offset, size_t room) {
    return Told(__real___pread64_chk(file, bytes, size, offset, room), bytes);
}
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr HX_U32 kCapacity = 100;

// A store of the events numbered 0 to 49, whose controller numbers are one higher.
class OvertakenQuery : public EventStore {
protected:
    OvertakenQuery() {
        SetCapacity(kCapacity);
        CheckIn(DiskEvents(1, 50));
        reads = 0;
    }
    ~OvertakenQuery() override { after_read = nullptr; }

    void WriteHeaderOnly(const VX_EvLogHeader& header) const {
        std::string bytes = root_.Read(kEventFile);
        bytes.replace(0, sizeof header, reinterpret_cast<const char*>(&header), sizeof header);
        root_.Write(kEventFile, bytes);
    }
    // What a writer does before it overwrites the oldest entries.
    void GiveUp(HX_U32 count) const {
        VX_EvLogHeader header = StoredHeader();
        header.NumOfEvent -= count;
        header.Start = (header.Start + count) % (kCapacity + 1);
        header.SeqStart += count;
        WriteHeaderOnly(header);
    }
    // Calls `work` behind read `number`.
    template <class Work>
    static void Behind(int number, Work work) {
        after_read = [number, work](int read, void*) {
            if (read == number) work();
        };
    }
    static std::vector<HX_U32> Extent(const Page& page) { return {page.n, page.s, page.e}; }
};

// The reads of a query: 1 the header, 2 the slots, 3 the header again.
constexpr int kSlots = 2;

TEST_F(OvertakenQuery, DropsTheEntriesThatTheHeaderListsNoMore) {
    Behind(kSlots, [this] { GiveUp(10); });
    const Page page = Get(30, 0, 0);
    EXPECT_THAT(Extent(page), ElementsAre(20, 10, 29));
    EXPECT_EQ(Range(11, 20), Numbers(page.events));
}

TEST_F(OvertakenQuery, DropsNoneOfTheEntriesBehindThem) {
    Behind(kSlots, [this] { GiveUp(10); });
    const Page page = Get(30, 10, 0);
    EXPECT_THAT(Extent(page), ElementsAre(30, 10, 39));
    EXPECT_EQ(Range(11, 30), Numbers(page.events));
}

TEST_F(OvertakenQuery, KeepsTheLastEntryThatIsListed) {
    Behind(kSlots, [this] { GiveUp(29); });
    const Page page = Get(30, 0, 0);
    EXPECT_THAT(Extent(page), ElementsAre(1, 29, 29));
    EXPECT_EQ(Range(30, 1), Numbers(page.events));
}

TEST_F(OvertakenQuery, ForTheNewestKeepsTheNewest) {
    Behind(kSlots, [this] { GiveUp(45); });
    const Page page = Get(20, kNewestEvents, kNewestEvents);
    EXPECT_THAT(Extent(page), ElementsAre(5, 45, 49));
    EXPECT_EQ(Range(46, 5), Numbers(page.events));
}

TEST_F(OvertakenQuery, TellsOfNoMoreThanItHasReadAndKept) {
    Behind(kSlots, [this] { GiveUp(2); });
    HX_U32 n = 30;
    HX_U32 s = 0;
    HX_U32 e = 0;
    Event events[5];
    EXPECT_EQ(0, VX_EvGetFirst(&n, &s, &e, events, 5));
    EXPECT_THAT((std::vector<HX_U32>{n, s, e}), ElementsAre(3, 2, 4));
    EXPECT_EQ(3u, events[0].SequenceNo);
    EXPECT_EQ(5u, events[2].SequenceNo);
}

TEST_F(OvertakenQuery, ReadsOnceMoreWhenNothingIsLeft) {
    Behind(kSlots, [this] { GiveUp(40); });
    const Page page = Get(30, 0, 0);
    EXPECT_THAT(Extent(page), ElementsAre(10, 40, 49));
    EXPECT_EQ(Range(41, 10), Numbers(page.events));
    EXPECT_EQ(5, reads);
}

TEST_F(OvertakenQuery, FindsNoneWhenItIsOvertakenAThirdTime) {
    after_read = [this](int read, void*) {
        if (read % 2 == 0) GiveUp(10);
    };
    const Page page = Get(5, 0, 7);
    EXPECT_THAT(Extent(page), ElementsAre(0, 0, 7));
    EXPECT_THAT(page.events, IsEmpty());
    EXPECT_EQ(7, reads);
}

TEST_F(OvertakenQuery, IsNotAskedAgainWhenItSucceedsTheSecondTime) {
    after_read = [this](int read, void*) {
        if (read == 2) GiveUp(10);
        if (read == 4) GiveUp(4);
    };
    const Page page = Get(5, 0, 7);
    EXPECT_THAT(Extent(page), ElementsAre(1, 14, 14));
    EXPECT_EQ(5, reads);
}

TEST_F(OvertakenQuery, ByAResetFindsTheStoreThatIsThen) {
    Behind(kSlots, [] {
        const VX_EventExt query = g_VX_EventExt;
        VX_EvInit();
        VX_EvFile_Reset();
        g_VX_EventExt = query;
    });
    const Page page = Get(30, 0, 9);
    EXPECT_THAT(Extent(page), ElementsAre(0, 0, 0));
}

TEST_F(OvertakenQuery, ByAResetAndNewEventsDeliversTheseAlone) {
    Behind(kSlots, [] {
        const VX_EventExt query = g_VX_EventExt;
        VX_EvInit();
        VX_EvFile_Reset();
        CheckIn(DiskEvents(51, 3));
        g_VX_EventExt = query;
    });
    const Page page = Get(30, 0, 9);
    EXPECT_THAT(Extent(page), ElementsAre(3, 0, 2));
    EXPECT_EQ(Range(51, 3), Numbers(page.events));
}

TEST_F(OvertakenQuery, ByAStoreOfAnotherCapacityReadsThat) {
    Behind(kSlots, [this] {
        VX_EvLogHeader header = StoredHeader();
        header.Capacity = 60;
        WriteHeaderOnly(header);
    });
    const Page page = Get(30, 5, 9);
    EXPECT_THAT(Extent(page), ElementsAre(30, 5, 34));
    EXPECT_EQ(5, reads);
}

TEST_F(OvertakenQuery, ByEventsThatAreAddedIsNotTouched) {
    Behind(kSlots, [this] {
        VX_EvLogHeader header = StoredHeader();
        ++header.NumOfEvent;
        ++header.End;
        WriteHeaderOnly(header);
    });
    const Page page = Get(30, 0, 9);
    EXPECT_THAT(Extent(page), ElementsAre(30, 0, 29));
    EXPECT_EQ(3, reads);
}

// ---- A header that is read while it is written --------------------------------------------------

// Puts a field of the header read back to what it was before the last writer.
template <class Change>
void TearReads(int last, Change change) {
    after_read = [last, change](int read, void* bytes) {
        if (read <= last) change(*static_cast<VX_EvLogHeader*>(bytes));
    };
}

TEST_F(OvertakenQuery, ReadsAHeaderAgainWhoseFieldsDoNotBelongTogether) {
    CheckIn(DiskEvents(51, 60));  // numbers 10 to 109 are left
    const auto changes = std::vector<std::function<void(VX_EvLogHeader&)>>{
        [](VX_EvLogHeader& header) { --header.NumOfEvent; },
        [](VX_EvLogHeader& header) { --header.Start; },
        [](VX_EvLogHeader& header) { --header.End; },
        [](VX_EvLogHeader& header) { --header.SeqStart; },
    };
    for (const auto& change : changes) {
        for (int torn = 1; torn <= 2; ++torn) {
            reads = 0;
            TearReads(torn, change);
            EXPECT_THAT(Extent(Get(0, 0, 0)), ElementsAre(100, 10, 109));
            EXPECT_EQ(torn + 1, reads);
        }
    }
}

// As it stands in a damaged file.
TEST_F(OvertakenQuery, TakesAHeaderThatStaysSo) {
    TearReads(9, [](VX_EvLogHeader& header) { --header.NumOfEvent; });
    EXPECT_THAT(Extent(Get(0, 0, 0)), ElementsAre(49, 0, 48));
    EXPECT_EQ(3, reads);
}

TEST_F(OvertakenQuery, LooksTwiceAtTheSecondHeaderToo) {
    after_read = [](int read, void* bytes) {
        if (read == 3) static_cast<VX_EvLogHeader*>(bytes)->SeqStart = 20;
    };
    const Page page = Get(30, 0, 0);
    EXPECT_THAT(Extent(page), ElementsAre(30, 0, 29));
    EXPECT_EQ(4, reads);
}

}  // namespace
