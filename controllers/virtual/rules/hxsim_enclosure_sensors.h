// The elements of enclosures, and the status that follows from their sensor readings.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// How far a reading is from its normal range.
enum class Deviation : HX_U8 { kNone, kLowWarning, kHighWarning, kLowCritical, kHighCritical };

/// The deviation of a temperature, voltage or fan; kNone for elements without a reading. A
/// threshold of 0 is not checked.
Deviation DeviationOf(const Element& element);

/// The status that follows from an element's reading. Elements without a reading have the status
/// that was set, and so have those that are told to be not installed, not available or unknown.
ElementStatus StatusOf(const Element& element);

/// Whether callers see the enclosure: one that is unplugged takes no phy.
constexpr bool IsPlugged(const Enclosure& enclosure) { return enclosure.phys != 0; }

/// The element with that number; null when the enclosure has none.
Element* FindElement(Adapter& adapter, HX_U16 enclosure, HX_U8 number);

}  // namespace hxsim
