#include "scenario/scenario_runner.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <set>

#include "foundation/numeric.hpp"
#include "platform/fake/fake_platform.hpp"
#include "recording/session_json.hpp"
#include "recording/session_manager.hpp"
#include "scenario/json_expectation.hpp"
#include "settings/json_file_defaults_domain.hpp"
#include "settings/preference_catalog.hpp"
#include "settings/preferences_store.hpp"
#include "settings/recording_preferences_adapter.hpp"
#include "store/sqlite_recording_store.hpp"
#include "store/store_files.hpp"

namespace lumenote::scenario {

namespace {

using nlohmann::json;

// The message a save reports while saves are made to fail.
constexpr const char* kInjectedSaveFailure = "disk I/O error (injected)";

std::optional<ActivityClassification> classificationArgument(const json& step, const char* key) {
    const auto found = step.find(key);
    if (found == step.end() || !found->is_string()) {
        return std::nullopt;
    }
    return fromRawValue<ActivityClassification>(found->get<std::string>());
}

std::string stringArgument(const json& step, const char* key, std::string fallback = {}) {
    const auto found = step.find(key);
    return (found != step.end() && found->is_string()) ? found->get<std::string>() : fallback;
}

// The simulated machine: the fakes, the store, the preferences and the manager.
class ScenarioMachine {
  public:
    ScenarioMachine(const UserPaths& paths, Date wallStart, std::unique_ptr<RecordingStore> store)
        : machine_(wallStart),
          store_(std::move(store)),
          domain_(JsonFileDefaultsDomain::pathFor(paths), [this] { return clock_.wallNow(); }),
          preferences_(domain_),
          recordingPreferences_(preferences_),
          checkpointStore_(paths.applicationData(), clock_.wall()) {
        launch();
    }

    void advanceTo(double scriptSeconds) {
        while (elapsed_ + 1.0 <= scriptSeconds + 1e-9) {
            clock_.advance(1.0);
            elapsed_ += 1.0;
            if (manager_) {
                manager_->tick();
            }
        }
        if (scriptSeconds > elapsed_) {
            clock_.advance(scriptSeconds - elapsed_);
            elapsed_ = scriptSeconds;
        }
    }

    Result<void, std::string> perform(const ScriptStep& step, ScenarioOutcome& outcome);

    json storedSessions() {
        json sessions = json::array();
        auto listed =
            store_->listSessions(SessionQuery{.newestFirst = false, .includeChildren = true});
        if (listed.ok()) {
            for (const auto& session : *listed) {
                sessions.push_back(sessionJson(session, true));
            }
        }
        return sessions;
    }

  private:
    void launch() {
        manager_.reset();
        rules_ = std::make_unique<ClassificationRules>(machine_.rulesFor(*store_));
        history_ = std::make_unique<SessionHistory>(
            machine_.historyDependencies(*store_, *rules_, recordingPreferences_));
        manager_ = std::make_unique<SessionManager>(machine_.dependencies(
            *store_, recordingPreferences_, checkpointStore_, *rules_, *history_));
        manager_->startUp();
        manager_->clearLastError();
    }
    // A rule or history change that failed is shown as the application shows it.
    template <typename Error>
    void noteOutcome(const Result<void, Error>& outcome) {
        if (!outcome.ok()) {
            frontError_ = outcome.error().message();
        }
    }

    Result<void, std::string> start(const json& step);
    Result<void, std::string> setPreference(const json& step);
    Result<void, std::string> relaunch(const std::string& recovery);
    Result<void, std::string> answerPrompt(const json& step);
    Result<void, std::string> relabel(const json& step);
    void expectPrompt(const ScriptStep& step, ScenarioOutcome& outcome);
    // The wall date of a moment of the script, counted back from now.
    Date dateAt(double scriptSeconds) const;
    std::optional<Date> optionalDate(const json& step, const char* key) const;
    Result<void, std::string> expectSession(const ScriptStep& step, ScenarioOutcome& outcome);
    std::optional<Uuid> sessionAt(const json& step, const char* key = "session");

