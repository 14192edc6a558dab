// One request as a caller makes it.
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

#include "vexorapi.h"

/// What vexorApi returned, and what it left in a buffer that held nothing but '~'.
struct Reply {
    int ok;
    std::string text;  // "untouched" when not a byte of the buffer was written
};

/// Sends `command` with a result buffer of exactly `size` bytes.
inline Reply Send(const char* command, std::uint32_t size = VEXORAPI_MAX_RESULT) {
    const std::unique_ptr<char[]> buffer(new char[size + 1]);
    std::memset(buffer.get(), '~', size);
    // One byte more, so that a text that is not terminated is seen as one, and so is a NUL behind
    // the buffer.
    buffer[size] = '!';
    Reply reply{vexorApi(command, buffer.get(), size), {}};
    if (buffer[size] != '!') {
        reply.text = "written behind its end";
    } else if (std::string(buffer.get(), size) == std::string(size, '~')) {
        reply.text = "untouched";
    } else if (std::memchr(buffer.get(), '\0', size) == nullptr) {
        reply.text = "not terminated";
    } else {
        reply.text = buffer.get();
    }
    return reply;
}

inline Reply Send(const std::string& command, std::uint32_t size = VEXORAPI_MAX_RESULT) {
    return Send(command.c_str(), size);
}
