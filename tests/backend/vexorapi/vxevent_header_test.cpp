// Headers of the event file that nobody has written: each of the five numbers is one of eleven, at
// the edges of the ring and of 32 bits, in every combination. Readers and the writer go over each
// of them. HEADERS=all for all 161,051; otherwise some, evenly chosen.
#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "descriptor.h"
#include "numbered_event.h"
#include "vxevent_store.h"

namespace {

constexpr HX_U32 kCapacity = 64;
constexpr std::size_t kSlots = kCapacity + 1;
constexpr std::size_t kFileSize = kFirstSlot + kSlots * sizeof(VX_EvEntryHeader);

constexpr HX_U32 kNumbers[] = {
    0,      1,          2,          kCapacity - 1, kCapacity, kCapacity + 1,
    0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE,    0xFFFFFFFF};
constexpr std::size_t kCombinations = 161051;  // 11 to the power of five
static_assert(std::size(kNumbers) == 11);

// Has no divisor in common with 11, so that each number comes in each place.
constexpr std::size_t kEvery = 101;

// Whole, or of a slot that was never written.
bool IsOne(const Event& event) {
    const Event zero{};
    return IsWhole(event) || std::memcmp(&event, &zero, sizeof event) == 0;
}

class AnyHeader : public EventStore {
protected:
    AnyHeader() {
        hxfake::NoteCalls(false);
        SetCapacity(kCapacity);
        // Once round and a little more, so that every slot holds an event.
        for (HX_U32 i = 0; i < kSlots + 5; ++i) CheckIn({NumberedEvent(i + 1)});
        whole_ = root_.Read(kEventFile);
    }

    // The store with these numbers in its header.
    void Write(const std::array<HX_U32, 5>& numbers) {
        std::memcpy(whole_.data() + offsetof(VX_EvLogHeader, NumOfEvent), numbers.data(),
                    sizeof numbers);
        const Descriptor file(open(root_.Path(kEventFile).c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
        ASSERT_EQ(static_cast<ssize_t>(whole_.size()),
                  write(file.Get(), whole_.data(), whole_.size()));
    }

    // Asks for so many, from `s` to the newest.
    void Read(HX_U32 wanted, HX_U32 s) {
        std::memset(static_cast<void*>(room_.data()), 0xEE, room_.size() * sizeof(Event));
        const Event untouched = room_[wanted];
        HX_U32 n = wanted;
        HX_U32 e = kNewestEvents;
        VX_EvGet(&n, &s, &e, room_.data());
        EXPECT_LE(n, wanted);
        EXPECT_EQ(0, std::memcmp(&room_[wanted], &untouched, sizeof untouched));
        if (n == wanted && e == kNewestEvents) return;  // declined: nothing was read
        for (HX_U32 i = 0; i < std::min(n, wanted); ++i) EXPECT_TRUE(IsOne(room_[i])) << i;
        seen_ += n;
    }

    void ReadAll(HX_U32 seq_start) {
        Read(kCapacity + 6, 0);
        Read(kCapacity + 6, seq_start);
        Read(7, kNewestEvents);
        HX_U32 first = 0;
        HX_U32 count = 0;
        VX_EvGetInfo(&first, &count);
        VX_HX_ChangeCounters counters;
        EXPECT_EQ(1, VX_EvGetChangeCounters(&counters));
    }

    std::string whole_;
    std::size_t seen_ = 0;  // events that were read
    std::vector<Event> room_{kCapacity + 7};
};

TEST_F(AnyHeader, HurtsNeitherReadersNorTheWriter) {
    ASSERT_EQ(kFileSize, whole_.size());
    const char* const asked = std::getenv("HEADERS");
    const std::size_t every = asked != nullptr && std::string(asked) == "all" ? 1 : kEvery;
    const auto descriptors = OpenDescriptors();
    std::size_t done = 0;
    for (std::size_t combination = 0; combination < kCombinations; combination += every) {
        std::array<HX_U32, 5> numbers{};
        std::size_t rest = combination;
        for (HX_U32& number : numbers) {
            number = kNumbers[rest % std::size(kNumbers)];
            rest /= std::size(kNumbers);
        }
        SCOPED_TRACE(testing::Message()
                     << "entries " << numbers[0] << ", capacity " << numbers[1] << ", start "
                     << numbers[2] << ", end " << numbers[3] << ", first number " << numbers[4]);
        Write(numbers);
        ReadAll(numbers[4]);
        // What was read is not written; and the writer takes up where the header says, wherever
        // that is.
        ASSERT_EQ(numbers[0], StoredHeader().NumOfEvent);
        const HX_U32 serial = static_cast<HX_U32>(1000 + 2 * combination);
        CheckIn({NumberedEvent(serial), NumberedEvent(serial + 1)});
        ReadAll(numbers[4]);
        ++done;
        if (HasFailure()) break;
    }
    EXPECT_EQ(descriptors, OpenDescriptors());
    EXPECT_LT(done, seen_);
    std::printf("%zu headers, %zu events read\n", done, seen_);
}

}  // namespace
