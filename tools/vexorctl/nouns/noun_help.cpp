// vexorctl help [NOUN [VERB]]: what --help prints, for those who say it as a command.
#include <string>
#include <vector>

#include "model/exit_code.h"
#include "nouns/nouns.h"
#include "output/streams.h"
#include "shell/command_rows.h"
#include "shell/help.h"
#include "shell/invocation.h"

namespace vexorctl::help_noun {

namespace {

Exit ShowHelp(Invocation& invocation) {
    const std::vector<std::string>& words = invocation.targets();
    PrintText(words.empty() ? ProgramHelp(Nouns()) : HelpFor(Nouns(), words));
    return Exit::kDone;
}

constexpr CommandRow kCommands[] = {
    {.noun = "help",
     .verb = "",
     .summary = "Tell how the program, a noun or a verb is used",
     .target = Target::kText,
     .arity = Arity::kAny,
     .target_name = "WORD",
     .examples = {"vexorctl help disk", "vexorctl help disk list"},
     .run = ShowHelp,
     .note = "The same as --help behind these words."},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::help_noun
