// vexorctl apply FILE: carries out a plan that --plan has written.
//
// Nothing of the file is sent. Its command is planned again; only when that gives the same plan,
// for the same objects, is what was planned here carried out.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "common/read_file.h"
#include "model/exit_code.h"
#include "model/failure.h"
#include "model/plan_file.h"
#include "nouns/look_again.h"
#include "nouns/nouns.h"
#include "nouns/plan_and_act.h"
#include "shell/command_line.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"

namespace vexorctl::apply_noun {

namespace {

PlanFile ReadPlanFile(const std::string& path) {
    try {
        return ReadPlan(
            vexortools::ReadFile(path.c_str(), vexortools::FileKind::kRegular, kMostPlanBytes));
    } catch (const vexortools::FileError& error) {
        throw Failure(Exit::kUsage, path + ": " + error.what());
    } catch (const PlanFileError& error) {
        throw Failure(Exit::kUsage, path + " " + error.what());
    }
}

// The row of the plan's command; the words behind its name are left in `words`.
const CommandRow& TakeRow(std::vector<std::string>& words) {
    const auto take = [&] {
        if (words.empty()) throw UsageError("a verb is missing");
        std::string word = std::move(words.front());
        words.erase(words.begin());
        return word;
    };
    const NounRow& noun = FindNoun(Nouns(), take());
    if (noun.commands.front().verb.empty()) throw UsageError("it changes nothing by a plan");
    const CommandRow& row = FindVerb(noun, take());
    if (!row.changes) throw UsageError("it changes nothing");
    return row;
}

// How the plan is shown, asked for and carried out is said now and not by the file.
void AddOptions(const Invocation& invocation, std::vector<std::string>& words) {
    std::vector<std::string> ours;
    for (const OptionRow& option : OptionsOf(invocation.row())) {
        if (!invocation.Has(option.name)) continue;
        const std::string* const value = invocation.Get(option.name);
        ours.push_back(std::string(option.name) +
                       (value == nullptr ? std::string() : "=" + *value));
    }
    words.insert(words.begin(), ours.begin(), ours.end());
}

bool IsAboutHow(const std::string& word) {
    const std::string name = word.substr(0, word.find('='));
    return name == "--yes" || name == "--dry-run" || name == "--plan";
}

[[noreturn]] void ThrowNoCommand(const std::string& path, const UsageError& error) {
    throw Failure(Exit::kUsage, path + " holds no command that vexorctl plans: " + error.what());
}

Invocation InvocationOf(const Invocation& outer, const std::string& path,
                        std::vector<std::string> words) {
    try {
        const CommandRow& row = TakeRow(words);
        const auto end = std::ranges::find(words, "--");
        if (std::any_of(words.begin(), end, IsAboutHow)) {
            throw UsageError("whether it is asked about is not for the plan to say");
        }
        AddOptions(outer, words);
        return ReadWords(row, words);
    } catch (const UsageError& error) {
        ThrowNoCommand(path, error);
    }
}

Exit Apply(Invocation& outer) {
    const std::string& path = outer.targets().front();
    PlanFile plan = ReadPlanFile(path);
    Invocation invocation = InvocationOf(outer, path, plan.words);
    invocation.Follow(std::move(plan));
    if (const std::string* const codes = invocation.Get("--codes")) {
        invocation.controller().UseCodesFile(*codes);
    }
    invocation.controller().RememberSightings();
    try {
        return invocation.row().run(invocation);
    } catch (const UsageError& error) {
        ThrowNoCommand(path, error);
    } catch (const Failure& failure) {
        const bool is_gone = failure.exit == Exit::kNoObject || failure.exit == Exit::kRefused;
        if (invocation.review()->is_met || !is_gone) throw;
        throw Outdated("it cannot be planned any more: " + std::string(failure.what()));
    }
}

constexpr OptionRow kOptions[] = {
    {"--dry-run", "", "Show the plan, and whether it still holds, and change nothing"},
    {"--yes", "", "Go on without asking"},
};

constexpr CommandRow kCommands[] = {
    {.noun = "apply",
     .verb = "",
     .summary = "Carry out a plan that --plan has written",
     .target = Target::kFile,
     .arity = Arity::kOne,
     .target_name = "FILE",
     .options = kOptions,
     .examples = {"vexorctl apply plan.json --dry-run", "vexorctl apply plan.json --yes -o json"},
     .run = Apply,
     .columns = ChangeColumns,
     .note =
         "Every command that changes something writes its plan with --plan FILE: the command, the "
         "objects by which it is known again whether they are the same, what is lost and what "
         "becomes of the virtual disks. Somebody else can read the file, and carry it out with "
         "this command. The plan is made again first: when the machine, an object, an effect or a "
         "command is not what the file says, nothing is done and the exit code is 8. Nothing of "
         "the file itself is sent. It asks for the name of what is changed, or for the word "
         "\"apply\"."},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::apply_noun
