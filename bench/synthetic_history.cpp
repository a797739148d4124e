#include "synthetic_history.hpp"

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "store/sqlite_connection.hpp"
#include "store/sqlite_indexes.hpp"
#include "store/sqlite_recording_store.hpp"
#include "store/store_rows.hpp"

namespace lumenote::bench {

namespace {

using AC = classification::ActivityClassification;

struct Application {
    std::string_view bundleIdentifier;
    std::string_view name;
    AC classification;
};

// Desktop applications as the Linux observer reports them.
constexpr std::array kApplications{
    Application{"libreoffice-writer", "LibreOffice Writer", AC::focused},
    Application{"libreoffice-calc", "LibreOffice Calc", AC::focused},
    Application{"code", "Visual Studio Code", AC::focused},
    Application{"org.kde.okular", "Okular", AC::focused},
    Application{"org.zotero.Zotero", "Zotero", AC::focused},
    Application{"md.obsidian", "Obsidian", AC::focused},
    Application{"net.ankiweb.dtop", "Anki", AC::focused},
    Application{"org.gnome.Terminal", "Terminal", AC::focused},
    Application{"org.gnome.Calculator", "Calculator", AC::focused},
    Application{"org.gnome.Nautilus", "Files", AC::neutral},
    Application{"thunderbird", "Thunderbird", AC::neutral},
    Application{"com.slack.Slack", "Slack", AC::neutral},
    Application{"com.spotify.Client", "Spotify", AC::neutral},
    Application{"org.telegram.desktop", "Telegram Desktop", AC::distracting},
    Application{"com.discordapp.Discord", "Discord", AC::distracting},
    Application{"com.valvesoftware.Steam", "Steam", AC::distracting},
    Application{"org.gnome.Settings", "Einstellungen", AC::unclassified},
    Application{"com.tallywise.Lumenote", "Lumenote", AC::ignored},
};

struct Browser {
    std::string_view bundleIdentifier;
    std::string_view name;
};

constexpr std::array kBrowsers{
    Browser{"org.mozilla.firefox", "Firefox"},
    Browser{"com.google.Chrome", "Google Chrome"},
    Browser{"org.chromium.Chromium", "Chromium"},
};

struct Website {
    std::string_view hostname;
    AC classification;
};

constexpr std::array kWebsites{
    Website{"docs.google.com", AC::focused},
    Website{"scholar.google.com", AC::focused},
    Website{"www.overleaf.com", AC::focused},
    Website{"www.khanacademy.org", AC::focused},
    Website{"quizlet.com", AC::focused},
    Website{"github.com", AC::focused},
    Website{"arxiv.org", AC::focused},
    Website{"stackoverflow.com", AC::focused},
    Website{"en.cppreference.com", AC::focused},
    Website{"docs.python.org", AC::focused},
    Website{"www.wolframalpha.com", AC::focused},
    Website{"www.desmos.com", AC::focused},
    Website{"moodle.uni-heidelberg.de", AC::focused},
    Website{"www.deepl.com", AC::focused},
    Website{"en.wikipedia.org", AC::neutral},
    Website{"de.wikipedia.org", AC::neutral},
    Website{"ja.wikipedia.org", AC::neutral},
    Website{"mail.google.com", AC::neutral},
    Website{"calendar.google.com", AC::neutral},
    Website{"drive.google.com", AC::neutral},
    Website{"chatgpt.com", AC::neutral},
    Website{"claude.ai", AC::neutral},
    Website{"zoom.us", AC::neutral},
    Website{"discord.com", AC::neutral},
    Website{"www.youtube.com", AC::distracting},
    Website{"www.reddit.com", AC::distracting},
    Website{"news.ycombinator.com", AC::distracting},
    Website{"www.instagram.com", AC::distracting},
    Website{"www.netflix.com", AC::distracting},
    Website{"www.twitch.tv", AC::distracting},
    Website{"x.com", AC::distracting},
    Website{"www.spiegel.de", AC::unclassified},
    Website{"www.bbc.co.uk", AC::unclassified},
    Website{"www.amazon.de", AC::unclassified},
};

constexpr std::array<std::string_view, 16> kSubjects{
    "Linear Algebra",
    "Organic Chemistry",
    "Deutsch — Erörterung",
    "History of Art",
    "Statistik II",
    "Physics: Optics",
    "日本語 N3",
    "Microeconomics",
    "Thesis writing",
    "Anatomy",
    "Algorithms",
    "Français B2",
    "Numerical Analysis",
    "Biochemie",
    "Philosophy of Mind",
    "Data Structures",
};

constexpr std::array<std::string_view, 8> kGoals{
    "",  // most sessions carry no goal
    "",
    "",
    "Finish problem set 4",
    "Read chapter 7 and summarise it",
    "Karteikarten wiederholen",
    "Draft the introduction",
    "Past paper 2019, timed",
};

constexpr std::array<std::string_view, 8> kPDFLabels{
    "Lecture 07 - Eigenvalues.pdf",
    "Skript Thermodynamik.pdf",
    "exam-2019.pdf",
    "Übungsblatt 5.pdf",
    "paper_draft_v3.pdf",
    "reading-list.pdf",
    "Kapitel 3 – Enzyme.pdf",
    "slides week 11.pdf",
};

constexpr std::array<recording::BrowserFallbackReason, 5> kFallbackReasons{
    recording::BrowserFallbackReason::awaitingFreshEvent,
    recording::BrowserFallbackReason::staleEvent,
    recording::BrowserFallbackReason::extensionDisconnected,
    recording::BrowserFallbackReason::privateOrRestricted,
    recording::BrowserFallbackReason::applicationSwitch};

constexpr std::size_t kSessionsPerChangeSet = 100;
constexpr std::size_t kTabsPerSession = 4;
constexpr double kSecondsPerYear = 365.25 * 86400.0;

// The running totals of one session, added up as its segments are made.
struct Totals {
    double timer = 0;
    double focused = 0;
    double distracted = 0;
    double neutral = 0;
    double unclassified = 0;
    double ignored = 0;
    double inactive = 0;

