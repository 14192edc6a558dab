// Checks that every table has a row for each of its codes; a missing row does not compile.
#include "codes/complete.h"

#include "codes/activity.h"
#include "codes/battery.h"
#include "codes/device.h"
#include "codes/disk.h"
#include "codes/enclosure.h"
#include "codes/event.h"
#include "codes/flash.h"
#include "codes/level.h"
#include "codes/rate.h"
#include "codes/state.h"
#include "codes/status.h"
#include "codes/virtual_disk.h"

namespace hxcodes {
namespace {

static_assert(IsComplete<ActivityKind, kActivities>());
static_assert(IsComplete<ActivityState, kActivityStateNames>());
static_assert(IsComplete<CheckType, kCheckTypeNames>());
static_assert(IsComplete<ConnectionType, kConnectionTypeNames>());
static_assert(IsComplete<ControlAction, kControlActionNames>());
static_assert(IsComplete<Device, kDeviceNames>());
static_assert(IsComplete<DiskAction, kDiskActionNames>());
static_assert(IsComplete<DiskType, kDiskTypeNames>());
static_assert(IsComplete<ElementStatus, kElementStatusNames>());
static_assert(IsComplete<ElementType, kElementTypeNames>());
static_assert(IsComplete<EventClass, kEventClasses>());
static_assert(IsComplete<Image, kImageNames>());
static_assert(IsComplete<Init, kInitNames>());
static_assert(IsComplete<Level, kLevels>());
static_assert(IsComplete<LinkSpeed, kLinkSpeedNames>());
static_assert(IsComplete<Power, kPowerNames>());
static_assert(IsComplete<Rate, kRates>());
static_assert(IsComplete<RebuildType, kRebuildTypeNames>());
static_assert(IsComplete<RemapReason, kRemapReasonNames>());
static_assert(IsComplete<Rounding, kRoundingNames>());
static_assert(IsComplete<Severity, kSeverityNames>());
static_assert(IsComplete<State, kStateNames>());
static_assert(IsComplete<Step, kSteps>());

static_assert(HasRowForEach<Status, kRefusals, 1, 255>(), "every code but success");

static_assert(IsCompleteInBits<BatteryBit, kBatteryBits>());
static_assert(IsCompleteInBits<BatteryFeature, kBatteryFeatureBits>());
static_assert(IsCompleteInBits<BlockBit, kBlockBits>());
static_assert(IsCompleteInBits<CacheBit, kCacheBits>());
static_assert(IsCompleteInBits<DiskBit, kDiskBits>());
static_assert(IsCompleteInBits<DiskFeature, kDiskFeatureBits>());

// Event codes have seven bits in each class, except one that is 65535.
template <HX_U16... event_class>
consteval bool HasRowForEachEvent(std::integer_sequence<HX_U16, event_class...>) {
    return (HasRowForEach<EventKind, kEvents, At(event_class, 0), 128>() && ...);
}
static_assert(HasRowForEachEvent(std::make_integer_sequence<HX_U16, std::size(kEventClasses)>()));
static_assert(HasRowForEach<EventKind, kEvents, At(EventClass::kAdapter, 65535), 1>());

}  // namespace
}  // namespace hxcodes
