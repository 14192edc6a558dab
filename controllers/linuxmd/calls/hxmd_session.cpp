// The open library: its state file, and the comparison of the machine with it.
#include "calls/hxmd_session.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "calls/hxmd_adapter.h"
#include "calls/hxmd_rate.h"
#include "codes/status.h"
#include "descriptor.h"
#include "library/trouble.h"
#include "rules/hxmd_changes.h"
#include "rules/hxmd_identity.h"
#include "rules/hxmd_state.h"
#include "store/hxmd_store.h"
#include "sysfs/hxmd_look.h"
#include "system/hxmd_word.h"

namespace hxmd {
namespace {

using hxcodes::NumberOf;
using hxcodes::Status;
using hxsqlite::StoreError;

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

// Waits until no other process changes the machine. The state file's own lock would keep events
// from being fetched for as long as mdadm runs.
Descriptor Lock() {
    Descriptor lock(
        open((StatePath() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    while (lock.IsOpen() && flock(lock.Get(), LOCK_EX) != 0) {
        if (errno != EINTR) lock.Close();
    }
    return lock;
}

// Lifts pauses of arrays that have lost a member since, because a spare does not step in while an
// array is frozen, and forgets those that somebody else has ended.
void LiftPauses(Kept& kept, const Machine& machine) {
    std::erase_if(kept.pauses, [&](const KeptPause& pause) {
        const auto array = std::ranges::find(machine.arrays, pause.array, &Array::id);
        if (array == machine.arrays.end() || pause.boot_id != machine.boot_id) return true;
        const auto action = array->action.value_or(SyncAction::kUnknown);
        if (action == SyncAction::kFrozen && FilledCount(*array) < pause.members) {
            return WriteWord(array->name + "/md/sync_action", "idle") == 0;
        }
        return action != SyncAction::kFrozen && action != SyncAction::kIdle;
    });
}

// Gives activities that have begun since the last look their rate.
void ApplyRates(const Kept& kept, const Machine& machine) {
    for (const Array& array : machine.arrays) {
        const auto before = std::ranges::find(kept.arrays, array.id, &SeenArray::id);
        const HX_U8 activity = NumberOf(ActivityOf(array).kind);
        if (before == kept.arrays.end() || before->activity != activity) {
            ApplyRate(kept, machine, array);
        }
    }
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
    LiftPauses(kept, machine);
    ApplyRates(kept, machine);
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

void Save(hxlibrary::FunctionRef<void(Kept& kept)> work) {
    store->Change([&](Kept& kept) { work(kept); });
}

View LookAgain() {
    auto machine = Look();
    if (!machine) throw StoreError("The kernel's list of devices is gone.");
    View view{std::move(*machine), store->Read()};
    Enumerate(view);
    return view;
}

HX_U8 OnChange(HX_U8 adapter, hxlibrary::FunctionRef<HX_U8(const View& view)> work) {
    if (const HX_U8 status = Check(adapter)) return status;
    if (geteuid() != 0) return NumberOf(Status::kNoPermission);
    return Caught([&]() -> HX_U8 {
        const Descriptor lock = Lock();
        if (!lock.IsOpen()) return NumberOf(Status::kNoState);
        return work(LookAgain());
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
