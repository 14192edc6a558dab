// The debug log: trace messages of every subsystem, and the front end's request log.
#pragma once

#include <cstddef>
#include <cstdint>

#include "vexorapi.h"
#include "vx_cfg.h"

/// The debug log's process-wide state.
struct VX_DBG_Ext {
    std::uint32_t Flags;  // bit 0: the section "DebugLogConfig" has been loaded
    char FileName[128];   // empty: no debug log
    int FOut;             // descriptor of the message being written, -1 between messages
    VX_Cfg_EventLog Cfg;  // LogEnable switches the log on, Filename is the default name
};
extern constinit VX_DBG_Ext DBG_Ext;

/// Whether VX_DBG_Printf would format its message.
inline bool VX_DBG_On() { return DBG_Ext.Cfg.LogEnable != 0 && DBG_Ext.FileName[0] != '\0'; }

/// Bytes that one request may add to the debug log. A command of 1 MiB with documented parameters
/// stays below it; a malicious one could log five hundred times its own length.
inline constexpr std::size_t kMostTraced = 16777216;

/// During its lifetime the debug log accepts kMostTraced bytes, then one line that says so, then
/// nothing. Callers see dropped messages like messages to a file that cannot be opened.
class RequestTraces {
public:
    RequestTraces() { room = kMostTraced; }
    ~RequestTraces() { room = kUnlimited; }
    RequestTraces(const RequestTraces&) = delete;
    RequestTraces& operator=(const RequestTraces&) = delete;

    /// Whether the limit is reached.
    static bool AreFull() { return room == 0; }

    /// Accounts for a message of `length` bytes. Returns false, and reaches the limit, when the
    /// message does not fit.
    static bool Take(std::size_t length) {
        if (room == kUnlimited) return true;
        const bool fits = length < room;
        room = fits ? room - length : 0;
        return fits;
    }

private:
    static constexpr std::size_t kUnlimited = static_cast<std::size_t>(-1);
    static inline constinit std::size_t room = kUnlimited;
};

/// During its lifetime messages are gathered, up to 64 KiB of them, and appended together: opening
/// the file for each of the 800,000 messages that a command of 1 MiB can make would take seconds.
/// The file's bytes are the same. Only where nothing can look at the file in between: while a
/// command is parsed, no controller is called.
class GatheredTraces {
public:
    GatheredTraces();
    ~GatheredTraces();
    GatheredTraces(const GatheredTraces&) = delete;
    GatheredTraces& operator=(const GatheredTraces&) = delete;
};

/// Whether a trace of the library would be written.
inline bool VX_DBG_Traces() { return VX_DBG_On() && !RequestTraces::AreFull(); }

// A trace line of the library itself. A macro, so that with the log off (nearly always) neither the
// call nor its arguments cost anything.
#define VX_DBG_TRACE(...) (VX_DBG_Traces() ? static_cast<void>(VX_DBG_Printf(__VA_ARGS__)) : void())