    void add(const recording::ActivitySegment& segment) {
        timer += segment.duration;
        if (segment.isInactive) {
            inactive += segment.duration;
            return;
        }
        switch (segment.classification()) {
            case AC::focused:
                focused += segment.duration;
                break;
            case AC::distracting:
                distracted += segment.duration;
                break;
            case AC::neutral:
                neutral += segment.duration;
                break;
            case AC::unclassified:
                unclassified += segment.duration;
                break;
            case AC::ignored:
                ignored += segment.duration;
                break;
        }
    }
};

class HistoryWriter {
  public:
    explicit HistoryWriter(const SyntheticHistoryOptions& options)
        : options_(options), random_(options.seed) {
        for (auto& templateId : templates_) {
            templateId = uuid();
        }
    }

    // Appends session `index` (0 is the oldest) with `segmentCount` segments.
    void addSession(std::size_t index, std::size_t segmentCount, recording::StoreChangeSet& changes,
                    SyntheticHistorySummary& summary);

    // Between half and one and a half times `mean`, at least one.
    std::size_t segmentCountAround(std::size_t mean) {
        return std::uniform_int_distribution<std::size_t>(
            std::max<std::size_t>(1, mean / 2), std::max<std::size_t>(1, mean + mean / 2))(random_);
    }

    std::vector<classification::AppClassification> appRules();
    std::vector<classification::WebsiteClassification> websiteRules();

    // Version 4 UUIDs drawn from the seeded generator, so that a seed always
    // writes the same file.
    Uuid uuid() {
        Uuid::Bytes bytes;
        for (std::size_t offset = 0; offset < bytes.size(); offset += 8) {
            const std::uint64_t word = random_();
            for (std::size_t byte = 0; byte < 8; ++byte) {
                bytes[offset + byte] = static_cast<std::uint8_t>(word >> (8 * byte));
            }
        }
        bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0f) | 0x40);
        bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3f) | 0x80);
        return Uuid(bytes);
    }

  private:
    double uniform(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }
    std::size_t pick(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_);
    }
    bool chance(double probability) { return uniform(0.0, 1.0) < probability; }

    // Mostly short stretches between switches, some long ones.
    double segmentSeconds() {
        const double kind = uniform(0.0, 1.0);
        if (kind < 0.75) {
            return uniform(2.0, 40.0);
        }
        return kind < 0.97 ? uniform(40.0, 240.0) : uniform(240.0, 900.0);
    }

    recording::ActivitySegment nextSegment(const recording::ActivitySegment* previous,
                                           const recording::StudySession& session,
                                           const Browser& browser,
                                           const std::array<Uuid, kTabsPerSession>& tabs,
                                           std::vector<classification::LocalPDFIdentity>& pdfs,
                                           Date start);

    const SyntheticHistoryOptions& options_;
    std::mt19937_64 random_;
    std::array<Uuid, 5> templates_;
};

