// What the tests of the event store have in common: a store in a temporary root, and a controller
// that plays back events.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "hxfake.h"
#include "support/temporary_root.h"
#include "vxevent.h"

inline constexpr char kEventFile[] = "/opt/kestrel/raid/db/vx_hx_raid.ev";
inline constexpr char kSeqNoFile[] = "/opt/kestrel/raid/db/vx_hx_seqnum.ev";

inline bool IsZero(const Event& event) {
    const Event zero{};
    return std::memcmp(&event, &zero, sizeof event) == 0;
}

/// An event of an adapter; `number` is the controller's own sequence number.
inline Event MakeEvent(int event_class, int code, HX_U32 number) {
    Event event{};
    event.Class = static_cast<HX_U16>(event_class);
    event.Code = static_cast<HX_U16>(code);
    event.Severity = 2;
    event.DeviceID = 3;
    event.SequenceNo = number;
    return event;
}

/// `count` events of disks, numbered from `first` upward.
inline std::vector<Event> DiskEvents(HX_U32 first, HX_U32 count) {
    std::vector<Event> events;
    for (HX_U32 i = 0; i < count; ++i) events.push_back(MakeEvent(2, 1, first + i));
    return events;
}

/// The sequence numbers of events, to compare lists of them by.
inline std::vector<HX_U32> Numbers(const std::vector<Event>& events) {
    std::vector<HX_U32> numbers;
    for (const Event& event : events) numbers.push_back(event.SequenceNo);
    return numbers;
}

/// first, first + 1, ..., `count` of them.
inline std::vector<HX_U32> Range(HX_U32 first, HX_U32 count) {
    std::vector<HX_U32> numbers;
    for (HX_U32 i = 0; i < count; ++i) numbers.push_back(first + i);
    return numbers;
}

/// Descriptors that the process has open.
inline std::ptrdiff_t OpenDescriptors() {
    const std::filesystem::directory_iterator first("/proc/self/fd");
    return std::distance(first, {});
}

/// An initialised store without files, in a root whose folder for them exists.
class EventStore : public testing::Test {
protected:
    EventStore() {
        std::filesystem::create_directories(root_.Path("/opt/kestrel/raid/db"));
        hxfake::Reset();
        ForgetPolls();
        VX_EvInit();
    }
    ~EventStore() override {
        VX_EvShutdown();
        hxfake::Reset();
    }

    /// Puts the poll buffer back to the zeros that a process starts with.
    static void ForgetPolls() {
        VX_EvInit();
        hxfake::On<&HX_EVT_GetEvent>().Once(
            0, [](HX_U8, HX_U8, HX_U8*, Event* events) { std::fill_n(events, 510, Event{}); });
        VX_EvFile_CheckIn(1);
        hxfake::Reset();
    }

    /// Sets the section of the configuration file, which the store reads once after VX_EvInit.
    void Configure(const std::string& attributes) {
        root_.Write("/vexorapi.ini", "<c><EventLogConfig type=\"config\" " + attributes + "/></c>");
        VX_EvInit();
    }
    void SetCapacity(HX_U32 capacity) {
        Configure("MaxNumOfEvent=\"" + std::to_string(capacity) + "\"");
    }

    /// Lets the controller deliver the events, and checks them in.
    static void CheckIn(const std::vector<Event>& events, HX_U8 adapter = 0) {
        hxfake::QueueEvents(adapter, events);
        VX_EvFile_CheckIn(static_cast<HX_U8>(adapter + 1));
    }

    struct Page {
        HX_U32 n, s, e;
        std::vector<Event> events;
    };
    static Page Get(HX_U32 n, HX_U32 s, HX_U32 e) {
        Page page{n, s, e, std::vector<Event>(std::max<HX_U32>(n, 1))};
        std::memset(page.events.data(), 0xEE, page.events.size() * sizeof(Event));
        EXPECT_EQ(0, VX_EvGet(&page.n, &page.s, &page.e, page.events.data()));
        page.events.resize(n == 0 ? 0 : std::min(n, page.n));
        return page;
    }
    static VX_HX_ChangeCounters Counters() {
        VX_HX_ChangeCounters counters;
        EXPECT_EQ(1, VX_EvGetChangeCounters(&counters));
        return counters;
    }
    /// The header in the event file.
    VX_EvLogHeader StoredHeader() const {
        VX_EvLogHeader header{};
        const std::string bytes = root_.Read(kEventFile);
        std::memcpy(&header, bytes.data(), std::min(bytes.size(), sizeof header));
        return header;
    }
    /// Writes an event file that has a valid header, no counters and no entries.
    void WriteHeader(HX_U32 count, HX_U32 capacity, HX_U32 start, HX_U32 end,
                     HX_U32 seq_start) const {
        VX_EvLogHeader header{"Ombra Event File v0.1", count, capacity, start, end, seq_start};
        std::string bytes(reinterpret_cast<const char*>(&header), sizeof header);
        root_.Write(kEventFile, bytes + std::string(60, '\0'));
    }

    const TemporaryRoot root_;
};
