#include "bridge/browser_event_validator.hpp"

#include <string>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "bridge/supported_browser.hpp"

namespace lumenote::bridge {
namespace {

using F = BrowserEventValidationFailure;
using Json = nlohmann::json;

const Date kNow = *parseIso8601("2026-11-25T10:00:00Z");

Json websiteEvent() {
    return Json{{"id", "6F9619FF-8B86-D011-B42D-00C04FC964FF"},
                {"browserDisplayName", "Google Chrome"},
                {"browserBundleIdentifier", "com.google.Chrome"},
                {"hostname", "docs.example.org"},
                {"temporaryTabIdentifier", "w1-t42"},
                {"timestamp", "2026-11-25T09:59:59.500Z"},
                {"eventType", "tabActivated"},
                {"isPrivate", false},
                {"resourceType", "website"},
                {"localFilePermission", "enabled"}};
}

Json pdfEvent() {
    Json event = websiteEvent();
    event.erase("hostname");
    event["resourceType"] = "localPDF";
    event["pdfIdentifier"] = "0b9b5c52-33a4-4c1e-9d0c-6a1f3f1f0a77";
    event["pdfLabel"] = "Lineare Algebra – Skript.pdf";
    event["pdfLabelSource"] = "filename";
    return event;
}

Result<BrowserActivityEvent, BrowserEventValidationError> validate(const Json& event,
                                                                   Date now = kNow) {
    return BrowserEventValidator().validate(event.dump(), now);
}

std::optional<F> failureOf(const Json& event, Date now = kNow) {
    const auto result = validate(event, now);
    return result ? std::nullopt : std::optional(result.error().failure);
}

TEST(BrowserEventValidatorTest, AcceptsWellFormedWebsiteAndPDFEventsAsSent) {
    const auto website = validate(websiteEvent());
    ASSERT_TRUE(website) << website.error().message();
    EXPECT_EQ(website->hostname, "docs.example.org");
    EXPECT_EQ(website->eventType, BrowserActivityEventType::tabActivated);
    EXPECT_EQ(website->timestamp, *parseIso8601("2026-11-25T09:59:59.5Z"));
    EXPECT_EQ(website->localFilePermission, BrowserLocalFilePermission::enabled);

    const auto pdf = validate(pdfEvent());
    ASSERT_TRUE(pdf) << pdf.error().message();
    EXPECT_EQ(pdf->pdfLabel, "Lineare Algebra – Skript.pdf");
    EXPECT_EQ(pdf->pdfLabelSource, BrowserPDFLabelSource::filename);
}

TEST(BrowserEventValidatorTest, EncodedEventDecodesToTheSameEvent) {
    const auto original = validate(pdfEvent());
    ASSERT_TRUE(original);
    const auto again =
        BrowserEventValidator().validate(encodeBrowserActivityEvent(*original), kNow);
    ASSERT_TRUE(again) << again.error().message();
    EXPECT_EQ(*again, *original);
}

// Found by fuzzing: a zone offset carried these timestamps out of the
// four-digit years, so the event decoded but was written back as
// "-001-12-31T23:00:00.000Z" or "10000-01-01T04:59:59.000Z", which no decoder
// reads. The first and last instants the written form holds still round-trip.
TEST(BrowserEventValidatorTest, TimestampThatCannotBeWrittenBackDoesNotDecode) {
    for (const char* timestamp :
         {"0000-01-01T00:00:00+01:00", "9999-12-31T23:59:59-05:00", "9999-12-31T23:59:59.9996Z"}) {
        Json event = websiteEvent();
        event["timestamp"] = timestamp;
        const auto decoded = decodeBrowserActivityEvent(event.dump());
        ASSERT_FALSE(decoded) << timestamp;
        EXPECT_EQ(decoded.error(), kTimestampDecodingMessage) << timestamp;
    }
    for (const char* timestamp : {"0000-01-01T00:00:00.000Z", "9999-12-31T23:59:59.999Z"}) {
        Json event = websiteEvent();
        event["timestamp"] = timestamp;
        const auto decoded = decodeBrowserActivityEvent(event.dump());
        ASSERT_TRUE(decoded) << timestamp;
        const std::string written = encodeBrowserActivityEvent(*decoded);
        EXPECT_NE(written.find(timestamp), std::string::npos) << written;
        const auto again = decodeBrowserActivityEvent(written);
        ASSERT_TRUE(again) << written;
        EXPECT_EQ(*again, *decoded);
    }
}

TEST(BrowserEventValidatorTest, EmptyPayloadNeverReachesTheDecoder) {
    const auto result = BrowserEventValidator().validate("", kNow);
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().failure, F::emptyPayload);
    EXPECT_EQ(result.error().message(), "The browser event is empty.");
    EXPECT_TRUE(result.error().decodingProblem.empty());
}

TEST(BrowserEventValidatorTest, PayloadOfExactlyTheLimitPassesAndOneByteMoreIsRefused) {
    const BrowserEventValidator validator({.maximumPayloadBytes = 600});
    std::string payload = websiteEvent().dump();
    ASSERT_LT(payload.size(), 600u);
    payload.append(600 - payload.size(), ' ');  // white space after the document is still JSON
    EXPECT_TRUE(validator.validate(payload, kNow));

    payload += ' ';
    const auto refused = validator.validate(payload, kNow);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().failure, F::payloadTooLarge);
    EXPECT_EQ(refused.error().message(), "The browser event is 601 bytes; the limit is 600 bytes.");
}

