// Events and alerts as entries of the journal, and what their MESSAGE_IDs are.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "service/hxs_journal.h"
#include "service/hxs_notice.h"
#include "service/hxs_source.h"

namespace hxservice {

/// Of a letter that only tries the journal.
inline constexpr std::string_view kTestMessageId = "8f1c6a5e0d2b4c739ae4b7d1ffffffff";

/// The MESSAGE_ID of all events of that class and code: a fixed number, then both. Those of
/// conditions stand in their rows.
std::string EventMessageId(unsigned event_class, unsigned code);

JournalEntry EntryOf(const StoredEvent& stored);

/// An entry for each alert of the letter.
std::vector<JournalEntry> EntriesOf(const Letter& letter);

}  // namespace hxservice
