// Parses the words of a command line: commands, subcommands, options and arguments. CLI11 does the
// work. Its headers cost a compiler eleven seconds, so only the source of this header includes
// them.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "common/failure.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace vexortools {

/// An option was typed without its value. what() begins with the option's name and a colon.
struct ValueMissing : UsageError {
    using UsageError::UsageError;
};

/// Help or the version was requested; `text` is to be printed.
struct HelpAsked {
    std::string text;
};

/// The values typed for an option or an argument. Valid as long as the parser.
class Typed {
public:
    explicit Typed(const CLI::Option& option) : option_(&option) {}

    /// How often it was typed.
    std::size_t Count() const;

    /// Its values, in the order in which they were typed.
    std::vector<std::string> Values() const;

private:
    const CLI::Option* option_;
};

/// A copyable handle to a command of the parser, which must outlive it. Names are "--name" or
/// "--name,-n" for an option, and a bare word for an argument.
class Command {
public:
    explicit Command(CLI::App& app) : app_(&app) {}

    /// Adds a subcommand.
    Command AddCommand(const std::string& name, const std::string& help) const;

    /// Requires `least` to `most` subcommands; `most` 0 for any number.
    void RequireCommands(std::size_t least, std::size_t most) const;

    /// Whether a subcommand has this name.
    bool HasCommand(const std::string& name) const;

    /// Whether a subcommand was typed.
    bool CommandTyped() const;

    /// Adds an option or argument with one value, which stays unchanged when nothing is typed.
    void AddText(const std::string& name, std::string& value, const std::string& help) const;

    /// The same for a required option or argument.
    void AddRequiredText(const std::string& name, std::string& value,
                         const std::string& help) const;

    /// The same with a function that receives the value.
    void AddText(const std::string& name, const std::function<void(const std::string&)>& take,
                 const std::string& help) const;

    void AddFlag(const std::string& name, bool& value, const std::string& help) const;

    /// Add a flag, an option that may be repeated with a value each time, and any number of
    /// arguments. Ask the result for the values after parsing.
    Typed AddFlag(const std::string& name) const;
    Typed AddOption(const std::string& name) const;
    Typed AddArguments(const std::string& name) const;

    /// Sets the function to call when this command was typed, after all its words were parsed.
    void WhenTyped(std::function<void()> done) const;

private:
    CLI::App* app_;
};

/// Parses a program's words.
class CommandParser {
public:
    /// A parser without --help.
    CommandParser();

    /// A parser with --version and with --help, which begins with `about` and ends with `closing`.
    CommandParser(const std::string& name, const std::string& version, const std::string& about,
                  const std::string& closing);
    ~CommandParser();
    CommandParser(const CommandParser&) = delete;
    CommandParser& operator=(const CommandParser&) = delete;

    /// The top-level command.
    const Command& Program() const { return program_; }

    /// Permits the program's own options after a command as well.
    void OptionsMayFollow() const;

    /// Throws UsageError (also as ValueMissing) or HelpAsked.
    void Parse(std::vector<std::string> words) const;

private:
    std::unique_ptr<CLI::App> app_;
    Command program_;
};

}  // namespace vexortools
