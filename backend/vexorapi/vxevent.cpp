// The event store's semaphore and the operations under it: collecting the controllers' events, and
// queries.
#include "vxevent.h"

#include <semaphore.h>

#include <algorithm>
#include <iterator>

#include "vx_dbg.h"

namespace {

// Created process-shared with the value 5, but in each process's own memory, so it excludes neither
// other processes nor threads. A stopped service therefore cannot block the front end.
constinit sem_t sem{};
constexpr unsigned kSemaphoreValue = 5;

// Each wait is followed by a post, also when it failed.
bool WaitStore() { return g_VX_EventExt.Sem_RWFile == 0 && sem_wait(&sem) == 0; }

void PostStore() {
    if (g_VX_EventExt.Sem_RWFile == 0) sem_post(&sem);
}

// The events of one poll. It is never cleared: the second count in StorePoll reads what earlier
// polls left behind this poll's events. It has twice 255 elements, the most that that count can
// reach.
constexpr HX_U32 kMaxCount = 255;
constinit Event poll[2 * kMaxCount]{};

// Limits a check-in, so that a controller with endless events does not block the service: this many
// rounds empty every real queue, and the next check-in continues.
constexpr HX_U32 kMaxRounds = 65536;

// The line that the message about an unreadable store names; readers of logs search for it.
constexpr int kUnreadableLine = 868;

// The counter of each class, in the order of the classes.
constexpr HX_U32 VX_HX_ChangeCounters::*kClassCounters[] = {
    &VX_HX_ChangeCounters::Adapter_Change,   //  0
    &VX_HX_ChangeCounters::LD_Change,        //  1
    &VX_HX_ChangeCounters::HD_Change,        //  2
    &VX_HX_ChangeCounters::PM_Change,        //  3
    &VX_HX_ChangeCounters::Expander_Change,  //  4
    &VX_HX_ChangeCounters::MDD_Change,       //  5
    &VX_HX_ChangeCounters::BSL_Change,       //  6
    &VX_HX_ChangeCounters::SAS_Change,       //  7
    &VX_HX_ChangeCounters::ENCL_Change,      //  8
    &VX_HX_ChangeCounters::BAT_Change,       //  9
    &VX_HX_ChangeCounters::FLASH_Change,     // 10
    &VX_HX_ChangeCounters::CACHE_Change,     // 11
    &VX_HX_ChangeCounters::MISC_Change,      // 12
    &VX_HX_ChangeCounters::ARRAY_Change,     // 13
};

// Stores the `count` events at the start of the poll buffer. Returns false when a file can be
// neither opened nor created; the events are lost then.
bool StorePoll(HX_U8 adapter, HX_U8 count) {
    // Opening the file replaces the counters, which this adapter's events have just raised, by the
    // stored ones. For the adapters after it the file is open already, so their counts stay.
    if (!VX_EvFile_Load(kForUpdate) && !VX_EvFile_Create(g_VX_EventExt.Filename)) return false;
    if (!VX_EvSeqNoFile_Load(kForUpdate) && !VX_EvSeqNoFile_Create()) return false;
    for (HX_U32 stored = 0; stored < count;) {
        const HX_U32 block = VX_EvGetMaxWriteContinusBlock(count - stored);
        VX_EvFile_SaveEvents(adapter, poll + stored, block);
        stored += block;
    }
    // Counts a second time, and the elements behind the events instead of the events. It is kept:
    // front ends only compare the counters, and these are the values that they have always seen.
    VX_EvFilter(poll + count, count);
    VX_EvFile_SaveHeader();
    VX_EvSeqNoFile_Save();
    return true;
}

// Polls each adapter once. Returns whether any of them had events. The total has 8 bits, so that a
// round of exactly 256 events ends the check-in like a round without any.
bool PollAll(HX_U8 adapters) {
    HX_U8 total = 0;
    for (HX_U8 adapter = 0; adapter < adapters; ++adapter) {
        HX_U8 returned = 0;
        HX_EVT_GetEvent(adapter, HX_EVENTS_PER_CALL, &returned, poll);
        VX_EvFilter(poll, returned);
        if (returned == 0) continue;
        if (!StorePoll(adapter, returned)) return false;
        total = static_cast<HX_U8>(total + returned);
    }
    return total != 0;
}

// The numbers of a query and of its answer.
struct Range {
    HX_U32 n, s, e;
};

// Reads at most `room` events; sets the range as if all were read. Returns the number read.
HX_U32 ReadPage(Range& range, Event* ev, HX_U32 room) {
    const HX_U32 oldest = g_VX_EventExt.EvLogHeader.SeqStart;
    const HX_U32 count = g_VX_EventExt.EvLogHeader.NumOfEvent;
    const HX_U32 newest = count > 0 ? count + oldest - 1 : oldest;
    range.n = std::min(range.n, count);
    if (range.n == 0) {
        range = {count, oldest, newest};
        return 0;
    }
    if (range.s == kNewestEvents) {
        range.e = std::min(range.e, newest);
        range.s = range.e - range.n + 1;
    }
    range.s = std::max(range.s, oldest);
    const HX_U32 off = VX_EvSeqToOffset(range.s);
    range.n = off == kNoOffset ? 0 : std::min(range.n, count - off);
    if (range.n > 0) range.e = range.s + range.n - 1;
    return VX_EvFile_LoadEventsBySeq(ev, range.s, std::min(range.n, room));
}

// How many of the `count` events from number `first` on, read under the header `before`, may have
// been overwritten during the read: the oldest ones, or all if the store was reset meanwhile.
HX_U32 Overwritten(const VX_EvLogHeader& before, HX_U32 first, HX_U32 count) {
    const VX_EvLogHeader& now = g_VX_EventExt.EvLogHeader;
    const auto end = [](const VX_EvLogHeader& header) {
        return std::uint64_t{header.SeqStart} + header.NumOfEvent;
    };
    if (now.Capacity != before.Capacity || now.SeqStart < before.SeqStart ||
        end(now) < end(before)) {
        return count;
    }
    return now.SeqStart <= first ? 0 : std::min(count, now.SeqStart - first);
}

// How often an overtaken reader reads, each time from the then oldest event. To overtake it again a
// writer must overwrite the whole ring.
constexpr int kMostReads = 3;

// Answers a query. The service may overwrite entries during the read, so the header is read again
// afterwards: an entry is removed from the header in the file before its slot is overwritten, so
// entries that the header still lists are intact.
void Query(HX_U32& n, HX_U32& s, HX_U32& e, Event* ev, HX_U32 room) {
    const Range asked{n, s, e};
    for (int reads = 1;; ++reads) {
        Range page = asked;
        const VX_EvLogHeader before = g_VX_EventExt.EvLogHeader;
        const HX_U32 read = ReadPage(page, ev, room);
        HX_U32 lost = 0;
        if (read > 0) {
            VX_EvFile_ReloadHeader();
            lost = Overwritten(before, page.s, read);
        }
        const HX_U32 left = read - lost;
        if (lost > 0) {
            if (left == 0 && reads < kMostReads) continue;
            std::copy(ev + lost, ev + read, ev);
            page = left == 0 ? Range{0, asked.s, asked.e}
                             : Range{left, page.s + lost, page.s + read - 1};
        }
        n = page.n;
        s = page.s;
        e = page.e;
        return;
    }
}

}  // namespace

