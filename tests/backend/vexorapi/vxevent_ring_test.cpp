// The ring at every place where it can wrap.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "vxevent_store.h"

namespace {

std::string CapacityName(const testing::TestParamInfo<HX_U32>& info) {
    return "Capacity" + std::to_string(info.param);
}

// ---- Small rings, through check-in and query ----------------------------------------------------

class SmallRing : public EventStore, public testing::WithParamInterface<HX_U32> {
protected:
    SmallRing() { SetCapacity(GetParam()); }
};

// `filled` events first, so that the batch begins at every slot; then the batch, at once.
TEST_P(SmallRing, DeliversTheNewestWhereverABatchBegins) {
    const HX_U32 capacity = GetParam();
    for (HX_U32 filled = 0; filled <= 2 * capacity + 2; ++filled) {
        for (const HX_U32 batch : {HX_U32{1}, HX_U32{2}, capacity, capacity + 1, HX_U32{50}}) {
            std::filesystem::remove(root_.Path(kEventFile));
            std::filesystem::remove(root_.Path(kSeqNoFile));
            if (filled > 0) CheckIn(DiskEvents(1, filled));
            CheckIn(DiskEvents(1 + filled, batch));
            const HX_U32 total = filled + batch;
            const HX_U32 kept = std::min(total, capacity);
            const Page page = Get(total, 0, 0);
            ASSERT_EQ(Range(1 + total - kept, kept), Numbers(page.events))
                << filled << " and " << batch;
            ASSERT_EQ(total - kept, page.s);
            ASSERT_EQ(total - 1, page.e);
            const VX_EvLogHeader header = StoredHeader();
            ASSERT_EQ(total % (capacity + 1), header.End);
            ASSERT_EQ((total - kept) % (capacity + 1), header.Start);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Ring, SmallRing, testing::Values(1, 2, 3, 50), CapacityName);

// ---- Every ring, slot by slot -----------------------------------------------------------------

class AnyRing : public EventStore, public testing::WithParamInterface<HX_U32> {
protected:
    AnyRing() {
        SetCapacity(GetParam());
        CheckIn(DiskEvents(1, 1));
        EXPECT_EQ(1, VX_EvFile_Load(kForUpdate));
        EXPECT_EQ(1, VX_EvSeqNoFile_Load(kForUpdate));
    }
    ~AnyRing() override {
        VX_EvFile_Close();
        VX_EvSeqNoFile_Close();
    }

    // Writes into every slot an event whose number is the slot's.
    void NumberSlots() const {
        std::vector<VX_EvEntryHeader> slots(GetParam() + 1);
        for (HX_U32 slot = 0; slot < slots.size(); ++slot) {
            const Event event = MakeEvent(2, 1, slot);
            std::memcpy(slots[slot].data, &event, sizeof event);
        }
        const auto bytes = static_cast<ssize_t>(slots.size() * sizeof slots[0]);
        ASSERT_EQ(bytes,
                  pwrite(g_VX_EventExt.fileEv, slots.data(), slots.size() * sizeof slots[0], 512));
    }
    static HX_U32 NumberInSlot(HX_U32 slot) {
        Event event;
        const auto offset = 512 + 192 * static_cast<off_t>(slot) + 8;
        EXPECT_EQ(64, pread(g_VX_EventExt.fileEv, &event, sizeof event, offset));
        return event.SequenceNo;
    }
};

TEST_P(AnyRing, IsReadOverItsPhysicalEndFromEveryStart) {
    NumberSlots();
    const HX_U32 capacity = GetParam();
    const HX_U32 slots = capacity + 1;
    const HX_U32 count = std::min<HX_U32>(10, capacity);
    std::vector<Event> events(count);
    for (HX_U32 start = 0; start < slots; ++start) {
        VX_EvLogHeader& header = g_VX_EventExt.EvLogHeader;
        header.NumOfEvent = capacity;
        header.Start = start;
        header.SeqStart = 1000;
        // The page that has the last slot in its middle, as far as the ring reaches there.
        const HX_U32 to_end = slots - start;
        const HX_U32 off = std::min(to_end > 5 ? to_end - 5 : 0, capacity - count);
        ASSERT_EQ(count, VX_EvFile_LoadEventsBySeq(events.data(), 1000 + off, count));
        for (HX_U32 i = 0; i < count; ++i) {
            ASSERT_EQ((start + off + i) % slots, events[i].SequenceNo) << "start " << start;
        }
    }
}

TEST_P(AnyRing, IsWrittenOverItsPhysicalEndFromEveryEnd) {
    const HX_U32 slots = GetParam() + 1;
    HX_U32 number = 10;
    for (HX_U32 end = 0; end < slots; ++end) {
        VX_EvLogHeader& header = g_VX_EventExt.EvLogHeader;
        header.NumOfEvent = GetParam();
        header.End = end;
        header.Start = (end + 1) % slots;
        header.SeqStart = 0;
        const std::vector<Event> events = DiskEvents(number, 3);
        for (HX_U32 stored = 0; stored < 3;) {
            const HX_U32 block = VX_EvGetMaxWriteContinusBlock(3 - stored);
            VX_EvFile_SaveEvents(0, &events[stored], block);
            stored += block;
        }
        ASSERT_EQ((end + 3) % slots, header.End);
        ASSERT_EQ((end + 4) % slots, header.Start);
        ASSERT_EQ(GetParam(), header.NumOfEvent);
        ASSERT_EQ(3u, header.SeqStart);
        // The last ones stand where they should; the smallest ring has overwritten the first.
        for (HX_U32 i = slots < 3 ? 3 - slots : 0; i < 3; ++i) {
            ASSERT_EQ(number + i, NumberInSlot((end + i) % slots)) << "end " << end;
        }
        number += 3;
    }
}

INSTANTIATE_TEST_SUITE_P(Ring, AnyRing, testing::Values(1, 2, 3, 50, 50000, 65535), CapacityName);

// ---- Rings that have been filled by check-in ---------------------------------------------------

TEST_F(EventStore, LargestRingGivesUpItsOldestAfter65535Events) {
    SetCapacity(65535);
    hxfake::NoteCalls(false);
    CheckIn(DiskEvents(1, 65540));
    const VX_EvLogHeader header = StoredHeader();
    EXPECT_EQ(65535u, header.NumOfEvent);
    EXPECT_EQ(5u, header.SeqStart);
    EXPECT_EQ(5u, header.Start);
    EXPECT_EQ(4u, header.End);
    EXPECT_EQ(Range(6, 2000), Numbers(Get(2000, 0, 0).events));
    EXPECT_EQ(Range(63541, 2000), Numbers(Get(2000, kNewestEvents, 0xFFFFFFFF).events));
    EXPECT_EQ(512u + 192u * 65536, root_.Read(kEventFile).size());
}

}  // namespace