    fake::FakeMachine machine_;
    fake::FakeClock& clock_ = machine_.clock;
    fake::FakeIdle& idle_ = machine_.idle;
    fake::FakeFrontmost& frontmost_ = machine_.frontmost;
    fake::FakeNotifications& notifications_ = machine_.notifications;
    fake::FakeBrowser& browser_ = machine_.browser;
    std::unique_ptr<RecordingStore> store_;
    JsonFileDefaultsDomain domain_;
    PreferencesStore preferences_;
    PreferencesForRecording recordingPreferences_;
    FileSessionCheckpointStore checkpointStore_;
    std::unique_ptr<ClassificationRules> rules_;
    std::unique_ptr<SessionHistory> history_;
    std::unique_ptr<SessionManager> manager_;
    // The last failure of an operation the runner made outside the manager.
    std::optional<std::string> frontError_;
    double elapsed_ = 0.0;
    json snapshot_ = json::array();
};

std::optional<Uuid> ScenarioMachine::sessionAt(const json& step, const char* key) {
    const auto found = step.find(key);
    if (found == step.end() || !found->is_number_integer()) {
        return std::nullopt;
    }
    auto listed = store_->listSessions(SessionQuery{.newestFirst = false});
    const auto index = found->get<long long>();
    if (!listed.ok() || index < 0 || static_cast<std::size_t>(index) >= listed->size()) {
        return std::nullopt;
    }
    return (*listed)[static_cast<std::size_t>(index)].id;
}

Result<void, std::string> ScenarioMachine::start(const json& step) {
    SessionStartRequest request;
    request.subject = stringArgument(step, "subject");
    request.goal = stringArgument(step, "goal");
    if (const auto duration = step.find("duration");
        duration != step.end() && duration->is_number()) {
        request.plannedDuration = duration->get<double>();
    } else {
        request.plannedDuration = preferences_.defaultDuration();
    }
    const std::string timing = stringArgument(step, "timing", "timer");
    const auto timingMode = fromRawValue<SessionTimingMode>(timing);
    const auto studyMode =
        fromRawValue<StudySessionMode>(stringArgument(step, "mode", "computerBased"));
    if (!timingMode || !studyMode) {
        return fail(std::string("unknown timing or study mode"));
    }
    request.timingMode = *timingMode;
    request.studyMode = *studyMode;
    if (const auto templateText = stringArgument(step, "template"); !templateText.empty()) {
        request.templateID = Uuid::parse(templateText);
    }
    // A refused start is part of what scenarios check (through expectError).
    (void)manager_->start(request);
    return {};
}

// Assigns through the preferences store, so clamps apply as in the application.
Result<void, std::string> ScenarioMachine::setPreference(const json& step) {
    const PreferenceKeyInfo* info = findPreferenceKey(stringArgument(step, "key"));
    const auto value = step.find("value");
    if (info == nullptr || value == step.end()) {
        return fail(std::string("setPreference needs a known key and a value"));
    }
    PreferenceValue converted;
    if (value->is_boolean()) {
        converted = value->get<bool>();
    } else if (value->is_number_integer() && info->kind != PreferenceValueKind::seconds) {
        converted = value->get<long long>();
    } else if (value->is_number()) {
        converted = value->get<double>();
    } else if (value->is_string()) {
        converted = value->get<std::string>();
    }
    if (!assignPreference(preferences_, *info, converted).ok()) {
        return fail(std::string("the value does not suit the key"));
    }
    return {};
}

Result<void, std::string> ScenarioMachine::relaunch(const std::string& recovery) {
    manager_.reset();
    launch();
    if (!manager_->pendingRecoverySession()) {
        return {};
    }
    if (recovery == "continue") {
        (void)manager_->continueRecoveredSession();
    } else if (recovery == "end") {
        (void)manager_->endRecoveredSession();
    } else if (recovery != "none") {
        return fail(std::string("\"recovery\" is continue, end or none"));
    }
    return {};
}

Date ScenarioMachine::dateAt(double scriptSeconds) const {
    return clock_.wallNow().addingSeconds(scriptSeconds - elapsed_);
}

std::optional<Date> ScenarioMachine::optionalDate(const json& step, const char* key) const {
    const auto found = step.find(key);
    if (found == step.end() || !found->is_number()) {
        return std::nullopt;
    }
    return dateAt(found->get<double>());
}

Result<void, std::string> ScenarioMachine::answerPrompt(const json& step) {
    using Answer = SessionManager::NoInputPromptAnswer;
    static const std::map<std::string, Answer> answers{{"passiveStudy", Answer::passiveStudy},
                                                       {"confirmedBreak", Answer::confirmedBreak},
                                                       {"leave", Answer::leaveUnconfirmed},
                                                       {"endThere", Answer::endThere}};
    const auto answer = answers.find(stringArgument(step, "answer"));
    if (answer == answers.end()) {
        return fail(std::string("\"answer\" is passiveStudy, confirmedBreak, leave or endThere"));
    }
    // A refused answer is part of what scenarios check (through expectError).
    (void)manager_->answerNoInputPrompt(answer->second, optionalDate(step, "from"),
                                        optionalDate(step, "to"));
    return {};
}

Result<void, std::string> ScenarioMachine::relabel(const json& step) {
    const auto session = sessionAt(step);
    const auto from = optionalDate(step, "from");
    const auto to = optionalDate(step, "to");
    if (!session || !from || !to) {
        return fail(std::string("relabel needs a stored session index, \"from\" and \"to\""));
    }
    const std::string state = stringArgument(step, "state");
    std::optional<ConfirmedStudyState> newState;
    if (state != "unconfirmed") {
        newState = fromRawValue<ConfirmedStudyState>(state);
        if (!newState) {
            return fail(std::string("\"state\" is passiveStudy, confirmedBreak or unconfirmed"));
        }
    }
    (void)manager_->relabel(*session, *from, *to, newState);
    return {};
}

void ScenarioMachine::expectPrompt(const ScriptStep& step, ScenarioOutcome& outcome) {
    const auto& prompt = manager_->pendingNoInputPrompt();
    const auto text = step.arguments.find("text");
    if (text == step.arguments.end() || text->is_null()) {
        if (prompt) {
            outcome.failedExpectations.push_back(
                fmt::format("line {}: expected no question, found one", step.lineNumber));
        }
        return;
    }
    if (!prompt) {
        outcome.failedExpectations.push_back(
            fmt::format("line {}: expected a question, found none", step.lineNumber));
        return;
    }
    const std::string actual = noInputPromptText(*prompt, LocalCalendar::utc());
    if (actual != text->get<std::string>()) {
        outcome.failedExpectations.push_back(fmt::format("line {}: expected question {}, found {}",
                                                         step.lineNumber, text->dump(),
                                                         json(actual).dump()));
    }
}

Result<void, std::string> ScenarioMachine::expectSession(const ScriptStep& step,
                                                         ScenarioOutcome& outcome) {
    const json sessions = storedSessions();
    const auto index = step.arguments.value("session", -1);
    if (index < 0 || static_cast<std::size_t>(index) >= sessions.size()) {
        outcome.failedExpectations.push_back(fmt::format(
            "line {}: no stored session {} ({} stored)", step.lineNumber, index, sessions.size()));
        return {};
    }
    json expected = step.arguments;
    for (const char* key : {"at", "do", "session"}) {
        expected.erase(key);
    }
    const json& actual = sessions[static_cast<std::size_t>(index)];
    if (const auto count = expected.find("segmentCount"); count != expected.end()) {
        if (actual["segments"].size() != count->get<std::size_t>()) {
            outcome.failedExpectations.push_back(
                fmt::format("line {}: expected {} segments, found {}", step.lineNumber,
                            count->dump(), actual["segments"].size()));
        }
        expected.erase("segmentCount");
    }
    std::string why;
    if (!matches(expected, &actual, why, fmt::format("session[{}]", index))) {
        outcome.failedExpectations.push_back(fmt::format("line {}: {}", step.lineNumber, why));
    }
    return {};
}

Result<void, std::string> ScenarioMachine::perform(const ScriptStep& step,
                                                   ScenarioOutcome& outcome) {
    const json& args = step.arguments;
    const std::string& action = step.action;
    // After a crash only the machine, the files and the checks remain until
    // the recorder is launched again.
    static const std::set<std::string> withoutRecorder{"relaunch",
                                                       "frontmost",
                                                       "noInput",
                                                       "input",
                                                       "wallClock",
                                                       "wallClockJump",
                                                       "expect",
                                                       "expectStoredSessions",
                                                       "snapshot",
                                                       "expectSnapshot",
                                                       "expectNotification"};
    if (!manager_ && !withoutRecorder.contains(action)) {
        return fail(
            fmt::format("\"{}\" needs a running recorder (relaunch after a crash)", action));
    }
    if (action == "start") {
        return start(args);
    }
    if (action == "frontmost") {
        frontmost_.current =
            FrontmostApplication{stringArgument(args, "name"), stringArgument(args, "bundle")};
        manager_->applicationActivated();
        return {};
    }
    if (action == "noInput") {
        idle_.stopInput();
        return {};
    }
    if (action == "input") {
        idle_.resumeInput();
        if (manager_) {
            manager_->applicationActivated();
        }
        return {};
    }
    if (action == "pause") {
        (void)manager_->pause();
        return {};
    }
    if (action == "resume") {
        (void)manager_->resume();
        return {};
    }
    if (action == "end") {
        (void)manager_->end();
        return {};
    }
    if (action == "wallClockJump") {
        clock_.jumpWallClock(args.value("seconds", 0.0));
        return {};
    }
    if (action == "wallClock") {
        const auto date = parseIso8601(stringArgument(args, "iso"));
        if (!date) {
            return fail(std::string("\"iso\" must be an ISO 8601 date"));
        }
        clock_.setWallClock(*date);
        return {};
    }
    if (action == "setPreference") {
        return setPreference(args);
    }
    if (action == "classifyApp" || action == "classifyWebsite" || action == "overrideApp" ||
        action == "overrideTab") {
        const auto classification = classificationArgument(args, "classification");
        if (!classification) {
            return fail(std::string("unknown classification"));
        }
        if (action == "classifyApp") {
            noteOutcome(rules_->saveApplicationClassification(
                stringArgument(args, "bundle"), stringArgument(args, "name"), *classification));
        } else if (action == "classifyWebsite") {
            noteOutcome(rules_->saveWebsiteClassification(stringArgument(args, "hostname"),
                                                          *classification));
        } else if (action == "overrideApp") {
            rules_->setSessionApplicationOverride(stringArgument(args, "bundle"), *classification);
        } else {
            const auto tab = Uuid::parse(stringArgument(args, "tab"));
            if (!tab) {
                return fail(std::string("\"tab\" must be a UUID"));
            }
            rules_->setTabOverride(*tab, *classification);
        }
        return {};
    }
    if (action == "browser") {
        // The frontmost browser now shows a website (or nothing, without "hostname").
        BrowserResolution resolution;
        resolution.browserBundleIdentifier = stringArgument(args, "bundle");
        const std::string hostname = stringArgument(args, "hostname");
        if (!hostname.empty()) {
            resolution.kind = BrowserResolution::Kind::website;
            resolution.hostname = hostname;
        } else {
            resolution.fallbackReason = BrowserFallbackReason::awaitingFreshEvent;
        }
        resolution.tabSessionIdentifier = Uuid::parse(stringArgument(args, "tab"));
        if (const auto pdf = Uuid::parse(stringArgument(args, "pdf"))) {
            // A local PDF: its identity, label and the label's source.
            resolution.kind = BrowserResolution::Kind::localPDF;
            resolution.pdfIdentifier = pdf;
            resolution.pdfDisplayLabel = stringArgument(args, "label");
            resolution.pdfLabelSource = BrowserPDFLabelSource::filename;
            resolution.fallbackReason.reset();
        }
        browser_.resolutions[resolution.browserBundleIdentifier] = resolution;
        manager_->applicationActivated();
        return {};
    }
    if (action == "classifyPdf") {
        const auto classification = classificationArgument(args, "classification");
        const auto scope = fromRawValue<LocalPDFClassificationScope>(stringArgument(args, "scope"));
        const auto pdf = Uuid::parse(stringArgument(args, "pdf"));
        if (!classification || !scope || !pdf) {
            return fail(std::string("classifyPdf needs a pdf id, a classification and a scope"));
        }
        noteOutcome(rules_->classifyLocalPDF(*pdf, *classification, *scope));
        return {};
    }
    if (action == "clearFilenameLabels") {
        noteOutcome(rules_->clearFilenameDerivedPDFLabels());
        return {};
    }
    if (action == "undoEdit") {
        (void)manager_->undoLastStudyStateEdit();
        return {};
    }
    if (action == "deleteSessions" || action == "undoDelete" || action == "deleteAll") {
        if (action == "undoDelete") {
            noteOutcome(history_->undoSessionDeletion());
        } else if (action == "deleteAll") {
            noteOutcome(history_->deleteAllSessions());
        } else {
            std::vector<Uuid> ids;
            for (const auto& index : args.value("sessions", json::array())) {
                if (auto id = sessionAt(json{{"session", index}})) {
                    ids.push_back(*id);
                }
            }
            noteOutcome(history_->deleteSessions(ids));
        }
        return {};
    }
    if (action == "failSaves") {
        if (args.value("enabled", true)) {
            manager_->persistenceSaveOperation = [](const StoreChangeSet&) {
                return Result<void, StoreError>(fail(StoreError{kInjectedSaveFailure}));
            };
        } else {
            manager_->persistenceSaveOperation = [this](const StoreChangeSet& changes) {
                return store_->apply(changes);
            };
        }
        return {};
    }
    if (action == "sleep" || action == "lockScreen") {
        manager_->willSleep();
        return {};
    }
    if (action == "wake" || action == "unlockScreen") {
        manager_->didWake();
        return {};
    }
    if (action == "terminate") {
        manager_->willTerminate();
        return {};
    }
    if (action == "crash") {
        // The process is gone: nothing is finalised; only the store and the
        // checkpoint file remain.
        manager_.reset();
        return {};
    }
    if (action == "relaunch") {
        return relaunch(stringArgument(args, "recovery", "none"));
    }
    if (action == "awayStart") {
        (void)manager_->startPassiveStudy();
        return {};
    }
    if (action == "awayEnd") {
        (void)manager_->endPassiveStudy();
        return {};
    }
    if (action == "answerPrompt") {
        return answerPrompt(args);
    }
    if (action == "relabel") {
        return relabel(args);
    }
    if (action == "expectPrompt") {
        expectPrompt(step, outcome);
        return {};
    }
    if (action == "expectNotification") {
        const std::string expected = stringArgument(args, "body");
        const bool found =
            std::any_of(notifications_.posted.begin(), notifications_.posted.end(),
                        [&](const auto& posted) { return posted.second == expected; });
        if (!found) {
            outcome.failedExpectations.push_back(fmt::format(
                "line {}: no notification \"{}\" was posted", step.lineNumber, expected));
        }
        return {};
    }
    if (action == "expect") {
        return expectSession(step, outcome);
    }
    if (action == "expectError") {
        const auto expected = args.find("message");
        const auto actual = frontError_ ? frontError_ : manager_->lastError();
        frontError_.reset();
        const bool wantsNone = expected == args.end() || expected->is_null();
        if (wantsNone ? actual.has_value() : (!actual || *actual != expected->get<std::string>())) {
            outcome.failedExpectations.push_back(fmt::format(
                "line {}: expected error {}, found {}", step.lineNumber,
                wantsNone ? "none" : expected->dump(), actual ? json(*actual).dump() : "none"));
        }
        manager_->clearLastError();
        return {};
    }
    if (action == "snapshot") {
        snapshot_ = storedSessions();
        return {};
    }
    if (action == "expectSnapshot") {
        // The stored history equals the last snapshot exactly: identifiers,
        // fields, segments and confirmations.
        std::string why;
        const json current = storedSessions();
        if (!matches(snapshot_, &current, why, "sessions")) {
            outcome.failedExpectations.push_back(fmt::format("line {}: {}", step.lineNumber, why));
        }
        return {};
    }
    if (action == "expectStoredSessions") {
        const auto count = args.value("count", std::size_t{0});
        const auto stored = storedSessions().size();
        if (stored != count) {
            outcome.failedExpectations.push_back(fmt::format(
                "line {}: expected {} stored sessions, found {}", step.lineNumber, count, stored));
        }
        return {};
    }
    return fail(fmt::format("unknown action \"{}\"", action));
}

}  // namespace

Result<ScenarioOutcome, std::string> runScenario(const std::vector<ScriptStep>& steps,
                                                 const UserPaths& paths, Date wallStart) {
    auto store = SqliteRecordingStore::open(storePath(paths));
    if (!store.ok()) {
        return fail(storageOpenFailureMessage(store.error()));
    }
    ScenarioMachine machine(paths, wallStart, std::move(store).value());
    ScenarioOutcome outcome;
    for (const ScriptStep& step : steps) {
        machine.advanceTo(step.at);
        if (auto done = machine.perform(step, outcome); !done.ok()) {
            return fail(fmt::format("line {}: {}", step.lineNumber, done.error()));
        }
    }
    outcome.sessions = machine.storedSessions();
    return outcome;
}

}  // namespace lumenote::scenario
