// The nouns, in the order of the help, and the options that commands share.
#include "shell/command.h"

namespace {

constexpr std::string_view kFormats = "table wide list json jsonl csv xml";

constexpr OptionRow kOutputOptions[] = {
    {"--output", "FORMAT", "How objects are printed", kFormats, false, "-o"},
    {"--columns", "KEYS", "The columns, by their keys, between commas; \"all\" for all of them"},
    {"--sort", "KEYS", "The order, by keys between commas; a \"-\" before a key reverses it"},
    {"--no-header", "", "No heading line in tables and csv"},
    {"--bytes", "", "Sizes in tables as whole bytes"},
    {"--si", "", "Sizes in tables in GB, of 1000^3 bytes, instead of GiB"},
    {"--utc", "", "Times in UTC instead of local time"},
};

constexpr OptionRow kChangeOptions[] = {
    {"--dry-run", "", "Show what would be sent and change nothing"},
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

std::span<const NounRow> Nouns() {
    static const NounRow nouns[] = {
        {"adapter", "The controllers and their settings", AdapterCommands()},
        {"enclosure", "Enclosures, their elements, expanders and port multipliers",
         EnclosureCommands()},
        {"disk", "Physical disks", DiskCommands()},
        {"vd", "Virtual disks", VirtualDiskCommands()},
        {"dg", "Disk groups", DiskGroupCommands()},
        {"task", "Background activities", TaskCommands()},
        {"battery", "The batteries of the adapters' caches", BatteryCommands()},
        {"flash", "Images in the adapters' flash", FlashCommands()},
        {"event", "What has happened", EventCommands()},
        {"user", "Logons and user groups", UserCommands()},
        {"counters", "What kind of object has changed", CountersCommands()},
        {"config", "Versions and the library's configuration", ConfigCommands()},
        {"check", "Health, for monitoring", CheckCommands()},
        {"call", "Any function of the library", CallCommands()},
        {"xml", "Command texts as they stand", XmlCommands()},
        {"completion", "Completion for bash, zsh and fish", CompletionCommands()},
    };
    return nouns;
}