TEST(BrowserEventValidatorTest, SizeIsCountedInBytesNotCharacters) {
    Json event = pdfEvent();
    event["pdfLabel"] = std::string(60, 'x') + "ü";  // 61 characters, 62 bytes
    const std::string payload = event.dump(-1, ' ', false);
    const BrowserEventValidator validator({.maximumPayloadBytes = payload.size() - 1});
    const auto refused = validator.validate(payload, kNow);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().actualBytes, payload.size());
}

TEST(BrowserEventValidatorTest, UndecodableDocumentsAreMalformed) {
    Json numericTimestamp = websiteEvent();
    numericTimestamp["timestamp"] = 1764064800;
    Json unknownType = websiteEvent();
    unknownType["eventType"] = "tabPinned";
    Json missingPrivate = websiteEvent();
    missingPrivate.erase("isPrivate");
    Json stringPrivate = websiteEvent();
    stringPrivate["isPrivate"] = "false";
    Json badId = websiteEvent();
    badId["id"] = "not-a-uuid";
    Json badTimestampText = websiteEvent();
    badTimestampText["timestamp"] = "yesterday";
    Json unknownPermission = websiteEvent();
    unknownPermission["localFilePermission"] = "granted";
    Json numericHostname = websiteEvent();
    numericHostname["hostname"] = 42;

    const struct {
        const char* name;
        std::string payload;
        std::string problem;
    } cases[] = {
        {"numeric timestamp", numericTimestamp.dump(), "timestamp must be an ISO-8601 string"},
        {"timestamp text", badTimestampText.dump(), "timestamp must be an ISO-8601 string"},
        {"unknown event type", unknownType.dump(), "eventType has an unknown value"},
        {"missing key", missingPrivate.dump(), "isPrivate is missing"},
        {"wrong type", stringPrivate.dump(), "isPrivate must be true or false"},
        {"bad id", badId.dump(), "id must be a UUID"},
        {"unknown permission", unknownPermission.dump(),
         "localFilePermission has an unknown value"},
        {"optional of wrong type", numericHostname.dump(), "hostname must be a string"},
        {"array root", "[" + websiteEvent().dump() + "]", "the document is not a JSON object"},
        {"truncated", websiteEvent().dump().substr(0, 40), "the text is not well-formed JSON"},
        {"two documents", websiteEvent().dump() + websiteEvent().dump(),
         "the text is not well-formed JSON"},
        {"invalid UTF-8", "{\"id\":\"\xff\"}", "the text is not well-formed JSON"},
    };
    for (const auto& c : cases) {
        const auto result = BrowserEventValidator().validate(c.payload, kNow);
        ASSERT_FALSE(result) << c.name;
        EXPECT_EQ(result.error().failure, F::malformedPayload) << c.name;
        EXPECT_EQ(result.error().message(), "The browser event is not valid Lumenote JSON.");
        EXPECT_EQ(result.error().decodingProblem, c.problem) << c.name;
    }
}

TEST(BrowserEventValidatorTest, OnlyTheExactSupportedIdentifiersAreAccepted) {
    for (const auto browser : allCases<SupportedBrowser>()) {
        Json event = websiteEvent();
        event["browserBundleIdentifier"] = std::string(bundleIdentifier(browser));
        EXPECT_TRUE(validate(event)) << bundleIdentifier(browser);
    }
    for (const char* identifier :
         {"com.google.Chrome.helper", "xcom.google.Chrome", "com.google.chrome", ""}) {
        Json event = websiteEvent();
        event["browserBundleIdentifier"] = identifier;
        const auto result = validate(event);
        ASSERT_FALSE(result) << identifier;
        EXPECT_EQ(result.error().failure, F::unsupportedBrowser);
        EXPECT_EQ(result.error().message(),
                  std::string("The browser bundle identifier is not allowed: ") + identifier + ".");
    }
}

