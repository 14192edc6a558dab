// Faults that are injected into calls, and their counters.
#include "incidents/hxsim_fault_injection.h"

namespace hxsim {
namespace {

bool Meets(const Injection& injection, std::string_view call, HX_U8 adapter) {
    return (injection.call.empty() || injection.call == call) &&
           (injection.adapter == HX_ALL_ADAPTERS || injection.adapter == adapter);
}

}  // namespace

std::optional<Injection> NextFault(std::vector<Injection>& injections, std::string_view call,
                                   HX_U8 adapter, bool& counts) {
    for (auto each = injections.begin(); each != injections.end(); ++each) {
        if (!Meets(*each, call, adapter)) continue;
        if (each->after != 0) {
            --each->after;
            counts = true;
            continue;
        }
        const Injection hit = *each;
        if (each->times != 0) {
            counts = true;
            if (--each->times == 0) injections.erase(each);
        }
        return hit;
    }
    return std::nullopt;
}

}  // namespace hxsim
