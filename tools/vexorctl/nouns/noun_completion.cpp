// vexorctl completion ...: scripts for the shells, which ask the binary itself what can follow, so
// that they never differ from the command tree and know the objects that are there.
#include <algorithm>
#include <cctype>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "codes/event_class.h"
#include "codes/named.h"
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

// What may stand at the end of the line, and what fish tells of it.
struct Candidate {
    std::string word;
    std::string description{};
};

void Add(std::vector<Candidate>& candidates, std::string_view words) {
    while (!words.empty()) {
        const std::size_t blank = words.find(' ');
        candidates.push_back({std::string(words.substr(0, blank))});
        words = blank == std::string_view::npos ? std::string_view() : words.substr(blank + 1);
    }
}

// Each form of an object's name is described by the others.
void AddObject(std::vector<Candidate>& candidates, const Address& address,
               const std::optional<std::string>& name, const std::optional<std::string>& serial) {
    const std::string text = address.Text();
    const bool has_name = name && !name->empty();
    const bool has_serial = serial && !serial->empty();
    candidates.push_back({text, has_name ? *name : serial.value_or("")});
    if (has_name) candidates.push_back({"name:" + *name, text});
    if (has_serial) candidates.push_back({"serial:" + *serial, text});
}

void AddTargets(std::vector<Candidate>& candidates, Controller& controller, Target target) {
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
                candidates.push_back({task.address.Text(), task.name.value_or("")});
            }
            break;
        case Target::kFunction:
            for (const FunctionRow& function : Functions()) {
                candidates.push_back({std::string(function.name)});
            }
            break;
        case Target::kNone:
        case Target::kFile:
        case Target::kText:
            break;
    }
}

struct Candidates {
    std::vector<Candidate> words;
    bool files = false;  // may follow, too
};

void AddNames(std::vector<Candidate>& candidates, std::span<const hxcodes::Named> names,
              std::string_view more = {}) {
    for (const hxcodes::Named& row : names) {
        candidates.push_back({std::string(row.name)});
        if (!more.empty()) candidates.push_back({std::string(row.name).append(more)});
    }
}

// What the words of a fixed list mean. An option's own rows come before those of every option.
struct ChoiceRow {
    std::string_view option;  // empty: any
    std::string_view word;
    std::string_view meaning;
};
constexpr ChoiceRow kChoices[] = {
    {"--raid", "0", "No redundancy, on 1 disk or more"},
    {"--raid", "1", "Two copies, on 2 disks"},
    {"--raid", "1e", "Two copies, on an odd number of disks from 3"},
    {"--raid", "5", "One disk may fail, on 3 disks or more"},
    {"--raid", "6", "Two disks may fail, on 3 disks or more"},
    {"--raid", "10", "Mirrored pairs, on an even number of disks from 4"},
    {"--raid", "50", "Legs of RAID 5, all of the same number of disks"},
    {"--raid", "60", "Legs of RAID 6, all of the same number of disks"},
    {"--init", "quick", "Usable at once; what is on the disks is void"},
    {"--init", "foreground", "Usable when it has ended"},
    {"--init", "background", "Usable at once; redundancy is made meanwhile"},
    {"--init", "none", "Redundancy is not made"},
    {"--round", "stripe", "Down to whole stripes"},
    {"--round", "1_gib", "Down to whole GiB"},
    {"--round", "10_gib", "Down to tens of GiB"},
    {"--kind", "rebuild", "Restore what is lost to the disk of --disk"},
    {"--kind", "check", "Compare data and redundancy"},
    {"--kind", "fix", "Make redundancy agree with the data"},
    {"--kind", "init-quick", "All data is lost; usable at once"},
    {"--kind", "init-foreground", "All data is lost; usable when it has ended"},
    {"--kind", "init-background", "Make redundancy of what it holds"},
    {"--kind", "media-patrol", "Read a disk and remap damaged sectors"},
    {"--kind", "data-scrub", "Read a disk and count damaged sectors"},
    {"--state", "online", "Take it back"},
    {"--state", "offline", "Switch it off; it takes part in nothing"},
    {"--state", "free", "Make a disk that has failed free"},
    {"--output", "table", "Columns for people"},
    {"--output", "wide", "All columns"},
    {"--output", "list", "One field a line"},
    {"--output", "json", "One document"},
    {"--output", "jsonl", "One object a line"},
    {"--output", "csv", "Comma-separated values"},
    {"--output", "xml", "One document"},
    {"--action", "relearn", "Discharge and charge it, to measure what it holds"},
    {"--action", "charge", "Charge it"},
    {"--action", "discharge", "Discharge it"},
    {"--cache", "write_back", "Writes are done when they are in the cache"},
    {"--cache", "read_ahead", "More is read than was asked for"},
    {"--cache", "none", "Neither"},
    {"--image", "bios", "The BIOS of the adapter"},
    {"--image", "firmware", "The adapter's own program"},
    {"--image", "boot_loader", "What starts the firmware"},
    {"--image", "autoload", "What is loaded when the adapter starts"},
    {"--image", "hba_info", "Serial number and addresses of the adapter"},
    {"--for", "bash", "As bash has words"},
    {"--for", "zsh", "As zsh has words"},
    {"--for", "fish", "As fish has words"},
    {"", "on", "Switch it on"},
    {"", "off", "Switch it off"},
};

