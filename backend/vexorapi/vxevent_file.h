// The event store's two files and its state in this process: the ring of events behind the change
// counters, the remembered sequence numbers, and the arithmetic of the ring.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "hxraid.h"
#include "root_path.h"
#include "vx_cfg.h"

inline constexpr HX_U32 kEventAdapters = 4;          // adapters beyond these are not polled
inline constexpr HX_U32 kNoOffset = 0xFFFFFFFF;      // no entry has this sequence number
inline constexpr HX_U32 kDefaultCapacity = 50000;    // of a new file, unless configured
inline constexpr std::size_t kStoredTextSize = 120;  // bytes of an event's text in the file

// The modes of VX_EvFile_Load and VX_EvSeqNoFile_Load.
inline constexpr unsigned kForReading = 1;
inline constexpr unsigned kForUpdate = 3;

// The event file, all numbers little-endian:
//
//     0    52  VX_EvLogHeader
//    52    60  VX_HX_ChangeCounters
//   112   400  never written; zero
//   512   192  VX_EvEntryHeader of slot 0, and so on up to slot Capacity
//
// It grows as slots are first written. Entries are the NumOfEvent slots from Start upward, modulo
// the ring of Capacity + 1 slots; the one at End is never among them once the ring has wrapped.

inline constexpr std::uint64_t kFirstSlot = 512;

struct VX_EvLogHeader {
    char Magic[32];     //  0: "Ombra Event File v0.1", then zeros
    HX_U32 NumOfEvent;  // 32: valid entries
    HX_U32 Capacity;    // 36: most valid entries
    HX_U32 Start;       // 40: slot of the oldest entry
    HX_U32 End;         // 44: slot of the next entry to be written
    HX_U32 SeqStart;    // 48: the store's own sequence number of the oldest entry
};
static_assert(sizeof(VX_EvLogHeader) == 52 && std::is_trivially_copyable_v<VX_EvLogHeader>);
static_assert(offsetof(VX_EvLogHeader, NumOfEvent) == 32);

/// How often each kind of object has changed. The counters wrap silently.
struct VX_HX_ChangeCounters {
    HX_U32 Adapter_Change;   //  0
    HX_U32 HD_Change;        //  4
    HX_U32 MDD_Change;       //  8
    HX_U32 LD_Change;        // 12
    HX_U32 BSL_Change;       // 16
    HX_U32 Expander_Change;  // 20
    HX_U32 PM_Change;        // 24
    HX_U32 SAS_Change;       // 28
    HX_U32 ENCL_Change;      // 32
    HX_U32 BAT_Change;       // 36
    HX_U32 FLASH_Change;     // 40
    HX_U32 Whatever_Change;  // 44: every event
    HX_U32 CACHE_Change;     // 48
    HX_U32 MISC_Change;      // 52
    HX_U32 ARRAY_Change;     // 56
};
static_assert(sizeof(VX_HX_ChangeCounters) == 60);

// One slot of the ring; slot k starts at byte 512 + 192 * k.
struct VX_EvEntryHeader {
    HX_U16 Type;                     //  0: 0x0101 when written
    HX_U8 reserved[2];               //  2: zero
    HX_U32 Flags;                    //  4: zero
    HX_U8 data[64];                  //  8: the controller's Event, byte for byte
    char HXEvtMsg[kStoredTextSize];  // 72: its text; not terminated when it fills the field
};
static_assert(sizeof(VX_EvEntryHeader) == 192 && std::is_trivially_copyable_v<VX_EvEntryHeader>);
static_assert(offsetof(VX_EvEntryHeader, data) == 8 && offsetof(VX_EvEntryHeader, HXEvtMsg) == 72);
static_assert(sizeof(Event) == sizeof(VX_EvEntryHeader::data));

// The sequence-number file consists of one of these.
struct VX_EvSeqNo {
    HX_U32 SequenceNo[kEventAdapters];   //  0: of the last event stored from that adapter; 0: none
    HX_U8 SerialNo[kEventAdapters][20];  // 16: always zero
};
static_assert(sizeof(VX_EvSeqNo) == 96 && std::is_trivially_copyable_v<VX_EvSeqNo>);

