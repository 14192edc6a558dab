#include "service/hxs_notice.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cinttypes>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <utility>

#include "conditions/hxc_json.h"
#include "conditions/hxc_text.h"

namespace hxservice {

namespace {

using NoticeJson = nlohmann::ordered_json;

constexpr std::string_view kAlertSchema = "hxraidsvc-alert/1";
constexpr std::string_view kCleared = "cleared";

std::string DumpOf(const NoticeJson& json) {
    return json.dump(-1, ' ', false, NoticeJson::error_handler_t::replace);
}

std::string TextIn(const NoticeJson& json, const char* name) {
    const auto found = json.find(name);
    return found != json.end() && found->is_string() ? found->get<std::string>() : std::string();
}

bool IsOver(const NoticeJson& notice) {
    const std::string change = TextIn(notice, "change");
    return change == kCleared || change == "passed";
}

// Clears last: what has become wrong matters more.
std::uint64_t GravityOf(const NoticeJson& notice) {
    constexpr std::uint64_t kAfterAllRanks = 1000;
    const std::uint64_t rank = notice.value("rank", kAfterAllRanks);
    return TextIn(notice, "change") == kCleared ? kAfterAllRanks + rank : rank;
}

// Numbers begin anew after a damaged state file, so that the texts count, too (FNV-1a).
std::string LetterId(std::uint64_t first, std::uint64_t last, std::string_view texts) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char letter : texts) {
        hash = (hash ^ static_cast<unsigned char>(letter)) * 0x100000001b3;
    }
    std::array<char, 17> digits{};
    std::snprintf(digits.data(), digits.size(), "%016" PRIx64, hash);
    return std::to_string(first) + "-" + std::to_string(last) + "-" + digits.data();
}

std::string UpperCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char letter) {
        return static_cast<char>(std::toupper(letter));
    });
    return text;
}

std::string CommandText(const NoticeJson& condition) {
    std::string words;
    const NoticeJson& step = condition.value("next_step", NoticeJson::object());
    if (!step.contains("command") || !step["command"].is_array()) return words;
    for (const NoticeJson& word : step["command"]) {
        words += (words.empty() ? "" : " ") + word.get<std::string>();
    }
    return words;
}

std::string NextStepText(const NoticeJson& condition) {
    const std::string text = TextIn(condition.value("next_step", NoticeJson::object()), "text");
    const std::string command = CommandText(condition);
    return text + (text.empty() || command.empty() ? "" : ": ") + command;
}

// One condition for people, with what explains it.
std::string Paragraph(const NoticeJson& condition, const std::string& change) {
    std::string text = change.empty() ? "" : change + ": ";
    text += "[" + TextIn(condition, "level") + "] " + TextIn(condition, "code") + ": " +
            TextIn(condition, "sentence") + "\n";
    const std::string since = TextIn(condition, "since");
    if (!since.empty()) text += "  since " + since + "\n";
    for (const NoticeJson& folded : condition.value("folded", NoticeJson::array())) {
        text += "  " + TextIn(folded, "sentence") + "\n";
    }
    const std::string next = NextStepText(condition);
    if (!next.empty() && !IsOver(condition)) text += "  -> " + next + "\n";
    return text;
}

std::string ChangeText(const NoticeJson& notice) {
    std::string text = TextIn(notice, "change");
    const std::string was = TextIn(notice, "was");
    if (!was.empty()) text += ", was " + was;
    if (IsOver(notice) && notice.contains("lasted_s") && notice["lasted_s"].is_number()) {
        text += " after " + hxconditions::DurationText(notice["lasted_s"].get<std::int64_t>());
    }
    const std::string reason = TextIn(notice, "reason");
    if (!reason.empty()) text += ", " + reason;
    if (notice.value("may_be_repeat", false)) text += " (may be a repeat)";
    return text;
}

std::vector<NoticeJson> Parsed(const Sending& sending, const std::vector<Notice>& notices) {
    std::vector<NoticeJson> parsed;
    for (const Notice& notice : notices) {
        NoticeJson& json = parsed.emplace_back(NoticeJson::parse(notice.text));
        if (notice.number <= sending.maybe_sent) json["may_be_repeat"] = true;
    }
    std::ranges::stable_sort(parsed, {}, GravityOf);
    return parsed;
}

Letter Head(const Sending& sending) {
    Letter letter;
    letter.sink = sending.sink;
    letter.host = sending.host;
    letter.attempt = sending.attempt;
    letter.at = sending.at;
    return letter;
}

NoticeJson HeadJson(const Letter& letter, const Sending& sending) {
    NoticeJson json;
    json["schema"] = kAlertSchema;
    json["host"] = letter.host;
    json["sink"] = letter.sink;
    json["sent_at"] = sending.at;
    json["sent"] = hxconditions::IsoTimeText(sending.at);
    json["attempt"] = letter.attempt;
    json["may_be_repeat"] = letter.may_be_repeat;
    json["test"] = false;
    json["id"] = letter.id;
    json["subject"] = letter.subject;
    return json;
}

