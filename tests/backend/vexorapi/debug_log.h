// The debug log, switched on for one test.
#pragma once

#include <string>

#include "fresh_debug_log.h"
#include "support/temporary_root.h"
#include "vx_dbg.h"

/// A command of three levels, and what the parser logs of it.
inline constexpr char kThreeLevels[] =
    "<HX_Adapter_GetCount type=\"function\"><a><b>1</b></a></HX_Adapter_GetCount>";
inline constexpr char kThreeLevelsLogged[] =
    "Dir = HX_Adapter_GetCount\n"
    "[Atts]type:function \n"
    "Dir = HX_Adapter_GetCount.a\n"
    "[Atts]\n"
    "Dir = HX_Adapter_GetCount.a.b\n"
    "[Atts]\n"
    "Dir = HX_Adapter_GetCount.a.b\n"
    "[CD 1]:1\n"
    "Dir = HX_Adapter_GetCount.a\n"
    "[CD 1]:1\n"
    "Dir = HX_Adapter_GetCount\n"
    "[CD 1]:1\n";

/// Turns the log on as the configuration file does, with the file "/debug.log" of `root`, and off
/// again at its end. The configuration file is removed once it has been read, so that what is
/// logged is the test's own.
class DebugLog {
public:
    explicit DebugLog(const TemporaryRoot& root) : root_(root) {
        root.Write("/vexorapi.ini",
                   "<c><DebugLogConfig type=\"config\" LogEnable=\"1\" Filename=\"" +
                       root.Path("/debug.log") + "\"/></c>");
        active_ = VX_DBG_Init(nullptr) == 1;
        std::filesystem::remove(root.Path("/vexorapi.ini"));
    }

    /// What has been logged so far.
    std::string Text() const {
        return active_ ? root_.Read("/debug.log") : "the debug log is not active";
    }

private:
    FreshDebugLog fresh_;
    const TemporaryRoot& root_;
    bool active_ = false;
};
