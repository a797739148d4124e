// Shared pieces of the store tests: a temporary folder per test and records
// with every field filled in, or every optional field empty.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "recording/session_records.hpp"
#include "store/sqlite_recording_store.hpp"

namespace lumenote::store {

// Failure messages name the kind rather than its number.
inline void PrintTo(StoreErrorKind kind, std::ostream* out) {
    *out << rawValue(kind);
}

}  // namespace lumenote::store

namespace lumenote::testing {

class TemporaryFolderTest : public ::testing::Test {
  protected:
    void SetUp() override {
        const char* base = std::getenv("TMPDIR");
        std::string pattern = std::string(base && *base ? base : "/tmp") + "/store-test-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        folder_ = pattern;
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::filesystem::path storeFile() const { return folder_ / "Lumenote" / "lumenote.sqlite"; }

    std::unique_ptr<store::SqliteRecordingStore> openStore() { return openStore(storeFile()); }
    std::unique_ptr<store::SqliteRecordingStore> openStore(
        const std::filesystem::path& file, const store::SqliteStoreOptions& options = {}) {
        auto store = store::SqliteRecordingStore::open(file, options);
        EXPECT_TRUE(store.ok()) << (store.ok() ? "" : store.error().description);
        return store.ok() ? std::move(*store) : nullptr;
    }

    std::filesystem::path folder_;
};

inline Uuid uuidNumbered(std::uint8_t number) {
    Uuid::Bytes bytes{};
    bytes[15] = number;
    return Uuid(bytes);
}

// A finished session with every optional column set; the ids are numbered so
// that orderings by id are known.
inline recording::StudySession fullSession(std::uint8_t number, Date start) {
    recording::StudySession session(uuidNumbered(number), "Physik — Übungsblatt 3 · 日本語",
                                    "Kapitel 4 fertig", 2700.5, start);
    session.setNotes("line one\nline two with \"quotes\" and 'apostrophes'");
    session.timingModeStorage = "open_ended";
    session.endDate = start.addingSeconds(2712.25);
    session.statusRawValue = "completed";
    session.timerDuration = 2700.125;
    session.focusedDuration = 1500.5;
    session.distractedDuration = 300.25;
    session.neutralDuration = 200.0;
    session.unclassifiedDurationStorage = 100.0;
    session.inactiveDuration = 90.75;
    session.ignoredDurationStorage = 12.0;
    session.focusScore = 83.33333333333333;
    session.calculationVersionStorage = 3;
    session.originatingTemplateIDStorage = uuidNumbered(200);
    session.studyModeStorage = "mixedStudy";
    session.schemaVersionStorage = recording::kCurrentSessionSchemaVersion;
    session.passiveStudyDurationStorage = 60.0;
    session.confirmedBreakDurationStorage = 30.0;
    session.systemExcludedDurationStorage = 5.5;
    return session;
}

// A session as the first layout wrote it: no optional column set.
inline recording::StudySession bareSession(std::uint8_t number, Date start) {
    recording::StudySession session;
    session.id = uuidNumbered(number);
    session.subject = "";
    session.goal = "";
    session.startDate = start;
    session.statusRawValue = "running";
    return session;
}

inline recording::ActivitySegment fullSegment(std::uint8_t number, const Uuid& session,
                                              Date start) {
    recording::ActivitySegment segment(uuidNumbered(number), start, start.addingSeconds(61.5),
                                       60.25, "Vivaldi – Überblick", "com.vivaldi.Vivaldi",
                                       classification::ActivityClassification::focused, false);
    segment.activitySourceRawValue = "localPDF";
    segment.browserBundleIdentifier = "com.vivaldi.Vivaldi";
    segment.hostname = "example.org";
    segment.tabSessionIdentifier = uuidNumbered(201);
    segment.pdfIdentifier = uuidNumbered(202);
    segment.pdfDisplayLabelStorage = "Übung 3.pdf";
    segment.pdfLabelSourceRawValue = "filename";
    segment.browserFallbackReasonRawValue = "staleEvent";
    segment.session = session;
    return segment;
}

inline recording::ActivitySegment bareSegment(std::uint8_t number, const Uuid& session,
                                              Date start) {
    recording::ActivitySegment segment(uuidNumbered(number), start, start.addingSeconds(10), 10, "",
                                       "", classification::ActivityClassification::unclassified,
                                       true);
    segment.session = session;
    return segment;
}

inline recording::ConfirmedNoInputInterval confirmation(std::uint8_t number, const Uuid& session,
                                                        Date start) {
    recording::ConfirmedNoInputInterval interval(
        uuidNumbered(number), start, start.addingSeconds(300),
        recording::ConfirmedStudyState::passiveStudy,
        recording::ConfirmedStudyStateSource::returnPrompt, start.addingSeconds(400));
    interval.session = session;
    return interval;
}

inline classification::LocalPDFIdentity pdfIdentity(std::uint8_t number,
                                                    std::optional<Uuid> session, Date createdAt,
                                                    std::optional<std::string> labelSource) {
    classification::LocalPDFIdentity identity;
    identity.id = uuidNumbered(number);
    identity.browserBundleIdentifier = "org.mozilla.firefox";
    identity.displayLabelStorage = "Skript Ölquellen.pdf";
    identity.labelSourceRawValue = std::move(labelSource);
    identity.classificationRawValue = "focused";
    identity.createdAt = createdAt;
    identity.session = session;
    return identity;
}

}  // namespace lumenote::testing
