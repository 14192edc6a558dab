// Values of options, read by the readers that all tools share.
#pragma once

#include <string>
#include <string_view>

#include "model/failure.h"

namespace vexorctl {

/// What `read` makes of the option's value; the UsageError that it throws names the option, too.
template <class Read>
auto ReadOption(std::string_view option, const std::string& value, Read read) {
    try {
        return read(value);
    } catch (const UsageError& error) {
        throw UsageError(std::string(option) + ": " + error.what());
    }
}

}  // namespace vexorctl
