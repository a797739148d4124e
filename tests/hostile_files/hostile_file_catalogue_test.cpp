// Every file the product reads from disk, crossed with every hostile shape a
// file can take: each is read through the product's own store or repository
// over a real temporary folder, and must be refused, quarantined or read
// exactly as the file rules say, with no original ever deleted, no link
// followed and no temporary file left behind.
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <map>
#include <set>

#include <gtest/gtest.h>

#include "bridge/browser_bridge_store.hpp"
#include "bridge/native_host_registration.hpp"
#include "hostile_shapes.hpp"
#include "insights/file_insight_dismissal_repository.hpp"
#include "portability/backup_test_support.hpp"
#include "portability/tallywise_backup_service.hpp"
#include "recording/session_checkpoint_store.hpp"
#include "settings/file_session_template_repository.hpp"
#include "settings/in_memory_defaults_domain.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "store/sqlite_recording_store.hpp"
#include "support/permission_checks.hpp"

namespace lumenote::hostile {
namespace {

// 2025-11-16T08:00:00.250Z, the injected time of every read.
const Date kNow = Date::fromMillisecondsSince1970(1763280000250.0);
const std::string kToken(64, 'c');
const Uuid kSession = *Uuid::parse("E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
const Uuid kCommand = *Uuid::parse("0B7F33A4-1F1C-4B0B-9E1E-5C1B7C1E2A11");
const fs::path kBridge = "bridge";
constexpr std::size_t kBackupCapMegabytes = 1;

class FixedClock final : public recording::WallClock {
  public:
    Date now() override { return kNow; }
};

enum class Outcome { missing, loaded, refused, quarantined, newerReadOnly, notApplicable };

std::string_view nameOf(Outcome outcome) {
    constexpr std::array<std::string_view, 6> names{
        "missing", "loaded", "refused", "quarantined", "newer version, read-only", "n/a"};
    return names[static_cast<std::size_t>(outcome)];
}

// What the product did, and the sentence it gave when it refused.
struct Observed {
    Outcome outcome = Outcome::missing;
    std::string sentence;
};

// How a reader treats what it cannot use; each is one row of kExpected.
enum class Policy {
    versioned,
    checkpoint,
    defaults,
    token,
    bridgeDocument,
    inbox,
    manifest,
    backup
};

constexpr Outcome L = Outcome::loaded, R = Outcome::refused, Q = Outcome::quarantined,
                  N = Outcome::newerReadOnly, X = Outcome::notApplicable;

// Columns in the order of Shape: valid, link, dangling link, FIFO, folder,
// empty, exactly the cap, one over, newer version, invalid UTF-8, truncated,
// folder 0755, folder 0777, file 0644, file 0000.
// - versioned: the rules as written. Links, non-regular, oversized and
//   unreadable files stay in place; damage is moved aside; newer is read-only.
// - checkpoint: the same, except that a checkpoint of any other format version
//   is damage (a recovery must never guess at another layout).
// - defaults: a document without a version; anything unusable is moved aside
//   so every setting takes its default.
// - token: a token that is not well-formed (the cap cannot be reached by a
//   well-formed one) is moved aside and a new one made; links, non-regular
//   and unreadable token files make the bridge unavailable.
// - bridge documents, inbox entries, native-host manifests and backups are
//   never moved: what cannot be used is not handed on (a backup is the user's
//   file, a bridge document is rewritten by its writer, a manifest is one the
//   user repairs, and it has no format version).
constexpr std::array<std::array<Outcome, kShapeCount>, 8> kExpected{{
    {L, R, R, R, R, Q, L, R, N, Q, Q, L, L, L, R},  // versioned
    {L, R, R, R, R, Q, L, R, Q, Q, Q, L, L, L, R},  // checkpoint
    {L, Q, Q, Q, Q, Q, L, Q, X, Q, Q, L, L, L, Q},  // defaults
    {L, R, R, R, R, Q, Q, Q, X, Q, Q, L, L, L, R},  // token
    {L, R, R, R, R, R, L, R, R, R, R, L, L, L, R},  // bridge documents
    {L, R, R, R, R, R, L, R, R, R, R, L, L, L, R},  // inbox
    {L, R, R, R, R, R, L, R, X, R, R, L, L, L, R},  // native-host manifest
    {L, R, R, R, R, R, L, R, R, R, R, L, L, L, R},  // backup
}};

static_assert(kExpected.size() == static_cast<std::size_t>(Policy::backup) + 1);

Outcome expected(Policy policy, Shape shape) {
    return kExpected[static_cast<std::size_t>(policy)][static_cast<std::size_t>(shape)];
}

struct ProductFile {
    std::string name;
    fs::path relative;  // under the temporary root
    Policy policy;
    ShapeSource source;
    // The inbox is a queue: every entry is deleted once handled, whether it
    // was accepted or refused, so its own bytes are not expected to stay.
    bool consumesEntries = false;
    std::function<Observed(const fs::path& root)> read;
    // Writes a fresh document through the product and returns where; empty
    // when the product never writes this file (a backup chosen for restore).
    std::function<std::optional<fs::path>(const fs::path& root)> write;
    // Whether a quarantined copy is named after the injected time; the bridge
    // store takes no clock and names it after the system's.
    bool quarantineNamedByInjectedClock = true;
};

// "<stem>.corrupt-1763280000<extension>": the name kNow gives a first copy.
std::string quarantineNameAtNow(const fs::path& path) {
    return path.stem().string() + ".corrupt-1763280000" + path.extension().string();
}

// ---- the readers, each through the product's public API ----

Observed templatesRead(const fs::path& root) {
    settings::FileSessionTemplateRepository repository(
        root / "data" / "Lumenote" / settings::kSessionTemplateFileName, [] { return kNow; });
    auto loaded = repository.load();
    if (!loaded) {
        return {R, std::string(settings::describe(loaded.error()))};
    }
    using Kind = settings::SessionTemplateRepositoryLoadResult::Kind;
    const std::map<Kind, Outcome> outcomes{{Kind::document, L},
                                           {Kind::unsupportedVersion, N},
                                           {Kind::missing, Outcome::missing},
                                           {Kind::corruptQuarantined, Q}};
    return {outcomes.at(loaded->kind), {}};
}

Observed dismissalsRead(const fs::path& root) {
    insights::FileInsightDismissalRepository repository(
        root / "data/Lumenote/Insights" / insights::kInsightDismissalFileName, [] { return kNow; });
    const auto loaded = repository.load();
    using Status = insights::InsightDismissalLoadStatus;
    const std::map<Status, Outcome> outcomes{{Status::loaded, L},
                                             {Status::missing, Outcome::missing},
                                             {Status::unsupportedVersion, N},
                                             {Status::invalidRecord, Q},
                                             {Status::refused, R}};
    return {outcomes.at(loaded.status),
            loaded.error ? std::string(describe(*loaded.error)) : std::string()};
}

Observed checkpointRead(const fs::path& root) {
    FixedClock clock;
    recording::FileSessionCheckpointStore store(root / "data" / "Lumenote", clock);
    auto loaded = store.load();
    if (!loaded) {
        return {R, std::string(recording::describe(loaded.error()))};
    }
    using Kind = recording::SessionCheckpointLoadResult::Kind;
    const std::map<Kind, Outcome> outcomes{
        {Kind::checkpoint, L}, {Kind::missing, Outcome::missing}, {Kind::corruptQuarantined, Q}};
    return {outcomes.at(loaded->kind), {}};
}

Observed defaultsRead(const fs::path& root) {
    settings::JsonFileDefaultsDomain domain(root / "config" / "Lumenote" / "defaults.json",
                                            [] { return kNow; });
    const bool found = domain.object("rememberSubject").has_value();
    if (domain.lastQuarantinedPath()) {
        return {Q, {}};
    }
    return {found ? L : Outcome::missing, {}};
}

Observed tokenRead(const fs::path& root) {
    bridge::BrowserBridgeStore store(root / kBridge);
    const std::size_t movedBefore = quarantinedCopiesOf(store.tokenPath()).size();
    auto token = store.prepare();
    if (!token) {
        return {R, bridge::message(token.error())};
    }
    return {quarantinedCopiesOf(store.tokenPath()).size() > movedBefore ? Q : L, {}};
}

Observed stateRead(const fs::path& root) {
    return {bridge::BrowserBridgeStore(root / kBridge).readState() ? L : R, {}};
}

Observed preferencesRead(const fs::path& root) {
    return {bridge::BrowserBridgeStore(root / kBridge).readPreferences() ? L : R, {}};
}

Observed readinessRead(const fs::path& root) {
    return {bridge::BrowserBridgeStore(root / kBridge).readReadiness().size() == 1 ? L : R, {}};
}

bridge::BrowserBridgeCommand sampleCommand() {
    return {kCommand,
            bridge::BrowserBridgeCommandType::setFilenameLabelsEnabled,
            "org.mozilla.firefox",
            kSession,
            std::nullopt,
            true,
            kNow};
}

const std::string kCommandName = bridge::timeOrderedFileName(kNow, kCommand, "command");
const std::string kEventName = bridge::timeOrderedFileName(kNow, kSession, "event");

Observed commandRead(const fs::path& root) {
    auto command = bridge::BrowserBridgeStore(root / kBridge).readCommand(kCommandName);
    return command ? Observed{L, {}} : Observed{R, bridge::message(command.error())};
}

Observed inboxRead(const fs::path& root) {
    const auto drain = bridge::BrowserBridgeStore(root / kBridge).drainInbox();
    if (drain.accepted.size() == 1 && drain.rejected.empty()) {
        return {L, {}};
    }
    if (drain.rejected.size() == 1 && drain.accepted.empty()) {
        return {R, bridge::message(drain.rejected.front().error)};
    }
    return {Outcome::missing, {}};
}

bridge::NativeHostRegistrationChecker manifestChecker(const fs::path& root) {
    return bridge::NativeHostRegistrationChecker({root, root / "config",
                                                  root / "libexec" / "TallywiseBrowserHost",
                                                  "abcdefghijklmnop", "bridge@lumenote.example"});
}

Observed manifestRead(const fs::path& root) {
    return {manifestChecker(root).check(bridge::SupportedBrowser::chromium).manifestValid ? L : R,
            {}};
}

// Validates the backup and merges it into an empty history: the restore path.
Observed backupRead(const fs::path& root) {
    auto store = store::SqliteRecordingStore::openInMemory();
    settings::InMemoryDefaultsDomain defaults;
    settings::PreferencesStore preferences(defaults);
    FixedClock clock;
    portability::BackupValidationLimits limits;
    limits.maximumFileMegabytes = kBackupCapMegabytes;
    portability::TallywiseBackupService service({.store = **store,
                                                 .history = **store,
                                                 .importer = **store,
                                                 .preferences = preferences,
                                                 .wallClock = clock,
                                                 .calendar = LocalCalendar::utc(),
                                                 .automaticBackupFolder = root / "Automatic",
                                                 .appVersion = "1.0.0",
                                                 .limits = limits});
    auto validated = service.validateBackup(root / "Backups" / "history.tallywisebackup");
    if (!validated) {
        return {R, validated.error().message()};
    }
    auto merged = service.merge(*validated);
    return merged ? Observed{L, {}} : Observed{R, merged.error().message()};
}

// ---- the writers, for the product's use of a file after a quarantine ----

template <typename Written>
std::optional<fs::path> wroteTo(const Written& written, fs::path path) {
    return written ? std::optional(std::move(path)) : std::nullopt;
}

bridge::BrowserBridgeReadiness sampleReadiness() {
    return {bridge::kBridgeDocumentVersion,
            "org.mozilla.firefox",
            "1.0.0",
            "1.0.0",
            bridge::kBridgeProtocolVersion,
            true,
            kNow};
}

bridge::BrowserBridgeState sampleState() {
    return {bridge::kBridgeDocumentVersion, 4242, true, kSession, false,
            "org.mozilla.firefox",          kNow};
}

bridge::BrowserBridgeEnvelope sampleEnvelope() {
    return {bridge::kBridgeDocumentVersion, kToken, kSession, kNow, R"({"kind":"tab"})"};
}

recording::ActiveSessionCheckpoint sampleCheckpoint() {
    const Date start = kNow.addingSeconds(-1800);
    recording::ActiveSessionCheckpoint checkpoint;
    checkpoint.sessionID = kSession;
    checkpoint.startedAt = start;
    checkpoint.expectedEndAt = start.addingSeconds(3600);
    checkpoint.confirmedDuration = 1500.0;
    checkpoint.lastConfirmedActivityAt = start.addingSeconds(1620);
    checkpoint.lastPersistedSegmentBoundaryAt = start.addingSeconds(1615);
    checkpoint.savedAt = start.addingSeconds(1625);
    return checkpoint;
}

std::vector<ProductFile> productFiles() {
    using bridge::BrowserBridgeStore;
    const auto inBridge = [](const fs::path& root) { return BrowserBridgeStore(root / kBridge); };
    const std::string readinessName = "org.mozilla.firefox.readiness";
    return {
        {"preferences (defaults document)",
         "config/Lumenote/defaults.json",
         Policy::defaults,
         {R"({"rememberSubject": true})", settings::kMaximumDefaultsBytes, std::nullopt},
         false,
         defaultsRead,
         [](const fs::path& root) {
             settings::JsonFileDefaultsDomain domain(root / "config" / "Lumenote" / "defaults.json",
                                                     [] { return kNow; });
             domain.set("rememberSubject", true);
             return domain.lastWriteError() ? std::nullopt : std::optional(domain.path());
         }},
        {"session templates",
         fs::path("data/Lumenote") / settings::kSessionTemplateFileName,
         Policy::versioned,
         {settings::encodeSessionTemplateDocument({}), settings::kMaximumSessionTemplateFileBytes,
          "formatVersion"},
         false,
         templatesRead,
         [](const fs::path& root) {
             settings::FileSessionTemplateRepository repository(
                 root / "data" / "Lumenote" / settings::kSessionTemplateFileName,
                 [] { return kNow; });
             return wroteTo(repository.save({}), repository.path());
         }},
        {"insight dismissals",
         fs::path("data/Lumenote/Insights") / insights::kInsightDismissalFileName,
         Policy::versioned,
         {insights::encodeInsightDismissalDocument({}), insights::kMaximumInsightDismissalFileBytes,
          "formatVersion"},
         false,
         dismissalsRead,
         [](const fs::path& root) {
             insights::FileInsightDismissalRepository repository(
                 root / "data/Lumenote/Insights" / insights::kInsightDismissalFileName,
                 [] { return kNow; });
             return wroteTo(repository.save({}), repository.path());
         }},
        {"active-session checkpoint",
         fs::path("data/Lumenote") / recording::kActiveSessionCheckpointFileName,
         Policy::checkpoint,
         {recording::encodeCheckpoint(sampleCheckpoint()),
          recording::kActiveSessionCheckpointByteLimit, "formatVersion"},
         false,
         checkpointRead,
         [](const fs::path& root) {
             FixedClock clock;
             recording::FileSessionCheckpointStore store(root / "data" / "Lumenote", clock);
             return wroteTo(store.save(sampleCheckpoint()), store.fileURL());
         }},
        {"bridge token",
         kBridge / "bridge-token",
         Policy::token,
         {kToken, 1024, std::nullopt},
         false,
         tokenRead,
         [inBridge](const fs::path& root) {
             auto store = inBridge(root);
             return wroteTo(store.prepare(), store.tokenPath());
         },
         false},
        {"bridge state",
         kBridge / "state.json",
         Policy::bridgeDocument,
         {bridge::encodeState(sampleState()), bridge::kMaximumBridgeDocumentBytes, "version"},
         false,
         stateRead,
         [inBridge](const fs::path& root) {
             auto store = inBridge(root);
             return wroteTo(store.writeState(sampleState()), store.statePath());
         }},
        {"bridge preferences",
         kBridge / "preferences.json",
         Policy::bridgeDocument,
         {bridge::encodePreferences({bridge::kBridgeDocumentVersion, kToken, true}),
          bridge::kMaximumBridgeDocumentBytes, "version"},
         false,
         preferencesRead,
         [inBridge](const fs::path& root) {
             auto store = inBridge(root);
             return wroteTo(store.writePreferences(true), store.preferencesPath());
         }},
        {"bridge readiness",
         kBridge / "Readiness" / readinessName,
         Policy::bridgeDocument,
         {bridge::encodeReadinessEnvelope(
              {bridge::kBridgeDocumentVersion, kToken, sampleReadiness()}),
          bridge::kMaximumBridgeDocumentBytes, "version"},
         false,
         readinessRead,
         [inBridge, readinessName](const fs::path& root) {
             auto store = inBridge(root);
             return wroteTo(store.writeReadiness(sampleReadiness()),
                            store.readinessFolder() / readinessName);
         }},
        {"bridge command",
         kBridge / "Commands" / kCommandName,
         Policy::bridgeDocument,
         {bridge::encodeCommandEnvelope({bridge::kBridgeDocumentVersion, kToken, sampleCommand()}),
          bridge::kMaximumBridgeDocumentBytes, "version"},
         false,
         commandRead,
         [inBridge](const fs::path& root) {
             auto store = inBridge(root);
             return wroteTo(store.queueCommand(sampleCommand()),
                            store.commandsFolder() / kCommandName);
         }},
        {"bridge inbox event",
         kBridge / "Inbox" / kEventName,
         Policy::inbox,
         {bridge::encodeEnvelope(sampleEnvelope()), bridge::kMaximumBridgeDocumentBytes, "version"},
         true,
         inboxRead,
         [inBridge](const fs::path& root) {
             auto store = inBridge(root);
             auto name = store.writeInboxEnvelope(sampleEnvelope());
             return name ? std::optional(store.inboxFolder() / name.value()) : std::nullopt;
         }},
        {"native-host manifest",
         fs::path("config/chromium/NativeMessagingHosts") / bridge::kNativeHostManifestFileName,
         Policy::manifest,
         {manifestChecker("/opt/lumenote").manifestText(bridge::SupportedBrowser::chromium),
          bridge::kMaximumManifestBytes, std::nullopt},
         false,
         manifestRead,
         [](const fs::path& root) {
             const auto checker = manifestChecker(root);
             return wroteTo(checker.repair(bridge::SupportedBrowser::chromium),
                            *checker.manifestPath(bridge::SupportedBrowser::chromium));
         }},
        {"history backup (restore)",
         "Backups/history.tallywisebackup",
         Policy::backup,
         {portability::testing::documentJson(1).dump(),
          kBackupCapMegabytes * portability::kBytesPerMegabyte, "formatVersion"},
         false,
         backupRead,
         {}},
    };
}

// The bridge files other than the token are read against the token; a
// manifest is repaired only while the helper it names exists.
void arrange(const ProductFile& file, const fs::path& root) {
    if (*file.relative.begin() == kBridge && file.policy != Policy::token) {
        ASSERT_TRUE(private_file::writeAtomically(root / kBridge / "bridge-token", kToken));
    }
    if (file.policy == Policy::manifest) {
        const fs::path helper = root / "libexec" / "TallywiseBrowserHost";
        testing::writeFile(helper, "#!/bin/sh\n");
        fs::permissions(helper, fs::perms::owner_all);
    }
}

int failuresSoFar() {
    const ::testing::TestResult& result =
        *::testing::UnitTest::GetInstance()->current_test_info()->result();
    int failures = 0;
    for (int i = 0; i < result.total_part_count(); ++i) {
        failures += result.GetTestPartResult(i).failed();
    }
    return failures;
}

// Runs one (file, shape) case and returns whether the product did what the
// rules say; failures are reported with the case's name.
bool runCase(const ProductFile& file, Shape shape) {
    const int failuresBefore = failuresSoFar();
    testing::TemporaryHome home;
    const fs::path& root = home.root();
    const fs::path path = root / file.relative;
    arrange(file, root);
    const std::optional<fs::path> linkTarget = place(file.source, shape, path, root);
    const Fingerprint original = fingerprintOf(path);
    const Fingerprint target = linkTarget ? fingerprintOf(*linkTarget) : Fingerprint{};
    const mode_t targetMode = linkTarget ? testing::modeOf(*linkTarget) : 0;
    std::multiset<std::string> before = contentsUnder(root);
    if (file.consumesEntries && original.type == fs::file_type::regular) {
        before.erase(before.find(original.content));
    }

    Observed observed;
    if (shape == Shape::unreadableFile) {
        // Root reads a 0000 file anyway; the capabilities that allow that are
        // dropped, so the case is the same for root and for a user.
        testing::PermissionChecksEnforced enforced;
        observed = file.read(root);
    } else {
        observed = file.read(root);
    }
    const Outcome wanted = expected(file.policy, shape);
    EXPECT_EQ(nameOf(observed.outcome), nameOf(wanted)) << observed.sentence;

    // The original is where the rules leave it, byte for byte.
    if (observed.outcome == Outcome::quarantined) {
        const auto moved = quarantinedCopyOf(path);
        EXPECT_TRUE(moved) << "no single quarantined copy beside " << path;
        if (moved) {
            EXPECT_EQ(fingerprintOf(*moved), original) << "quarantined copy differs";
            if (file.quarantineNamedByInjectedClock) {
                EXPECT_EQ(moved->filename(), quarantineNameAtNow(path));
            }
            if (original.type == fs::file_type::regular) {
                EXPECT_EQ(testing::modeOf(*moved), 0600u);
            }
        }
    } else if (!file.consumesEntries) {
        EXPECT_EQ(fingerprintOf(path), original) << "the original changed in place";
        EXPECT_FALSE(quarantinedCopyOf(path))
            << "moved aside although " << nameOf(observed.outcome);
    }
    // A link's target is never followed, written or narrowed.
    if (linkTarget) {
        EXPECT_EQ(fingerprintOf(*linkTarget), target);
        EXPECT_EQ(testing::modeOf(*linkTarget), targetMode);
    }
    // Nothing was deleted and nothing half-written was left.
    const std::multiset<std::string> after = contentsUnder(root);
    for (const std::string& content : before) {
        EXPECT_GE(after.count(content), before.count(content))
            << "lost a file of " << content.size() << " bytes";
    }
    EXPECT_EQ(temporaryFilesUnder(root), std::vector<fs::path>{});

    // After a quarantine, and over loose permissions, the product writes a
    // fresh private document and reads it back.
    const bool loosePermissions = shape == Shape::groupReadableFolder ||
                                  shape == Shape::worldWritableFolder || shape == Shape::sharedFile;
    if (file.write && (observed.outcome == Outcome::quarantined || loosePermissions)) {
        const auto written = file.write(root);
        EXPECT_TRUE(written) << "the product could not write its file again";
        if (written) {
            EXPECT_EQ(testing::modeOf(*written), 0600u) << *written;
            EXPECT_EQ(testing::modeOf(written->parent_path()), 0700u) << written->parent_path();
        }
        EXPECT_EQ(nameOf(file.read(root).outcome), nameOf(Outcome::loaded)) << "after writing";
    }
    return failuresSoFar() == failuresBefore;
}

TEST(HostileFileCatalogue, everyProductFileMeetsEveryHostileShapeAsTheFileRulesSay) {
    const bool root = ::geteuid() == 0;
    int cases = 0;
    int refusedOrQuarantined = 0;
    int asDocumented = 0;
    for (const ProductFile& file : productFiles()) {
        for (std::size_t column = 0; column < kShapeCount; ++column) {
            const auto shape = static_cast<Shape>(column);
            const Outcome wanted = expected(file.policy, shape);
            if (wanted == Outcome::notApplicable) {
                continue;
            }
            SCOPED_TRACE(file.name + ", " + std::string(hostile::nameOf(shape)));
            ++cases;
            if (runCase(file, shape)) {
                ++asDocumented;
                refusedOrQuarantined +=
                    wanted == Outcome::refused || wanted == Outcome::quarantined;
            }
        }
    }
    std::printf(
        "hostile files: %d cases, %d refused or quarantined as expected "
        "(%d of %d as documented; running as %s)\n",
        cases, refusedOrQuarantined, asDocumented, cases, root ? "root" : "a user");
}

}  // namespace
}  // namespace lumenote::hostile
