// The virtual controller with the topology "rack": four adapters of 128 disks each.
//
// The state file is a real one, in a temporary folder, since its cost is most of a change. Next to
// a change stands the least that any store of this kind can do: one row, updated in a transaction
// of a database that is kept open in the same way.
#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "bench.h"
#include "hxraid.h"
#include "model/hxsim_machine.h"
#include "store/hxsim_store.h"
#include "topology/hxsim_topology.h"
#include "vexorapi.h"

namespace {

[[noreturn]] void GiveUp(const std::string& why) {
    std::fprintf(stderr, "bench_simulator: %s\n", why.c_str());
    std::exit(1);
}

// A folder with a rack's state file, which HXSIM_STATE names; gone with the program.
class Rack {
public:
    Rack() {
        std::string name = std::filesystem::temp_directory_path() / "bench_simulator.XXXXXX";
        if (mkdtemp(name.data()) == nullptr) GiveUp("no temporary folder can be made");
        folder_ = name;
        const std::string state = File("hxsim.db");
        hxsim::Store::Create(
            state, hxsim::MakeMachine(hxsim::BuiltInTopology("rack"), 1, hxsim::RealNow()));
        setenv("HXSIM_STATE", state.c_str(), 1);
        Open();
    }
    ~Rack() {
        HX_API_Finalize();
        std::filesystem::remove_all(folder_);
    }
    Rack(const Rack&) = delete;
    Rack& operator=(const Rack&) = delete;

    std::string File(const char* name) const { return folder_ / name; }

    static void Open() {
        if (HX_API_Initialize() != HX_SUCCESS) GiveUp("the virtual controller cannot be opened");
    }

private:
    std::filesystem::path folder_;
};

Rack& TheRack() {
    static Rack rack;
    return rack;
}

// Room for a request and so many of its records.
template <class Request>
struct Page {
    explicit Page(std::size_t count, std::size_t record_size)
        : bytes(sizeof(Request) + count * record_size), wanted(static_cast<HX_U16>(count)) {}

    Request* Ask() {
        auto* const request = reinterpret_cast<Request*>(bytes.data());
        request->header = RequestHeader{};
        request->header.requestType = HX_REQUEST_BY_INDEX;
        request->header.numRequested = wanted;
        return request;
    }

    std::vector<unsigned char> bytes;
    HX_U16 wanted;
};

// A whole list, in a process that has it all in memory.
template <auto call, class Request, class Record>
void Listing(benchmark::State& state) {
    TheRack();
    Page<Request> page(static_cast<std::size_t>(state.range(0)), sizeof(Record));
    for (auto _ : state) {
        Request* const request = page.Ask();
        if (call(0, request) != HX_SUCCESS || request->header.numReturned != page.wanted) {
            state.SkipWithError("the rack has fewer of them");
            break;
        }
        benchmark::DoNotOptimize(page.bytes.data());
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["resident_mib"] = static_cast<double>(usage.ru_maxrss) / 1024;
}
BENCHMARK(Listing<HX_PD_GetHDInfo, HD_Info_Request, HD_Info>)->Name("list/disks")->Arg(128);
BENCHMARK(Listing<HX_LD_GetInfo, LD_Info_Request, LD_Info>)->Name("list/virtual_disks")->Arg(32);
BENCHMARK(Listing<HX_BLK_GetInfo, Info_Request, Block_Info>)->Name("list/blocks")->Arg(512);

// A whole request, through the library. The scripted controller stands beside it in bench_vexorapi.
void SmallestRequest(benchmark::State& state) {
    TheRack();
    static std::array<char, 4096> result;
    const char* const command = bench::kSmallestRequest.data();
    for (auto _ : state) vexorApi(command, result.data(), result.size());
    if (std::strstr(result.data(), "<RetVal type=\"U8\">4</RetVal>") == nullptr) {
        state.SkipWithError("the rack has another number of adapters");
    }
}
BENCHMARK(SmallestRequest)->Name("smallest_request/virtual");

// A setting that is another one each time.
void Change(benchmark::State& state) {
    TheRack();
    HX_BOOLEAN on = 0;
    for (auto _ : state) {
        on ^= 1;
        if (HX_LocateArrayDevice(0, NumberOf(hxcodes::Device::kDisk), 0, on) != HX_SUCCESS) {
            state.SkipWithError("the light cannot be switched");
            break;
        }
    }
}
BENCHMARK(Change)->Name("change/library")->UseRealTime();

void ChangeBare(benchmark::State& state) {
    sqlite3* opened = nullptr;
    const std::string file = TheRack().File("bare.db");
    const bool ok = sqlite3_open(file.c_str(), &opened) == SQLITE_OK;
    const std::unique_ptr<sqlite3, int (*)(sqlite3*)> database(opened, sqlite3_close);
    const auto run = [&](const char* sql) {
        return sqlite3_exec(database.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK;
    };
    if (!ok || !run("PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;"
                    "CREATE TABLE disk (id INTEGER PRIMARY KEY, light INTEGER);"
                    "INSERT INTO disk VALUES (0, 0)")) {
        state.SkipWithError("SQLite refuses the table");
        return;
    }
    for (auto _ : state) {
        if (!run("BEGIN IMMEDIATE; UPDATE disk SET light = 1 - light WHERE id = 0; COMMIT")) {
            state.SkipWithError("SQLite refuses the change");
            break;
        }
    }
    std::filesystem::remove(file);
}
BENCHMARK(ChangeBare)->Name("change/bare_sqlite")->UseRealTime();

// From a process that has nothing to its first answer.
void Opening(benchmark::State& state) {
    TheRack();
    for (auto _ : state) {
        HX_API_Finalize();
        Rack::Open();
        if (HX_Adapter_GetCount() != 4) {
            state.SkipWithError("the rack has another number of adapters");
            break;
        }
    }
}
BENCHMARK(Opening)->Name("open/library")->UseRealTime();

}  // namespace
