#include "portability/backup_reader.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "portability/backup_record_checks.hpp"
#include "portability/backup_record_decoder.hpp"

namespace lumenote::portability {

namespace {

enum RootMember : std::size_t {
    formatVersion,
    appVersion,
    createdAt,
    preferences,
    applicationRules,
    websiteRules,
    sessions,
    rootMemberCount
};

constexpr std::array<std::string_view, rootMemberCount> kRootMemberNames{
    "formatVersion",    "appVersion",   "createdAt", "preferences",
    "applicationRules", "websiteRules", "sessions"};

std::optional<RootMember> rootMember(std::string_view key) {
    const auto found = std::find(kRootMemberNames.begin(), kRootMemberNames.end(), key);
    if (found == kRootMemberNames.end()) {
        return std::nullopt;
    }
    return static_cast<RootMember>(found - kRootMemberNames.begin());
}

// A scanner failure as the error to report; `sessionPosition` is the session
// being read (counting from 1), 0 outside the sessions.
TallywiseBackupError scanFailure(const ScanError& error, std::size_t sessionPosition) {
    switch (error.failure) {
        case ScanFailure::unreadable:
            return backupError(TallywiseBackupFailure::unreadableFile);
        case ScanFailure::tooLarge:
            return sessionPosition > 0
                       ? invalidRecord(invalid_record::invalidSessionAt(sessionPosition))
                       : invalidRecord(invalid_record::metadataOrPreferences);
        case ScanFailure::notAnArray:
            return invalidRecord(invalid_record::metadataOrPreferences);
        case ScanFailure::malformed:
            break;
    }
    return invalidRecord(invalid_record::malformedJson(error.offset));
}

// The key of a root member resolved; an unreadable key is malformed JSON.
Result<std::optional<RootMember>, TallywiseBackupError> nextRootMember(JsonRootScanner& scanner,
                                                                       BackupRecordDecoder& decoder,
                                                                       bool& ended) {
    auto key = scanner.nextMember();
    if (!key) {
        return fail(scanFailure(key.error(), 0));
    }
    if (!*key) {
        ended = true;
        return std::optional<RootMember>();
    }
    const auto resolved = decoder.key(**key);
    if (!resolved) {
        return fail(invalidRecord(invalid_record::metadataOrPreferences));
    }
    return rootMember(*resolved);
}

// Whether two of `keys` are equal.
bool repeats(std::vector<std::string> keys) {
    std::sort(keys.begin(), keys.end());
    return std::adjacent_find(keys.begin(), keys.end()) != keys.end();
}

// The lowest identity that occurs twice in `ids`, which it sorts.
std::optional<Uuid> firstRepeated(std::vector<Uuid>& ids) {
    std::sort(ids.begin(), ids.end());
    const auto repeated = std::adjacent_find(ids.begin(), ids.end());
    if (repeated == ids.end()) {
        return std::nullopt;
    }
    return *repeated;
}

class DocumentValidation {
  public:
    DocumentValidation(const BackupValidationLimits& limits, const BackupProgress& progress)
        : limits_(limits), progress_(progress) {}

    Result<BackupValidationReport, TallywiseBackupError> run(
        const std::function<std::unique_ptr<ByteSource>()>& openBytes);

  private:
    Result<void, TallywiseBackupError> scanRoot(ByteSource& bytes, bool& sessionsDeferred);
    Result<void, TallywiseBackupError> decodeMetadata();
    Result<void, TallywiseBackupError> decodeRules();
    Result<void, TallywiseBackupError> readSessions(JsonRootScanner& scanner);
    Result<void, TallywiseBackupError> readSession(const ScannedText& text);
    Result<void, TallywiseBackupError> checkIdentities();
    std::vector<std::string> warnings() const;
    // The text of a member kept by scanRoot (which pads it).
    ScannedText textOf(RootMember member) const {
        return ScannedText{std::string_view(texts_[member])
                               .substr(0, texts_[member].size() - kScannedTextPadding)};
    }

