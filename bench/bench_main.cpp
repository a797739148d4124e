// The benchmark executable's entry point: Google Benchmark's own flags plus
// --history-cache DIR, the folder where synthetic histories are kept.
#include <cstring>
#include <string_view>

#include <benchmark/benchmark.h>

#include "bench_history.hpp"

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    std::filesystem::path cache = LUMENOTE_BENCH_CACHE_DIR;
    int kept = 1;
    for (int index = 1; index < argc; ++index) {
        const std::string_view argument = argv[index];
        if (argument == "--history-cache" && index + 1 < argc) {
            cache = argv[++index];
        } else if (argument.starts_with("--history-cache=")) {
            cache = argument.substr(std::strlen("--history-cache="));
        } else {
            argv[kept++] = argv[index];
        }
    }
    argc = kept;
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    lumenote::bench::setHistoryCacheFolder(cache);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
