// Every table of codes has a row for each of its codes: a forgotten one does not compile.
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

static_assert(IsComplete<ActivityKind::Code, kActivities>());
static_assert(IsComplete<ActivityState::Code, kActivityStateNames>());
static_assert(IsComplete<CheckType::Code, kCheckTypeNames>());
static_assert(IsComplete<ConnectionType::Code, kConnectionTypeNames>());
static_assert(IsComplete<ControlAction::Code, kControlActionNames>());
static_assert(IsComplete<Device::Code, kDeviceNames>());
static_assert(IsComplete<DiskAction::Code, kDiskActionNames>());
static_assert(IsComplete<DiskType::Code, kDiskTypeNames>());
static_assert(IsComplete<ElementStatus::Code, kElementStatusNames>());
static_assert(IsComplete<ElementType::Code, kElementTypeNames>());
static_assert(IsComplete<EventClass::Code, kEventClasses>());
static_assert(IsComplete<Image::Code, kImageNames>());
static_assert(IsComplete<Init::Code, kInitNames>());
static_assert(IsComplete<Level::Code, kLevels>());
static_assert(IsComplete<LinkSpeed::Code, kLinkSpeedNames>());
static_assert(IsComplete<Power::Code, kPowerNames>());
static_assert(IsComplete<Rate, kRates>());
static_assert(IsComplete<RebuildType::Code, kRebuildTypeNames>());
static_assert(IsComplete<RemapReason::Code, kRemapReasonNames>());
static_assert(IsComplete<Rounding::Code, kRoundingNames>());
static_assert(IsComplete<Severity::Code, kSeverityNames>());
static_assert(IsComplete<State::Code, kStateNames>());
static_assert(IsComplete<Step, kSteps>());

static_assert(HasRowForEach<Status::Code, kRefusals, 1, 255>(), "every code but success");

static_assert(IsCompleteInBits<BatteryBit::Code, kBatteryBits>());
static_assert(IsCompleteInBits<BatteryFeature::Code, kBatteryFeatureBits>());
static_assert(IsCompleteInBits<BlockBit::Code, kBlockBits>());
static_assert(IsCompleteInBits<CacheBit::Code, kCacheBits>());
static_assert(IsCompleteInBits<DiskBit::Code, kDiskBits>());
static_assert(IsCompleteInBits<DiskFeature::Code, kDiskFeatureBits>());

// Codes of events have seven bits in each class, and one is 65535.
template <HX_U16... event_class>
consteval bool HasRowForEachEvent(std::integer_sequence<HX_U16, event_class...>) {
    return (HasRowForEach<EventKind, kEvents, At(event_class, 0), 128>() && ...);
}
static_assert(HasRowForEachEvent(std::make_integer_sequence<HX_U16, std::size(kEventClasses)>()));
static_assert(HasRowForEach<EventKind, kEvents, At(EventClass::kAdapter, 65535), 1>());

}  // namespace
}  // namespace hxcodes
