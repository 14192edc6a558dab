#include "shell/command_line.h"

#include <algorithm>

#include "common/address.h"
#include "common/command_parser.h"
#include "model/controller_choice.h"
#include "model/failure.h"
#include "model/fault.h"
#include "model/library_session.h"
#include "output/streams.h"
#include "shell/arguments.h"
#include "shell/help.h"
#include "shell/nearest_word.h"
#include "shell/present.h"

namespace vexorctl {

namespace {

// Stands for "given without a value".
constexpr std::string_view kAlone = "\x02";

bool IsHelp(const std::string& word) { return word == "--help" || word == "-h"; }

// The words that stand between blanks.
std::vector<std::string> WordsIn(std::string_view words) {
    std::vector<std::string> parts;
    while (!words.empty()) {
        const std::size_t end = std::min(words.find(' '), words.size());
        parts.emplace_back(words.substr(0, end));
        words.remove_prefix(std::min(end + 1, words.size()));
    }
    return parts;
}

bool Contains(std::string_view words, std::string_view word) {
    while (!words.empty()) {
        const std::size_t blank = words.find(' ');
        if (words.substr(0, blank) == word) return true;
        words = blank == std::string_view::npos ? std::string_view() : words.substr(blank + 1);
    }
    return false;
}

// The options of every command may stand before the noun too: they are moved behind it. Returns how
// many words that were.
std::size_t MoveLeadingOptions(std::vector<std::string>& words) {
    std::vector<std::string> leading;
    while (!words.empty() && words.front().starts_with('-')) {
        const std::string name = words.front().substr(0, words.front().find('='));
        const auto found = std::ranges::find_if(OutputOptions(), [&](const OptionRow& option) {
            return option.name == name || option.letter == name;
        });
        if (found == OutputOptions().end()) break;
        const bool takes_next = !found->value.empty() && name == words.front();
        for (int i = 0; i < (takes_next ? 2 : 1) && !words.empty(); ++i) {
            leading.push_back(words.front());
            words.erase(words.begin());
        }
    }
    const auto end = std::ranges::find(words, "--");
    words.insert(end, leading.begin(), leading.end());
    return leading.size();
}

void CheckArity(const CommandRow& row, std::size_t count) {
    const bool needs = row.arity == Arity::kOne || row.arity == Arity::kMany;
    if (needs && count == 0) {
        throw UsageError(std::string(row.target_name) + " is missing: " + UsageLine(row));
    }
    const std::size_t most = row.arity == Arity::kNone                                   ? 0
                             : row.arity == Arity::kOne || row.arity == Arity::kOptional ? 1
                                                                                         : count;
    if (count > most) throw UsageError("too many arguments: " + UsageLine(row));
}

// Whether "a0/pd4-8" can stand for five targets.
bool TakesRanges(const CommandRow& row) {
    return row.target != Target::kText && row.target != Target::kFile &&
           row.target != Target::kFunction &&
           (row.arity == Arity::kAny || row.arity == Arity::kMany);
}

std::vector<std::string> ValuesOf(const OptionRow& row, const std::vector<std::string>& typed) {
    std::vector<std::string> values;
    for (std::string value : typed) {
        value = value == kAlone ? std::string() : Unmarked(std::move(value));
        if (!row.choices.empty() && !Contains(row.choices, value)) {
            throw UsageError(std::string(row.name) + " cannot be \"" + value + "\"; say one of: " +
                             std::string(row.choices) + Meant(value, WordsIn(row.choices)));
        }
        values.push_back(std::move(value));
    }
    return values;
}

// What was meant by the first word that looks like an option and is none.
std::string MeantOption(const std::vector<OptionRow>& rows, const std::vector<std::string>& words) {
    std::vector<std::string> names;
    for (const OptionRow& row : rows) names.emplace_back(row.name);
    for (const std::string& word : words) {
        const std::string name = word.substr(0, word.find('='));
        if (!name.starts_with("--") || std::ranges::find(names, name) != names.end()) continue;
        return Meant(name, names);
    }
    return "";
}

Exit Help(const std::string& text) {
    PrintText(text);
    return Exit::kDone;
}

// A script that asked for a document gets one however the command ends, except for wrong usage,
// which the script has to correct.
Exit RunDocumentingFailure(const CommandRow& row, Invocation& invocation) {
    try {
        ChooseController(invocation.Get("--controller"));
        if (const std::string* const codes = invocation.Get("--codes")) {
            invocation.controller().UseCodesFile(*codes);
        }
        if (row.changes) invocation.controller().RememberSightings();
        return row.run(invocation);
    } catch (const Failure& failure) {
        Fault fault = failure.fault;
        fault.message = failure.what();
        PrintEarlyEnd(invocation, fault);
        throw;
    } catch (const Unavailable& failure) {
        PrintEarlyEnd(invocation, {.address = failure.subject, .message = failure.what()});
        throw;
    }
}

Exit ParseAndRun(const CommandRow& row, const std::vector<std::string>& words) {
    Invocation invocation = ReadWords(row, words);
    return RunDocumentingFailure(row, invocation);
}

[[noreturn]] void ThrowNoVerb(const NounRow& noun) {
    std::string verbs;
    for (const CommandRow& command : noun.commands) {
        verbs.append(verbs.empty() ? "" : ", ").append(command.verb);
    }
    throw UsageError("a verb is missing; say one of " + verbs);
}

Exit Run(std::span<const NounRow> nouns, std::vector<std::string> words, std::string& where) {
    const std::size_t leading = MoveLeadingOptions(words);
    if (words.size() == leading) words.insert(words.begin(), "overview");
    if (words.front() == "--version") return Help("vexorctl " VEXORCTL_VERSION "\n");
    if (IsHelp(words.front())) return Help(ProgramHelp(nouns));
    if (words.front().starts_with('-')) {
        throw UsageError("there is no option " + words.front().substr(0, words.front().find('=')));
    }
    const NounRow& noun = FindNoun(nouns, words.front());
    words.erase(words.begin());
    where.append(" ").append(noun.name);
    const bool has_verbs = !noun.commands.front().verb.empty();
    if (has_verbs) {
        if (words.empty() || (words.front().starts_with('-') && !IsHelp(words.front()))) {
            ThrowNoVerb(noun);
        }
        if (IsHelp(words.front()) || words.front() == "help") return Help(NounHelp(noun));
    }
    // A noun that is a command itself may have verbs as well, which its own arguments give way to.
    const bool names_verb =
        has_verbs ||
        (!words.empty() && !words.front().empty() &&
         std::ranges::find(noun.commands, words.front(), &CommandRow::verb) != noun.commands.end());
    const CommandRow& row = names_verb ? FindVerb(noun, words.front()) : noun.commands.front();
    if (names_verb) {
        words.erase(words.begin());
        where.append(" ").append(row.verb);
    }
    const auto end = std::ranges::find(words, "--");
    if (std::any_of(words.begin(), end, IsHelp)) return Help(CommandHelp(row));
    if (row.cannot_begin == nullptr) return ParseAndRun(row, words);
    try {
        return ParseAndRun(row, words);
    } catch (const Failure& failure) {
        return row.cannot_begin(failure.what());
    } catch (const Unavailable& failure) {
        return row.cannot_begin(failure.what());
    } catch (const UsageError& failure) {
        return row.cannot_begin(std::string(failure.what()) + " (see " + where + " --help)");
    }
}

}  // namespace

Invocation ReadWords(const CommandRow& row, const std::vector<std::string>& typed) {
    const vexortools::CommandParser parser;
    const vexortools::Command& program = parser.Program();
    const std::vector<OptionRow> rows = OptionsOf(row);
    std::vector<vexortools::Typed> options;
    for (const OptionRow& option : rows) {
        std::string names(option.name);
        if (!option.letter.empty()) names.append(",").append(option.letter);
        options.push_back(option.value.empty() ? program.AddFlag(names) : program.AddOption(names));
    }
    const vexortools::Typed targets = program.AddArguments("TARGET");

    std::vector<std::string> words = MarkedArguments(typed);
    for (std::string& word : words) {
        const auto alone = std::ranges::find_if(rows, [&](const OptionRow& option) {
            return option.value_optional && option.name == word;
        });
        if (alone != rows.end()) word.append("=").append(kAlone);
    }
    try {
        parser.Parse(words);
    } catch (const vexortools::ValueMissing& error) {
        const std::string text = WithoutMarks(error.what());
        throw UsageError(text.substr(0, text.find(':')) + " needs a value");
    } catch (const UsageError& error) {
        throw UsageError(WithoutMarks(error.what()) + MeantOption(rows, words));
    }

    std::map<std::string, std::vector<std::string>> values;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (options[i].Count() == 0) continue;
        std::vector<std::string>& list = values[std::string(rows[i].name)];
        if (!rows[i].value.empty()) list = ValuesOf(rows[i], options[i].Values());
    }
    std::vector<std::string> given;
    for (const std::string& word : targets.Values()) given.push_back(Unmarked(word));
    if (TakesRanges(row)) given = vexortools::WithRangesWritten(given);
    CheckArity(row, given.size());
    return {row, std::move(values), std::move(given)};
}

Exit RunCommandLine(std::span<const NounRow> nouns, int argc, const char* const* argv) {
    std::string where = "vexorctl";
    try {
        return Run(nouns, std::vector<std::string>(argv + std::min(argc, 1), argv + argc), where);
    } catch (const UsageError& failure) {
        throw UsageError(std::string(failure.what()) + " (see " + where + " --help)");
    }
}

}  // namespace vexorctl
