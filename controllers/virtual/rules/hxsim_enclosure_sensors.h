// The elements of enclosures, and what the readings of their sensors mean.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// How far a reading is from what it should be.
enum class Deviation : HX_U8 { kNone, kLowWarning, kHighWarning, kLowCritical, kHighCritical };

/// Of a temperature, voltage or fan; kNone of what is not measured. A threshold of 0 is none.
Deviation DeviationOf(const Element& element);

/// The status that follows from an element's reading. Elements without one have
/// the status that they have been given.
ElementStatus StatusOf(const Element& element);

/// The element with that number; null when the enclosure has none.
Element* FindElement(Adapter& adapter, HX_U16 enclosure, HX_U8 number);

}  // namespace hxsim
