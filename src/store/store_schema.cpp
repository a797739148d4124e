#include "store/store_schema.hpp"

#include <array>
#include <string>

namespace lumenote::store {

namespace {

// Identifiers are 16-byte blobs, dates REAL seconds since the reference epoch,
// enumerations their raw text (any text loads: a later release may write
// cases this one does not know). Columns carry the records' field names.
// Segments and confirmations belong to a session and go with it; a PDF
// identity may outlive the link to its session only as NULL, never dangling.
constexpr std::string_view kInitialLayout = R"sql(
CREATE TABLE sessions (
    id BLOB PRIMARY KEY NOT NULL CHECK (length(id) = 16),
    subject TEXT NOT NULL,
    goal TEXT NOT NULL,
    notesStorage TEXT,
    plannedDuration REAL NOT NULL,
    timingModeStorage TEXT,
    startDate REAL NOT NULL,
    endDate REAL,
    statusRawValue TEXT NOT NULL,
    timerDuration REAL NOT NULL,
    focusedDuration REAL NOT NULL,
    distractedDuration REAL NOT NULL,
    neutralDuration REAL NOT NULL,
    unclassifiedDurationStorage REAL,
    inactiveDuration REAL NOT NULL,
    ignoredDurationStorage REAL,
    focusScore REAL,
    calculationVersionStorage INTEGER,
    originatingTemplateIDStorage BLOB,
    studyModeStorage TEXT,
    schemaVersionStorage INTEGER,
    passiveStudyDurationStorage REAL,
    confirmedBreakDurationStorage REAL,
    systemExcludedDurationStorage REAL
);
CREATE INDEX sessions_by_start ON sessions (startDate, id);
CREATE INDEX sessions_live ON sessions (statusRawValue)
    WHERE statusRawValue IN ('running', 'paused');

CREATE TABLE segments (
    id BLOB PRIMARY KEY NOT NULL CHECK (length(id) = 16),
    startDate REAL NOT NULL,
    endDate REAL NOT NULL,
    duration REAL NOT NULL,
    applicationName TEXT NOT NULL,
    bundleIdentifier TEXT NOT NULL,
    classificationRawValue TEXT NOT NULL,
    isInactive INTEGER NOT NULL,
    activitySourceRawValue TEXT,
    browserBundleIdentifier TEXT,
    hostname TEXT,
    tabSessionIdentifier BLOB,
    pdfIdentifier BLOB,
    pdfDisplayLabelStorage TEXT,
    pdfLabelSourceRawValue TEXT,
    browserFallbackReasonRawValue TEXT,
    session BLOB NOT NULL REFERENCES sessions (id) ON DELETE CASCADE
);
CREATE INDEX segments_by_session ON segments (session, startDate);

CREATE TABLE confirmed_intervals (
    id BLOB PRIMARY KEY NOT NULL CHECK (length(id) = 16),
    startDate REAL NOT NULL,
    endDate REAL NOT NULL,
    stateRawValue TEXT NOT NULL,
    sourceRawValue TEXT NOT NULL,
    createdAt REAL NOT NULL,
    supersededAt REAL,
    session BLOB NOT NULL REFERENCES sessions (id) ON DELETE CASCADE
);
CREATE INDEX confirmed_intervals_by_session ON confirmed_intervals (session, startDate);

CREATE TABLE pdf_identities (
    id BLOB PRIMARY KEY NOT NULL CHECK (length(id) = 16),
    browserBundleIdentifier TEXT NOT NULL,
    displayLabelStorage TEXT,
    labelSourceRawValue TEXT,
    classificationRawValue TEXT NOT NULL,
    createdAt REAL NOT NULL,
    session BLOB REFERENCES sessions (id) ON DELETE CASCADE
);
CREATE INDEX pdf_identities_by_session ON pdf_identities (session);

CREATE TABLE app_classifications (
    bundleIdentifier TEXT PRIMARY KEY NOT NULL,
    applicationName TEXT NOT NULL,
    classificationRawValue TEXT NOT NULL,
    updatedAt REAL NOT NULL
);

CREATE TABLE website_classifications (
    hostname TEXT PRIMARY KEY NOT NULL,
    classificationRawValue TEXT NOT NULL,
    updatedAt REAL NOT NULL
);

CREATE TABLE local_pdf_preferences (
    id BLOB PRIMARY KEY NOT NULL CHECK (length(id) = 16),
    filenameLabelsEnabled INTEGER NOT NULL,
    defaultClassificationRawValue TEXT NOT NULL
);
)sql";

constexpr std::array kStoreMigrations{
    SchemaMigration{1, "sessions, segments, confirmations, PDF identities and rules",
                    kInitialLayout},
};

constexpr std::string_view kMigrationTable =
    "CREATE TABLE IF NOT EXISTS schema_migrations ("
    "version INTEGER PRIMARY KEY NOT NULL, description TEXT NOT NULL)";

StoreError newerLayout(long long recorded, long long known) {
    return StoreError{"the store was written by a newer version of Lumenote (schema version " +
                          std::to_string(recorded) + "; this version reads up to " +
                          std::to_string(known) + ")",
                      StoreErrorKind::newerSchema};
}

}  // namespace

