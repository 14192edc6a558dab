// What the event store is measured against.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "hxraid.h"
#include "vxevent.h"
#include "vxevent_text.h"

namespace yardstick {

// The slots of a check-in, as they stand in the event file.
inline constexpr HX_U32 kBatch = 50;

/// The event's text by asctime and snprintf, as the C library alone would do it. `text` has 512
/// bytes. Returns its length. Knows the codes of SampleEvents.
int PrintedText(const Event& event, char* text);

/// `count` events of disks and virtual disks, numbered from `first` upward.
std::vector<Event> SampleEvents(HX_U32 first, HX_U32 count);

// ---- The system calls alone -------------------------------------------------------------------

/// The calls that no check-in of kBatch events can do without, with what they write made
/// beforehand: two files opened, read and closed, and three pieces written. The events go to where
/// a check-in puts them, one poll behind the other around a ring of so many slots.
class BareCheckIn {
public:
    /// Takes the files as they are now: contents and names.
    BareCheckIn(std::string event_file, std::string seq_file, HX_U32 ring);
    void Run();

private:
    std::string event_file_, seq_file_;
    HX_U32 ring_, slot_ = 0;
    char head_[112];
    char numbers_[96];
    std::vector<VX_EvEntryHeader> slots_;
};

/// The calls of a query for `count` events from slot 0 upward.
class BareQuery {
public:
    BareQuery(std::string event_file, HX_U32 count);
    void Run();

private:
    std::string event_file_;
    HX_U32 count_;
    std::vector<VX_EvEntryHeader> slots_;
};

// ---- The store by streams -----------------------------------------------------------------------

/// The same files by buffered streams, one slot at a time, texts by PrintedText.
class StreamStore {
public:
    StreamStore(std::string event_file, std::string seq_file);
    void CheckIn(const std::vector<Event>& events);
    /// Reads `count` events from store sequence number `seq` upward.
    void Read(HX_U32 seq, HX_U32 count, Event* events);

private:
    std::string event_file_, seq_file_;
};

/// A request for the store's `count` oldest events, as its first description tells it: the document
/// filled with zeros twice, the record cleared, slots read by the StreamStore, every piece of the
/// result formatted with vsnprintf, texts by PrintedText. The command's parse is left out. Returns
/// the length of the result.
std::size_t LiteralEvents(StreamStore& store, HX_U32 count, char* result, std::uint32_t size);

// ---- The store as a table -----------------------------------------------------------------------

/// SQLite with a write-ahead log, kept open: one transaction a check-in, one row an event, with the
/// texts that the library renders. Commits do not wait for the disk, as the store's do not.
class TableStore {
public:
    /// Keeps the newest `rows_kept` rows, or all with 0.
    TableStore(const std::string& file, HX_U32 rows_kept);
    ~TableStore();
    TableStore(const TableStore&) = delete;
    TableStore& operator=(const TableStore&) = delete;
    void CheckIn(const std::vector<Event>& events);
    std::int64_t Rows() const;

private:
    HX_U32 rows_kept_;
    void* database_ = nullptr;
    void* insert_ = nullptr;
    void* trim_ = nullptr;
};

}  // namespace yardstick