    const BackupValidationLimits& limits_;
    const BackupProgress& progress_;
    BackupRecordDecoder decoder_;
    std::array<bool, rootMemberCount> seen_{};
    // The texts of the members other than `sessions`, decoded once all are
    // there, each followed by kScannedTextPadding bytes.
    std::array<std::string, rootMemberCount> texts_;
    bool metadataDecoded_ = false;

    BackupSession session_;  // the session being read, its storage reused
    BackupValidationReport report_;
    std::vector<Uuid> sessionIds_;
    std::vector<Uuid> segmentIds_;
    std::vector<Uuid> confirmationIds_;
    std::vector<Uuid> pdfIdentityIds_;
    std::optional<Uuid> overlap_;
    std::size_t unknownValues_ = 0;
};

Result<BackupValidationReport, TallywiseBackupError> DocumentValidation::run(
    const std::function<std::unique_ptr<ByteSource>()>& openBytes) {
    bool sessionsDeferred = false;
    {
        const auto bytes = openBytes();
        if (auto scanned = scanRoot(*bytes, sessionsDeferred); !scanned) {
            return fail(scanned.error());
        }
    }
    if (!metadataDecoded_) {
        if (auto decoded = decodeMetadata(); !decoded) {
            return fail(decoded.error());
        }
    }
    if (sessionsDeferred) {
        // The sessions came before some of the metadata: they are read
        // again, now that the version is known to be supported.
        const auto bytes = openBytes();
        JsonRootScanner scanner(*bytes, limits_.maximumSessionBytes);
        bool ended = false;
        while (!ended) {
            auto member = nextRootMember(scanner, decoder_, ended);
            if (!member) {
                return fail(member.error());
            }
            if (*member == sessions) {
                if (auto read = readSessions(scanner); !read) {
                    return fail(read.error());
                }
                break;
            }
        }
    }
    if (auto unique = checkIdentities(); !unique) {
        return fail(unique.error());
    }
    if (overlap_) {
        return fail(invalidRecord(invalid_record::overlappingActiveConfirmation(*overlap_)));
    }
    report_.warnings = warnings();
    return std::move(report_);
}

Result<void, TallywiseBackupError> DocumentValidation::scanRoot(ByteSource& bytes,
                                                                bool& sessionsDeferred) {
    JsonRootScanner scanner(bytes, limits_.maximumSessionBytes);
    bool ended = false;
    while (true) {
        auto member = nextRootMember(scanner, decoder_, ended);
        if (!member) {
            return fail(member.error());
        }
        if (ended) {
            return {};
        }
        if (!*member) {
            continue;
        }
        const RootMember which = **member;
        if (seen_[which]) {
            return fail(invalidRecord(invalid_record::metadataOrPreferences));
        }
        seen_[which] = true;
        if (which != sessions) {
            auto value = scanner.memberValue();
            if (!value) {
                return fail(scanFailure(value.error(), 0));
            }
            texts_[which].assign(value->text);
            texts_[which].append(kScannedTextPadding, '\0');
            continue;
        }
        const bool metadataFirst =
            std::all_of(seen_.begin(), seen_.end(), [](bool s) { return s; });
        if (!metadataFirst) {
            sessionsDeferred = true;
            continue;
        }
        if (auto decoded = decodeMetadata(); !decoded) {
            return decoded;
        }
        if (auto read = readSessions(scanner); !read) {
            return read;
        }
    }
}

Result<void, TallywiseBackupError> DocumentValidation::decodeMetadata() {
    metadataDecoded_ = true;
    // The version is decoded before anything else, so that a later format
    // is reported as such rather than as whatever it changed.
    if (!seen_[formatVersion]) {
        return fail(invalidRecord(invalid_record::metadataOrPreferences));
    }
    auto version = decoder_.integer(textOf(formatVersion));
    if (!version) {
        return fail(version.error());
    }
    if (*version != kBackupFormatVersion) {
        return fail(
            backupError(TallywiseBackupFailure::unsupportedVersion, std::to_string(*version)));
    }
    if (!std::all_of(seen_.begin(), seen_.end(), [](bool s) { return s; })) {
        return fail(invalidRecord(invalid_record::metadataOrPreferences));
    }
    BackupDocumentSummary& document = report_.document;
    document.formatVersion = *version;
    auto app = decoder_.text(textOf(appVersion));
    auto created = decoder_.date(textOf(createdAt));
    auto chosen = decoder_.preferences(textOf(preferences));
    if (!app || !created || !chosen) {
        return fail(invalidRecord(invalid_record::metadataOrPreferences));
    }
    document.appVersion = std::move(*app);
    document.createdAt = *created;
    document.preferences = std::move(*chosen);
    if (auto broken = checkMetadata(document, limits_)) {
        return fail(std::move(*broken));
    }
    return decodeRules();
}

Result<void, TallywiseBackupError> DocumentValidation::decodeRules() {
    BackupDocumentSummary& document = report_.document;
    auto applications = decoder_.applicationRules(textOf(applicationRules));
    if (!applications) {
        return fail(applications.error());
    }
    if (applications->size() > limits_.maximumApplicationRules) {
        return fail(invalidRecord(invalid_record::tooManyApplicationRules));
    }
    std::vector<std::string> keys;
    for (const BackupApplicationRule& rule : *applications) {
        if (auto broken = checkApplicationRule(rule, limits_)) {
            return fail(std::move(*broken));
        }
        keys.push_back(rule.bundleIdentifier);
    }
    if (repeats(std::move(keys))) {
        return fail(invalidRecord(invalid_record::invalidApplicationRule));
    }
    auto websites = decoder_.websiteRules(textOf(websiteRules));
    if (!websites) {
        return fail(websites.error());
    }
    if (websites->size() > limits_.maximumWebsiteRules) {
        return fail(invalidRecord(invalid_record::tooManyWebsiteRules));
    }
    keys.clear();
    for (const BackupWebsiteRule& rule : *websites) {
        if (auto broken = checkWebsiteRule(rule, limits_)) {
            return fail(std::move(*broken));
        }
        keys.push_back(rule.hostname);
    }
    if (repeats(std::move(keys))) {
        return fail(invalidRecord(invalid_record::invalidWebsiteRule));
    }
    document.applicationRules = std::move(*applications);
    document.websiteRules = std::move(*websites);
    report_.ruleCount = document.applicationRules.size() + document.websiteRules.size();
    for (std::string& text : texts_) {
        text = std::string();
    }
    return {};
}

Result<void, TallywiseBackupError> DocumentValidation::readSessions(JsonRootScanner& scanner) {
    while (true) {
        auto element = scanner.nextElement();
        if (!element) {
            return fail(scanFailure(element.error(), report_.document.sessionCount + 1));
        }
        if (!*element) {
            return {};
        }
        if (auto read = readSession(**element); !read) {
            return read;
        }
    }
}

Result<void, TallywiseBackupError> DocumentValidation::readSession(const ScannedText& text) {
    BackupDocumentSummary& document = report_.document;
    const std::size_t position = ++document.sessionCount;
    if (position > limits_.maximumSessions) {
        return fail(invalidRecord(invalid_record::tooManySessions));
    }
    if (auto decoded = decoder_.session(text, position, session_); !decoded) {
        return decoded;
    }
    const BackupSession* const session = &session_;
    if (auto broken = checkSession(*session, limits_)) {
        return fail(std::move(*broken));
    }
    const auto& confirmations = session->confirmedNoInputIntervals;
    report_.segmentCount += session->segments.size();
    document.confirmationCount += confirmations ? confirmations->size() : 0;
    document.pdfIdentityCount += session->localPDFIdentities.size();
    if (report_.segmentCount > limits_.maximumSegments) {
        return fail(invalidRecord(invalid_record::tooManySegments));
    }
    if (document.confirmationCount > limits_.maximumConfirmations) {
        return fail(invalidRecord(invalid_record::tooManyConfirmations));
    }
    if (document.pdfIdentityCount > limits_.maximumPDFIdentities) {
        return fail(invalidRecord(invalid_record::tooManyPDFIdentities));
    }
    if (document.sessionCount + report_.segmentCount + document.confirmationCount +
            document.pdfIdentityCount + report_.ruleCount >
        limits_.maximumTotalRecords) {
        return fail(invalidRecord(invalid_record::tooManyRecords));
    }

    sessionIds_.push_back(session->id);
    for (const BackupSegment& segment : session->segments) {
        segmentIds_.push_back(segment.id);
    }
    if (confirmations) {
        for (const BackupConfirmedInterval& interval : *confirmations) {
            confirmationIds_.push_back(interval.id);
        }
        if (!overlap_) {
            overlap_ = firstOverlappingConfirmation(*confirmations, limits_.intervalTolerance);
        }
    }
    for (const BackupPDFIdentity& identity : session->localPDFIdentities) {
        pdfIdentityIds_.push_back(identity.id);
    }
    unknownValues_ += recordsWithUnknownValues(*session);
    if (progress_ && position % kProgressInterval == 0) {
        progress_(position);
    }
    return {};
}

Result<void, TallywiseBackupError> DocumentValidation::checkIdentities() {
    for (std::vector<Uuid>* ids :
         {&sessionIds_, &segmentIds_, &confirmationIds_, &pdfIdentityIds_}) {
        if (const auto repeated = firstRepeated(*ids)) {
            return fail(
                backupError(TallywiseBackupFailure::duplicateIdentifier, repeated->upperString()));
        }
        *ids = std::vector<Uuid>();
    }
    return {};
}

std::vector<std::string> DocumentValidation::warnings() const {
    std::vector<std::string> warnings;
    if (report_.document.sessionCount == 0) {
        warnings.emplace_back("The backup contains no sessions.");
    }
    if (unknownValues_ > 0) {
        warnings.push_back(fmt::format(
            "{} records hold values this version of Lumenote does not know; they are restored "
            "as they are.",
            unknownValues_));
    }
    const BackupPreferences& chosen = report_.document.preferences;
    const std::size_t present =
        chosen.appearance.has_value() + chosen.defaultDuration.has_value() +
        chosen.inactivityThreshold.has_value() + chosen.longSleep.has_value() +
        chosen.notificationsEnabled.has_value() + chosen.notificationsIncludeSubject.has_value() +
        chosen.browserTrackingEnabled.has_value() + chosen.hostnameTrackingEnabled.has_value() +
        chosen.localPDFDetectionEnabled.has_value() + chosen.manualPDFLabelsEnabled.has_value() +
        chosen.rememberSubject.has_value() + chosen.rememberGoal.has_value() +
        chosen.rememberDuration.has_value() + chosen.onboardingCompletedVersion.has_value();
    if (present < kSupportedPreferenceCount) {
        warnings.push_back(fmt::format(
            "{} of the supported preferences are missing from the backup; those settings stay as "
            "they are.",
            kSupportedPreferenceCount - present));
    }
    return warnings;
}

}  // namespace

Result<BackupValidationReport, TallywiseBackupError> validateBackupDocument(
    const std::function<std::unique_ptr<ByteSource>()>& openBytes,
    const BackupValidationLimits& limits, const BackupProgress& progress) {
    DocumentValidation validation(limits, progress);
    return validation.run(openBytes);
}

Result<void, TallywiseBackupError> forEachBackupSession(ByteSource& bytes,
                                                        const BackupValidationLimits& limits,
                                                        const BackupSessionVisitor& visitor) {
    JsonRootScanner scanner(bytes, limits.maximumSessionBytes);
    BackupRecordDecoder decoder;
    BackupSession session;
    bool ended = false;
    while (!ended) {
        auto member = nextRootMember(scanner, decoder, ended);
        if (!member) {
            return fail(member.error());
        }
        if (*member != sessions) {
            continue;
        }
        for (std::size_t position = 1;; ++position) {
            auto element = scanner.nextElement();
            if (!element) {
                return fail(scanFailure(element.error(), position));
            }
            if (!*element) {
                break;
            }
            if (auto decoded = decoder.session(**element, position, session); !decoded) {
                return decoded;
            }
            if (auto broken = checkSession(session, limits)) {
                return fail(std::move(*broken));
            }
            if (auto visited = visitor(session); !visited) {
                return visited;
            }
        }
    }
    return {};
}

}  // namespace lumenote::portability
