#include "service/hxs_deliverer.h"

#include <cstddef>
#include <utility>

#include "conditions/hxc_text.h"
#include "service/hxs_journal_entries.h"
#include "service/hxs_sink_command.h"
#include "service/hxs_sink_mail.h"
#include "service/hxs_sink_webhook.h"

namespace hxservice {

std::string ReasonOf(const Delivery& delivery) {
    constexpr std::size_t kLongestReason = 200;
    const std::string first = delivery.output.substr(0, delivery.output.find('\n'));
    return hxconditions::Shortened(delivery.error + (first.empty() ? "" : ": " + first),
                                   kLongestReason);
}

void Sinks::WriteToJournal(const SinkSettings& sink, const Letter& letter) {
    Delivery delivery;
    delivery.name = sink.name;
    for (const JournalEntry& entry : EntriesOf(letter)) {
        delivery.error = journal_.Send(entry);
        if (!delivery.error.empty()) break;
        delivery.has_begun = true;
    }
    written_.push_back(std::move(delivery));
}

void Sinks::Start(const SinkSettings& sink, const Letter& letter, vexortools::Duration now) {
    if (!sink.kind) return;
    switch (*sink.kind) {
        case SinkKind::kCommand:
            children_.Start(sink.name, CommandJob(sink, letter), now);
            break;
        case SinkKind::kJournal:
            WriteToJournal(sink, letter);
            break;
        case SinkKind::kMail:
            children_.Start(sink.name, MailJob(sink, letter), now);
            break;
        case SinkKind::kWebhook:
            webhooks_.insert(sink.name);
            children_.Start(sink.name, WebhookJob(sink, letter), now);
            break;
    }
}

std::vector<Delivery> Sinks::TakeEnded(vexortools::Duration now) {
    std::vector<Delivery> ended = std::exchange(written_, {});
    for (Delivery& end : children_.TakeEnded(now)) {
        if (webhooks_.erase(end.name) != 0) TakeWebhookAnswer(end);
        ended.push_back(std::move(end));
    }
    return ended;
}

std::optional<vexortools::Duration> Sinks::Due() const {
    return written_.empty() ? children_.Due() : vexortools::Duration(0);
}

}  // namespace hxservice
