// Events by which a test sees that nothing of them is lost, doubled or torn.
#pragma once

#include <atomic>
#include <cstring>

#include "hxfake.h"
#include "hxraid.h"

/// Every byte follows from the number, so that an event tells whether it is whole.
inline Event NumberedEvent(HX_U32 number) {
    Event event{};
    event.Class = 2;
    event.Code = 37;
    event.SequenceNo = number;
    event.TimeStamp = ~number;
    event.DeviceID = static_cast<HX_U16>(number);
    for (HX_U32 i = 0; i < 4; ++i) event.Params[i] = number * 2654435761u + i;
    event.SenseDataLength = 30;
    std::memset(event.SenseData, static_cast<int>(number % 251), sizeof event.SenseData);
    return event;
}
inline bool IsWhole(const Event& event) {
    const Event expected = NumberedEvent(event.SequenceNo);
    return std::memcmp(&expected, &event, sizeof event) == 0;
}

/// Answers the next poll with `batch` events, and those after it with none until `batch` is set
/// again. `delivered` is the number of the last one, and may be shared by processes.
inline void DeliverBatches(std::atomic<HX_U32>& delivered, HX_U8& batch) {
    hxfake::On<&HX_EVT_GetEvent>().Always(
        [&delivered, &batch](HX_U8, HX_U8, HX_U8* count, Event* events) {
            *count = batch;
            const HX_U32 first = delivered.fetch_add(batch) + 1;
            for (HX_U32 i = 0; i < batch; ++i) events[i] = NumberedEvent(first + i);
            batch = 0;
            return HX_U8{0};
        });
}
