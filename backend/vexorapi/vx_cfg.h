// The configuration file "/vexorapi.ini": one XML file with a section per service.
#pragma once

#include <cstddef>

#include "hxraid.h"

/// Settings of the sections "EventLogConfig" and "DebugLogConfig".
struct VX_Cfg_EventLog {
    HX_U8 LogEnable;       // non-zero: the service's log is on
    HX_U16 MaxNumOfEvent;  // capacity of a new event file; 0 in "DebugLogConfig"
    char Filename[256];    // path, NUL-terminated; empty when absent or too long for the field
};

/// Settings of the section "XmlWrapperLogConfig".
struct VX_Cfg_XmlWrapper {
    HX_U8 InLogEnable;   // non-zero: every command text is logged
    HX_U8 OutLogEnable;  // non-zero: every result text is logged
    char Filename[256];  // path of the request log
};

/// Fills the record at `pCfg` from the section `cfgname`: a VX_Cfg_XmlWrapper for
/// "XmlWrapperLogConfig", a VX_Cfg_EventLog for the two others. The file is read afresh.
///
/// Returns 1 when the file was read, whether or not it has the section and even when it is
/// malformed (the record then holds what stood before the error). Returns 0 with the record
/// untouched when the file is absent, not a regular file, empty, of 65536 bytes or more, or when
/// there is no memory for its text.
int VX_CfgLoad(void* pCfg, const char* cfgname);

/// Reads at most `buflen` bytes of the file into `buf`, which gets no NUL. Returns the number of
/// bytes read, 0 when the file cannot be opened or is not a regular file.
std::size_t VX_CfgLoadFile(char* buf, std::size_t buflen);