TEST(BrowserEventValidatorTest, TimestampBoundsAreStrictToTheMillisecond) {
    const BrowserEventValidator validator(
        {.maximumTimestampAge = 300.0, .maximumFutureTimestampSkew = 30.0});
    const auto at = [&validator](const char* timestamp) {
        Json event = websiteEvent();
        event["timestamp"] = timestamp;
        return validator.validate(event.dump(), kNow);
    };
    EXPECT_TRUE(at("2026-11-25T09:55:00Z"));
    const auto old = at("2026-11-25T09:54:59.999Z");
    ASSERT_FALSE(old);
    EXPECT_EQ(old.error().message(), "The browser event timestamp is too old.");

    EXPECT_TRUE(at("2026-11-25T10:00:30Z"));
    EXPECT_TRUE(at("2026-11-25T11:00:30+01:00"));
    const auto future = at("2026-11-25T10:00:30.001Z");
    ASSERT_FALSE(future);
    EXPECT_EQ(future.error().message(), "The browser event timestamp is too far in the future.");
}

TEST(BrowserEventValidatorTest, TimestampIsCheckedBeforeTheContent) {
    Json event = websiteEvent();
    event["timestamp"] = "2020-01-01T00:00:00Z";
    event["browserBundleIdentifier"] = "com.example.Browser";
    EXPECT_EQ(failureOf(event), F::timestampTooOld);
}

TEST(BrowserEventValidatorTest, PrivateEventsCarryTheFlagAlone) {
    Json withHostname = websiteEvent();
    withHostname["isPrivate"] = true;
    withHostname.erase("temporaryTabIdentifier");
    const auto refused = validate(withHostname);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().message(),
              "Lumenote does not accept hostnames or tab identifiers from private browsing.");

    Json withTab = websiteEvent();
    withTab["isPrivate"] = true;
    withTab.erase("hostname");
    EXPECT_EQ(failureOf(withTab), F::privateBrowsingDataRejected);

    Json bare = withTab;
    bare.erase("temporaryTabIdentifier");
    EXPECT_TRUE(validate(bare));

    Json privatePDF = pdfEvent();
    privatePDF["isPrivate"] = true;
    privatePDF.erase("temporaryTabIdentifier");
    EXPECT_EQ(failureOf(privatePDF), F::invalidFieldCombination);
    for (const char* key : {"pdfIdentifier", "pdfLabel", "pdfLabelSource"}) {
        privatePDF.erase(key);
    }
    EXPECT_TRUE(validate(privatePDF));
}

TEST(BrowserEventValidatorTest, FieldSyntaxRules) {
    const std::string label200(200, 'a');
    const struct {
        const char* key;
        Json value;
        std::optional<F> expected;
    } cases[] = {
        {"browserDisplayName", "", F::invalidBrowserDisplayName},
        {"browserDisplayName", "   ", F::invalidBrowserDisplayName},
        {"browserDisplayName", "Chrome\n", F::invalidBrowserDisplayName},
        {"browserDisplayName", std::string(64, 'C'), std::nullopt},
        {"browserDisplayName", std::string(65, 'C'), F::invalidBrowserDisplayName},
        {"hostname", "Docs.Example.org", F::invalidHostname},
        {"hostname", "example.org:8080", F::invalidHostname},
        {"hostname", "me@example.org", F::invalidHostname},
        {"hostname", "example.org/path", F::invalidHostname},
        {"hostname", "example.org.", F::invalidHostname},
        {"hostname", "-example.org", F::invalidHostname},
        {"hostname", "", F::invalidHostname},
        {"hostname", std::string(64, 'a') + ".org", F::invalidHostname},
        {"hostname", std::string(63, 'a') + ".org", std::nullopt},
        {"hostname", "xn--bcher-kva.example", std::nullopt},
        {"hostname", "localhost", std::nullopt},
        {"temporaryTabIdentifier", "", F::invalidTemporaryTabIdentifier},
        {"temporaryTabIdentifier", "tab 1", F::invalidTemporaryTabIdentifier},
        {"temporaryTabIdentifier", std::string(65, '7'), F::invalidTemporaryTabIdentifier},
        {"temporaryTabIdentifier", std::string(64, '7'), std::nullopt},
    };
    for (const auto& c : cases) {
        Json event = websiteEvent();
        event[c.key] = c.value;
        EXPECT_EQ(failureOf(event), c.expected) << c.key << " = " << c.value;
    }

    const struct {
        const char* key;
        Json value;
        std::optional<F> expected;
    } pdfCases[] = {
        {"pdfIdentifier", "0b9b5c5233a44c1e9d0c6a1f3f1f0a77", F::invalidPDFIdentifier},
        {"pdfIdentifier", "{0b9b5c52-33a4-4c1e-9d0c-6a1f3f1f0a77}", F::invalidPDFIdentifier},
        {"pdfIdentifier", "0B9B5C52-33A4-4C1E-9D0C-6A1F3F1F0A77", std::nullopt},
        {"pdfLabel", "", F::invalidPDFLabel},
        {"pdfLabel", "notes\u0007.pdf", F::invalidPDFLabel},
        {"pdfLabel", "notes\u0085.pdf", F::invalidPDFLabel},
        {"pdfLabel", "line\u2028break.pdf", F::invalidPDFLabel},
        {"pdfLabel", label200, std::nullopt},
        {"pdfLabel", label200 + "b", F::invalidPDFLabel},
        {"localFilePermission", "permissionRequired", F::invalidLocalFilePermission},
        {"localFilePermission", "unsupported", F::invalidLocalFilePermission},
    };
    for (const auto& c : pdfCases) {
        Json event = pdfEvent();
        event[c.key] = c.value;
        const auto result = BrowserEventValidator().validate(
            event.dump(-1, ' ', false, Json::error_handler_t::ignore), kNow);
        EXPECT_EQ(result ? std::nullopt : std::optional(result.error().failure), c.expected)
            << c.key;
    }
}

