// The debug log: trace messages of every subsystem, and the front end's request log.
#pragma once

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

// A trace line of the library itself. A macro, so that with the log off (nearly always) neither the
// call nor its arguments cost anything.
#define VX_DBG_TRACE(...) (VX_DBG_On() ? static_cast<void>(VX_DBG_Printf(__VA_ARGS__)) : void())
