// The words of a command line, taken apart: commands, the commands below them, options, arguments.
// CLI11 does the work. Its headers cost a compiler eleven seconds, so only the source of this
// header includes them.
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

/// An option that was typed without the value that it takes. what() begins with its name and a
/// colon.
struct ValueMissing : UsageError {
    using UsageError::UsageError;
};

/// Help or the version was asked for; `text` is what to print.
struct HelpAsked {
    std::string text;
};

/// What was typed for an option or an argument. Lives as long as the parser.
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

/// A command as the parser knows it: a handle that may be copied, and that the parser outlives.
/// Names are "--name" or "--name,-n" for an option, and a bare word for an argument.
class Command {
public:
    explicit Command(CLI::App& app) : app_(&app) {}

    /// A command below this one.
    Command AddCommand(const std::string& name, const std::string& help) const;

    /// At least so many of the commands below it, and at most `most`; 0 for any number.
    void RequireCommands(std::size_t least, std::size_t most) const;

    /// Whether one below it has this name.
    bool HasCommand(const std::string& name) const;

    /// Whether one below it was typed.
    bool CommandTyped() const;

    /// An option or argument with one value, which stays as it is when nothing is typed.
    void AddText(const std::string& name, std::string& value, const std::string& help) const;

    /// The same, of one that must be typed.
    void AddRequiredText(const std::string& name, std::string& value,
                         const std::string& help) const;

    /// The same, its value taken by a function.
    void AddText(const std::string& name, const std::function<void(const std::string&)>& take,
                 const std::string& help) const;

    void AddFlag(const std::string& name, bool& value, const std::string& help) const;

    /// A flag, an option with a value each time it is typed, and arguments without an end: what was
    /// typed is asked for after parsing.
    Typed AddFlag(const std::string& name) const;
    Typed AddOption(const std::string& name) const;
    Typed AddArguments(const std::string& name) const;

    /// What is to be done when this command was typed, once all its words are known.
    void WhenTyped(std::function<void()> done) const;

private:
    CLI::App* app_;
};

/// Takes a program's words apart.
class CommandParser {
public:
    /// Knows no --help.
    CommandParser();

    /// Knows --help, which begins with `about` and ends with `closing`, and --version.
    CommandParser(const std::string& name, const std::string& version, const std::string& about,
                  const std::string& closing);
    ~CommandParser();
    CommandParser(const CommandParser&) = delete;
    CommandParser& operator=(const CommandParser&) = delete;

    /// The program as the command above all others.
    const Command& Program() const { return program_; }

    /// The program's own options may stand behind a command, too.
    void OptionsMayFollow() const;

    /// Throws UsageError, ValueMissing among them, or HelpAsked.
    void Parse(std::vector<std::string> words) const;

private:
    std::unique_ptr<CLI::App> app_;
    Command program_;
};

}  // namespace vexortools
