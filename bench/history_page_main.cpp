// lumenote-history-page: opens the History page over the standard synthetic
// history (20,000 sessions) on Qt's offscreen platform, in a process that does
// nothing else, and prints how long the page took from its construction to
// its first painted frame, then scrolls the list to its very end (reading
// every page) and prints the process's peak resident memory.
//
// Targets: the page opens in under 300 ms; scrolled to the end, the process
// stays under 150 MB.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <vector>

#include <fmt/core.h>
#include <CLI/CLI.hpp>
#include <QApplication>
#include <QListView>
#include <QScrollBar>

#include "bench_history.hpp"
#include "platform/fake/fake_platform.hpp"
#include "process_memory.hpp"
#include "settings/in_memory_defaults_domain.hpp"
#include "settings/preferences_store.hpp"
#include "settings/recording_preferences_adapter.hpp"
#include "store/sqlite_recording_store.hpp"
#include "ui/history_list_model.hpp"
#include "ui/history_page.hpp"

namespace {

using namespace lumenote;
using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

}  // namespace

int main(int argc, char** argv) {
    std::filesystem::path cache = LUMENOTE_BENCH_CACHE_DIR;
    int runs = 5;
    double openLimit = 0;
    double peakLimit = 0;
    CLI::App app{
        "Opens the History page over the standard synthetic history, times its first frame, "
        "scrolls it to the end and prints the peak resident memory."};
    app.add_option("--history-cache", cache, "Folder of the cached synthetic histories")
        ->capture_default_str();
    app.add_option("--runs", runs, "Openings in a row; the median and the slowest are printed")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    app.add_option("--open-limit-ms", openLimit,
                   "Fail (exit status 2) when the slowest opening takes longer");
    app.add_option("--peak-limit-mib", peakLimit,
                   "Fail (exit status 2) when the peak resident memory exceeds this many MiB");
    CLI11_PARSE(app, argc, argv);

    bench::setHistoryCacheFolder(cache);
    const std::filesystem::path file = bench::standardHistoryStore();
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    QApplication application(argc, argv);

    auto store = store::SqliteRecordingStore::open(file, {.readOnly = true});
    if (!store) {
        fmt::print(stderr, "lumenote-history-page: {}\n", store.error().description);
        return 1;
    }
    platform::fake::FakeMachine machine;
    settings::InMemoryDefaultsDomain defaults;
    settings::PreferencesStore preferences(defaults);
    settings::PreferencesForRecording recordingPreferences(preferences);
    auto rules = machine.rulesFor(**store);
    recording::SessionHistory history(
        machine.historyDependencies(**store, rules, recordingPreferences));

    std::vector<double> openings;
    std::unique_ptr<ui::HistoryPage> page;
    for (int run = 0; run < runs; ++run) {
        page.reset();
        const auto started = Clock::now();
        page = std::make_unique<ui::HistoryPage>(
            **store, **store, history, LocalCalendar::current(), 1, [] { return systemNow(); });
        page->resize(960, 720);
        page->show();
        (void)page->grab();
        openings.push_back(millisecondsSince(started));
        fmt::print("run {}: the page showed its first frame in {:.1f} ms\n", run + 1,
                   openings.back());
    }
    // The first opening reads the store's pages and loads the fonts cold:
    // the limit holds for the slowest.
    const double slowest = *std::max_element(openings.begin(), openings.end());
    std::sort(openings.begin(), openings.end());
    const double median = openings[openings.size() / 2];

    const auto scrolling = Clock::now();
    QListView& list = page->list();
    ui::HistoryListModel& model = page->model();
    while (model.canFetchMore({})) {
        list.scrollToBottom();
        QApplication::processEvents();
        (void)page->grab();
    }
    list.scrollToBottom();
    (void)page->grab();
    const double peak = bench::mebibytes(bench::peakResidentBytes().value_or(0));
    fmt::print(
        "history page over {} rows: opening median {:.1f} ms, slowest {:.1f} ms over {} run(s); "
        "scrolled to the end in {:.0f} ms; peak resident memory {:.1f} MiB\n",
        model.rowCount(), median, slowest, runs, millisecondsSince(scrolling), peak);
    if ((openLimit > 0 && slowest > openLimit) || (peakLimit > 0 && peak > peakLimit)) {
        fmt::print(stderr, "lumenote-history-page: past the limits ({} ms, {} MiB)\n", openLimit,
                   peakLimit);
        return 2;
    }
    return 0;
}
