// Whole requests: the library beside bare expat and beside the literal lifecycle.
#include <array>
#include <cstring>

#include "bench.h"
#include "vexorapi.h"
#include "yardsticks.h"

namespace bench {
namespace {

std::array<char, 524288> result;

std::string Serve(int (*api)(const char*, char*, std::uint32_t), const char* command) {
    result[0] = '\0';
    if (api(command, result.data(), result.size()) != 1) return {};
    return result.data();
}

int Library(const char* command, char* buffer, std::uint32_t size) {
    return vexorApi(command, buffer, size);
}

void SmallRequestLibrary(benchmark::State& state) {
    const char* const command = kSmallRequest.data();
    RequireSame("small request", Serve(Library, command),
                Serve(yardstick::LiteralRequest, command));
    Measure(state, [&] { vexorApi(command, result.data(), result.size()); });
}
BENCHMARK(SmallRequestLibrary)->Name("small_request/library");

void SmallRequestLiteral(benchmark::State& state) {
    const char* const command = kSmallRequest.data();
    Measure(state, [&] { yardstick::LiteralRequest(command, result.data(), result.size()); });
}
BENCHMARK(SmallRequestLiteral)->Name("small_request/literal");

void SmallRequestBareExpat(benchmark::State& state) {
    Measure(state, [] { yardstick::BareExpat(kSmallRequest); });
}
BENCHMARK(SmallRequestBareExpat)->Name("small_request/bare_expat");

// The virtual controller stands beside it in bench_simulator.
void SmallestRequestScripted(benchmark::State& state) {
    const char* const command = kSmallestRequest.data();
    RequireSame("smallest request", Serve(Library, command),
                "<HX_Adapter_GetCount type=\"function\">\n"
                "  <RetVal type=\"U8\">2</RetVal>\n"
                "</HX_Adapter_GetCount>");
    Measure(state, [&] { vexorApi(command, result.data(), result.size()); });
}
BENCHMARK(SmallestRequestScripted)->Name("smallest_request/scripted");

void CommandLibrary(benchmark::State& state) {
    const std::string command = LongCommand(static_cast<std::size_t>(state.range(0)));
    RequireSame("long command", Serve(Library, command.c_str()),
                "<HX_Adapter_SetConfig type=\"function\">\n"
                "  <RetVal type=\"U8\">0</RetVal>\n"
                "</HX_Adapter_SetConfig>");
    Measure(state, [&] { vexorApi(command.c_str(), result.data(), result.size()); });
}
BENCHMARK(CommandLibrary)->Name("command/library")->RangeMultiplier(10)->Range(1000, 1000000);

void CommandBareExpat(benchmark::State& state) {
    const std::string command = LongCommand(static_cast<std::size_t>(state.range(0)));
    Measure(state, [&] { yardstick::BareExpat(command); });
}
BENCHMARK(CommandBareExpat)->Name("command/bare_expat")->RangeMultiplier(10)->Range(1000, 1000000);

// The most that a command makes the parser keep: elements that are never closed, each of its own
// block.
std::string NestedCommand(std::size_t bytes) {
    std::string command = "<HX_Adapter_SetConfig type=\"function\">";
    while (command.size() < bytes) command += "<a>";
    return command;
}

void NestedLibrary(benchmark::State& state) {
    const std::string command = NestedCommand(static_cast<std::size_t>(state.range(0)));
    Measure(state, [&] { vexorApi(command.c_str(), result.data(), result.size()); });
}
BENCHMARK(NestedLibrary)->Name("nested/library")->Arg(1048576);

void NestedBareExpat(benchmark::State& state) {
    const std::string command = NestedCommand(static_cast<std::size_t>(state.range(0)));
    Measure(state, [&] { yardstick::BareExpat(command); });
}
BENCHMARK(NestedBareExpat)->Name("nested/bare_expat")->Arg(1048576);

constexpr unsigned kListedDisks = 100;

void DiskListLibrary(benchmark::State& state) {
    const std::string command = DiskListCommand(kListedDisks);
    Measure(state, [&] { vexorApi(command.c_str(), result.data(), result.size()); });
    state.counters["bytes"] = static_cast<double>(std::strlen(result.data()));
}
BENCHMARK(DiskListLibrary)->Name("disk_list/library");

// What is left when the library costs nothing: the command is parsed, the result copied.
void DiskListFloor(benchmark::State& state) {
    const std::string command = DiskListCommand(kListedDisks);
    const std::string text = Serve(Library, command.c_str());
    Measure(state, [&] {
        yardstick::BareExpat(command);
        std::memcpy(result.data(), text.c_str(), text.size() + 1);
        benchmark::ClobberMemory();
    });
    state.counters["bytes"] = static_cast<double>(text.size());
}
BENCHMARK(DiskListFloor)->Name("disk_list/floor");

}  // namespace
}  // namespace bench
