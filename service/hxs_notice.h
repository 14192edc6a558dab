// What sinks are told: a notice is one change of one condition, a letter carries the notices of a
// round and everything else that is wrong.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "conditions/hxc_look.h"
#include "conditions/hxc_overview.h"

namespace hxservice {

struct Notice {
    std::uint64_t number = 0;  // in the order of all notices, of all sinks
    std::string key;           // of the condition, as hxconditions::KeyOf has it
    std::string text;          // JSON: the condition with what has changed
};

/// The JSON of a notice. `change` is a name of hxconditions::Change or "repeat". `may_be_repeat`
/// says that it may have been sent before, because the memory of that was lost.
std::string NoticeText(const hxconditions::Message& message, std::string_view change,
                       const std::string& host, bool may_be_repeat);

/// The JSON of an entry of the history: a change that was told, or what became of a delivery.
std::string HistoryText(const hxconditions::Message& message, std::int64_t real);
std::string HistoryText(const std::string& sink, std::string_view what, std::uint64_t alerts,
                        const std::string& error, std::int64_t real);

struct Letter {
    std::string sink;
    std::string host;
    std::string level;     // "critical", ..., or "cleared": of the gravest notice
    std::string sentence;  // of that notice
    std::string subject;
    std::int64_t at = 0;              // when it is sent, in seconds since 1970
    std::string id;                   // the same when the same alerts are sent again
    std::vector<std::string> alerts;  // each as JSON, the gravest first
    std::string json;                 // everything, for programs
    std::string body;                 // everything, for people
    std::uint64_t last = 0;           // the number of its last notice
    std::uint64_t notices = 0;
    unsigned attempt = 1;
    bool may_be_repeat = false;
};

/// How a letter is sent.
struct Sending {
    std::string sink;
    std::string host;
    std::int64_t at = 0;  // seconds since 1970
    unsigned attempt = 1;
    std::uint64_t maybe_sent = 0;  // notices up to this number may have been delivered before
};

Letter LetterOf(const Sending& sending, const std::vector<Notice>& notices,
                const hxconditions::Overview& overview, const hxconditions::Counts& counts);

/// A letter that only tries the sink.
Letter TestLetterOf(const Sending& sending);

}  // namespace hxservice
