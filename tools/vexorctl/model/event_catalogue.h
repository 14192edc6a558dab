// Readable texts of events.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vexorctl {

struct EventPhrase {
    std::string key;
    std::string phrase;  // with the places {object}, {1}, {2}, ... where its values go
};

/// Every key that the library writes, with its phrase.
std::vector<EventPhrase> EventCatalogue();

/// The phrase of one key; empty when the catalogue does not have it.
std::string FindEventPhrase(std::string_view key);

/// The phrase with its places filled: the object's address, and the values of the event's line from
/// {1} on.
std::string FillEventPhrase(std::string_view phrase, const std::string& object,
                            const std::vector<std::string>& values);

}  // namespace vexorctl
