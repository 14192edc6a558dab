#include "service/hxs_sink_command.h"

#include "common/terminal_text.h"

namespace hxservice {

std::vector<std::string> EnvironmentOf(const Letter& letter) {
    return {
        "PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin",
        "LANG=C.UTF-8",
        "HXRAID_HOST=" + letter.host,
        "HXRAID_SINK=" + letter.sink,
        "HXRAID_LEVEL=" + letter.level,
        "HXRAID_SUBJECT=" + vexortools::Printable(letter.subject),
        "HXRAID_ALERTS=" + std::to_string(letter.notices),
        "HXRAID_ATTEMPT=" + std::to_string(letter.attempt),
        std::string("HXRAID_MAY_BE_REPEAT=") + (letter.may_be_repeat ? "1" : "0"),
    };
}

Job CommandJob(const SinkSettings& sink, const Letter& letter) {
    return {.words = sink.command,
            .environment = EnvironmentOf(letter),
            .input = letter.json,
            .limit = sink.limit};
}

}  // namespace hxservice
