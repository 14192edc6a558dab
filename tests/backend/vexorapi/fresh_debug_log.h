// The debug log's process-wide state, put back for every test.
#pragma once

#include "vx_dbg.h"

/// Gives a test the debug log of a process that has just started, and leaves it so.
class FreshDebugLog {
public:
    FreshDebugLog() { Reset(); }
    ~FreshDebugLog() { Reset(); }
    FreshDebugLog(const FreshDebugLog&) = delete;
    FreshDebugLog& operator=(const FreshDebugLog&) = delete;

private:
    static void Reset() {
        VX_DBG_Shutdown();
        DBG_Ext = {.Flags = 0, .FileName = {}, .FOut = -1, .Cfg = {}};
    }
};
