// The yardsticks of the event store that need nothing but the C library.
#include "vxevent_yardsticks.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "XMLWriter.h"
#include "reference_writer.h"

namespace yardstick {
namespace {

[[noreturn]] void Fail(const char* what) {
    std::perror(what);
    std::exit(EXIT_FAILURE);
}

void Require(bool done, const char* what) {
    if (!done) Fail(what);
}

constexpr off_t kSlots = 512;

}  // namespace

int PrintedText(const Event& event, char* text) {
    static const char* const severities[] = {"[UNKNOWN]", "[OTHER]", "[INFO]",     "[WARNING]",
                                             "[MINOR]",   "[MAJOR]", "[CRITICAL]", "[FATAL]"};
    const char* const severity = event.Severity < 8 ? severities[event.Severity] : "[UNKNOWN]";
    char message[150] = "";
    switch (event.Class << 16 | event.Code) {
        case 1 << 16 | 2:
            std::snprintf(message, sizeof message, "EVT_CODE_LD_CREATE|%s|%d| ", severity,
                          event.DeviceID);
            break;
        case 1 << 16 | 76:
            std::snprintf(message, sizeof message, "EVT_CODE_LD_REBUILD_PROGRESS|%s|%d|%d ",
                          severity, event.DeviceID, static_cast<int>(event.Params[0]));
            break;
        case 2 << 16 | 1:
            std::snprintf(message, sizeof message, "EVT_CODE_HD_ONLINE|%s|%d| ", severity,
                          event.DeviceID);
            break;
        case 2 << 16 | 37:
            std::snprintf(message, sizeof message, "EVT_CODE_HD_RCT_ADD|%s|%d|%08x|%08x|%d|%08x ",
                          severity, event.DeviceID, event.Params[0], event.Params[1],
                          static_cast<int>(event.Params[2]), event.Params[3]);
            break;
    }
    const std::time_t seconds = event.TimeStamp;
    std::tm utc;
    char time[64];
    gmtime_r(&seconds, &utc);
    asctime_r(&utc, time);
    time[std::strlen(time) - 1] = '\0';
    return std::snprintf(text, 512, "%s %s\n", time, message);
}

std::vector<Event> SampleEvents(HX_U32 first, HX_U32 count) {
    static const HX_U16 kinds[][2] = {{1, 2}, {1, 76}, {2, 1}, {2, 37}};
    std::vector<Event> events(count);
    for (HX_U32 i = 0; i < count; ++i) {
        Event& event = events[i];
        event.Class = kinds[i % 4][0];
        event.Code = kinds[i % 4][1];
        event.TimeStamp = 1700000000 + 7 * i;
        event.DeviceID = static_cast<HX_U16>(i % 300);
        event.Severity = static_cast<HX_U8>(2 + i % 5);
        event.SequenceNo = first + i;
        event.Params[0] = i % 101;
        event.Params[1] = 0x1000 * i;
        event.Params[2] = i % 7;
    }
    return events;
}

// ---- The system calls alone -------------------------------------------------------------------

BareCheckIn::BareCheckIn(std::string event_file, std::string seq_file, HX_U32 ring)
    : event_file_(std::move(event_file)),
      seq_file_(std::move(seq_file)),
      ring_(ring),
      slots_(kBatch) {
    const int file = open(event_file_.c_str(), O_RDONLY | O_CLOEXEC);
    Require(pread(file, head_, sizeof head_, 0) == sizeof head_, "read the header");
    const auto bytes = static_cast<ssize_t>(kBatch * sizeof slots_[0]);
    Require(pread(file, slots_.data(), kBatch * sizeof slots_[0], kSlots) == bytes, "read slots");
    close(file);
    const int seq = open(seq_file_.c_str(), O_RDONLY | O_CLOEXEC);
    Require(pread(seq, numbers_, sizeof numbers_, 0) == sizeof numbers_, "read the numbers");
    close(seq);
}

void BareCheckIn::Run() {
    char head[sizeof head_];
    char numbers[sizeof numbers_];
    const int file = open(event_file_.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    Require(pread(file, head, sizeof head, 0) == sizeof head, "pread");
    const int seq = open(seq_file_.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    Require(pread(seq, numbers, sizeof numbers, 0) == sizeof numbers, "pread");
    const std::size_t bytes = kBatch * sizeof slots_[0];
    const off_t at = kSlots + static_cast<off_t>(slot_ * sizeof slots_[0]);
    Require(pwrite(file, slots_.data(), bytes, at) == static_cast<ssize_t>(bytes), "pwrite");
    slot_ = slot_ + 2 * kBatch > ring_ ? 0 : slot_ + kBatch;
    Require(pwrite(file, head_, sizeof head_, 0) == sizeof head_, "pwrite");
    Require(pwrite(seq, numbers_, sizeof numbers_, 0) == sizeof numbers_, "pwrite");
    close(file);
    close(seq);
}

BareQuery::BareQuery(std::string event_file, HX_U32 count)
    : event_file_(std::move(event_file)), count_(count), slots_(count) {}

void BareQuery::Run() {
    char head[112];
    const int file = open(event_file_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    Require(pread(file, head, sizeof head, 0) == sizeof head, "pread");
    const std::size_t bytes = count_ * sizeof slots_[0];
    Require(pread(file, slots_.data(), bytes, kSlots) == static_cast<ssize_t>(bytes), "pread");
    close(file);
}

// ---- The store by streams -----------------------------------------------------------------------

StreamStore::StreamStore(std::string event_file, std::string seq_file)
    : event_file_(std::move(event_file)), seq_file_(std::move(seq_file)) {}

void StreamStore::CheckIn(const std::vector<Event>& events) {
    VX_EvLogHeader header;
    VX_HX_ChangeCounters counters;
    VX_EvSeqNo numbers;
    FILE* const file = std::fopen(event_file_.c_str(), "rb+");
    if (file == nullptr) Fail("fopen");
    Require(std::fread(&header, sizeof header, 1, file) == 1, "fread");
    Require(std::fread(&counters, sizeof counters, 1, file) == 1, "fread");
    FILE* const seq = std::fopen(seq_file_.c_str(), "rb+");
    if (seq == nullptr) Fail("fopen");
    Require(std::fread(&numbers, sizeof numbers, 1, seq) == 1, "fread");
    bool seek = true;
    for (const Event& event : events) {
        if (seek) std::fseek(file, kSlots + 192 * static_cast<long>(header.End), SEEK_SET);
        seek = header.End == header.Capacity;
        VX_EvEntryHeader slot{};
        slot.Type = 0x0101;
        std::memcpy(slot.data, &event, sizeof event);
        char text[512] = "";
        PrintedText(event, text);
        std::memcpy(slot.HXEvtMsg, text, sizeof slot.HXEvtMsg);
        Require(std::fwrite(&slot, sizeof slot, 1, file) == 1, "fwrite");
        numbers.SequenceNo[0] = event.SequenceNo;
        header.NumOfEvent = std::min(header.NumOfEvent + 1, header.Capacity);
        header.End = header.End == header.Capacity ? 0 : header.End + 1;
        if (header.End == header.Start) {
            header.Start = header.Start == header.Capacity ? 0 : header.Start + 1;
            ++header.SeqStart;
        }
        counters.Whatever_Change += 2;
    }
    std::fseek(file, 0, SEEK_SET);
    Require(std::fwrite(&header, sizeof header, 1, file) == 1, "fwrite");
    Require(std::fwrite(&counters, sizeof counters, 1, file) == 1, "fwrite");
    std::fflush(file);
    std::fseek(seq, 0, SEEK_SET);
    Require(std::fwrite(&numbers, sizeof numbers, 1, seq) == 1, "fwrite");
    std::fflush(seq);
    std::fclose(file);
    std::fclose(seq);
}

void StreamStore::Read(HX_U32 seq, HX_U32 count, Event* events) {
    VX_EvLogHeader header;
    VX_HX_ChangeCounters counters;
    FILE* const file = std::fopen(event_file_.c_str(), "rb");
    if (file == nullptr) Fail("fopen");
    Require(std::fread(&header, sizeof header, 1, file) == 1, "fread");
    Require(std::fread(&counters, sizeof counters, 1, file) == 1, "fread");
    for (HX_U32 i = 0; i < count; ++i) {
        const HX_U32 slot = (header.Start + seq - header.SeqStart + i) % (header.Capacity + 1);
        if (i == 0 || slot == 0) {
            std::fseek(file, kSlots + 192 * static_cast<long>(slot), SEEK_SET);
        }
        VX_EvEntryHeader entry;
        Require(std::fread(&entry, sizeof entry, 1, file) == 1, "fread");
        std::memcpy(&events[i], entry.data, sizeof events[i]);
    }
    std::fclose(file);
}

// ---- The literal request -----------------------------------------------------------------------

namespace {

void WriteEvent(XMLWR_Doc* doc, const Event& event) {
    using namespace reference;
    ElmtStartPrintf(doc, 0, "Event", " %s=\"%s\"", "type", "struct Event");
    ElmtNonArrayData(doc, "Class", "U16", "%u", event.Class);
    ElmtNonArrayData(doc, "Code", "U16", "%u", event.Code);
    ElmtNonArrayData(doc, "TimeStamp", "U32", "%u", event.TimeStamp);
    ElmtNonArrayData(doc, "DeviceID", "U16", "%u", event.DeviceID);
    ElmtNonArrayData(doc, "Severity", "U8", "%u", event.Severity);
    ElmtNonArrayData(doc, "AdapterID", "U8", "%u", event.AdapterID);
    ElmtStartArrayData(doc, "Params", "U32", 4);
    reference::PrintTabs(doc);
    for (int i = 0; i < 4; ++i) ElmtCharData(doc, 6, i < 3 ? "%u " : "%u", event.Params[i]);
    reference::PrintNewLine(doc);
    ElmtEnd(doc, 0, "Params");
    ElmtNonArrayData(doc, "SenseDataLength", "U8", "%u", event.SenseDataLength);
    char text[512] = "";
    PrintedText(event, text);
    ElmtNonArrayData(doc, "Event", "string", "%s", text);
    ElmtEnd(doc, 0, "Event");
}

struct Record {
    char name[64];
    HX_U32 query[8];
    Event events[2000];
};

}  // namespace

std::size_t LiteralEvents(StreamStore& store, HX_U32 count, char* result, std::uint32_t size) {
    auto* const doc = static_cast<XMLWR_Doc*>(std::malloc(sizeof(XMLWR_Doc)));
    auto* const record = static_cast<Record*>(std::malloc(sizeof(Record)));
    if (doc == nullptr || record == nullptr) Fail("malloc");
    std::memset(record, 0, sizeof *record);
    store.Read(0, count, record->events);
    reference::Init(doc);  // once for the executor that declines, once for the other
    reference::Init(doc);
    reference::ElmtStartPrintf(doc, 0, "VX_HX_EVT_GetEvents", " %s=\"%s\"", "type", "function");
    reference::ElmtNonArrayData(doc, "RetVal", "U8", "%u", 0u);
    reference::ElmtNonArrayData(doc, "n", "U32", "%u", count);
    reference::ElmtNonArrayData(doc, "s", "U32", "%u", 0u);
    reference::ElmtNonArrayData(doc, "e", "U32", "%u", count - 1);
    for (HX_U32 i = 0; i < count; ++i) WriteEvent(doc, record->events[i]);
    reference::ElmtEnd(doc, 0, "VX_HX_EVT_GetEvents");
    std::size_t length = 0;
    if (doc->CurPos < size) {
        length = doc->CurPos - 1;
        std::memcpy(result, doc->Buf, length);
        result[length] = '\0';
    }
    std::free(record);
    std::free(doc);
    return length;
}

}  // namespace yardstick
