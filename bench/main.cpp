// The benches: Google Benchmark over the library's own objects and the scripted controller.
#include "bench.h"

int main(int argc, char** argv) {
    bench::PrepareController();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