std::span<const SchemaMigration> storeMigrations() {
    return kStoreMigrations;
}

Result<long long, StoreError> recordedSchemaVersion(SqliteConnection& connection) {
    auto tables = connection.queryInteger(
        "SELECT count(*) FROM sqlite_schema WHERE type = 'table' AND name = 'schema_migrations'");
    if (!tables) {
        return fail(tables.error());
    }
    if (*tables == 0) {
        return 0LL;
    }
    return connection.queryInteger("SELECT coalesce(max(version), 0) FROM schema_migrations");
}

Result<void, StoreError> migrate(SqliteConnection& connection,
                                 std::span<const SchemaMigration> migrations) {
    const long long known = migrations.empty() ? 0 : migrations.back().version;
    // Reading first keeps the common case (an up-to-date file) free of any
    // write lock, so that opening never waits for a recording process.
    auto recorded = recordedSchemaVersion(connection);
    if (!recorded) {
        return fail(recorded.error());
    }
    if (*recorded > known) {
        return fail(newerLayout(*recorded, known));
    }
    if (*recorded == known) {
        return {};
    }

    auto transaction = SqliteTransaction::beginImmediate(connection);
    if (!transaction) {
        return fail(transaction.error());
    }
    if (auto created = connection.execute(kMigrationTable); !created) {
        return created;
    }
    recorded = recordedSchemaVersion(connection);
    if (!recorded) {
        return fail(recorded.error());
    }
    if (*recorded > known) {
        return fail(newerLayout(*recorded, known));
    }
    for (const SchemaMigration& migration : migrations) {
        if (migration.version <= *recorded) {
            continue;
        }
        if (auto applied = connection.execute(migration.sql); !applied) {
            // The kind stays the cause's: a migration that ran out of disk
            // space is a full store, not some other failure.
            return fail(StoreError{"schema migration " + std::to_string(migration.version) +
                                       " failed: " + applied.error().description,
                                   applied.error().kind});
        }
        auto record = connection.cached(
            "INSERT INTO schema_migrations (version, description) VALUES (?1, ?2)");
        if (!record) {
            return fail(record.error());
        }
        (*record)->bind(1, migration.version);
        (*record)->bind(2, migration.description);
        if (auto inserted = (*record)->run(); !inserted) {
            return inserted;
        }
    }
    return transaction->commit();
}

Result<void, StoreError> requireCurrentLayout(SqliteConnection& connection,
                                              std::span<const SchemaMigration> migrations) {
    const long long known = migrations.empty() ? 0 : migrations.back().version;
    auto recorded = recordedSchemaVersion(connection);
    if (!recorded) {
        return fail(recorded.error());
    }
    if (*recorded > known) {
        return fail(newerLayout(*recorded, known));
    }
    if (*recorded < known) {
        return fail(StoreError{"the store has an older layout (schema version " +
                               std::to_string(*recorded) + "; this version writes " +
                               std::to_string(known) +
                               "), which is brought up to date when Lumenote records again"});
    }
    return {};
}

}  // namespace lumenote::store
