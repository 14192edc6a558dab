// The one open machine of this process, and the faults injected into its calls.
#include "calls/hxsim_session.h"

#include <exception>
#include <new>
#include <optional>
#include <vector>

#include "incidents/hxsim_fault_injection.h"
#include "library/trouble.h"
#include "model/hxsim_codes.h"
#include "rules/hxsim_settle.h"
#include "store/hxsim_store.h"
#include "topology/hxsim_topology.h"

namespace hxsim {
namespace {

struct Session {
    Store store{StatePath(), DefaultMachine, WhenStateIsMissing()};
    bool hostile = false;  // the current call answers as broken firmware does
};

// Made by Open, freed by Close.
constinit Session* session = nullptr;

// ---- Faults ----

// Counting changes the machine and costs a transaction; a fault without a count costs none.
std::optional<Injection> CountedFault(const char* call, HX_U8 adapter) {
    std::vector<Injection> injections = session->store.Current().injections;
    bool counts = false;
    std::optional<Injection> hit = NextFault(injections, call, adapter, counts);
    if (!counts) return hit;
    session->store.Change([&](Machine& machine, Time) {
        // Decide again: another process may have counted in between.
        hit = NextFault(machine.injections, call, adapter, counts);
        return true;
    });
    return hit;
}

// ---- Calls ----

// Runs `work` and turns every exception into a status, since callers are in C.
template <class Work>
Status Caught(Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        hxlibrary::NoteTrouble("There is not enough memory.");
        return Status::kNoMemory;
    } catch (const UnsettledError& error) {
        hxlibrary::NoteTrouble(error.what());
        return Status::kUnsettled;
    } catch (const std::exception& error) {
        // The file failed or the machine cannot be saved: either way the state is unusable.
        hxlibrary::NoteTrouble(error.what());
        return Status::kNoState;
    }
}

// The checks before every call on an adapter; without a name, before a further part of a call,
// which no fault hits. Calls work(machine).
template <class Work>
Status OnAdapter(const char* call, HX_U8 adapter, Work work) {
    if (session == nullptr) return Status::kNotInitialized;
    return Caught([&]() -> Status {
        const Machine& machine = session->store.Current();
        if (adapter >= machine.adapters.size()) return Status::kNoAdapter;
        if (call == nullptr) return work(machine);
        session->hostile = false;
        if (!machine.injections.empty()) {
            const std::optional<Injection> fault = CountedFault(call, adapter);
            if (fault && !fault->hostile) return static_cast<Status>(fault->code);
            session->hostile = fault.has_value();
        }
        return work(machine);
    });
}

}  // namespace

Status Open() {
    if (session != nullptr) return Status::kSuccess;
    hxlibrary::NoteTrouble("");
    return Caught([]() -> Status {
        session = new Session;
        const Status status = Caught([] {
            session->store.Current();
            return Status::kSuccess;
        });
        if (status != Status::kSuccess) Close();
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
        return Status::kSuccess;
    });
    return count;
}

bool IsHostile() { return session != nullptr && session->hostile; }

HX_U8 Look(const char* call, HX_U8 adapter,
           hxlibrary::FunctionRef<Status(const Adapter& adapter, Time now)> work) {
    return NumberOf(OnAdapter(call, adapter, [&](const Machine& machine) {
        return work(machine.adapters.at(adapter), Now(machine.clock, RealNow()));
    }));
}

HX_U8 Change(const char* call, HX_U8 adapter,
             hxlibrary::FunctionRef<Status(Adapter& adapter, Time now)> work) {
    return NumberOf(OnAdapter(call, adapter, [&](const Machine&) -> Status {
        Status status = Status::kNoAdapter;  // the machine was replaced since
        session->store.Change([&](Machine& machine, Time now) {
            if (adapter >= machine.adapters.size()) return false;
            Adapter& row = machine.adapters[adapter];
            status = work(row, now);
            if (status == Status::kSuccess) Settle(row, now);
            return status == Status::kSuccess;
        });
        return status;
    }));
}

}  // namespace hxsim
