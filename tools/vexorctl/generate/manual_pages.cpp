// Every page has the same sections, each once; what all verbs take stands in OPTIONS and not beside
// each of them.
#include "generate/manual_pages.h"

#include <algorithm>
#include <cctype>

#include "model/exit_code.h"
#include "shell/help.h"

namespace vexorctl {

namespace {

// The day on which the form of the pages was last changed. That of the build would make two builds
// of one source differ.
constexpr std::string_view kDate = "November 22, 2026";
constexpr std::size_t kLineWidth = 78;

struct Entry {
    std::string_view name;
    std::string_view text;
};

constexpr Entry kEnvironment[] = {
    {"VEXORAPI_ROOT",
     "A folder that stands in for / wherever a fixed path is meant. Programs with privileges of "
     "another user do not look at it."},
    {"VEXORAPI_CONTROLLER",
     "The controller, as --controller says it, which goes before it. Programs with privileges of "
     "another user do not look at it."},
    {"NO_COLOR", "Not empty: no colours on a terminal."},
    {"HXSIM_STATE", "The state file of the virtual controller, where that is the controller."},
};

constexpr Entry kFiles[] = {
    {"/vexorapi.ini", "The library's configuration."},
    {"/opt/kestrel/raid/db/vx_hx_raid.ev",
     "The event store, where the configuration names no other."},
    {"/etc/vexorapi/codes.json",
     "What the codes of a controller mean that vexorctl does not know."},
    {"/run/vexorctl.lock", "Held while something is changed: one vexorctl acts at a time."},
};

// ---- mdoc ----

bool EndsSentence(std::string_view word) {
    while (!word.empty() && (word.back() == '"' || word.back() == ')')) word.remove_suffix(1);
    return !word.empty() && (word.back() == '.' || word.back() == '!' || word.back() == '?');
}

std::string Escaped(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '\\') {
            out += "\\e";
        } else {
            out += c;
        }
    }
    return out;
}

// Running text: each sentence begins a line, and no line begins as a request does.
std::string Prose(std::string_view text) {
    std::string out;
    std::string line;
    const auto flush = [&] {
        if (line.empty()) return;
        if (line.front() == '.' || line.front() == '\'') out += "\\&";
        out.append(line).append("\n");
        line.clear();
    };
    while (!text.empty()) {
        const std::string word = Escaped(text.substr(0, text.find(' ')));
        text.remove_prefix(std::min(text.find(' '), text.size() - 1) + 1);
        if (!line.empty() && line.size() + 1 + word.size() > kLineWidth) flush();
        if (!line.empty()) line += ' ';
        line += word;
        if (EndsSentence(word)) flush();
    }
    flush();
    return out;
}

// What a macro is given as it stands: in quotes where it has blanks, and no delimiter by itself.
std::string Argument(std::string_view text) {
    const std::string escaped = Escaped(text);
    return escaped.find(' ') == std::string::npos ? escaped : "\"" + escaped + "\"";
}

std::string UpperCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::toupper(c); });
    return text;
}

std::string Literal(const std::string& lines) {
    return ".Bd -literal -offset indent\n" + Escaped(lines) + ".Ed\n";
}

std::string Item(const OptionRow& option) {
    std::string item = ".It Fl ";
    if (!option.letter.empty()) item.append(option.letter.substr(1)).append(" , ");
    item += option.name.substr(1);
    if (!option.value.empty()) {
        item += option.value_optional ? " Ns Op = Ns Ar " : " Ar ";
        item += Argument(option.value);
    }
    item += "\n" + Prose(std::string(option.help) + ".");
    if (!option.choices.empty()) {
        item += Prose("One of " + std::string(option.choices) + ".");
    }
    return item;
}

template <class Rows>
std::string Options(const Rows& options) {
    std::string out;
    for (const OptionRow& option : options) out += Item(option);
    return out.empty() ? out : ".Bl -tag -width Ds\n" + out + ".El\n";
}

std::string Entries(std::string_view macro, std::span<const Entry> entries) {
    std::string out = ".Bl -tag -width Ds\n";
    for (const Entry& entry : entries) {
        out.append(".It ").append(macro).append(" ").append(entry.name).append("\n");
        out += Prose(entry.text);
    }
    return out + ".El\n";
}

// ---- Sections ----

std::string Heading(const std::string& name, std::string_view summary) {
    return ".Dd " + std::string(kDate) + "\n.Dt " + UpperCase(name) + " 1\n.Os vexorctl " +
           VEXORCTL_VERSION + "\n.Sh NAME\n.Nm " + name + "\n.Nd " + std::string(summary) + "\n";
}

// The usage line of --help, its words as macros: "vexorctl disk list [DISK...] [OPTION...]".
std::string Synopsis(const CommandRow& command) {
    std::string out = ".Nm vexorctl\n.Cm " + command.Name() + "\n";
    const std::string line = UsageLine(command);
    std::string_view words = line;
    words.remove_prefix(std::string_view("vexorctl ").size() + command.Name().size());
    while (!words.empty()) {
        words.remove_prefix(1);  // the blank
        std::string word(words.substr(0, words.find(' ')));
        words.remove_prefix(word.size());
        const bool optional = word.front() == '[';
        if (optional) word = word.substr(1, word.size() - 2);
        const bool repeats = word.ends_with("...");
        if (repeats) word.resize(word.size() - 3);
        out.append(optional ? ".Op Ar " : ".Ar ").append(word).append(repeats ? " ...\n" : "\n");
    }
    return out;
}