recording::ActivitySegment HistoryWriter::nextSegment(
    const recording::ActivitySegment* previous, const recording::StudySession& session,
    const Browser& browser, const std::array<Uuid, kTabsPerSession>& tabs,
    std::vector<classification::LocalPDFIdentity>& pdfs, Date start) {
    const double duration = segmentSeconds();
    recording::ActivitySegment segment(uuid(), start, start.addingSeconds(duration), duration, "",
                                       "", AC::unclassified, false);
    segment.session = session.id;
    const double kind = uniform(0.0, 1.0);
    if (kind < 0.52 || (kind >= 0.90 && kind < 0.99 && previous == nullptr)) {
        const Application& application = kApplications[pick(kApplications.size())];
        segment.applicationName = application.name;
        segment.bundleIdentifier = application.bundleIdentifier;
        segment.setClassification(application.classification);
        segment.setActivitySource(recording::ActivitySourceType::application);
    } else if (kind < 0.82) {
        const Website& website = kWebsites[pick(kWebsites.size())];
        segment.applicationName = browser.name;
        segment.bundleIdentifier = browser.bundleIdentifier;
        segment.setClassification(website.classification);
        segment.setActivitySource(recording::ActivitySourceType::website);
        segment.browserBundleIdentifier = std::string(browser.bundleIdentifier);
        segment.hostname = std::string(website.hostname);
        segment.tabSessionIdentifier = tabs[pick(tabs.size())];
    } else if (kind < 0.86) {
        if (pdfs.empty() || (pdfs.size() < 3 && chance(0.1))) {
            classification::LocalPDFIdentity identity;
            identity.id = uuid();
            identity.browserBundleIdentifier = browser.bundleIdentifier;
            identity.displayLabelStorage = std::string(kPDFLabels[pick(kPDFLabels.size())]);
            identity.labelSourceRawValue =
                std::string(rawValue(chance(0.8) ? classification::BrowserPDFLabelSource::filename
                                                 : classification::BrowserPDFLabelSource::manual));
            identity.classificationRawValue = rawValue(chance(0.9) ? AC::focused : AC::neutral);
            identity.createdAt = start;
            identity.session = session.id;
            pdfs.push_back(identity);
        }
        const classification::LocalPDFIdentity& identity = pdfs[pick(pdfs.size())];
        segment.applicationName = *identity.displayLabelStorage;
        segment.bundleIdentifier = browser.bundleIdentifier;
        segment.classificationRawValue = identity.classificationRawValue;
        segment.setActivitySource(recording::ActivitySourceType::localPDF);
        segment.browserBundleIdentifier = std::string(browser.bundleIdentifier);
        segment.tabSessionIdentifier = tabs[pick(tabs.size())];
        segment.pdfIdentifier = identity.id;
        segment.pdfDisplayLabelStorage = identity.displayLabelStorage;
        segment.pdfLabelSourceRawValue = identity.labelSourceRawValue;
    } else if (kind < 0.90) {
        segment.applicationName = browser.name;
        segment.bundleIdentifier = browser.bundleIdentifier;
        segment.setClassification(AC::unclassified);
        segment.setActivitySource(recording::ActivitySourceType::browserFallback);
        segment.browserBundleIdentifier = std::string(browser.bundleIdentifier);
        segment.setBrowserFallbackReason(kFallbackReasons[pick(kFallbackReasons.size())]);
    } else if (kind < 0.99) {
        // No input over the threshold, in whatever was frontmost before.
        segment.applicationName = previous->applicationName;
        segment.bundleIdentifier = previous->bundleIdentifier;
        segment.classificationRawValue = previous->classificationRawValue;
        segment.activitySourceRawValue = previous->activitySourceRawValue;
        segment.browserBundleIdentifier = previous->browserBundleIdentifier;
        segment.hostname = previous->hostname;
        segment.isInactive = true;
    } else {
        segment.applicationName = "Mac asleep";
        segment.bundleIdentifier = "com.apple.system.sleep";
        segment.setClassification(AC::ignored);
        segment.setActivitySource(recording::ActivitySourceType::system);
    }
    return segment;
}

