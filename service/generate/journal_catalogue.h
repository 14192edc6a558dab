// The catalogue of messages for journalctl -x.
#pragma once

#include <string>

namespace hxservice {

/// An entry for each MESSAGE_ID: two for each condition, and one for each event that has a text.
std::string JournalCatalogue();

}  // namespace hxservice
