#include "service/hxs_sink_settings.h"

#include <algorithm>
#include <iterator>

#include "common/failure.h"
#include "common/nearest_name.h"
#include "common/toml.h"
#include "service/hxs_sink_mail.h"
#include "service/hxs_sink_webhook.h"

namespace hxservice {

namespace {

using hxconditions::Level;
using vexortools::Duration;
using vexortools::EmptyTomlTable;
using vexortools::Quoted;
using vexortools::TomlValue;

using SinkComplaint = std::optional<std::string>;

template <class T>
struct Word {
    std::string_view name;
    T value;
};
constexpr Word<SinkKind> kKinds[] = {{"command", SinkKind::kCommand},
                                     {"journal", SinkKind::kJournal},
                                     {"mail", SinkKind::kMail},
                                     {"webhook", SinkKind::kWebhook}};
constexpr Word<Policy> kPolicies[] = {{"once", Policy::kOnce},
                                      {"always", Policy::kAlways},
                                      {"daily", Policy::kDaily},
                                      {"diminishing", Policy::kDiminishing}};
// What is not known but can hide something critical stands between critical and warning.
constexpr Word<Level> kLevels[] = {{"critical", Level::kCritical},
                                   {"unknown", Level::kUnknown},
                                   {"warning", Level::kMinorUnknown},
                                   {"info", Level::kInfo}};

constexpr std::int64_t kMostQueued = 10000;
constexpr Duration kLeastLimit = std::chrono::seconds(1);
constexpr Duration kMostLimit = std::chrono::minutes(10);
constexpr std::size_t kLongestName = 32;

constexpr SinkRow kSinkRows[] = {
    {"kind", &SinkSettings::kind, "", "\"command\", \"journal\", \"mail\" or \"webhook\"",
     "How alerts are sent there. It must be said. The journal is systemd's, or syslog where there "
     "is "
     "none."},
    {"level", &SinkSettings::level, "", "\"critical\", \"unknown\", \"warning\" or \"info\"",
     "The least grave level that is sent; \"warning\" when it is left out. Unknown is what cannot "
     "be read and may hide something critical."},
    {"policy", &SinkSettings::policy, "", "\"once\", \"always\", \"daily\" or \"diminishing\"",
     "How often a condition that stays is sent: once, which holds when it is left out; again each "
     "day; again after 1, 2, 4 and more days; or always, which is each day and whenever its cause "
     "or what hinders its end changes. Neither acknowledged nor silenced conditions are sent "
     "again."},
    {"queue", &SinkSettings::queue, "", "a number from 1 to 10000",
     "So many alerts wait at most while the sink cannot be reached; 200 when it is left out. The "
     "oldest are given up first."},
    {"limit", &SinkSettings::limit, "", "a duration from 1s to 10m",
     "What takes longer to deliver is killed, with the processes that it has started; 30s when it "
     "is left out."},
    {"command", &SinkSettings::command, "command", "a list of texts",
     "The program, by its whole path, and its words. No shell reads them.",
     "[\"/usr/bin/page\", \"ops\"]"},
    {"to", &SinkSettings::to, "mail", "a list of texts", "Who gets the mail. It must be said.",
     "[\"root\", \"storage@example.org\"]"},
    {"from", &SinkSettings::from, "mail", "a text",
     "The sender; when it is left out, the mail program decides."},
    {"program", &SinkSettings::program, "mail", "a text",
     "What sends the mail, by its whole path; /usr/sbin/sendmail when it is left out. It gets the "
     "words -t and -oi, and -f with the sender if there is one, and the mail on standard input."},
    {"url", &SinkSettings::url, "webhook", "a text",
     "Where alerts are posted as JSON; it begins with https://. It must be said."},
    {"ca_file", &SinkSettings::ca_file, "webhook", "a text",
     "The certificates of authorities, as PEM, of which one must have signed the receiver's; those "
     "of the system when it is left out."},
    {"secret_file", &SinkSettings::secret_file, "webhook", "a text",
     "A file that its owner alone can read, with the secret that signs what is posted; when it is "
     "left out, nothing is signed."},
};

template <class T, std::size_t N>
SinkComplaint TakeWord(const Word<T> (&words)[N], const TomlValue& value, T& field) {
    const auto* const text = std::get_if<std::string>(&value.value);
    const auto* const word =
        text == nullptr ? std::end(words) : std::ranges::find(words, *text, &Word<T>::name);
    if (word != std::end(words)) {
        field = word->value;
        return std::nullopt;
    }
    std::string list;
    for (const Word<T>& each : words) {
        list += (list.empty() ? "" : ", ") + Quoted(each.name);
    }
    return Quoted(value.key) + " must be " + (N > 1 ? "one of " : "") + list;
}

// One overload for each way in which a value is written.
struct Taker {
    SinkSettings& sink;
    const TomlValue& value;
    const SinkRow& row;

