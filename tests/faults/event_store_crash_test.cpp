// A check-in that ends at any moment: after every write, and within those that are longer than a
// sector. What it leaves is read, and the next check-in goes on from there.
//
// A write within one sector of 512 bytes is there or not there; so are header, counters and
// sequence numbers. Every other write is cut behind each of its bytes when the environment has
// FAULTS=all, and else behind every 61st.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "hxfake.h"
#include "numbered_event.h"
#include "support/temporary_root.h"
#include "vxevent.h"
#include "write_recorder.h"

namespace {

constexpr char kEventFile[] = "/opt/kestrel/raid/db/vx_hx_raid.ev";
constexpr char kSeqNoFile[] = "/opt/kestrel/raid/db/vx_hx_seqnum.ev";
constexpr std::size_t kSector = 512;

struct Case {
    const char* name;
    HX_U32 capacity;
    HX_U32 before;  // events in the store
    HX_U32 polled;  // by the check-in that ends
};

class ACheckInThatEnds : public testing::TestWithParam<Case> {
protected:
    ACheckInThatEnds() {
        std::filesystem::create_directories(root_.Path("/opt/kestrel/raid/db"));
        root_.Write("/vexorapi.ini", "<c><EventLogConfig type=\"config\" MaxNumOfEvent=\"" +
                                         std::to_string(GetParam().capacity) + "\"/></c>");
        hxfake::Reset();
        hxfake::NoteCalls(false);
    }
    ~ACheckInThatEnds() override {
        VX_EvShutdown();
        hxfake::Reset();
    }

    static void CheckIn(HX_U32 first, HX_U32 count) {
        HX_U32 next = first;
        const HX_U32 end = first + count;
        hxfake::On<&HX_EVT_GetEvent>().Always(
            [&next, end](HX_U8, HX_U8 most, HX_U8* returned, Event* events) {
                for (; *returned < most && next < end; ++*returned) {
                    *events++ = NumberedEvent(next++);
                }
                return HX_U8{0};
            });
        VX_EvInit();
        VX_EvFile_CheckIn(1);
    }

    // The events in the store, as a new process reads them.
    static std::vector<HX_U32> Stored() {
        VX_EvInit();
        HX_U32 n = 1000;
        HX_U32 s = 0;
        HX_U32 e = 0;
        std::vector<Event> events(n);
        HX_U32 first = 0;
        HX_U32 count = 0;
        VX_EvGetInfo(&first, &count);
        if (count == 0) return {};
        VX_EvGet(&n, &s, &e, events.data());
        std::vector<HX_U32> numbers;
        for (HX_U32 i = 0; i < n; ++i) {
            EXPECT_TRUE(IsWhole(events[i])) << "event " << i << " of " << n << " is torn";
            numbers.push_back(events[i].SequenceNo);
        }
        return numbers;
    }

    static void ExpectConsecutive(const std::vector<HX_U32>& numbers) {
        for (std::size_t i = 1; i < numbers.size(); ++i) EXPECT_LT(numbers[i - 1], numbers[i]);
    }

    // The files as they are at this moment; what comes after is as at any other.
    void LookAndGoOn(const FileSet& files) {
        const Case& given = GetParam();
        for (const char* const name : {kEventFile, kSeqNoFile}) {
            const auto file = files.find(root_.Path(name));
            if (file == files.end()) {
                std::filesystem::remove(root_.Path(name));
            } else {
                root_.Write(name, file->second);
            }
        }
        const std::vector<HX_U32> left = Stored();
        ExpectConsecutive(left);
        // Of what was stored before, only as many are gone as the check-in had to make room for.
        const HX_U32 last = given.before + given.polled;
        const HX_U32 kept_from = last > given.capacity ? last - given.capacity + 1 : 1;
        for (HX_U32 number = kept_from; number <= given.before; ++number) {
            EXPECT_TRUE(std::ranges::find(left, number) != left.end()) << number << " is lost";
        }
        // The events of the call to the controller that was not stored are lost: 50 at most.
        constexpr HX_U32 kNext = 20;
        CheckIn(last + 1, kNext);
        const std::vector<HX_U32> after = Stored();
        ExpectConsecutive(after);
        ASSERT_LE(kNext, after.size());
        EXPECT_EQ(last + kNext, after.back());
        EXPECT_EQ(last + 1, after[after.size() - kNext]);
        const std::size_t expected = std::min<std::size_t>(given.capacity, left.size() + kNext);
        EXPECT_EQ(expected, after.size());
    }

    FileSet Files() const {
        FileSet files;
        for (const char* const name : {kEventFile, kSeqNoFile}) {
            if (root_.Exists(name)) files[root_.Path(name)] = root_.Read(name);
        }
        return files;
    }

    const TemporaryRoot root_;
};

TEST_P(ACheckInThatEnds, LosesWhatItHadTakenAndNothingElse) {
    const Case& given = GetParam();
    for (HX_U32 number = 1; number <= given.before; number += 50) {
        CheckIn(number, std::min(HX_U32{50}, given.before - number + 1));
    }
    const FileSet before = Files();
    StartRecording(root_.Path("/opt"));
    CheckIn(given.before + 1, given.polled);
    const std::vector<RecordedWrite> writes = StopRecording();
    ASSERT_LT(2u, writes.size());

    const char* const form = std::getenv("FAULTS");
    const std::size_t step = form != nullptr && std::strcmp(form, "all") == 0 ? 1 : 61;
    int points = 0;
    FileSet files = before;
    for (const RecordedWrite& write : writes) {
        const bool in_a_sector =
            write.offset / kSector == (write.offset + write.bytes.size()) / kSector;
        const std::size_t last = in_a_sector ? 1 : write.bytes.size();
        for (std::size_t length = 0; length < last; length += step) {
            FileSet cut = files;
            if (length > 0) Apply(cut, write, length);
            SCOPED_TRACE("write of " + std::to_string(write.bytes.size()) + " bytes at " +
                         std::to_string(write.offset) + ", cut at " + std::to_string(length));
            LookAndGoOn(cut);
            ++points;
            if (HasFailure()) return;
        }
        Apply(files, write, write.bytes.size());
    }
    LookAndGoOn(files);
    std::printf("%s: %d crash points\n", given.name, points + 1);
}

constexpr Case kCases[] = {
    {"NewStore", 200, 0, 30},       {"GrowingStore", 200, 60, 50},   {"FullRing", 64, 64, 50},
    {"RingThatWraps", 64, 100, 50}, {"WholeRingAtOnce", 40, 40, 50}, {"TwoPolls", 150, 150, 100},
};
INSTANTIATE_TEST_SUITE_P(Stores, ACheckInThatEnds, testing::ValuesIn(kCases),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
