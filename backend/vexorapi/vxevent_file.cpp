// The event store's two files: opened, created, read and written by descriptor, and the arithmetic
// of the ring between them. The content of the files is never trusted: another process writes them
// without a lock.
#include "vxevent_file.h"

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <utility>

#include "descriptor.h"
#include "guarded_file.h"
#include "vxevent_text.h"

static_assert(std::endian::native == std::endian::little, "the files are little-endian");
static_assert(sizeof(off_t) == 8, "a ring of 2^32 slots passes 2 GiB by far");

constinit VX_EventExt g_VX_EventExt{.EvLogHeader = {},
                                    .HXChangeCounters = {},
                                    .Flags = 0,
                                    .Sem_RWFile = -1,
                                    .Filename = {},
                                    .fileEv = -1,
                                    .EvSeqNo = {},
                                    .SeqNoFilename = {},
                                    .fileSeqNo = -1,
                                    .EvLogCfg = {}};

namespace {

constexpr char kEventFile[] = "/opt/kestrel/raid/db/vx_hx_raid.ev";
constexpr char kSeqNoFile[] = "/opt/kestrel/raid/db/vx_hx_seqnum.ev";

constexpr char kMagic[] = "Ombra Event File v0.1";
static_assert(sizeof kMagic == 22, "compared and stored with its NUL");

static_assert(kLongestEventText <= kStoredTextSize, "no text is cut in the file");

constexpr std::uint32_t kConfigLoaded = 1;  // bit of VX_EventExt::Flags
constexpr HX_U16 kEntryType = 0x0101;

// Class and code of the adapter-found event. It occurs at every start of the controller and is
// stored whatever its sequence number.
constexpr HX_U16 kAdapterClass = 0;
constexpr HX_U16 kAdapterFound = 9;

// The buffer for slots that are read or written. The events of a poll fit into one batch; a page is
// read faster in few large pieces than in many small ones.
constexpr HX_U32 kBatch = 1000;
// Aligned so that the events, 8 bytes into their slots, fill whole cache lines: pages of them are
// copied a little faster.
constexpr std::size_t kCacheLine = 64;
struct SlotBuffer {
    char unused[kCacheLine - offsetof(VX_EvEntryHeader, data)];
    VX_EvEntryHeader slots[kBatch];
};
static_assert(sizeof(VX_EvEntryHeader) % kCacheLine == 0);
alignas(kCacheLine) constinit SlotBuffer slot_buffer{};
constexpr auto& slots = slot_buffer.slots;

// The start of the event file, read and written in one call.
struct FileHead {
    VX_EvLogHeader header;
    VX_HX_ChangeCounters counters;
};
static_assert(sizeof(FileHead) == 112 && offsetof(FileHead, counters) == 52);

constexpr mode_t kFileMode = 0666;  // less the umask: service and front end are different users

// Opening never waits, whatever the configured name is. From a FIFO or a terminal, which pread
// refuses, nothing is read, so that the magic is missing.
Descriptor OpenForReading(const char* path) {
    return Descriptor(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
}

Descriptor Open(const char* path, unsigned mode) {
    const bool reading = (mode & kForUpdate) == kForReading;
    return reading ? OpenForReading(path) : std::move(OpenGuarded(path, O_RDWR, 0).file);
}

Descriptor Create(const char* path) {
    return std::move(OpenGuarded(path, O_RDWR | O_CREAT, kFileMode).file);
}

// Closes one of the store's two files, whose descriptors are numbers in its state, -1 when closed.
void Close(int& file) { Descriptor(std::exchange(file, -1)).Close(); }

// Calls move(done), which moves what is left of `size` bytes or less, until all are moved or it
// fails. Returns how many were.
template <class Move>
std::size_t MoveAll(std::size_t size, Move move) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t moved = move(done);
        if (moved < 0 && errno == EINTR) continue;
        if (moved <= 0) break;
        done += static_cast<std::size_t>(moved);
    }
    return done;
}

// Reads `size` bytes at `offset`, fewer at the end of the file or at an error. Returns how many.
std::size_t ReadAt(int file, void* bytes, std::size_t size, std::uint64_t offset) {
    char* const at = static_cast<char*>(bytes);
    return MoveAll(size, [=](std::size_t done) {
        return pread(file, at + done, size - done, static_cast<off_t>(offset + done));
    });
}

