// The enclosures, and their elements with the thresholds.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "common/address.h"
#include "library_fields.h"
#include "model/ask_controller.h"
#include "model/library_record.h"

namespace vexorctl {

struct Enclosure {
    Address address;
    Record<fields::Enclosure_Info> info;
};

struct Element {
    Address address;
    Record<fields::EncElementType_Info> info;
    Record<fields::EncElement_Config> config;
};

/// The number of a device that has a link.
template <class R>
std::optional<std::uint64_t> DeviceId(const View<R>& device) {
    return device[R::Link][fields::Link_Entity::Self][fields::Link_Endpoint::DevID];
}

/// Those on the adapters that the controller has selected. What cannot be read is noted as a fault.
std::vector<Enclosure> LoadEnclosures(Controller& controller);
/// The elements of all of them, or of these.
std::vector<Element> LoadElements(Controller& controller);
std::vector<Element> LoadElements(Controller& controller, const std::vector<Enclosure>& enclosures);

}  // namespace vexorctl
