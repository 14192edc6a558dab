#include "service/hxs_metric_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "common/utf8.h"

namespace hxservice {

namespace {

std::string EscapedLabel(std::string_view text) {
    std::string escaped;
    for (const char each : vexortools::ValidUtf8(text)) {
        if (each == '\n') {
            escaped += "\\n";
            continue;
        }
        if (each == '\\' || each == '"') escaped += '\\';
        escaped += each;
    }
    return escaped;
}

constexpr double kMostWhole = 1e15;  // whole numbers below have all their digits

// The shortest text that reads as this number again; whole numbers without an exponent.
std::string ValueText(double value) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-Inf" : "+Inf";
    if (value == std::floor(value) && std::abs(value) < kMostWhole) {
        return std::to_string(static_cast<std::int64_t>(value));
    }
    std::array<char, 32> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return {static_cast<const char*>(digits.data()), end};
}

}  // namespace

void MetricText::Begin(std::string_view name, MetricType type, std::string_view help) {
    name_ = name;
    there_.clear();
    head_ = "# HELP " + std::string(name) + " " + std::string(help) + "\n# TYPE " +
            std::string(name) + (type == MetricType::kCounter ? " counter\n" : " gauge\n");
}

void MetricText::Add(const MetricLabels& labels, double value) {
    std::string between;
    for (const auto& [name, text] : labels) {
        between += between.empty() ? "{" : ",";
        between += std::string(name) + "=\"" + EscapedLabel(text) + "\"";
    }
    if (!between.empty()) between += "}";
    if (!there_.insert(between).second) return;
    text_ += std::exchange(head_, {});
    text_ += std::string(name_) + between + " " + ValueText(value) + "\n";
}

}  // namespace hxservice
