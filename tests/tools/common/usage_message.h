// What a reader says of a text that it refuses.
#pragma once

#include <string>

#include "common/failure.h"

/// The UsageError's words; "nothing" when there is none.
template <class Read>
std::string UsageMessage(Read read) {
    try {
        read();
    } catch (const vexortools::UsageError& error) {
        return error.what();
    }
    return "nothing";
}
