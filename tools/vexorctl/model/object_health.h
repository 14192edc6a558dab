// How well each object is, by its own conditions.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "common/address.h"
#include "conditions/hxc_answers.h"
#include "conditions/hxc_overview.h"

namespace vexorctl {

/// "ok", "warning" or "critical" by the worst condition of the object itself, also where that
/// explains one of another object: a failed disk is critical or a warning, whatever its virtual
/// disk is. Null when something was not read on which its conditions rest. What only events or a
/// memory tell is not looked at.
class ObjectHealth {
public:
    /// Keeps a reference to the answers.
    explicit ObjectHealth(const hxconditions::Answers& answers);

    std::optional<std::string_view> OfDisk(const vexortools::Address& disk) const;
    std::optional<std::string_view> OfVirtualDisk(const vexortools::Address& virtual_disk) const;
    /// With its elements.
    std::optional<std::string_view> OfEnclosure(const vexortools::Address& enclosure) const;
    /// Of the adapter's battery.
    std::optional<std::string_view> OfBattery(const vexortools::Address& adapter) const;

private:
    void Take(const hxconditions::Condition& condition);
    std::optional<std::string_view> Of(hxconditions::Kind kind,
                                       const vexortools::Address& address) const;

    const hxconditions::Answers& answers_;
    // The worst level of each object, by its kind, adapter and number.
    std::map<std::string, hxconditions::Level> worst_;
};

}  // namespace vexorctl
