// The open library: its state file, and the comparison of the machine with it.
#include "calls/hxmd_session.h"

#include <unistd.h>

#include <ctime>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "calls/hxmd_adapter.h"
#include "codes/status.h"
#include "library/trouble.h"
#include "rules/hxmd_changes.h"
#include "rules/hxmd_identity.h"
#include "store/hxmd_store.h"
#include "sysfs/hxmd_look.h"

namespace hxmd {
namespace {

using hxcodes::NumberOf;
using hxcodes::Status;

// Made by Open, freed by Close.
constinit Store* store = nullptr;

// Before this uptime the kernel may still be finding disks.
constexpr std::uint64_t kSettled = 30;  // seconds

std::int64_t RealNow() { return std::time(nullptr); }

// Runs `work` and turns every exception into a status, since callers are in C.
template <class Work>
HX_U8 Caught(Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        hxlibrary::NoteTrouble("There is not enough memory.");
        return NumberOf(Status::kNoMemory);
    } catch (const std::exception& error) {
        hxlibrary::NoteTrouble(error.what());
        return NumberOf(Status::kNoState);
    }
}

bool HasNewNumbers(const Kept& before, const Kept& after) {
    return before.known_disks != after.known_disks || before.known_arrays != after.known_arrays ||
           before.known_blocks != after.known_blocks ||
           before.known_enclosures != after.known_enclosures;
}

// Numbers are given inside the transaction: two processes may meet the same new object, and the
// second must find the number of the first.
void Enumerate(View& view) {
    const Machine found = view.machine;
    const std::int64_t now = RealNow();
    Kept kept = view.kept;
    const auto numbering = store->IsWritable() ? Numbering::kNewToo : Numbering::kKnownOnly;
    Identify(view.machine, kept, numbering, now);
    if (numbering == Numbering::kKnownOnly || !HasNewNumbers(view.kept, kept)) {
        view.kept = std::move(kept);
        return;
    }
    store->Change([&](Kept& saved) {
        view.machine = found;
        Identify(view.machine, saved, numbering, now);
        view.kept = saved;
    });
}

// Queues the changes since the last look and stores the machine as seen now.
void Collect(Kept& kept, Machine machine) {
    const bool first = kept.look.empty();
    if (first) kept.look.emplace_back();
    const bool rebooted = !first && kept.look[0].boot_id != machine.boot_id;
    if ((first || rebooted) && machine.uptime.value_or(kSettled) < kSettled) {
        if (first) kept.look.clear();
        return;
    }
    const std::int64_t now = RealNow();
    Identify(machine, kept, Numbering::kNewToo, now);
    const Seen seen = Picture(machine, kept);
    if (first) Queue(kept, {hxcodes::EventKind::kAdapterFound}, now, SerialNumber());
    const std::vector<Happening> happened =
        first ? Complaints(seen)
              : Differences(kept, seen, rebooted ? Since::kReboot : Since::kLastLook);
    for (const Happening& each : happened) Queue(kept, each, now);
    static_cast<Seen&>(kept) = seen;
    kept.look[0].boot_id = machine.boot_id;
}

}  // namespace

HX_U8 Open() {
    if (store != nullptr) return HX_SUCCESS;
    hxlibrary::NoteTrouble("");
    return Caught([]() -> HX_U8 {
        store = new Store(StatePath());
        return HX_SUCCESS;
    });
}

void Close() {
    delete store;
    store = nullptr;
}

HX_U8 AdapterCount() {
    if (store == nullptr) return 0;
    HX_U8 count = 0;
    Caught([&]() -> HX_U8 {
        count = HasMd() && HasDisks() ? 1 : 0;
        return HX_SUCCESS;
    });
    return count;
}

HX_U8 Check(HX_U8 adapter) {
    if (store == nullptr) return NumberOf(Status::kNotInitialized);
    return adapter < AdapterCount() ? HX_U8{HX_SUCCESS} : NumberOf(Status::kNoAdapter);
}

HX_U8 OnView(HX_U8 adapter, hxlibrary::FunctionRef<HX_U8(const View& view)> work) {
    if (const HX_U8 status = Check(adapter)) return status;
    return Caught([&]() -> HX_U8 {
        auto machine = Look();
        if (!machine) return NumberOf(Status::kNoAdapter);
        View view{std::move(*machine), store->Read()};
        Enumerate(view);
        return work(view);
    });
}

HX_U8 TakeEvents(HX_U8 adapter, HX_U8 max, HX_U8* count, Event* events) {
    if (const HX_U8 status = Check(adapter)) return status;
    if (count == nullptr || events == nullptr) return NumberOf(Status::kNullAddress);
    return Caught([&]() -> HX_U8 {
        HX_U8 taken = 0;
        // Look within the transaction: a process that looked earlier but wrote later would report
        // changes backwards.
        store->Change([&](Kept& kept) {
            auto machine = Look();
            if (machine) Collect(kept, std::move(*machine));
            taken = Take(kept, max, events);
        });
        *count = taken;
        return HX_SUCCESS;
    });
}

HX_U8 NotSupported(HX_U8 adapter) {
    const HX_U8 status = Check(adapter);
    return status != HX_SUCCESS ? status : NumberOf(Status::kNotSupported);
}

HX_U8 RefuseChange(HX_U8 adapter) {
    if (const HX_U8 status = Check(adapter)) return status;
    return NumberOf(geteuid() == 0 ? Status::kNotSupported : Status::kNoPermission);
}

}  // namespace hxmd
