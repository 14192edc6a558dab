// The events that tell a process what has been found when the controller started.
#include <cstring>
#include <ctime>

#include "hxraid.h"
#include "hxsim_adapter.h"
#include "hxraid_codes.h"
#include "hxsim_library.h"
#include "hxsim_machine.h"

namespace hxsim {
namespace {

struct Happening {
    HX_U16 type;  // class of the event
    HX_U16 code;
};
constexpr Happening kAdapterFound{0, 9}, kVirtualDiskCreated{1, 2}, kDiskOnline{2, 1},
    kExpanderPluggedIn{4, 0}, kBatteryPresent{9, 0}, kDiskGroupCreated{13, 0};

constexpr HX_U8 kInformation = 2;  // severity

// How many of an adapter's events have been taken. Closing the library brings none back: what has
// happened once does not happen again.
constinit HX_U32 taken[kAdapterCount] = {};

// Calls visit(happening, device) for each event, in the order in which a controller comes up.
template <class Visit>
void ForEachEvent(HX_U8 adapter, Visit visit) {
    const Machine& machine = MachineOf(adapter);
    visit(kAdapterFound, adapter);
    for (const Expander& expander : machine.expanders) visit(kExpanderPluggedIn, expander.id);
    for (const Disk& disk : machine.disks) visit(kDiskOnline, disk.id);
    if (machine.battery != nullptr) visit(kBatteryPresent, HX_U16{0});
    for (const DiskGroup& group : machine.disk_groups) visit(kDiskGroupCreated, group.id);
    for (const VirtualDisk& each : machine.virtual_disks) visit(kVirtualDiskCreated, each.id);
}

Event EventOf(HX_U8 adapter, Happening happening, HX_U16 device, HX_U32 number) {
    Event event{};
    event.Class = happening.type;
    event.Code = happening.code;
    event.TimeStamp = static_cast<HX_U32>(std::time(nullptr));
    event.DeviceID = device;
    event.Severity = kInformation;
    event.AdapterID = adapter;
    event.SequenceNo = number;
    if (happening.type == kAdapterFound.type) {
        char serial[sizeof Adapter_Info{}.SerialNo];
        SetSerialNumber(serial, adapter);
        event.SenseDataLength = static_cast<HX_U8>(strnlen(serial, sizeof serial));
        std::memcpy(event.SenseData, serial, event.SenseDataLength);
    }
    return event;
}

}  // namespace
}  // namespace hxsim

HX_U8 HX_EVT_GetEvent(HX_U8 AdapterID, HX_U8 max, HX_U8* count, Event* events) {
    if (const HX_U8 status = hxsim::CheckAdapter(AdapterID); status != HX_SUCCESS) return status;
    if (count == nullptr || events == nullptr) return HXSIM_NULL_ADDRESS;
    HX_U32& taken = hxsim::taken[AdapterID];
    HX_U32 number = 0;
    *count = 0;
    hxsim::ForEachEvent(AdapterID, [&](hxsim::Happening happening, HX_U16 device) {
        ++number;
        if (number <= taken || *count == max) return;
        events[(*count)++] = hxsim::EventOf(AdapterID, happening, device, number);
        taken = number;
    });
    return HX_SUCCESS;
}
