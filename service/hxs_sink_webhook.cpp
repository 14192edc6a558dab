#include "service/hxs_sink_webhook.h"

#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <nlohmann/json.hpp>

namespace hxservice {

namespace {

using WebhookJson = nlohmann::json;

// What a receiver may ask for.
constexpr std::int64_t kLongestWait = 3600;  // seconds

// Beside this program, wherever both were installed: sbin and libexec have one folder around them.
std::string WebhookProgram() {
    std::array<char, PATH_MAX> path{};
    const ssize_t size = readlink("/proc/self/exe", path.data(), path.size());
    std::string self(path.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    self.resize(std::min(self.rfind('/'), self.size()));
    return self + "/" HXRAIDSVC_WEBHOOK;
}

}  // namespace

bool IsWebhookUrl(std::string_view text) {
    constexpr std::string_view kScheme = "https://";
    constexpr std::size_t kLongestUrl = 2000;
    return text.starts_with(kScheme) && text.size() > kScheme.size() &&
           text.size() <= kLongestUrl &&
           std::ranges::all_of(text, [](char letter) { return letter > ' ' && letter <= '~'; });
}

Job WebhookJob(const SinkSettings& sink, const Letter& letter) {
    const WebhookJson order{{"url", sink.url},
                            {"ca_file", sink.ca_file},
                            {"secret_file", sink.secret_file},
                            {"limit_ms", sink.limit.count()},
                            {"id", letter.id}};
    // It ends by its own limit, with a better reason.
    return {.words = {WebhookProgram()},
            .environment = {"PATH=/usr/bin:/bin", "LANG=C.UTF-8", "HXRAID_SINK=" + letter.sink},
            .input = order.dump() + "\n" + letter.json,
            .limit = sink.limit + std::chrono::seconds(5)};
}

void TakeWebhookAnswer(JobEnd& end) {
    if (end.error.empty()) return;
    const std::string line = end.output.substr(0, end.output.find('\n'));
    const WebhookJson told = WebhookJson::parse(line, nullptr, /*allow_exceptions=*/false);
    if (!told.is_object() || !told.contains("error") || !told["error"].is_string()) return;
    end.error = told["error"].get<std::string>();
    end.output.clear();
    end.is_refused = told.value("refused", false);
    end.wait = std::chrono::seconds(
        std::clamp<std::int64_t>(told.value("wait_s", std::int64_t{0}), 0, kLongestWait));
}

}  // namespace hxservice
