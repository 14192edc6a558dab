// The event store: check-in, queries and texts, beside its own system calls, streams and a table.
#include <array>
#include <filesystem>
#include <memory>

#include "bench.h"
#include "hxfake.h"
#include "support/temporary_root.h"
#include "vexorapi.h"
#include "vxevent_yardsticks.h"

namespace bench {
namespace {

constexpr HX_U32 kPage = 2000;

/// A store in a root of its own, filled with as many events as it holds and a few more, with a
/// controller that delivers a batch at every check-in.
class FilledStore {
public:
    explicit FilledStore(HX_U32 capacity) {
        std::filesystem::create_directories(root_.Path("/opt/kestrel/raid/db"));
        root_.Write("/vexorapi.ini", "<c><EventLogConfig type=\"config\" MaxNumOfEvent=\"" +
                                         std::to_string(capacity) + "\"/></c>");
        VX_EvInit();
        hxfake::NoteCalls(false);
        hxfake::On<&HX_EVT_GetEvent>().Always([this](HX_U8, HX_U8, HX_U8* count, Event* events) {
            if (left_ == 0) return HX_U8{0};
            const HX_U32 batch = std::min<HX_U32>(left_, yardstick::kBatch);
            std::copy_n(batch_.begin(), batch, events);
            for (HX_U32 i = 0; i < batch; ++i) events[i].SequenceNo = ++number_;
            left_ -= batch;
            *count = static_cast<HX_U8>(batch);
            return HX_U8{0};
        });
        Deliver(capacity + yardstick::kBatch);
        // What the library reads once, it has read; requests look for a file that is not there.
        std::filesystem::remove(root_.Path("/vexorapi.ini"));
    }
    ~FilledStore() { hxfake::On<&HX_EVT_GetEvent>().Clear(); }

    void Deliver(HX_U32 events) {
        left_ = events;
        VX_EvFile_CheckIn(1);
    }
    std::string EventFile() const { return root_.Path("/opt/kestrel/raid/db/vx_hx_raid.ev"); }
    std::string SeqFile() const { return root_.Path("/opt/kestrel/raid/db/vx_hx_seqnum.ev"); }
    std::string Path(const char* name) const { return root_.Path(name); }

private:
    TemporaryRoot root_;
    const std::vector<Event> batch_ = yardstick::SampleEvents(0, yardstick::kBatch);
    HX_U32 left_ = 0;
    HX_U32 number_ = 0;
};

// ---- Check-in -----------------------------------------------------------------------------------

void CheckInLibrary(benchmark::State& state) {
    FilledStore store(kPage);
    Measure(state, [&] { store.Deliver(yardstick::kBatch); });
}
BENCHMARK(CheckInLibrary)->Name("check_in/library");

void CheckInBare(benchmark::State& state) {
    const FilledStore store(kPage);
    yardstick::BareCheckIn calls(store.EventFile(), store.SeqFile(), kPage);
    Measure(state, [&] { calls.Run(); });
}
BENCHMARK(CheckInBare)->Name("check_in/own_calls");

void CheckInStreams(benchmark::State& state) {
    const FilledStore store(kPage);
    yardstick::StreamStore streams(store.EventFile(), store.SeqFile());
    const std::vector<Event> events = yardstick::SampleEvents(1, yardstick::kBatch);
    Measure(state, [&] { streams.CheckIn(events); });
}
BENCHMARK(CheckInStreams)->Name("check_in/streams");

#ifdef VEXORAPI_BENCH_SQLITE
template <HX_U32 rows_kept>
void CheckInTable(benchmark::State& state) {
    const FilledStore store(kPage);
    yardstick::TableStore table(store.Path("/events.db"), rows_kept);
    const std::vector<Event> events = yardstick::SampleEvents(1, yardstick::kBatch);
    for (HX_U32 row = 0; row < kPage; row += yardstick::kBatch) table.CheckIn(events);
    Measure(state, [&] { table.CheckIn(events); });
    state.counters["rows"] = static_cast<double>(table.Rows());
}
BENCHMARK(CheckInTable<0>)->Name("check_in/sqlite");
BENCHMARK(CheckInTable<kPage>)->Name("check_in/sqlite_ring");
#endif

// ---- Queries ------------------------------------------------------------------------------------

// The capacity must not be felt.
void QueryLibrary(benchmark::State& state) {
    const FilledStore store(static_cast<HX_U32>(state.range(0)));
    std::vector<Event> events(kPage);
    Measure(state, [&] {
        HX_U32 n = kPage;
        HX_U32 s = kNewestEvents;
        HX_U32 e = kNewestEvents;
        VX_EvGet(&n, &s, &e, events.data());
        benchmark::ClobberMemory();
    });
}
BENCHMARK(QueryLibrary)->Name("query/library")->Arg(2000)->Arg(65535);

void QueryBare(benchmark::State& state) {
    const FilledStore store(kPage);
    yardstick::BareQuery calls(store.EventFile(), kPage);
    Measure(state, [&] { calls.Run(); });
}
BENCHMARK(QueryBare)->Name("query/own_calls");

// ---- Texts --------------------------------------------------------------------------------------

using Text = int (*)(const Event&, char*);

int Rendered(const Event& event, char* text) { return VX_HX_EVT_Sprintf(&event, text); }

template <Text write>
void OneText(benchmark::State& state) {
    std::array<char, kEventTextSize> text;
    const std::vector<Event> events = yardstick::SampleEvents(1, 64);
    for (const Event& event : events) {
        std::array<char, kEventTextSize> other;
        const auto ours = static_cast<std::size_t>(Rendered(event, text.data()));
        const auto theirs = static_cast<std::size_t>(yardstick::PrintedText(event, other.data()));
        RequireSame("event text", {text.data(), ours}, {other.data(), theirs});
    }
    std::size_t next = 0;
    Measure(state, [&] {
        write(events[next++ % 64], text.data());
        benchmark::ClobberMemory();
    });
}
BENCHMARK(OneText<Rendered>)->Name("event_text/library");
BENCHMARK(OneText<yardstick::PrintedText>)->Name("event_text/printf");

// ---- The request -------------------------------------------------------------------------------

std::array<char, VEXORAPI_MAX_RESULT> result;
constexpr char kCommand[] =
    "<VX_HX_EVT_GetEvents type=\"function\"><n>2000</n><s>0</s></VX_HX_EVT_GetEvents>";

// The oldest events of a store that has given up none.
class WholeStore : public FilledStore {
public:
    WholeStore() : FilledStore(2 * kPage) {
        VX_EvFile_Reset();
        Deliver(kPage);
    }
};

void RequestLibrary(benchmark::State& state) {
    const WholeStore store;
    yardstick::StreamStore streams(store.EventFile(), store.SeqFile());
    const std::size_t length =
        yardstick::LiteralEvents(streams, kPage, result.data(), result.size());
    const std::string theirs(result.data(), length);
    vexorApi(kCommand, result.data(), result.size());
    RequireSame("events request", result.data(), theirs);
    Measure(state, [&] { vexorApi(kCommand, result.data(), result.size()); });
    state.counters["bytes"] = static_cast<double>(length);
}
BENCHMARK(RequestLibrary)->Name("events_request/library");

void RequestLiteral(benchmark::State& state) {
    const WholeStore store;
    yardstick::StreamStore streams(store.EventFile(), store.SeqFile());
    Measure(state, [&] { yardstick::LiteralEvents(streams, kPage, result.data(), result.size()); });
}
BENCHMARK(RequestLiteral)->Name("events_request/literal");

}  // namespace
}  // namespace bench
