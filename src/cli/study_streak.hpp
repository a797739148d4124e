// The current streak of days with study, read from the store for the
// commands that print it (`week` and the weekly `receipt`).
#pragma once

#include <optional>

#include "cli/cli_context.hpp"
#include "cli/history_environment.hpp"

namespace lumenote::cli {

// The number of consecutive days with study ending today (or yesterday, as
// insights::currentStudyStreak counts it), reading back four weeks at a time
// (sessions only, no segments) until a day without study ends it. Refuses
// the command and returns nullopt when the store cannot be read.
std::optional<int> readCurrentStreak(CliContext& context, HistoryEnvironment& environment);

}  // namespace lumenote::cli
