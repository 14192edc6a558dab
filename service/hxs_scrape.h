// What a scrape asks for by HTTP, and what it is answered.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace hxservice {

enum class MetricFormat : std::uint8_t { kPrometheus, kOpenMetrics };

struct Scrape {
    unsigned status = 200;  // of HTTP
    bool is_head = false;   // no body is wanted
    MetricFormat format = MetricFormat::kPrometheus;
};

/// The request line and headers, up to the empty line. Only /metrics may be asked for, with GET or
/// HEAD.
Scrape ParseScrape(std::string_view head);

/// The lines before the body, which has that many bytes.
std::string HeadOf(const Scrape& scrape, std::size_t bytes);

/// What is said of a status other than 200.
std::string ReasonOf(unsigned status);

/// The Prometheus text as OpenMetrics: a counter is named without "_total" where it is described,
/// and the end is marked.
std::string OpenMetricsOf(std::string_view text);

}  // namespace hxservice
