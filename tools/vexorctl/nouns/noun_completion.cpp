// vexorctl completion ...: scripts for the shells, which ask the binary itself what can follow, so
// that they never differ from the command tree and know the objects that are there.
#include <algorithm>
#include <cctype>

#include "common/address.h"
#include "common/terminal_text.h"
#include "library_fields.h"
#include "model/adapters.h"
#include "model/ask_controller.h"
#include "model/disk_groups.h"
#include "model/disks.h"
#include "model/enclosures.h"
#include "model/exit_code.h"
#include "model/library_functions.h"
#include "model/tasks.h"
#include "model/virtual_disks.h"
#include "nouns/nouns.h"
#include "output/cell.h"
#include "output/streams.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"

namespace vexorctl::completion_noun {

namespace {

// The first line that the program prints for a shell says whether files may follow, too.
constexpr std::string_view kBash = R"(# bash completion for vexorctl
_vexorctl() {
    # readline takes a word with a colon or an equals sign for several words: they are put together
    # again where no blank stands between them.
    local words=() word rest=$COMP_LINE i cut=
    for ((i = 0; i <= COMP_CWORD; i++)); do
        word=${COMP_WORDS[i]}
        if ((i > 0)) && [[ $rest != [[:blank:]]* ]]; then
            words[${#words[@]} - 1]+=$word
        else
            words+=("$word")
        fi
        rest=${rest#"${rest%%[![:blank:]]*}"}
        rest=${rest#"$word"}
    done
    local lines=()
    mapfile -t lines < <(vexorctl completion candidates --for bash -- "${words[@]:1}" 2>/dev/null)
    [[ ${lines[0]} == files ]] && compopt -o default
    COMPREPLY=("${lines[@]:1}")
    # Only what follows the last part is inserted.
    word=${words[${#words[@]} - 1]}
    cut=${word%"${COMP_WORDS[COMP_CWORD]}"}
    [[ ${COMP_WORDS[COMP_CWORD]} == [:=] ]] && cut=$word
    COMPREPLY=("${COMPREPLY[@]#"$cut"}")
}
complete -F _vexorctl vexorctl
)";

constexpr std::string_view kZsh = R"(#compdef vexorctl
# zsh completion for vexorctl
_vexorctl() {
    local -a lines
    lines=("${(@f)$(vexorctl completion candidates --for zsh -- "${(@Q)words[2,CURRENT]}" 2>/dev/null)}")
    local first=${lines[1]}
    shift lines
    # Without -Q: zsh quotes what it inserts, and a name stays a name.
    (( ${#lines} )) && compadd -- "${lines[@]}"
    [[ $first == files ]] && _files
}
if [[ $funcstack[1] == _vexorctl ]]; then
    _vexorctl "$@"
else
    compdef _vexorctl vexorctl
fi
)";

constexpr std::string_view kFish = R"(# fish completion for vexorctl
function __vexorctl_lines
    set -l words (commandline -opc) (commandline -ct | string unescape)
    vexorctl completion candidates --for fish -- $words[2..-1] 2>/dev/null
end
function __vexorctl_wants_files
    string match -q files (__vexorctl_lines)[1]
end
complete -c vexorctl -f -a '(__vexorctl_lines)[2..-1]'
complete -c vexorctl -n __vexorctl_wants_files -F
)";

// ---- Words as bash has them ------------------------------------------------------------------

bool IsPlain(char c) {
    constexpr std::string_view kPlain = "_@%+=:,./-";
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x80 || std::isalnum(byte) != 0 || kPlain.find(c) != std::string_view::npos;
}

bool IsPlain(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return IsPlain(c); });
}

// Names are data: whatever a shell would act on is quoted.
std::string QuotedForBash(std::string_view text) {
    std::string quoted;
    for (const char c : text) {
        if (!IsPlain(c)) quoted += '\\';
        quoted += c;
    }
    return quoted;
}

// What a word as it stands on the line means; a quote that is not closed yet goes to the end.
std::string UnquotedByBash(std::string_view word) {
    std::string text;
    char quote = 0;
    for (std::size_t i = 0; i < word.size(); ++i) {
        const char c = word[i];
        if (quote == 0 && (c == '\'' || c == '"')) {
            quote = c;
        } else if (c == quote) {
            quote = 0;
        } else if (c == '\\' && quote != '\'' && i + 1 < word.size()) {
            text += word[++i];
        } else {
            text += c;
        }
    }
    return text;
}

bool HoldsQuote(std::string_view word) {
    return word.find_first_of("'\"") != std::string_view::npos;
}

Exit PrintBash(Invocation&) {
    PrintText(kBash);
    return Exit::kDone;
}
Exit PrintZsh(Invocation&) {
    PrintText(kZsh);
    return Exit::kDone;
}
Exit PrintFish(Invocation&) {
    PrintText(kFish);
    return Exit::kDone;
}

void Add(std::vector<std::string>& candidates, std::string_view words) {
    while (!words.empty()) {
        const std::size_t blank = words.find(' ');
        candidates.emplace_back(words.substr(0, blank));
        words = blank == std::string_view::npos ? std::string_view() : words.substr(blank + 1);
    }
}

void AddObject(std::vector<std::string>& candidates, const Address& address,
               const std::optional<std::string>& name, const std::optional<std::string>& serial) {
    candidates.push_back(address.Text());
    if (name && !name->empty()) candidates.push_back("name:" + *name);
    if (serial && !serial->empty()) candidates.push_back("serial:" + *serial);
}

void AddTargets(std::vector<std::string>& candidates, Controller& controller, Target target) {
    switch (target) {
        case Target::kAdapter:
            for (const Adapter& each : LoadAdapters(controller)) {
                AddObject(candidates, each.address, {}, each.info[fields::Adapter_Info::SerialNo]);
            }
            break;
        case Target::kDisk:
            for (const Disk& each : LoadDisks(controller)) {
                AddObject(candidates, each.address, {}, each.info[fields::HD_Info::SerialNo]);
            }
            break;
        case Target::kVirtualDisk:
            for (const VirtualDisk& each : LoadVirtualDisks(controller)) {
                AddObject(candidates, each.address, each.info[fields::LD_Info::Name], {});
            }
            break;
        case Target::kDiskGroup:
            for (const DiskGroup& each : LoadDiskGroups(controller)) {
                AddObject(candidates, each.address, each.info[fields::DG_Info::Name], {});
            }
            break;
        case Target::kEnclosure:
            for (const Enclosure& each : LoadEnclosures(controller)) {
                AddObject(candidates, each.address, {}, {});
            }
            break;
        case Target::kElement:
            for (const Element& each : LoadElements(controller)) {
                AddObject(candidates, each.address, {}, {});
            }
            break;
        case Target::kTask:
            for (const Task& task : LoadTasks(controller, TaskDetail::kActivity)) {
                candidates.push_back(task.address.Text());
            }
            break;
        case Target::kFunction:
            for (const FunctionRow& function : Functions()) {
                candidates.emplace_back(function.name);
            }
            break;
        case Target::kNone:
        case Target::kFile:
        case Target::kText:
            break;
    }
}

struct Candidates {
    std::vector<std::string> words;
    bool files = false;  // may follow, too
};

void AddOfCommand(Candidates& found, Controller& controller, const CommandRow& command,
                  const std::vector<std::string>& words) {
    std::vector<std::string>& candidates = found.words;
    const std::string& current = words.back();
    const std::string_view before = words.size() > 1 ? words[words.size() - 2] : std::string_view();
    const std::vector<OptionRow> options = OptionsOf(command);
    for (const OptionRow& option : options) {
        if (option.value.empty() || option.value_optional) continue;
        if (before != option.name && (option.letter.empty() || before != option.letter)) continue;
        Add(candidates, option.choices);
        found.files = option.value == "FILE";
        const bool keys = option.name == "--columns" || option.name == "--sort";
        if (!keys || command.columns == nullptr) return;
        // Several keys stand between commas: what is there already stays before the last one.
        const std::string done = current.substr(0, current.rfind(',') + 1);
        for (const ColumnInfo& column : command.columns()) {
            candidates.push_back(done + std::string(column.key));
        }
        return;
    }
    if (current.starts_with('-')) {
        for (const OptionRow& option : options) candidates.emplace_back(option.name);
        candidates.emplace_back("--help");
        return;
    }
    if (command.target == Target::kFunction && words.size() > 1) {
        if (const FunctionRow* const function = FindFunction(words.front())) {
            for (const FieldRow& field : function->fields) {
                candidates.push_back(std::string(field.name) + "=");
            }
        }
        return;
    }
    found.files = command.target == Target::kFile;
    AddTargets(candidates, controller, command.target);
}

// What may follow the words; those that led to the command are taken away.
Candidates CandidatesFor(Controller& controller, std::vector<std::string>& words) {
    Candidates found;
    std::vector<std::string>& candidates = found.words;
    if (words.size() == 1) {
        for (const NounRow& noun : Nouns()) candidates.emplace_back(noun.name);
        Add(candidates, "--help --version");
        return found;
    }
    const auto noun = std::ranges::find(Nouns(), words.front(), &NounRow::name);
    if (noun == Nouns().end()) return found;
    words.erase(words.begin());
    const CommandRow* command = &noun->commands.front();
    const bool is_command = command->verb.empty();
    if (words.size() == 1) {
        for (const CommandRow& row : noun->commands) {
            if (!row.verb.empty()) candidates.emplace_back(row.verb);
        }
        if (!is_command) return found;
    } else if (const auto verb =
                   std::ranges::find(noun->commands, words.front(), &CommandRow::verb);
               verb != noun->commands.end() && !verb->verb.empty()) {
        command = &*verb;
        words.erase(words.begin());
    } else if (!is_command) {
        return found;
    }
    AddOfCommand(found, controller, *command, words);
    return found;
}

// The last of the words is being typed. Whatever goes wrong, nothing is said: it would stand in the
// middle of somebody's line.
Exit PrintCandidates(Invocation& invocation) {
    const std::string shell = invocation.Get("--for", "");
    const bool is_bash = shell == "bash";
    std::vector<std::string> words = invocation.targets();
    if (words.empty()) words.emplace_back();
    // Inside of quotes other rules hold: only what needs no quoting is offered there.
    const bool is_quoted = is_bash && HoldsQuote(words.back());
    if (is_bash) std::ranges::transform(words, words.begin(), UnquotedByBash);
    Candidates found;
    try {
        found = CandidatesFor(invocation.controller(), words);
    } catch (const std::exception&) {
        found = {};
    }
    std::string out;
    if (!shell.empty()) out = found.files ? "files\n" : "words\n";
    for (const std::string& candidate : found.words) {
        const bool printable = candidate == Printable(candidate);
        if (!printable || !candidate.starts_with(words.back())) continue;
        if (is_quoted && !IsPlain(candidate)) continue;
        out += (is_bash ? QuotedForBash(candidate) : candidate) + "\n";
    }
    PrintText(out);
    return Exit::kDone;
}

constexpr OptionRow kCandidateOptions[] = {
    {"--for", "SHELL", "Read and write the words as this shell has them", "bash zsh fish"},
};

constexpr CommandRow kCommands[] = {
    {.noun = "completion",
     .verb = "bash",
     .summary = "Print the completion script for bash",
     .examples = {"vexorctl completion bash", "vexorctl completion bash | head -n 1"},
     .run = PrintBash,
     .note = "Put it into /usr/share/bash-completion/completions/vexorctl, or read it with: "
             "source <(vexorctl completion bash)"},
    {.noun = "completion",
     .verb = "zsh",
     .summary = "Print the completion script for zsh",
     .examples = {"vexorctl completion zsh", "vexorctl completion zsh | head -n 1"},
     .run = PrintZsh,
     .note = "Put it into a folder of $fpath as _vexorctl."},
    {.noun = "completion",
     .verb = "fish",
     .summary = "Print the completion script for fish",
     .examples = {"vexorctl completion fish", "vexorctl completion fish | head -n 1"},
     .run = PrintFish,
     .note = "Put it into ~/.config/fish/completions/vexorctl.fish."},
    {.noun = "completion",
     .verb = "candidates",
     .summary = "Print what may follow the words, the last of which is being typed",
     .target = Target::kText,
     .arity = Arity::kAny,
     .target_name = "WORD",
     .options = kCandidateOptions,
     .examples = {"vexorctl completion candidates -- disk \"\"",
                  "vexorctl completion candidates -- vd show a"},
     .run = PrintCandidates,
     .note = "The scripts call it. It never complains."},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::completion_noun
