// The synthetic history the benchmarks run over: generated once into a cache
// folder of the build tree and reused by later runs.
#pragma once

#include <filesystem>

namespace lumenote::bench {

// Where histories are cached; set by the benchmark executable's main before
// any benchmark runs.
void setHistoryCacheFolder(std::filesystem::path folder);
const std::filesystem::path& historyCacheFolder();

// The store file of the standard history (20,000 sessions, 2,000,000
// segments over ten years). Generated on first use when the cache lacks it,
// into a temporary sibling renamed into place when complete, so that an
// interrupted generation is never reused. Ends the process with a message
// when the history cannot be written.
const std::filesystem::path& standardHistoryStore();

}  // namespace lumenote::bench
