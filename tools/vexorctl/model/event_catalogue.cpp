#include "model/event_catalogue.h"

#include <algorithm>

#include "codes/code_table.h"
#include "codes/event_class.h"

namespace vexorctl {

// The keys are written by the library, from its own table of classes and codes, whatever controller
// sends the event; so their phrases hold for every controller.
std::vector<EventPhrase> EventCatalogue() {
    std::vector<EventPhrase> all;
    for (const hxcodes::EventText& text : hxcodes::OwnCodes().events) {
        all.push_back({text.key, text.sentence});
    }
    for (const hxcodes::EventClassRow& row : hxcodes::kEventClasses) {
        if (row.unknown_key.empty()) continue;
        all.push_back({std::string(row.unknown_key), std::string(row.unknown_sentence)});
    }
    all.push_back(
        {std::string(hxcodes::kUnknownClassKey), std::string(hxcodes::kUnknownClassSentence)});
    return all;
}

std::string FindEventPhrase(std::string_view key) {
    static const std::vector<EventPhrase> catalogue = EventCatalogue();
    const auto found = std::ranges::find(catalogue, key, &EventPhrase::key);
    return found == catalogue.end() ? std::string() : found->phrase;
}

std::string FillEventPhrase(std::string_view phrase, const std::string& object,
                            const std::vector<std::string>& values) {
    std::string text;
    while (!phrase.empty()) {
        const std::size_t open = phrase.find('{');
        text += phrase.substr(0, open);
        if (open == std::string_view::npos) break;
        const std::size_t close = phrase.find('}', open);
        const std::string_view place = phrase.substr(open + 1, close - open - 1);
        if (place == "object") {
            text += object;
        } else {
            const std::size_t index = static_cast<std::size_t>(place.front() - '1');
            text += index < values.size() ? values[index] : std::string("?");
        }
        phrase.remove_prefix(close + 1);
    }
    return text;
}

}  // namespace vexorctl
