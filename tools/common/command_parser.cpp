#include "common/command_parser.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>     // IWYU pragma: keep (App.hpp calls what it defines)
#include <CLI/Formatter.hpp>  // IWYU pragma: keep (likewise)
#include <algorithm>
#include <sstream>
#include <utility>

namespace vexortools {

std::size_t Typed::Count() const { return option_->count(); }

std::vector<std::string> Typed::Values() const { return option_->results(); }

Command Command::AddCommand(const std::string& name, const std::string& help) const {
    return Command(*app_->add_subcommand(name, help));
}

void Command::RequireCommands(std::size_t least, std::size_t most) const {
    app_->require_subcommand(least, most);
}

bool Command::HasCommand(const std::string& name) const {
    return !app_->get_subcommands([&](const CLI::App* each) { return each->get_name() == name; })
                .empty();
}

bool Command::CommandTyped() const { return !app_->get_subcommands().empty(); }

void Command::AddText(const std::string& name, std::string& value, const std::string& help) const {
    app_->add_option(name, value, help);
}

void Command::AddRequiredText(const std::string& name, std::string& value,
                              const std::string& help) const {
    app_->add_option(name, value, help)->required();
}

void Command::AddText(const std::string& name, const std::function<void(const std::string&)>& take,
                      const std::string& help) const {
    app_->add_option_function<std::string>(name, take, help);
}

void Command::AddFlag(const std::string& name, bool& value, const std::string& help) const {
    app_->add_flag(name, value, help);
}

Typed Command::AddFlag(const std::string& name) const { return Typed(*app_->add_flag(name)); }

Typed Command::AddOption(const std::string& name) const {
    return Typed(
        *app_->add_option(name)->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll));
}

Typed Command::AddArguments(const std::string& name) const {
    return Typed(*app_->add_option(name)->expected(CLI::detail::expected_max_vector_size));
}

void Command::WhenTyped(std::function<void()> done) const { app_->callback(std::move(done)); }

namespace {

// Whether the first option of that name, of the parser or of its commands, is a flag.
bool IsFlag(const CLI::App& app, const std::string& name) {
    const CLI::Option* const own = app.get_option_no_throw(name);
    if (own != nullptr) return own->get_expected_max() == 0;
    const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
    return std::ranges::any_of(commands, [&](const CLI::App* each) { return IsFlag(*each, name); });
}

// CLI11 takes a value of a flag, whatever it is, for true or false.
void RefuseFlagsWithValues(const CLI::App& app, const std::vector<std::string>& words) {
    for (const std::string& word : words) {
        if (word == "--") return;
        const std::size_t end = word.find('=');
        if (!word.starts_with("--") || end == std::string::npos) continue;
        const std::string name = word.substr(0, end);
        if (IsFlag(app, name)) throw UsageError(name + " takes no value");
    }
}

}  // namespace

CommandParser::CommandParser() : app_(std::make_unique<CLI::App>()), program_(*app_) {
    app_->set_help_flag();
}

CommandParser::CommandParser(const std::string& name, const std::string& version,
                             const std::string& about, const std::string& closing)
    : app_(std::make_unique<CLI::App>(about, name)), program_(*app_) {
    app_->set_version_flag("--version", version, "Print the version and exit");
    app_->footer(closing);
}

CommandParser::~CommandParser() = default;

void CommandParser::OptionsMayFollow() const { app_->fallthrough(); }

void CommandParser::Parse(std::vector<std::string> words) const {
    RefuseFlagsWithValues(*app_, words);
    std::ranges::reverse(words);  // CLI11 expects them in reverse order
    try {
        app_->parse(words);
    } catch (const CLI::ArgumentMismatch& error) {
        throw ValueMissing(error.what());
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) throw UsageError(error.what());
        std::ostringstream help;
        app_->exit(error, help, help);
        throw HelpAsked{help.str()};
    }
}

}  // namespace vexortools
