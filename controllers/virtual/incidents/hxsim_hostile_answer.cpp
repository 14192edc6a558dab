// Answers like those of broken firmware, for callers that have to survive them.
//
// Each answer is corrupted in the next of a few ways, so that a caller that asks repeatedly meets
// them all, always in the same order.
#include "incidents/hxsim_hostile_answer.h"

#include <array>
#include <cstring>

namespace hxsim {
namespace {

void LeaveRecords(unsigned char*, std::size_t) {}

// Counts are 255, numbers have their largest value, and no text is terminated.
void FillWithOnes(unsigned char* bytes, std::size_t size) { std::memset(bytes, 0xFF, size); }

// Texts are printable and not terminated.
void FillWithLetters(unsigned char* bytes, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<unsigned char>('A' + i % 26);
}

// Mixed bytes, with markup and control characters among them.
void FillWithEverything(unsigned char* bytes, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<unsigned char>(i * 167 + 13);
}

struct Way {
    void (*fill)(unsigned char* bytes, std::size_t size);
    void (*lie)(RequestHeader& header);
};

void LieNothing(RequestHeader&) {}
void OneTooMany(RequestHeader& header) {
    header.numReturned = header.numRequested;
    if (header.numReturned != 65535) ++header.numReturned;
}
void AsManyAsCanBeSaid(RequestHeader& header) { header.numReturned = 65535; }
void SamePageAgain(RequestHeader& header) { header.nextStartingIndex = header.startingIndexOrId; }
void FirstPageAgain(RequestHeader& header) { header.nextStartingIndex = 0; }
void NothingButMore(RequestHeader& header) {
    header.numReturned = 0;
    header.nextStartingIndex = header.startingIndexOrId;
}

constexpr std::array kWays = {
    Way{LeaveRecords, AsManyAsCanBeSaid},    Way{FillWithOnes, LieNothing},
    Way{LeaveRecords, SamePageAgain},        Way{FillWithLetters, OneTooMany},
    Way{FillWithEverything, FirstPageAgain}, Way{FillWithOnes, NothingButMore},
};

constinit std::size_t answers = 0;  // that were corrupted so far

const Way& NextWay() { return kWays[answers++ % kWays.size()]; }

}  // namespace

void MakePageHostile(RequestHeader& header, void* records, std::size_t bytes) {
    const Way& way = NextWay();
    if (bytes != 0) way.fill(static_cast<unsigned char*>(records), bytes);
    way.lie(header);
}

void MakeRecordHostile(void* record, std::size_t bytes) {
    NextWay().fill(static_cast<unsigned char*>(record), bytes);
}

}  // namespace hxsim
