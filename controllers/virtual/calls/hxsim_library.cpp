// Opening and closing the virtual controller, and its version.
#include <string_view>

#include "calls/hxsim_session.h"
#include "codes/identity.h"
#include "hxraid.h"

HX_U8 HX_API_Initialize() { return hxcodes::NumberOf(hxsim::Open()); }

void HX_API_Finalize() { hxsim::Close(); }

const char* HX_API_Version() {
    static constexpr char kVersion[] = HXSIM_VERSION " (virtual controller)";
    static_assert(std::string_view(kVersion).ends_with(hxcodes::kVirtualController));
    return kVersion;
}

// No adapters are known before the library is opened: reports 0 then.
HX_U8 HX_Adapter_GetCount() { return hxsim::AdapterCount(); }
