// The sink that posts alerts by HTTPS, through the program hxraidsvc-webhook.
#pragma once

#include <string_view>

#include "service/hxs_notice.h"
#include "service/hxs_process.h"
#include "service/hxs_sink_settings.h"

namespace hxservice {

/// Whether it may stand in the settings: https, and nothing that ends a line.
bool IsWebhookUrl(std::string_view text);

Job WebhookJob(const SinkSettings& sink, const Letter& letter);

/// Takes what the program has said into the end of its job.
void TakeWebhookAnswer(JobEnd& end);

}  // namespace hxservice
