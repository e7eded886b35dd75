// Benchmarks of the engine, from single kernels to the whole reverb. scripts/bench builds and runs them.

#include "core/kernels.h"

#include <benchmark/benchmark.h>

int main(int argc, char** argv)
{
    benchmark::AddCustomContext("instruction_set", vesk::audio::ippGetInstructionSetName());
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
