#include "service/hxs_journal_entries.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <nlohmann/json.hpp>
#include <utility>

namespace hxservice {

namespace {

using AlertJson = nlohmann::json;

struct PriorityRow {
    std::string_view name;
    Priority priority;
};
constexpr PriorityRow kSeverityPriorities[] = {
    {"info", Priority::kInformation}, {"other", Priority::kInformation},
    {"warning", Priority::kWarning},  {"minor", Priority::kWarning},
    {"major", Priority::kError},      {"critical", Priority::kCritical},
    {"fatal", Priority::kCritical},
};
constexpr PriorityRow kLevelPriorities[] = {
    {"critical", Priority::kCritical},
    {"unknown", Priority::kError},
    {"warning", Priority::kWarning},
    {"info", Priority::kInformation},
};

// What has another severity may be grave.
template <std::size_t N>
Priority PriorityOf(const PriorityRow (&rows)[N], std::string_view name) {
    const auto* const row = std::ranges::find(rows, name, &PriorityRow::name);
    return row == std::end(rows) ? Priority::kError : row->priority;
}

std::string TextAt(const AlertJson& json, const char* name) {
    const auto found = json.find(name);
    if (found == json.end() || found->is_null()) return "";
    return found->is_string() ? found->get<std::string>() : found->dump();
}

std::string CausesText(const AlertJson& alert) {
    std::string text;
    for (const AlertJson& cause : alert.value("cause", AlertJson::array())) {
        text += (text.empty() ? "" : " ") + TextAt(cause, "code") + ":" + TextAt(cause, "address");
    }
    return text;
}

std::string NextStepOf(const AlertJson& alert) {
    const AlertJson step = alert.value("next_step", AlertJson::object());
    std::string text = TextAt(step, "text");
    if (!step.contains("command") || !step["command"].is_array()) return text;
    std::string words;
    for (const AlertJson& word : step["command"]) {
        words += (words.empty() ? "" : " ") + word.get<std::string>();
    }
    return text + (text.empty() || words.empty() ? "" : ": ") + words;
}

struct AlertFieldRow {
    const char* field;
    std::string_view part;  // the member that has it; empty: the alert itself
    const char* member;
};
constexpr AlertFieldRow kAlertFields[] = {
    {"HXRAID_CODE", "", "code"},
    {"HXRAID_LEVEL", "", "level"},
    {"HXRAID_CHANGE", "", "change"},
    {"HXRAID_WAS", "", "was"},
    {"HXRAID_SINCE", "", "since"},
    {"HXRAID_HINDRANCE", "", "hindrance"},
    {"HXRAID_MAY_BE_REPEAT", "", "may_be_repeat"},
    {"HXRAID_DEDUP_KEY", "", "dedup_key"},
    {"HXRAID_OBJECT", "object", "address"},
    {"HXRAID_NAME", "object", "name"},
    {"HXRAID_SERIAL", "object", "serial"},
    {"ADAPTER", "event", "adapter"},
    {"CLASS", "event", "class"},
    {"CODE", "event", "code"},
    {"DEVICE", "event", "device"},
    {"SEQUENCE", "event", "sequence"},
};

JournalEntry EntryOfAlert(const std::string& text) {
    const AlertJson alert = AlertJson::parse(text);
    const std::string level = TextAt(alert, "level");
    const bool is_clear = TextAt(alert, "change") == "cleared";
    JournalEntry entry{
        .priority = is_clear ? Priority::kNotice : PriorityOf(kLevelPriorities, level),
        .message = (is_clear ? "cleared: " : "") + TextAt(alert, "sentence"),
        .message_id = TextAt(alert, "message_id")};
    const auto put = [&](const char* name, std::string value) {
        if (!value.empty()) entry.fields.push_back({name, std::move(value)});
    };
    for (const AlertFieldRow& row : kAlertFields) {
        const AlertJson part =
            row.part.empty() ? alert : alert.value(std::string(row.part), AlertJson());
        if (part.is_object()) put(row.field, TextAt(part, row.member));
    }
    put("HXRAID_CAUSE", CausesText(alert));
    put("HXRAID_NEXT_STEP", NextStepOf(alert));
    put("SEVERITY", level);
    return entry;
}

}  // namespace

std::string EventMessageId(unsigned event_class, unsigned code) {
    std::array<char, 33> id{};
    std::snprintf(id.data(), id.size(), "8f1c6a5e0d2b4c739ae4b7d1%04x%04x", event_class & 0xFFFFU,
                  code & 0xFFFFU);
    return id.data();
}

JournalEntry EntryOf(const StoredEvent& stored) {
    const hxconditions::Event& event = stored.event;
    return {.priority = PriorityOf(kSeverityPriorities, stored.severity),
            .message = stored.text,
            .message_id = EventMessageId(event.event_class, event.code),
            .fields = {{"ADAPTER", std::to_string(event.adapter)},
                       {"CLASS", std::to_string(event.event_class)},
                       {"CODE", std::to_string(event.code)},
                       {"SEVERITY", stored.severity},
                       {"DEVICE", std::to_string(event.device)},
                       {"SEQUENCE", std::to_string(stored.number)}}};
}

std::vector<JournalEntry> EntriesOf(const Letter& letter) {
    std::vector<JournalEntry> entries;
    for (const std::string& alert : letter.alerts) entries.push_back(EntryOfAlert(alert));
    if (entries.empty()) {
        entries.push_back({.priority = Priority::kNotice,
                           .message = letter.sentence,
                           .message_id = std::string(kTestMessageId)});
    }
    return entries;
}

}  // namespace hxservice
