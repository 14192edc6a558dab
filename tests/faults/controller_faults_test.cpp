// The virtual controller under faults: ten things that programs do with it, on a state file.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "codes/activity.h"
#include "codes/status.h"
#include "fault_injector.h"
#include "fault_sweep.h"
#include "hxraid.h"
#include "support/temporary_root.h"

namespace {

using hxcodes::Status;

constexpr char kState[] = "/var/lib/vexorapi/hxsim.db";
constexpr HX_U8 kBios = 1;
constexpr HX_U16 kMost = 128;
// Free in the machine that is made where none is.
constexpr HX_U16 kDisks[] = {11, 12, 16};
constexpr HX_U16 kOtherDisks[] = {13, 14};
constexpr HX_U8 kRaid1 = 1;
constexpr HX_U8 kRaid5 = 5;

const TemporaryRoot* root = nullptr;  // of the test that runs
std::string machine;                  // the state file that each run begins with
std::string unchanged;                // what Outcome says when nothing has happened
HX_U8 code;                           // the answer of the call under test, and
HX_U32 answered;                      // what it answered besides

struct VirtualDisks {
    RequestHeader header;
    LD_Info records[kMost];
};
struct Disks {
    RequestHeader header;
    HD_Info records[kMost];
};
VirtualDisks virtual_disks;
Disks disks;
Flash_Data piece;
Event events[HX_EVENTS_PER_CALL];

template <class List>
void Start(List& list) {
    std::memset(static_cast<void*>(&list), 0, sizeof list);
    list.header.requestType = 1;
    list.header.numRequested = kMost;
}

HX_U8 ListVirtualDisks() {
    Start(virtual_disks);
    return HX_LD_GetInfo(0, reinterpret_cast<LD_Info_Request*>(&virtual_disks));
}

HX_U32 DigestOf(const void* bytes, std::size_t size) {
    HX_U32 digest = 2166136261;
    for (std::size_t at = 0; at < size; ++at) {
        digest = (digest ^ static_cast<const unsigned char*>(bytes)[at]) * 16777619;
    }
    return digest;
}

// ---- Before each run ----

// The machine as it was made, without a log of changes beside it.
void Restore() {
    HX_API_Finalize();
    FaultSetClockAhead(0);
    for (const char* const end : {"-wal", "-shm"}) {
        std::filesystem::remove(root->Path(kState) + end);
    }
    root->Write(kState, machine);
    code = 0xEE;
    answered = 0;
}
void RestoreAndOpen() {
    Restore();
    if (HX_API_Initialize() != HX_SUCCESS) std::abort();
    Start(disks);
    Start(virtual_disks);
    std::memset(&piece, 0, sizeof piece);
}
void Remove() {
    Restore();
    std::filesystem::remove(root->Path(kState));
}
void EraseFlash() {
    RestoreAndOpen();
    if (HX_Flash_Erase(0, kBios) != HX_SUCCESS) std::abort();
}
// What runs in the background has ended meanwhile, and nobody has looked yet.
void LetADayPass() {
    RestoreAndOpen();
    FaultSetClockAhead(86400);
}

// ---- What runs ----

void Open() { code = HX_API_Initialize(); }
void Count() {
    answered = HX_Adapter_GetCount();
    code = answered == 0 ? NumberOf(Status::kNoState) : HX_SUCCESS;
}
void ListDisks() {
    code = HX_PD_GetHDInfo_Ext(0, reinterpret_cast<HD_Info_Request*>(&disks));
    if (code == HX_SUCCESS) answered = DigestOf(disks.records, sizeof disks.records);
}
void List() {
    code = ListVirtualDisks();
    if (code == HX_SUCCESS) answered = virtual_disks.header.numReturned;
}
template <std::size_t count>
HX_U8 CreateOn(const HX_U16 (&on)[count], HX_U8 level, hxcodes::Init init) {
    Create_LD_Param param{};
    param.RaidMode = level;
    param.NumParityDisk = 1;
    param.InitializationOption = NumberOf(init);
    param.SectorCoefficient = 1;
    for (const HX_U16 disk : on) param.HDIDs[param.HDCount++] = disk;
    return HX_LD_Create(0, &param);
}
void Create() { code = CreateOn(kDisks, kRaid5, hxcodes::Init::kNone); }
void Delete() { code = HX_LD_Delete(0, 0, 0); }
void TakeEvents() {
    HX_U8 count = 0;
    code = HX_EVT_GetEvent(0, HX_EVENTS_PER_CALL, &count, events);
    answered = count;
}
void ReadFlash() {
    code = HX_Flash_Bin(0, HX_FLASH_READ, kBios, &piece);
    if (code == HX_SUCCESS) answered = DigestOf(piece.Data, piece.DataLength);
}
void WriteFlash() {
    piece.DataLength = sizeof piece.Data;
    code = HX_Flash_Bin(0, HX_FLASH_WRITE, kBios, &piece);
}

// ---- What is left ----

// The code and the answer; then, asked again without faults and after a new start: the virtual
// disks, how many work in the background, the state of the flash, and the waiting events.
std::string Outcome() {
    HX_API_Finalize();
    const HX_U8 opened = HX_API_Initialize();
    const HX_U8 listed = ListVirtualDisks();
    const HX_U8 flash = HX_Flash_Bin(0, HX_FLASH_READ, kBios, &piece);
    int working = 0;
    for (HX_U16 i = 0; i < virtual_disks.header.numReturned; ++i) {
        working += virtual_disks.records[i].BGAStatus != 0;
    }
    unsigned waiting = 0;
    for (HX_U8 count = 1; count != 0; waiting += count) {
        if (HX_EVT_GetEvent(0, HX_EVENTS_PER_CALL, &count, events) != HX_SUCCESS) count = 0;
    }
    HX_API_Finalize();
    return "code " + std::to_string(code) + ", " + std::to_string(answered) + "; then " +
           std::to_string(opened) + ", " + std::to_string(listed) + ", " +
           std::to_string(virtual_disks.header.numReturned) + " virtual disks, " +
           std::to_string(working) + " working, flash " + std::to_string(flash) + ", " +
           std::to_string(waiting) + " events";
}

bool IsRefusal(const std::string& seen) {
    for (const Status status : {Status::kNoMemory, Status::kNoState}) {
        if (seen.starts_with("code " + std::to_string(NumberOf(status)) + ", 0;")) return true;
    }
    return false;
}
std::string Left(const std::string& outcome) { return outcome.substr(outcome.find(';')); }

// Memory or the state file is told as the reason, and then nothing has changed. A clock that cannot
// be read stands still.
bool IsRefused(int kind, const std::string&, const std::string& seen) {
    if (kind == kFaultTime) return false;
    return IsRefusal(seen) && Left(seen) == Left(unchanged);
}
// What could not be done by itself, without having been asked for, the next call does.
bool IsPutOff(int, const std::string& usual, const std::string& seen) {
    return IsRefusal(seen) && Left(seen) == Left(usual);
}
constexpr long kMostOfAKind = 40;  // each run opens and reads a state file

constexpr FaultScenario kScenarios[] = {
    {"Opening", "code 0,", Restore, Open, Outcome, IsRefused, HX_API_Finalize, kMostOfAKind},
    {"MakingAMachine", "code 0,", Remove, Open, Outcome, IsPutOff, HX_API_Finalize, kMostOfAKind},
    {"CountingAdapters", "code 0, 2;", RestoreAndOpen, Count, Outcome, IsRefused, HX_API_Finalize,
     kMostOfAKind},
    {"ListingDisks", "code 0,", RestoreAndOpen, ListDisks, Outcome, IsRefused, HX_API_Finalize,
     kMostOfAKind},
    {"CreatingAVirtualDisk", "code 0,", RestoreAndOpen, Create, Outcome, IsRefused, HX_API_Finalize,
     kMostOfAKind},
    {"DeletingAVirtualDisk", "code 0,", RestoreAndOpen, Delete, Outcome, IsRefused, HX_API_Finalize,
     kMostOfAKind},
    {"TakingEvents", "code 0,", RestoreAndOpen, TakeEvents, Outcome, IsRefused, HX_API_Finalize,
     kMostOfAKind},
    {"ReadingFlash", "code 0,", RestoreAndOpen, ReadFlash, Outcome, IsRefused, HX_API_Finalize,
     kMostOfAKind},
    {"WritingFlash", "code 0,", EraseFlash, WriteFlash, Outcome, IsRefused, HX_API_Finalize,
     kMostOfAKind},
    {"AStepOfTheClock", "code 0,", LetADayPass, List, Outcome, IsPutOff, HX_API_Finalize,
     kMostOfAKind},
};

class ControllerUnderFaults : public testing::TestWithParam<FaultScenario> {};

TEST_P(ControllerUnderFaults, RefusesOrSucceeds) {
    const TemporaryRoot folder;
    root = &folder;
    unsetenv("HXSIM_STATE");
    // A machine with events that wait and an initialisation that runs.
    ASSERT_EQ(HX_SUCCESS, HX_API_Initialize());
    ASSERT_EQ(HX_SUCCESS, CreateOn(kOtherDisks, kRaid1, hxcodes::Init::kBackground));
    HX_API_Finalize();
    machine = folder.Read(kState);

    GetParam().prepare();
    unchanged = Outcome();
    ExpectDocumentedUnderFaults(GetParam());
    FaultSetClockAhead(0);
    HX_API_Finalize();
    root = nullptr;
}

INSTANTIATE_TEST_SUITE_P(Scenarios, ControllerUnderFaults, testing::ValuesIn(kScenarios),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
