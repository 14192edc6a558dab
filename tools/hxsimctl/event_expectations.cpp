#include "event_expectations.h"

#include <algorithm>
#include <optional>

#include "codes/code_table.h"
#include "codes/event_class.h"
#include "common/number.h"
#include "vxevent_text.h"

namespace hxsimctl {

namespace {

// The key of an event's text; class and code for an event without a text.
std::string KeyOf(const Event& event) {
    std::vector<char> line(kEventTextSize);
    VX_HX_EVT_Sprintf(&event, line.data());
    const std::string_view text = line.data();
    const std::size_t key = text.find("EVT_CODE_");
    if (key == std::string_view::npos) {
        return std::to_string(event.Class) + '.' + std::to_string(event.Code);
    }
    return std::string(text.substr(key, text.find('|', key) - key));
}

// Whether any event has that key. A misspelt one would make "expect no event" always true.
bool IsKey(const std::string& key) {
    constexpr HX_U16 kCodes = 128;
    const auto texts = hxcodes::OwnCodes().events;
    if (std::ranges::find(texts, key, &hxcodes::EventText::key) != texts.end()) return true;
    for (const hxcodes::EventClassRow& row : hxcodes::kEventClasses) {
        Event event{};
        event.Class = NumberOf(row.code);
        for (; event.Code < kCodes; ++event.Code) {
            if (KeyOf(event) == key) return true;
        }
    }
    return false;
}

struct WantedEvent {
    Target adapter;
    std::string key;
    std::optional<HX_U16> device;

    bool Is(const Event& event, HX_U8 on) const {
        return event.AdapterID == on && (!device || event.DeviceID == *device) &&
               KeyOf(event) == key;
    }
    std::string Text() const {
        return adapter.selector.typed + ": " + key +
               (device ? " of device " + std::to_string(*device) : "");
    }
};

// Parses ADDRESS KEY [DEVICE], starting at the word with index `first`.
WantedEvent ParseEvent(const Words& words, std::size_t first, const std::string& form) {
    const std::size_t count = words.size() - first;
    if (words.size() < first || count < 2 || count > 3) throw UsageError("write expect " + form);
    WantedEvent wanted;
    wanted.adapter = ParseTarget(words[first], ObjectKind::kAdapter);
    wanted.key = words[first + 1];
    const bool is_numbered = wanted.key.find('.') != std::string::npos;
    if (!is_numbered && !wanted.key.starts_with("EVT_CODE_")) wanted.key.insert(0, "EVT_CODE_");
    if (!IsKey(wanted.key)) {
        throw UsageError('"' + words[first + 1] +
                         "\" is the key of no event; write one that event texts have, such as "
                         "LD_CREATE, or class and code, such as 8.0, for one that has no text");
    }
    if (count == 3) {
        wanted.device = static_cast<HX_U16>(
            vexortools::ParseNumber(words[first + 2], 65535, "number of a device"));
    }
    return wanted;
}

// The last few events, so that a failed expectation shows what was there instead.
std::string LastEvents(const std::vector<Story::Seen>& events) {
    constexpr std::size_t kShown = 5;
    if (events.empty()) return "nothing happened so far";
    std::string text = "the last events are";
    const std::size_t first = events.size() > kShown ? events.size() - kShown : 0;
    for (std::size_t i = first; i < events.size(); ++i) {
        text += (i == first ? " " : ", ") + KeyOf(events[i].event) + ' ' +
                std::to_string(events[i].event.DeviceID);
    }
    return text;
}

// The first such event that no step has matched; null when there is none.
Story::Seen* FindEvent(Story& story, const WantedEvent& wanted) {
    const HX_U8 adapter = NameObject(story.driver().Current(), wanted.adapter).adapter;
    std::vector<Story::Seen>& events = story.Events();
    const auto found = std::ranges::find_if(events, [&](const Story::Seen& each) {
        return !each.expected && wanted.Is(each.event, adapter);
    });
    return found == events.end() ? nullptr : &*found;
}

}  // namespace

Step ExpectEvent(const Words& words) {
    const WantedEvent wanted = ParseEvent(words, 1, "event a0 KEY [DEVICE]");
    return [wanted](Story& story) {
        Story::Seen* const seen = FindEvent(story, wanted);
        if (seen == nullptr) {
            throw Refused("no event " + wanted.Text() +
                          ", which was expected, has happened since the last one; " +
                          LastEvents(story.Events()));
        }
        seen->expected = true;
    };
}

Step ExpectNoEvent(const Words& words) {
    const std::string form = "no event a0 KEY [DEVICE]";
    if (words[1] != "event") throw UsageError("write expect " + form);
    const WantedEvent wanted = ParseEvent(words, 2, form);
    return [wanted](Story& story) {
        if (FindEvent(story, wanted) == nullptr) return;
        throw Refused("an event " + wanted.Text() + " has happened; none was expected");
    };
}

}  // namespace hxsimctl