void HistoryWriter::addSession(std::size_t index, std::size_t segmentCount,
                               recording::StoreChangeSet& changes,
                               SyntheticHistorySummary& summary) {
    const double span = options_.years * kSecondsPerYear;
    const double spacing = span / static_cast<double>(options_.sessions);
    const Date start = options_.end.addingSeconds(-span + static_cast<double>(index) * spacing +
                                                  uniform(0.0, spacing * 0.25));
    // Older sessions were written by older layouts and calculations.
    const double age = static_cast<double>(index) / static_cast<double>(options_.sessions);
    const int era = age < 0.3 ? 1 : (age < 0.6 ? 2 : 3);

    recording::StudySession session(uuid(), std::string(kSubjects[pick(kSubjects.size())]),
                                    std::string(kGoals[pick(kGoals.size())]), 0.0, start);
    if (chance(0.1)) {
        session.setNotes("Revise the worked examples again; ask about problem 4b on Thursday.");
    }
    const Browser& browser = kBrowsers[pick(kBrowsers.size())];
    std::array<Uuid, kTabsPerSession> tabs;
    for (Uuid& tab : tabs) {
        tab = uuid();
    }
    std::vector<classification::LocalPDFIdentity> pdfs;
    const bool readsPDFs = chance(0.15);

    Totals totals;
    Date cursor = start;
    const std::size_t firstSegment = changes.segments.size();
    for (std::size_t count = 0; count < segmentCount; ++count) {
        const recording::ActivitySegment* previous =
            count == 0 ? nullptr : &changes.segments[firstSegment + count - 1];
        recording::ActivitySegment segment =
            nextSegment(previous, session, browser, tabs, pdfs, cursor);
        if (!readsPDFs && segment.activitySource() == recording::ActivitySourceType::localPDF) {
            segment.setActivitySource(recording::ActivitySourceType::application);
            segment.applicationName = browser.name;
            segment.browserBundleIdentifier.reset();
            segment.tabSessionIdentifier.reset();
            segment.pdfIdentifier.reset();
            segment.pdfDisplayLabelStorage.reset();
            segment.pdfLabelSourceRawValue.reset();
            pdfs.clear();
        }
        totals.add(segment);
        cursor = segment.endDate;
        changes.segments.push_back(std::move(segment));
    }

    double passive = 0;
    double breaks = 0;
    if (chance(0.06)) {
        recording::ConfirmedNoInputInterval interval(
            uuid(), start.addingSeconds(uniform(0.0, totals.timer / 2)), Date{},
            chance(0.7) ? recording::ConfirmedStudyState::passiveStudy
                        : recording::ConfirmedStudyState::confirmedBreak,
            chance(0.8) ? recording::ConfirmedStudyStateSource::returnPrompt
                        : recording::ConfirmedStudyStateSource::sessionControl,
            cursor.addingSeconds(uniform(1.0, 120.0)));
        interval.endDate = interval.startDate.addingSeconds(uniform(300.0, 900.0));
        interval.session = session.id;
        if (chance(0.2)) {
            // Edited later in replay: the first answer stays, superseded.
            recording::ConfirmedNoInputInterval replaced = interval;
            replaced.id = uuid();
            replaced.setState(recording::ConfirmedStudyState::confirmedBreak);
            replaced.supersededAt = interval.createdAt;
            interval.setSource(recording::ConfirmedStudyStateSource::replayEdit);
            interval.createdAt = interval.createdAt.addingSeconds(86400.0);
            changes.confirmedIntervals.push_back(replaced);
            ++summary.confirmedIntervals;
        }
        (interval.state() == recording::ConfirmedStudyState::passiveStudy ? passive : breaks) +=
            interval.endDate.secondsSince(interval.startDate);
        changes.confirmedIntervals.push_back(interval);
        ++summary.confirmedIntervals;
    }

    const bool timer = chance(0.6);
    session.plannedDuration = timer ? totals.timer : 3600.0;
    session.endDate = cursor;
    session.setStatus(chance(0.02) ? recording::StudySessionStatus::interrupted
                                   : recording::StudySessionStatus::completed);
    session.timerDuration = totals.timer;
    session.focusedDuration = totals.focused;
    session.distractedDuration = totals.distracted;
    session.neutralDuration = totals.neutral;
    session.inactiveDuration = totals.inactive;
    const double scored = totals.focused + totals.distracted;
    if (scored >= 60.0) {
        session.focusScore = totals.focused / scored * 100.0;
    }
    if (era >= 2) {
        session.setTimingMode(timer ? recording::SessionTimingMode::timer
                                    : recording::SessionTimingMode::openEnded);
        const double mode = uniform(0.0, 1.0);
        session.setStudyMode(mode < 0.85   ? recording::StudySessionMode::computerBased
                             : mode < 0.97 ? recording::StudySessionMode::mixedStudy
                                           : recording::StudySessionMode::offlineBookStudy);
        session.setUnclassifiedDuration(totals.unclassified);
        session.setIgnoredDuration(totals.ignored);
        session.setCalculationVersion(era == 2 ? recording::TrackingCalculationVersion::v2
                                               : recording::TrackingCalculationVersion::v3);
        session.setSchemaVersion(era);
        if (chance(0.2)) {
            session.setOriginatingTemplateID(templates_[pick(templates_.size())]);
        }
    }
    if (era == 3) {
        session.setPassiveStudyDuration(passive);
        session.setConfirmedBreakDuration(breaks);
        session.setSystemExcludedDuration(0.0);
    }
    for (const classification::LocalPDFIdentity& identity : pdfs) {
        changes.pdfIdentities.push_back(identity);
    }
    summary.pdfIdentities += pdfs.size();
    summary.segments += segmentCount;
    ++summary.sessions;
    changes.sessions.push_back(std::move(session));
}