std::string MeaningOf(std::string_view option, std::string_view word) {
    for (const ChoiceRow& row : kChoices) {
        if (row.word == word && (row.option.empty() || row.option == option)) {
            return std::string(row.meaning);
        }
    }
    return {};
}

// The values of options that are not a fixed list of words; a list has commas between them.
struct ValuesRow {
    std::string_view option;
    bool is_list;
    void (*add)(std::vector<Candidate>& candidates, Controller& controller,
                const CommandRow& command);
};
constexpr ValuesRow kValues[] = {
    {"--columns", true,
     [](std::vector<Candidate>& candidates, Controller&, const CommandRow& command) {
         candidates.push_back({"all", "All of them"});
         for (const ColumnInfo& column : command.columns()) {
             candidates.push_back({std::string(column.key), std::string(column.help)});
         }
     }},
    {"--sort", true,
     [](std::vector<Candidate>& candidates, Controller&, const CommandRow& command) {
         for (const std::string_view sign : {"", "-"}) {
             for (const ColumnInfo& column : command.columns()) {
                 candidates.push_back(
                     {std::string(sign).append(column.key), std::string(column.help)});
             }
         }
     }},
    {"--severity", false,
     [](std::vector<Candidate>& candidates, Controller&, const CommandRow&) {
         AddNames(candidates, hxcodes::kSeverityNames, "+");
     }},
    {"--class", false,
     [](std::vector<Candidate>& candidates, Controller&, const CommandRow&) {
         AddNames(candidates, hxcodes::kEventClassNames);
     }},
    {"--cache", true,
     [](std::vector<Candidate>& candidates, Controller&, const CommandRow&) {
         Add(candidates, "write_back read_ahead none");
     }},
    {"--size", false,
     [](std::vector<Candidate>& candidates, Controller&, const CommandRow&) {
         candidates.push_back({"max", "As large as possible"});
     }},
    {"--controller", false,
     [](std::vector<Candidate>& candidates, Controller&, const CommandRow&) {
         Add(candidates, "virtual linuxmd");
     }},
    {"--dg", false,
     [](std::vector<Candidate>& candidates, Controller& controller, const CommandRow&) {
         AddTargets(candidates, controller, Target::kDiskGroup);
     }},
    {"--disk", false,
     [](std::vector<Candidate>& candidates, Controller& controller, const CommandRow&) {
         AddTargets(candidates, controller, Target::kDisk);
     }},
    {"--add", true,
     [](std::vector<Candidate>& candidates, Controller& controller, const CommandRow&) {
         AddTargets(candidates, controller, Target::kDisk);
     }},
    {"--to", true,
     [](std::vector<Candidate>& candidates, Controller& controller, const CommandRow&) {
         AddTargets(candidates, controller, Target::kDisk);
     }},
    {"--adapter", false,
     [](std::vector<Candidate>& candidates, Controller& controller, const CommandRow&) {
         for (const unsigned adapter : controller.Adapters()) {
             candidates.push_back({std::to_string(adapter)});
         }
     }},
};

