// Writes metrics in the text format of Prometheus, so that whatever is put in is a valid text.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace hxservice {

enum class MetricType { kGauge, kCounter };

using MetricLabels = std::vector<std::pair<std::string_view, std::string>>;

class MetricText {
public:
    /// Begins the metric to which the series of the following calls belong. Each is begun once; one
    /// without a series is not written.
    void Begin(std::string_view name, MetricType type, std::string_view help);

    /// A second series with the same labels is left out: with it no reader would take the text.
    void Add(const MetricLabels& labels, double value);

    std::string Take() { return std::exchange(text_, {}); }

private:
    std::string_view name_;
    std::string head_;             // empty once it is written
    std::set<std::string> there_;  // the labels of the metric's series
    std::string text_;
};

}  // namespace hxservice