TEST(BrowserEventValidatorTest, LabelAndItsSourceComeTogether) {
    Json labelOnly = pdfEvent();
    labelOnly.erase("pdfLabelSource");
    const auto refused = validate(labelOnly);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().message(), "The local PDF label source is invalid.");

    Json sourceOnly = pdfEvent();
    sourceOnly.erase("pdfLabel");
    EXPECT_EQ(failureOf(sourceOnly), F::invalidPDFLabelSource);

    Json neither = sourceOnly;
    neither.erase("pdfLabelSource");
    EXPECT_TRUE(validate(neither));
}

TEST(BrowserEventValidatorTest, EachEventTypeCarriesOnlyItsFields) {
    const auto with = [](Json event, const char* type, std::initializer_list<const char*> erase) {
        event["eventType"] = type;
        for (const char* key : erase) {
            event.erase(key);
        }
        return failureOf(event);
    };
    // A website page event without a hostname is a page that cannot be tracked.
    EXPECT_EQ(with(websiteEvent(), "tabNavigated", {"hostname"}), std::nullopt);
    EXPECT_EQ(with(websiteEvent(), "heartbeat", {}), std::nullopt);
    EXPECT_EQ(with(websiteEvent(), "browserWindowBlurred", {"temporaryTabIdentifier"}),
              F::invalidFieldCombination);
    EXPECT_EQ(with(websiteEvent(), "browserWindowBlurred", {"hostname"}),
              F::invalidFieldCombination);
    EXPECT_EQ(with(websiteEvent(), "browserWindowBlurred", {"hostname", "temporaryTabIdentifier"}),
              std::nullopt);
    EXPECT_EQ(with(websiteEvent(), "extensionDisconnected", {"hostname", "temporaryTabIdentifier"}),
              std::nullopt);
    EXPECT_EQ(with(websiteEvent(), "tabClosed", {"hostname"}), std::nullopt);
    EXPECT_EQ(with(websiteEvent(), "tabClosed", {}), F::invalidFieldCombination);
    EXPECT_EQ(with(pdfEvent(), "tabClosed", {}), F::invalidFieldCombination);

    Json pdfOnWebsite = pdfEvent();
    pdfOnWebsite["resourceType"] = "website";
    EXPECT_EQ(failureOf(pdfOnWebsite), F::invalidFieldCombination);
    Json hostnameOnPDF = pdfEvent();
    hostnameOnPDF["hostname"] = "example.org";
    EXPECT_EQ(failureOf(hostnameOnPDF), F::invalidFieldCombination);
    EXPECT_EQ(with(pdfEvent(), "tabActivated", {"pdfIdentifier"}), F::invalidFieldCombination);
    const auto refused = validate(pdfOnWebsite);
    EXPECT_EQ(refused.error().message(),
              "The event contains fields that are not valid for its event type.");
}

}  // namespace
}  // namespace lumenote::bridge
