#include "shell/invocation.h"

#include "common/number.h"
#include "model/failure.h"

namespace vexorctl {

bool Invocation::Has(std::string_view option) const {
    return options_.contains(std::string(option));
}

const std::string* Invocation::Get(std::string_view option) const {
    const auto found = options_.find(std::string(option));
    return found == options_.end() || found->second.empty() ? nullptr : &found->second.back();
}

std::string Invocation::Get(std::string_view option, std::string_view otherwise) const {
    const std::string* const value = Get(option);
    return value == nullptr ? std::string(otherwise) : *value;
}

std::optional<std::uint64_t> Invocation::Number(std::string_view option, std::uint64_t max) const {
    const std::string* const value = Get(option);
    if (value == nullptr) return std::nullopt;
    const std::optional<std::uint64_t> number = vexortools::ReadNumber(*value, max);
    if (!number) {
        throw UsageError(std::string(option) + " takes a whole number up to " +
                         std::to_string(max) + ", not \"" + *value + "\"");
    }
    return number;
}

}  // namespace vexorctl
