// vexorctl version: the version of the program.
#include "model/exit_code.h"
#include "nouns/nouns.h"
#include "output/streams.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"

namespace vexorctl::version_noun {

namespace {

Exit ShowVersion(Invocation&) {
    PrintText("vexorctl " VEXORCTL_VERSION "\n");
    return Exit::kDone;
}

constexpr CommandRow kCommands[] = {
    {.noun = "version",
     .verb = "",
     .summary = "Print the version of the program",
     .examples = {"vexorctl version", "vexorctl config show"},
     .run = ShowVersion,
     .note = "The versions of the library and of the controller are in \"config show\"."},
};

}  // namespace

std::span<const CommandRow> Commands() { return kCommands; }

}  // namespace vexorctl::version_noun