std::string Closing(std::string_view noun, const std::string& examples) {
    std::string out = ".Sh ENVIRONMENT\n" + Entries("Ev", kEnvironment) + ".Sh FILES\n" +
                      Entries("Pa", kFiles) + ".Sh EXIT STATUS\n.Bl -tag -width Ds -compact\n";
    for (const ExitMeaning& row : ExitsOf(noun)) {
        out.append(".It ").append(std::to_string(CodeOf(row.exit))).append("\n");
        out += Prose(std::string(row.meaning) + ".");
    }
    return out + ".El\n.Sh EXAMPLES\n" + Literal(examples);
}

std::string Description(const CommandRow& command) {
    std::string out = ".Ss " + command.Name() + "\n" + Prose(std::string(command.summary) + ".");
    if (!command.note.empty()) out += ".Pp\n" + Prose(command.note);
    out += Options(command.options);
    if (command.columns == nullptr) return out;
    out += ".Pp\nColumns:\n.Bl -tag -width Ds -compact\n";
    for (const ColumnInfo& column : command.columns()) {
        out.append(".It Ic ").append(column.key).append("\n");
        out += Prose(std::string(column.help) + ".");
    }
    return out + ".El\n";
}

constexpr OptionRow kHelpOption{"--help", "", "Tell all about the program, the noun or the verb"};
constexpr OptionRow kVersionOption{"--version", "", "Print the version"};

std::string NounPage(const NounRow& noun) {
    const std::string name = "vexorctl-" + std::string(noun.name);
    std::string out = Heading(name, noun.summary) + ".Sh SYNOPSIS\n";
    std::string description;
    std::string examples;
    std::vector<OptionRow> options{kHelpOption};
    bool change = false;
    bool print = false;
    for (const CommandRow& command : noun.commands) {
        out += Synopsis(command);
        description += Description(command);
        for (const std::string_view example : command.examples)
            examples.append(example).append("\n");
        change |= command.changes;
        print |= command.columns != nullptr;
    }
    if (change) options.insert(options.end(), ChangeOptions().begin(), ChangeOptions().end());
    if (print) options.insert(options.end(), OutputOptions().begin(), OutputOptions().end());
    out += ".Sh DESCRIPTION\n" + description + ".Sh OPTIONS\n" +
           Prose("Beside those of each verb above:") + Options(options);
    return out + Closing(noun.name, examples) + ".Sh SEE ALSO\n.Xr vexorctl 1\n";
}

std::string ProgramPage(std::span<const NounRow> nouns) {
    std::string out =
        Heading("vexorctl", "manages RAID controllers through libvexorapi") +
        ".Sh SYNOPSIS\n.Nm\n.Ar NOUN VERB\n.Op Ar TARGET ...\n.Op Ar OPTION ...\n.Nm\n"
        ".Sh DESCRIPTION\n";
    out += Prose(
        "Without a noun it shows everything on one screen, as vexorctl overview does. Objects are "
        "called a0, a0/pd12, a0/vd1, a0/dg2, a0/enc0, a0/enc0/el3, name:NAME or serial:NUMBER.");
    out += ".Pp\nThe nouns, each of which has a page of its own:\n.Bl -tag -width completion\n";
    for (const NounRow& noun : nouns) {
        out.append(".It Cm ").append(noun.name).append("\n");
        out += Prose(std::string(noun.summary) + ".");
    }
    out += ".El\n.Sh OPTIONS\n";
    std::vector<OptionRow> options{kHelpOption, kVersionOption};
    out += Options(options) + ".Pp\n" + Prose("Verbs that change something:") +
           Options(ChangeOptions()) + ".Pp\n" + Prose("Verbs that print objects:") +
           Options(OutputOptions());
    out += Closing("", "vexorctl disk list\nvexorctl check\nvexorctl vd create --help\n") +
           ".Sh SEE ALSO\n";
    std::vector<std::string> pages;
    for (const NounRow& noun : nouns) pages.push_back("vexorctl-" + std::string(noun.name));
    std::ranges::sort(pages);
    for (const std::string& page : pages) out += ".Xr " + page + " 1 ,\n";
    return out +
           ".Xr libvexorapi 3 ,\n.Xr vexorapi-events 5 ,\n.Xr vexorapi.ini 5 ,\n.Xr vexorctl-codes "
           "5\n";
}

}  // namespace

std::vector<ManualPage> ManualPages(std::span<const NounRow> nouns) {
    std::vector<ManualPage> pages{{"vexorctl", ProgramPage(nouns)}};
    for (const NounRow& noun : nouns) {
        pages.push_back({"vexorctl-" + std::string(noun.name), NounPage(noun)});
    }
    return pages;
}

}  // namespace vexorctl
