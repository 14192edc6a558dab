// Events by which a test sees that nothing of them is lost, doubled or torn.
#pragma once

#include <cstring>

#include "hxraid.h"

/// Every byte follows from the number, so that an event tells whether it is whole.
inline Event NumberedEvent(HX_U32 number) {
    Event event{};
    event.Class = 2;
    event.Code = 37;
    event.SequenceNo = number;
    for (HX_U32 i = 0; i < 4; ++i) event.Params[i] = number * 2654435761u + i;
    event.SenseDataLength = 30;
    std::memset(event.SenseData, static_cast<int>(number % 251), sizeof event.SenseData);
    return event;
}
inline bool IsWhole(const Event& event) {
    const Event expected = NumberedEvent(event.SequenceNo);
    return std::memcmp(&expected, &event, sizeof event) == 0;
}
