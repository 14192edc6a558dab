#include "shell/help.h"

#include <algorithm>

#include "model/exit_code.h"
#include "model/failure.h"
#include "output/cell.h"

namespace vexorctl {

namespace {

constexpr std::size_t kWidth = 79;

void AppendRow(std::string& out, std::string_view left, std::string_view right, std::size_t width) {
    std::string line = "  " + std::string(left);
    const std::size_t indent = width + 4;
    if (line.size() + 2 > indent) {
        out += line + "\n";
        line.assign(indent, ' ');
    } else {
        line.append(indent - line.size(), ' ');
    }
    bool fresh = true;
    while (!right.empty()) {
        const std::string_view word = right.substr(0, right.find(' '));
        if (!fresh && line.size() + 1 + word.size() > kWidth) {
            out += line + "\n";
            line.assign(indent, ' ');
            fresh = true;
        }
        if (!fresh) line += ' ';
        line += word;
        fresh = false;
        right.remove_prefix(std::min(word.size() + 1, right.size()));
    }
    out += line + "\n";
}

std::string OptionText(const OptionRow& option) {
    std::string text = option.letter.empty() ? "" : std::string(option.letter) + ", ";
    text += option.name;
    if (!option.value.empty()) {
        text += option.value_optional ? "[=" + std::string(option.value) + "]"
                                      : " " + std::string(option.value);
    }
    return text;
}

std::string OptionHelp(const OptionRow& option) {
    std::string text(option.help);
    if (!option.choices.empty()) text += ": " + std::string(option.choices);
    return text;
}

std::string ExitCodes(std::string_view noun) {
    std::string out = "Exit codes:\n";
    for (const ExitMeaning& row : ExitsOf(noun)) {
        const std::string code = std::to_string(CodeOf(row.exit));
        AppendRow(out, code, row.meaning, code.size());
    }
    return out;
}

constexpr std::string_view kSeeAlso =
    "Objects are called a0, a0/pd12, a0/vd1, a0/dg2, a0/enc0, a0/enc0/el3, name:NAME or "
    "serial:NUMBER.";

}  // namespace

std::string UsageLine(const CommandRow& command) {
    std::string usage = "vexorctl " + command.Name();
    const std::string target(command.target_name);
    switch (command.arity) {
        case Arity::kNone:
            break;
        case Arity::kAny:
            usage += " [" + target + "...]";
            break;
        case Arity::kOptional:
            usage += " [" + target + "]";
            break;
        case Arity::kOne:
            usage += " " + target;
            break;
        case Arity::kMany:
            usage += " " + target + "...";
            break;
    }
    if (!OptionsOf(command).empty()) usage += " [OPTION...]";
    return usage;
}

std::string ProgramHelp(std::span<const NounRow> nouns) {
    std::string out =
        "vexorctl manages RAID controllers through libvexorapi.\n"
        "\nUsage: vexorctl NOUN VERB [TARGET...] [OPTION...]\n"
        "       vexorctl            everything on one screen, as \"vexorctl overview\"\n\nNouns:\n";
    for (const NounRow& noun : nouns) AppendRow(out, noun.name, noun.summary, 12);
    out += "\n";
    AppendRow(out, "", kSeeAlso, 0);
    out +=
        "\nExamples:\n"
        "  vexorctl disk list\n"
        "  vexorctl check\n"
        "\n\"vexorctl NOUN --help\" lists the verbs of a noun, \"vexorctl NOUN VERB --help\" "
        "tells\n"
        "all about one of them. \"vexorctl --version\" prints the version.\n\n";
    return out + ExitCodes("");
}

std::string NounHelp(const NounRow& noun) {
    std::string out = std::string(noun.summary) + ".\n\nUsage:\n";
    std::size_t width = 0;
    for (const CommandRow& command : noun.commands) {
        out += "  " + UsageLine(command) + "\n";
        width = std::max(width, command.verb.size());
    }
    out += "\nVerbs:\n";
    for (const CommandRow& command : noun.commands) {
        AppendRow(out, command.verb, command.summary, width);
    }
    out += "\nExamples:\n";
    std::size_t shown = 0;
    for (const CommandRow& command : noun.commands) {
        for (const std::string_view example : command.examples) {
            if (shown < 2) out.append("  ").append(example).append("\n");
            ++shown;
        }
    }
    return out + "\n" + ExitCodes(noun.name);
}

std::string CommandHelp(const CommandRow& command) {
    std::string out = std::string(command.summary) + ".\n\nUsage: " + UsageLine(command) + "\n";
    if (!command.note.empty()) {
        out += "\n";
        AppendRow(out, "", command.note, 0);
    }
    const std::vector<OptionRow> options = OptionsOf(command);
    if (!options.empty()) {
        out += "\nOptions:\n";
        for (const OptionRow& option : options) {
            AppendRow(out, OptionText(option), OptionHelp(option), 24);
        }
    }
    if (command.columns != nullptr) {
        const std::vector<ColumnInfo> columns = command.columns();
        std::size_t width = 0;
        for (const ColumnInfo& column : columns) width = std::max(width, column.key.size());
        out += "\nColumns (a table shows those with a *, every other format all of them):\n";
        for (const ColumnInfo& column : columns) {
            const std::string mark = column.place != Place::kWide ? "*" : "";
            AppendRow(out, std::string(column.key) + mark, column.help, width + 1);
        }
    }
    out += "\nExamples:\n";
    for (const std::string_view example : command.examples) {
        out.append("  ").append(example).append("\n");
    }
    return out + "\n" + ExitCodes(command.noun);
}

std::string HelpFor(std::span<const NounRow> nouns, const std::vector<std::string>& words) {
    const NounRow& noun = FindNoun(nouns, words.front());
    const bool has_verbs = !noun.commands.front().verb.empty();
    if (words.size() > (has_verbs ? 2U : 1U)) {
        throw UsageError("\"" + words.back() + "\" is no word of a command");
    }
    if (words.size() == 2) return CommandHelp(FindVerb(noun, words.back()));
    return has_verbs ? NounHelp(noun) : CommandHelp(noun.commands.front());
}

}  // namespace vexorctl
