// The one open machine of this process, and the faults that are put in the way of its calls.
#include <algorithm>
#include <exception>
#include <new>
#include <optional>
#include <string_view>

#include "calls/hxsim_library.h"
#include "calls/hxsim_session.h"
#include "codes/hxraid_codes.h"
#include "model/hxsim_redundancy.h"
#include "store/hxsim_store.h"

namespace hxsim {
namespace {

struct Session {
    Store store{StatePath()};
    bool hostile = false;  // the call that runs now is to answer as broken firmware does
};

// Made by Open, freed by Close.
constinit Session* session = nullptr;

// ---- Faults ----

bool Meets(const Injection& injection, std::string_view call, HX_U8 adapter) {
    return (injection.call.empty() || injection.call == call) &&
           (injection.adapter == HX_ALL_ADAPTERS || injection.adapter == adapter);
}

// The first fault that hits the call, with what has been counted on the way; nothing when none
// does. `counts` becomes true when some row is another one now.
std::optional<Injection> Hit(std::vector<Injection>& injections, std::string_view call,
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

// Counting is a change of the machine like any other; a fault that counts nothing costs none.
std::optional<Injection> NextFault(const char* call, HX_U8 adapter) {
    std::vector<Injection> injections = session->store.Current().injections;
    bool counts = false;
    std::optional<Injection> hit = Hit(injections, call, adapter, counts);
    if (!counts) return hit;
    session->store.Change([&](Machine& machine, Time) {
        // Another process may have been first.
        hit = Hit(machine.injections, call, adapter, counts);
        return true;
    });
    return hit;
}

// ---- Calls ----

// Runs `work`; nothing that it throws goes on.
template <class Work>
HX_U8 Caught(Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return HXSIM_NO_MEMORY;
    } catch (const std::exception&) {
        // The file, or a machine that cannot be saved: the state cannot be used either way.
        return HXSIM_NO_STATE;
    }
}

// What comes before every call on an adapter, or, without a name, before a further part of one.
// `work` is given the machine.
template <class Work>
HX_U8 OnAdapter(const char* call, HX_U8 adapter, Work work) {
    if (session == nullptr) return HXSIM_NOT_INITIALIZED;
    return Caught([&]() -> HX_U8 {
        const Machine& machine = session->store.Current();
        if (adapter >= machine.adapters.size()) return HXSIM_NO_ADAPTER;
        if (call == nullptr) return work(machine);
        session->hostile = false;
        if (!machine.injections.empty()) {
            const std::optional<Injection> fault = NextFault(call, adapter);
            if (fault && !fault->hostile) return fault->code;
            session->hostile = fault.has_value();
        }
        return work(machine);
    });
}

}  // namespace

HX_U8 Open() {
    if (session != nullptr) return HX_SUCCESS;
    return Caught([]() -> HX_U8 {
        session = new Session;
        const HX_U8 status = Caught([] {
            session->store.Current();
            return HX_U8{HX_SUCCESS};
        });
        if (status != HX_SUCCESS) Close();
        return status;
    });
}

void Close() {
    delete session;
    session = nullptr;
}

bool IsOpen() { return session != nullptr; }

HX_U8 AdapterCount() {
    HX_U8 count = 0;
    if (session == nullptr) return count;
    Caught([&] {
        count = static_cast<HX_U8>(session->store.Current().adapters.size());
        return HX_U8{HX_SUCCESS};
    });
    return count;
}

bool IsHostile() { return session != nullptr && session->hostile; }

HX_U8 Look(const char* call, HX_U8 adapter,
           const std::function<HX_U8(const Adapter& adapter, Time now)>& work) {
    return OnAdapter(call, adapter, [&](const Machine& machine) {
        return work(machine.adapters.at(adapter), Now(machine.clock, RealNow()));
    });
}

HX_U8 Change(const char* call, HX_U8 adapter,
             const std::function<HX_U8(Adapter& adapter, Time now)>& work) {
    return OnAdapter(call, adapter, [&](const Machine&) -> HX_U8 {
        HX_U8 status = HXSIM_NO_ADAPTER;  // gone since, with the whole machine
        session->store.Change([&](Machine& machine, Time now) {
            if (adapter >= machine.adapters.size()) return false;
            Adapter& row = machine.adapters[adapter];
            status = work(row, now);
            if (status == HX_SUCCESS) Settle(row, now);
            return status == HX_SUCCESS;
        });
        return status;
    });
}

}  // namespace hxsim