void VX_EvInit() {
    g_VX_EventExt = {};
    g_VX_EventExt.fileEv = -1;
    g_VX_EventExt.fileSeqNo = -1;
    g_VX_EventExt.Sem_RWFile = sem_init(&sem, 1, kSemaphoreValue);
}

void VX_EvShutdown() {
    if (g_VX_EventExt.Sem_RWFile == 0) sem_destroy(&sem);
    g_VX_EventExt.Sem_RWFile = -1;
}

void VX_EvFilter(const Event* events, HX_U32 count) {
    VX_HX_ChangeCounters& counters = g_VX_EventExt.HXChangeCounters;
    counters.Whatever_Change += count;
    for (HX_U32 i = 0; i < count; ++i) {
        const HX_U16 event_class = events[i].Class;
        if (event_class < std::size(kClassCounters)) ++(counters.*kClassCounters[event_class]);
    }
}

void VX_EvFile_CheckIn(HX_U8 numOfAdapters) noexcept {
    if (WaitStore()) {
        const auto adapters = static_cast<HX_U8>(std::min<HX_U32>(numOfAdapters, kEventAdapters));
        for (HX_U32 round = 0; round < kMaxRounds && PollAll(adapters); ++round) {
        }
        VX_EvFile_Close();
        VX_EvSeqNoFile_Close();
    }
    PostStore();
}

HX_U8 VX_EvGet(HX_U32* n, HX_U32* s, HX_U32* e, Event* ev) {
    return VX_EvGetFirst(n, s, e, ev, *n);
}

HX_U8 VX_EvGetFirst(HX_U32* n, HX_U32* s, HX_U32* e, Event* ev, HX_U32 room) {
    bool read = false;
    if (WaitStore()) {
        read = VX_EvFile_Load(kForReading) != 0;
        if (read) {
            Query(*n, *s, *e, ev, room);
        } else {
            VX_DBG_TRACE("EventDbg: %s %d\n", "vxevent", kUnreadableLine);
        }
        VX_EvFile_Close();
    }
    PostStore();
    // The caller writes n events anyway.
    if (!read) std::fill_n(ev, std::min(*n, room), Event{});
    return 0;
}

void VX_EvGetInfo(HX_U32* SeqStart, HX_U32* Count) noexcept {
    if (WaitStore()) {
        static_cast<void>(VX_EvFile_Load(kForReading));  // without a store the numbers are those of
                                                         // an empty one
        *SeqStart = g_VX_EventExt.EvLogHeader.SeqStart;
        *Count = g_VX_EventExt.EvLogHeader.NumOfEvent;
        VX_EvFile_Close();
    }
    PostStore();
}

void VX_EvFile_Reset() {
    if (WaitStore()) {
        if (VX_EvFile_Load(kForUpdate)) {
            static_cast<void>(VX_EvFile_Create(g_VX_EventExt.Filename));
        }
        std::fill_n(g_VX_EventExt.EvSeqNo.SequenceNo, kEventAdapters, 0);
        g_VX_EventExt.HXChangeCounters = {};
        VX_EvFile_Close();
    }
    PostStore();
}

HX_U8 VX_EvGetChangeCounters(VX_HX_ChangeCounters* cc) {
    static_cast<void>(VX_EvFile_Load(kForReading));
    *cc = g_VX_EventExt.HXChangeCounters;
    VX_EvFile_Close();
    return 1;
}
