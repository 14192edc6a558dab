// One run of a command: its row, what was typed, and the controller.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/ask_controller.h"
#include "model/plan_file.h"
#include "shell/command_rows.h"

namespace vexorctl {

/// A plan that somebody has read and that is to be carried out as it stands.
struct PlanReview {
    PlanFile plan;
    bool is_met = false;  // the same plan was made again
};

class Invocation {
public:
    Invocation(const CommandRow& row, std::map<std::string, std::vector<std::string>> options,
               std::vector<std::string> targets)
        : row_(row), options_(std::move(options)), targets_(std::move(targets)) {}

    const CommandRow& row() const { return row_; }
    const std::vector<std::string>& targets() const { return targets_; }
    Controller& controller() { return controller_; }

    /// Null when no plan is followed.
    PlanReview* review() { return review_ ? &*review_ : nullptr; }
    const PlanReview* review() const { return review_ ? &*review_ : nullptr; }
    void Follow(PlanFile plan) { review_ = PlanReview{.plan = std::move(plan)}; }

    bool Has(std::string_view option) const;
    /// The last value given; null when the option was not given, "" when it stood alone.
    const std::string* Get(std::string_view option) const;
    std::string Get(std::string_view option, std::string_view otherwise) const;
    /// A whole number. Throws UsageError, which names the option.
    std::optional<std::uint64_t> Number(std::string_view option, std::uint64_t max) const;

private:
    const CommandRow& row_;
    std::map<std::string, std::vector<std::string>> options_;
    std::vector<std::string> targets_;
    Controller controller_;
    std::optional<PlanReview> review_;
};

}  // namespace vexorctl
