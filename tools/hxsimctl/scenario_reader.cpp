#include "scenario_reader.h"

#include <algorithm>
#include <utility>

#include "call_steps.h"
#include "codes/status.h"
#include "common/number.h"
#include "expectation_steps.h"
#include "incident_commands.h"
#include "virtual_time.h"

namespace hxsimctl {

namespace {

constexpr std::uint64_t kMostRepetitions = 100000;
constexpr std::size_t kMostLines = 1000000;

// The words of a line, separated by blanks; "a b" is one word; a # at the start of a word begins a
// comment.
Words SplitLine(std::string_view line) {
    Words words;
    bool is_in_word = false;
    bool is_quoted = false;
    for (const char each : line) {
        if (each == '#' && !is_in_word) break;
        if (!is_quoted && (each == ' ' || each == '\t' || each == '\r')) {
            is_in_word = false;
            continue;
        }
        if (!is_in_word) words.emplace_back();
        is_in_word = true;
        if (each == '"') {
            is_quoted = !is_quoted;
        } else {
            words.back() += each;
        }
    }
    if (is_quoted) throw UsageError("a quote has no end; put \" behind its text");
    return words;
}

// Parses a step that is one of hxsimctl's own commands.
Step ParseCommand(const Words& words) {
    const Action action = ParseIncident(words);
    if (!action) {
        throw UsageError('"' + words[0] +
                         "\" is no step; docs/virtual-controller.md lists what can stand there");
    }
    return [action](Story& story) { action(story.driver()); };
}

Step ParseStep(const Words& words);

// Parses a step that the library must refuse with exactly the given code.
Step ParseRefused(const Words& words) {
    if (words.size() < 3) throw UsageError("write refused, the name of a code and a step");
    const hxcodes::StatusRow* const named = hxcodes::FindName(hxcodes::kRefusals, words[1]);
    if (named == nullptr) {
        throw UsageError('"' + words[1] +
                         "\" is no name of a refusal; codes/status.h lists them, such as no_space");
    }
    const hxcodes::StatusRow& refusal = *named;
    const Step step = ParseStep({words.begin() + 2, words.end()});
    return [refusal, step](Story& story) {
        try {
            step(story);
        } catch (const CallRefused& refused) {
            if (refused.code == refusal.code) return;
            throw Refused(std::string(refused.what()) + " It was to be refused with " +
                          std::string(refusal.name) + '.');
        }
        throw Refused("it was carried out; it was to be refused with " + std::string(refusal.name) +
                      '.');
    };
}

Step ParseStep(const Words& words) {
    if (words[0] == "expect") return ParseExpectation({words.begin() + 1, words.end()});
    if (words[0] == "refused") return ParseRefused(words);
    if (IsCall(words[0])) return ParseCall(words);
    return ParseCommand(words);
}

Line ParseLine(Words words) {
    Line line;
    if (words[0].starts_with('+')) {
        line.time = ParseTimeSpan(words[0].substr(1));
        words.erase(words.begin());
    } else if (words[0] == "at") {
        if (words.size() < 2) throw UsageError("at needs a time; write one such as at 3h");
        line.at = true;
        line.time = ParseTimeSpan(words[1]);
        words.erase(words.begin(), words.begin() + 2);
    }
    for (const std::string& word : words) line.text += (line.text.empty() ? "" : " ") + word;
    if (!words.empty()) line.step = ParseStep(words);
    return line;
}

class Reader {
public:
    explicit Reader(const std::string& file) { scenario_.file = file; }

    void Read(std::size_t number, std::string_view text) {
        Words words = SplitLine(text);
        if (words.empty()) return;
        if (words[0] == "repeat") return BeginRepeat(words, number);
        if (words[0] == "end") return EndRepeat(words);
        scenario_.lines.push_back(ParseLine(std::move(words)));
        scenario_.lines.back().number = number;
    }

    Scenario Finish() {
        if (times_ != 0) throw UsageError("repeat has no end; write end behind its last step");
        return std::move(scenario_);
    }

    std::size_t LineOfOpenRepeat() const { return repeat_line_; }

private:
    void BeginRepeat(const Words& words, std::size_t number) {
        if (times_ != 0) throw UsageError("repeat inside repeat; write end before it");
        if (words.size() != 2) throw UsageError("repeat needs a number, such as repeat 100");
        times_ = vexortools::ParseNumber(words[1], kMostRepetitions, "number of repetitions");
        if (times_ == 0) throw UsageError("repeat 0 does nothing; leave its steps out");
        first_ = scenario_.lines.size();
        repeat_line_ = number;
    }

    void EndRepeat(const Words& words) {
        if (words.size() != 1) throw UsageError("nothing stands behind end");
        if (times_ == 0) {
            throw UsageError("end without repeat; write repeat and a number before it");
        }
        const std::vector<Line> once(scenario_.lines.begin() + static_cast<std::ptrdiff_t>(first_),
                                     scenario_.lines.end());
        if (scenario_.lines.size() + once.size() * (times_ - 1) > kMostLines) {
            throw UsageError("so many repetitions make more than " + std::to_string(kMostLines) +
                             " steps; write fewer");
        }
        for (; times_ > 1; --times_) {
            scenario_.lines.insert(scenario_.lines.end(), once.begin(), once.end());
        }
        times_ = 0;
    }

    Scenario scenario_;
    std::uint64_t times_ = 0;  // count of the open repeat; 0: none
    std::size_t first_ = 0;    // its first line
    std::size_t repeat_line_ = 0;
};

}  // namespace

std::string PlaceOf(const std::string& file, std::size_t line) {
    return file + ':' + std::to_string(line) + ": ";
}

Scenario ReadScenario(const std::string& file, std::string_view text) {
    Reader reader(file);
    std::size_t number = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        ++number;
        try {
            reader.Read(number, text.substr(0, end));
        } catch (const UsageError& error) {
            throw UsageError(PlaceOf(file, number) + error.what());
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    try {
        return reader.Finish();
    } catch (const UsageError& error) {
        throw UsageError(PlaceOf(file, reader.LineOfOpenRepeat()) + error.what());
    }
}

}  // namespace hxsimctl