// The values of an option, of which `typed` is there already, behind what leads to them.
void AddOfOption(Candidates& found, Controller& controller, const CommandRow& command,
                 const OptionRow& option, const std::string& before, const std::string& typed) {
    std::vector<Candidate> values;
    std::string done = before;
    Add(values, option.choices);
    found.files = option.value == "FILE";
    const auto* const row = std::ranges::find(kValues, option.name, &ValuesRow::option);
    if (row != std::end(kValues)) {
        // What is there already of a list stays before the last value, which is none of it.
        const std::string list = row->is_list ? typed.substr(0, typed.rfind(',') + 1) : "";
        done += list;
        row->add(values, controller, command);
        std::erase_if(values, [&](const Candidate& each) {
            return ("," + list).find("," + each.word + ",") != std::string::npos;
        });
    }
    for (Candidate& each : values) {
        if (each.description.empty()) each.description = MeaningOf(option.name, each.word);
        found.words.push_back({done + each.word, std::move(each.description)});
    }
}

// The option that the value of `words` belongs to: "--sort" in "--sort=na", or the word before.
// None for a switch, and for one whose value may only follow behind "=".
const OptionRow* OptionBefore(const std::vector<OptionRow>& options, std::string_view current,
                              std::string_view before, std::string& lead) {
    const std::size_t sign = current.find('=');
    if (current.starts_with("--") && sign != std::string_view::npos) {
        const auto row = std::ranges::find(options, current.substr(0, sign), &OptionRow::name);
        if (row == options.end() || row->value.empty()) return nullptr;
        lead = current.substr(0, sign + 1);
        return &*row;
    }
    for (const OptionRow& option : options) {
        if (option.value.empty() || option.value_optional) continue;
        if (before == option.name || (!option.letter.empty() && before == option.letter)) {
            return &option;
        }
    }
    return nullptr;
}

void AddOfCommand(Candidates& found, Controller& controller, const CommandRow& command,
                  const std::vector<std::string>& words) {
    std::vector<Candidate>& candidates = found.words;
    const std::string& current = words.back();
    const std::string_view before = words.size() > 1 ? words[words.size() - 2] : std::string_view();
    const std::vector<OptionRow> options = OptionsOf(command);
    std::string lead;
    if (const OptionRow* const option = OptionBefore(options, current, before, lead)) {
        AddOfOption(found, controller, command, *option, lead, current.substr(lead.size()));
        return;
    }
    if (current.starts_with('-')) {
        for (const OptionRow& option : options) {
            candidates.push_back({std::string(option.name), std::string(option.help)});
        }
        candidates.push_back({"--help", "Tell all about it"});
        return;
    }
    if (command.target == Target::kFunction && words.size() > 1) {
        if (const FunctionRow* const function = FindFunction(words.front())) {
            for (const FieldRow& field : function->fields) {
                candidates.push_back({std::string(field.name) + "="});
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
    std::vector<Candidate>& candidates = found.words;
    if (words.size() == 1) {
        for (const NounRow& noun : Nouns()) {
            candidates.push_back({std::string(noun.name), std::string(noun.summary)});
        }
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
            if (row.verb.empty()) continue;
            candidates.push_back({std::string(row.verb), std::string(row.summary)});
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
    const bool is_fish = shell == "fish";  // it shows what stands behind a tabulator
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
    for (const auto& [candidate, description] : found.words) {
        const bool printable = candidate == Printable(candidate);
        if (!printable || !candidate.starts_with(words.back())) continue;
        if (is_quoted && !IsPlain(candidate)) continue;
        out += is_bash ? QuotedForBash(candidate) : candidate;
        if (is_fish && !description.empty()) out += "\t" + Printable(description);
        out += "\n";
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