std::vector<classification::AppClassification> HistoryWriter::appRules() {
    std::vector<classification::AppClassification> rules;
    for (const Application& application : kApplications) {
        if (chance(0.7)) {
            rules.push_back({std::string(application.bundleIdentifier),
                             std::string(application.name),
                             std::string(rawValue(application.classification)),
                             options_.end.addingSeconds(-uniform(0.0, kSecondsPerYear))});
        }
    }
    return rules;
}

std::vector<classification::WebsiteClassification> HistoryWriter::websiteRules() {
    std::vector<classification::WebsiteClassification> rules;
    for (const Website& website : kWebsites) {
        if (chance(0.6)) {
            rules.push_back({std::string(website.hostname),
                             std::string(rawValue(website.classification)),
                             options_.end.addingSeconds(-uniform(0.0, kSecondsPerYear))});
        }
    }
    return rules;
}

template <typename Record>
Result<void, StoreError> insertAll(store::SqliteConnection& connection,
                                   const store::TableLayout& layout,
                                   const std::vector<Record>& records) {
    auto statement = connection.cached(layout.upsert);
    if (!statement) {
        return fail(statement.error());
    }
    for (const Record& record : records) {
        store::bindRow(**statement, record);
        if (auto written = (*statement)->run(); !written) {
            return written;
        }
        (*statement)->reset();
    }
    return {};
}

// Writes one batch with the store's own row layouts and statements.
Result<void, StoreError> load(store::SqliteConnection& connection,
                              const recording::StoreChangeSet& changes) {
    auto transaction = store::SqliteTransaction::beginImmediate(connection);
    if (!transaction) {
        return fail(transaction.error());
    }
    if (auto written = insertAll(connection, store::sessionLayout(), changes.sessions); !written) {
        return written;
    }
    if (auto written = insertAll(connection, store::segmentLayout(), changes.segments); !written) {
        return written;
    }
    if (auto written =
            insertAll(connection, store::confirmedIntervalLayout(), changes.confirmedIntervals);
        !written) {
        return written;
    }
    if (auto written = insertAll(connection, store::pdfIdentityLayout(), changes.pdfIdentities);
        !written) {
        return written;
    }
    return transaction->commit();
}

}  // namespace