    SinkComplaint operator()(std::optional<SinkKind> SinkSettings::*field) const {
        SinkKind kind{};
        SinkComplaint complaint = TakeWord(kKinds, value, kind);
        if (!complaint) sink.*field = kind;
        return complaint;
    }
    SinkComplaint operator()(Policy SinkSettings::*field) const {
        return TakeWord(kPolicies, value, sink.*field);
    }
    SinkComplaint operator()(Level SinkSettings::*field) const {
        return TakeWord(kLevels, value, sink.*field);
    }
    SinkComplaint operator()(std::string SinkSettings::*field) const {
        const auto* const text = std::get_if<std::string>(&value.value);
        if (text == nullptr || text->empty()) {
            return Quoted(value.key) + " must be a text in quotation marks";
        }
        sink.*field = *text;
        return std::nullopt;
    }
    SinkComplaint operator()(std::vector<std::string> SinkSettings::*field) const {
        const auto* const texts = std::get_if<std::vector<std::string>>(&value.value);
        if (texts == nullptr || texts->empty() || texts->front().empty()) {
            return Quoted(value.key) + " must be a list of texts, such as " +
                   std::string(row.example);
        }
        sink.*field = *texts;
        return std::nullopt;
    }
    SinkComplaint operator()(std::int64_t SinkSettings::*field) const {
        const auto* const number = std::get_if<std::int64_t>(&value.value);
        if (number == nullptr || *number < 1 || *number > kMostQueued) {
            return Quoted(value.key) + " must be a number from 1 to " + std::to_string(kMostQueued);
        }
        sink.*field = *number;
        return std::nullopt;
    }
    SinkComplaint operator()(Duration SinkSettings::*field) const {
        const auto* const text = std::get_if<std::string>(&value.value);
        std::optional<Duration> duration;
        try {
            if (text != nullptr) duration = vexortools::ReadDuration(*text);
        } catch (const vexortools::UsageError& failure) {
            return Quoted(value.key) + ": " + failure.what();
        }
        if (!duration || *duration < kLeastLimit || *duration > kMostLimit) {
            return Quoted(value.key) + " must be a duration from " +
                   vexortools::DurationText(kLeastLimit) + " to " +
                   vexortools::DurationText(kMostLimit) + ", such as \"30s\"";
        }
        sink.*field = *duration;
        return std::nullopt;
    }
};

// The name stands in paths of keys, environments and sentences.
bool IsName(std::string_view name) {
    constexpr std::string_view kAllowed =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_";
    return !name.empty() && name.size() <= kLongestName &&
           name.find_first_not_of(kAllowed) == std::string_view::npos;
}

// The key without "sink." and the name, which ends at the last dot.
struct SinkKey {
    std::string_view name, key;
};
SinkKey SplitKey(std::string_view key) {
    key.remove_prefix(std::min(key.size(), std::string_view("sink.").size()));
    const std::size_t dot = key.find('.');
    if (dot == std::string_view::npos) return {key, ""};
    return {key.substr(0, dot), key.substr(dot + 1)};
}

SinkSettings& SinkNamed(std::vector<SinkSettings>& sinks, std::string_view name) {
    const auto found = std::ranges::find(sinks, name, &SinkSettings::name);
    if (found != sinks.end()) return *found;
    SinkSettings& made = sinks.emplace_back();
    made.name = name;
    return made;
}

std::string NoAddress(const std::string& text) {
    return Quoted(text) +
           " is no mail address: it has only visible ASCII characters, none of "
           "()<>[]:;\\,\" and no - in front";
}

bool IsDefault(const SinkSettings& sink, const SinkRow& row) {
    const SinkSettings defaults;
    return std::visit([&](auto field) { return sink.*field == defaults.*field; }, row.field);
}

SinkComplaint CheckProgram(const std::string& title, const std::string& program) {
    if (program.starts_with('/')) return std::nullopt;
    return title + ": the program " + Quoted(program) + " must be named by its whole path";
}

SinkComplaint CheckMail(const std::string& title, const SinkSettings& sink) {
    if (sink.to.empty()) return title + " needs the key \"to\"";
    for (const std::string& each : sink.to) {
        if (!IsMailAddress(each)) return title + ": " + NoAddress(each);
    }
    if (!sink.from.empty() && !IsMailAddress(sink.from)) {
        return title + ": " + NoAddress(sink.from);
    }
    return CheckProgram(title, sink.program);
}

SinkComplaint CheckWebhook(const std::string& title, const SinkSettings& sink) {
    if (sink.url.empty()) return title + " needs the key \"url\"";
    if (!IsWebhookUrl(sink.url)) {
        return title + ": the url " + Quoted(sink.url) +
               " must begin with https:// and have only visible ASCII characters";
    }
    for (const std::string& file : {sink.ca_file, sink.secret_file}) {
        if (file.empty() || file.starts_with('/')) continue;
        return title + ": the file " + Quoted(file) + " must be named by its whole path";
    }
    return std::nullopt;
}

}  // namespace

std::span<const SinkRow> SinkRows() { return kSinkRows; }

std::string_view NameOf(SinkKind kind) {
    return std::ranges::find(kKinds, kind, &Word<SinkKind>::value)->name;
}

SinkComplaint TakeSinkValue(std::vector<SinkSettings>& sinks, const TomlValue& value) {
    const auto [name, key] = SplitKey(value.key);
    if (key.empty() && !std::holds_alternative<EmptyTomlTable>(value.value)) {
        return Quoted(value.key) + " is no key; a sink is a table, such as [sink.pager]";
    }
    if (!IsName(name)) {
        return "a sink cannot be named " + Quoted(name) +
               "; its name has letters, digits, - and _, and at most " +
               std::to_string(kLongestName) + " of them";
    }
    SinkSettings& sink = SinkNamed(sinks, name);
    if (key.empty()) return std::nullopt;
    const auto* const row = std::ranges::find(kSinkRows, key, &SinkRow::key);
    if (row == std::end(kSinkRows)) {
        std::vector<std::string_view> keys;
        for (const SinkRow& each : kSinkRows) keys.push_back(each.key);
        const std::string_view nearest = vexortools::NearestName(std::string(key), keys);
        return "there is no key " + Quoted(value.key) +
               (nearest.empty()
                    ? ""
                    : "; did you mean " +
                          Quoted("sink." + std::string(name) + "." + std::string(nearest)) + "?");
    }
    return std::visit(Taker{sink, value, *row}, row->field);
}

SinkComplaint CheckSink(const SinkSettings& sink) {
    const std::string title = "[sink." + sink.name + "]";
    if (!sink.kind) return title + " needs the key \"kind\"";
    for (const SinkRow& row : kSinkRows) {
        if (row.of.empty() || row.of == NameOf(*sink.kind) || IsDefault(sink, row)) continue;
        return title + " is of kind " + Quoted(NameOf(*sink.kind)) + ", which has no key " +
               Quoted(row.key);
    }
    switch (*sink.kind) {
        case SinkKind::kCommand:
            if (sink.command.empty()) return title + " needs the key \"command\"";
            return CheckProgram(title, sink.command.front());
        case SinkKind::kJournal:
            return std::nullopt;
        case SinkKind::kMail:
            return CheckMail(title, sink);
        case SinkKind::kWebhook:
            return CheckWebhook(title, sink);
    }
    return std::nullopt;
}

}  // namespace hxservice
