#include "service/hxs_deliverer.h"

#include "service/hxs_sink_command.h"

namespace hxservice {

void Sinks::Start(const SinkSettings& sink, const Letter& letter, vexortools::Duration now) {
    if (!sink.kind) return;
    switch (*sink.kind) {
        case SinkKind::kCommand:
            children_.Start(sink.name, CommandJob(sink, letter), now);
            break;
    }
}

}  // namespace hxservice
