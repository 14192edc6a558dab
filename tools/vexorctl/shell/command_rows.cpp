#include "shell/command_rows.h"

#include <iterator>

#include "model/failure.h"
#include "output/cell_text.h"
#include "shell/nearest_word.h"

namespace vexorctl {

namespace {

constexpr std::string_view kFormats = "table wide list json jsonl csv xml";

constexpr OptionRow kOutputOptions[] = {
    {"--output", "FORMAT", "How objects are printed", kFormats, false, "-o"},
    {"--columns", "KEYS", "The columns, by their keys, between commas; \"all\" for all of them"},
    {"--sort", "KEYS", "The order, by keys between commas; a \"-\" before a key reverses it"},
    {"--no-header", "", "No heading line in tables and csv"},
    {"--no-formulas", "", "A ' in csv before what a spreadsheet would take for a formula"},
    {"--bytes", "", "Sizes in tables as whole bytes"},
    {"--si", "", "Sizes in tables in GB, of 1000^3 bytes, instead of GiB"},
    {"--utc", "", "Times in UTC instead of local time"},
    kCodesOption,
    kControllerOption,
};

constexpr OptionRow kChangeOptions[] = {
    {"--dry-run", "", "Show what would be sent and what it would do, and change nothing"},
    {"--plan", "FILE", "Write that to a new file for vexorctl apply, and change nothing"},
    {"--yes", "", "Go on without asking"},
};

}  // namespace

std::span<const OptionRow> OutputOptions() { return kOutputOptions; }
std::span<const OptionRow> ChangeOptions() { return kChangeOptions; }

std::vector<OptionRow> OptionsOf(const CommandRow& command) {
    std::vector<OptionRow> options(command.options.begin(), command.options.end());
    if (command.changes) {
        options.insert(options.end(), std::begin(kChangeOptions), std::end(kChangeOptions));
    }
    if (command.columns != nullptr) {
        options.insert(options.end(), std::begin(kOutputOptions), std::end(kOutputOptions));
    }
    return options;
}

const NounRow& FindNoun(std::span<const NounRow> nouns, const std::string& word) {
    std::vector<std::string> names;
    for (const NounRow& noun : nouns) {
        if (noun.name == word) return noun;
        names.emplace_back(noun.name);
    }
    throw UsageError("there is no \"" + word + "\"; say one of " + Joined(names, ", ") +
                     Meant(word, names));
}

const CommandRow& FindVerb(const NounRow& noun, const std::string& word) {
    std::vector<std::string> names;
    for (const CommandRow& command : noun.commands) {
        if (command.verb == word) return command;
        names.emplace_back(command.verb);
    }
    throw UsageError(std::string(noun.name) + " has no verb \"" + word + "\"; say one of " +
                     Joined(names, ", ") + Meant(word, names));
}

}  // namespace vexorctl
