// The command tree. Every command is a row: what it is called, what it takes, what it is for.
// Parsing,
// --help, completion, the manual pages and the table of functions in the manual are made from these
// rows and from nothing else.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "model/address.h"
#include "model/controller.h"
#include "model/exit_code.h"
#include "output/cell.h"

struct OptionRow {
    std::string_view name;   // "--size"
    std::string_view value;  // "SIZE"; empty for a switch
    std::string_view help;
    std::string_view choices{};   // the values it takes, between blanks; empty: any
    bool value_optional = false;  // --wait and --wait=10m
    std::string_view letter{};    // "-o"
};

/// What the targets of a command are: it decides what completion offers.
enum class Target {
    kNone,
    kAdapter,
    kEnclosure,
    kElement,
    kDisk,
    kVirtualDisk,
    kDiskGroup,
    kTask,
    kFile,
    kFunction,
    kText
};

enum class Arity { kNone, kAny, kOptional, kOne, kMany };

class Invocation;

struct CommandRow {
    std::string_view noun;
    std::string_view verb;  // empty for a noun that is a command itself
    std::string_view summary;
    Target target = Target::kNone;
    Arity arity = Arity::kNone;
    std::string_view target_name{};  // "DISK", as in the usage line
    std::span<const OptionRow> options{};
    std::string_view functions{};  // of the library, between blanks
    std::string_view examples[2]{};
    Exit (*run)(Invocation&) = nullptr;
    std::vector<ColumnInfo> (*columns)() = nullptr;  // null: it prints no objects
    std::string_view note{};                         // a paragraph for --help and the manual page
    bool changes = false;                            // takes --yes and --dry-run

    std::string Name() const {
        return verb.empty() ? std::string(noun) : std::string(noun) + " " + std::string(verb);
    }
};

/// A noun, with its commands in the order of the help.
struct NounRow {
    std::string_view name;
    std::string_view summary;
    std::span<const CommandRow> commands;
};

std::span<const NounRow> Nouns();

/// The options that every command with columns takes.
std::span<const OptionRow> OutputOptions();
/// The options that every command takes that changes something.
std::span<const OptionRow> ChangeOptions();
/// All of a command's options.
std::vector<OptionRow> OptionsOf(const CommandRow& command);

/// One run of a command: its row, what was typed, and the controller.
class Invocation {
public:
    Invocation(const CommandRow& row, std::map<std::string, std::vector<std::string>> options,
               std::vector<std::string> targets)
        : row_(row), options_(std::move(options)), targets_(std::move(targets)) {}

    const CommandRow& row() const { return row_; }
    const std::vector<std::string>& targets() const { return targets_; }
    Controller& controller() { return controller_; }

    bool Has(std::string_view option) const;
    /// The last value given; null when the option was not given, "" when it stood alone.
    const std::string* Get(std::string_view option) const;
    std::string Get(std::string_view option, std::string_view otherwise) const;
    /// A whole number. Throws UsageError, which names the option.
    std::optional<std::uint64_t> Number(std::string_view option, std::uint64_t max) const;

private:
    const CommandRow& row_;
    std::map<std::string, std::vector<std::string>> options_;
    std::vector<std::string> targets_;
    Controller controller_;
};

/// Reads the command line, finds the row and runs it.
Exit RunCommandLine(int argc, const char* const* argv);

// The nouns, one source each.
std::span<const CommandRow> AdapterCommands();
std::span<const CommandRow> EnclosureCommands();
std::span<const CommandRow> DiskCommands();
std::span<const CommandRow> VirtualDiskCommands();
std::span<const CommandRow> DiskGroupCommands();
std::span<const CommandRow> TaskCommands();
std::span<const CommandRow> BatteryCommands();
std::span<const CommandRow> FlashCommands();
std::span<const CommandRow> EventCommands();
std::span<const CommandRow> UserCommands();
std::span<const CommandRow> CountersCommands();
std::span<const CommandRow> ConfigCommands();
std::span<const CommandRow> CheckCommands();
std::span<const CommandRow> CallCommands();
std::span<const CommandRow> XmlCommands();
std::span<const CommandRow> CompletionCommands();