// Writes as much as can be written. A full disk is not reported.
void WriteAt(int file, const void* bytes, std::size_t size, std::uint64_t offset) {
    const char* const at = static_cast<const char*>(bytes);
    MoveAll(size, [=](std::size_t done) {
        return pwrite(file, at + done, size - done, static_cast<off_t>(offset + done));
    });
}

// Truncates a recreated file to `size` bytes. Anything but a regular file has nothing to truncate.
void CutTo(int file, std::size_t size) {
    [[maybe_unused]] const int failed = ftruncate(file, static_cast<off_t>(size));
}

const VX_EvLogHeader& Header() { return g_VX_EventExt.EvLogHeader; }

// Slots of the ring. In 64 bits it is never 0, whatever capacity the file claims.
std::uint64_t RingSize(const VX_EvLogHeader& header) { return std::uint64_t{header.Capacity} + 1; }
std::uint64_t RingSize() { return RingSize(Header()); }

// Whether the indices are consistent: our writers keep entry number 0 in slot 0. They are not in a
// header that was read during another process's write, nor perhaps in a damaged file.
bool IsConsistent(const VX_EvLogHeader& header) {
    const std::uint64_t ring = RingSize(header);
    return header.SeqStart % ring == header.Start &&
           (std::uint64_t{header.Start} + header.NumOfEvent) % ring == header.End;
}

// How often an inconsistent header is read at most; a write takes only nanoseconds.
constexpr int kMostLooks = 3;

// The slot at an offset from the oldest entry.
std::uint64_t SlotOf(const VX_EvLogHeader& header, HX_U32 off) {
    return (std::uint64_t{header.Start} + off) % RingSize();
}

std::uint64_t FileOffset(std::uint64_t slot) {
    return kFirstSlot + sizeof(VX_EvEntryHeader) * slot;
}

// The slot of the next entry. An End beyond the ring, in a damaged file, counts as 0.
HX_U32 WriteSlot() { return Header().End < RingSize() ? Header().End : 0; }

void LoadConfig() {
    if ((g_VX_EventExt.Flags & kConfigLoaded) != 0) return;
    g_VX_EventExt.Flags |= kConfigLoaded;
    g_VX_EventExt.EvLogCfg = {};
    VX_CfgLoad(&g_VX_EventExt.EvLogCfg, "EventLogConfig");
}

// Builds the event file's path. Only this file follows the configuration.
void SetEventPath() {
    static_cast<void>(RootPath(g_VX_EventExt.Filename, kEventFile));  // empty when too long
    const char* const configured = g_VX_EventExt.EvLogCfg.Filename;
    if (*configured == '\0') return;
    static_assert(sizeof(VX_Cfg_EventLog::Filename) <= sizeof(VX_EventExt::Filename));
    std::memcpy(g_VX_EventExt.Filename, configured, std::strlen(configured) + 1);
}

// Whether the event is new, by the number of the last one stored from its adapter.
bool TakeNumber(HX_U32& last, const Event& event) {
    if (event.Class == kAdapterClass && event.Code == kAdapterFound) return true;
    // With nothing remembered (0) every event is new, and so is one without a number.
    if (event.SequenceNo != 0 && event.SequenceNo <= last) return false;
    last = event.SequenceNo;
    return true;
}

void FillEntry(VX_EvEntryHeader& entry, const Event& event) {
    entry.Type = kEntryType;
    std::memset(entry.reserved, 0, sizeof entry.reserved);
    entry.Flags = 0;
    std::memcpy(entry.data, &event, sizeof event);
    const auto length = static_cast<std::size_t>(VX_HX_EVT_Sprintf(&event, entry.HXEvtMsg));
    std::memset(entry.HXEvtMsg + length, 0, sizeof entry.HXEvtMsg - length);
}

// Advances the indices by one entry; a full ring drops its oldest.
void Advance(VX_EvLogHeader& header) {
    const std::uint64_t ring = RingSize();
    if (header.NumOfEvent < header.Capacity) ++header.NumOfEvent;
    header.End = std::uint64_t{header.End} + 1 >= ring ? 0 : header.End + 1;
    if (header.End != header.Start) return;
    ++header.SeqStart;
    header.Start = std::uint64_t{header.Start} + 1 >= ring ? 0 : header.Start + 1;
}

