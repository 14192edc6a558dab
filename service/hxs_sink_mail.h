// The sink that hands a mail to sendmail, or to another program that takes its words.
#pragma once

#include <string>
#include <string_view>

#include "service/hxs_notice.h"
#include "service/hxs_process.h"
#include "service/hxs_sink_settings.h"

namespace hxservice {

/// The mail as RFC 5322 has it, with line ends as sendmail wants them. No text of the letter can
/// add a header or end the mail.
std::string MailText(const SinkSettings& sink, const Letter& letter);

Job MailJob(const SinkSettings& sink, const Letter& letter);

/// Whether it may stand in the settings as a sender or receiver.
bool IsMailAddress(std::string_view text);

}  // namespace hxservice
