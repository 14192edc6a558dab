// The rows of which the command tree is made. Every command is a row: what it is called, what it
// takes, what it is for. Parsing, --help, completion, the manual pages and the table of functions
// in the manual are made from these rows and from nothing else.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "model/exit_code.h"
#include "output/cell.h"

namespace vexorctl {

struct OptionRow {
    std::string_view name;   // "--size"
    std::string_view value;  // "SIZE"; empty for a switch
    std::string_view help;
    std::string_view choices{};   // the values it takes, between blanks; empty: any
    bool value_optional = false;  // --wait and --wait=10m
    std::string_view letter{};    // "-o"
};

/// Of every command that shows codes of the controller.
inline constexpr OptionRow kCodesOption{
    "--codes", "FILE", "What the codes of a controller mean that vexorctl does not know itself"};

/// Of every command that asks a controller.
inline constexpr OptionRow kControllerOption{
    "--controller", "NAME", "Over this one: virtual, linuxmd, or the path of a libhxraid.so"};

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
    std::span<const std::string_view> functions{};  // of the library: kNamesOf
    std::string_view examples[2]{};
    Exit (*run)(Invocation&) = nullptr;
    std::vector<ColumnInfo> (*columns)() = nullptr;  // null: it prints no objects
    std::string_view note{};                         // a paragraph for --help and the manual page
    bool changes = false;                            // takes --yes and --dry-run
    // What it prints and exits with instead where it cannot even begin; null: as every command.
    Exit (*cannot_begin)(const std::string& reason) = nullptr;

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

/// The noun of that name, and its command of that verb. Throw UsageError, which names those that
/// there are.
const NounRow& FindNoun(std::span<const NounRow> nouns, const std::string& word);
const CommandRow& FindVerb(const NounRow& noun, const std::string& word);

/// The options that every command with columns takes.
std::span<const OptionRow> OutputOptions();
/// The options that every command takes that changes something.
std::span<const OptionRow> ChangeOptions();
/// All of a command's options.
std::vector<OptionRow> OptionsOf(const CommandRow& command);

}  // namespace vexorctl
