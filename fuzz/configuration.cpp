// The configuration file, read from where it always is.
#include <cstring>

#include "support/temporary_root.h"
#include "targets.h"
#include "vx_cfg.h"

namespace {

// Reads one section into a record full of '~'.
template <class Record>
const char* ReadSection(const char* name, bool readable) {
    Record record;
    std::memset(&record, '~', sizeof record);
    const int ok = VX_CfgLoad(&record, name);
    if (ok != (readable ? 1 : 0)) return "the file's length was judged wrongly";
    // Without its section the record is as it was; with it, the name ends within its field.
    const bool untouched = record.Filename[0] == '~' && record.Filename[255] == '~';
    if (untouched) return nullptr;
    if (std::memchr(record.Filename, '\0', sizeof record.Filename) == nullptr) {
        return "the file name is not terminated";
    }
    return nullptr;
}

}  // namespace

const char* FuzzConfiguration(const std::uint8_t* data, std::size_t size) {
    static const TemporaryRoot root;
    root.Write("/vexorapi.ini", {reinterpret_cast<const char*>(data), size});
    const bool readable = size > 0 && size < 65536;
    if (const char* const wrong = ReadSection<VX_Cfg_EventLog>("EventLogConfig", readable)) {
        return wrong;
    }
    if (const char* const wrong = ReadSection<VX_Cfg_EventLog>("DebugLogConfig", readable)) {
        return wrong;
    }
    return ReadSection<VX_Cfg_XmlWrapper>("XmlWrapperLogConfig", readable);
}