Result<SyntheticHistorySummary, StoreError> writeSyntheticHistory(
    const std::filesystem::path& storeFile, const SyntheticHistoryOptions& options) {
    if (std::filesystem::exists(storeFile)) {
        return fail(StoreError{storeFile.string() + " already exists"});
    }
    if (options.sessions == 0 || options.segments < options.sessions) {
        return fail(StoreError{"a history needs at least one session and a segment per session"});
    }
    HistoryWriter writer(options);
    SyntheticHistorySummary summary;
    {
        auto store = store::SqliteRecordingStore::open(storeFile);
        if (!store) {
            return fail(store.error());
        }
        for (const classification::AppClassification& rule : writer.appRules()) {
            if (auto saved = (*store)->saveAppClassification(rule); !saved) {
                return fail(saved.error());
            }
            ++summary.appClassifications;
        }
        for (const classification::WebsiteClassification& rule : writer.websiteRules()) {
            if (auto saved = (*store)->saveWebsiteClassification(rule); !saved) {
                return fail(saved.error());
            }
            ++summary.websiteClassifications;
        }
        if (auto saved = (*store)->saveLocalPDFPreferences(
                {writer.uuid(), true, std::string(rawValue(AC::focused))});
            !saved) {
            return fail(saved.error());
        }
    }

    // The bulk of the history goes through a connection of its own, tuned for
    // one large write: a file that fails halfway is discarded, never used, so
    // it needs neither a journal nor syncing, and a large page cache keeps the
    // random-UUID key indexes in memory. The file is back in WAL mode after.
    auto connection = store::SqliteConnection::open(storeFile.string());
    if (!connection) {
        return fail(connection.error());
    }
    if (auto tuned = (*connection)
                         ->execute("PRAGMA foreign_keys = ON; PRAGMA journal_mode = OFF; "
                                   "PRAGMA synchronous = OFF; PRAGMA cache_size = -524288");
        !tuned) {
        return fail(tuned.error());
    }
    std::vector<std::string> deferred;
    if (options.deferIndexes) {
        auto dropped = store::dropSecondaryIndexes(**connection);
        if (!dropped) {
            return fail(dropped.error());
        }
        deferred = std::move(*dropped);
    }
    std::size_t segmentsLeft = options.segments;
    recording::StoreChangeSet changes;
    for (std::size_t index = 0; index < options.sessions; ++index) {
        // Each session draws around the mean of what is left, so the total
        // comes out exact without a lopsided last session.
        const std::size_t sessionsLeft = options.sessions - index;
        const std::size_t mean = segmentsLeft / sessionsLeft;
        const std::size_t count = sessionsLeft == 1 ? segmentsLeft
                                                    : std::min(writer.segmentCountAround(mean),
                                                               segmentsLeft - (sessionsLeft - 1));
        writer.addSession(index, count, changes, summary);
        segmentsLeft -= count;
        if (changes.sessions.size() == kSessionsPerChangeSet || sessionsLeft == 1) {
            if (auto loaded = load(**connection, changes); !loaded) {
                return fail(loaded.error());
            }
            changes = recording::StoreChangeSet{};
        }
    }
    for (const std::string& create : deferred) {
        if (auto created = (*connection)->execute(create); !created) {
            return fail(created.error());
        }
    }
    if (auto restored = (*connection)->execute("PRAGMA journal_mode = WAL"); !restored) {
        return fail(restored.error());
    }
    connection->reset();

    // What was written must open as a store like any other.
    auto store = store::SqliteRecordingStore::open(storeFile);
    if (!store) {
        return fail(store.error());
    }
    auto count = (*store)->sessionCount();
    if (!count) {
        return fail(count.error());
    }
    if (*count != summary.sessions) {
        return fail(StoreError{"the store holds " + std::to_string(*count) + " sessions, not " +
                               std::to_string(summary.sessions)});
    }
    return summary;
}

}  // namespace lumenote::bench
