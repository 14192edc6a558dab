// Disks by libxml2's xmlTextWriter, where there is a libxml2.
#include <memory>

#include "bench.h"
#include "written.h"
#include "xml_rapi_records.h"
#include "yardsticks.h"

namespace bench {
namespace {

void DisksXmlWriter(benchmark::State& state) {
    std::vector<HD_Info> disks = SampleDisks(128);
    const auto count = static_cast<unsigned>(disks.size());
    yardstick::XmlTextWriterDisks writer;
    const auto doc = std::make_unique<XMLWR_Doc>();
    // The library first: it normalises the records, which the other writer takes as they are.
    const auto ours = Written<XML_RA_HD_Info>(*doc, "HD_Info", disks.data(), count);
    RequireSame("HD_Info by xmlTextWriter", ours, writer.Write("HD_Info", disks.data(), count));
    Measure(state, [&] { writer.Write("HD_Info", disks.data(), count); });
}
BENCHMARK(DisksXmlWriter)->Name("disks/xmlwriter");

}  // namespace
}  // namespace bench
