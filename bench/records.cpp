// Records written by their rows, beside the same records written piece by piece.
#include <memory>

#include "bench.h"
#include "reference_writer.h"
#include "written.h"
#include "xml_rapi_records.h"
#include "yardsticks.h"

namespace bench {
namespace {

using DocPtr = std::unique_ptr<XMLWR_Doc>;

// The document and the records that a writer works on are made once, outside of what is measured.
template <auto writer, class R>
void WriteList(benchmark::State& state, const char* element, std::vector<R> records) {
    const DocPtr doc = std::make_unique<XMLWR_Doc>();
    const auto count = static_cast<unsigned>(records.size());
    Measure(state, [&] { Written<writer>(*doc, element, records.data(), count); });
}

template <auto ours, auto theirs, class R>
void RequireSameList(const char* element, std::vector<R> records) {
    const DocPtr our_doc = std::make_unique<XMLWR_Doc>();
    const DocPtr their_doc = std::make_unique<XMLWR_Doc>();
    const auto count = static_cast<unsigned>(records.size());
    RequireSame(element, Written<ours>(*our_doc, element, records.data(), count),
                Written<theirs>(*their_doc, element, records.data(), count));
}

void AdapterLibrary(benchmark::State& state) {
    RequireSameList<XML_RA_Adapter_Info, reference::RecordAdapterInfo>(
        "AdapterInfo", std::vector{SampleAdapter()});
    WriteList<XML_RA_Adapter_Info>(state, "AdapterInfo", std::vector{SampleAdapter()});
}
BENCHMARK(AdapterLibrary)->Name("adapter/library");

void AdapterLiteral(benchmark::State& state) {
    WriteList<reference::RecordAdapterInfo>(state, "AdapterInfo", std::vector{SampleAdapter()});
}
BENCHMARK(AdapterLiteral)->Name("adapter/literal");

void DisksLibrary(benchmark::State& state) {
    RequireSameList<XML_RA_HD_Info, yardstick::LiteralHdInfo>("HD_Info", SampleDisks(128));
    WriteList<XML_RA_HD_Info>(state, "HD_Info", SampleDisks(128));
}
BENCHMARK(DisksLibrary)->Name("disks/library");

void DisksLiteral(benchmark::State& state) {
    WriteList<yardstick::LiteralHdInfo>(state, "HD_Info", SampleDisks(128));
}
BENCHMARK(DisksLiteral)->Name("disks/literal");

void GroupsLibrary(benchmark::State& state) {
    RequireSameList<XML_RA_DG_Info, yardstick::LiteralDgInfo>("DG_Info", SampleDiskGroups(64));
    WriteList<XML_RA_DG_Info>(state, "DG_Info", SampleDiskGroups(64));
}
BENCHMARK(GroupsLibrary)->Name("groups/library");

void GroupsLiteral(benchmark::State& state) {
    WriteList<yardstick::LiteralDgInfo>(state, "DG_Info", SampleDiskGroups(64));
}
BENCHMARK(GroupsLiteral)->Name("groups/literal");

// 256 disks fit; of 1000 about the last 720 find no room, and each of their pieces is tried.
void Overflow(benchmark::State& state) {
    WriteList<XML_RA_HD_Info>(state, "HD_Info", SampleDisks(static_cast<unsigned>(state.range(0))));
}
BENCHMARK(Overflow)->Name("overflow/library")->Arg(256)->Arg(1000);

}  // namespace
}  // namespace bench
