// Opening and closing the virtual controller, and its version.
#include <sys/inotify.h>
#include <unistd.h>

#include <exception>
#include <string>
#include <string_view>

#include "calls/hxsim_session.h"
#include "codes/identity.h"
#include "hxraid.h"
#include "library/wake.h"
#include "store/hxsim_store.h"

HX_U8 HX_API_Initialize() { return hxcodes::NumberOf(hxsim::Open()); }

void HX_API_Finalize() { hxsim::Close(); }

const char* HX_API_Version() {
    static constexpr char kVersion[] = HXSIM_VERSION " (virtual controller)";
    static_assert(std::string_view(kVersion).ends_with(hxcodes::kVirtualController));
    return kVersion;
}

// Each transaction of another process is written to this file beside the state file, which is there
// while the library is open.
int hx_wake() {
    try {
        const std::string log = hxsim::StatePath() + "-wal";
        const int changes = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
        if (changes >= 0 && inotify_add_watch(changes, log.c_str(), IN_MODIFY) < 0) {
            close(changes);
            return -1;
        }
        return changes;
    } catch (const std::exception&) {
        return -1;
    }
}

// No adapters are known before the library is opened: reports 0 then.
HX_U8 HX_Adapter_GetCount() { return hxsim::AdapterCount(); }
