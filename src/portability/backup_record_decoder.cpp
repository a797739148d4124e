#include "portability/backup_record_decoder.hpp"

#include <simdjson.h>

#include <array>
#include <cstdint>
#include <string_view>

namespace lumenote::portability {

namespace od = simdjson::ondemand;

static_assert(kScannedTextPadding >= simdjson::SIMDJSON_PADDING,
              "the scanner's padding must cover what simdjson reads ahead");

struct BackupRecordDecoder::Parser {
    od::parser parser;
};

namespace {

// Where a nested record that failed names itself, so that the error points
// at the segment, confirmation or PDF identity rather than at its session.
struct Context {
    std::string detail;
};

template <typename Record>
using Reader = bool (*)(od::value&, Record&, Context&);

// A member of a record: how it is read, and for an optional one how it is
// emptied when a record leaves it out (null for a required one).
template <typename Record>
struct Member {
    std::string_view name;
    Reader<Record> read;
    void (*clear)(Record&);
};

// Decodes an object's members with the table `members` into `record`, which
// may hold an earlier record: every member is assigned or emptied, so that
// the texts and lists of the earlier one are reused rather than allocated
// again. Unknown members are skipped; a member seen twice or a required one
// missing is a failure.
template <typename Record, std::size_t N>
bool decodeObject(od::value& value, Record& record, const std::array<Member<Record>, N>& members,
                  Context& context) {
    static_assert(N <= 32, "members are tracked in 32 bits");
    od::object object;
    if (value.get_object().get(object)) {
        return false;
    }
    std::uint32_t seen = 0;
    for (auto fieldResult : object) {
        od::field field;
        std::string_view key;
        if (std::move(fieldResult).get(field) || field.unescaped_key().get(key)) {
            return false;
        }
        for (std::size_t index = 0; index < N; ++index) {
            if (members[index].name != key) {
                continue;
            }
            const std::uint32_t bit = std::uint32_t{1} << index;
            if ((seen & bit) != 0 || !members[index].read(field.value(), record, context)) {
                return false;
            }
            seen |= bit;
            break;
        }
    }
    for (std::size_t index = 0; index < N; ++index) {
        if ((seen & (std::uint32_t{1} << index)) != 0) {
            continue;
        }
        if (members[index].clear == nullptr) {
            return false;
        }
        members[index].clear(record);
    }
    return true;
}

bool isNull(od::value& value, bool& null) {
    return !value.is_null().get(null);
}

bool readText(od::value& value, std::string& into) {
    std::string_view text;
    if (value.get_string().get(text)) {
        return false;
    }
    into.assign(text);
    return true;
}

bool readNumber(od::value& value, double& into) {
    return !value.get_double().get(into);
}

bool readInteger(od::value& value, long long& into) {
    std::int64_t number = 0;
    if (value.get_int64().get(number)) {
        return false;
    }
    into = number;
    return true;
}

bool readBoolean(od::value& value, bool& into) {
    return !value.get_bool().get(into);
}

bool readUuid(od::value& value, Uuid& into) {
    std::string_view text;
    if (value.get_string().get(text)) {
        return false;
    }
    const auto parsed = Uuid::parse(text);
    if (!parsed) {
        return false;
    }
    into = *parsed;
    return true;
}

bool readDate(od::value& value, Date& into) {
    od::json_type type;
    if (value.type().get(type)) {
        return false;
    }
    if (type == od::json_type::number) {
        double seconds = 0;
        if (!readNumber(value, seconds)) {
            return false;
        }
        into = Date{seconds};
        return true;
    }
    std::string_view text;
    if (value.get_string().get(text)) {
        return false;
    }
    const auto parsed = parseIso8601(text);
    if (!parsed) {
        return false;
    }
    into = *parsed;
    return true;
}

// An optional member: null leaves it empty (as being absent does).
template <typename T, bool (*Read)(od::value&, T&)>
bool readOptional(od::value& value, std::optional<T>& into) {
    bool null = false;
    if (!isNull(value, null)) {
        return false;
    }
    if (null) {
        into.reset();
        return true;
    }
    if (!into) {
        into.emplace();
    }
    return Read(value, *into);
}

constexpr auto optionalText = readOptional<std::string, readText>;
constexpr auto optionalNumber = readOptional<double, readNumber>;
constexpr auto optionalInteger = readOptional<long long, readInteger>;
constexpr auto optionalBoolean = readOptional<bool, readBoolean>;
constexpr auto optionalUuid = readOptional<Uuid, readUuid>;
constexpr auto optionalDate = readOptional<Date, readDate>;

// A table entry: the member `name`, read with `Read` into the field `Field`.
template <typename Record, auto Field, auto Read>
bool readField(od::value& value, Record& record, Context&) {
    return Read(value, record.*Field);
}

template <typename Record, auto Field>
void clearField(Record& record) {
    record.*Field = {};
}

template <typename Record, auto Field, auto Read>
constexpr Member<Record> member(std::string_view name, bool required) {
    return {name, &readField<Record, Field, Read>, required ? nullptr : &clearField<Record, Field>};
}

constexpr std::array kSegmentMembers{
    member<BackupSegment, &BackupSegment::id, readUuid>("id", true),
    member<BackupSegment, &BackupSegment::startDate, readDate>("startDate", true),
    member<BackupSegment, &BackupSegment::endDate, readDate>("endDate", true),
    member<BackupSegment, &BackupSegment::duration, readNumber>("duration", true),
    member<BackupSegment, &BackupSegment::applicationName, readText>("applicationName", true),
    member<BackupSegment, &BackupSegment::bundleIdentifier, readText>("bundleIdentifier", true),
    member<BackupSegment, &BackupSegment::classificationRawValue, readText>("classification", true),
    member<BackupSegment, &BackupSegment::isInactive, readBoolean>("isInactive", true),
    member<BackupSegment, &BackupSegment::activitySourceRawValue, optionalText>("activitySource",
                                                                                false),
    member<BackupSegment, &BackupSegment::browserBundleIdentifier, optionalText>(
        "browserBundleIdentifier", false),
    member<BackupSegment, &BackupSegment::hostname, optionalText>("hostname", false),
    member<BackupSegment, &BackupSegment::tabSessionIdentifier, optionalUuid>(
        "tabSessionIdentifier", false),
    member<BackupSegment, &BackupSegment::pdfIdentifier, optionalUuid>("pdfIdentifier", false),
    member<BackupSegment, &BackupSegment::pdfDisplayLabelStorage, optionalText>("pdfDisplayLabel",
                                                                                false),
    member<BackupSegment, &BackupSegment::pdfLabelSourceRawValue, optionalText>("pdfLabelSource",
                                                                                false),
    member<BackupSegment, &BackupSegment::browserFallbackReasonRawValue, optionalText>(
        "browserFallbackReason", false),
};

constexpr std::array kConfirmationMembers{
    member<BackupConfirmedInterval, &BackupConfirmedInterval::id, readUuid>("id", true),
    member<BackupConfirmedInterval, &BackupConfirmedInterval::startDate, readDate>("startDate",
                                                                                   true),
    member<BackupConfirmedInterval, &BackupConfirmedInterval::endDate, readDate>("endDate", true),
    member<BackupConfirmedInterval, &BackupConfirmedInterval::stateRawValue, readText>("state",
                                                                                       true),
    member<BackupConfirmedInterval, &BackupConfirmedInterval::sourceRawValue, readText>("source",
                                                                                        true),
    member<BackupConfirmedInterval, &BackupConfirmedInterval::createdAt, readDate>("createdAt",
                                                                                   true),
    member<BackupConfirmedInterval, &BackupConfirmedInterval::supersededAt, optionalDate>(
        "supersededAt", false),
};

constexpr std::array kPDFIdentityMembers{
    member<BackupPDFIdentity, &BackupPDFIdentity::id, readUuid>("id", true),
    member<BackupPDFIdentity, &BackupPDFIdentity::browserBundleIdentifier, readText>(
        "browserBundleIdentifier", true),
    member<BackupPDFIdentity, &BackupPDFIdentity::displayLabelStorage, optionalText>("displayLabel",
                                                                                     false),
    member<BackupPDFIdentity, &BackupPDFIdentity::labelSourceRawValue, optionalText>("labelSource",
                                                                                     false),
    member<BackupPDFIdentity, &BackupPDFIdentity::classificationRawValue, readText>(
        "classification", true),
    member<BackupPDFIdentity, &BackupPDFIdentity::createdAt, readDate>("createdAt", true),
};

// Reads a list of records, each with `members`; a record that fails names
// itself in `context` once its id is known.
template <typename Record, std::size_t N>
bool readRecords(od::value& value, std::vector<Record>& into,
                 const std::array<Member<Record>, N>& members, Context& context,
                 std::string (*name)(const Uuid&)) {
    od::array array;
    if (value.get_array().get(array)) {
        return false;
    }
    std::size_t used = 0;
    for (auto elementResult : array) {
        od::value element;
        if (std::move(elementResult).get(element)) {
            return false;
        }
        if (used == into.size()) {
            into.emplace_back();
        }
        Record& record = into[used];
        // Not a member: the nesting says which session owns the record.
        record.session.reset();
        record.id = Uuid();
        if (!decodeObject(element, record, members, context)) {
            if (!record.id.isNil()) {
                context.detail = name(record.id);
            }
            return false;
        }
        ++used;
    }
    into.resize(used);
    return true;
}

bool readSegments(od::value& value, std::vector<BackupSegment>& into, Context& context) {
    return readRecords(value, into, kSegmentMembers, context, invalid_record::invalidSegment);
}

bool readConfirmations(od::value& value, std::optional<std::vector<BackupConfirmedInterval>>& into,
                       Context& context) {
    bool null = false;
    if (!isNull(value, null)) {
        return false;
    }
    if (null) {
        into.reset();
        return true;
    }
    if (!into) {
        into.emplace();
    }
    return readRecords(value, *into, kConfirmationMembers, context,
                       invalid_record::invalidConfirmation);
}

bool readPDFIdentities(od::value& value, std::vector<BackupPDFIdentity>& into, Context& context) {
    return readRecords(value, into, kPDFIdentityMembers, context,
                       invalid_record::invalidPDFIdentity);
}

constexpr std::array kSessionMembers{
    member<BackupSession, &BackupSession::id, readUuid>("id", true),
    member<BackupSession, &BackupSession::subject, readText>("subject", true),
    member<BackupSession, &BackupSession::goal, readText>("goal", true),
    member<BackupSession, &BackupSession::notes, readText>("notes", true),
    member<BackupSession, &BackupSession::plannedDuration, readNumber>("plannedDuration", true),
    member<BackupSession, &BackupSession::startDate, readDate>("startDate", true),
    member<BackupSession, &BackupSession::endDate, optionalDate>("endDate", false),
    member<BackupSession, &BackupSession::status, readText>("status", true),
    member<BackupSession, &BackupSession::timerDuration, readNumber>("timerDuration", true),
    member<BackupSession, &BackupSession::calculationVersion, optionalInteger>("calculationVersion",
                                                                               false),
    member<BackupSession, &BackupSession::studyMode, optionalText>("studyMode", false),
    member<BackupSession, &BackupSession::schemaVersion, optionalInteger>("schemaVersion", false),
    member<BackupSession, &BackupSession::timingMode, optionalText>("timingMode", false),
    Member<BackupSession>{"confirmedNoInputIntervals",
                          [](od::value& value, BackupSession& session, Context& context) {
                              return readConfirmations(value, session.confirmedNoInputIntervals,
                                                       context);
                          },
                          &clearField<BackupSession, &BackupSession::confirmedNoInputIntervals>},
    Member<BackupSession>{"segments",
                          [](od::value& value, BackupSession& session, Context& context) {
                              return readSegments(value, session.segments, context);
                          },
                          nullptr},
    Member<BackupSession>{"localPDFIdentities",
                          [](od::value& value, BackupSession& session, Context& context) {
                              return readPDFIdentities(value, session.localPDFIdentities, context);
                          },
                          nullptr},
};

constexpr std::array kApplicationRuleMembers{
    member<BackupApplicationRule, &BackupApplicationRule::bundleIdentifier, readText>(
        "bundleIdentifier", true),
    member<BackupApplicationRule, &BackupApplicationRule::applicationName, readText>(
        "applicationName", true),
    member<BackupApplicationRule, &BackupApplicationRule::classificationRawValue, readText>(
        "classification", true),
    member<BackupApplicationRule, &BackupApplicationRule::updatedAt, readDate>("updatedAt", true),
};

constexpr std::array kWebsiteRuleMembers{
    member<BackupWebsiteRule, &BackupWebsiteRule::hostname, readText>("hostname", true),
    member<BackupWebsiteRule, &BackupWebsiteRule::classificationRawValue, readText>(
        "classification", true),
    member<BackupWebsiteRule, &BackupWebsiteRule::updatedAt, readDate>("updatedAt", true),
};

constexpr std::array kPreferenceMembers{
    member<BackupPreferences, &BackupPreferences::appearance, optionalText>("appearance", false),
    member<BackupPreferences, &BackupPreferences::defaultDuration, optionalNumber>(
        "defaultDuration", false),
    member<BackupPreferences, &BackupPreferences::inactivityThreshold, optionalNumber>(
        "inactivityThreshold", false),
    member<BackupPreferences, &BackupPreferences::longSleep, optionalInteger>("longSleep", false),
    member<BackupPreferences, &BackupPreferences::notificationsEnabled, optionalBoolean>(
        "notificationsEnabled", false),
    member<BackupPreferences, &BackupPreferences::notificationsIncludeSubject, optionalBoolean>(
        "notificationsIncludeSubject", false),
    member<BackupPreferences, &BackupPreferences::browserTrackingEnabled, optionalBoolean>(
        "browserTrackingEnabled", false),
    member<BackupPreferences, &BackupPreferences::hostnameTrackingEnabled, optionalBoolean>(
        "hostnameTrackingEnabled", false),
    member<BackupPreferences, &BackupPreferences::localPDFDetectionEnabled, optionalBoolean>(
        "localPDFDetectionEnabled", false),
    member<BackupPreferences, &BackupPreferences::manualPDFLabelsEnabled, optionalBoolean>(
        "manualPDFLabelsEnabled", false),
    member<BackupPreferences, &BackupPreferences::rememberSubject, optionalBoolean>(
        "rememberSubject", false),
    member<BackupPreferences, &BackupPreferences::rememberGoal, optionalBoolean>("rememberGoal",
                                                                                 false),
    member<BackupPreferences, &BackupPreferences::rememberDuration, optionalBoolean>(
        "rememberDuration", false),
    member<BackupPreferences, &BackupPreferences::onboardingCompletedVersion, optionalInteger>(
        "onboardingCompletedVersion", false),
};
static_assert(kPreferenceMembers.size() == kSupportedPreferenceCount);

simdjson::padded_string_view padded(const ScannedText& text) {
    return simdjson::padded_string_view(text.text.data(), text.text.size(),
                                        text.text.size() + kScannedTextPadding);
}

// Decodes the object `text` into a Record with `members`.
template <typename Record, std::size_t N>
bool decodeDocument(od::parser& parser, const ScannedText& text, Record& record,
                    const std::array<Member<Record>, N>& members, Context& context) {
    od::document document;
    od::value root;
    if (parser.iterate(padded(text)).get(document) || document.get_value().get(root)) {
        return false;
    }
    return decodeObject(root, record, members, context);
}

// Decodes the array `text` into Records with `members`.
template <typename Record, std::size_t N>
bool decodeList(od::parser& parser, const ScannedText& text, std::vector<Record>& into,
                const std::array<Member<Record>, N>& members) {
    od::document document;
    od::array array;
    if (parser.iterate(padded(text)).get(document) || document.get_array().get(array)) {
        return false;
    }
    Context context;
    for (auto elementResult : array) {
        od::value element;
        Record record;
        if (std::move(elementResult).get(element) ||
            !decodeObject(element, record, members, context)) {
            return false;
        }
        into.push_back(std::move(record));
    }
    return true;
}

// The "id" member of the object `text`, when it can be read.
std::optional<Uuid> idOf(od::parser& parser, const ScannedText& text) {
    od::document document;
    std::string_view id;
    if (parser.iterate(padded(text)).get(document) ||
        document.find_field_unordered("id").get_string().get(id)) {
        return std::nullopt;
    }
    return Uuid::parse(id);
}

}  // namespace

BackupRecordDecoder::BackupRecordDecoder() : parser_(std::make_unique<Parser>()) {}

BackupRecordDecoder::~BackupRecordDecoder() = default;

std::optional<std::string> BackupRecordDecoder::key(std::string_view rawKey) {
    if (rawKey.find('\\') == std::string_view::npos) {
        return std::string(rawKey);
    }
    const std::string quoted = "\"" + std::string(rawKey) + "\"";
    simdjson::padded_string padded(quoted);
    od::document document;
    std::string_view resolved;
    if (parser_->parser.iterate(padded).get(document) || document.get_string().get(resolved)) {
        return std::nullopt;
    }
    return std::string(resolved);
}

Result<void, TallywiseBackupError> BackupRecordDecoder::session(const ScannedText& text,
                                                                std::size_t position,
                                                                BackupSession& session) {
    session.id = Uuid();
    Context context;
    if (decodeDocument(parser_->parser, text, session, kSessionMembers, context)) {
        return {};
    }
    if (!context.detail.empty()) {
        return fail(invalidRecord(std::move(context.detail)));
    }
    if (session.id.isNil()) {
        // Members come in any order: the id may follow the one that failed.
        session.id = idOf(parser_->parser, text).value_or(Uuid());
    }
    return fail(invalidRecord(session.id.isNil() ? invalid_record::invalidSessionAt(position)
                                                 : invalid_record::invalidSession(session.id)));
}

Result<std::vector<BackupApplicationRule>, TallywiseBackupError>
BackupRecordDecoder::applicationRules(const ScannedText& text) {
    std::vector<BackupApplicationRule> rules;
    if (!decodeList(parser_->parser, text, rules, kApplicationRuleMembers)) {
        return fail(invalidRecord(invalid_record::invalidApplicationRule));
    }
    return rules;
}

Result<std::vector<BackupWebsiteRule>, TallywiseBackupError> BackupRecordDecoder::websiteRules(
    const ScannedText& text) {
    std::vector<BackupWebsiteRule> rules;
    if (!decodeList(parser_->parser, text, rules, kWebsiteRuleMembers)) {
        return fail(invalidRecord(invalid_record::invalidWebsiteRule));
    }
    return rules;
}

Result<BackupPreferences, TallywiseBackupError> BackupRecordDecoder::preferences(
    const ScannedText& text) {
    BackupPreferences preferences;
    Context context;
    if (!decodeDocument(parser_->parser, text, preferences, kPreferenceMembers, context)) {
        return fail(invalidRecord(invalid_record::metadataOrPreferences));
    }
    return preferences;
}

Result<long long, TallywiseBackupError> BackupRecordDecoder::integer(const ScannedText& text) {
    od::document document;
    std::int64_t value = 0;
    if (parser_->parser.iterate(padded(text)).get(document) || document.get_int64().get(value)) {
        return fail(invalidRecord(invalid_record::metadataOrPreferences));
    }
    return static_cast<long long>(value);
}

Result<std::string, TallywiseBackupError> BackupRecordDecoder::text(const ScannedText& text) {
    od::document document;
    std::string_view value;
    if (parser_->parser.iterate(padded(text)).get(document) || document.get_string().get(value)) {
        return fail(invalidRecord(invalid_record::metadataOrPreferences));
    }
    return std::string(value);
}

Result<Date, TallywiseBackupError> BackupRecordDecoder::date(const ScannedText& text) {
    od::document document;
    od::json_type type;
    if (parser_->parser.iterate(padded(text)).get(document) || document.type().get(type)) {
        return fail(invalidRecord(invalid_record::metadataOrPreferences));
    }
    if (type == od::json_type::number) {
        double seconds = 0;
        if (document.get_double().get(seconds)) {
            return fail(invalidRecord(invalid_record::metadataOrPreferences));
        }
        return Date{seconds};
    }
    std::string_view value;
    if (document.get_string().get(value)) {
        return fail(invalidRecord(invalid_record::metadataOrPreferences));
    }
    const auto parsed = parseIso8601(value);
    if (!parsed) {
        return fail(invalidRecord(invalid_record::metadataOrPreferences));
    }
    return *parsed;
}

}  // namespace lumenote::portability
