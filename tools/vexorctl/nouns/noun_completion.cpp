// vexorctl completion ...: scripts for the shells, which ask the binary itself what can follow, so
// that they never differ from the command tree and know the objects that are there.
#include <algorithm>

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

namespace vexorctl {

namespace {

constexpr std::string_view kBash = R"(# bash completion for vexorctl
_vexorctl() {
    local IFS=$'\n'
    local line=${COMP_LINE:0:COMP_POINT} words
    words=("${COMP_WORDS[@]:1:COMP_CWORD}")
    COMPREPLY=($(vexorctl completion candidates -- "${words[@]}" 2>/dev/null))
    # A word with a colon is several words for readline: only what follows the colon is its word.
    local current=${line##* }
    if [[ $current == *:* && $COMP_WORDBREAKS == *:* ]]; then
        COMPREPLY=("${COMPREPLY[@]#"${current%"${current##*:}"}"}")
    fi
}
complete -o default -F _vexorctl vexorctl
)";

constexpr std::string_view kZsh = R"(#compdef vexorctl
# zsh completion for vexorctl
_vexorctl() {
    local -a candidates
    candidates=("${(@f)$(vexorctl completion candidates -- "${(@)words[2,CURRENT]}" 2>/dev/null)}")
    if [[ -n ${candidates[1]} ]]; then
        compadd -Q -- "${candidates[@]}"
    else
        _files
    fi
}
if [[ $funcstack[1] == _vexorctl ]]; then
    _vexorctl "$@"
else
    compdef _vexorctl vexorctl
fi
)";

constexpr std::string_view kFish = R"(# fish completion for vexorctl
function __vexorctl_candidates
    set -l words (commandline -opc) (commandline -ct)
    vexorctl completion candidates -- $words[2..-1] 2>/dev/null
end
complete -c vexorctl -f -a '(__vexorctl_candidates)'
)";

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

void AddOfCommand(std::vector<std::string>& candidates, Controller& controller,
                  const CommandRow& command, const std::vector<std::string>& words) {
    const std::string& current = words.back();
    const std::string_view before = words.size() > 1 ? words[words.size() - 2] : std::string_view();
    const std::vector<OptionRow> options = OptionsOf(command);
    for (const OptionRow& option : options) {
        if (option.value.empty() || option.value_optional) continue;
        if (before != option.name && (option.letter.empty() || before != option.letter)) continue;
        Add(candidates, option.choices);
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
    AddTargets(candidates, controller, command.target);
}

// What may follow the words; those that led to the command are taken away.
std::vector<std::string> CandidatesFor(Controller& controller, std::vector<std::string>& words) {
    std::vector<std::string> candidates;
    if (words.size() == 1) {
        for (const NounRow& noun : Nouns()) candidates.emplace_back(noun.name);
        Add(candidates, "--help --version");
        return candidates;
    }
    const auto noun = std::ranges::find(Nouns(), words.front(), &NounRow::name);
    if (noun == Nouns().end()) return candidates;
    words.erase(words.begin());
    const CommandRow* command = &noun->commands.front();
    if (!command->verb.empty()) {
        if (words.size() == 1) {
            for (const CommandRow& row : noun->commands) candidates.emplace_back(row.verb);
            return candidates;
        }
        const auto found = std::ranges::find(noun->commands, words.front(), &CommandRow::verb);
        if (found == noun->commands.end()) return candidates;
        command = &*found;
        words.erase(words.begin());
    }
    AddOfCommand(candidates, controller, *command, words);
    return candidates;
}

// The last of the words is being typed. Whatever goes wrong, nothing is said: it would stand in the
// middle of somebody's line.
Exit PrintCandidates(Invocation& invocation) {
    std::vector<std::string> words = invocation.targets();
    if (words.empty()) words.emplace_back();
    std::vector<std::string> candidates;
    try {
        candidates = CandidatesFor(invocation.controller(), words);
    } catch (const std::exception&) {
        return Exit::kDone;
    }
    std::string out;
    for (const std::string& candidate : candidates) {
        const bool printable = candidate == Printable(candidate);
        if (printable && candidate.starts_with(words.back())) out += candidate + "\n";
    }
    PrintText(out);
    return Exit::kDone;
}

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
     .examples = {"vexorctl completion candidates -- disk \"\"",
                  "vexorctl completion candidates -- vd show a"},
     .run = PrintCandidates,
     .note = "The scripts call it. It never complains."},
};

}  // namespace

std::span<const CommandRow> CompletionCommands() { return kCommands; }

}  // namespace vexorctl