NoticeJson EventJson(const hxconditions::Event& event) {
    return {{"adapter", event.adapter},
            {"class", event.event_class},
            {"code", event.code},
            {"device", event.device},
            {"sequence", event.sequence}};
}

}  // namespace

std::string NoticeText(const hxconditions::Message& message, std::string_view change,
                       const std::string& host, bool may_be_repeat) {
    const hxconditions::Condition& condition = message.condition;
    const hxconditions::Row& row = hxconditions::RowOf(condition.code);
    const bool is_clear = message.change == hxconditions::Change::kCleared;
    NoticeJson json = NoticeJson::parse(hxconditions::MessageJson(message));
    json["change"] = change;
    json["may_be_repeat"] = may_be_repeat;
    json["dedup_key"] = host + "/" + std::string(row.name) + "/" + condition.object.identity;
    json["message_id"] = is_clear ? row.clear_id : row.message_id;
    json["event"] = condition.event ? EventJson(*condition.event) : NoticeJson();
    return DumpOf(json);
}

std::string HistoryText(const hxconditions::Message& message, std::int64_t real) {
    const hxconditions::Condition& condition = message.condition;
    NoticeJson json;
    json["time"] = real;
    json["what"] = hxconditions::NameOf(message.change);
    json["level"] = hxconditions::NameOf(condition.level);
    json["code"] = hxconditions::RowOf(condition.code).name;
    json["object"] = hxconditions::TitleOf(condition.object);
    json["text"] = condition.sentence;
    return DumpOf(json);
}

std::string HistoryText(const std::string& sink, std::string_view what, std::uint64_t alerts,
                        const std::string& error, std::int64_t real) {
    NoticeJson json;
    json["time"] = real;
    json["what"] = what;
    json["object"] = sink;
    json["alerts"] = alerts;
    json["text"] = error;
    return DumpOf(json);
}

Letter LetterOf(const Sending& sending, const std::vector<Notice>& notices,
                const hxconditions::Overview& overview, const hxconditions::Counts& counts) {
    const std::vector<NoticeJson> parsed = Parsed(sending, notices);
    Letter letter = Head(sending);
    letter.notices = notices.size();
    std::string texts = letter.host + "\n" + letter.sink + "\n";
    for (const Notice& notice : notices) {
        letter.last = std::max(letter.last, notice.number);
        texts += notice.text + "\n";
    }
    letter.id = LetterId(notices.empty() ? 0 : notices.front().number, letter.last, texts);
    for (const NoticeJson& each : parsed) letter.alerts.push_back(DumpOf(each));
    letter.may_be_repeat = std::ranges::any_of(
        parsed, [](const NoticeJson& notice) { return notice.value("may_be_repeat", false); });
    if (!parsed.empty()) {
        const NoticeJson& first = parsed.front();
        const bool is_clear = TextIn(first, "change") == kCleared;
        letter.level = is_clear ? std::string(kCleared) : TextIn(first, "level");
        letter.sentence = TextIn(first, "sentence");
        letter.subject =
            "[" + UpperCase(letter.level) + "] " + letter.host + ": " + letter.sentence;
        if (parsed.size() > 1) {
            letter.subject += " (and " + std::to_string(parsed.size() - 1) + " more)";
        }
    }
    NoticeJson json = HeadJson(letter, sending);
    NoticeJson whole = NoticeJson::parse(hxconditions::OverviewJson(overview, counts));
    NoticeJson conditions = std::move(whole["conditions"]);
    whole.erase("conditions");
    json.update(whole);
    json["alerts"] = parsed;
    for (const NoticeJson& each : parsed) letter.body += Paragraph(each, ChangeText(each)) + "\n";
    std::string others;
    for (const NoticeJson& each : conditions) others += Paragraph(each, "");
    if (!others.empty()) letter.body += "Everything that is wrong now:\n" + others + "\n";
    letter.body += "hxraidsvc on " + letter.host + ", " + hxconditions::TimeText(sending.at) + "\n";
    if (letter.may_be_repeat) {
        letter.body += "What is marked so may have been sent before.\n";
    }
    json["conditions"] = std::move(conditions);
    letter.json = DumpOf(json) + "\n";
    return letter;
}

Letter TestLetterOf(const Sending& sending) {
    Letter letter = Head(sending);
    letter.level = "test";
    letter.id = LetterId(0, 0, letter.host + "\n" + letter.sink + "\n" + std::to_string(letter.at));
    letter.sentence = "this is a test of the sink " + sending.sink + "; nothing is wrong";
    letter.subject = "[TEST] " + letter.host + ": " + letter.sentence;
    letter.body = letter.sentence + "\n\nhxraidsvc on " + letter.host + ", " +
                  hxconditions::TimeText(sending.at) + "\n";
    NoticeJson json = HeadJson(letter, sending);
    json["test"] = true;
    json["alerts"] = NoticeJson::array();
    json["conditions"] = NoticeJson::array();
    letter.json = DumpOf(json) + "\n";
    return letter;
}

}  // namespace hxservice