// Removes the oldest entries from the file's header before their slots are overwritten. So if the
// writer is killed within a slot, no listed entry is a mix of two events; a reader in between finds
// fewer entries.
void GiveUpOldest(VX_EvLogHeader& written, HX_U32 count) {
    count = std::min(count, written.NumOfEvent);
    if (count == 0) return;
    written.NumOfEvent -= count;
    written.Start = static_cast<HX_U32>(SlotOf(written, count));
    written.SeqStart += count;
    WriteAt(g_VX_EventExt.fileEv, &written, sizeof written, 0);
}

}  // namespace

void VX_EvHeader_Init(VX_EvLogHeader* header) {
    LoadConfig();
    *header = {};
    std::memcpy(header->Magic, kMagic, sizeof kMagic);
    const HX_U16 configured = g_VX_EventExt.EvLogCfg.MaxNumOfEvent;
    header->Capacity = configured == 0 ? kDefaultCapacity : configured;
}

int VX_EvFile_Create(const char* path) {
    VX_EvHeader_Init(&g_VX_EventExt.EvLogHeader);
    Descriptor file = Create(path);
    if (!file.IsOpen()) return 0;
    Close(g_VX_EventExt.fileEv);
    g_VX_EventExt.fileEv = file.Release();
    // The header first: a reader finds a store without entries, never a file without a header.
    VX_EvFile_SaveHeader();
    CutTo(g_VX_EventExt.fileEv, sizeof(FileHead));
    return 1;
}

int VX_EvFile_Load(unsigned mode) {
    if (g_VX_EventExt.fileEv >= 0) return 1;
    LoadConfig();
    SetEventPath();
    Descriptor file = Open(g_VX_EventExt.Filename, mode);
    if (!file.IsOpen()) {
        VX_EvHeader_Init(&g_VX_EventExt.EvLogHeader);
        return 0;
    }
    // The rest of a header that is cut short is zero; counters that the file does not have keep
    // their values.
    FileHead head;
    std::size_t length = 0;
    for (int look = 0; look < kMostLooks; ++look) {
        head = {{}, g_VX_EventExt.HXChangeCounters};
        length = ReadAt(file.Get(), &head, sizeof head, 0);
        if (length < sizeof head.header || IsConsistent(head.header)) break;
    }
    g_VX_EventExt.EvLogHeader = head.header;
    g_VX_EventExt.HXChangeCounters = head.counters;
    if (length < sizeof head.header || std::memcmp(head.header.Magic, kMagic, sizeof kMagic) != 0) {
        return 0;
    }
    g_VX_EventExt.fileEv = file.Release();
    return 1;
}

void VX_EvFile_ReloadHeader() {
    VX_EvLogHeader& header = g_VX_EventExt.EvLogHeader;
    for (int look = 0; look < kMostLooks; ++look) {
        header = {};
        ReadAt(g_VX_EventExt.fileEv, &header, sizeof header, 0);
        if (IsConsistent(header)) break;
    }
}

void VX_EvFile_Close() { Close(g_VX_EventExt.fileEv); }

void VX_EvFile_SaveHeader() {
    const FileHead head{g_VX_EventExt.EvLogHeader, g_VX_EventExt.HXChangeCounters};
    WriteAt(g_VX_EventExt.fileEv, &head, sizeof head, 0);
}

int VX_EvSeqNoFile_Load(unsigned mode) {
    if (g_VX_EventExt.fileSeqNo >= 0) return 1;
    static_cast<void>(RootPath(g_VX_EventExt.SeqNoFilename, kSeqNoFile));  // empty when too long
    g_VX_EventExt.fileSeqNo = Open(g_VX_EventExt.SeqNoFilename, mode).Release();
    if (g_VX_EventExt.fileSeqNo < 0) return 0;
    ReadAt(g_VX_EventExt.fileSeqNo, &g_VX_EventExt.EvSeqNo, sizeof(VX_EvSeqNo), 0);
    return 1;
}

