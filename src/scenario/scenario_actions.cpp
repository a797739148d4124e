#include "scenario/scenario_actions.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <map>
#include <optional>
#include <vector>

#include "bridge/supported_browser.hpp"
#include "recording/session_manager.hpp"
#include "scenario/json_expectation.hpp"
#include "scenario/scenario_machine.hpp"
#include "settings/preference_catalog.hpp"
#include "settings/study_mode_names.hpp"

namespace lumenote::scenario {

using nlohmann::json;

recording::SessionManager& ActionCall::recorder() const {
    // performStep lets an action reach the recorder only when its row needs
    // one and one is running.
    assert(machine.recorder() != nullptr);
    return *machine.recorder();
}

void ActionCall::expectationFailed(const std::string& what) const {
    outcome.failedExpectations.push_back(fmt::format("line {}: {}", step.lineNumber, what));
}

namespace {

using ActionResult = Result<void, std::string>;

// The message a save reports while saves are made to fail.

std::string stringArgument(const json& args, const char* key, std::string fallback = {}) {
    const auto found = args.find(key);
    return (found != args.end() && found->is_string()) ? found->get<std::string>() : fallback;
}

std::optional<classification::ActivityClassification> classificationArgument(const json& args) {
    const auto found = args.find("classification");
    if (found == args.end() || !found->is_string()) {
        return std::nullopt;
    }
    return fromRawValue<classification::ActivityClassification>(found->get<std::string>());
}

// A stored session named by its index in start order; nullopt unless `value`
// is an integer that indexes one.
std::optional<Uuid> storedSession(ScenarioMachine& machine, const json& value) {
    if (!value.is_number_integer()) {
        return std::nullopt;
    }
    return machine.storedSessionAt(value.get<long long>());
}

// The wall date of the script moment under `key`; nullopt without a number.
std::optional<Date> dateArgument(const ActionCall& call, const char* key) {
    const auto found = call.arguments().find(key);
    if (found == call.arguments().end() || !found->is_number()) {
        return std::nullopt;
    }
    return call.machine.dateAt(found->get<double>());
}

// The session: starting, pausing, ending and away periods. A refused request
// is part of what scenarios check (through expectError), not a failed step.

ActionResult startSession(const ActionCall& call) {
    const json& args = call.arguments();
    recording::SessionStartRequest request;
    request.subject = stringArgument(args, "subject");
    request.goal = stringArgument(args, "goal");
    if (const auto duration = args.find("duration");
        duration != args.end() && duration->is_number()) {
        request.plannedDuration = duration->get<double>();
    } else {
        request.plannedDuration = call.machine.preferences().defaultDuration();
    }
    const auto timingMode =
        fromRawValue<recording::SessionTimingMode>(stringArgument(args, "timing", "timer"));
    const auto studyMode = settings::studyModeNamed(stringArgument(args, "mode", "computerBased"));
    if (!timingMode || !studyMode) {
        return fail(std::string("unknown timing or study mode"));
    }
    request.timingMode = *timingMode;
    request.studyMode = *studyMode;
    if (const auto templateText = stringArgument(args, "template"); !templateText.empty()) {
        request.templateID = Uuid::parse(templateText);
    }
    call.machine.noteOutcome(call.recorder().start(request));
    return {};
}

ActionResult pauseSession(const ActionCall& call) {
    call.machine.noteOutcome(call.recorder().pause());
    return {};
}

ActionResult resumeSession(const ActionCall& call) {
    call.machine.noteOutcome(call.recorder().resume());
    return {};
}

ActionResult endSession(const ActionCall& call) {
    call.machine.noteOutcome(call.recorder().end());
    return {};
}

ActionResult startAway(const ActionCall& call) {
    call.machine.noteOutcome(call.recorder().startPassiveStudy());
    return {};
}

ActionResult endAway(const ActionCall& call) {
    call.machine.noteOutcome(call.recorder().endPassiveStudy());
    return {};
}

ActionResult answerPrompt(const ActionCall& call) {
    using Answer = recording::SessionManager::NoInputPromptAnswer;
    static const std::map<std::string, Answer> answers{{"passiveStudy", Answer::passiveStudy},
                                                       {"confirmedBreak", Answer::confirmedBreak},
                                                       {"leave", Answer::leaveUnconfirmed},
                                                       {"endThere", Answer::endThere}};
    const auto answer = answers.find(stringArgument(call.arguments(), "answer"));
    if (answer == answers.end()) {
        return fail(std::string("\"answer\" is passiveStudy, confirmedBreak, leave or endThere"));
    }
    call.machine.noteOutcome(call.recorder().answerNoInputPrompt(
        answer->second, dateArgument(call, "from"), dateArgument(call, "to")));
    return {};
}

// The machine: what the user and the system do.

// The machine's own events still happen while the recorder is down; a
// relaunched recorder finds the application that is frontmost by then.
ActionResult bringToFront(const ActionCall& call) {
    call.machine.platform().frontmost.current = recording::FrontmostApplication{
        stringArgument(call.arguments(), "name"), stringArgument(call.arguments(), "bundle")};
    if (recording::SessionManager* recorder = call.machine.recorder()) {
        recorder->applicationActivated();
    }
    return {};
}

// No application is in front any more, as while a window manager moves focus
// from one window to the next.
ActionResult clearFront(const ActionCall& call) {
    call.machine.platform().frontmost.current.reset();
    if (recording::SessionManager* recorder = call.machine.recorder()) {
        recorder->applicationActivated();
    }
    return {};
}

// The frontmost browser now shows a website, a local PDF, or nothing (without
// "hostname" or "pdf").
ActionResult showInBrowser(const ActionCall& call) {
    const json& args = call.arguments();
    recording::BrowserResolution resolution;
    resolution.browserBundleIdentifier = stringArgument(args, "bundle");
    const std::string hostname = stringArgument(args, "hostname");
    if (!hostname.empty()) {
        resolution.kind = recording::BrowserResolution::Kind::website;
        resolution.hostname = hostname;
    } else {
        resolution.fallbackReason = recording::BrowserFallbackReason::awaitingFreshEvent;
    }
    resolution.tabSessionIdentifier = Uuid::parse(stringArgument(args, "tab"));
    if (const auto pdf = Uuid::parse(stringArgument(args, "pdf"))) {
        resolution.kind = recording::BrowserResolution::Kind::localPDF;
        resolution.pdfIdentifier = pdf;
        resolution.pdfDisplayLabel = stringArgument(args, "label");
        resolution.pdfLabelSource = classification::BrowserPDFLabelSource::filename;
        resolution.fallbackReason.reset();
    }
    call.machine.platform().browser.resolutions[resolution.browserBundleIdentifier] = resolution;
    call.recorder().applicationActivated();
    return {};
}

// The document of a "browserEvent" step: the script's event with the fields
// it leaves out filled in (a fresh id, the simulated now as its timestamp,
// the browser's own name, not private, a website).
json browserEventDocument(const ActionCall& call, const json& given) {
    json event = given;
    const auto fill = [&event](const char* key, json value) {
        if (!event.contains(key)) {
            event[key] = std::move(value);
        }
    };
    fill("id", Uuid::generate().upperString());
    fill("timestamp",
         formatIso8601(call.machine.platform().clock.wallNow(), {.fractionalSeconds = true}));
    const auto browser = bridge::supportedBrowser(stringArgument(event, "browserBundleIdentifier"));
    fill("browserDisplayName", browser ? std::string(bridge::displayName(*browser)) : "Browser");
    fill("isPrivate", false);
    fill("resourceType", "website");
    return event;
}

// The extension reports a browser event: it travels as the host would carry
// it, into the bridge inbox with the token and the session "state.json"
// names, stamped with the simulated now. As the host, nothing is written
// while no session runs. "raw" sends its text as the event's bytes instead
// of "event"; "session" claims another session; "timestampAt" dates the
// event at that moment of the script. The recorder then samples
// at once, as the runtime does when the inbox changes.
ActionResult sendBrowserEvent(const ActionCall& call) {
    const json& args = call.arguments();
    bridge::BrowserBridgeStore& store = call.machine.bridgeStore();
    const auto token = store.readToken();
    if (!token) {
        return fail(std::string("the bridge directory has no token"));
    }
    const auto state = store.readState();
    const auto claimed = Uuid::parse(stringArgument(args, "session"));
    const std::optional<Uuid> session = claimed ? claimed
                                        : state ? state->sessionIdentifier
                                                : std::nullopt;
    if (!session) {
        return {};
    }
    std::string bytes = stringArgument(args, "raw");
    if (!args.contains("raw")) {
        const auto event = args.find("event");
        if (event == args.end() || !event->is_object()) {
            return fail(std::string("browserEvent needs an \"event\" object or \"raw\" text"));
        }
        json document = browserEventDocument(call, *event);
        if (const auto at = dateArgument(call, "timestampAt")) {
            document["timestamp"] = formatIso8601(*at, {.fractionalSeconds = true});
        }
        bytes = document.dump();
    }
    const bridge::BrowserBridgeEnvelope envelope{bridge::kBridgeDocumentVersion, token.value(),
                                                 *session, call.machine.platform().clock.wallNow(),
                                                 std::move(bytes)};
    if (auto written = store.writeInboxEnvelope(envelope); !written) {
        return fail(bridge::describe(written.error()));
    }
    if (recording::SessionManager* recorder = call.machine.recorder()) {
        recorder->applicationActivated();
    }
    return {};
}

// The newest browser event the recorder handled: "accepted" and, for a
// refused one, the "reason" it gave.
ActionResult expectBrowserEvent(const ActionCall& call) {
    const json& args = call.arguments();
    const bridge::BridgeTrackingCoordinator* coordinator = call.machine.bridgeCoordinator();
    if (!coordinator || coordinator->eventLog().empty()) {
        call.expectationFailed("no browser event was handled");
        return {};
    }
    const bridge::BrowserEventLogEntry& last = coordinator->eventLog().back();
    if (const auto accepted = args.find("accepted");
        accepted != args.end() && *accepted != last.accepted) {
        call.expectationFailed(fmt::format("the last browser event was {}accepted ({})",
                                           last.accepted ? "" : "not ", last.reason));
    }
    if (const auto reason = args.find("reason"); reason != args.end() && *reason != last.reason) {
        call.expectationFailed(fmt::format("the last browser event's reason was \"{}\", not {}",
                                           last.reason, reason->dump()));
    }
    return {};
}

ActionResult stopInput(const ActionCall& call) {
    call.machine.platform().idle.stopInput();
    return {};
}

ActionResult resumeInput(const ActionCall& call) {
    call.machine.platform().idle.resumeInput();
    if (recording::SessionManager* recorder = call.machine.recorder()) {
        recorder->applicationActivated();
    }
    return {};
}

ActionResult jumpWallClock(const ActionCall& call) {
    call.machine.platform().clock.jumpWallClock(call.arguments().value("seconds", 0.0));
    return {};
}

ActionResult setWallClock(const ActionCall& call) {
    const auto date = parseIso8601(stringArgument(call.arguments(), "iso"));
    if (!date) {
        return fail(std::string("\"iso\" must be an ISO 8601 date"));
    }
    call.machine.platform().clock.setWallClock(*date);
    return {};
}

// Sleep and screen locking take the same path through the recorder.
ActionResult goToSleep(const ActionCall& call) {
    call.recorder().willSleep();
    return {};
}

ActionResult wake(const ActionCall& call) {
    call.recorder().didWake();
    return {};
}

ActionResult terminate(const ActionCall& call) {
    call.recorder().willTerminate();
    return {};
}

ActionResult crash(const ActionCall& call) {
    call.machine.crash();
    return {};
}

ActionResult relaunch(const ActionCall& call) {
    const std::string recovery = stringArgument(call.arguments(), "recovery", "none");
    call.machine.relaunch();
    recording::SessionManager& recorder = call.recorder();
    if (!recorder.pendingRecoverySession()) {
        return {};
    }
    if (recovery == "continue") {
        call.machine.noteOutcome(recorder.continueRecoveredSession());
    } else if (recovery == "end") {
        call.machine.noteOutcome(recorder.endRecoveredSession());
    } else if (recovery != "none") {
        return fail(std::string("\"recovery\" is continue, end or none"));
    }
    return {};
}

// Preferences, rules and overrides.

// Assigns through the preferences store, so clamps apply as in the application.
ActionResult setPreference(const ActionCall& call) {
    const json& args = call.arguments();
    const settings::PreferenceKeyInfo* info =
        settings::findPreferenceKey(stringArgument(args, "key"));
    const auto value = args.find("value");
    if (info == nullptr || value == args.end()) {
        return fail(std::string("setPreference needs a known key and a value"));
    }
    settings::PreferenceValue converted;
    if (value->is_boolean()) {
        converted = value->get<bool>();
    } else if (value->is_number_integer() && info->kind != settings::PreferenceValueKind::seconds) {
        converted = value->get<long long>();
    } else if (value->is_number()) {
        converted = value->get<double>();
    } else if (value->is_string()) {
        converted = value->get<std::string>();
    }
    if (!settings::assignPreference(call.machine.preferences(), *info, converted).ok()) {
        return fail(std::string("the value does not suit the key"));
    }
    return {};
}

ActionResult unknownClassification() {
    return fail(std::string("unknown classification"));
}

ActionResult classifyApp(const ActionCall& call) {
    const auto classification = classificationArgument(call.arguments());
    if (!classification) {
        return unknownClassification();
    }
    call.machine.noteOutcome(call.machine.rules().saveApplicationClassification(
        stringArgument(call.arguments(), "bundle"), stringArgument(call.arguments(), "name"),
        *classification));
    return {};
}

ActionResult classifyWebsite(const ActionCall& call) {
    const auto classification = classificationArgument(call.arguments());
    if (!classification) {
        return unknownClassification();
    }
    call.machine.noteOutcome(call.machine.rules().saveWebsiteClassification(
        stringArgument(call.arguments(), "hostname"), *classification));
    return {};
}

ActionResult overrideApp(const ActionCall& call) {
    const auto classification = classificationArgument(call.arguments());
    if (!classification) {
        return unknownClassification();
    }
    call.machine.rules().setSessionApplicationOverride(stringArgument(call.arguments(), "bundle"),
                                                       *classification);
    return {};
}

ActionResult overrideTab(const ActionCall& call) {
    const auto classification = classificationArgument(call.arguments());
    if (!classification) {
        return unknownClassification();
    }
    const auto tab = Uuid::parse(stringArgument(call.arguments(), "tab"));
    if (!tab) {
        return fail(std::string("\"tab\" must be a UUID"));
    }
    call.machine.rules().setTabOverride(*tab, *classification);
    return {};
}

ActionResult classifyPdf(const ActionCall& call) {
    const json& args = call.arguments();
    const auto classification = classificationArgument(args);
    const auto scope =
        fromRawValue<classification::LocalPDFClassificationScope>(stringArgument(args, "scope"));
    const auto pdf = Uuid::parse(stringArgument(args, "pdf"));
    if (!classification || !scope || !pdf) {
        return fail(std::string("classifyPdf needs a pdf id, a classification and a scope"));
    }
    call.machine.noteOutcome(call.machine.rules().classifyLocalPDF(*pdf, *classification, *scope));
    return {};
}

ActionResult clearFilenameLabels(const ActionCall& call) {
    call.machine.noteOutcome(call.machine.rules().clearFilenameDerivedPDFLabels());
    return {};
}

// History: edits, deletion and failing saves.

ActionResult relabel(const ActionCall& call) {
    const auto session = storedSession(call.machine, call.arguments().value("session", json()));
    const auto from = dateArgument(call, "from");
    const auto to = dateArgument(call, "to");
    if (!session || !from || !to) {
        return fail(std::string("relabel needs a stored session index, \"from\" and \"to\""));
    }
    const std::string state = stringArgument(call.arguments(), "state");
    std::optional<recording::ConfirmedStudyState> newState;
    if (state != "unconfirmed") {
        newState = fromRawValue<recording::ConfirmedStudyState>(state);
        if (!newState) {
            return fail(std::string("\"state\" is passiveStudy, confirmedBreak or unconfirmed"));
        }
    }
    call.machine.noteOutcome(call.recorder().relabel(*session, *from, *to, newState));
    return {};
}

ActionResult undoEdit(const ActionCall& call) {
    call.machine.noteOutcome(call.recorder().undoLastStudyStateEdit());
    return {};
}

// Indices that name no stored session are left out.
ActionResult deleteSessions(const ActionCall& call) {
    std::vector<Uuid> ids;
    for (const auto& index : call.arguments().value("sessions", json::array())) {
        if (auto id = storedSession(call.machine, index)) {
            ids.push_back(*id);
        }
    }
    call.machine.noteOutcome(call.machine.history().deleteSessions(ids));
    return {};
}

ActionResult undoDelete(const ActionCall& call) {
    call.machine.noteOutcome(call.machine.history().undoSessionDeletion());
    return {};
}

ActionResult deleteAll(const ActionCall& call) {
    call.machine.noteOutcome(call.machine.history().deleteAllSessions());
    return {};
}

ActionResult failSaves(const ActionCall& call) {
    call.machine.setFailingSaves(call.arguments().value("enabled", true));
    return {};
}

// Checks. A check that does not hold is recorded and the script goes on.

ActionResult expectSession(const ActionCall& call) {
    const json sessions = call.machine.storedSessions();
    const auto index = call.arguments().value("session", -1);
    if (index < 0 || static_cast<std::size_t>(index) >= sessions.size()) {
        call.expectationFailed(
            fmt::format("no stored session {} ({} stored)", index, sessions.size()));
        return {};
    }
    json expected = call.arguments();
    for (const char* key : {"at", "do", "session"}) {
        expected.erase(key);
    }
    const json& actual = sessions[static_cast<std::size_t>(index)];
    if (const auto count = expected.find("segmentCount"); count != expected.end()) {
        if (actual["segments"].size() != count->get<std::size_t>()) {
            call.expectationFailed(fmt::format("expected {} segments, found {}", count->dump(),
                                               actual["segments"].size()));
        }
        expected.erase("segmentCount");
    }
    std::string why;
    if (!matches(expected, &actual, why, fmt::format("session[{}]", index))) {
        call.expectationFailed(why);
    }
    return {};
}

ActionResult expectStoredSessions(const ActionCall& call) {
    const auto count = call.arguments().value("count", std::size_t{0});
    const auto stored = call.machine.storedSessions().size();
    if (stored != count) {
        call.expectationFailed(fmt::format("expected {} stored sessions, found {}", count, stored));
    }
    return {};
}

ActionResult takeSnapshot(const ActionCall& call) {
    call.machine.snapshot() = call.machine.storedSessions();
    return {};
}

// The stored history equals the last snapshot exactly: identifiers, fields,
// segments and confirmations.
ActionResult expectSnapshot(const ActionCall& call) {
    std::string why;
    const json current = call.machine.storedSessions();
    if (!matches(call.machine.snapshot(), &current, why, "sessions")) {
        call.expectationFailed(why);
    }
    return {};
}

// Without "message" (or with null), expects no error. Either way the error is
// cleared, so that each check sees only what came after the one before.
ActionResult expectError(const ActionCall& call) {
    const auto expected = call.arguments().find("message");
    const auto actual = call.machine.takeShownError();
    const bool wantsNone = expected == call.arguments().end() || expected->is_null();
    if (wantsNone ? actual.has_value() : (!actual || *actual != expected->get<std::string>())) {
        call.expectationFailed(fmt::format("expected error {}, found {}",
                                           wantsNone ? "none" : expected->dump(),
                                           actual ? json(*actual).dump() : "none"));
    }
    return {};
}

// Without "text" (or with null), expects no question to be pending.
ActionResult expectPrompt(const ActionCall& call) {
    const auto& prompt = call.recorder().pendingNoInputPrompt();
    const auto text = call.arguments().find("text");
    if (text == call.arguments().end() || text->is_null()) {
        if (prompt) {
            call.expectationFailed("expected no question, found one");
        }
        return {};
    }
    if (!prompt) {
        call.expectationFailed("expected a question, found none");
        return {};
    }
    const std::string actual = recording::noInputPromptText(*prompt, LocalCalendar::utc());
    if (actual != text->get<std::string>()) {
        call.expectationFailed(
            fmt::format("expected question {}, found {}", text->dump(), json(actual).dump()));
    }
    return {};
}

// The titles of the bests the session just ended set, in their order; an
// empty list when it set none.
ActionResult expectPersonalBests(const ActionCall& call) {
    const auto titles = call.arguments().find("titles");
    if (titles == call.arguments().end() || !titles->is_array()) {
        return fail(std::string("expectPersonalBests needs a list of titles"));
    }
    json found = json::array();
    for (const recording::PersonalBest& best : call.recorder().pendingPostSessionPersonalBests()) {
        found.push_back(std::string(recording::personalBestTitle(best.kind)));
    }
    if (found != *titles) {
        call.expectationFailed(
            fmt::format("expected personal bests {}, found {}", titles->dump(), found.dump()));
    }
    return {};
}

ActionResult expectNotification(const ActionCall& call) {
    const std::string expected = stringArgument(call.arguments(), "body");
    const auto& posted = call.machine.platform().notifications.posted;
    if (std::none_of(posted.begin(), posted.end(),
                     [&](const auto& notification) { return notification.second == expected; })) {
        call.expectationFailed(fmt::format("no notification \"{}\" was posted", expected));
    }
    return {};
}

constexpr bool kNeedsRecorder = true;
constexpr bool kWithoutRecorder = false;

constexpr std::array kActions{
    // The session.
    ScenarioAction{"start", kNeedsRecorder, startSession},
    ScenarioAction{"pause", kNeedsRecorder, pauseSession},
    ScenarioAction{"resume", kNeedsRecorder, resumeSession},
    ScenarioAction{"end", kNeedsRecorder, endSession},
    ScenarioAction{"awayStart", kNeedsRecorder, startAway},
    ScenarioAction{"awayEnd", kNeedsRecorder, endAway},
    ScenarioAction{"answerPrompt", kNeedsRecorder, answerPrompt},
    // The machine.
    ScenarioAction{"frontmost", kWithoutRecorder, bringToFront},
    ScenarioAction{"nothingInFront", kWithoutRecorder, clearFront},
    ScenarioAction{"browser", kNeedsRecorder, showInBrowser},
    ScenarioAction{"browserEvent", kWithoutRecorder, sendBrowserEvent},
    ScenarioAction{"noInput", kWithoutRecorder, stopInput},
    ScenarioAction{"input", kWithoutRecorder, resumeInput},
    ScenarioAction{"wallClockJump", kWithoutRecorder, jumpWallClock},
    ScenarioAction{"wallClock", kWithoutRecorder, setWallClock},
    ScenarioAction{"sleep", kNeedsRecorder, goToSleep},
    ScenarioAction{"lockScreen", kNeedsRecorder, goToSleep},
    ScenarioAction{"wake", kNeedsRecorder, wake},
    ScenarioAction{"unlockScreen", kNeedsRecorder, wake},
    ScenarioAction{"terminate", kNeedsRecorder, terminate},
    ScenarioAction{"crash", kNeedsRecorder, crash},
    ScenarioAction{"relaunch", kWithoutRecorder, relaunch},
    // Preferences, rules and overrides.
    ScenarioAction{"setPreference", kNeedsRecorder, setPreference},
    ScenarioAction{"classifyApp", kNeedsRecorder, classifyApp},
    ScenarioAction{"classifyWebsite", kNeedsRecorder, classifyWebsite},
    ScenarioAction{"overrideApp", kNeedsRecorder, overrideApp},
    ScenarioAction{"overrideTab", kNeedsRecorder, overrideTab},
    ScenarioAction{"classifyPdf", kNeedsRecorder, classifyPdf},
    ScenarioAction{"clearFilenameLabels", kNeedsRecorder, clearFilenameLabels},
    // History.
    ScenarioAction{"relabel", kNeedsRecorder, relabel},
    ScenarioAction{"undoEdit", kNeedsRecorder, undoEdit},
    ScenarioAction{"deleteSessions", kNeedsRecorder, deleteSessions},
    ScenarioAction{"undoDelete", kNeedsRecorder, undoDelete},
    ScenarioAction{"deleteAll", kNeedsRecorder, deleteAll},
    ScenarioAction{"failSaves", kNeedsRecorder, failSaves},
    // Checks.
    ScenarioAction{"expect", kWithoutRecorder, expectSession},
    ScenarioAction{"expectStoredSessions", kWithoutRecorder, expectStoredSessions},
    ScenarioAction{"snapshot", kWithoutRecorder, takeSnapshot},
    ScenarioAction{"expectSnapshot", kWithoutRecorder, expectSnapshot},
    ScenarioAction{"expectNotification", kWithoutRecorder, expectNotification},
    ScenarioAction{"expectError", kNeedsRecorder, expectError},
    ScenarioAction{"expectPrompt", kNeedsRecorder, expectPrompt},
    ScenarioAction{"expectPersonalBests", kNeedsRecorder, expectPersonalBests},
    ScenarioAction{"expectBrowserEvent", kWithoutRecorder, expectBrowserEvent},
};

}  // namespace

std::span<const ScenarioAction> scenarioActions() {
    return kActions;
}

Result<void, std::string> performStep(ScenarioMachine& machine, const ScriptStep& step,
                                      ScenarioOutcome& outcome) {
    const auto row =
        std::ranges::find(kActions, std::string_view(step.action), &ScenarioAction::name);
    const bool known = row != kActions.end();
    // While the recorder is down after a crash, a name no row has is refused
    // like any action that needs the recorder.
    if (machine.recorder() == nullptr && (!known || row->needsRecorder)) {
        return fail(
            fmt::format("\"{}\" needs a running recorder (relaunch after a crash)", step.action));
    }
    if (!known) {
        return fail(fmt::format("unknown action \"{}\"", step.action));
    }
    return row->perform(ActionCall{machine, step, outcome});
}

}  // namespace lumenote::scenario