/// The store's process-wide state: copies of what the files hold, and the files while an operation
/// has them open.
struct VX_EventExt {
    VX_EvLogHeader EvLogHeader;
    VX_HX_ChangeCounters HXChangeCounters;  // right behind the header, as in the file
    std::uint32_t Flags;                    // bit 0: EvLogCfg has been loaded
    int Sem_RWFile;                         // result of creating the semaphore; -1 without one
    // Paths have room for any root prefix.
    char Filename[kRootPathSize];
    int fileEv;  // descriptor of the event file, -1 when closed
    VX_EvSeqNo EvSeqNo;
    char SeqNoFilename[kRootPathSize];
    int fileSeqNo;  // descriptor of the sequence-number file, -1 when closed
    VX_Cfg_EventLog EvLogCfg;
};
static_assert(offsetof(VX_EventExt, HXChangeCounters) == sizeof(VX_EvLogHeader));
extern constinit VX_EventExt g_VX_EventExt;

// The functions take no lock and work on g_VX_EventExt. Results are 1 for success and 0 for
// failure. Reads and writes are not checked: a short file yields the bytes it has.

/// Makes `header` that of an empty store with the configured capacity.
void VX_EvHeader_Init(VX_EvLogHeader* header);

/// Creates or truncates the event file at `path` and writes an empty header and the counters in
/// memory. Returns 0 when it cannot be opened; a file that was open stays open then.
[[nodiscard]] int VX_EvFile_Create(const char* path);

/// Opens the event file and reads header and counters, unless it is open already.
///
/// Returns 0 with the file closed when it cannot be opened (the header in memory is then that of
/// an empty store, the counters stay) or when it does not begin with a whole header of ours (the
/// header and counters read stay in memory).
[[nodiscard]] int VX_EvFile_Load(unsigned mode);

/// Reads the header of the open event file again. Missing bytes of a shortened file become zero.
void VX_EvFile_ReloadHeader();

/// Closes the event file if it is open.
void VX_EvFile_Close();

/// Writes header and counters, at once.
void VX_EvFile_SaveHeader();

/// Opens the sequence-number file and reads it, unless it is open already. Returns 0 when it cannot
/// be opened.
[[nodiscard]] int VX_EvSeqNoFile_Load(unsigned mode);

/// Closes the sequence-number file if it is open.
void VX_EvSeqNoFile_Close();

/// Writes the sequence numbers.
void VX_EvSeqNoFile_Save();

/// Creates or truncates the sequence-number file with all numbers 0. Returns 0 when it cannot be
/// opened.
[[nodiscard]] int VX_EvSeqNoFile_Create();

/// Writes events of one adapter into the ring from End upward, skipping those already stored.
/// `count` is at most VX_EvGetMaxWriteContinusBlock. Header and sequence numbers stay in memory,
/// except that entries about to be overwritten leave the header in the file beforehand.
void VX_EvFile_SaveEvents(HX_U8 adapter, const Event* events, HX_U32 count);

/// Reads `count` events at ring offset `off` (0: the oldest) into `dest`. Bytes behind the file's
/// end read as zeros. The caller keeps the block inside the ring and unwrapped.
void VX_EvFile_LoadEventsFromOffsetBlindly(Event* dest, HX_U32 off, HX_U32 count);

/// Returns the ring offset of a store sequence number, or kNoOffset.
HX_U32 VX_EvSeqToOffset(HX_U32 seq);

/// Reads up to `count` events from store sequence number `seq` upward. Returns the number read.
HX_U32 VX_EvFile_LoadEventsBySeq(Event* dest, HX_U32 seq, HX_U32 count);

/// Returns how many of `count` events at ring offset `off` lie before the ring's physical end.
HX_U32 VX_EvGetMaxReadContinusBlock(HX_U32 off, HX_U32 count);

/// Returns how many of `count` events can be written at End in one block: 1 at least, up to slot
/// Capacity - 1 at most, and 1 at slot Capacity.
HX_U32 VX_EvGetMaxWriteContinusBlock(HX_U32 count);
