// Fills the records of enclosures and their elements. Every function writes every byte of its
// record.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

void Describe(const Adapter& adapter, const Enclosure& enclosure, Time now, Enclosure_Info& info);

/// The element's type, status and readings.
void Describe(const Adapter& adapter, const Element& element, EncElementType_Info& state);

/// Its thresholds.
void Describe(const Adapter& adapter, const Element& element, EncElement_Config& thresholds);

}  // namespace hxsim