void VX_EvSeqNoFile_Close() { Close(g_VX_EventExt.fileSeqNo); }

void VX_EvSeqNoFile_Save() {
    WriteAt(g_VX_EventExt.fileSeqNo, &g_VX_EventExt.EvSeqNo, sizeof(VX_EvSeqNo), 0);
}

int VX_EvSeqNoFile_Create() {
    g_VX_EventExt.EvSeqNo = {};
    Descriptor file = Create(g_VX_EventExt.SeqNoFilename);
    if (!file.IsOpen()) return 0;
    Close(g_VX_EventExt.fileSeqNo);
    g_VX_EventExt.fileSeqNo = file.Release();
    VX_EvSeqNoFile_Save();
    CutTo(g_VX_EventExt.fileSeqNo, sizeof(VX_EvSeqNo));
    return 1;
}

void VX_EvFile_SaveEvents(HX_U8 adapter, const Event* events, HX_U32 count) {
    if (adapter >= kEventAdapters) return;
    HX_U32& last = g_VX_EventExt.EvSeqNo.SequenceNo[adapter];
    VX_EvLogHeader& header = g_VX_EventExt.EvLogHeader;
    header.End = WriteSlot();
    VX_EvLogHeader written = header;  // up to the entries that stand in the file
    std::uint64_t position = FileOffset(header.End);
    HX_U32 filled = 0;
    const auto flush = [&] {
        GiveUpOldest(written, header.SeqStart - written.SeqStart);
        const std::size_t bytes = filled * sizeof(VX_EvEntryHeader);
        WriteAt(g_VX_EventExt.fileEv, slots, bytes, position);
        position += bytes;
        filled = 0;
        written = header;
    };
    for (const Event* event = events; event != events + count; ++event) {
        if (!TakeNumber(last, *event)) continue;
        if (filled == kBatch) flush();
        FillEntry(slots[filled++], *event);
        Advance(header);
    }
    if (filled != 0) flush();
}

void VX_EvFile_LoadEventsFromOffsetBlindly(Event* dest, HX_U32 off, HX_U32 count) {
    std::uint64_t position = FileOffset(SlotOf(Header(), off));
    while (count > 0) {
        const HX_U32 batch = std::min(count, kBatch);
        const std::size_t bytes = batch * sizeof(VX_EvEntryHeader);
        const std::size_t got = ReadAt(g_VX_EventExt.fileEv, slots, bytes, position);
        std::memset(reinterpret_cast<char*>(slots) + got, 0, bytes - got);
        for (HX_U32 i = 0; i < batch; ++i) std::memcpy(dest++, slots[i].data, sizeof(Event));
        position += bytes;
        count -= batch;
    }
}

HX_U32 VX_EvSeqToOffset(HX_U32 seq) {
    const std::uint64_t end = std::uint64_t{Header().SeqStart} + Header().NumOfEvent;
    return seq >= Header().SeqStart && seq < end ? seq - Header().SeqStart : kNoOffset;
}

HX_U32 VX_EvFile_LoadEventsBySeq(Event* dest, HX_U32 seq, HX_U32 count) {
    HX_U32 off = VX_EvSeqToOffset(seq);
    if (off == kNoOffset) return 0;
    count = std::min(count, Header().NumOfEvent - off);
    for (HX_U32 left = count; left > 0;) {
        const HX_U32 block = VX_EvGetMaxReadContinusBlock(off, left);
        VX_EvFile_LoadEventsFromOffsetBlindly(dest, off, block);
        off += block;
        dest += block;
        left -= block;
    }
    return count;
}

HX_U32 VX_EvGetMaxReadContinusBlock(HX_U32 off, HX_U32 count) {
    const HX_U32 wanted = std::min(Header().NumOfEvent, count);
    const std::uint64_t to_end = RingSize() - SlotOf(Header(), off);
    return wanted <= to_end ? wanted : static_cast<HX_U32>(to_end);
}

HX_U32 VX_EvGetMaxWriteContinusBlock(HX_U32 count) {
    const HX_U32 slot = WriteSlot();
    const HX_U32 to_last = slot < Header().Capacity ? Header().Capacity - slot : 1;
    return std::max(HX_U32{1}, std::min(count, to_last));
}
